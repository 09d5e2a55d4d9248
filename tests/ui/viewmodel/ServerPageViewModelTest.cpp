#include "Rows.h"
#include "ServerPageFixture.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using tarvo::test::field;
using tarvo::test::ServerPageFixture;
using tarvo::ui::LinkState;
using tarvo::ui::ServerPageViewModel;

namespace {

constexpr char typeTable[] = "BOEING\t737-800\tB738\tL2J\tM\n"
                             "BOEING\t737-700\tB737\tL2J\tM\n"
                             "\t\tB739\tL2J\t\n"
                             "BOEING\t\tB73X\t\tM\n";

} // namespace

/// The server's state, the log, the events and the type suggestions.
class ServerPageViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void serverStateTellsOnlyAChange()
    {
        ServerPageFixture fixture;
        QSignalSpy state(&fixture.model, &ServerPageViewModel::serverStateChanged);
        fixture.model.setServerState(false, LinkState::Absent);
        QCOMPARE(state.count(), 0);
        fixture.model.setServerState(true, LinkState::Absent);
        fixture.model.setServerState(true, LinkState::Connected);
        fixture.model.setServerState(true, LinkState::Connected);
        QCOMPARE(state.count(), 2);
        QVERIFY(fixture.model.serverConnected());
        QCOMPARE(fixture.model.serverStatusText(), u"已连接"_qs);
        fixture.model.setConnectedAsObserver(true);
        fixture.model.setConnectedAsObserver(true);
        QCOMPARE(state.count(), 3);
        QVERIFY(fixture.model.connectedAsObserver());
    }

    void endpointTellsOnlyAChange()
    {
        ServerPageFixture fixture;
        QSignalSpy spy(&fixture.model, &ServerPageViewModel::endpointChanged);
        fixture.model.setEndpoint(u"127.0.0.1:6809"_qs);
        fixture.model.setEndpoint(u"127.0.0.1:6809"_qs);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(fixture.model.endpoint(), u"127.0.0.1:6809"_qs);
    }

    void protocolHasTwoLabels()
    {
        ServerPageFixture fixture;
        QSignalSpy spy(&fixture.model, &ServerPageViewModel::protocolChanged);
        fixture.model.setVatsimProtocol(false);
        QCOMPARE(spy.count(), 0);
        fixture.model.setVatsimProtocol(true);
        QCOMPARE(fixture.model.protocolLabel(), u"VATSIM 协议"_qs);
        fixture.model.setVatsimProtocol(false);
        QCOMPARE(fixture.model.protocolLabel(), u"经典协议"_qs);
        QCOMPARE(spy.count(), 2);
    }

    void profileTellsOnlyAChange()
    {
        ServerPageFixture fixture;
        QSignalSpy spy(&fixture.model, &ServerPageViewModel::profileChanged);
        fixture.model.setProfile(u"欧阳靖远"_qs, u"ZBAA"_qs);
        fixture.model.setProfile(u"欧阳靖远"_qs, u"ZBAA"_qs);
        fixture.model.setProfile(u"欧阳靖远"_qs, u"ZSPD"_qs);
        QCOMPARE(spy.count(), 2);
        QCOMPARE(fixture.model.realName(), u"欧阳靖远"_qs);
        QCOMPARE(fixture.model.homeAirport(), u"ZSPD"_qs);
    }

    void requestDisconnectAlwaysEmits()
    {
        ServerPageFixture fixture;
        QSignalSpy spy(&fixture.model, &ServerPageViewModel::disconnectRequested);
        fixture.model.requestDisconnect();
        QCOMPARE(spy.count(), 1);
    }

    void appendLogTellsTheLineAndThenTheLog()
    {
        ServerPageFixture fixture;
        QStringList told;
        connect(&fixture.model, &ServerPageViewModel::logLineAdded, this, [&](const QString &line) { told << line; });
        connect(&fixture.model, &ServerPageViewModel::logChanged, this, [&] { told << u"changed"_qs; });
        fixture.model.appendLog(u"甲"_qs);
        fixture.clock.advance(3'000);
        fixture.model.appendLog(u"乙"_qs);
        QCOMPARE(fixture.model.serverLog(), u"[21:04:07] 甲\n[21:04:10] 乙"_qs);
        QCOMPARE(told, (QStringList{u"[21:04:07] 甲"_qs, u"changed"_qs, u"[21:04:10] 乙"_qs, u"changed"_qs}));
    }

    void theNewestEventStandsFirst()
    {
        ServerPageFixture fixture;
        QSignalSpy spy(&fixture.model, &ServerPageViewModel::recentEventsChanged);
        fixture.model.addRecentEvent(u"一"_qs, u"细节"_qs, u"网络"_qs);
        fixture.clock.advance(1'000);
        fixture.model.addRecentEvent(u"二"_qs, QString(), u"系统"_qs);
        QCOMPARE(spy.count(), 2);
        const QVariantList events = fixture.model.recentEvents();
        QCOMPARE(events.size(), 2);
        QCOMPARE(events.at(0).toMap(), (QVariantMap{{u"time"_qs, u"21:04:08"_qs},
                                                    {u"title"_qs, u"二"_qs},
                                                    {u"detail"_qs, QString()},
                                                    {u"tag"_qs, u"系统"_qs}}));
        QCOMPARE(field(events.at(1), "title"), u"一"_qs);
    }

    void anEventIsOneLineOfBoundedLength()
    {
        ServerPageFixture fixture;
        fixture.model.addRecentEvent(u"a\r\nb"_qs, QString(100'000, u'x'), QString());
        fixture.model.addRecentEvent(QString(100'000, u'y'), u"c\u2028d\u2029e"_qs, QString());
        const QVariantList events = fixture.model.recentEvents();
        QCOMPARE(field(events.at(1), "title"), u"a  b"_qs);
        QCOMPARE(field(events.at(1), "detail"), QString(500, u'x'));
        QCOMPARE(field(events.at(0), "title"), QString(200, u'y'));
        QCOMPARE(field(events.at(0), "detail"), u"c d e"_qs);
    }

    void keepsTheNewestEvents()
    {
        ServerPageFixture fixture;
        for (int i = 0; i <= 2000; ++i)
            fixture.model.addRecentEvent(QString::number(i), {}, {});
        const QVariantList events = fixture.model.recentEvents();
        QCOMPARE(events.size(), 2000);
        QCOMPARE(field(events.constFirst(), "title"), u"2000"_qs);
        QCOMPARE(field(events.constLast(), "title"), u"1"_qs);
    }

    void clearLeavesItsOwnEvent()
    {
        ServerPageFixture fixture;
        fixture.model.appendLog(u"甲"_qs);
        fixture.model.addRecentEvent(u"一"_qs, {}, {});
        QSignalSpy cleared(&fixture.model, &ServerPageViewModel::logCleared);
        QSignalSpy log(&fixture.model, &ServerPageViewModel::logChanged);
        fixture.model.clearServerLog();
        QCOMPARE(cleared.count(), 1);
        QCOMPARE(log.count(), 1);
        QCOMPARE(fixture.model.serverLog(), QString());
        QCOMPARE(fixture.model.recentEvents(),
                 QVariantList{(QVariantMap{{u"time"_qs, u"21:04:07"_qs},
                                           {u"title"_qs, u"日志已清空"_qs},
                                           {u"detail"_qs, u"服务器日志和最近事件已重置。"_qs},
                                           {u"tag"_qs, u"系统"_qs}})});
        fixture.model.clearServerLog();
        QCOMPARE(fixture.model.recentEvents().size(), 1);
        QCOMPARE(log.count(), 1); // it was empty
    }

    void suggestions_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QStringList>("rows"); // designator|title|detail
        const QString b737 = u"B737|BOEING 737-700|L2J · WTC M"_qs;
        const QString b738 = u"B738|BOEING 737-800|L2J · WTC M"_qs;
        QTest::newRow("exact, lower case, blanks around") << u"  b738 "_qs << QStringList{b738};
        QTest::newRow("prefix") << u"B73"_qs << QStringList{b737, b738, u"B739||L2J"_qs, u"B73X|BOEING|WTC M"_qs};
        QTest::newRow("maker and model, behind which its own rows stand")
            << u"boeing 737"_qs << QStringList{b737, b738};
        QTest::newRow("no match") << u"ZZZZ"_qs << QStringList();
        QTest::newRow("empty") << QString() << QStringList();
        QTest::newRow("only blanks") << u"   "_qs << QStringList();
    }

    void suggestions()
    {
        QFETCH(QString, query);
        QFETCH(QStringList, rows);
        ServerPageFixture fixture{QByteArray(typeTable)};
        fixture.model.refreshTypeCodeSuggestions(u"B7"_qs);
        fixture.model.refreshTypeCodeSuggestions(query);
        QStringList found;
        const QVariantList suggestions = fixture.model.typeCodeSuggestions();
        for (const QVariant &row : suggestions)
            found << field(row, "designator") + u'|' + field(row, "title") + u'|' + field(row, "detail");
        QCOMPARE(found, rows);
    }

    void atMostTenSuggestions()
    {
        QByteArray table;
        for (char c = 'A'; c <= 'Z'; ++c)
            table += QByteArray("M\tmodel\tB7") + c + "A\tL2J\tM\n";
        ServerPageFixture fixture(table);
        fixture.model.refreshTypeCodeSuggestions(u"B7"_qs);
        QCOMPARE(fixture.model.typeCodeSuggestions().size(), 10);
    }

    void noTypeDataNoSuggestions()
    {
        ServerPageFixture fixture;
        fixture.model.refreshTypeCodeSuggestions(u"B738"_qs);
        QCOMPARE(fixture.model.typeCodeSuggestions(), QVariantList());
    }

    void applyingASuggestionStoresItAndClosesTheList()
    {
        ServerPageFixture fixture{QByteArray(typeTable)};
        fixture.model.setCallsign(u"CCA1"_qs);
        fixture.model.refreshTypeCodeSuggestions(u"B73"_qs);
        QSignalSpy form(&fixture.model, &ServerPageViewModel::formChanged);
        QSignalSpy list(&fixture.model, &ServerPageViewModel::typeCodeSuggestionsChanged);
        fixture.model.applyTypeCodeSuggestion(u"B738"_qs);
        QCOMPARE(fixture.model.typeCode(), u"B738"_qs);
        QCOMPARE(fixture.model.typeCodeSuggestions(), QVariantList());
        QVERIFY(fixture.model.canConnect());
        QCOMPARE(form.count(), 1);
        QCOMPARE(list.count(), 1);
        fixture.model.applyTypeCodeSuggestion(u"B738"_qs); // the same again: still told
        QCOMPARE(form.count(), 2);
    }

    void unchangedSuggestionsAreNotTold()
    {
        ServerPageFixture fixture{QByteArray(typeTable)};
        QSignalSpy list(&fixture.model, &ServerPageViewModel::typeCodeSuggestionsChanged);
        fixture.model.refreshTypeCodeSuggestions(QString());
        QCOMPARE(list.count(), 0);
        fixture.model.refreshTypeCodeSuggestions(u"B738"_qs);
        fixture.model.refreshTypeCodeSuggestions(u"b738"_qs);
        QCOMPARE(list.count(), 1);
    }
};

TARVO_TEST(ServerPageViewModelTest)
#include "ServerPageViewModelTest.moc"

#include "Rows.h"
#include "ServerPageFixture.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using tarvo::test::field;
using tarvo::test::ServerPageFixture;
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
        fixture.model.setServerState(false, QStringLiteral("未连接"));
        QCOMPARE(state.count(), 0);
        fixture.model.setServerState(true, QStringLiteral("未连接"));
        fixture.model.setServerState(true, QStringLiteral("已连接"));
        fixture.model.setServerState(true, QStringLiteral("已连接"));
        QCOMPARE(state.count(), 2);
        QVERIFY(fixture.model.serverConnected());
        QCOMPARE(fixture.model.serverStatusText(), QStringLiteral("已连接"));
        fixture.model.setConnectedAsObserver(true);
        fixture.model.setConnectedAsObserver(true);
        QCOMPARE(state.count(), 3);
        QVERIFY(fixture.model.connectedAsObserver());
    }

    void endpointTellsOnlyAChange()
    {
        ServerPageFixture fixture;
        QSignalSpy spy(&fixture.model, &ServerPageViewModel::endpointChanged);
        fixture.model.setEndpoint(QStringLiteral("127.0.0.1:6809"));
        fixture.model.setEndpoint(QStringLiteral("127.0.0.1:6809"));
        QCOMPARE(spy.count(), 1);
        QCOMPARE(fixture.model.endpoint(), QStringLiteral("127.0.0.1:6809"));
    }

    void protocolHasTwoLabels()
    {
        ServerPageFixture fixture;
        QSignalSpy spy(&fixture.model, &ServerPageViewModel::protocolChanged);
        fixture.model.setVatsimProtocol(false);
        QCOMPARE(spy.count(), 0);
        fixture.model.setVatsimProtocol(true);
        QCOMPARE(fixture.model.protocolLabel(), QStringLiteral("VATSIM 协议"));
        fixture.model.setVatsimProtocol(false);
        QCOMPARE(fixture.model.protocolLabel(), QStringLiteral("经典协议"));
        QCOMPARE(spy.count(), 2);
    }

    void profileTellsOnlyAChange()
    {
        ServerPageFixture fixture;
        QSignalSpy spy(&fixture.model, &ServerPageViewModel::profileChanged);
        fixture.model.setProfile(QStringLiteral("欧阳靖远"), QStringLiteral("ZBAA"));
        fixture.model.setProfile(QStringLiteral("欧阳靖远"), QStringLiteral("ZBAA"));
        fixture.model.setProfile(QStringLiteral("欧阳靖远"), QStringLiteral("ZSPD"));
        QCOMPARE(spy.count(), 2);
        QCOMPARE(fixture.model.realName(), QStringLiteral("欧阳靖远"));
        QCOMPARE(fixture.model.homeAirport(), QStringLiteral("ZSPD"));
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
        connect(&fixture.model, &ServerPageViewModel::logChanged, this, [&] { told << QStringLiteral("changed"); });
        fixture.model.appendLog(QStringLiteral("甲"));
        fixture.clock.advance(3'000);
        fixture.model.appendLog(QStringLiteral("乙"));
        QCOMPARE(fixture.model.serverLog(), QStringLiteral("[21:04:07] 甲\n[21:04:10] 乙"));
        QCOMPARE(told, (QStringList{QStringLiteral("[21:04:07] 甲"), QStringLiteral("changed"),
                                    QStringLiteral("[21:04:10] 乙"), QStringLiteral("changed")}));
    }

    void theNewestEventStandsFirst()
    {
        ServerPageFixture fixture;
        QSignalSpy spy(&fixture.model, &ServerPageViewModel::recentEventsChanged);
        fixture.model.addRecentEvent(QStringLiteral("一"), QStringLiteral("细节"), QStringLiteral("网络"));
        fixture.clock.advance(1'000);
        fixture.model.addRecentEvent(QStringLiteral("二"), QString(), QStringLiteral("系统"));
        QCOMPARE(spy.count(), 2);
        const QVariantList events = fixture.model.recentEvents();
        QCOMPARE(events.size(), 2);
        QCOMPARE(events.at(0).toMap(), (QVariantMap{{QStringLiteral("time"), QStringLiteral("21:04:08")},
                                                    {QStringLiteral("title"), QStringLiteral("二")},
                                                    {QStringLiteral("detail"), QString()},
                                                    {QStringLiteral("tag"), QStringLiteral("系统")}}));
        QCOMPARE(field(events.at(1), "title"), QStringLiteral("一"));
    }

    void anEventIsOneLineOfBoundedLength()
    {
        ServerPageFixture fixture;
        fixture.model.addRecentEvent(QStringLiteral("a\r\nb"), QString(100'000, u'x'), QString());
        fixture.model.addRecentEvent(QString(100'000, u'y'), QStringLiteral("c\u2028d\u2029e"), QString());
        const QVariantList events = fixture.model.recentEvents();
        QCOMPARE(field(events.at(1), "title"), QStringLiteral("a  b"));
        QCOMPARE(field(events.at(1), "detail"), QString(500, u'x'));
        QCOMPARE(field(events.at(0), "title"), QString(200, u'y'));
        QCOMPARE(field(events.at(0), "detail"), QStringLiteral("c d e"));
    }

    void keepsTheNewestEvents()
    {
        ServerPageFixture fixture;
        for (int i = 0; i <= 2000; ++i)
            fixture.model.addRecentEvent(QString::number(i), {}, {});
        const QVariantList events = fixture.model.recentEvents();
        QCOMPARE(events.size(), 2000);
        QCOMPARE(field(events.constFirst(), "title"), QStringLiteral("2000"));
        QCOMPARE(field(events.constLast(), "title"), QStringLiteral("1"));
    }

    void clearLeavesItsOwnEvent()
    {
        ServerPageFixture fixture;
        fixture.model.appendLog(QStringLiteral("甲"));
        fixture.model.addRecentEvent(QStringLiteral("一"), {}, {});
        QSignalSpy cleared(&fixture.model, &ServerPageViewModel::logCleared);
        QSignalSpy log(&fixture.model, &ServerPageViewModel::logChanged);
        fixture.model.clearServerLog();
        QCOMPARE(cleared.count(), 1);
        QCOMPARE(log.count(), 1);
        QCOMPARE(fixture.model.serverLog(), QString());
        QCOMPARE(fixture.model.recentEvents(),
                 QVariantList{(QVariantMap{{QStringLiteral("time"), QStringLiteral("21:04:07")},
                                           {QStringLiteral("title"), QStringLiteral("日志已清空")},
                                           {QStringLiteral("detail"), QStringLiteral("服务器日志和最近事件已重置。")},
                                           {QStringLiteral("tag"), QStringLiteral("系统")}})});
        fixture.model.clearServerLog();
        QCOMPARE(fixture.model.recentEvents().size(), 1);
        QCOMPARE(log.count(), 1); // it was empty
    }

    void suggestions_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QStringList>("rows"); // designator|title|detail
        const QString b737 = QStringLiteral("B737|BOEING 737-700|L2J · WTC M");
        const QString b738 = QStringLiteral("B738|BOEING 737-800|L2J · WTC M");
        QTest::newRow("exact, lower case, blanks around") << QStringLiteral("  b738 ") << QStringList{b738};
        QTest::newRow("prefix") << QStringLiteral("B73")
                                << QStringList{b737, b738, QStringLiteral("B739||L2J"),
                                               QStringLiteral("B73X|BOEING|WTC M")};
        QTest::newRow("no match") << QStringLiteral("ZZZZ") << QStringList();
        QTest::newRow("empty") << QString() << QStringList();
        QTest::newRow("only blanks") << QStringLiteral("   ") << QStringList();
    }

    void suggestions()
    {
        QFETCH(QString, query);
        QFETCH(QStringList, rows);
        ServerPageFixture fixture{QByteArray(typeTable)};
        fixture.model.refreshTypeCodeSuggestions(QStringLiteral("B7"));
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
        fixture.model.refreshTypeCodeSuggestions(QStringLiteral("B7"));
        QCOMPARE(fixture.model.typeCodeSuggestions().size(), 10);
    }

    void noTypeDataNoSuggestions()
    {
        ServerPageFixture fixture;
        fixture.model.refreshTypeCodeSuggestions(QStringLiteral("B738"));
        QCOMPARE(fixture.model.typeCodeSuggestions(), QVariantList());
    }

    void applyingASuggestionStoresItAndClosesTheList()
    {
        ServerPageFixture fixture{QByteArray(typeTable)};
        fixture.model.setCallsign(QStringLiteral("CCA1"));
        fixture.model.refreshTypeCodeSuggestions(QStringLiteral("B73"));
        QSignalSpy form(&fixture.model, &ServerPageViewModel::formChanged);
        QSignalSpy list(&fixture.model, &ServerPageViewModel::typeCodeSuggestionsChanged);
        fixture.model.applyTypeCodeSuggestion(QStringLiteral("B738"));
        QCOMPARE(fixture.model.typeCode(), QStringLiteral("B738"));
        QCOMPARE(fixture.model.typeCodeSuggestions(), QVariantList());
        QVERIFY(fixture.model.canConnect());
        QCOMPARE(form.count(), 1);
        QCOMPARE(list.count(), 1);
        fixture.model.applyTypeCodeSuggestion(QStringLiteral("B738")); // the same again: still told
        QCOMPARE(form.count(), 2);
    }

    void unchangedSuggestionsAreNotTold()
    {
        ServerPageFixture fixture{QByteArray(typeTable)};
        QSignalSpy list(&fixture.model, &ServerPageViewModel::typeCodeSuggestionsChanged);
        fixture.model.refreshTypeCodeSuggestions(QString());
        QCOMPARE(list.count(), 0);
        fixture.model.refreshTypeCodeSuggestions(QStringLiteral("B738"));
        fixture.model.refreshTypeCodeSuggestions(QStringLiteral("b738"));
        QCOMPARE(list.count(), 1);
    }
};

TARVO_TEST(ServerPageViewModelTest)
#include "ServerPageViewModelTest.moc"

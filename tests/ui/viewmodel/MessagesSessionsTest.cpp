#include "MessagesFixture.h"
#include "model/Controller.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using namespace tarvo::test;
using tarvo::ui::MessagesPageViewModel;
using tarvo::ui::PrivateSessions;

/// Private sessions, the line that is being written, and the stations nearby.
class MessagesSessionsTest : public QObject
{
    Q_OBJECT

private slots:
    void aSessionHasItsChannel()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.addPrivateReceived(u"cca1"_qs, u"hi"_qs);
        QCOMPARE(column(model.channels(), "key"), u"SERVER RADIO PRIVATE CCA1 BROADCAST WALLOP SELCAL"_qs);
        const QVariant entry = model.channels().at(3);
        QCOMPARE(field(entry, "label"), u"私聊 CCA1"_qs);
        QCOMPARE(field(entry, "fixed"), u"false"_qs);
        QCOMPARE(field(entry, "unread"), u"1"_qs);
        const QVariantMap session = model.privateSessions().first().toMap();
        QCOMPARE(session.size(), 4);
        QCOMPARE(session.value(u"lastMessage"_qs).toString(), u"hi"_qs);
        QCOMPARE(session.value(u"lastTime"_qs), fixture.last().value(u"time"_qs));
        model.closePrivateSession(u"CCA1"_qs);
        QCOMPARE(column(model.channels(), "key"), u"SERVER RADIO PRIVATE BROADCAST WALLOP SELCAL"_qs);
        QCOMPARE(model.messages().size(), 1);
        QCOMPARE(model.unreadCount(), 0);
    }

    void whatWasSentOpensAndUpdatesTheSession()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.addPrivateSent(u"cca1"_qs, u"hello"_qs);
        QCOMPARE(column(model.privateSessions(), "callsign"), u"CCA1"_qs);
        QCOMPARE(column(model.privateSessions(), "lastMessage"), u"hello"_qs);
        QCOMPARE(column(model.privateSessions(), "unread"), u"0"_qs);
        fixture.clock.advance(61'000);
        model.addPrivateSent(u"CCA1"_qs, u"again"_qs);
        const QVariantMap session = model.privateSessions().first().toMap();
        QCOMPARE(model.privateSessions().size(), 1);
        QCOMPARE(session.value(u"lastMessage"_qs).toString(), u"again"_qs);
        QCOMPARE(session.value(u"lastTime"_qs), fixture.last().value(u"time"_qs));
        QCOMPARE(model.activeChannel(), u"RADIO"_qs);
    }

    void openingMakesItActive()
    {
        MessagesFixture fixture;
        fixture.told();
        fixture.model.openPrivateSession(u" zspd_twr "_qs);
        QCOMPARE(fixture.model.activeChannel(), u"ZSPD_TWR"_qs);
        QCOMPARE(fixture.told(), u"stats channel active sessions unread compose"_qs);
        QCOMPARE(column(fixture.model.privateSessions(), "lastTime"), QString());
        fixture.model.openPrivateSession(u"ZSPD_TWR"_qs); // once more
        QCOMPARE(fixture.told(), u"channel active unread compose"_qs);
        fixture.model.setActiveChannel(u"RADIO"_qs);
        fixture.model.addPrivateReceived(u"ZSPD_TWR"_qs, u"hi"_qs);
        fixture.told();
        fixture.model.openPrivateSession(u"ZSPD_TWR"_qs);
        QCOMPARE(fixture.told(), u"messages stats channel active sessions unread compose"_qs);
        QCOMPARE(fixture.model.unreadCount(), 0);
        fixture.model.addPrivateReceived(u"ZSPD_TWR"_qs, u"there"_qs);
        QCOMPARE(fixture.told(), u"messages stats active sessions sound private_in 2"_qs);
    }

    void callsignsThatOpenNothing_data()
    {
        QTest::addColumn<QString>("callsign");
        QTest::newRow("empty") << QString();
        QTest::newRow("blanks") << u"  "_qs;
        for (const char *word :
             {"ALL", "COM1", "COM2", "SERVER", "RADIO", "radio", "PRIVATE", "BROADCAST", "WALLOP", "SELCAL"})
            QTest::newRow(word) << QString::fromLatin1(word);
        for (const char *many : {"@18500", " @18500", "@18500&@94386", "*", "*A", "*S", "*s", "*P"}) // addresses
            QTest::newRow(many) << QString::fromLatin1(many);
        QTest::newRow("longer than any") << QString(33, u'A');
    }

    void callsignsThatOpenNothing()
    {
        QFETCH(QString, callsign);
        MessagesFixture fixture;
        fixture.told();
        fixture.model.openPrivateSession(callsign);
        fixture.model.prepareReply(callsign);
        QCOMPARE(fixture.told(), QString());
        QCOMPARE(fixture.model.privateSessions(), QVariantList());
        // Such a sender is heard in the overview: never on the radio's channel.
        fixture.model.addPrivateReceived(callsign, u"hi"_qs);
        QCOMPARE(field(fixture.last(), "channel"), u"PRIVATE"_qs);
        QCOMPARE(fixture.model.privateSessions(), QVariantList());
        fixture.model.setActiveChannel(u"PRIVATE"_qs);
        QCOMPARE(fixture.model.unreadCount(), 0);
    }

    void replies_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("target"); // empty: ignored
        QTest::newRow("callsign") << u"CCA1"_qs << u"CCA1"_qs;
        QTest::newRow("lower case, blanks") << u" cca1\t"_qs << u"CCA1"_qs;
        QTest::newRow("server") << u"服务器"_qs << QString();
        QTest::newRow("system") << u" 系统 "_qs << QString();
        QTest::newRow("nobody") << QString() << QString();
    }

    void replies()
    {
        QFETCH(QString, from);
        QFETCH(QString, target);
        MessagesFixture fixture;
        fixture.model.setDraftMessage(u"half a word"_qs);
        fixture.told();
        fixture.model.prepareReply(from);
        QCOMPARE(fixture.model.draftTarget(), target);
        QCOMPARE(fixture.model.draftMessage(),
                 target.isEmpty() ? u"half a word"_qs : QString()); // it stays on the radio
        QCOMPARE(fixture.model.activeChannel(), target.isEmpty() ? u"RADIO"_qs : target);
        QCOMPARE(fixture.told(), target.isEmpty() ? QString() : u"stats channel active sessions unread compose"_qs);
    }

    void closingTheActiveOneGoesBackToTheRadio()
    {
        MessagesFixture fixture;
        fixture.model.openPrivateSession(u"CCA1"_qs);
        fixture.model.addRadioReceived(heardText(QString()));
        QCOMPARE(fixture.model.unreadCount(), 1);
        fixture.told();
        fixture.model.closePrivateSession(u" cca1 "_qs);
        QCOMPARE(fixture.model.activeChannel(), u"RADIO"_qs);
        QCOMPARE(fixture.model.unreadCount(), 0);
        QCOMPARE(fixture.told(), u"messages stats channel active sessions unread compose"_qs);
    }

    void whatWasWrittenToSomebodyGoesWithTheSession()
    {
        MessagesFixture fixture;
        fixture.model.prepareReply(u"CCA1"_qs);
        fixture.model.setDraftMessage(u"between us"_qs);
        fixture.model.closePrivateSession(u"CCA1"_qs);
        QCOMPARE(fixture.model.activeChannel(), u"RADIO"_qs);
        QCOMPARE(fixture.model.draftMessage(), QString()); // one Enter, and all would have heard it
        QCOMPARE(fixture.model.draftTarget(), QString());
    }

    void closingAnotherOneStays_data()
    {
        columns<QString, QString>("channel", "told");
        QTest::newRow("beside one") << u"CCA1"_qs << u"messages stats sessions unread"_qs;
        QTest::newRow("all are shown") << u"ALL"_qs << u"messages stats active sessions unread"_qs;
    }

    void closingAnotherOneStays()
    {
        QFETCH(QString, channel);
        MessagesFixture fixture;
        fixture.model.openPrivateSession(u"CCA1"_qs);
        fixture.model.setActiveChannel(channel);
        fixture.model.setDraftMessage(u"half a word"_qs);
        fixture.model.addPrivateReceived(u"CCA2"_qs, QString());
        fixture.told();
        fixture.model.closePrivateSession(u"CCA2"_qs);
        QCOMPARE(fixture.model.activeChannel(), channel);
        QTEST(fixture.told(), "told");
        QCOMPARE(fixture.model.draftMessage(), u"half a word"_qs);
        fixture.model.closePrivateSession(u"CCA2"_qs);
        fixture.model.closePrivateSession(u"RADIO"_qs);
        QCOMPARE(fixture.told(), QString());
    }

    void aClosedSessionComesBackWithItsMessages()
    {
        MessagesFixture fixture;
        fixture.model.addPrivateReceived(u"CCA1"_qs, u"one"_qs);
        fixture.model.closePrivateSession(u"CCA1"_qs);
        fixture.model.addPrivateReceived(u"CCA1"_qs, u"two"_qs);
        QCOMPARE(fixture.model.unreadForChannel(u"CCA1"_qs), 1);
        QCOMPARE(fixture.model.messagesForChannel(u"CCA1"_qs).size(), 2);
    }

    void aFloodOfSendersIsBounded()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.openPrivateSession(u"FRIEND"_qs);
        model.addPrivateReceived(u"QUIET"_qs, u"hi"_qs);
        model.addPrivateReceived(u"LIVELY"_qs, u"hi"_qs);
        for (int i = 0; i < PrivateSessions::maximumSessions - 3; ++i)
            model.addPrivateReceived(u"P%1"_qs.arg(i), u"buy"_qs);
        QCOMPARE(model.privateSessions().size(), PrivateSessions::maximumSessions);
        model.addPrivateReceived(u"LIVELY"_qs, u"hi again"_qs);
        model.addPrivateReceived(u"ONE_MORE"_qs, u"buy"_qs);
        const QString callsigns = column(model.privateSessions(), "callsign");
        QVERIFY(callsigns.startsWith(u"FRIEND LIVELY P0 "_qs)); // the active one stays, however quiet
        QVERIFY(callsigns.endsWith(u" ONE_MORE"_qs));
        model.addPrivateReceived(u"TWO_MORE"_qs, u"buy"_qs);
        QVERIFY(column(model.privateSessions(), "callsign").startsWith(u"FRIEND LIVELY P1 "_qs));
        QCOMPARE(model.privateSessions().size(), PrivateSessions::maximumSessions);
        QCOMPARE(model.messagesForChannel(u"QUIET"_qs).size(), 1); // its message stays, as read
        QCOMPARE(model.unreadForChannel(u"QUIET"_qs), 0);
        for (int i = 0; i < 5000; ++i)
            model.addPrivateReceived(u"F%1"_qs.arg(i), u"buy"_qs);
        QCOMPARE(model.privateSessions().size(), PrivateSessions::maximumSessions);
        QCOMPARE(model.unreadCount(), PrivateSessions::maximumSessions - 1);
        QCOMPARE(model.activeChannel(), u"FRIEND"_qs);
    }

    void theActiveSessionStaysWhereverItStands()
    {
        MessagesFixture fixture;
        const auto everybody = [&fixture] {
            for (int i = 1; i < PrivateSessions::maximumSessions; ++i)
                fixture.model.addPrivateReceived(u"P%1"_qs.arg(i), u"buy"_qs);
        };
        everybody();
        fixture.model.openPrivateSession(u"FRIEND"_qs);
        everybody();
        fixture.model.addPrivateReceived(u"ONE_MORE"_qs, u"buy"_qs);
        const QString callsigns = column(fixture.model.privateSessions(), "callsign");
        QVERIFY2(callsigns.startsWith(u"P2 "_qs) && callsigns.endsWith(u" FRIEND ONE_MORE"_qs), qPrintable(callsigns));
    }

    void aWordBecomesASession()
    {
        MessagesFixture fixture;
        fixture.model.setActiveChannel(u"CCA1"_qs);
        QCOMPARE(fixture.model.activeChannelTitle(), u"CCA1"_qs);
        QVERIFY(!fixture.model.activeChannelCanSend());
        fixture.told();
        fixture.model.addPrivateReceived(u"CCA1"_qs, u"hi"_qs);
        QCOMPARE(fixture.told(), u"messages stats channel active sessions compose sound private_in 2"_qs);
        QCOMPARE(fixture.model.activeChannelTitle(), u"私聊 CCA1"_qs);
        QVERIFY(fixture.model.activeChannelCanSend());
    }

    void composeTexts_data()
    {
        columns<bool, QString, QString, bool, QString>("connected", "channel", "title", "canSend", "placeholder");
        const auto add = [](const char *channel, const char *title, const char *placeholder) {
            const QString key = QString::fromLatin1(channel);
            const QString text = QString::fromUtf8(placeholder);
            const bool writable = text != u"当前频道只读"_qs;
            QTest::addRow("%s", channel) << true << key << QString::fromUtf8(title) << writable << text;
            QTest::addRow("%s, offline", channel)
                << false << key << QString::fromUtf8(title) << false << u"网络未连接"_qs;
        };
        add("SERVER", "服务器", "当前频道只读");
        add("RADIO", "无线电", "发送无线电文本消息...");
        add("PRIVATE", "私聊", "当前频道只读");
        add("CCA1", "私聊 CCA1", "发送私聊消息给 CCA1...");
        add("BROADCAST", "广播", "当前频道只读");
        add("WALLOP", "WALLOP", "发送 WALLOP 管理员报告...");
        add("SELCAL", "SELCAL", "当前频道只读");
        add("NOBODY", "NOBODY", "当前频道只读");
    }

    void composeTexts()
    {
        QFETCH(bool, connected);
        QFETCH(QString, channel);
        QFETCH(bool, canSend);
        MessagesFixture fixture;
        fixture.model.openPrivateSession(u"CCA1"_qs);
        fixture.model.setNetworkConnected(connected);
        fixture.model.setActiveChannel(channel);
        QTEST(fixture.model.activeChannelTitle(), "title");
        QTEST(fixture.model.composePlaceholder(), "placeholder");
        QCOMPARE(fixture.model.activeChannelCanSend(), canSend);
        const QSignalSpy asked(&fixture.model, &MessagesPageViewModel::atisRequested);
        fixture.model.requestAtis(u"ZSPD_TWR"_qs);
        QCOMPARE(asked.size(), connected ? 1 : 0);
        const QVariantList channels = fixture.model.channels();
        for (const QVariant &entry : channels)
            if (field(entry, "key") == channel)
                QCOMPARE(entry.toMap().value(u"canSend"_qs).toBool(), canSend);
    }

    void whatIsSetIsToldOnChange_data()
    {
        columns<Event, QString>("event", "told");
        QTest::newRow("network") << Event([](auto &m) { m.setNetworkConnected(false); }) << u"stats network compose"_qs;
        QTest::newRow("text") << Event([](auto &m) { m.setDraftMessage(u"a"_qs); }) << u"compose"_qs;
        QTest::newRow("target") << Event([](auto &m) { m.setDraftTarget(u"CCA1"_qs); }) << u"compose"_qs;
        QTest::newRow("filter") << Event([](auto &m) { m.setActiveFilter(u"RADIO"_qs); }) << u"messages"_qs;
    }

    void whatIsSetIsToldOnChange()
    {
        QFETCH(Event, event);
        MessagesFixture fixture;
        fixture.told();
        event(fixture.model);
        QTEST(fixture.told(), "told");
        event(fixture.model);
        QCOMPARE(fixture.told(), QString());
    }

    void sending_data()
    {
        columns<bool, QString, bool>("connected", "text", "sent");
        QTest::newRow("text") << true << u"hello"_qs << true;
        QTest::newRow("blanks around stay") << true << u" hello "_qs << true;
        QTest::newRow("offline") << false << u"hello"_qs << false;
        QTest::newRow("empty") << true << QString() << false;
        QTest::newRow("only blanks") << true << u" \t　"_qs << false;
    }

    void sending()
    {
        QFETCH(bool, connected);
        QFETCH(QString, text);
        QFETCH(bool, sent);
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.setNetworkConnected(connected);
        QSignalSpy privates(&model, &MessagesPageViewModel::privateMessageRequested);
        QSignalSpy radios(&model, &MessagesPageViewModel::radioMessageRequested);
        QSignalSpy wallops(&model, &MessagesPageViewModel::wallopRequested);
        const auto draft = [&] {
            model.setDraftTarget(u"CCA1"_qs);
            model.setDraftMessage(u"draft"_qs);
        };
        const QString left = sent ? QString() : u"draft"_qs;
        draft();
        model.sendPrivateMessage(u" cca1 "_qs, text);
        QCOMPARE(model.draftMessage(), left);
        draft();
        model.sendRadioMessage(text);
        QCOMPARE(model.draftMessage(), left);
        draft();
        model.sendWallopMessage(text);
        QCOMPARE(model.draftMessage(), left);
        using Calls = QList<QVariantList>;
        QCOMPARE(privates, sent ? Calls({{u"CCA1"_qs, text}}) : Calls());
        QCOMPARE(radios, sent ? Calls({{text}}) : Calls());
        QCOMPARE(wallops, sent ? Calls({{text}}) : Calls());
        QCOMPARE(model.messages(), QVariantList()); // only what is reported as sent is listed
    }

    void nobodyIsSentNothing()
    {
        MessagesFixture fixture;
        QSignalSpy privates(&fixture.model, &MessagesPageViewModel::privateMessageRequested);
        fixture.model.sendPrivateMessage(u"  "_qs, u"hello"_qs);
        QCOMPARE(privates.count(), 0);
    }

    void stations_data()
    {
        QTest::addColumn<tarvo::model::Controller>("told");
        QTest::addColumn<QString>("shown"); // callsign|type|frequency|name; empty: not listed
        const auto add = [](const char *name, const tarvo::model::Controller &told, const QString &shown) {
            QTest::newRow(name) << told << shown;
        };
        add("usual", station("zspd_twr", 118025, 118025), u"ZSPD_TWR|atc|118.025|"_qs);
        add("without its last digit", station("ZSPD_TWR", 118020, 118025), u"ZSPD_TWR|atc|118.025|"_qs);
        add("no frequency", station("ZSPD_TWR", 199998, 199998), QString());
        add("the largest", station("ZSPD_TWR", 4294967295U, 4294967295U), u"ZSPD_TWR|atc|4294967.295|"_qs);
        const QString longest(32, u'W');
        add("no callsign", station("", 118000, 118000), QString());
        add("the longest callsign", station(longest.toLatin1(), 118000, 118000), longest + u"|atc|118.000|"_qs);
        add("a longer one", station(longest.toLatin1() + 'W', 118000, 118000), QString());
        add("a callsign of a megabyte", station(QByteArray(1 << 20, 'W'), 118000, 118000), QString());
        const auto named = [&](const char *name, const QString &realName, const QString &shown) {
            tarvo::model::Controller told = station("A", 118000, 118000);
            told.realName = realName;
            add(name, told, u"A|atc|118.000|"_qs + shown);
        };
        named("name", u"Li Lei"_qs, u"Li Lei"_qs);
        named("not told", u"Unknown"_qs, QString());
        named("not told, blanks around it", u" Unknown "_qs, QString());
        named("nearly the same", u"Unknown Soldier"_qs, u"Unknown Soldier"_qs);
        named("several lines", u"Li\n\nLei "_qs, u"Li Lei"_qs);
        named("a name of a megabyte", QString(1 << 20, u'W'), QString(64, u'W'));
    }

    void stations()
    {
        QFETCH(tarvo::model::Controller, told);
        MessagesFixture fixture;
        fixture.model.setNearbyController(told);
        QStringList shown;
        const QVariantList rows = fixture.model.nearbyClients();
        for (const QVariant &row : rows)
            shown << field(row, "callsign") + u'|' + field(row, "type") + u'|' + field(row, "frequency") + u'|' +
                         field(row, "name");
        QTEST(shown.join(u'\n'), "shown");
    }

    void stationsComeMoveAndGo()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        fixture.told();
        model.setNearbyController(station("B_TWR", 118000, 118000));
        model.setNearbyController(station("A_TWR", 119000, 119000));
        QCOMPARE(fixture.told(), u"nearby nearby"_qs);
        QCOMPARE(column(model.nearbyClients(), "callsign"), u"A_TWR B_TWR"_qs);
        tarvo::model::Controller moved = station("B_TWR", 118000, 118000);
        moved.latitude = 31;
        model.setNearbyController(moved); // shows the same
        QCOMPARE(fixture.told(), QString());
        model.setNearbyController(station("B_TWR", 118500, 118500));
        QCOMPARE(fixture.told(), u"nearby"_qs);
        QCOMPARE(column(model.nearbyClients(), "frequency"), u"119.000 118.500"_qs);
        model.setNearbyController(station("B_TWR", 199998, 199998));
        QCOMPARE(column(model.nearbyClients(), "callsign"), u"A_TWR"_qs);
        fixture.told();
        model.removeNearbyController(u"B_TWR"_qs);
        QCOMPARE(fixture.told(), QString());
        model.removeNearbyController(u"a_twr"_qs);
        QCOMPARE(fixture.told(), u"nearby"_qs);
        model.clearNearby();
        QCOMPARE(fixture.told(), QString());
        model.setNearbyController(station("B_TWR", 118000, 118000));
        model.clearNearby();
        QCOMPARE(fixture.told(), u"nearby nearby"_qs);
        QCOMPARE(model.nearbyClients(), QVariantList());
    }

    void aFloodOfStationsIsBounded()
    {
        MessagesFixture fixture;
        for (int i = 0; i < tarvo::ui::StationList::maximumStations + 10; ++i)
            fixture.model.setNearbyController(station(QByteArray::number(i), 118000, 118000));
        QCOMPARE(fixture.model.nearbyClients().size(), tarvo::ui::StationList::maximumStations);
        fixture.model.setNearbyController(station("0", 119000, 119000)); // one that is listed still changes
        QCOMPARE(field(fixture.model.nearbyClients().first(), "frequency"), u"119.000"_qs);
    }

private:
    static tarvo::model::Controller station(const QByteArray &callsign, quint32 frequency, quint32 normalised)
    {
        tarvo::model::Controller controller;
        controller.callsign = QString::fromLatin1(callsign);
        controller.frequency = frequency;
        controller.normalisedFrequency = normalised;
        return controller;
    }
};

TARVO_TEST(MessagesSessionsTest)
#include "MessagesSessionsTest.moc"

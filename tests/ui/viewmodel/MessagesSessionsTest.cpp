#include "MessagesFixture.h"
#include "model/Controller.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using tarvo::test::MessagesFixture;
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
        model.addPrivateReceived(QStringLiteral("cca1"), QStringLiteral("hi"));
        QCOMPARE(MessagesFixture::column(model.channels(), "key"),
                 QStringLiteral("SERVER RADIO PRIVATE CCA1 BROADCAST WALLOP SELCAL"));
        const QVariant entry = model.channels().at(3);
        QCOMPARE(MessagesFixture::field(entry, "label"), QStringLiteral("私聊 CCA1"));
        QCOMPARE(MessagesFixture::field(entry, "fixed"), QStringLiteral("false"));
        QCOMPARE(MessagesFixture::field(entry, "unread"), QStringLiteral("1"));
        const QVariantMap session = model.privateSessions().first().toMap();
        QCOMPARE(session.size(), 4);
        QCOMPARE(session.value(QStringLiteral("lastMessage")).toString(), QStringLiteral("hi"));
        QCOMPARE(session.value(QStringLiteral("lastTime")), fixture.last().value(QStringLiteral("time")));
        model.closePrivateSession(QStringLiteral("CCA1"));
        QCOMPARE(MessagesFixture::column(model.channels(), "key"),
                 QStringLiteral("SERVER RADIO PRIVATE BROADCAST WALLOP SELCAL"));
        QCOMPARE(model.messages().size(), 1);
        QCOMPARE(model.unreadCount(), 0);
    }

    void whatWasSentOpensAndUpdatesTheSession()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.addPrivateSent(QStringLiteral("cca1"), QStringLiteral("hello"));
        QCOMPARE(MessagesFixture::column(model.privateSessions(), "callsign"), QStringLiteral("CCA1"));
        QCOMPARE(MessagesFixture::column(model.privateSessions(), "lastMessage"), QStringLiteral("hello"));
        QCOMPARE(MessagesFixture::column(model.privateSessions(), "unread"), QStringLiteral("0"));
        fixture.clock.advance(61'000);
        model.addPrivateSent(QStringLiteral("CCA1"), QStringLiteral("again"));
        const QVariantMap session = model.privateSessions().first().toMap();
        QCOMPARE(model.privateSessions().size(), 1);
        QCOMPARE(session.value(QStringLiteral("lastMessage")).toString(), QStringLiteral("again"));
        QCOMPARE(session.value(QStringLiteral("lastTime")), fixture.last().value(QStringLiteral("time")));
        QCOMPARE(model.activeChannel(), QStringLiteral("RADIO"));
    }

    void openingMakesItActive()
    {
        MessagesFixture fixture;
        fixture.told();
        fixture.model.openPrivateSession(QStringLiteral(" zspd_twr "));
        QCOMPARE(fixture.model.activeChannel(), QStringLiteral("ZSPD_TWR"));
        QCOMPARE(fixture.told(), QStringLiteral("stats channel active sessions unread compose"));
        QCOMPARE(MessagesFixture::column(fixture.model.privateSessions(), "lastTime"), QString());
        fixture.model.openPrivateSession(QStringLiteral("ZSPD_TWR")); // once more
        QCOMPARE(fixture.told(), QStringLiteral("channel active unread compose"));
        fixture.model.setActiveChannel(QStringLiteral("RADIO"));
        fixture.model.addPrivateReceived(QStringLiteral("ZSPD_TWR"), QStringLiteral("hi"));
        fixture.told();
        fixture.model.openPrivateSession(QStringLiteral("ZSPD_TWR"));
        QCOMPARE(fixture.told(), QStringLiteral("messages stats channel active sessions unread compose"));
        QCOMPARE(fixture.model.unreadCount(), 0);
        fixture.model.addPrivateReceived(QStringLiteral("ZSPD_TWR"), QStringLiteral("there"));
        QCOMPARE(fixture.told(), QStringLiteral("messages stats active sessions sound private_in 2"));
    }

    void callsignsThatOpenNothing_data()
    {
        QTest::addColumn<QString>("callsign");
        QTest::newRow("empty") << QString();
        QTest::newRow("blanks") << QStringLiteral("  ");
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
        fixture.model.addPrivateReceived(callsign, QStringLiteral("hi"));
        QCOMPARE(MessagesFixture::field(fixture.last(), "channel"), QStringLiteral("PRIVATE"));
        QCOMPARE(fixture.model.privateSessions(), QVariantList());
        fixture.model.setActiveChannel(QStringLiteral("PRIVATE"));
        QCOMPARE(fixture.model.unreadCount(), 0);
    }

    void replies_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("target"); // empty: ignored
        QTest::newRow("callsign") << QStringLiteral("CCA1") << QStringLiteral("CCA1");
        QTest::newRow("lower case, blanks") << QStringLiteral(" cca1\t") << QStringLiteral("CCA1");
        QTest::newRow("server") << QStringLiteral("服务器") << QString();
        QTest::newRow("system") << QStringLiteral(" 系统 ") << QString();
        QTest::newRow("nobody") << QString() << QString();
    }

    void replies()
    {
        QFETCH(QString, from);
        QFETCH(QString, target);
        MessagesFixture fixture;
        fixture.model.setDraftMessage(QStringLiteral("half a word"));
        fixture.told();
        fixture.model.prepareReply(from);
        QCOMPARE(fixture.model.draftTarget(), target);
        QCOMPARE(fixture.model.draftMessage(), QStringLiteral("half a word"));
        QCOMPARE(fixture.model.activeChannel(), target.isEmpty() ? QStringLiteral("RADIO") : target);
        QCOMPARE(fixture.told(),
                 target.isEmpty() ? QString() : QStringLiteral("stats channel active sessions unread compose"));
    }

    void closingTheActiveOneGoesBackToTheRadio()
    {
        MessagesFixture fixture;
        fixture.model.openPrivateSession(QStringLiteral("CCA1"));
        fixture.model.addRadioReceived(MessagesFixture::radio(QString()));
        QCOMPARE(fixture.model.unreadCount(), 1);
        fixture.told();
        fixture.model.closePrivateSession(QStringLiteral(" cca1 "));
        QCOMPARE(fixture.model.activeChannel(), QStringLiteral("RADIO"));
        QCOMPARE(fixture.model.unreadCount(), 0);
        QCOMPARE(fixture.told(), QStringLiteral("messages stats channel active sessions unread compose"));
    }

    void whatWasWrittenToSomebodyGoesWithTheSession()
    {
        MessagesFixture fixture;
        fixture.model.prepareReply(QStringLiteral("CCA1"));
        fixture.model.setDraftMessage(QStringLiteral("between us"));
        fixture.model.closePrivateSession(QStringLiteral("CCA1"));
        QCOMPARE(fixture.model.activeChannel(), QStringLiteral("RADIO"));
        QCOMPARE(fixture.model.draftMessage(), QString()); // one Enter, and all would have heard it
        QCOMPARE(fixture.model.draftTarget(), QString());
    }

    void closingAnotherOneStays()
    {
        MessagesFixture fixture;
        fixture.model.openPrivateSession(QStringLiteral("CCA1"));
        fixture.model.setDraftMessage(QStringLiteral("half a word"));
        fixture.model.addPrivateReceived(QStringLiteral("CCA2"), QString());
        fixture.told();
        fixture.model.closePrivateSession(QStringLiteral("CCA2"));
        QCOMPARE(fixture.model.activeChannel(), QStringLiteral("CCA1"));
        QCOMPARE(fixture.told(), QStringLiteral("messages stats sessions unread"));
        QCOMPARE(fixture.model.draftMessage(), QStringLiteral("half a word"));
        fixture.model.closePrivateSession(QStringLiteral("CCA2"));
        fixture.model.closePrivateSession(QStringLiteral("RADIO"));
        QCOMPARE(fixture.told(), QString());
    }

    void aClosedSessionComesBackWithItsMessages()
    {
        MessagesFixture fixture;
        fixture.model.addPrivateReceived(QStringLiteral("CCA1"), QStringLiteral("one"));
        fixture.model.closePrivateSession(QStringLiteral("CCA1"));
        fixture.model.addPrivateReceived(QStringLiteral("CCA1"), QStringLiteral("two"));
        QCOMPARE(fixture.model.unreadForChannel(QStringLiteral("CCA1")), 1);
        QCOMPARE(fixture.model.messagesForChannel(QStringLiteral("CCA1")).size(), 2);
    }

    void aFloodOfSendersIsBounded()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.openPrivateSession(QStringLiteral("FRIEND"));
        model.addPrivateReceived(QStringLiteral("QUIET"), QStringLiteral("hi"));
        model.addPrivateReceived(QStringLiteral("LIVELY"), QStringLiteral("hi"));
        for (int i = 0; i < PrivateSessions::maximumSessions - 3; ++i)
            model.addPrivateReceived(QStringLiteral("P%1").arg(i), QStringLiteral("buy"));
        QCOMPARE(model.privateSessions().size(), PrivateSessions::maximumSessions);
        model.addPrivateReceived(QStringLiteral("LIVELY"), QStringLiteral("hi again"));
        model.addPrivateReceived(QStringLiteral("ONE_MORE"), QStringLiteral("buy"));
        const QString callsigns = MessagesFixture::column(model.privateSessions(), "callsign");
        QVERIFY(callsigns.startsWith(QStringLiteral("FRIEND LIVELY P0 "))); // the active one stays, however quiet
        QVERIFY(callsigns.endsWith(QStringLiteral(" ONE_MORE")));
        QCOMPARE(model.privateSessions().size(), PrivateSessions::maximumSessions);
        QCOMPARE(model.messagesForChannel(QStringLiteral("QUIET")).size(), 1); // its message stays, as read
        QCOMPARE(model.unreadForChannel(QStringLiteral("QUIET")), 0);
        for (int i = 0; i < 5000; ++i)
            model.addPrivateReceived(QStringLiteral("F%1").arg(i), QStringLiteral("buy"));
        QCOMPARE(model.privateSessions().size(), PrivateSessions::maximumSessions);
        QCOMPARE(model.unreadCount(), PrivateSessions::maximumSessions - 1);
        QCOMPARE(model.activeChannel(), QStringLiteral("FRIEND"));
    }

    void aWordBecomesASession()
    {
        MessagesFixture fixture;
        fixture.model.setActiveChannel(QStringLiteral("CCA1"));
        QCOMPARE(fixture.model.activeChannelTitle(), QStringLiteral("CCA1"));
        QVERIFY(!fixture.model.activeChannelCanSend());
        fixture.told();
        fixture.model.addPrivateReceived(QStringLiteral("CCA1"), QStringLiteral("hi"));
        QCOMPARE(fixture.told(), QStringLiteral("messages stats channel active sessions compose sound private_in 2"));
        QCOMPARE(fixture.model.activeChannelTitle(), QStringLiteral("私聊 CCA1"));
        QVERIFY(fixture.model.activeChannelCanSend());
    }

    void composeTexts_data()
    {
        QTest::addColumn<bool>("connected");
        QTest::addColumn<QString>("channel");
        QTest::addColumn<QString>("title");
        QTest::addColumn<bool>("canSend");
        QTest::addColumn<QString>("placeholder");
        const auto add = [](const char *channel, const char *title, const char *placeholder) {
            const QString key = QString::fromLatin1(channel);
            const QString text = QString::fromUtf8(placeholder);
            const bool writable = text != QStringLiteral("当前频道只读");
            QTest::addRow("%s", channel) << true << key << QString::fromUtf8(title) << writable << text;
            QTest::addRow("%s, offline", channel)
                << false << key << QString::fromUtf8(title) << false << QStringLiteral("网络未连接");
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
        fixture.model.openPrivateSession(QStringLiteral("CCA1"));
        fixture.model.setNetworkConnected(connected);
        fixture.model.setActiveChannel(channel);
        QTEST(fixture.model.activeChannelTitle(), "title");
        QTEST(fixture.model.composePlaceholder(), "placeholder");
        QCOMPARE(fixture.model.activeChannelCanSend(), canSend);
        const QVariantList channels = fixture.model.channels();
        for (const QVariant &entry : channels)
            if (MessagesFixture::field(entry, "key") == channel)
                QCOMPARE(entry.toMap().value(QStringLiteral("canSend")).toBool(), canSend);
    }

    void theNetworkIsToldOnChange()
    {
        MessagesFixture fixture;
        fixture.told();
        fixture.model.setNetworkConnected(false);
        QCOMPARE(fixture.told(), QStringLiteral("stats network compose"));
        fixture.model.setNetworkConnected(false);
        QCOMPARE(fixture.told(), QString());
    }

    void theDraftIsToldOnChange()
    {
        MessagesFixture fixture;
        fixture.told();
        fixture.model.setDraftMessage(QStringLiteral("a"));
        fixture.model.setDraftTarget(QStringLiteral("CCA1"));
        QCOMPARE(fixture.told(), QStringLiteral("compose compose"));
        fixture.model.setDraftMessage(QStringLiteral("a"));
        fixture.model.setDraftTarget(QStringLiteral("CCA1"));
        QCOMPARE(fixture.told(), QString());
    }

    void sending_data()
    {
        QTest::addColumn<bool>("connected");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("sent");
        QTest::newRow("text") << true << QStringLiteral("hello") << true;
        QTest::newRow("blanks around stay") << true << QStringLiteral(" hello ") << true;
        QTest::newRow("offline") << false << QStringLiteral("hello") << false;
        QTest::newRow("empty") << true << QString() << false;
        QTest::newRow("only blanks") << true << QStringLiteral(" \t　") << false;
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
            model.setDraftTarget(QStringLiteral("CCA1"));
            model.setDraftMessage(QStringLiteral("draft"));
        };
        const QString left = sent ? QString() : QStringLiteral("draft");
        draft();
        model.sendPrivateMessage(QStringLiteral(" cca1 "), text);
        QCOMPARE(model.draftMessage(), left);
        draft();
        model.sendRadioMessage(text);
        QCOMPARE(model.draftMessage(), left);
        draft();
        model.sendWallopMessage(text);
        QCOMPARE(model.draftMessage(), left);
        using Calls = QList<QVariantList>;
        QCOMPARE(privates, sent ? Calls({{QStringLiteral("CCA1"), text}}) : Calls());
        QCOMPARE(radios, sent ? Calls({{text}}) : Calls());
        QCOMPARE(wallops, sent ? Calls({{text}}) : Calls());
        QCOMPARE(model.messages(), QVariantList()); // only what is reported as sent is listed
    }

    void nobodyIsSentNothing()
    {
        MessagesFixture fixture;
        QSignalSpy privates(&fixture.model, &MessagesPageViewModel::privateMessageRequested);
        fixture.model.sendPrivateMessage(QStringLiteral("  "), QStringLiteral("hello"));
        QCOMPARE(privates.count(), 0);
    }

    void stations_data()
    {
        QTest::addColumn<quint32>("frequency");
        QTest::addColumn<quint32>("normalised");
        QTest::addColumn<QString>("shown"); // empty: not listed
        QTest::newRow("usual") << quint32(118025) << quint32(118025) << QStringLiteral("118.025");
        QTest::newRow("reported without its last digit")
            << quint32(118020) << quint32(118025) << QStringLiteral("118.025");
        QTest::newRow("no frequency") << quint32(199998) << quint32(199998) << QString();
        QTest::newRow("the largest") << quint32(4294967295U) << quint32(4294967295U) << QStringLiteral("4294967.295");
    }

    void stations()
    {
        QFETCH(quint32, frequency);
        QFETCH(quint32, normalised);
        QFETCH(QString, shown);
        MessagesFixture fixture;
        fixture.model.setNearbyController(station("zspd_twr", frequency, normalised));
        QVariantList rows;
        if (!shown.isEmpty())
            rows << QVariantMap{{QStringLiteral("callsign"), QStringLiteral("ZSPD_TWR")},
                                {QStringLiteral("type"), QStringLiteral("atc")},
                                {QStringLiteral("frequency"), shown},
                                {QStringLiteral("name"), QString()}};
        QCOMPARE(fixture.model.nearbyClients(), rows);
    }

    void stationsNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shown");
        QTest::newRow("usual") << QStringLiteral("Li Lei") << QStringLiteral("Li Lei");
        QTest::newRow("not told") << QStringLiteral("Unknown") << QString();
        QTest::newRow("not told, blanks around it") << QStringLiteral(" Unknown ") << QString();
        QTest::newRow("nearly the same") << QStringLiteral("Unknown Soldier") << QStringLiteral("Unknown Soldier");
        QTest::newRow("several lines") << QStringLiteral("Li\n\nLei ") << QStringLiteral("Li Lei");
        QTest::newRow("a megabyte") << QString(1 << 20, u'W') << QString(64, u'W');
    }

    void stationsNames()
    {
        QFETCH(QString, name);
        MessagesFixture fixture;
        tarvo::model::Controller tower = station("ZSPD_TWR", 118000, 118000);
        tower.realName = name;
        fixture.model.setNearbyController(tower);
        QCOMPARE(fixture.model.nearbyClients().size(), 1);
        QTEST(MessagesFixture::field(fixture.model.nearbyClients().first(), "name"), "shown");
    }

    void whatIsNoCallsignIsNotListed()
    {
        MessagesFixture fixture;
        fixture.model.setNearbyController(station("", 118000, 118000));
        fixture.model.setNearbyController(station(QByteArray(1 << 20, 'W').constData(), 118000, 118000));
        QCOMPARE(fixture.model.nearbyClients(), QVariantList());
        fixture.model.setNearbyController(station(QByteArray(32, 'W').constData(), 118000, 118000));
        QCOMPARE(fixture.model.nearbyClients().size(), 1);
    }

    void stationsComeMoveAndGo()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        fixture.told();
        model.setNearbyController(station("B_TWR", 118000, 118000));
        model.setNearbyController(station("A_TWR", 119000, 119000));
        QCOMPARE(fixture.told(), QStringLiteral("nearby nearby"));
        QCOMPARE(MessagesFixture::column(model.nearbyClients(), "callsign"), QStringLiteral("A_TWR B_TWR"));
        tarvo::model::Controller moved = station("B_TWR", 118000, 118000);
        moved.latitude = 31;
        model.setNearbyController(moved); // shows the same
        QCOMPARE(fixture.told(), QString());
        model.setNearbyController(station("B_TWR", 118500, 118500));
        QCOMPARE(fixture.told(), QStringLiteral("nearby"));
        QCOMPARE(MessagesFixture::column(model.nearbyClients(), "frequency"), QStringLiteral("119.000 118.500"));
        model.setNearbyController(station("B_TWR", 199998, 199998));
        QCOMPARE(MessagesFixture::column(model.nearbyClients(), "callsign"), QStringLiteral("A_TWR"));
        fixture.told();
        model.removeNearbyController(QStringLiteral("B_TWR"));
        QCOMPARE(fixture.told(), QString());
        model.removeNearbyController(QStringLiteral("a_twr"));
        QCOMPARE(fixture.told(), QStringLiteral("nearby"));
        model.clearNearby();
        QCOMPARE(fixture.told(), QString());
        model.setNearbyController(station("B_TWR", 118000, 118000));
        model.clearNearby();
        QCOMPARE(fixture.told(), QStringLiteral("nearby nearby"));
        QCOMPARE(model.nearbyClients(), QVariantList());
    }

    void aFloodOfStationsIsBounded()
    {
        MessagesFixture fixture;
        for (int i = 0; i < tarvo::ui::StationList::maximumStations + 10; ++i)
            fixture.model.setNearbyController(station(QByteArray::number(i).constData(), 118000, 118000));
        QCOMPARE(fixture.model.nearbyClients().size(), tarvo::ui::StationList::maximumStations);
        fixture.model.setNearbyController(station("0", 119000, 119000)); // one that is listed still changes
        QCOMPARE(MessagesFixture::field(fixture.model.nearbyClients().first(), "frequency"), QStringLiteral("119.000"));
    }

private:
    static tarvo::model::Controller station(const char *callsign, quint32 frequency, quint32 normalised)
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

#include "MessagesFixture.h"
#include "support/TestRegistry.h"

#include <QDateTime>
#include <QObject>
#include <QTest>

using namespace tarvo::test;
using tarvo::ui::MessagesPageViewModel;

/// The list of messages: what each event makes, the bound, the counts.
class MessagesPageViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void theChannelsThatAlwaysStand()
    {
        const MessagesPageViewModel model;
        QCOMPARE(column(model.channels(), "key"), u"SERVER RADIO PRIVATE BROADCAST WALLOP SELCAL"_qs);
        QCOMPARE(column(model.channels(), "label"), u"服务器 无线电 私聊 广播 WALLOP SELCAL"_qs);
        QCOMPARE(column(model.channels(), "fixed"), u"true true true true true true"_qs);
    }

    void eachEventMakesItsMessage_data()
    {
        QTest::addColumn<Event>("event");
        QTest::addColumn<QString>("row");   // type|channel|from|to|message|meta|frequencies
        QTest::addColumn<QString>("state"); // direction|label|direct|priority|unread
        QTest::addColumn<QString>("told");
        const QString text = u"text"_qs;
        const auto add = [](const char *name, const Event &event, const char *row, const char *state,
                            const char *told) {
            QTest::newRow(name) << event << QString::fromUtf8(row) << QString::fromUtf8(state)
                                << u"messages stats "_qs + QString::fromLatin1(told);
        };
        const auto radio = [&](const char *name, const tarvo::network::RadioMessageReceived &args, const char *row,
                               bool direct) {
            add(
                name, [=](auto &m) { m.addRadioReceived(args); }, row,
                direct ? "in|收到|true|2|false" : "in|收到|false|1|false",
                direct ? "active sound radio_in 2" : "active sound radio_in 1");
        };
        add(
            "private received", [=](auto &m) { m.addPrivateReceived(u" cca1 "_qs, text); },
            "private_in|CCA1|CCA1|CES2352|text||", "in|收到|false|2|true", "sessions unread sound private_in 2");
        add(
            "private sent", [=](auto &m) { m.addPrivateSent(u"cca1"_qs, text); },
            "private_out|CCA1|CES2352|CCA1|text||", "out|已发送|false|1|false", "sessions");
        radio("radio received", heardText(text, false, {118025, 121500}),
              "radio_in|RADIO|CCA1|118.025, 121.500|text|118.025, 121.500|118.025, 121.500", false);
        radio("radio addressed to the pilot", heardText(text, true),
              "radio_in|RADIO|CCA1|118.025|text|118.025 | 定向呼叫|118.025", true);
        radio("radio without frequencies", heardText(text, false, {}), "radio_in|RADIO|CCA1||text||", false);
        radio("replacement codes stay", heardText(u"%1 %2"_qs), "radio_in|RADIO|CCA1|118.025|%1 %2|118.025|118.025",
              false);
        add(
            "radio sent", [=](auto &m) { m.addRadioSent(text, {122800}); }, "radio_out|RADIO|CES2352||text||122.800",
            "out|已发送|false|1|false", "active");
        add(
            "server", [=](auto &m) { m.addServerMessage(text); }, "server|SERVER|服务器||text||",
            "in|收到|false|1|true", "unread sound server 1");
        add(
            "broadcast", [=](auto &m) { m.addBroadcast(u"sup1"_qs, text); },
            "broadcast|BROADCAST|SUP1|全体|text|全网广播|", "in|收到|false|1|true", "unread sound broadcast 1");
        add(
            "wallop sent", [=](auto &m) { m.addWallopSent(text); }, "wallop_out|WALLOP|CES2352||text|管理员报告|",
            "out|已发送|false|1|false", "");
        add(
            "selcal", [=](auto &m) { m.addSelcal(u"zbaa_ctr"_qs, {8867}); },
            "selcal|SELCAL|ZBAA_CTR|||收到 SELCAL 呼叫|8.867", "in|收到|false|2|true", "unread sound selcal 2");
        add(
            "a selcal on many frequencies", [=](auto &m) { m.addSelcal(u"X"_qs, QList<uint>(2000, 8867)); },
            "selcal|SELCAL|X|||收到 SELCAL 呼叫|8.867, 8.867, 8.867, 8.867, 8.867, 8.867, 8.867, 8.867",
            "in|收到|false|2|true", "unread sound selcal 2");
        add(
            "system note", [=](auto &m) { m.addSystemNote(text); }, "system|SERVER|系统||text||",
            "system|系统|false|1|false", "");
    }

    void eachEventMakesItsMessage()
    {
        QFETCH(Event, event);
        QFETCH(QString, told);
        MessagesFixture fixture;
        fixture.told();
        event(fixture.model);
        QCOMPARE(fixture.told(), told.trimmed());
        QCOMPARE(fixture.model.messages().size(), 1);
        const auto joined = [&](const char *keys) {
            QStringList values;
            for (const QString &key : QString::fromLatin1(keys).split(u' '))
                values << fixture.last().value(key).toString();
            return values.join(u'|');
        };
        QTEST(joined("type channel from to message meta frequencies"), "row");
        QTEST(joined("direction directionLabel isDirect priority unread"), "state");
    }

    void aMessageHasNumberAndTime()
    {
        MessagesFixture fixture;
        fixture.model.addServerMessage(u"a"_qs);
        fixture.clock.advance(61'000);
        fixture.model.addServerMessage(u"b"_qs);
        const QVariantMap row = fixture.last();
        QCOMPARE(row.size(), 15);
        QCOMPARE(row.value(u"id"_qs).toLongLong(), 2);
        QCOMPARE(row.value(u"timestamp"_qs).toLongLong(), fixture.clock.wallMs());
        QCOMPARE(row.value(u"time"_qs).toString(),
                 QDateTime::fromMSecsSinceEpoch(fixture.clock.wallMs()).toString(u"hh:mm:ss"_qs));
        fixture.model.clearMessages();
        fixture.model.addServerMessage(u"c"_qs);
        QCOMPARE(fixture.last().value(u"id"_qs).toLongLong(), 3); // never used again
    }

    void theOldestGoesBeyond300()
    {
        MessagesFixture fixture;
        for (int i = 0; i < 300; ++i)
            fixture.model.addServerMessage(QString::number(i));
        QCOMPARE(fixture.model.messages().size(), 300);
        QCOMPARE(fixture.model.unreadCount(), 300);
        fixture.told();
        fixture.model.addServerMessage(u"300"_qs);
        QCOMPARE(fixture.model.messages().size(), 300);
        QCOMPARE(field(fixture.model.messages().first(), "message"), u"1"_qs);
        QCOMPARE(fixture.model.unreadCount(), 300);
        QCOMPARE(fixture.told(), u"messages sound server 1"_qs); // one for the like: no count has moved
    }

    void anUnreadOneThatGoesIsCountedNoMore()
    {
        MessagesFixture fixture;
        fixture.model.addPrivateReceived(u"CCA1"_qs, u"a"_qs);
        fixture.model.addPrivateReceived(u"CCA1"_qs, u"b"_qs);
        for (int i = 0; i < 298; ++i)
            fixture.model.addRadioSent(u"x"_qs, {});
        QCOMPARE(fixture.model.unreadCount(), 2);
        fixture.told();
        fixture.model.addRadioSent(u"x"_qs, {});
        QCOMPARE(fixture.told(), u"messages stats active sessions unread"_qs);
        QCOMPARE(fixture.model.unreadCount(), 1);
        QCOMPARE(fixture.model.unreadForChannel(u"CCA1"_qs), 1);
        fixture.model.addRadioSent(u"x"_qs, {});
        fixture.model.addRadioSent(u"x"_qs, {});
        QCOMPARE(fixture.model.unreadCount(), 0);
        QCOMPARE(column(fixture.model.privateSessions(), "unread"), u"0"_qs);
        fixture.model.setActiveChannel(u"CCA1"_qs);
        QCOMPARE(fixture.model.unreadCount(), 0);
    }

    void anActiveMessageThatGoesIsTold()
    {
        MessagesFixture fixture;
        fixture.model.addRadioSent(u"x"_qs, {});
        for (int i = 0; i < 299; ++i)
            fixture.model.addWallopSent(u"x"_qs);
        fixture.told();
        fixture.model.addWallopSent(u"x"_qs);
        QCOMPARE(fixture.told(), u"messages stats active"_qs);
        QCOMPARE(fixture.model.activeMessages(), QVariantList());
    }

    void summaryCountsByKind()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.addPrivateReceived(u"A"_qs, QString());
        model.addPrivateSent(u"A"_qs, QString());
        model.addRadioReceived(heardText(QString()));
        model.addRadioSent(QString(), {});
        model.addRadioSent(QString(), {});
        model.addServerMessage(QString());
        model.addSystemNote(QString());
        model.addSystemNote(QString());
        model.addBroadcast(u"S"_qs, QString());
        model.addWallopSent(QString());
        model.addSelcal(u"Z"_qs, {});
        QCOMPARE(model.summaryText(), u"11 条消息 | 私聊 2 | 无线电 3 | 服务 4 | 告警 2"_qs);
        model.clearMessages();
        QCOMPARE(model.summaryText(), u"暂无消息"_qs);
    }

    void summaryForgetsWhatHasGone()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.addPrivateSent(u"A"_qs, QString());
        model.addRadioSent(QString(), {});
        model.addSystemNote(QString());
        model.addWallopSent(QString());
        for (int i = 0; i < 296; ++i)
            model.addRadioSent(QString(), {});
        QCOMPARE(model.summaryText(), u"300 条消息 | 私聊 1 | 无线电 297 | 服务 1 | 告警 1"_qs);
        model.addWallopSent(QString());
        QCOMPARE(model.summaryText(), u"300 条消息 | 私聊 0 | 无线电 297 | 服务 1 | 告警 2"_qs);
        for (int i = 0; i < 3; ++i)
            model.addWallopSent(QString());
        QCOMPARE(model.summaryText(), u"300 条消息 | 私聊 0 | 无线电 296 | 服务 0 | 告警 4"_qs);
    }

    void channelsCompareExactly_data()
    {
        QTest::addColumn<QString>("channel");
        QTest::addColumn<QString>("types");
        QTest::addColumn<int>("unread");
        QTest::newRow("all") << u"ALL"_qs
                             << u"server system radio_in radio_out private_in private_out broadcast "_qs
                                "wallop_out selcal"
                             << 4;
        QTest::newRow("server") << u"SERVER"_qs << u"server system"_qs << 1;
        QTest::newRow("radio") << u"RADIO"_qs << u"radio_in radio_out"_qs << 0;
        QTest::newRow("a session") << u"CCA1"_qs << u"private_in private_out"_qs << 1;
        QTest::newRow("another case") << u"cca1"_qs << QString() << 0;
        QTest::newRow("overview") << u"PRIVATE"_qs << QString() << 0;
        QTest::newRow("COM1") << u"COM1"_qs << QString() << 0;
        QTest::newRow("COM2") << u"COM2"_qs << QString() << 0;
        QTest::newRow("broadcast") << u"BROADCAST"_qs << u"broadcast"_qs << 1;
        QTest::newRow("wallop") << u"WALLOP"_qs << u"wallop_out"_qs << 0;
        QTest::newRow("selcal") << u"SELCAL"_qs << u"selcal"_qs << 1;
        QTest::newRow("unknown") << u"X"_qs << QString() << 0;
        QTest::newRow("empty") << QString() << QString() << 0;
    }

    void channelsCompareExactly()
    {
        QFETCH(QString, channel);
        QFETCH(QString, types);
        QFETCH(int, unread);
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.addServerMessage(QString());
        model.addSystemNote(QString());
        model.addRadioReceived(heardText(QString()));
        model.addRadioSent(QString(), {});
        model.addPrivateReceived(u"CCA1"_qs, QString());
        model.addPrivateSent(u"CCA1"_qs, QString());
        model.addBroadcast(u"S"_qs, QString());
        model.addWallopSent(QString());
        model.addSelcal(u"Z"_qs, {});
        QCOMPARE(column(model.messagesForChannel(channel), "type"), types);
        QCOMPARE(model.unreadForChannel(channel), unread);
        model.setActiveFilter(channel);
        QCOMPARE(column(model.filteredMessages(), "type"), types);
    }

    void enteringAChannelReadsIt()
    {
        MessagesFixture fixture;
        fixture.model.addServerMessage(QString());
        fixture.model.addBroadcast(u"S"_qs, QString());
        fixture.told();
        fixture.model.setActiveChannel(u"SERVER"_qs);
        QCOMPARE(fixture.told(), u"messages stats channel active unread compose"_qs);
        QCOMPARE(fixture.model.unreadCount(), 1);
        QCOMPARE(column(fixture.model.activeMessages(), "unread"), u"false"_qs);
        QCOMPARE(column(fixture.model.channels(), "active"), u"true false false false false false"_qs);
        QCOMPARE(column(fixture.model.channels(), "unread"), u"0 0 0 1 0 0"_qs);
        fixture.model.setActiveChannel(u"SERVER"_qs); // once more
        QCOMPARE(fixture.told(), u"channel active unread compose"_qs);
        fixture.model.addServerMessage(QString()); // on the active channel: never unread
        QCOMPARE(fixture.model.unreadCount(), 1);
        QCOMPARE(fixture.told(), u"messages stats active sound server 1"_qs);
        fixture.model.setActiveChannel(u"WALLOP"_qs);
        QCOMPARE(fixture.told(), u"stats channel active unread compose"_qs);
    }

    void theWordForEverythingIsNoChannel()
    {
        MessagesFixture fixture;
        fixture.model.addServerMessage(QString());
        fixture.model.setActiveChannel(u"ALL"_qs);
        QCOMPARE(fixture.model.unreadCount(), 1); // no message's channel has that name
        fixture.told();
        fixture.model.addRadioReceived(heardText(QString()));
        QCOMPARE(fixture.told(), u"messages stats active unread sound radio_in 1"_qs);
        QCOMPARE(column(fixture.model.activeMessages(), "type"), u"server radio_in"_qs);
        QCOMPARE(fixture.model.unreadCount(), 2);
        fixture.model.setActiveChannel(u"RADIO"_qs);
        QCOMPARE(fixture.model.unreadCount(), 1);
    }

    void clearingEmptiesTheListAndKeepsTheSessions()
    {
        MessagesFixture fixture;
        fixture.model.addPrivateReceived(u"CCA1"_qs, u"hi"_qs);
        fixture.told();
        fixture.model.clearMessages();
        QCOMPARE(fixture.told(), u"messages stats sessions unread"_qs);
        QCOMPARE(fixture.model.messages(), QVariantList());
        QCOMPARE(fixture.model.unreadCount(), 0);
        QCOMPARE(column(fixture.model.privateSessions(), "callsign"), u"CCA1"_qs);
        QCOMPARE(column(fixture.model.privateSessions(), "unread"), u"0"_qs);
        fixture.model.clearMessages();
        QCOMPARE(fixture.told(), QString());
        fixture.model.addRadioSent(QString(), {});
        fixture.told();
        fixture.model.clearMessages();
        QCOMPARE(fixture.told(), u"messages stats active"_qs);
    }

    void aLongBodyIsKeptWhole()
    {
        MessagesFixture fixture;
        const QString body = QString(10'001, u'W') + u'\n' + QString(QChar(0x202E));
        fixture.model.addPrivateReceived(u"CCA1"_qs, body);
        QCOMPARE(fixture.last().value(u"message"_qs).toString(), body);
        QCOMPARE(column(fixture.model.privateSessions(), "lastMessage"), body);
    }

    void aMegabyteIsCut_data()
    {
        QTest::addColumn<Event>("event");
        const QString endless(1 << 20, u'W');
        const auto add = [](const char *name, const Event &event) { QTest::newRow(name) << event; };
        for (const QString &other : {endless, u"CCA1"_qs}) {
            const bool somebody = other != endless;
            add(somebody ? "private in" : "private in, endless",
                [=](auto &m) { m.addPrivateReceived(other, endless); });
            add(somebody ? "private out" : "private out, endless", [=](auto &m) { m.addPrivateSent(other, endless); });
        }
        tarvo::network::RadioMessageReceived heard = heardText(endless);
        heard.from = endless;
        add("radio received", [=](auto &m) { m.addRadioReceived(heard); });
        add("radio sent", [=](auto &m) { m.addRadioSent(endless, {}); });
        add("server", [=](auto &m) { m.addServerMessage(endless); });
        add("broadcast", [=](auto &m) { m.addBroadcast(endless, endless); });
        add("wallop sent", [=](auto &m) { m.addWallopSent(endless); });
        add("selcal", [=](auto &m) { m.addSelcal(endless, {}); });
        add("system note", [=](auto &m) { m.addSystemNote(endless); });
    }

    void aMegabyteIsCut()
    {
        QFETCH(Event, event);
        MessagesFixture fixture;
        event(fixture.model);
        QCOMPARE(fixture.model.messages().size(), 1);
        const QVariantMap row = fixture.last();
        const qsizetype body = row.value(u"message"_qs).toString().size();
        QVERIFY(body == 16384 || row.value(u"type"_qs) == u"selcal"_qs);
        for (const char *key : {"channel", "from", "to"})
            QVERIFY(row.value(QLatin1String(key)).toString().size() <= 33);
        const QVariantList sessions = fixture.model.privateSessions();
        for (const QVariant &session : sessions) {
            QCOMPARE(field(session, "callsign"), u"CCA1"_qs);
            QCOMPARE(field(session, "lastMessage").size(), 16384);
        }
    }

    void whoIsCutCannotBeAnswered()
    {
        MessagesFixture fixture;
        const QString longest(32, u'W');
        fixture.model.addPrivateReceived(longest, QString());
        QCOMPARE(field(fixture.last(), "channel"), longest);
        fixture.model.addPrivateReceived(longest + u'W', QString()); // not the same one
        QCOMPARE(field(fixture.last(), "channel"), u"PRIVATE"_qs);
        QCOMPARE(field(fixture.last(), "from"), longest + u'…');
        fixture.model.prepareReply(longest + u'…');
        QCOMPARE(fixture.model.activeChannel(), u"RADIO"_qs);
        QCOMPARE(column(fixture.model.privateSessions(), "callsign"), longest);
    }

    void aListenerMayComeBack()
    {
        MessagesFixture fixture;
        connect(&fixture.model, &MessagesPageViewModel::messagesChanged, &fixture.model, [&] {
            if (fixture.model.messages().size() == 1)
                fixture.model.clearMessages();
        });
        fixture.model.addServerMessage(QString());
        QCOMPARE(fixture.model.messages(), QVariantList());
        QCOMPARE(fixture.model.unreadCount(), 0);
        fixture.model.addSelcal(u"Z"_qs, {});
        QCOMPARE(fixture.model.unreadCount(), 0);
    }
};

TARVO_TEST(MessagesPageViewModelTest)
#include "MessagesPageViewModelTest.moc"

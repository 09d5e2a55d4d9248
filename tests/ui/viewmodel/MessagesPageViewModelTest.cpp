#include "MessagesFixture.h"
#include "support/TestRegistry.h"

#include <QDateTime>
#include <QMetaMethod>
#include <QObject>
#include <QTest>

#include <functional>

using tarvo::test::MessagesFixture;
using tarvo::ui::MessagesPageViewModel;

namespace {
using Event = std::function<void(MessagesPageViewModel &)>;
}
Q_DECLARE_METATYPE(Event)

/// The list of messages: what each event makes, the bound, the counts.
class MessagesPageViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void startState()
    {
        MessagesPageViewModel model;
        QCOMPARE(model.messages(), QVariantList());
        QCOMPARE(model.activeChannel(), QStringLiteral("RADIO"));
        QCOMPARE(model.activeFilter(), QStringLiteral("ALL"));
        QCOMPARE(model.summaryText(), QStringLiteral("暂无消息"));
        QCOMPARE(model.unreadCount(), 0);
        QVERIFY(!model.networkConnected());
        QVERIFY(!model.activeChannelCanSend());
        QCOMPARE(model.privateSessions(), QVariantList());
        QCOMPARE(model.nearbyClients(), QVariantList());
        QCOMPARE(MessagesFixture::column(model.channels(), "key"),
                 QStringLiteral("SERVER RADIO PRIVATE BROADCAST WALLOP SELCAL"));
        QCOMPARE(MessagesFixture::column(model.channels(), "label"),
                 QStringLiteral("服务器 无线电 私聊 广播 WALLOP SELCAL"));
        QCOMPARE(MessagesFixture::column(model.channels(), "fixed"), QStringLiteral("true true true true true true"));
    }

    void signalsStandInTheirOrder()
    {
        const QMetaObject &meta = MessagesPageViewModel::staticMetaObject;
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            if (meta.method(i).methodType() == QMetaMethod::Signal)
                names << QString::fromLatin1(meta.method(i).methodSignature());
        QCOMPARE(
            names.join(u' '),
            QStringLiteral("messagesChanged() channelStatsChanged() activeChannelChanged() activeMessagesChanged() "
                           "sessionsChanged() unreadChanged() networkStateChanged() nearbyClientsChanged() "
                           "composeChanged() messageSoundRequested(QString,int) "
                           "privateMessageRequested(QString,QString) radioMessageRequested(QString) "
                           "wallopRequested(QString)"));
    }

    void eachEventMakesItsMessage_data()
    {
        QTest::addColumn<Event>("event");
        QTest::addColumn<QString>("row");   // type|channel|from|to|message|meta|frequencies
        QTest::addColumn<QString>("state"); // direction|label|direct|priority|unread
        const QString text = QStringLiteral("text");
        const auto add = [](const char *name, const Event &event, const char *row, const char *state) {
            QTest::newRow(name) << event << QString::fromUtf8(row) << QString::fromUtf8(state);
        };
        add(
            "private received", [=](auto &model) { model.addPrivateReceived(QStringLiteral(" cca1 "), text); },
            "private_in|CCA1|CCA1|CES2352|text||", "in|收到|false|2|true");
        add(
            "private sent", [=](auto &model) { model.addPrivateSent(QStringLiteral("cca1"), text); },
            "private_out|CCA1|CES2352|CCA1|text||", "out|已发送|false|1|false");
        add(
            "radio received",
            [=](auto &model) {
                model.addRadioReceived(MessagesFixture::radio(text, false, {118025, 121500}));
            },
            "radio_in|RADIO|CCA1|118.025, 121.500|text|118.025, 121.500|118.025, 121.500", "in|收到|false|1|false");
        add(
            "radio addressed to the pilot",
            [=](auto &model) { model.addRadioReceived(MessagesFixture::radio(text, true)); },
            "radio_in|RADIO|CCA1|118.025|text|118.025 | 定向呼叫|118.025", "in|收到|true|2|false");
        add(
            "radio without frequencies",
            [=](auto &model) { model.addRadioReceived(MessagesFixture::radio(text, false, {})); },
            "radio_in|RADIO|CCA1||text||", "in|收到|false|1|false");
        add(
            "radio sent", [=](auto &model) { model.addRadioSent(text, {122800}); },
            "radio_out|RADIO|CES2352||text||122.800", "out|已发送|false|1|false");
        add(
            "server", [=](auto &model) { model.addServerMessage(text); }, "server|SERVER|服务器||text||",
            "in|收到|false|1|true");
        add(
            "broadcast", [=](auto &model) { model.addBroadcast(QStringLiteral("sup1"), text); },
            "broadcast|BROADCAST|SUP1|全体|text|全网广播|", "in|收到|false|1|true");
        add(
            "wallop sent", [=](auto &model) { model.addWallopSent(text); },
            "wallop_out|WALLOP|CES2352||text|管理员报告|", "out|已发送|false|1|false");
        add(
            "selcal", [=](auto &model) { model.addSelcal(QStringLiteral("zbaa_ctr"), {8867}); },
            "selcal|SELCAL|ZBAA_CTR|||收到 SELCAL 呼叫|8.867", "in|收到|false|2|true");
        add(
            "system note", [=](auto &model) { model.addSystemNote(text); }, "system|SERVER|系统||text||",
            "system|系统|false|1|false");
        add(
            "replacement codes stay",
            [](auto &model) { model.addRadioReceived(MessagesFixture::radio(QStringLiteral("%1 %2"))); },
            "radio_in|RADIO|CCA1|118.025|%1 %2|118.025|118.025", "in|收到|false|1|false");
    }

    void eachEventMakesItsMessage()
    {
        QFETCH(Event, event);
        QFETCH(QString, row);
        QFETCH(QString, state);
        MessagesFixture fixture;
        event(fixture.model);
        QCOMPARE(fixture.model.messages().size(), 1);
        const auto joined = [&](const QStringList &keys) {
            QStringList values;
            for (const QString &key : keys)
                values << fixture.last().value(key).toString();
            return values.join(u'|');
        };
        QCOMPARE(
            joined({QStringLiteral("type"), QStringLiteral("channel"), QStringLiteral("from"), QStringLiteral("to"),
                    QStringLiteral("message"), QStringLiteral("meta"), QStringLiteral("frequencies")}),
            row);
        QCOMPARE(joined({QStringLiteral("direction"), QStringLiteral("directionLabel"), QStringLiteral("isDirect"),
                         QStringLiteral("priority"), QStringLiteral("unread")}),
                 state);
    }

    void aMessageHasNumberAndTime()
    {
        MessagesFixture fixture;
        fixture.model.addServerMessage(QStringLiteral("a"));
        fixture.clock.advance(61'000);
        fixture.model.addServerMessage(QStringLiteral("b"));
        const QVariantMap row = fixture.last();
        QCOMPARE(row.size(), 15);
        QCOMPARE(row.value(QStringLiteral("id")).toLongLong(), 2);
        QCOMPARE(row.value(QStringLiteral("timestamp")).toLongLong(), fixture.clock.wallMs());
        QCOMPARE(row.value(QStringLiteral("time")).toString(),
                 QDateTime::fromMSecsSinceEpoch(fixture.clock.wallMs()).toString(QStringLiteral("hh:mm:ss")));
        fixture.model.clearMessages();
        fixture.model.addServerMessage(QStringLiteral("c"));
        QCOMPARE(fixture.last().value(QStringLiteral("id")).toLongLong(), 3); // never used again
    }

    void whatAnEventTells_data()
    {
        QTest::addColumn<Event>("event");
        QTest::addColumn<QString>("told");
        const QString text = QStringLiteral("text");
        QTest::newRow("radio, on the active channel")
            << Event([=](auto &model) { model.addRadioReceived(MessagesFixture::radio(text)); })
            << QStringLiteral("messages stats active sound radio_in 1");
        QTest::newRow("addressed radio") << Event([=](auto &model) {
            model.addRadioReceived(MessagesFixture::radio(text, true));
        }) << QStringLiteral("messages stats active sound radio_in 2");
        QTest::newRow("radio sent") << Event([=](auto &model) { model.addRadioSent(text, {}); })
                                    << QStringLiteral("messages stats active");
        QTest::newRow("private received")
            << Event([=](auto &model) { model.addPrivateReceived(QStringLiteral("CCA1"), text); })
            << QStringLiteral("messages stats sessions unread sound private_in 2");
        QTest::newRow("private sent") << Event([=](auto &model) { model.addPrivateSent(QStringLiteral("CCA1"), text); })
                                      << QStringLiteral("messages stats sessions");
        QTest::newRow("server") << Event([=](auto &model) { model.addServerMessage(text); })
                                << QStringLiteral("messages stats unread sound server 1");
        QTest::newRow("broadcast") << Event([=](auto &model) { model.addBroadcast(QStringLiteral("SUP"), text); })
                                   << QStringLiteral("messages stats unread sound broadcast 1");
        QTest::newRow("wallop sent") << Event([=](auto &model) { model.addWallopSent(text); })
                                     << QStringLiteral("messages stats");
        QTest::newRow("selcal") << Event([=](auto &model) { model.addSelcal(QStringLiteral("X"), {}); })
                                << QStringLiteral("messages stats unread sound selcal 2");
        QTest::newRow("system note") << Event([=](auto &model) { model.addSystemNote(text); })
                                     << QStringLiteral("messages stats");
    }

    void whatAnEventTells()
    {
        QFETCH(Event, event);
        QFETCH(QString, told);
        MessagesFixture fixture;
        fixture.told();
        event(fixture.model);
        QCOMPARE(fixture.told(), told);
    }

    void theOldestGoesBeyond300()
    {
        MessagesFixture fixture;
        for (int i = 0; i < 300; ++i)
            fixture.model.addServerMessage(QString::number(i));
        QCOMPARE(fixture.model.messages().size(), 300);
        QCOMPARE(fixture.model.unreadCount(), 300);
        fixture.told();
        fixture.model.addServerMessage(QStringLiteral("300"));
        QCOMPARE(fixture.model.messages().size(), 300);
        QCOMPARE(MessagesFixture::field(fixture.model.messages().first(), "message"), QStringLiteral("1"));
        QCOMPARE(fixture.model.unreadCount(), 300);
        QCOMPARE(fixture.told(), QStringLiteral("messages sound server 1")); // one for the like: no count has moved
    }

    void anUnreadOneThatGoesIsCountedNoMore()
    {
        MessagesFixture fixture;
        fixture.model.addPrivateReceived(QStringLiteral("CCA1"), QStringLiteral("a"));
        fixture.model.addPrivateReceived(QStringLiteral("CCA1"), QStringLiteral("b"));
        for (int i = 0; i < 298; ++i)
            fixture.model.addRadioSent(QStringLiteral("x"), {});
        QCOMPARE(fixture.model.unreadCount(), 2);
        fixture.told();
        fixture.model.addRadioSent(QStringLiteral("x"), {});
        QCOMPARE(fixture.told(), QStringLiteral("messages stats active sessions unread"));
        QCOMPARE(fixture.model.unreadCount(), 1);
        QCOMPARE(fixture.model.unreadForChannel(QStringLiteral("CCA1")), 1);
        fixture.model.addRadioSent(QStringLiteral("x"), {});
        fixture.model.addRadioSent(QStringLiteral("x"), {});
        QCOMPARE(fixture.model.unreadCount(), 0);
        QCOMPARE(MessagesFixture::column(fixture.model.privateSessions(), "unread"), QStringLiteral("0"));
        fixture.model.setActiveChannel(QStringLiteral("CCA1"));
        QCOMPARE(fixture.model.unreadCount(), 0);
    }

    void anActiveMessageThatGoesIsTold()
    {
        MessagesFixture fixture;
        fixture.model.addRadioSent(QStringLiteral("x"), {});
        for (int i = 0; i < 299; ++i)
            fixture.model.addWallopSent(QStringLiteral("x"));
        fixture.told();
        fixture.model.addWallopSent(QStringLiteral("x"));
        QCOMPARE(fixture.told(), QStringLiteral("messages stats active"));
        QCOMPARE(fixture.model.activeMessages(), QVariantList());
    }

    void summaryCountsByKind()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.addPrivateReceived(QStringLiteral("A"), QString());
        model.addPrivateSent(QStringLiteral("A"), QString());
        model.addRadioReceived(MessagesFixture::radio(QString()));
        model.addRadioSent(QString(), {});
        model.addRadioSent(QString(), {});
        model.addServerMessage(QString());
        model.addSystemNote(QString());
        model.addSystemNote(QString());
        model.addBroadcast(QStringLiteral("S"), QString());
        model.addWallopSent(QString());
        model.addSelcal(QStringLiteral("Z"), {});
        QCOMPARE(model.summaryText(), QStringLiteral("11 条消息 | 私聊 2 | 无线电 3 | 服务 4 | 告警 2"));
        model.clearMessages();
        QCOMPARE(model.summaryText(), QStringLiteral("暂无消息"));
    }

    void summaryForgetsWhatHasGone()
    {
        MessagesFixture fixture;
        MessagesPageViewModel &model = fixture.model;
        model.addPrivateSent(QStringLiteral("A"), QString());
        model.addRadioSent(QString(), {});
        model.addSystemNote(QString());
        model.addWallopSent(QString());
        for (int i = 0; i < 296; ++i)
            model.addRadioSent(QString(), {});
        QCOMPARE(model.summaryText(), QStringLiteral("300 条消息 | 私聊 1 | 无线电 297 | 服务 1 | 告警 1"));
        model.addWallopSent(QString());
        QCOMPARE(model.summaryText(), QStringLiteral("300 条消息 | 私聊 0 | 无线电 297 | 服务 1 | 告警 2"));
        for (int i = 0; i < 3; ++i)
            model.addWallopSent(QString());
        QCOMPARE(model.summaryText(), QStringLiteral("300 条消息 | 私聊 0 | 无线电 296 | 服务 0 | 告警 4"));
    }

    void channelsCompareExactly_data()
    {
        QTest::addColumn<QString>("channel");
        QTest::addColumn<QString>("types");
        QTest::addColumn<int>("unread");
        QTest::newRow("all") << QStringLiteral("ALL")
                             << QStringLiteral("server system radio_in radio_out private_in private_out broadcast "
                                               "wallop_out selcal")
                             << 4;
        QTest::newRow("server") << QStringLiteral("SERVER") << QStringLiteral("server system") << 1;
        QTest::newRow("radio") << QStringLiteral("RADIO") << QStringLiteral("radio_in radio_out") << 0;
        QTest::newRow("a session") << QStringLiteral("CCA1") << QStringLiteral("private_in private_out") << 1;
        QTest::newRow("another case") << QStringLiteral("cca1") << QString() << 0;
        QTest::newRow("overview") << QStringLiteral("PRIVATE") << QString() << 0;
        QTest::newRow("COM1") << QStringLiteral("COM1") << QString() << 0;
        QTest::newRow("COM2") << QStringLiteral("COM2") << QString() << 0;
        QTest::newRow("broadcast") << QStringLiteral("BROADCAST") << QStringLiteral("broadcast") << 1;
        QTest::newRow("wallop") << QStringLiteral("WALLOP") << QStringLiteral("wallop_out") << 0;
        QTest::newRow("selcal") << QStringLiteral("SELCAL") << QStringLiteral("selcal") << 1;
        QTest::newRow("unknown") << QStringLiteral("X") << QString() << 0;
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
        model.addRadioReceived(MessagesFixture::radio(QString()));
        model.addRadioSent(QString(), {});
        model.addPrivateReceived(QStringLiteral("CCA1"), QString());
        model.addPrivateSent(QStringLiteral("CCA1"), QString());
        model.addBroadcast(QStringLiteral("S"), QString());
        model.addWallopSent(QString());
        model.addSelcal(QStringLiteral("Z"), {});
        QCOMPARE(MessagesFixture::column(model.messagesForChannel(channel), "type"), types);
        QCOMPARE(model.unreadForChannel(channel), unread);
        model.setActiveFilter(channel);
        QCOMPARE(MessagesFixture::column(model.filteredMessages(), "type"), types);
    }

    void theFilterIsToldOnChange()
    {
        MessagesFixture fixture;
        fixture.told();
        fixture.model.setActiveFilter(QStringLiteral("RADIO"));
        QCOMPARE(fixture.told(), QStringLiteral("messages"));
        fixture.model.setActiveFilter(QStringLiteral("RADIO"));
        QCOMPARE(fixture.told(), QString());
    }

    void enteringAChannelReadsIt()
    {
        MessagesFixture fixture;
        fixture.model.addServerMessage(QString());
        fixture.model.addBroadcast(QStringLiteral("S"), QString());
        fixture.told();
        fixture.model.setActiveChannel(QStringLiteral("SERVER"));
        QCOMPARE(fixture.told(), QStringLiteral("messages stats channel active unread compose"));
        QCOMPARE(fixture.model.unreadCount(), 1);
        QCOMPARE(MessagesFixture::column(fixture.model.activeMessages(), "unread"), QStringLiteral("false"));
        QCOMPARE(MessagesFixture::column(fixture.model.channels(), "active"),
                 QStringLiteral("true false false false false false"));
        QCOMPARE(MessagesFixture::column(fixture.model.channels(), "unread"), QStringLiteral("0 0 0 1 0 0"));
        fixture.model.setActiveChannel(QStringLiteral("SERVER")); // once more
        QCOMPARE(fixture.told(), QStringLiteral("channel active unread compose"));
        fixture.model.addServerMessage(QString()); // on the active channel: never unread
        QCOMPARE(fixture.model.unreadCount(), 1);
        QCOMPARE(fixture.told(), QStringLiteral("messages stats active sound server 1"));
        fixture.model.setActiveChannel(QStringLiteral("WALLOP"));
        QCOMPARE(fixture.told(), QStringLiteral("stats channel active unread compose"));
    }

    void theWordForEverythingIsNoChannel()
    {
        MessagesFixture fixture;
        fixture.model.addServerMessage(QString());
        fixture.model.setActiveChannel(QStringLiteral("ALL"));
        QCOMPARE(fixture.model.unreadCount(), 1); // no message's channel has that name
        fixture.told();
        fixture.model.addRadioReceived(MessagesFixture::radio(QString()));
        QCOMPARE(fixture.told(), QStringLiteral("messages stats active unread sound radio_in 1"));
        QCOMPARE(MessagesFixture::column(fixture.model.activeMessages(), "type"), QStringLiteral("server radio_in"));
        QCOMPARE(fixture.model.unreadCount(), 2);
        fixture.model.setActiveChannel(QStringLiteral("RADIO"));
        QCOMPARE(fixture.model.unreadCount(), 1);
    }

    void clearingEmptiesTheListAndKeepsTheSessions()
    {
        MessagesFixture fixture;
        fixture.model.addPrivateReceived(QStringLiteral("CCA1"), QStringLiteral("hi"));
        fixture.told();
        fixture.model.clearMessages();
        QCOMPARE(fixture.told(), QStringLiteral("messages stats sessions unread"));
        QCOMPARE(fixture.model.messages(), QVariantList());
        QCOMPARE(fixture.model.unreadCount(), 0);
        QCOMPARE(MessagesFixture::column(fixture.model.privateSessions(), "callsign"), QStringLiteral("CCA1"));
        QCOMPARE(MessagesFixture::column(fixture.model.privateSessions(), "unread"), QStringLiteral("0"));
        fixture.model.clearMessages();
        QCOMPARE(fixture.told(), QString());
        fixture.model.addRadioSent(QString(), {});
        fixture.told();
        fixture.model.clearMessages();
        QCOMPARE(fixture.told(), QStringLiteral("messages stats active"));
    }

    void aLongBodyIsKeptWhole()
    {
        MessagesFixture fixture;
        const QString body = QString(10'001, u'W') + u'\n' + QString(QChar(0x202E));
        fixture.model.addPrivateReceived(QStringLiteral("CCA1"), body);
        QCOMPARE(fixture.last().value(QStringLiteral("message")).toString(), body);
        QCOMPARE(MessagesFixture::column(fixture.model.privateSessions(), "lastMessage"), body);
    }

    void aMegabyteIsCut_data()
    {
        QTest::addColumn<Event>("event");
        const QString endless(1 << 20, u'W');
        const auto add = [](const char *name, const Event &event) { QTest::newRow(name) << event; };
        add("private received", [=](auto &model) { model.addPrivateReceived(endless, endless); });
        add("private received from somebody",
            [=](auto &model) { model.addPrivateReceived(QStringLiteral("CCA1"), endless); });
        add("private sent", [=](auto &model) { model.addPrivateSent(endless, endless); });
        add("private sent to somebody", [=](auto &model) { model.addPrivateSent(QStringLiteral("CCA1"), endless); });
        add("radio received", [=](auto &model) {
            model.addRadioReceived(
                {.from = endless, .message = endless, .frequencies = {}, .direct = false, .dualReceive = false});
        });
        add("radio sent", [=](auto &model) { model.addRadioSent(endless, {}); });
        add("server", [=](auto &model) { model.addServerMessage(endless); });
        add("broadcast", [=](auto &model) { model.addBroadcast(endless, endless); });
        add("wallop sent", [=](auto &model) { model.addWallopSent(endless); });
        add("selcal", [=](auto &model) { model.addSelcal(endless, {}); });
        add("system note", [=](auto &model) { model.addSystemNote(endless); });
    }

    void aMegabyteIsCut()
    {
        QFETCH(Event, event);
        MessagesFixture fixture;
        event(fixture.model);
        QCOMPARE(fixture.model.messages().size(), 1);
        const QVariantMap row = fixture.last();
        const qsizetype body = row.value(QStringLiteral("message")).toString().size();
        QVERIFY(body == 16384 || row.value(QStringLiteral("type")) == QStringLiteral("selcal"));
        for (const char *key : {"channel", "from", "to"})
            QVERIFY(row.value(QLatin1String(key)).toString().size() <= 33);
        const QVariantList sessions = fixture.model.privateSessions();
        for (const QVariant &session : sessions) {
            QCOMPARE(MessagesFixture::field(session, "callsign"), QStringLiteral("CCA1"));
            QCOMPARE(MessagesFixture::field(session, "lastMessage").size(), 16384);
        }
    }

    void whoIsCutCannotBeAnswered()
    {
        MessagesFixture fixture;
        const QString longest(32, u'W');
        fixture.model.addPrivateReceived(longest, QString());
        QCOMPARE(MessagesFixture::field(fixture.last(), "channel"), longest);
        fixture.model.addPrivateReceived(longest + u'W', QString()); // not the same one
        QCOMPARE(MessagesFixture::field(fixture.last(), "channel"), QStringLiteral("PRIVATE"));
        QCOMPARE(MessagesFixture::field(fixture.last(), "from"), longest + u'…');
        fixture.model.prepareReply(longest + u'…');
        QCOMPARE(fixture.model.activeChannel(), QStringLiteral("RADIO"));
        QCOMPARE(MessagesFixture::column(fixture.model.privateSessions(), "callsign"), longest);
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
        fixture.model.addSelcal(QStringLiteral("Z"), {});
        QCOMPARE(fixture.model.unreadCount(), 0);
    }
};

TARVO_TEST(MessagesPageViewModelTest)
#include "MessagesPageViewModelTest.moc"

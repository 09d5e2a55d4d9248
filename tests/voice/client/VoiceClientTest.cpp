#include "SessionStage.h"

#include "support/LogCapture.h"
#include "support/TestRegistry.h"
#include "voice/engine/InputAudioStream.h"
#include "voice/engine/LoudPacket.h"
#include "voice/engine/VoiceCapture.h"

#include <QTest>

#include <chrono>
#include <functional>
#include <future>

using namespace tarvo;
using namespace tarvo::test;
using voice::ConnectionState;
using voice::VoiceClient;

namespace {

QByteArray channelLine(const QByteArray &data, int id)
{
    return R"({"callsign":"CCA1234","cid":1001,"data":")" + data + R"(","transmitter":)" + QByteArray::number(id) +
           R"(,"type":"channel"})";
}

ServiceEndpoints nobody()
{
    ServiceEndpoints endpoints;
    endpoints.voiceHost = u"not..a.name"_qs;
    return endpoints;
}

const QString noSuchServer = u"error: Failed to resolve server address not..a.name"_qs;

} // namespace

/// How a session begins and ends.
class VoiceClientTest : public QObject
{
    Q_OBJECT

private slots:
    void aSession()
    {
        const LogCapture log;
        SessionStage stage;
        stage.client->setCid(1001);
        QVERIFY(stage.connectToServer());
        QCOMPARE(stage.events, (QStringList{u"Connecting"_qs, u"Connected"_qs}));
        QVERIFY(!stage.client->isReady());
        stage.greet();
        QVERIFY(stage.waitForState(ConnectionState::Ready));
        QCOMPARE(stage.events.mid(2), (QStringList{u"audio"_qs, u"Ready"_qs}));
        QVERIFY(stage.client->isReady());
        QCOMPARE(stage.client->callsign(), std::string("CCA1234"));
        QCOMPARE(log.startingWith(u"VoiceClient:"_qs), QStringList{u"VoiceClient: identity verified, ready"_qs});
        stage.client->disconnectFromServer();
        QCOMPARE(stage.events.mid(4), QStringList{u"Disconnected"_qs});
        QCOMPARE(stage.peer.untilClosed(),
                 QByteArray(R"({"callsign":"","cid":1001,"data":"","transmitter":0,"type":"disconnect"})"
                            "\n"));
        QVERIFY(!log.contains(u"payload"_qs)); // of the token
    }

    void readyNeedsANumberAndAName_data()
    {
        QTest::addColumn<quint32>("cid");
        QTest::addColumn<QByteArray>("greeting");
        QTest::addColumn<QByteArray>("callsign");
        QTest::addColumn<bool>("ready");
        QTest::newRow("both") << 1001U << QByteArray("SERVER:CCA1234:Welcome") << QByteArray("CCA1234") << true;
        QTest::newRow("no number") << 0U << QByteArray("SERVER:CCA1234:Welcome") << QByteArray("CCA1234") << false;
        QTest::newRow("no name") << 1001U << QByteArray("SERVER::Welcome") << QByteArray() << false;
        QTest::newRow("no second colon") << 1001U << QByteArray("SERVER:Welcome") << QByteArray("Welcome") << true;
        QTest::newRow("the word within another")
            << 1001U << QByteArray("SERVER:A:UnWelcomed") << QByteArray("A") << true;
        QTest::newRow("blanks and small letters stay")
            << 1001U << QByteArray("SERVER: ab :Welcome") << QByteArray(" ab ") << true;
        QTest::newRow("too long for a packet")
            << 1001U << "SERVER:" + QByteArray(300, 'A') + ":Welcome" << QByteArray(254, 'A') << true;
    }
    void readyNeedsANumberAndAName()
    {
        QFETCH(quint32, cid);
        QFETCH(QByteArray, greeting);
        QFETCH(QByteArray, callsign);
        QFETCH(bool, ready);
        SessionStage stage;
        stage.client->setCid(cid);
        QVERIFY(stage.connectToServer());
        stage.say("message", greeting);
        QVERIFY(stage.waitForState(ConnectionState::Ready));
        QCOMPARE(QByteArray::fromStdString(stage.client->callsign()), callsign);
        QCOMPARE(stage.client->isReady(), ready);
        stage.client->updateTransmitter(com1);
        stage.client->sendMessage(u"a"_qs, u"b"_qs);
        if (ready)
            QVERIFY(stage.peer.nextLine().contains("118500:1"));
        else
            QVERIFY(stage.hasSaidNothing());
    }

    void otherMessagesAreNoGreeting_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("no prefix") << QByteArray("message") << QByteArray("Welcome");
        QTest::newRow("another case of the prefix") << QByteArray("message") << QByteArray("Server:A:Welcome");
        QTest::newRow("another case of the word") << QByteArray("message") << QByteArray("SERVER:A:welcome");
        QTest::newRow("no word") << QByteArray("message") << QByteArray("SERVER:A:Hello");
        QTest::newRow("empty") << QByteArray("message") << QByteArray();
        QTest::newRow("of another type") << QByteArray("text_receive") << QByteArray("SERVER:A:Welcome");
    }
    void otherMessagesAreNoGreeting()
    {
        QFETCH(QByteArray, type);
        QFETCH(QByteArray, data);
        const LogCapture log;
        SessionStage stage;
        QVERIFY(stage.connectToServer());
        stage.say(type, data);
        stage.say("error", "end");
        TRY_COMPARE(stage.events.last(), u"error: end"_qs);
        QCOMPARE(stage.client->state(), ConnectionState::Connected);
        QVERIFY(stage.client->callsign().empty());
        QCOMPARE(log.startingWith(u"VoiceClient:"_qs), QStringList{u"VoiceClient: server error: end"_qs});
    }

    void whatTheServerSaysByTheWay_data()
    {
        QTest::addColumn<QByteArray>("type");
        QTest::addColumn<QStringList>("events");
        QTest::addColumn<QStringList>("logged");
        QTest::newRow("pong") << QByteArray("pong") << QStringList() << QStringList{u"VoiceClient: pong received"_qs};
        QTest::newRow("error") << QByteArray("error") << QStringList{u"error: text"_qs}
                               << QStringList{u"VoiceClient: server error: text"_qs};
        for (const char *word : {"channel", "ping", "text_receive", "voice_receive", "message"})
            QTest::newRow(word) << QByteArray(word) << QStringList() << QStringList();
    }
    void whatTheServerSaysByTheWay()
    {
        QFETCH(QByteArray, type);
        QFETCH(QStringList, events);
        QFETCH(QStringList, logged);
        SessionStage stage;
        QVERIFY(stage.makeReady());
        const LogCapture log;
        stage.say(type, "text");
        stage.say("error", "end");
        TRY_VERIFY(stage.events.contains(u"error: end"_qs));
        QCOMPARE(stage.events, events + QStringList{u"error: end"_qs});
        QCOMPARE(log.startingWith(u"VoiceClient:"_qs), logged + QStringList{u"VoiceClient: server error: end"_qs});
        QVERIFY(stage.client->isReady());
    }

    void theServerSaysGoodbye_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("its word") << QByteArray(R"({"type":"disconnect"})");
        QTest::newRow("an unknown word") << QByteArray(R"({"type":"nonsense"})");
        QTest::newRow("no word") << QByteArray("{}");
    }
    void theServerSaysGoodbye()
    {
        QFETCH(QByteArray, line);
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.client->updateTransmitter(com1);
        QVERIFY(!stage.peer.nextLine().isNull());
        stage.events.clear();
        stage.peer.inject(line);
        TRY_COMPARE(stage.events, QStringList{u"Disconnected"_qs});
        QVERIFY(stage.peer.isClientConnected()); // the socket is the server's to close
        stage.hear("ZBAA_TWR", 118500);          // on a radio that is forgotten
        stage.say("error", "end");
        TRY_COMPARE(stage.events.last(), u"error: end"_qs);
        stage.peer.closeConnection();
        TRY_VERIFY(!stage.peer.isClientConnected());
        QCOMPARE(stage.events, (QStringList{u"Disconnected"_qs, u"error: end"_qs}));
    }

    void aSecondGoodbyeEndsNoTest()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.say("disconnect");
        QVERIFY(stage.waitForState(ConnectionState::Disconnected));
        voice::AudioHandler &audio = *stage.client->audioHandler();
        audio.startMicTest(false);
        Headphone headphone(stage);
        stage.say("disconnect");
        stage.say("error", "end");
        TRY_COMPARE(stage.events.last(), u"error: end"_qs);
        audio.inputStream().deliver({.volume = {}, .opus = loudPacket()});
        QVERIFY(headphone.sounds());
    }

    /// In one segment: the streams have no time to start.
    void aGoodbyeRightBehindTheGreeting()
    {
        SessionStage stage;
        stage.client->setCid(1001);
        QVERIFY(stage.connectToServer());
        stage.peer.injectBytes(R"({"type":"message","data":"SERVER:A:Welcome"})"
                               "\n"
                               R"({"type":"disconnect"})"
                               "\n");
        QVERIFY(stage.waitForState(ConnectionState::Disconnected));
        stage.say("error", "end");
        TRY_COMPARE(stage.events.last(), u"error: end"_qs);
        QVERIFY(!stage.events.contains(u"Ready"_qs));
    }

    void aLossIsNoDisconnect()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.client->updateTransmitter(com1);
        stage.peer.closeConnection();
        QVERIFY(stage.waitForState(ConnectionState::Disconnected));
        QVERIFY(stage.makeReady()); // the radios are remembered
        stage.hear("ZBAA_TWR", 118500);
        TRY_COMPARE(stage.events, QStringList{u"ZBAA_TWR on 118500"_qs});
    }

    void aFailedAttemptLeavesTheStateAndIsFollowedByAnother()
    {
        SessionStage stage{nobody()};
        stage.client->connectToServer(voiceToken);
        TRY_COMPARE(stage.events, (QStringList{u"Connecting"_qs, noSuchServer}));
        QCOMPARE(stage.client->state(), ConnectionState::Connecting);
        stage.client->connectToServer(voiceToken);
        TRY_COMPARE(stage.events, (QStringList{u"Connecting"_qs, noSuchServer, noSuchServer}));
    }

    void streamsOfAnEarlierConnectionMakeNoneReady()
    {
        SessionStage stage;
        stage.client->setCid(1001);
        std::promise<void> release;
        stage.client->soundThread()->post([hang = release.get_future().share()] { hang.wait(); });
        QVERIFY(stage.connectToServer());
        stage.greet();
        TRY_VERIFY(stage.events.contains(u"audio"_qs));
        stage.client->disconnectFromServer();
        QVERIFY(stage.connectToServer());
        release.set_value();
        QVERIFY(stage.client->soundThread()->waitUntilIdle(std::chrono::milliseconds(patienceMs)));
        QCoreApplication::processEvents();
        QCOMPARE(stage.client->state(), ConnectionState::Connected);
    }

    /// Not from within the error alone.
    void anotherAttemptMayBeginInTheErrorsSlot()
    {
        SessionStage stage{nobody()};
        connect(
            stage.client.get(), &VoiceClient::errorOccurred, this, [&] { stage.client->connectToServer(voiceToken); },
            Qt::SingleShotConnection);
        stage.client->connectToServer(voiceToken);
        TRY_COMPARE(stage.events, (QStringList{u"Connecting"_qs, noSuchServer, noSuchServer}));
    }

    void connectingTenTimesIsOneAttempt()
    {
        SessionStage stage;
        for (int i = 0; i < 10; ++i)
            stage.client->connectToServer(voiceToken);
        QVERIFY(stage.waitForState(ConnectionState::Connected));
        QVERIFY(stage.peer.waitForConnection());
        stage.say("error", "end");
        TRY_COMPARE(stage.events, (QStringList{u"Connecting"_qs, u"Connected"_qs, u"error: end"_qs}));
        QCOMPARE(stage.peer.connectionCount(), 1);
    }

    void connectingAndDisconnectingTenTimes()
    {
        SessionStage stage;
        for (int i = 0; i < 10; ++i) {
            stage.client->connectToServer(voiceToken);
            stage.client->disconnectFromServer();
        }
        QCOMPARE(stage.events.size(), 20);
        QCOMPARE(stage.client->state(), ConnectionState::Disconnected);
        stage.events.clear();
        QVERIFY(stage.makeReady());
        QVERIFY(stage.events.isEmpty());
    }

    void connectingAnewDuringASession()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.say("error", "of the old session");
        stage.client->connectToServer(voiceToken);
        QVERIFY(stage.waitForState(ConnectionState::Connected));
        QVERIFY(stage.peer.waitForConnection(2));
        stage.greet("SECOND");
        QVERIFY(stage.waitForState(ConnectionState::Ready));
        QCOMPARE(stage.events, (QStringList{u"Connecting"_qs, u"Connected"_qs, u"Ready"_qs}));
        QCOMPARE(stage.client->callsign(), std::string("SECOND"));
    }

    void sessionsOneAfterTheOther()
    {
        SessionStage stage;
        for (int i = 0; i < 3; ++i) {
            QVERIFY(stage.makeReady());
            stage.client->updateTransmitter(com1); // nobody adds it again
            QVERIFY(stage.peer.expect(channelLine("118500:1", 0)));
            stage.hear("ZBAA_TWR", 118500);
            TRY_COMPARE(stage.events.last(), u"ZBAA_TWR on 118500"_qs);
            stage.client->disconnectFromServer();
        }
    }

    void theEnd_data()
    {
        using Ending = std::function<void(SessionStage &)>;
        QTest::addColumn<Ending>("end");
        QTest::newRow("disconnect") << Ending([](SessionStage &stage) { stage.client->disconnectFromServer(); });
        QTest::newRow("destroy") << Ending([](SessionStage &stage) { stage.client.reset(); });
    }
    /// At each step of the way, and nothing is heard behind it.
    void theEnd()
    {
        QFETCH(std::function<void(SessionStage &)>, end);
        for (const QString &step : {u"Connecting"_qs, u"Connected"_qs, u"audio"_qs, u"Ready"_qs}) {
            SessionStage stage;
            stage.client->setCid(1001);
            qsizetype heard = -1;
            const auto atStep = [&] {
                if (heard < 0 && stage.events.contains(step)) {
                    end(stage);
                    heard = stage.events.size();
                }
            };
            // Queued: as a pilot's click, which comes between two events.
            QObject context;
            connect(stage.client.get(), &VoiceClient::connectionStateChanged, &context, atStep, Qt::QueuedConnection);
            connect(stage.client.get(), &VoiceClient::audioHandlerCreated, &context, atStep, Qt::QueuedConnection);
            stage.client->connectToServer(voiceToken);
            if (step != u"Connecting"_qs) {
                QVERIFY(stage.peer.expect(voiceToken.toUtf8()));
                stage.greet();
            }
            TRY_VERIFY(heard >= 0);
            if (step != u"Connecting"_qs)
                TRY_VERIFY(!stage.peer.isClientConnected());
            QCoreApplication::processEvents();
            QCOMPARE(stage.events.size(), heard);
        }
    }
};

TARVO_TEST(VoiceClientTest)
#include "VoiceClientTest.moc"

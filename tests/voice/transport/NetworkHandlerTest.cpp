#include "TransportStage.h"

#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo;
using namespace tarvo::test;
using std::chrono::milliseconds;
using voice::ControlMessage;
using voice::ControlMessageType;

namespace {

const QByteArray goodbye = R"({"callsign":"","cid":1001,"data":"","transmitter":0,"type":"disconnect"})";

QByteArray keepAliveOf(const QByteArray &callsign)
{
    return QByteArray::fromHex("e90300000000000000") + char(callsign.size()) + callsign + '\n';
}

} // namespace

/// Sessions that go well.
class NetworkHandlerTest : public QObject
{
    Q_OBJECT

private slots:
    void aSessionFromBeginningToEnd()
    {
        const LogCapture log;
        Session session;
        session.handler().setCid(1001);
        session.client.connectToServer();
        TRY_COMPARE(session.order(), QStringList{u"connected"_qs});
        QCOMPARE(session.client.thread, QThread::currentThread());
        QVERIFY(session.peer.expect("head.body.signature"));
        QCOMPARE(session.peer.nextDatagram(), keepAliveOf({}));

        session.peer.inject(messageLine("SERVER:CCA1234:Welcome"));
        TRY_COMPARE(session.order().last(), u"line SERVER:CCA1234:Welcome"_qs);
        session.peer.sendDatagram(datagramOf("ZBAA_TWR"));
        TRY_COMPARE(session.order().last(), u"voice ZBAA_TWR"_qs);

        session.handler().disconnectFromServer();
        QCOMPARE(session.order().last(), u"disconnected"_qs);
        QCOMPARE(session.peer.untilClosed(), goodbye + '\n');
        QCOMPARE(session.order().count(u"disconnected"_qs), 1);
        const auto endpoints = session.peer.endpoints();
        QCOMPARE(
            log.texts(),
            (QStringList{u"NetworkHandler: TCP connection established with 127.0.0.1:%1"_qs.arg(endpoints.voiceTcpPort),
                         u"NetworkHandler: UDP connection established with 127.0.0.1:%1"_qs.arg(endpoints.voiceUdpPort),
                         u"NetworkHandler: Authentication information sent"_qs,
                         u"NetworkHandler: Voice server connected"_qs, u"NetworkHandler: disconnected"_qs}));
        QCOMPARE(log.texts(QtInfoMsg),
                 (QStringList{u"NetworkHandler: Voice server connected"_qs, u"NetworkHandler: disconnected"_qs}));
    }

    /// Blocks, and works all the same.
    void connectingOnTheHandlersOwnThread()
    {
        Session session;
        session.handler().connectToServer(token);
        QVERIFY(session.order().isEmpty()); // signals come from the event loop
        TRY_COMPARE(session.order(), QStringList{u"connected"_qs});
    }

    void nothingOvertakesTheNewsOfTheConnection()
    {
        Session session;
        session.client.connectToServer();
        session.peer.injectBytes(messageLine("a") + "\n" + messageLine("b") + "\n");
        TRY_COMPARE(session.order(), (QStringList{u"connected"_qs, u"line a"_qs, u"line b"_qs}));
    }

    void linesAreTakenWhole()
    {
        Session session;
        QVERIFY(session.open());
        const QByteArray line = messageLine("half and half");
        session.peer.injectBytes(line.first(10));
        session.peer.sendDatagram(datagramOf("pause"));
        TRY_COMPARE(session.order().last(), u"voice pause"_qs);
        session.peer.injectBytes(line.sliced(10) + "\n" + messageLine("next") + "\n");
        TRY_COMPARE(session.order().mid(2), (QStringList{u"line half and half"_qs, u"line next"_qs}));
    }

    void allFieldsOfALineAndADatagramArrive()
    {
        Session session;
        QList<ControlMessage> messages;
        QList<voice::VoicePacket> packets;
        connect(&session.handler(), &voice::NetworkHandler::controlMessageReceived, this,
                [&](const ControlMessage &message) { messages.append(message); });
        connect(&session.handler(), &voice::NetworkHandler::voicePacketReceived, this,
                [&](const voice::VoicePacket &packet) { packets.append(packet); });
        QVERIFY(session.open());
        session.peer.inject(R"({"type":"error","cid":3,"callsign":"国","transmitter":1,"data":"no"})");
        session.peer.sendDatagram(datagramOf("B", 3));
        TRY_COMPARE(messages.size() + packets.size(), 2);
        QVERIFY(messages.first() == (ControlMessage{ControlMessageType::Error, 3, "国", 1, "no"}));
        QVERIFY(packets.first() == (voice::VoicePacket{7, 0, 118700, "B", {'v', 'v', 'v'}}));
    }

    void whatIsSentArrives()
    {
        Session session;
        QVERIFY(session.open());
        session.handler().sendControlMessage({ControlMessageType::Channel, 1001, "CCA1234", 1, "118700:1"});
        QVERIFY(session.peer.expect(
            R"({"callsign":"CCA1234","cid":1001,"data":"118700:1","transmitter":1,"type":"channel"})"));
        session.handler().sendVoicePacket({1, 2, 3});
        QCOMPARE(session.peer.nextDatagram(), QByteArray("\1\2\3"));
    }

    void withoutAConnectionNothingIsSent()
    {
        Session session;
        session.handler().sendControlMessage({});
        session.handler().sendVoicePacket({1});
        QVERIFY(session.open());
        session.handler().stop();
        session.handler().sendControlMessage({});
        session.handler().sendVoicePacket({1});
        QCOMPARE(session.peer.untilClosed(), QByteArray());
    }

    void aTextThatIsNotUtf8IsNotSent()
    {
        const LogCapture log;
        Session session;
        QVERIFY(session.open());
        session.handler().sendControlMessage({ControlMessageType::Message, 1, "\xff", 0, {}});
        session.handler().sendControlMessage({ControlMessageType::Message, 1, {}, 0, "next"});
        QVERIFY(session.peer.nextLine().contains("next"));
        TRY_COMPARE(log.texts(QtWarningMsg).size(), 1);
        QVERIFY(log.texts(QtWarningMsg).first().startsWith(u"NetworkHandler: control message not sent: "_qs));
    }

    void theKeepAliveHasTheTimeAndTheNames()
    {
        Session session(milliseconds(1));
        session.handler().setCid(1001);
        session.handler().setCallsign("CCA1234");
        QVERIFY(session.open());
        const QByteArray ping =
            R"({"callsign":"CCA1234","cid":1001,"data":"1700000000","transmitter":0,"type":"ping"})";
        QVERIFY(session.peer.expect(ping));
        QVERIFY(session.peer.expect(ping)); // again and again
        QCOMPARE(session.peer.nextDatagram(), keepAliveOf("CCA1234"));
    }

    void aCallsignThatComesLaterIsInTheNextKeepAlive()
    {
        Session session(milliseconds(1));
        session.handler().setCid(1001);
        QVERIFY(session.open());
        session.handler().setCallsign("CCA1234");
        TRY_VERIFY(session.peer.nextLine().contains("\"CCA1234\""));
        TRY_VERIFY(session.peer.nextDatagram() == keepAliveOf("CCA1234"));
    }

    void aCallsignThatIsTooLongIsCut()
    {
        Session session;
        session.handler().setCid(1001);
        session.handler().setCallsign(std::string(300, 'C'));
        session.client.connectToServer();
        QCOMPARE(session.peer.nextDatagram(), keepAliveOf(QByteArray(254, 'C')));
    }

    /// With an hour between two pings.
    void aStopDoesNotWaitForTheNextPing()
    {
        Session session;
        QVERIFY(session.open());
        QElapsedTimer time;
        time.start();
        session.handler().disconnectFromServer();
        QVERIFY(time.elapsed() < soonMs);
    }

    void connectingTenTimes()
    {
        Session session;
        for (int i = 0; i < 10; ++i)
            session.client.connectToServer();
        session.client.waitForAttempts();
        TRY_VERIFY(session.order().contains(u"connected"_qs));
        session.handler().sendControlMessage({ControlMessageType::Message, 1, {}, 0, "still here"});
        QByteArray line = session.peer.nextLine();
        if (line == token.toUtf8())
            line = session.peer.nextLine();
        QVERIFY(line.contains("still here"));
        QVERIFY(!session.order().contains(u"disconnected"_qs));
        QVERIFY(!session.order().filter(u"error"_qs).size());
    }

    void connectingTenTimesOneAfterTheOther()
    {
        Session session;
        for (int i = 1; i <= 10; ++i) {
            QVERIFY(session.open());
            QVERIFY(session.peer.waitForConnection(i));
            session.peer.inject(messageLine(QByteArray::number(i)));
            TRY_COMPARE(session.order().last(), u"line %1"_qs.arg(i));
            if (i % 2)
                session.handler().disconnectFromServer();
        }
        QCOMPARE(session.order().count(u"connected"_qs), 10);
        QCOMPARE(session.order().count(u"disconnected"_qs), 5);
    }

    void aNewConnectionDropsWhatTheLastOneStillHadToSay()
    {
        Session session;
        QVERIFY(session.open());
        session.peer.injectBytes((messageLine("old") + "\n").repeated(1000));
        connect(
            &session.handler(), &voice::NetworkHandler::controlMessageReceived, this,
            [&] { session.handler().connectToServer(token); }, Qt::SingleShotConnection);
        QVERIFY(session.peer.waitForConnection(2));
        session.peer.inject(messageLine("new"));
        TRY_VERIFY(session.order().contains(u"line new"_qs));
        QCOMPARE(session.order(), (QStringList{u"connected"_qs, u"line old"_qs, u"connected"_qs, u"line new"_qs}));
    }

    void theTokenIsHeardNowhere()
    {
        const LogCapture log;
        {
            Session session;
            QVERIFY(session.open());
            session.peer.inject(token.toUtf8());
            session.peer.inject('"' + token.toUtf8());
            session.peer.inject("{\"cid\":\"" + token.toUtf8() + "\"}");
            session.peer.inject(messageLine("refused: " + token.toUtf8() + ", " + token.toUtf8()));
            TRY_COMPARE(session.order().last(), u"line refused: ***, ***"_qs);
            session.handler().disconnectFromServer();
        }
        QCOMPARE(log.startingWith(u"NetworkHandler: failed to parse"_qs).size(), 3);
        QVERIFY(!log.contains(u"body"_qs));
    }
};

TARVO_TEST(NetworkHandlerTest)
#include "NetworkHandlerTest.moc"

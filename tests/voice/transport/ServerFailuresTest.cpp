#include "TransportStage.h"
#include "voice/transport/Sockets.h"

#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QRegularExpression>
#include <QTest>

#include <random>

using namespace tarvo;
using namespace tarvo::test;
using std::chrono::milliseconds;

namespace {

/// A port of the kind that nobody serves.
template <class Server>
quint16 unservedPort(bool (*listen)(Server &))
{
    Server server;
    listen(server);
    if constexpr (std::is_same_v<Server, QTcpServer>)
        return server.serverPort();
    else
        return server.localPort();
}

quint16 unservedTcpPort()
{
    return unservedPort<QTcpServer>([](QTcpServer &server) { return server.listen(QHostAddress::LocalHost); });
}

quint16 unservedUdpPort()
{
    return unservedPort<QUdpSocket>([](QUdpSocket &socket) { return socket.bind(QHostAddress::LocalHost); });
}

ServiceEndpoints endpointsOf(const QString &host, quint16 tcp = 1, quint16 udp = 1)
{
    ServiceEndpoints endpoints;
    endpoints.voiceHost = host;
    endpoints.voiceTcpPort = tcp;
    endpoints.voiceUdpPort = udp;
    return endpoints;
}

} // namespace

/// Servers that can't be reached, that go, and that say what nobody understands.
class ServerFailuresTest : public QObject
{
    Q_OBJECT

private slots:
    void aNameWithoutAnAddress()
    {
        const LogCapture log;
        Listener client(endpointsOf(u"not..a.name"_qs));
        client.connectToServer();
        const QString text = u"Failed to resolve server address not..a.name"_qs;
        TRY_COMPARE(client.order, QStringList{u"error: "_qs + text});
        QCOMPARE(client.thread, QThread::currentThread());
        TRY_COMPARE(log.texts(QtWarningMsg), QStringList{u"NetworkHandler: "_qs + text});
        QCOMPARE(log.texts(QtCriticalMsg), QStringList{text});
    }

    void nobodyAtTheControlPort()
    {
        const LogCapture log;
        const quint16 port = unservedTcpPort();
        Listener client(endpointsOf(u"127.0.0.1"_qs, port));
        client.connectToServer();
        TRY_COMPARE(client.order.size(), 1);
        static const QRegularExpression form(u"^error: (Failed to connect to server at 127\\.0\\.0\\.1 "
                                             "\\(ip=127\\.0\\.0\\.1:(\\d+)\\): (.+) \\(errno=(\\d+)\\))$"_qs);
        const QRegularExpressionMatch told = form.match(client.order.first());
        QVERIFY2(told.hasMatch(), qPrintable(client.order.first()));
        QCOMPARE(told.captured(2).toInt(), port);
        // Each system has a number and a text of its own.
        QVERIFY(told.captured(3).contains(u"refused"_qs));
        QCOMPARE(told.captured(3).toStdString(), voice::socketErrorText(told.captured(4).toInt()));
        QCOMPARE(log.texts(QtWarningMsg), QStringList{u"NetworkHandler: "_qs + told.captured(1)});
        QCOMPARE(log.texts(QtCriticalMsg), QStringList{told.captured(1)});
    }

    void anErrorWithoutAText() { QCOMPARE(voice::socketErrorText(-12345), std::string("Unknown error")); }

    void afterAFailureTheNextAttemptSucceeds()
    {
        VoicePeer peer;
        Listener client(peer.endpoints());
        peer.stopServing();
        client.connectToServer();
        TRY_COMPARE(client.order.size(), 1);
        QVERIFY(client.order.first().startsWith(u"error: "_qs));
        QVERIFY(peer.serveAgain());
        client.connectToServer();
        TRY_COMPARE(client.order.value(1), u"connected"_qs);
        QVERIFY(peer.expect(token.toUtf8()));
    }

    void anIPv6Address()
    {
        VoicePeer peer(QHostAddress(QHostAddress::LocalHostIPv6));
        const LogCapture log;
        Listener client(peer.endpoints());
        client.connectToServer();
        TRY_COMPARE(client.order, QStringList{u"connected"_qs});
        QVERIFY(peer.expect(token.toUtf8()));
        peer.sendDatagram(datagramOf("SIX"));
        TRY_COMPARE(client.order.last(), u"voice SIX"_qs);
        QVERIFY(log.contains(u"TCP connection established with ::1:%1"_qs.arg(peer.endpoints().voiceTcpPort)));
    }

    /// The session goes on in silence.
    void nobodyAtTheVoicePort()
    {
        VoicePeer peer;
        Listener client(endpointsOf(u"127.0.0.1"_qs, peer.endpoints().voiceTcpPort, unservedUdpPort()),
                        milliseconds(1));
        client.connectToServer();
        TRY_COMPARE(client.order, QStringList{u"connected"_qs});
        QVERIFY(peer.expect(token.toUtf8()));
        for (int i = 0; i < 3; ++i)
            QVERIFY(peer.nextLine().contains("ping"));
        client.handler->sendVoicePacket({1});
        peer.inject(messageLine("here"));
        TRY_COMPARE(client.order, (QStringList{u"connected"_qs, u"line here"_qs}));
    }

    void theServerCloses_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<bool>("abruptly");
        QTest::addColumn<QStringList>("heard");
        QTest::newRow("at once") << QByteArray() << false << QStringList();
        QTest::newRow("with a reset") << QByteArray() << true << QStringList();
        QTest::newRow("behind the greeting") << messageLine("SERVER:A:Welcome") + '\n'
                                             << false << QStringList{u"line SERVER:A:Welcome"_qs};
        QTest::newRow("in the middle of a line")
            << messageLine("a") + "\n{\"type\":" << false << QStringList{u"line a"_qs};
    }
    void theServerCloses()
    {
        QFETCH(QByteArray, before);
        QFETCH(bool, abruptly);
        QFETCH(QStringList, heard);
        const LogCapture log;
        Session session;
        QVERIFY(session.open());
        session.peer.injectBytes(before);
        if (abruptly)
            session.peer.abortConnection();
        else
            session.peer.closeConnection();
        TRY_VERIFY(session.order().contains(u"disconnected"_qs));
        QCOMPARE(session.order(), QStringList{u"connected"_qs} + heard + QStringList{u"disconnected"_qs});
        QVERIFY(log.texts(QtWarningMsg).isEmpty()); // a half line is nobody's
        // What is sent now goes nowhere, and once more it is told only when it is ordered.
        session.handler().sendControlMessage({});
        session.handler().sendVoicePacket({1});
        session.handler().stop();
        QCoreApplication::processEvents();
        QCOMPARE(session.order().count(u"disconnected"_qs), 1);
    }

    /// Whatever comes first, token or close.
    void theServerClosesBeforeTheTokenComes()
    {
        VoicePeer peer;
        peer.refuseAll();
        Listener client(peer.endpoints());
        client.connectToServer();
        TRY_COMPARE(client.order, (QStringList{u"connected"_qs, u"disconnected"_qs}));
    }

    void aLostConnectionIsFollowedByAnother()
    {
        Session session;
        for (int i = 0; i < 3; ++i) {
            QVERIFY(session.open());
            session.peer.closeConnection();
            TRY_COMPARE(session.order().last(), u"disconnected"_qs);
        }
        QCOMPARE(session.order().size(), 6);
    }

    void badLinesAreLoggedAndPassedOver_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no JSON") << QByteArray("not json");
        QTest::newRow("no object") << QByteArray("[1]");
        QTest::newRow("a type that is a number") << QByteArray(R"({"type":7})");
        QTest::newRow("a cid that is a text") << QByteArray(R"({"cid":"1"})");
        QTest::newRow("not UTF-8") << QByteArray("{\"data\":\"\xff\"}");
        QTest::newRow("a number without end") << QByteArray(60'000, '9');
        QTest::newRow("a text with a line end in it") << QByteArray("\"a\rb");
    }
    void badLinesAreLoggedAndPassedOver()
    {
        QFETCH(QByteArray, line);
        const LogCapture log;
        Session session;
        QVERIFY(session.open());
        session.peer.inject(line);
        session.peer.inject(messageLine("next"));
        TRY_COMPARE(session.order(), (QStringList{u"connected"_qs, u"line next"_qs}));
        QCOMPARE(log.texts(QtWarningMsg).size(), 1);
        const QString text = log.texts(QtWarningMsg).first();
        QVERIFY(text.startsWith(u"NetworkHandler: failed to parse control message: [json.exception."_qs));
        QVERIFY(text.size() < 1000 && !text.contains(u'\r'));
    }

    void anUnknownWordIsADisconnect()
    {
        Session session;
        voice::ControlMessage message{voice::ControlMessageType::Ping, 1, {}, 0, {}};
        connect(&session.handler(), &voice::NetworkHandler::controlMessageReceived, this,
                [&](const voice::ControlMessage &received) { message = received; });
        QVERIFY(session.open());
        session.peer.inject("{}");
        TRY_VERIFY(message == voice::ControlMessage());
    }

    void aLineThatIsTooLong_data()
    {
        QTest::addColumn<int>("size");
        QTest::newRow("one byte") << 65537;
        QTest::newRow("10 MB") << 10'000'000;
    }
    void aLineThatIsTooLong()
    {
        QFETCH(int, size);
        Session session;
        QVERIFY(session.open());
        session.peer.injectBytes(QByteArray(size, ' '));
        session.peer.inject(""); // ends what is left of it
        session.peer.inject(messageLine("next"));
        TRY_COMPARE(session.order(), (QStringList{u"connected"_qs, u"line next"_qs}));
    }

    void datagramsThatAreNone_data()
    {
        QTest::addColumn<QList<QByteArray>>("datagrams");
        std::mt19937 random(8);
        QList<QByteArray> noise;
        for (int size = 1; size < 500; ++size) {
            QByteArray bytes(size, '\0');
            for (char &byte : bytes)
                byte = char(random());
            bytes.back() = 'x'; // else it may be one
            noise.append(bytes);
        }
        QTest::newRow("empty") << QList<QByteArray>{QByteArray("")};
        QTest::newRow("random") << noise;
        QTest::newRow("the largest") << QList<QByteArray>{QByteArray(65507, 'x')};
        QTest::newRow("claims more than it holds")
            << QList<QByteArray>{QByteArray(9, '\0') + "\xff" + QByteArray("abc\n")};
    }
    void datagramsThatAreNone()
    {
        QFETCH(QList<QByteArray>, datagrams);
        Session session;
        QVERIFY(session.open());
        for (const QByteArray &bytes : datagrams)
            session.peer.sendDatagram(bytes);
        Patience patience;
        while (session.order().size() < 2 && patience.goesOn())
            session.peer.sendDatagram(datagramOf("NEXT")); // the system may lose some
        session.order().removeDuplicates();
        QCOMPARE(session.order(), (QStringList{u"connected"_qs, u"voice NEXT"_qs}));
    }

    void theLargestDatagramIsRead()
    {
        Session session;
        qsizetype size = 0;
        connect(&session.handler(), &voice::NetworkHandler::voicePacketReceived, this,
                [&](const voice::VoicePacket &packet) { size = qsizetype(packet.payload.size()); });
        QVERIFY(session.open());
        session.peer.sendDatagram(datagramOf("", 65507 - 11));
        TRY_COMPARE(size, 65507 - 11);
    }

    void datagramsOfOthersAreNotHeard()
    {
        Session session;
        VoicePeer stranger;
        QVERIFY(session.open());
        stranger.sendDatagramToClientOf(session.peer, datagramOf("STRANGER"));
        session.peer.sendDatagram(datagramOf("SERVER"));
        TRY_COMPARE(session.order(), (QStringList{u"connected"_qs, u"voice SERVER"_qs}));
    }

    /// Nothing waits: what finds no room is dropped, as whole lines, and told once.
    void aServerThatDoesNotRead()
    {
        const LogCapture log;
        Session session;
        QVERIFY(session.open());
        session.peer.stopReading();
        const voice::ControlMessage message{voice::ControlMessageType::Message, 1, {}, 0, std::string(60'000, 'm')};
        const QString warning = u"NetworkHandler: control lines are dropped: the server does not read"_qs;
        QElapsedTimer time;
        qint64 longest = 0;
        int sent = 0;
        for (; sent < 10'000 && !log.contains(warning); ++sent) {
            time.start();
            session.handler().sendControlMessage(message);
            longest = std::max(longest, time.elapsed());
            QCoreApplication::processEvents();
        }
        QVERIFY(sent < 10'000);
        QVERIFY(longest < soonMs);
        QCOMPARE(log.texts(QtWarningMsg), QStringList{warning});

        session.peer.readAgain();
        const QByteArray whole = QByteArray::fromStdString(voice::serializeControlMessage(message));
        QByteArray line = session.peer.nextLine();
        QCOMPARE(line, whole);
        // The rest of the last one goes first, as soon as there is room.
        while (line == whole) {
            session.handler().sendControlMessage({voice::ControlMessageType::Message, 1, {}, 0, "room again"});
            line = session.peer.nextLine();
        }
        QVERIFY(line.contains("room again"));
        QCOMPARE(log.texts(QtWarningMsg), QStringList{warning});
        time.start();
        session.handler().disconnectFromServer();
        QVERIFY(time.elapsed() < soonMs);
    }
};

TARVO_TEST(ServerFailuresTest)
#include "ServerFailuresTest.moc"

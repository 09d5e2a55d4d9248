#include "fsd/FsdClient.h"
#include "fsd/pdu/Ping.h"
#include "support/FsdPeer.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QMetaMethod>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

using tarvo::fsd::FsdClient;
using tarvo::test::FsdPeer;

namespace {

const QString noAddress = QStringLiteral("Network server address returned null, possibly due to a failed DNS lookup.");
const QString badName = QStringLiteral("not..a.name"); // fails without a name server

/// A client and its server, connected unless told otherwise.
struct Session
{
    FsdPeer peer;
    tarvo::test::ManualClock clock; ///< stands still: all lines of a chunk are handled in one turn
    FsdClient client{nullptr, clock};
    QSignalSpy connected{&client, &FsdClient::raiseNetworkConnected};
    QSignalSpy disconnected{&client, &FsdClient::raiseNetworkDisconnected};
    QSignalSpy errors{&client, &FsdClient::raiseNetworkError};
    QSignalSpy received{&client, &FsdClient::raiseRawDataReceived};
    QSignalSpy sent{&client, &FsdClient::raiseRawDataSent};

    bool open()
    {
        return client.connectToServer(peer.address(), peer.port()) &&
               tarvo::test::waitFor([this] { return client.isConnected(); }) && peer.waitForConnection();
    }
};

/// A server that accepts a connection and never reads.
struct DeafServer
{
    static constexpr int tooMany = 2000; ///< answers

    QTcpServer server;

    bool open(Session &session)
    {
        if (!server.listen(QHostAddress::LocalHost))
            return false;
        server.pauseAccepting(); // the connection stands, and nobody reads
        return session.client.connectToServer(u"127.0.0.1"_qs, server.serverPort()) &&
               tarvo::test::waitFor([&] { return session.client.isConnected(); });
    }
    /// Says `before`, then asks for more answers than can wait.
    static void ask(Session &session, const QByteArray &before = {})
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"the server does not read"_qs));
        const QByteArray challenge = "$ZCS:C:" + QByteArray(16'000, 'x') + "\r\n";
        session.client.receive(before + challenge.repeated(tooMany));
    }
};

/// Runs `action` as the very next event, before a look-up that starts now can end.
template <class Action>
void soon(FsdClient &client, Action action)
{
    QMetaObject::invokeMethod(&client, action, Qt::QueuedConnection);
}

QString firstArgument(const QSignalSpy &spy, int call = 0)
{
    return spy.value(call).value(0).toString();
}

} // namespace

class FsdClientTest : public QObject
{
    Q_OBJECT

private slots:
    void connectsToAnAddress()
    {
        Session session;
        QVERIFY(!session.client.isConnected());
        QVERIFY(session.client.connectToServer(session.peer.address(), session.peer.port()));
        QVERIFY(!session.client.isConnected());
        TRY_COMPARE(session.connected.count(), 1);
        QVERIFY(session.client.isConnected());
        auto *socket = session.client.findChild<QTcpSocket *>();
        QCOMPARE(socket->socketOption(QAbstractSocket::LowDelayOption).toInt(), 1);
        QCOMPARE(session.client.serverAddress(), QStringLiteral("127.0.0.1"));
        QCOMPARE(session.errors.count(), 0);
        QCOMPARE(session.disconnected.count(), 0);
    }

    void aNameWithoutAddressIsRefused_data()
    {
        QTest::addColumn<QString>("host");
        QTest::newRow("bad name") << badName;
        QTest::newRow("empty") << QString();
        QTest::newRow("IPv6 literal is looked up as a name") << QStringLiteral("::1");
    }
    void aNameWithoutAddressIsRefused()
    {
        QFETCH(QString, host);
        Session session;
        QVERIFY(!session.client.connectToServer(host, session.peer.port()));
        QCOMPARE(session.errors.count(), 1);
        QCOMPARE(firstArgument(session.errors), noAddress);
        QCOMPARE(session.disconnected.count(), 0);
        QCOMPARE(session.peer.connectionCount(), 0);
    }

    void aNameRunsTheEventLoopAnAddressDoesNot_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<bool>("looksUp");
        QTest::newRow("IPv4 literal") << QStringLiteral("127.0.0.1") << false;
        QTest::newRow("localhost") << QStringLiteral("localhost") << true;
    }
    void aNameRunsTheEventLoopAnAddressDoesNot()
    {
        QFETCH(QString, host);
        QFETCH(bool, looksUp);
        Session session;
        bool ran = false;
        soon(session.client, [&] { ran = true; });
        session.client.connectToServer(host, session.peer.port());
        QCOMPARE(ran, looksUp);
    }

    void disconnectEndsALookUp()
    {
        Session session;
        soon(session.client, [&] { session.client.disconnectFromServer(); });
        QVERIFY(!session.client.connectToServer(QStringLiteral("localhost"), session.peer.port()));
        QCOMPARE(session.errors.count(), 0);
        QCOMPARE(session.disconnected.count(), 1);
        QVERIFY(!session.client.isConnected());
        QCoreApplication::processEvents();
        QCOMPARE(session.peer.connectionCount(), 0);
        QCOMPARE(session.connected.count(), 0);
    }

    void aSecondConnectOvertakesALookUp()
    {
        Session session;
        bool second = false;
        soon(session.client,
             [&] { second = session.client.connectToServer(session.peer.address(), session.peer.port()); });
        QVERIFY(!session.client.connectToServer(QStringLiteral("localhost"), 1));
        QVERIFY(second);
        TRY_COMPARE(session.connected.count(), 1);
        QCOMPARE(session.errors.count(), 0);
    }

    void aRefusedConnectionRaisesOnlyTheError()
    {
        Session session;
        session.peer.stopListening();
        QVERIFY(session.client.connectToServer(session.peer.address(), session.peer.port()));
        TRY_COMPARE(session.errors.count(), 1);
        QCOMPARE(firstArgument(session.errors), QStringLiteral("ConnectionRefusedError: Connection refused"));
        QCOMPARE(session.disconnected.count(), 0);
        QCOMPARE(session.connected.count(), 0);
    }

    void closeByTheServerGivesErrorThenDisconnected()
    {
        Session session;
        QVERIFY(session.open());
        QStringList order;
        connect(&session.client, &FsdClient::raiseNetworkError, this,
                [&](const QString &text) { order << text << (session.client.isConnected() ? u"up"_qs : u"down"_qs); });
        connect(&session.client, &FsdClient::raiseNetworkDisconnected, this, [&] {
            order << QStringLiteral("disconnected") << (session.client.isConnected() ? u"up"_qs : u"down"_qs);
        });
        session.peer.closeConnection();
        TRY_COMPARE(order, (QStringList{u"RemoteHostClosedError: The remote host closed the connection"_qs, u"up"_qs,
                                        u"disconnected"_qs, u"down"_qs}));
    }

    void whatCameBeforeTheCloseIsHandled()
    {
        Session session;
        QVERIFY(session.open());
        QSignalSpy kills(&session.client, &FsdClient::raiseKillRequestReceived);
        session.peer.inject(QStringLiteral("$!!SERVER:CES1:bye"));
        session.peer.closeConnection();
        TRY_COMPARE(session.disconnected.count(), 1);
        QCOMPARE(kills.count(), 1);
    }

    void disconnectRaisesItsSignalBeforeItCloses()
    {
        Session session;
        QVERIFY(session.open());
        bool stillOpen = false;
        connect(&session.client, &FsdClient::raiseNetworkDisconnected, this,
                [&] { stillOpen = session.peer.isClientConnected() && !session.client.isConnected(); });
        session.client.disconnectFromServer();
        QCOMPARE(session.disconnected.count(), 1);
        QVERIFY(stillOpen);
        QVERIFY(session.peer.waitForClose());
        QCOMPARE(session.errors.count(), 0);
    }

    void disconnectRaisesItsSignalAlsoWhenNotConnected()
    {
        FsdClient client;
        QSignalSpy disconnected(&client, &FsdClient::raiseNetworkDisconnected);
        client.disconnectFromServer();
        client.disconnectFromServer();
        QCOMPARE(disconnected.count(), 2);
    }

    void disconnectWhileConnectingConnectsNothing()
    {
        Session session;
        QVERIFY(session.client.connectToServer(session.peer.address(), session.peer.port()));
        session.client.disconnectFromServer();
        QVERIFY(session.open()); // the second attempt
        QCOMPARE(session.connected.count(), 1);
        QCOMPARE(session.disconnected.count(), 1);
        QCOMPARE(session.errors.count(), 0);
    }

    void connectsAnewFromInsideTheDisconnectedHandler_data()
    {
        QTest::addColumn<bool>("byServer");
        QTest::newRow("the server closed") << true;
        QTest::newRow("the pilot disconnected") << false;
    }
    void connectsAnewFromInsideTheDisconnectedHandler()
    {
        QFETCH(bool, byServer);
        Session session;
        QVERIFY(session.open());
        session.peer.injectBytes("$PISERVER:CES1:1\r\n#TMSERVER:C"); // the cut line must not reach the next session
        TRY_COMPARE(session.received.count(), 1);
        connect(
            &session.client, &FsdClient::raiseNetworkDisconnected, this,
            [&] { QVERIFY(session.client.connectToServer(session.peer.address(), session.peer.port())); },
            Qt::SingleShotConnection);
        if (byServer)
            session.peer.closeConnection();
        else
            session.client.disconnectFromServer();
        QVERIFY(session.peer.waitForConnection(2));
        TRY_COMPARE(session.connected.count(), 2);
        QVERIFY(session.peer.expectNothing());
        QVERIFY(session.client.isConnected());
        QCOMPARE(session.disconnected.count(), 1);
        QVERIFY(session.peer.isClientConnected());
    }

    void connectsAnewFromInsideTheErrorHandler()
    {
        Session session;
        QVERIFY(session.open());
        connect(
            &session.client, &FsdClient::raiseNetworkError, this,
            [&] { QVERIFY(session.client.connectToServer(session.peer.address(), session.peer.port())); },
            Qt::SingleShotConnection);
        session.peer.abortConnection();
        QVERIFY(session.peer.waitForConnection(2));
        TRY_COMPARE(session.connected.count(), 2);
        QVERIFY(session.peer.expectNothing());
        QCOMPARE(session.disconnected.count(), 0); // the old connection's end came too late
    }

    void theRestOfAChunkIsNotDispatchedAfterADisconnect()
    {
        Session session;
        QVERIFY(session.open());
        QSignalSpy pings(&session.client, &FsdClient::raisePingReceived);
        connect(&session.client, &FsdClient::raiseKillRequestReceived, &session.client,
                &FsdClient::disconnectFromServer);
        session.peer.injectBytes("$!!SERVER:CES1:bye\r\n$PISERVER:CES1:1\r\n$PISER");
        QVERIFY(session.peer.waitForClose());
        QCOMPARE(session.disconnected.count(), 1);
        QCOMPARE(pings.count(), 0);
        QCOMPARE(session.received.count(), 1);

        QVERIFY(session.open()); // nor does the cut line lead the next session's first
        session.peer.inject(QStringLiteral("$PISERVER:CES1:2"));
        TRY_COMPARE(pings.count(), 1);
        QCOMPARE(session.errors.count(), 0);
    }

    void aLineCutAcrossTwoReadsIsPutTogether()
    {
        Session session;
        QVERIFY(session.open());
        QSignalSpy pings(&session.client, &FsdClient::raisePingReceived);
        session.peer.injectBytes("$PISERVER:CES1:1\r\n$PISER");
        TRY_COMPARE(pings.count(), 1);
        session.peer.injectBytes("VER:CES1:2\r\n");
        TRY_COMPARE(pings.count(), 2);
        QCOMPARE(session.errors.count(), 0);
    }

    void aByteThatArrivesAloneIsLost()
    {
        Session session;
        QVERIFY(session.open());
        QSignalSpy reads(session.client.findChild<QTcpSocket *>(), &QTcpSocket::readyRead);
        session.peer.injectBytes("Z");
        TRY_COMPARE(reads.count(), 1);
        QVERIFY(session.peer.expectNothing()); // "Z$ZC..." would be no challenge
        QCOMPARE(session.errors.count(), 0);
    }

    void aMalformedLineIsReportedAndTheSessionGoesOn()
    {
        Session session;
        QVERIFY(session.open());
        QSignalSpy pings(&session.client, &FsdClient::raisePingReceived);
        QStringList order;
        connect(&session.client, &FsdClient::raiseRawDataReceived, this, [&](const QString &line) { order << line; });
        connect(&session.client, &FsdClient::raiseNetworkError, this, [&](const QString &text) { order << text; });
        session.peer.injectBytes("X:abc\r\n\r\n$DISERVER:CES1:v\r\n$PISERVER:CES1:1\r\n");
        TRY_COMPARE(pings.count(), 1);
        QCOMPARE(order,
                 (QStringList{u"X:abc\r\n"_qs, u"Invalid PDU type. (Raw packet: X:abc)"_qs, u"$DISERVER:CES1:v\r\n"_qs,
                              u"Invalid field count for ServerIdentification command. (Raw packet: SERVER:CES1:v)"_qs,
                              u"$PISERVER:CES1:1\r\n"_qs}));
        QVERIFY(session.client.isConnected());
    }

    void aPercentSignInALineIsNoPlaceholder()
    {
        Session session;
        QVERIFY(session.open());
        session.peer.inject(QStringLiteral("X%2%1"));
        TRY_COMPARE(session.errors.count(), 1);
        QCOMPARE(firstArgument(session.errors), QStringLiteral("Invalid PDU type. (Raw packet: X%2%1)"));
    }

    void textIsLatin1InBothDirections()
    {
        Session session;
        QVERIFY(session.open());
        QSignalSpy pings(&session.client, &FsdClient::raisePingReceived);
        session.peer.injectBytes("$PISERVER:CES1:\xE9\xFF\r\n");
        TRY_COMPARE(pings.count(), 1);
        QCOMPARE(firstArgument(session.received), QStringLiteral("$PISERVER:CES1:\u00E9\u00FF\r\n"));

        session.client.sendRaw(QStringLiteral("#TMA:B:\u00E9\u4E2D\r\n"));
        TRY_COMPARE(session.peer.receivedBytes(), QByteArray("#TMA:B:\xE9?\r\n"));
        // Latin-1 bytes read as UTF-8: a lone 0xE9 is no character there.
        QCOMPARE(firstArgument(session.sent), QStringLiteral("#TMA:B:\uFFFD?\r\n"));
    }

    void nothingIsSentUnlessConnected()
    {
        Session session;
        session.client.sendRaw(QStringLiteral("$PIA:B:1\r\n"));
        QCOMPARE(session.sent.count(), 0);
        QVERIFY(session.open());
        session.client.sendRaw(QString());
        QCOMPARE(session.sent.count(), 0);
        session.client.sendRaw(QStringLiteral("$PIA:B:2\r\n"));
        QCOMPARE(session.sent.count(), 1);
        QVERIFY(session.peer.expect(QStringLiteral("$PIA:B:2")));
        session.client.disconnectFromServer();
        session.client.sendRaw(QStringLiteral("$PIA:B:3\r\n"));
        QCOMPARE(session.sent.count(), 1);
        QVERIFY(session.peer.waitForClose());
        QCOMPARE(session.peer.receivedBytes(), QByteArray("$PIA:B:2\r\n"));
    }

    void whatIsSentBeforeADisconnectArrives()
    {
        Session session;
        QVERIFY(session.open());
        session.client.sendRaw(QStringLiteral("#DPCES1:1001\r\n"));
        session.client.disconnectFromServer();
        QVERIFY(session.peer.expect(QStringLiteral("#DPCES1:1001")));
        QVERIFY(session.peer.waitForClose());
    }

    void aServerThatNeverReadsIsLeft()
    {
        Session session;
        DeafServer deaf;
        QVERIFY(deaf.open(session));
        auto *socket = session.client.findChild<QTcpSocket *>();
        qint64 mostUnsent = 0;
        connect(&session.client, &FsdClient::raiseRawDataSent, this,
                [&] { mostUnsent = std::max(mostUnsent, socket->bytesToWrite()); });
        QStringList order;
        connect(&session.client, &FsdClient::raiseNetworkError, this, [&](const QString &text) {
            order << text;
            session.client.sendRaw(u"$PIA:B:1\r\n"_qs); // changes nothing
        });
        connect(&session.client, &FsdClient::raiseNetworkDisconnected, this, [&] { order << u"disconnected"_qs; });

        DeafServer::ask(session);
        QCOMPARE(order, (QStringList{u"The server does not read what it is sent."_qs, u"disconnected"_qs}));
        QVERIFY(!session.client.isConnected());
        QVERIFY(session.received.count() < DeafServer::tooMany);      // the rest of the chunk is not handled
        QCOMPARE(session.sent.count(), session.received.count() - 1); // nor the last answer sent
        QVERIFY(mostUnsent > 1024 * 1024 && mostUnsent <= 4 * 1024 * 1024);
        QCOMPARE(socket->bytesToWrite(), 0);
        QCOMPARE(socket->state(), QAbstractSocket::UnconnectedState); // does not wait for the bytes to leave
    }

    void whoHearsThatTheServerNeverReadsMayAct_data()
    {
        QTest::addColumn<bool>("connectsAnew");
        QTest::newRow("disconnect") << false;
        QTest::newRow("connect anew") << true;
    }
    void whoHearsThatTheServerNeverReadsMayAct()
    {
        QFETCH(bool, connectsAnew);
        Session session;
        DeafServer deaf;
        QVERIFY(deaf.open(session));
        connect(&session.client, &FsdClient::raiseNetworkError, this, [&] {
            if (connectsAnew)
                session.client.connectToServer(session.peer.address(), session.peer.port());
            else
                session.client.disconnectFromServer();
        });
        DeafServer::ask(session);
        QCOMPARE(session.disconnected.count(), connectsAnew ? 0 : 1);
        if (connectsAnew)
            QVERIFY(session.peer.waitForConnection() && session.peer.expectNothing());
    }

    void aServerThatSendsElsewhereNeedNotRead()
    {
        Session session;
        DeafServer deaf;
        QVERIFY(deaf.open(session));
        FsdPeer next(u"127.0.0.2"_qs, deaf.server.serverPort());
        DeafServer::ask(session, "$XXS:C:127.0.0.2\r\n");
        QVERIFY(next.waitForConnection() && next.expectNothing());
        QVERIFY(session.client.isConnected());
        QCOMPARE(session.disconnected.count(), 0);
        QCOMPARE(session.errors.count(), 0);
    }

    void nothingIsSentOverASocketThatAnErrorHasClosed()
    {
        Session session;
        QVERIFY(session.open());
        auto *socket = session.client.findChild<QTcpSocket *>();
        socket->abort();
        emit socket->errorOccurred(QAbstractSocket::NetworkError);
        QCOMPARE(session.errors.count(), 1);
        QVERIFY(session.client.isConnected()); // only a close by the server clears it
        QTest::failOnWarning(QRegularExpression(u"."_qs));
        session.client.sendRaw(u"$PIA:B:1\r\n"_qs);
        QCOMPARE(session.sent.count(), 0);
        QCOMPARE(session.errors.count(), 1);
    }

    void aChallengeIsEchoedAndNotReported()
    {
        Session session;
        QVERIFY(session.open());
        session.peer.inject(QStringLiteral("$ZCSERVER:X:abc"));
        QVERIFY(session.peer.expect(QStringLiteral("$ZRX:SERVER:abc")));
        QCOMPARE(session.sent.count(), 1);
        QCOMPARE(firstArgument(session.sent), QStringLiteral("$ZRX:SERVER:abc\r\n"));
        QCOMPARE(session.errors.count(), 0);
        QVERIFY(session.peer.expectNothing());
    }

    void aMalformedChallengeIsNotAnswered()
    {
        Session session;
        QVERIFY(session.open());
        session.peer.inject(QStringLiteral("$ZCSERVER:X"));
        QVERIFY(session.peer.expectNothing());
        QCOMPARE(firstArgument(session.errors),
                 QStringLiteral("Invalid field count for AuthChallenge command. (Raw packet: SERVER:X)"));
    }

    void eachLineRaisesItsOneSignal_data()
    {
        QTest::addColumn<QString>("signal"); // the row's name is the line; an empty signal stands for none
        QTest::newRow("@N:A:1:1:1:1:1:1:1:1") << u"raisePilotPositionReceived"_qs;
        QTest::newRow("^A:1:2:3:4:5:6:7:8:9:10:11") << u"raiseFastPilotPositionReceived"_qs;
        QTest::newRow("%A:18500:1:1:1:1:1") << u"raiseATCPositionReceived"_qs;
        QTest::newRow("$DIS:C:v:k") << u"raiseServerIdentificationReceived"_qs;
        QTest::newRow("$IDA:S:1:c:3:0:1:s") << u"raiseClientIdentificationReceived"_qs;
        QTest::newRow("#AAA:S:n:1:p:1") << u"raiseAddATCReceived"_qs;
        QTest::newRow("#DAA:1") << u"raiseDeleteATCReceived"_qs;
        QTest::newRow("#APA:S:1:p:1:9:1:n") << u"raiseAddPilotReceived"_qs;
        QTest::newRow("#DPA:1") << u"raiseDeletePilotReceived"_qs;
        QTest::newRow("#TMA:*:hi") << u"raiseBroadcastMessageReceived"_qs;
        QTest::newRow("#TMA:*A:hi") << u"raiseBroadcastMessageReceived"_qs;
        QTest::newRow("#TMA:*P:hi") << u"raiseBroadcastMessageReceived"_qs;
        QTest::newRow("#TMA:*S:hi") << u"raiseWallopReceived"_qs;
        QTest::newRow("#TMA:@18500:hi") << u"raiseRadioMessageReceived"_qs;
        QTest::newRow("#TMA:B:hi") << u"raiseTextMessageReceived"_qs;
        QTest::newRow("#TMSERVER:B:hi") << u"raiseTextMessageReceived"_qs;
        QTest::newRow("$ARS:C:METAR:t") << u"raiseMetarResponseReceived"_qs;
        QTest::newRow("$FPA:B:2:3:4:5:6:7:8:9:10:11:12:13:14:15:16") << u"raiseFlightPlanReceived"_qs;
        QTest::newRow("#SBA:B:PIR") << u"raisePlaneInfoRequestReceived"_qs;
        QTest::newRow("#SBA:B:PI:GEN:CSL=x") << u"raisePlaneInfoResponseReceived"_qs;
        QTest::newRow("$PIA:B:1") << u"raisePingReceived"_qs;
        QTest::newRow("$POA:B:1") << u"raisePongReceived"_qs;
        QTest::newRow("$CQA:B:RN") << u"raiseClientQueryReceived"_qs;
        QTest::newRow("$CRA:B:RN") << u"raiseClientQueryResponseReceived"_qs;
        QTest::newRow("$!!S:C:r") << u"raiseKillRequestReceived"_qs;
        QTest::newRow("$ERS:C:1:p:m") << u"raiseProtocolErrorReceived"_qs;
        QTest::newRow("$SFS:C:1") << u"raiseSendFastReceived"_qs;
        QTest::newRow("#SLA:1:2:3:4:5:6:7:8:9:10:11") << u"raiseFastPilotPositionReceived"_qs;
        QTest::newRow("#STA:1:2:3:4:5") << u"raiseFastPilotPositionReceived"_qs;
        QTest::newRow("#MUS:C:1") << u"raiseMuteReceived"_qs;
        QTest::newRow("$ZCS:C:abc") << u""_qs;
        QTest::newRow("$XXS:C:not..a.name") << u""_qs;
    }
    void eachLineRaisesItsOneSignal()
    {
        QFETCH(QString, signal);
        const QString line = QString::fromLatin1(QTest::currentDataTag());
        Session session;
        QVERIFY(session.open());
        const QMetaObject &meta = FsdClient::staticMetaObject;
        std::vector<std::pair<QString, std::unique_ptr<QSignalSpy>>> spies;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QString name = QString::fromLatin1(meta.method(i).name());
            if (meta.method(i).methodType() == QMetaMethod::Signal && name.startsWith(u"raise"))
                spies.emplace_back(name, std::make_unique<QSignalSpy>(&session.client, meta.method(i)));
        }
        session.peer.inject(line);
        TRY_COMPARE(session.received.count(), 1);
        QCOMPARE(firstArgument(session.received), line + u"\r\n"_qs);
        for (const auto &[name, spy] : spies) {
            if (name != u"raiseRawDataReceived" && name != u"raiseRawDataSent")
                QCOMPARE(QStringList(spy->count(), name), name == signal ? QStringList{name} : QStringList());
        }
    }

    void aHandlerThatRunsTheEventLoopKeepsTheOrder()
    {
        Session session;
        QVERIFY(session.open());
        QStringList order;
        connect(&session.client, &FsdClient::raisePingReceived, this, [&](const tarvo::fsd::pdu::Ping &ping) {
            order << ping.timestamp;
            if (order.size() == 1) { // what comes in now waits behind the rest of the chunk
                session.peer.inject(QStringLiteral("$PISERVER:CES1:3"));
                QCoreApplication::processEvents();
            }
        });
        session.peer.injectBytes("$PISERVER:CES1:1\r\n$PISERVER:CES1:2\r\n");
        TRY_COMPARE(order, (QStringList{u"1"_qs, u"2"_qs, u"3"_qs}));
    }
};

TARVO_TEST(FsdClientTest)
#include "FsdClientTest.moc"

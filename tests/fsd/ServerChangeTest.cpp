#include "fsd/FsdClient.h"
#include "fsd/NameResolver.h"
#include "fsd/pdu/Ping.h"
#include "support/FsdPeer.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

#include <algorithm>
#include <optional>

using tarvo::fsd::FsdClient;
using tarvo::fsd::NameResolver;
using tarvo::fsd::pdu::Ping;
using tarvo::test::FsdPeer;

namespace {

/// A client connected to the first of two servers, which share a port.
struct TwoServers
{
    FsdPeer first;
    std::optional<FsdPeer> second;
    FsdClient client;
    QSignalSpy connected{&client, &FsdClient::raiseNetworkConnected};
    QSignalSpy disconnected{&client, &FsdClient::raiseNetworkDisconnected};
    QSignalSpy errors{&client, &FsdClient::raiseNetworkError};
    QSignalSpy pings{&client, &FsdClient::raisePingReceived};
    QStringList from;       ///< the senders of the pings
    bool nestedWell = true; ///< the actions of whenPinged() succeeded

    TwoServers()
    {
        QObject::connect(&client, &FsdClient::raisePingReceived, &client,
                         [this](const Ping &ping) { from << ping.From; });
    }

    bool open()
    {
        return client.connectToServer(first.address(), first.port()) &&
               tarvo::test::waitFor([this] { return client.isConnected(); }) && first.waitForConnection();
    }
    bool listenAsSecond()
    {
        second.emplace(QStringLiteral("127.0.0.2"), first.port());
        return second->port() == first.port();
    }
    void change(const QString &server = QStringLiteral("127.0.0.2"))
    {
        first.inject(QStringLiteral("$XXSERVER:CES1:%1").arg(server));
    }
    /// Runs `action` under the signal of the ping with this text.
    template <class Action>
    void whenPinged(const QString &text, Action action)
    {
        QObject::connect(&client, &FsdClient::raisePingReceived, &client, [this, text, action](const Ping &ping) {
            if (ping.timestamp == text)
                nestedWell = action() && nestedWell;
        });
    }
    bool layInFirst(const QByteArray &bytes) { return lay(first, bytes); }
    bool layInSecond(const QByteArray &bytes) { return second->waitForConnection() && lay(*second, bytes); }
    /// Lets `server` send, and waits until the bytes are in the client's socket.
    bool lay(FsdPeer &server, const QByteArray &bytes)
    {
        server.injectBytes(bytes);
        return tarvo::test::waitFor([&] {
            const auto sockets = client.findChildren<QTcpSocket *>();
            return std::any_of(sockets.begin(), sockets.end(), [&](QTcpSocket *socket) {
                return socket->peerName() == server.address() && socket->bytesAvailable() == bytes.size();
            });
        });
    }
    bool waitForSwap()
    {
        return tarvo::test::waitFor([this] { return client.serverAddress() == second->address(); });
    }
    /// Opens and moves to the second server.
    bool move()
    {
        if (!open() || !listenAsSecond())
            return false;
        change();
        return second->waitForConnection() && first.waitForClose();
    }
};

} // namespace

class ServerChangeTest : public QObject
{
    Q_OBJECT

private slots:
    void theSessionGoesOnAtTheNewServerWithoutASignal()
    {
        TwoServers net;
        QVERIFY(net.move());
        net.second->inject(QStringLiteral("$PISERVER:CES1:new"));
        TRY_COMPARE(net.pings.count(), 1);
        net.client.sendRaw(QStringLiteral("$POCES1:SERVER:new\r\n"));
        QVERIFY(net.second->expect(QStringLiteral("$POCES1:SERVER:new")));
        QCOMPARE(net.client.serverAddress(), QStringLiteral("127.0.0.2"));
        QVERIFY(net.client.isConnected());
        QCOMPARE(net.connected.count(), 1); // the one of the first connect
        QCOMPARE(net.disconnected.count(), 0);
        QCOMPARE(net.errors.count(), 0);
        QVERIFY(net.first.receivedBytes().isEmpty());
    }

    void theOldServerMayHangUpAtOnce()
    {
        TwoServers net;
        QVERIFY(net.open());
        QVERIFY(net.listenAsSecond());
        net.change();
        net.first.closeConnection();
        QVERIFY(net.second->waitForConnection());
        QVERIFY(net.second->expectNothing());
        QVERIFY(net.client.isConnected());
        QCOMPARE(net.disconnected.count(), 0);
        QCOMPARE(net.errors.count(), 0); // silent while changing
    }

    void whatTheOldServerStillSaysIsHandled()
    {
        TwoServers net;
        QVERIFY(net.open());
        QVERIFY(net.listenAsSecond());
        net.first.injectBytes("$XXSERVER:CES1:127.0.0.2\r\n$PISERVER:CES1:old\r\n");
        QVERIFY(net.second->waitForConnection());
        QVERIFY(net.second->expectNothing());
        QCOMPARE(net.pings.count(), 1);
    }

    void theHalfLineBehindAChangeIsForgotten()
    {
        TwoServers net;
        QVERIFY(net.open());
        QVERIFY(net.listenAsSecond());
        net.first.injectBytes("$XXSERVER:CES1:127.0.0.2\r\n$PISER");
        QVERIFY(net.second->waitForConnection() && net.first.waitForClose());
        net.second->inject(QStringLiteral("$PISERVER:CES1:new"));
        TRY_COMPARE(net.pings.count(), 1);
        QCOMPARE(net.from, QStringList{QStringLiteral("SERVER")});
        QCOMPARE(net.errors.count(), 0);
    }

    void theHalfLineBehindARefusedChangeIsForgottenToo()
    {
        TwoServers net;
        QVERIFY(net.open());
        QSignalSpy received(&net.client, &FsdClient::raiseRawDataReceived);
        net.first.injectBytes("$XXSERVER:CES1:127.0.0.2\r\n$PISER"); // nobody listens there
        TRY_COMPARE(received.count(), 1);
        net.first.inject(QStringLiteral("VER:CES1:old"));
        TRY_COMPARE(received.count(), 2);
        QCOMPARE(net.pings.count(), 0);
        QCOMPARE(net.errors.count(), 1);
        QCOMPARE(net.errors.at(0).at(0).toString(), QStringLiteral("Invalid PDU type. (Raw packet: VER:CES1:old)"));
    }

    // What a server says under a nested event loop waits in its socket, unannounced. The two tests below lay bytes
    // there, so that only the reading at the swap can find them.

    void whatWaitsInTheOldSocketIsHandledAtTheSwap_data()
    {
        QTest::addColumn<QByteArray>("late");
        QTest::newRow("a line") << QByteArray("$PIOLD:CES1:late\r\n");
        QTest::newRow("a line and a half") << QByteArray("$PIOLD:CES1:late\r\n$PISER");
    }
    void whatWaitsInTheOldSocketIsHandledAtTheSwap()
    {
        QFETCH(QByteArray, late);
        TwoServers net;
        QVERIFY(net.open());
        QVERIFY(net.listenAsSecond());
        net.whenPinged(QStringLiteral("1"), [&] { return net.layInFirst(late); });
        net.whenPinged(QStringLiteral("2"), [&] { return net.waitForSwap(); });
        net.first.injectBytes("$PIA:CES1:1\r\n$XXSERVER:CES1:127.0.0.2\r\n$PIB:CES1:2\r\n");
        QVERIFY(net.second->waitForConnection() && net.waitForSwap());
        net.second->inject(QStringLiteral("$PISERVER:CES1:new"));
        TRY_COMPARE(net.from, (QStringList{u"A"_qs, u"B"_qs, u"OLD"_qs, u"SERVER"_qs}));
        QVERIFY(net.nestedWell);
        QCOMPARE(net.errors.count(), 0);
    }

    void whatWaitsInTheNewSocketIsHandledAtTheSwap()
    {
        TwoServers net;
        QVERIFY(net.open());
        QVERIFY(net.listenAsSecond());
        net.whenPinged(QStringLiteral("1"), [&] { // the last moment before the swap
            QTcpSocket *socket = net.client.findChildren<QTcpSocket *>().constLast();
            connect(socket, &QTcpSocket::stateChanged, this, [&](QAbstractSocket::SocketState state) {
                if (state == QAbstractSocket::ConnectedState)
                    net.nestedWell = net.layInSecond("$PINEW:CES1:early\r\n") && net.nestedWell;
            });
            return socket->state() == QAbstractSocket::ConnectingState;
        });
        net.first.injectBytes("$XXSERVER:CES1:127.0.0.2\r\n$PIA:CES1:1\r\n");
        TRY_COMPARE(net.from, (QStringList{u"A"_qs, u"NEW"_qs}));
        QVERIFY(net.nestedWell);
        QCOMPARE(net.errors.count(), 0);
    }

    void aLaterChangeOvertakesALookUp()
    {
        TwoServers net;
        QVERIFY(net.open());
        QVERIFY(net.listenAsSecond());
        connect(
            &net.client, &FsdClient::raiseRawDataReceived, this,
            [&] {
                QMetaObject::invokeMethod(
                    &net.client, [&] { net.client.receive("$XXSERVER:CES1:127.0.0.2\r\n"); }, Qt::QueuedConnection);
            },
            Qt::SingleShotConnection);
        net.change(QStringLiteral("localhost"));
        QVERIFY(net.second->waitForConnection());
        QVERIFY(net.second->expectNothing());
        TRY_VERIFY(!net.client.isResolving());
        QVERIFY(net.second->expectNothing()); // the look-up's answer changes nothing any more
        QCOMPARE(net.client.serverAddress(), QStringLiteral("127.0.0.2"));
        QCOMPARE(net.disconnected.count(), 0);
    }

    void aChangeIsLeftOutWhileThePilotLeavesForAnotherServer()
    {
        TwoServers net;
        QVERIFY(net.open());
        QVERIFY(net.listenAsSecond());
        QMetaObject::invokeMethod(
            &net.client, [&] { net.client.receive("$XXSERVER:CES1:127.0.0.2\r\n"); }, Qt::QueuedConnection);
        QVERIFY(!net.client.connectToServer(u"not..a.name"_qs, 1));
        QCOMPARE(net.errors.count(), 1); // the look-up went on to its end
        QVERIFY(net.first.expectNothing());
        QCOMPARE(net.second->connectionCount(), 0);
    }

    void aChangeToldUnderTheEndOfTheConnectionEndsWithIt()
    {
        TwoServers net;
        QVERIFY(net.open());
        QSignalSpy lookUps(net.client.findChild<NameResolver *>(), &NameResolver::requestEnded);
        connect(&net.client, &FsdClient::raiseNetworkError, &net.client,
                [&] { net.client.receive("$XXSERVER:CES1:not..a.name\r\n"); });
        net.first.closeConnection();
        TRY_COMPARE(lookUps.count(), 2); // the one before, and the server's
        QCOMPARE(net.disconnected.count(), 1);
        QCOMPARE(net.errors.count(), 1);
    }

    void anotherConnectionDuringAChangesLookUpEndsTheChange()
    {
        TwoServers net;
        QVERIFY(net.open());
        net.change(QStringLiteral("localhost"));
        net.whenPinged(QStringLiteral("now"), [&net] { return !net.client.connectToServer(u"not..a.name"_qs, 1); });
        net.first.inject(QStringLiteral("$PISERVER:CES1:now"));
        TRY_COMPARE(net.pings.size(), 1);
        QVERIFY(net.nestedWell);
        net.errors.clear(); // of the name
        net.first.closeConnection();
        TRY_COMPARE(net.disconnected.size(), 1);
        QCOMPARE(net.errors.size(), 1);
    }

    void aRefusedChangeKeepsTheOldServer()
    {
        TwoServers net;
        QVERIFY(net.open());
        net.change(); // nobody listens there
        net.first.inject(QStringLiteral("$PISERVER:CES1:still here"));
        TRY_COMPARE(net.pings.count(), 1);
        net.first.closeConnection(); // heard again once the change has failed
        TRY_COMPARE(net.disconnected.count(), 1);
    }

    void aRefusedChangeWithTheOldServerGoneEndsTheSession()
    {
        TwoServers net;
        QVERIFY(net.open());
        net.change();
        net.first.abortConnection();
        TRY_COMPARE(net.disconnected.count(), 1);
        QVERIFY(!net.client.isConnected());
    }

    void aNameWithoutAddressKeepsTheOldServer()
    {
        TwoServers net;
        QVERIFY(net.open());
        net.change(QStringLiteral("not..a.name"));
        QVERIFY(net.first.expectNothing());
        TRY_COMPARE(net.client.findChildren<QTcpSocket *>().size(), 1); // the change has failed
        QVERIFY(net.client.isConnected());
        QCOMPARE(net.disconnected.count(), 0);
        QCOMPARE(net.errors.count(), 0);
        net.first.closeConnection(); // errors are heard again
        TRY_COMPARE(net.errors.count(), 1);
        QCOMPARE(net.disconnected.count(), 1);
    }

    void aMalformedChangeLeavesErrorsAudible()
    {
        TwoServers net;
        QVERIFY(net.open());
        net.first.inject(QStringLiteral("$XXSERVER:CES1"));
        TRY_COMPARE(net.errors.count(), 1);
        QCOMPARE(net.errors.at(0).at(0).toString(),
                 QStringLiteral("Invalid field count for ChangeServer command. (Raw packet: SERVER:CES1)"));
        net.first.closeConnection();
        TRY_COMPARE(net.disconnected.count(), 1);
        QCOMPARE(net.errors.count(), 2);
    }

    void theNewServersCloseIsReportedOnce()
    {
        TwoServers net;
        QVERIFY(net.move());
        net.second->closeConnection();
        TRY_COMPARE(net.disconnected.count(), 1);
        QVERIFY(!net.client.isConnected());
        QCOMPARE(net.errors.count(), 1);
        QCOMPARE(net.errors.at(0).at(0).toString(),
                 QStringLiteral("RemoteHostClosedError: The remote host closed the connection"));
    }

    void aSecondChangeLeadsBack()
    {
        TwoServers net;
        QVERIFY(net.move());
        net.second->inject(QStringLiteral("$XXSERVER:CES1:127.0.0.1"));
        net.second->closeConnection();
        QVERIFY(net.first.waitForConnection(2));
        QVERIFY(net.first.expectNothing());
        QVERIFY(net.client.isConnected());
        QCOMPARE(net.disconnected.count(), 0);
        QCOMPARE(net.errors.count(), 0);
    }

    void theLaterOfTwoChangesHolds()
    {
        TwoServers net;
        QVERIFY(net.open());
        QVERIFY(net.listenAsSecond());
        FsdPeer third(QStringLiteral("127.0.0.3"), net.first.port());
        net.first.injectBytes("$XXSERVER:CES1:127.0.0.2\r\n$XXSERVER:CES1:127.0.0.3\r\n");
        QVERIFY(third.waitForConnection());
        QVERIFY(third.expectNothing());
        QCOMPARE(net.client.serverAddress(), QStringLiteral("127.0.0.3"));
        QCOMPARE(net.disconnected.count(), 0);
    }

    void disconnectWhileChangingEndsBoth_data()
    {
        QTest::addColumn<QString>("server");
        QTest::newRow("connecting") << QStringLiteral("127.0.0.2");
        QTest::newRow("looking up") << QStringLiteral("localhost");
    }
    void disconnectWhileChangingEndsBoth()
    {
        QFETCH(QString, server);
        TwoServers net;
        QVERIFY(net.open());
        QVERIFY(net.listenAsSecond());
        connect(&net.client, &FsdClient::raiseRawDataReceived, this, [&] {
            QMetaObject::invokeMethod(&net.client, &FsdClient::disconnectFromServer, Qt::QueuedConnection);
        });
        net.change(server);
        QVERIFY(net.first.waitForClose());
        TRY_COMPARE(net.disconnected.count(), 1);
        QVERIFY(!net.client.isConnected());
        QVERIFY(net.open()); // back at the first, and nothing is left of the change
        QVERIFY(net.first.expectNothing());
        QCOMPARE(net.client.serverAddress(), QStringLiteral("127.0.0.1"));
    }
};

TARVO_TEST(ServerChangeTest)
#include "ServerChangeTest.moc"

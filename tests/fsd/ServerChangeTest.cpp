#include "fsd/FsdClient.h"
#include "support/FsdPeer.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

#include <optional>

using tarvo::fsd::FsdClient;
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

    bool open()
    {
        return client.connectToServer(first.address(), first.port()) &&
               QTest::qWaitFor([this] { return client.isConnected(); }) && first.waitForConnection();
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
        QTRY_COMPARE(net.pings.count(), 1);
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

    void aRefusedChangeKeepsTheOldServer()
    {
        TwoServers net;
        QVERIFY(net.open());
        net.change(); // nobody listens there
        net.first.inject(QStringLiteral("$PISERVER:CES1:still here"));
        QTRY_COMPARE(net.pings.count(), 1);
        net.first.closeConnection(); // heard again once the change has failed
        QTRY_COMPARE(net.disconnected.count(), 1);
    }

    void aRefusedChangeWithTheOldServerGoneEndsTheSession()
    {
        TwoServers net;
        QVERIFY(net.open());
        net.change();
        net.first.abortConnection();
        QTRY_COMPARE(net.disconnected.count(), 1);
        QVERIFY(!net.client.isConnected());
    }

    void aNameWithoutAddressKeepsTheOldServer()
    {
        TwoServers net;
        QVERIFY(net.open());
        net.change(QStringLiteral("not..a.name"));
        QVERIFY(net.first.expectNothing());
        QVERIFY(net.client.isConnected());
        QCOMPARE(net.disconnected.count(), 0);
        QCOMPARE(net.errors.count(), 0);
        net.first.closeConnection(); // errors are heard again
        QTRY_COMPARE(net.errors.count(), 1);
        QCOMPARE(net.disconnected.count(), 1);
    }

    void aMalformedChangeLeavesErrorsAudible()
    {
        TwoServers net;
        QVERIFY(net.open());
        net.first.inject(QStringLiteral("$XXSERVER:CES1"));
        QTRY_COMPARE(net.errors.count(), 1);
        QCOMPARE(net.errors.at(0).at(0).toString(),
                 QStringLiteral("Invalid field count for ChangeServer command. (Raw packet: SERVER:CES1)"));
        net.first.closeConnection();
        QTRY_COMPARE(net.disconnected.count(), 1);
        QCOMPARE(net.errors.count(), 2);
    }

    void theNewServersCloseIsReportedOnce()
    {
        TwoServers net;
        QVERIFY(net.move());
        net.second->closeConnection();
        QTRY_COMPARE(net.disconnected.count(), 1);
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
        QCOMPARE(net.disconnected.count(), 1);
        QVERIFY(!net.client.isConnected());
        QVERIFY(net.open()); // back at the first, and nothing is left of the change
        QVERIFY(net.first.expectNothing());
        QCOMPARE(net.client.serverAddress(), QStringLiteral("127.0.0.1"));
    }
};

TARVO_TEST(ServerChangeTest)
#include "ServerChangeTest.moc"

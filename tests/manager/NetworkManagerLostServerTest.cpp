// A server that has gone shows while a line is sent: the session then ends under the call that sends.

#include "fsd/FsdClient.h"
#include "manager/Session.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using tarvo::fsd::FsdClient;
using tarvo::manager::NetworkManager;
using namespace tarvo::test;

namespace {

/// Runs `action` once, from within the notification `text`.
template <class Action>
void onNotification(Session &session, const QString &text, Action action)
{
    auto *scope = new QObject(session.manager.get());
    QObject::connect(session.manager.get(), &NetworkManager::notificationPosted, scope,
                     [scope, text, action](const QString &posted) {
                         if (posted != text)
                             return;
                         scope->disconnect();
                         scope->deleteLater();
                         action();
                     });
}

/// Closes the connection under a line that the server hasn't read, so that the next one can't be sent.
void loseServer(Session &session)
{
    session.manager->sendWallop(u"x"_qs);
    session.peer.abortConnection();
}

} // namespace

class NetworkManagerLostServerTest : public QObject
{
    Q_OBJECT

private slots:
    void duringTheLogin()
    {
        Session s;
        onNotification(s, u"Connected to network."_qs, [&s] {
            s.peer.waitForConnection();
            s.peer.abortConnection();
        });
        QVERIFY(s.connectObserver());
        TRY_EVENTS(s, u"disconnected"_qs);
        QVERIFY(!s.isRunning("slowTimer"));
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, connected, closedByServer, disconnected}));
    }

    void atTheLoginLine()
    {
        Session s;
        onNotification(s, u"Connected to network."_qs, [&s] {
            s.peer.waitForConnection();
            loseServer(s);
        });
        QVERIFY(s.connectObserver());
        TRY_EVENTS(s, u"disconnected"_qs);
        QVERIFY(!s.isRunning("slowTimer"));
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, connected, closedByServer, disconnected}));
    }

    void beforeTheTokenIsAskedFor()
    {
        Session s(Protocol::Token);
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.waitForConnection());
        connect(
            s.manager->findChild<FsdClient *>(), &FsdClient::raiseRawDataReceived, s.manager.get(),
            [&s] { loseServer(s); }, Qt::SingleShotConnection);
        s.peer.inject(u"$DISERVER:CLIENT:FSD 3:abc"_qs);
        TRY_EVENTS(s, u"disconnected"_qs);
        bool answered = false; // another request, to know that all earlier ones have come
        s.api->getFSDToken([&](bool, const QString &, const QString &) { answered = true; });
        TRY_VERIFY(s.tokens.waiting() > 0);
        QCOMPARE(s.tokens.waiting(), 1);
        s.tokens.grant(u"t0ken"_qs);
        TRY_VERIFY(answered);
        QVERIFY(!s.isRunning("slowTimer"));
    }

    void atADisconnect()
    {
        Session s;
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.waitForConnection());
        TRY_VERIFY(s.notifications.contains(connected));
        s.takeNotifications();
        loseServer(s);
        s.manager->disconnectFromNetwork();
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected"_qs});
        QCOMPARE(s.takeNotifications(), (QStringList{closedByServer, disconnected}));
    }

    void atAForcedDisconnect()
    {
        Session s;
        s.addSimulator();
        QVERIFY(s.connectPilot());
        QVERIFY(s.peer.waitForConnection());
        TRY_VERIFY(s.notifications.contains(connected));
        s.takeNotifications();
        loseServer(s);
        emit s.sim->forceDisconnect(u"crash"_qs);
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected forced"_qs});
        QCOMPARE(s.takeNotifications(),
                 (QStringList{closedByServer, u"10 Forcibly disconnected from network: crash"_qs}));
    }

    void aConnectAfterwardsIsNotTakenDown()
    {
        Session s;
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.waitForConnection());
        TRY_VERIFY(s.notifications.contains(connected));
        onNotification(s, closedByServer.mid(3), [&s] {
            s.manager->disconnectFromNetwork();
            QVERIFY(s.connectObserver());
        });
        loseServer(s);
        s.manager->disconnectFromNetwork();
        QVERIFY(s.peer.waitForConnection(2));
        EXPECT_LINE(s, u"#AAAB1:SERVER:Li Lei:1001:secret:1:9"_qs);
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected"_qs});
    }

    void aDisconnectFromWithinTheConnectedNotificationLogsNobodyIn()
    {
        Session s;
        onNotification(s, u"Connected to network."_qs, [&s] { s.manager->disconnectFromNetwork(); });
        QVERIFY(s.connectObserver());
        TRY_EVENTS(s, u"disconnected"_qs);
        QVERIFY(!s.isRunning("slowTimer"));
        QVERIFY(s.peer.waitForConnection());
        QVERIFY(s.peer.waitForClose());
        EXPECT_LINE(s, u"#DAAB1:1001"_qs); // and no login
        QVERIFY(s.peer.expectNothing());
    }
};

TARVO_TEST(NetworkManagerLostServerTest)
#include "NetworkManagerLostServerTest.moc"

#include "manager/Session.h"
#include "support/TestRegistry.h"

#include <QDir>

using namespace tarvo;
using tarvo::manager::NetworkManager;
using namespace tarvo::test;

namespace {

const QString greeting = u"$DISERVER:CLIENT:FSD 3:abc"_qs;
const QString pilotSlow = u"@S:AB1:0:1:40.000000:116.500000:0:0:0:0"_qs;
const QString pilotStopped = u"#STAB1:40.000000:116.500000:0.00:0.00:0:0.00"_qs;
const QString observerSlow = u"%AB1:99998:0:40:1:0.00000:0.00000:0"_qs;
const QString observing = u"9 Connected to network in observer mode."_qs;

/// True when the client has identified itself.
bool greet(Session &session)
{
    session.peer.inject(greeting);
    return session.peer.expect(Session::identification());
}

/// True when it asks for a token then.
bool greetForAToken(Session &session)
{
    return greet(session) && waitFor([&session] { return session.tokens.waiting() == 1; });
}

QStringList logLines(const Session &session)
{
    const QDir folder(session.config.logsFolder() + u"/network"_qs);
    const QStringList names = folder.entryList(QDir::Files);
    QFile file(folder.filePath(names.value(0)));
    if (names.size() != 1 || !file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace

class NetworkManagerLoginTest : public QObject
{
    Q_OBJECT

private slots:
    void classicPilot()
    {
        Session s;
        s.addSimulator();
        QVERIFY(s.connectPilot());
        EXPECT_LINES(s, u"#APAB1:SERVER:1001:secret:1:9:5:Li Lei ZBAA"_qs, u"$CQAB1:SERVER:IP"_qs, pilotSlow,
                     pilotStopped); // before the greeting
        QVERIFY(greet(s));
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, connected}));
        QCOMPARE(s.takeEvents(), QStringList());

        s.peer.inject(u"$CRSERVER:AB1:IP:10.0.0.9"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeNotifications(), QStringList{connected}); // the same words a second time
        QCOMPARE(s.takeEvents(), QStringList{u"connected AB1"_qs});
        QCOMPARE(s.sim->takeCalls(), QStringList{u"networkConnected AB1 EF-GH pilot"_qs});
        QCOMPARE(s.tokens.waiting(), 0);
    }

    void classicObserver()
    {
        Session s;
        QVERIFY(s.connectObserver());
        EXPECT_LINES(s, u"#AAAB1:SERVER:Li Lei:1001:secret:1:9"_qs, u"$CQAB1:SERVER:IP"_qs, observerSlow);
        QVERIFY(greet(s));
        s.peer.inject(u"#AAAB1:SERVER:Li Lei:1001::1:9"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, connected, observing}));
        QCOMPARE(s.takeEvents(), QStringList{u"connected AB1"_qs});
        QVERIFY(s.manager->connectInfo().observer);
    }

    void tokenPilot()
    {
        Session s(Protocol::Token);
        s.addSimulator();
        QVERIFY(s.connectPilot());
        QVERIFY(s.peer.waitForConnection());
        QVERIFY(s.peer.expectNothing()); // nothing before the greeting
        QVERIFY(greetForAToken(s));
        QVERIFY(s.peer.expectNothing()); // and no login before the token
        s.tokens.grant(u"t0ken"_qs);
        EXPECT_LINES(s, u"#APAB1:SERVER:1001:t0ken:1:100:5:Li Lei ZBAA"_qs, u"$CQAB1:SERVER:IP"_qs, pilotSlow,
                     pilotStopped);
        s.peer.inject(u"#APab1 :SERVER:1001::1:100:5:Li Lei"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, connected, connected}));
        QCOMPARE(s.takeEvents(), QStringList{u"connected AB1"_qs});
    }

    void tokenObserver()
    {
        Session s(Protocol::Token);
        QVERIFY(s.connectObserver());
        QVERIFY(greetForAToken(s));
        s.tokens.grant(u"t0ken"_qs);
        EXPECT_LINES(s, u"#AAAB1:SERVER:Li Lei:1001:t0ken:1:100"_qs, u"$CQAB1:SERVER:IP"_qs, observerSlow);
        QVERIFY(s.peer.expectNothing());
    }

    void whatThePilotTypedComesBeforeWhatIsStored()
    {
        Session s;
        s.config.set(config::authPassword, u"stored"_qs);
        s.config.set(config::sessionUsername, u"2002"_qs);
        s.config.set(config::sessionPassword, u"typed"_qs);
        QVERIFY(s.connectObserver());
        EXPECT_LINE(s, u"#AAAB1:SERVER:Li Lei:2002:typed:1:9"_qs);
        s.manager->disconnectFromNetwork();
        s.config.reset(config::sessionUsername);
        s.config.reset(config::sessionPassword);
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.waitForConnection(2));
        EXPECT_LINE(s, u"#AAAB1:SERVER:Li Lei:1001:stored:1:9"_qs);
    }

    void everyGreetingIsAnswered()
    {
        Session s;
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.nextLine().startsWith(u"#AA"_qs));
        EXPECT_LINES(s, u"$CQAB1:SERVER:IP"_qs, observerSlow);
        QVERIFY(greet(s));
        QVERIFY(greet(s));
        s.peer.inject(u"$DISERVER:CLIENT:short"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeNotifications().last(), u"10 Invalid field count for ServerIdentification command. "
                                               "(Raw packet: SERVER:CLIENT:short)"_qs);
    }

    void aTokenIsAskedForOnceAtATime()
    {
        Session s(Protocol::Token);
        QVERIFY(s.connectObserver());
        for (int i = 0; i < 20; ++i)
            s.peer.inject(greeting);
        for (int i = 0; i < 20; ++i)
            EXPECT_LINE(s, Session::identification()); // each is answered
        QVERIFY(s.peer.expectNothing());
        TRY_COMPARE(s.tokens.waiting(), 1);
        s.tokens.refuse(u"banned"_qs);
        QVERIFY(s.peer.waitForClose());
        QVERIFY(s.connectObserver()); // the next session asks for its own
        QVERIFY(s.peer.waitForConnection(2));
        QVERIFY(greetForAToken(s));
        s.tokens.grant(u"t0ken"_qs);
        QVERIFY(s.peer.nextLine().startsWith(u"#AAAB1:SERVER:Li Lei:1001:t0ken:"_qs));
        s.peer.inject(greeting); // and once more when that is answered
        TRY_COMPARE(s.tokens.waiting(), 1);
    }

    void tokenRefused()
    {
        Session s(Protocol::Token);
        s.addSimulator();
        QVERIFY(s.connectPilot());
        QVERIFY(greetForAToken(s));
        s.tokens.refuse(u"banned"_qs);
        QVERIFY(s.peer.waitForClose());
        QVERIFY(s.peer.expectNothing()); // no delete PDU: nobody had logged in
        QCOMPARE(s.takeNotifications(),
                 (QStringList{connecting, connected, u"10 Network authentication error: banned"_qs,
                              u"10 Forcibly disconnected from network: banned"_qs}));
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected forced"_qs});
    }

    void aTokenThatComesTooLateDoesNothing()
    {
        Session s(Protocol::Token);
        QVERIFY(s.connectObserver());
        QVERIFY(greetForAToken(s));
        s.manager->disconnectFromNetwork();
        s.takeEvents();
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.waitForConnection(2));
        s.tokens.grant(u"old"_qs);
        QVERIFY(greetForAToken(s));
        s.tokens.refuse(u"new"_qs);
        TRY_EVENTS(s, u"disconnected forced"_qs);
        QVERIFY(s.peer.expectNothing());
    }

    void aTokenMayOutliveTheManager()
    {
        Session s(Protocol::Token);
        QVERIFY(s.connectObserver());
        QVERIFY(greetForAToken(s));
        bool answered = false;
        s.manager.reset();
        s.api->getFSDToken([&](bool, const QString &, const QString &) { answered = true; });
        TRY_COMPARE(s.tokens.waiting(), 2);
        s.tokens.grant(u"late"_qs);
        s.tokens.grant(u"later"_qs);
        TRY_VERIFY(answered);
        QVERIFY(s.peer.waitForClose());
    }

    void wrongPassword()
    {
        Session s;
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.nextLine().startsWith(u"#AA"_qs));
        s.peer.inject(u"$ERSERVER:AB1:6::Invalid CID/password"_qs);
        s.peer.closeConnection();
        TRY_EVENTS(s, u"disconnected"_qs);
        QCOMPARE(s.takeNotifications(),
                 (QStringList{connecting, connected, u"10 Network Error: Invalid CID/password"_qs, closedByServer,
                              disconnected}));
        QVERIFY(s.connectObserver()); // the next attempt is open
    }

    void serverCloses()
    {
        Session s;
        s.addSimulator();
        QVERIFY(s.connectPilot());
        s.peer.inject(u"$CRSERVER:AB1:IP:10.0.0.9"_qs);
        TRY_EVENTS(s, u"connected AB1"_qs);
        s.sim->takeCalls();
        s.takeNotifications();
        s.peer.closeConnection();
        TRY_EVENTS(s, u"disconnected"_qs);
        QCOMPARE(s.takeNotifications(), (QStringList{closedByServer, disconnected}));
        QCOMPARE(s.sim->takeCalls(),
                 (QStringList{u"networkDisconnected"_qs, u"removeAllAircraft"_qs, u"clearControllers"_qs}));
        QVERIFY(!s.isRunning("slowTimer"));
    }

    void killed_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("text");
        QTest::newRow("with a reason") << u"$!!SERVER:AB1:Bad manners"_qs
                                       << u"10 Forcibly disconnected from network: Bad manners"_qs;
        QTest::newRow("the reason is one field")
            << u"$!!SERVER:AB1:Bad:manners"_qs << u"10 Forcibly disconnected from network: Bad"_qs;
        QTest::newRow("empty reason") << u"$!!SERVER:AB1:"_qs << u"10 Forcibly disconnected from network."_qs;
        QTest::newRow("no reason") << u"$!!SERVER:AB1"_qs << u"10 Forcibly disconnected from network."_qs;
    }

    void killed()
    {
        QFETCH(QString, line);
        QFETCH(QString, text);
        Session s;
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.waitForConnection());
        s.peer.inject(line);
        s.peer.closeConnection();
        TRY_EVENTS(s, u"disconnected forced"_qs);
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, connected, closedByServer, text}));
    }

    void aForcedEndIsForgottenAtTheNextConnect()
    {
        Session s;
        QVERIFY(s.connectObserver());
        s.peer.inject(u"$!!SERVER:AB1:Bad manners"_qs);
        s.peer.closeConnection();
        TRY_EVENTS(s, u"disconnected forced"_qs);
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.waitForConnection(2));
        s.takeNotifications();
        s.peer.closeConnection();
        TRY_EVENTS(s, u"disconnected"_qs);
        QCOMPARE(s.takeNotifications().last(), disconnected);
    }

    /// Both ends of a session, told to pilot, simulator and listeners in one fixed order.
    void whoHearsWhatInWhichOrder()
    {
        Session s;
        s.addSimulator();
        QVERIFY(s.connectPilot());
        QVERIFY(s.peer.skip(4));
        auto *manager = s.manager.get();
        connect(manager, &NetworkManager::notificationPosted, manager,
                [&s](const QString &text) { s.sim->calls << u"posted "_qs + text; });
        connect(manager, &NetworkManager::networkConnected, manager,
                [&s](const QString &callsign) { s.sim->calls << u"signal connected "_qs + callsign; });
        connect(manager, &NetworkManager::networkDisconnected, manager,
                [&s](bool) { s.sim->calls << u"signal disconnected"_qs; });
        s.peer.inject(u"$CRSERVER:AB1:IP:10.0.0.9"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.sim->takeCalls(), (QStringList{u"posted Connected to network."_qs, u"signal connected AB1"_qs,
                                                  u"networkConnected AB1 EF-GH pilot"_qs}));
        s.manager->disconnectFromNetwork();
        QCOMPARE(s.sim->takeCalls(),
                 (QStringList{u"posted Disconnected from network."_qs, u"networkDisconnected"_qs,
                              u"removeAllAircraft"_qs, u"clearControllers"_qs, u"signal disconnected"_qs}));
    }

    /// Each step reads the protocol when it comes: a login that has gone out classically stays, and the greeting that
    /// follows the change asks for a token, which logs in a second time.
    void changingToTokensBeforeTheGreetingLogsInAgain()
    {
        Session s(Protocol::Token);
        s.config.set(config::authVatsim, false);
        QVERIFY(s.connectObserver());
        EXPECT_LINES(s, u"#AAAB1:SERVER:Li Lei:1001:secret:1:9"_qs, u"$CQAB1:SERVER:IP"_qs, observerSlow);
        s.config.set(config::authVatsim, true);
        QVERIFY(greetForAToken(s));
        s.tokens.grant(u"t0ken"_qs);
        EXPECT_LINES(s, u"#AAAB1:SERVER:Li Lei:1001:t0ken:1:100"_qs, u"$CQAB1:SERVER:IP"_qs, observerSlow);
        QVERIFY(s.peer.expectNothing());
    }

    void onlyTheFirstMarkerCompletesTheLogin()
    {
        Session s;
        QVERIFY(s.connectObserver());
        s.peer.inject(u"#APAB2:SERVER:1002::1:9:5:Han"_qs); // somebody else
        QVERIFY(s.peer.waitForConnection());
        s.peer.inject(u"#AAab1:SERVER:Li Lei:1001::1:9"_qs);
        s.peer.inject(u"#APAB1:SERVER:1001::1:9:5:Li"_qs);
        s.peer.inject(u"$CRSERVER:AB1:IP"_qs);
        s.peer.inject(u"$CRSERVER:AB1:RN:Somebody:1"_qs);
        for (const QString &line : {u"#AAAB1:SERVER:Li Lei:1001:secret:1:9"_qs, u"$CQAB1:SERVER:IP"_qs, observerSlow})
            EXPECT_LINE(s, line);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeEvents(), QStringList{u"connected AB1"_qs});
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, connected, observing}));
    }

    void disconnectAsPilot()
    {
        Session s;
        s.addSimulator();
        QVERIFY(s.connectPilot());
        QVERIFY(s.peer.skip(4));
        s.peer.inject(u"$CRSERVER:AB1:IP:10.0.0.9"_qs);
        TRY_EVENTS(s, u"connected AB1"_qs);
        s.takeNotifications();
        s.manager->disconnectFromNetwork();
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected"_qs}); // at once
        QCOMPARE(s.takeNotifications(), QStringList{disconnected});
        EXPECT_LINE(s, u"#DPAB1:1001"_qs);
        QVERIFY(s.peer.waitForClose());
        s.manager->disconnectFromNetwork(); // nothing is left to end
        QCOMPARE(s.takeNotifications(), QStringList());
    }

    void disconnectAsObserver()
    {
        Session s;
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.skip(3));
        s.manager->disconnectFromNetwork();
        EXPECT_LINE(s, u"#DAAB1:1001"_qs);
        QVERIFY(s.peer.waitForClose());
    }

    void theDeletePduKeepsTheCidWhenTheAccountIsCleared()
    {
        Session s;
        s.config.set(config::sessionUsername, u"1001"_qs);
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.skip(3));
        s.config.reset(config::authUsername);
        s.config.reset(config::sessionPassword);
        s.manager->disconnectFromNetwork();
        EXPECT_LINE(s, u"#DAAB1:1001"_qs);
    }

    void disconnectBeforeTheServerAnswers()
    {
        Session s;
        QVERIFY(s.connectObserver());
        s.manager->disconnectFromNetwork();
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, disconnected}));
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected"_qs});
    }

    void aServerThatRefuses()
    {
        Session s;
        s.peer.stopListening();
        QVERIFY(s.connectObserver());
        TRY_EVENTS(s, u"disconnected"_qs);
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, u"10 ConnectionRefusedError: Connection refused"_qs}));
        QVERIFY(s.connectObserver()); // idle again
    }

    void aDisconnectFromWithinTheFirstNotificationWorks()
    {
        Session s;
        connect(
            s.manager.get(), &NetworkManager::notificationPosted, s.manager.get(),
            [&] { s.manager->disconnectFromNetwork(); }, Qt::SingleShotConnection);
        QVERIFY(!s.connectObserver());
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected"_qs});
        QVERIFY(s.connectObserver());
    }

    void aNameThatIsNotFound()
    {
        Session s(Protocol::Classic, u"not..a.name"_qs);
        for (int i = 0; i < 2; ++i) { // idle again after the first
            QVERIFY(!s.connectObserver());
            QCOMPARE(s.takeNotifications(),
                     (QStringList{connecting, u"10 Network server address returned null, possibly due to a failed "
                                              "DNS lookup."_qs}));
            QCOMPARE(s.takeEvents(), QStringList{u"disconnected"_qs});
        }
        QCOMPARE(s.peer.connectionCount(), 0);
    }

    void aDisconnectEndsTheNameLookUp()
    {
        Session s(Protocol::Classic, u"no-such-host.invalid"_qs);
        bool wasResolving = false;
        QMetaObject::invokeMethod(
            s.manager.get(),
            [&] {
                wasResolving = s.manager->isResolving();
                s.manager->disconnectFromNetwork();
            },
            Qt::QueuedConnection);
        QVERIFY(!s.connectObserver());
        QVERIFY(wasResolving);
        QVERIFY(!s.manager->isResolving());
        QCOMPARE(s.takeNotifications(), (QStringList{connecting, disconnected}));
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected"_qs});
        QCOMPARE(s.peer.connectionCount(), 0);
    }

    void theLogReachesTheDiskWhileConnected()
    {
        Session s;
        QVERIFY(s.connectObserver());
        TRY_VERIFY(!logLines(s).filter(u">>> #AA"_qs).isEmpty());
        QVERIFY(s.peer.isClientConnected());
    }

    void theLogMasksThePassword()
    {
        Session s;
        s.addSimulator();
        QVERIFY(s.connectPilot());
        s.peer.inject(u"#TMSERVER:AB1:secret"_qs);
        s.peer.inject(u"$ERSERVER:AB1:004:#APAB1:SERVER:1001:secret:1:9:5:Li:Syntax error"_qs);
        s.peer.inject(u"$ERSERVER:AB1:004:#APAB1:secret"_qs);
        s.peer.inject(u"#APAB1:SERVER:1001:secret:1:9:5:Li"_qs);
        QVERIFY(s.peer.skip(4));
        TRY_EVENTS(s, u"connected AB1"_qs);
        QCOMPARE(s.notifications.filter(u"Error"_qs),
                 (QStringList{u"10 Network Error: SERVER"_qs, u"10 Network Error: ******"_qs}));
        s.manager->disconnectFromNetwork();
        const QString time = u"[22:13:20.000] "_qs; // of the manual clock, in UTC
        QCOMPARE(logLines(s),
                 (QStringList{time + u">>> #APAB1:SERVER:1001:******:1:9:5:Li Lei ZBAA"_qs,
                              time + u">>> $CQAB1:SERVER:IP"_qs, time + u">>> "_qs + pilotSlow,
                              time + u">>> "_qs + pilotStopped, time + u"<<< #TMSERVER:AB1:secret"_qs,
                              time + u"<<< $ERSERVER:AB1:004:#APAB1:SERVER:1001:******:1:9:5:Li:Syntax error"_qs,
                              time + u"<<< $ERSERVER:AB1:004:#APAB1:******"_qs,
                              time + u"<<< #APAB1:SERVER:1001:******:1:9:5:Li"_qs, time + u">>> #DPAB1:1001"_qs}));
    }

    void theLogMasksTheToken()
    {
        Session s(Protocol::Token);
        QVERIFY(s.connectObserver());
        QVERIFY(greetForAToken(s));
        s.tokens.grant(u"t0ken"_qs);
        EXPECT_LINE(s, u"#AAAB1:SERVER:Li Lei:1001:t0ken:1:100"_qs);
        s.manager->disconnectFromNetwork();
        const QString log = logLines(s).join(u'\n');
        QVERIFY(log.contains(u"#AAAB1:SERVER:Li Lei:1001:******:1:100"_qs));
        QVERIFY(!log.contains(u"t0ken"_qs));
    }

    void allConnectionsOfASessionShareOneLog()
    {
        Session s;
        for (int i = 1; i <= 2; ++i) {
            QVERIFY(s.connectObserver());
            QVERIFY(s.peer.waitForConnection(i));
            EXPECT_LINE(s, u"#AAAB1:SERVER:Li Lei:1001:secret:1:9"_qs);
            s.peer.inject(u"$CRSERVER:AB1:IP:1.2.3.4"_qs);
            TRY_EVENTS(s, u"connected AB1"_qs);
            s.manager->disconnectFromNetwork();
            s.takeEvents();
        }
        QCOMPARE(logLines(s).filter(u">>> #AA"_qs).size(), 2);
        QCOMPARE(logLines(s).filter(u">>> #DA"_qs).size(), 2);
    }

    void twoSessionsInOneProcess()
    {
        for (int i = 0; i < 2; ++i) {
            Session s;
            QVERIFY(s.connectObserver());
            EXPECT_LINE(s, u"#AAAB1:SERVER:Li Lei:1001:secret:1:9"_qs);
            s.manager.reset(); // closes without a delete PDU
            QVERIFY(s.peer.waitForClose());
        }
    }
};

TARVO_TEST(NetworkManagerLoginTest)
#include "NetworkManagerLoginTest.moc"

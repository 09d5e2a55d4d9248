#include "e2e/Client.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using tarvo::practice::FsdServer;
using tarvo::test::Client;
using tarvo::test::identification;
using tarvo::test::Network;
using tarvo::test::Protocol;

class SessionEndTest : public QObject
{
    Q_OBJECT

private slots:
    void theServerCloses()
    {
        Network network;
        Client client(network, Protocol::Classic);
        QVERIFY(network.started && client.signIn() && client.connectObserver());
        TRY_EVENTS(client, u"connected AB1"_qs);
        client.notifications.clear();
        QVERIFY(network.practice.fsd().dropClient(u"AB1"_qs));
        TRY_EVENTS(client, u"disconnected"_qs);
        QCOMPARE(client.notifications.last(), u"Disconnected from network."_qs);
        QVERIFY(!client.isRunning("slowTimer"));
        QVERIFY(client.connectObserver()); // and back again
        TRY_EVENTS(client, u"connected AB1"_qs);
    }

    void killed()
    {
        Network network;
        Client client(network, Protocol::Classic);
        QVERIFY(network.started && client.signIn() && client.connectObserver());
        TRY_EVENTS(client, u"connected AB1"_qs);
        QVERIFY(network.practice.fsd().kill(u"AB1"_qs, u"Bad manners"_qs));
        TRY_EVENTS(client, u"disconnected forced"_qs);
        QCOMPARE(client.notifications.last(), u"Forcibly disconnected from network: Bad manners"_qs);
        QCOMPARE(network.linesOf(u"#DA"_qs), QStringList()); // the server did it
    }

    void disconnect()
    {
        Network network;
        Client client(network, Protocol::Token);
        QVERIFY(network.started && client.signIn() && client.connectObserver());
        TRY_EVENTS(client, u"connected AB1"_qs);
        client.manager->disconnectFromNetwork();
        TRY_EVENTS(client, u"disconnected"_qs);
        TRY_COMPARE(network.heard.last(), u"#DAAB1:1001"_qs);
        TRY_COMPARE(network.practice.fsd().connectionCount(), 0);
    }

    void thePluginEndsTheSession()
    {
        Network network;
        Client client(network, Protocol::Classic);
        QVERIFY(network.started && client.signIn() && client.activateXPlane() && client.connectPilot());
        TRY_EVENTS(client, u"connected AB1"_qs);
        QVERIFY(network.practice.xplane().plugin().forceDisconnect(u"Replay mode"_qs));
        TRY_EVENTS(client, u"disconnected forced"_qs);
        QCOMPARE(client.notifications.last(), u"Forcibly disconnected from network: Replay mode"_qs);
        TRY_COMPARE(network.heard.last(), u"#DPAB1:1001"_qs);
    }

    void logoutWhileConnected()
    {
        Network network;
        Client client(network, Protocol::Classic);
        QVERIFY(network.started && client.signIn() && client.activateXPlane() && client.connectPilot());
        TRY_EVENTS(client, u"connected AB1"_qs);
        TRY_VERIFY(network.heard.contains(identification()));
        client.signOut();
        TRY_COMPARE(network.heard.last(), u"#DPAB1:1001"_qs); // with the CID, before the socket closes
        TRY_COMPARE(network.practice.fsd().connectionCount(), 0);
        QCOMPARE(client.events, QStringList{u"disconnected"_qs});
        QVERIFY(!client.api.hasToken());
    }

    void twoLoginSessionsInOneProcess()
    {
        Network network;
        Client client(network, Protocol::Token);
        QVERIFY(network.started);
        for (int session = 1; session <= 2; ++session) {
            QVERIFY(client.signIn());
            QVERIFY(client.activateXPlane());
            QVERIFY(client.connectPilot());
            TRY_EVENTS(client, u"connected AB1"_qs);
            client.signOut();
            TRY_EVENTS(client, u"disconnected"_qs);
            TRY_COMPARE(network.linesOf(u"#DPAB1:1001"_qs).size(), session);
            TRY_COMPARE(network.practice.fsd().connectionCount(), 0);
        }
        QCOMPARE(network.linesOf(u"#APAB1:"_qs).size(), 2);
        const QStringList logins = network.linesOf(u"#AP"_qs);
        QVERIFY(logins.at(0) != logins.at(1)); // each with a token of its own
    }

    void sentToAnotherServer_data()
    {
        QTest::addColumn<Protocol>("protocol");
        QTest::newRow("classic") << Protocol::Classic;
        QTest::newRow("token") << Protocol::Token;
    }

    void sentToAnotherServer()
    {
        QFETCH(Protocol, protocol);
        Network network;
        QVERIFY(network.started);
        FsdServer second(network.practice.accounts(), network.practice.tokens(), Network::quietSettings().fsd);
        QVERIFY(second.listen(QHostAddress(u"127.0.0.2"_qs), network.practice.fsd().port()));
        QStringList heardThere;
        connect(&second, &FsdServer::lineReceived, this,
                [&](const QString &, const QString &line) { heardThere << line; });

        Client client(network, protocol);
        QVERIFY(client.signIn());
        QVERIFY(client.connectObserver());
        TRY_EVENTS(client, u"connected AB1"_qs);
        TRY_VERIFY(network.heard.contains(identification()));
        client.notifications.clear();
        QVERIFY(network.practice.fsd().handOver(u"AB1"_qs, second));
        TRY_COMPARE(second.callsigns(), QStringList{u"AB1"_qs});
        TRY_COMPARE(network.practice.fsd().connectionCount(), 0);
        QCOMPARE(heardThere.value(0), identification()); // every greeting is answered
        if (protocol == Protocol::Token) {
            TRY_COMPARE(heardThere.size(), 4); // and by token the login is repeated
            QVERIFY(heardThere.at(1).startsWith(u"#AAAB1:SERVER:Lin Xiaozhou:1001:"_qs));
        }

        QVERIFY(client.fire("slowTimer"));
        TRY_COMPARE(heardThere.last(), u"%AB1:99998:0:40:1:0.00000:0.00000:0"_qs);
        QCOMPARE(client.events, QStringList()); // the session goes on
        QCOMPARE(client.notifications, QStringList());
        client.manager->disconnectFromNetwork();
        TRY_COMPARE(heardThere.last(), u"#DAAB1:1001"_qs);
    }

    void sentToAServerThatIsNotThere()
    {
        Network network;
        Client client(network, Protocol::Classic);
        QVERIFY(network.started && client.signIn() && client.connectObserver());
        TRY_EVENTS(client, u"connected AB1"_qs);
        TRY_VERIFY(network.heard.contains(identification()));
        QVERIFY(network.practice.fsd().redirect(u"AB1"_qs, u"127.0.0.3"_qs));
        QVERIFY(network.practice.fsd().ping(u"AB1"_qs));
        TRY_COMPARE(network.linesOf(u"$POAB1:SERVER:"_qs).size(), 1); // still here
        QCOMPARE(client.events, QStringList());
    }
};

TARVO_TEST(SessionEndTest)
#include "SessionEndTest.moc"

#include "e2e/Client.h"
#include "support/TestRegistry.h"

#include <QRegularExpression>

using namespace tarvo;
using tarvo::test::Client;
using tarvo::test::identification;
using tarvo::test::Network;
using tarvo::test::Protocol;

namespace {

const QString observerPosition = u"%AB1:99998:0:40:1:0.00000:0.00000:0"_qs;

/// The two reports that a pilot's login ends with, of the aeroplane on its stand. The simulator's floats decide the
/// digits; what they are is asked of the simulator itself in FlightTest.
const QRegularExpression parkedSlow(u"^@S:AB1:\\d+:1:40\\.\\d{6}:116\\.\\d{6}:-?\\d+:0:\\d+:-?\\d+$"_qs);
const QRegularExpression
    parkedStopped(u"^#STAB1:40\\.\\d{6}:116\\.\\d{6}:-?\\d+\\.\\d\\d:-?\\d+\\.\\d\\d:\\d+:0\\.00$"_qs);

/// The token in the login line of a client; empty when it isn't the line it should be.
QString tokenIn(const QString &line, const QString &before, const QString &after)
{
    if (!line.startsWith(before) || !line.endsWith(after))
        return {};
    return line.mid(before.size(), line.size() - before.size() - after.size());
}

} // namespace

class LoginTest : public QObject
{
    Q_OBJECT

private slots:
    void classicPilot()
    {
        Network network;
        QVERIFY2(network.started, qPrintable(network.practice.errorString()));
        Client client(network, Protocol::Classic);
        QVERIFY(client.signIn());
        QVERIFY(client.activateXPlane());
        QVERIFY(client.connectPilot());
        TRY_EVENTS(client, u"connected AB1"_qs);
        TRY_VERIFY(network.heard.size() >= 5);
        QCOMPARE(network.heard.at(0), u"#APAB1:SERVER:1001:practice:1:9:5:Lin Xiaozhou ZBAA"_qs);
        QCOMPARE(network.heard.at(1), u"$CQAB1:SERVER:IP"_qs);
        QVERIFY2(parkedSlow.match(network.heard.at(2)).hasMatch(), qPrintable(network.heard.at(2)));
        QVERIFY2(parkedStopped.match(network.heard.at(3)).hasMatch(), qPrintable(network.heard.at(3)));
        QCOMPARE(network.heard.at(4), identification());
        QCOMPARE(client.notifications, (QStringList{u"Connecting to network..."_qs, u"Connected to network."_qs,
                                                    u"Connected to network."_qs}));
        QCOMPARE(network.practice.fsd().callsigns(), QStringList{u"AB1"_qs});
    }

    void tokenPilot()
    {
        Network network;
        QVERIFY(network.started);
        Client client(network, Protocol::Token);
        QVERIFY(client.signIn());
        QVERIFY(client.activateXPlane());
        QVERIFY(client.connectPilot());
        TRY_EVENTS(client, u"connected AB1"_qs);
        TRY_VERIFY(network.heard.size() >= 5);
        QCOMPARE(network.heard.at(0), identification());
        const QString token = tokenIn(network.heard.at(1), u"#APAB1:SERVER:1001:"_qs, u":1:100:5:Lin Xiaozhou ZBAA"_qs);
        QCOMPARE(token.count(u'.'), 2); // a JSON Web Token
        QCOMPARE(network.heard.at(2), u"$CQAB1:SERVER:IP"_qs);
        QVERIFY2(parkedSlow.match(network.heard.at(3)).hasMatch(), qPrintable(network.heard.at(3)));
        QVERIFY2(parkedStopped.match(network.heard.at(4)).hasMatch(), qPrintable(network.heard.at(4)));
    }

    void classicObserver()
    {
        Network network;
        QVERIFY(network.started);
        Client client(network, Protocol::Classic);
        QVERIFY(client.signIn());
        QVERIFY(client.connectObserver());
        TRY_EVENTS(client, u"connected AB1"_qs);
        const QStringList expected{u"#AAAB1:SERVER:Lin Xiaozhou:1001:practice:1:9"_qs, u"$CQAB1:SERVER:IP"_qs,
                                   observerPosition, identification()};
        TRY_COMPARE(network.heard, expected);
        QCOMPARE(client.notifications.last(), u"Connected to network in observer mode."_qs);
    }

    void tokenObserver()
    {
        Network network;
        QVERIFY(network.started);
        Client client(network, Protocol::Token);
        QVERIFY(client.signIn());
        QVERIFY(client.connectObserver());
        TRY_EVENTS(client, u"connected AB1"_qs);
        TRY_COMPARE(network.heard.size(), 4);
        QCOMPARE(network.heard.at(0), identification());
        const QString token = tokenIn(network.heard.at(1), u"#AAAB1:SERVER:Lin Xiaozhou:1001:"_qs, u":1:100"_qs);
        QCOMPARE(token.count(u'.'), 2);
        QCOMPARE(network.heard.at(2), u"$CQAB1:SERVER:IP"_qs);
        QCOMPARE(network.heard.at(3), observerPosition);
    }

    void tokenRefusedByTheAccountService()
    {
        Network network;
        QVERIFY(network.started);
        network.practice.account().setFsdTokenError(u"Account suspended"_qs);
        Client client(network, Protocol::Token);
        QVERIFY(client.signIn());
        QVERIFY(client.connectObserver());
        TRY_EVENTS(client, u"disconnected forced"_qs);
        QCOMPARE(client.notifications, (QStringList{u"Connecting to network..."_qs, u"Connected to network."_qs,
                                                    u"Network authentication error: Account suspended"_qs,
                                                    u"Forcibly disconnected from network: Account suspended"_qs}));
        TRY_COMPARE(network.practice.fsd().connectionCount(), 0);
        QCOMPARE(network.heard, QStringList{identification()});
    }

    void tokenRefusedByTheServer()
    {
        Network network;
        QVERIFY(network.started);
        network.practice.fsd().setRejectTokens(true);
        Client client(network, Protocol::Token);
        QVERIFY(client.signIn());
        QVERIFY(client.connectObserver());
        TRY_EVENTS(client, u"disconnected"_qs);
        QCOMPARE(client.notifications.value(2), u"Network Error: Invalid CID or password"_qs);
    }

    void wrongPassword()
    {
        Network network;
        QVERIFY(network.started);
        Client client(network, Protocol::Classic);
        QVERIFY(client.signIn(u"guess"_qs));
        QVERIFY(client.connectObserver());
        TRY_EVENTS(client, u"disconnected"_qs);
        QCOMPARE(client.notifications, (QStringList{u"Connecting to network..."_qs, u"Connected to network."_qs,
                                                    u"Network Error: Invalid CID or password"_qs,
                                                    u"RemoteHostClosedError: The remote host closed the connection"_qs,
                                                    u"Disconnected from network."_qs}));
        QCOMPARE(network.practice.fsd().callsigns(), QStringList());
    }

    void theNetworkLogMasksPasswordAndToken_data()
    {
        QTest::addColumn<Protocol>("protocol");
        QTest::newRow("password") << Protocol::Classic;
        QTest::newRow("token") << Protocol::Token;
    }

    void theNetworkLogMasksPasswordAndToken()
    {
        QFETCH(Protocol, protocol);
        Network network;
        QVERIFY(network.started);
        Client client(network, protocol);
        QVERIFY(client.signIn());
        QVERIFY(client.connectObserver());
        TRY_EVENTS(client, u"connected AB1"_qs);
        TRY_VERIFY(!network.linesOf(u"$ID"_qs).isEmpty());
        client.manager->disconnectFromNetwork();
        const QString log = client.networkLog();
        const QString login = network.linesOf(u"#AA"_qs).value(0);
        const QString secret = login.split(u':').value(4);
        QVERIFY(!secret.isEmpty());
        for (const QString &line : network.heard)
            QVERIFY2(log.contains(u">>> "_qs + QString(line).replace(u':' + secret + u':', u":******:"_qs) + u'\n'),
                     qPrintable(line));
        QVERIFY(!log.contains(login));
        if (protocol == Protocol::Token) // the practice server's name holds the other secret
            QVERIFY(!log.contains(secret));
        QVERIFY(log.contains(u"<<< $DISERVER:CLIENT:"_qs));
    }
};

TARVO_TEST(LoginTest)
#include "LoginTest.moc"

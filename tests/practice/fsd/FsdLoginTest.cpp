#include "Peers.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

namespace {
const QByteArray identification = "$IDAB1:SERVER:bdc0:TarvoClient:3:0:1001:machine";
const QByteArray pilotLogin = "#APAB1:SERVER:1001:practice:1:9:5:Lin Xiaozhou ZBAA";
} // namespace

class FsdLoginTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;

    void start(const PracticeSettings &settings)
    {
        m_network = std::make_unique<PracticeNetwork>(settings, m_clock);
        QVERIFY2(m_network->start(), qPrintable(m_network->errorString()));
    }
    QByteArray tokenLogin(TokenUse use = TokenUse::Fsd, qint64 cid = 1001)
    {
        return "#APAB1:SERVER:1001:" + m_network->tokens().issue(use, cid) + ":1:100:5:Lin Xiaozhou ZBAA";
    }
    /// Lets time pass, and the server do what is due then.
    void pass(qint64 ms)
    {
        m_clock.advance(ms);
        m_network->fsd().keepAlive();
    }

private slots:
    void init() { start(quietSettings()); }

    void greetsFirst()
    {
        FsdLineClient peer(m_network->fsd());
        TRY_VERIFY(peer.all().endsWith("\r\n"));
        QVERIFY(peer.all().startsWith("$DISERVER:CLIENT:"));
        QCOMPARE(peer.all().count(':'), 3);
    }

    void letsPilotsIn_data()
    {
        QTest::addColumn<QList<QByteArray>>("lines");
        QTest::newRow("login before identification") << QList<QByteArray>{pilotLogin, identification};
        QTest::newRow("identification before login") << QList<QByteArray>{identification, pilotLogin};
        QTest::newRow("revision 9, other CID text") << QList<QByteArray>{"#APAB1:SERVER:Lin Xiaozhou:practice:1:9:0:x"};
    }

    void letsPilotsIn()
    {
        QFETCH(QList<QByteArray>, lines);
        QSignalSpy loggedIn(&m_network->fsd(), &FsdServer::clientLoggedIn);
        FsdLineClient peer(m_network->fsd());
        for (const QByteArray &line : lines)
            peer.send(line);
        TRY_COMPARE(loggedIn.size(), 1);
        QCOMPARE(loggedIn.at(0), (QVariantList{QStringLiteral("AB1"), false}));
        QCOMPARE(m_network->fsd().callsigns(), QStringList{QStringLiteral("AB1")});
        TRY_VERIFY(peer.got("#TMSERVER:AB1:Welcome to the practice network."));
        QVERIFY(!peer.got("$ER"));
    }

    void letsObserversIn()
    {
        QSignalSpy loggedIn(&m_network->fsd(), &FsdServer::clientLoggedIn);
        FsdLineClient peer(m_network->fsd());
        peer.logInAsAtc("AB1");
        TRY_COMPARE(loggedIn.size(), 1);
        QCOMPARE(loggedIn.at(0), (QVariantList{QStringLiteral("AB1"), true}));
    }

    void letsTokensIn()
    {
        FsdLineClient peer(m_network->fsd());
        peer.send(identification);
        peer.send(tokenLogin());
        TRY_COMPARE(m_network->fsd().callsigns(), QStringList{QStringLiteral("AB1")});
    }

    void refusesABadLogin_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("error");
        const auto row = [](const char *name, const char *line, const char *error) {
            QTest::newRow(name) << QByteArray(line) << QByteArray(error);
        };
        row("wrong password", "#APAB1:SERVER:1001:wrong:1:9:5:Lin", "$ERSERVER:unknown:6:1001:");
        row("no password", "#APAB1:SERVER:1001::1:9:5:Lin", "$ERSERVER:unknown:6:1001:");
        row("unknown CID", "#APAB1:SERVER:77:practice:1:9:5:Lin", "$ERSERVER:unknown:6:77:");
        row("password as token", "#APAB1:SERVER:1001:practice:1:100:5:Lin", "$ERSERVER:unknown:6:1001:");
        row("unknown revision", "#APAB1:SERVER:1001:practice:1:8:5:Lin", "$ERSERVER:unknown:10:");
        row("short callsign", "#APA:SERVER:1001:practice:1:9:5:Lin", "$ERSERVER:unknown:2:A:");
        row("long callsign", "#APABCDEFGHIJKLM:SERVER:1001:practice:1:9:5:Lin", "$ERSERVER:unknown:2:");
        row("callsign in lower case", "#APab1:SERVER:1001:practice:1:9:5:Lin", "$ERSERVER:unknown:2:ab1:");
        row("callsign of the server", "#APSERVER:SERVER:1001:practice:1:9:5:Lin", "$ERSERVER:unknown:2:SERVER:");
        row("rating too high", "#APAB1:SERVER:1001:practice:12:9:5:Lin", "$ERSERVER:unknown:11:1001:");
        row("not to the server", "#APAB1:XY2:1001:practice:1:9:5:Lin", "$ERSERVER:unknown:4:AB1:");
        row("observer's wrong password", "#AAAB1:SERVER:Lin:1001:wrong:1:9", "$ERSERVER:unknown:6:1001:");
        row("identification without name", "$IDAB1:SERVER:bdc0::3:0:1001:m", "$ERSERVER:unknown:16:");
        row("identification of no program", "$IDAB1:SERVER:0:T:3:0:1001:m", "$ERSERVER:unknown:16:");
        row("identification of nobody", "$IDAB1:SERVER:bdc0:T:3:0:77:m", "$ERSERVER:unknown:16:");
    }

    void refusesABadLogin()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, error);
        FsdLineClient peer(m_network->fsd());
        TRY_VERIFY(peer.got("$DI"));
        peer.send(line);
        QTRY_VERIFY2(peer.got(error), peer.all().constData());
        TRY_VERIFY(peer.closed());
        TRY_COMPARE(m_network->fsd().connectionCount(), 0);
    }

    void refusesABadToken_data()
    {
        QTest::addColumn<int>("use");
        QTest::addColumn<int>("cid");
        QTest::addColumn<int>("life");
        QTest::addColumn<bool>("rejected");
        QTest::newRow("access token") << static_cast<int>(TokenUse::Access) << 1001 << 100 << false;
        QTest::newRow("of another pilot") << static_cast<int>(TokenUse::Fsd) << 1002 << 100 << false;
        QTest::newRow("expired") << static_cast<int>(TokenUse::Fsd) << 1001 << 0 << false;
        QTest::newRow("server rejects all") << static_cast<int>(TokenUse::Fsd) << 1001 << 100 << true;
    }

    void refusesABadToken()
    {
        QFETCH(int, use);
        QFETCH(int, cid);
        QFETCH(int, life);
        QFETCH(bool, rejected);
        m_network->tokens().setLife(TokenUse::Fsd, life);
        m_network->fsd().setRejectTokens(rejected);
        FsdLineClient peer(m_network->fsd());
        peer.send(identification);
        peer.send(tokenLogin(static_cast<TokenUse>(use), cid));
        TRY_VERIFY(peer.got("$ERSERVER:unknown:6:1001:Invalid CID or password"));
        TRY_VERIFY(peer.closed());
    }

    void refusesOnDemand()
    {
        m_network->fsd().setRejectLogins(true);
        FsdLineClient peer(m_network->fsd());
        peer.send(pilotLogin);
        TRY_VERIFY(peer.closed());
        QVERIFY(peer.got("$ERSERVER:unknown:6:"));
    }

    void aCallsignIsTakenOnce()
    {
        FsdLineClient first(m_network->fsd());
        first.logIn("AB1");
        TRY_VERIFY(first.got("#TM"));
        FsdLineClient second(m_network->fsd());
        second.logIn("AB1", "1002");
        TRY_VERIFY(second.got("$ERSERVER:unknown:1:AB1:"));
        TRY_VERIFY(second.closed());
        QCOMPARE(m_network->fsd().callsigns().size(), 1);
    }

    void aSecondLoginOnOneConnection_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("closed");
        QTest::newRow("the same again") << pilotLogin << false;
        QTest::newRow("another callsign") << QByteArray("#APXY2:SERVER:1001:practice:1:9:5:Lin") << true;
        QTest::newRow("identification of another")
            << QByteArray("$IDXY2:SERVER:bdc0:TarvoClient:3:0:1001:machine") << true;
    }

    void aSecondLoginOnOneConnection()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, closed);
        FsdLineClient peer(m_network->fsd());
        peer.send(pilotLogin);
        peer.send(line);
        TRY_VERIFY(peer.got("$ERSERVER:AB1:"));
        TRY_COMPARE(m_network->fsd().connectionCount(), closed ? 0 : 1);
    }

    void silenceIsNoIdentification()
    {
        QSignalSpy refused(&m_network->fsd(), &FsdServer::clientRefused);
        FsdLineClient mute(m_network->fsd());
        FsdLineClient halfway(m_network->fsd());
        halfway.send(pilotLogin); // no "$ID"
        FsdLineClient whole(m_network->fsd());
        whole.logIn("XY2");
        settle(whole, "XY2");
        settle(halfway, "AB1");
        TRY_VERIFY(mute.got("$DI"));
        pass(20'000); // just in time
        QCOMPARE(refused.size(), 0);
        pass(1);
        QCOMPARE(refused.size(), 2);
        TRY_VERIFY(mute.closed());
        TRY_VERIFY(halfway.closed());
        QVERIFY(mute.got("$ERSERVER:unknown:16::No identification"));
        QCOMPARE(m_network->fsd().callsigns(), QStringList{QStringLiteral("XY2")});
    }

    void theDeadAreSentAway()
    {
        QSignalSpy refused(&m_network->fsd(), &FsdServer::clientRefused);
        FsdLineClient peer(m_network->fsd());
        peer.logIn("AB1");
        settle(peer, "AB1");
        pass(120'000);
        settle(peer, "AB1"); // alive in the last moment
        pass(120'000);
        QCOMPARE(refused.size(), 0);
        pass(1);
        QCOMPARE(refused.size(), 1);
        QCOMPARE(refused.at(0), (QVariantList{QStringLiteral("AB1"), QStringLiteral("silent")}));
        TRY_VERIFY(peer.closed());
    }

    void othersHearOfArrivalsWithoutThePassword()
    {
        FsdLineClient first(m_network->fsd());
        first.logIn("AB1");
        TRY_VERIFY(first.got("#TM"));
        FsdLineClient second(m_network->fsd());
        second.logInAsAtc("XY_OBS");
        TRY_VERIFY(first.got("#AAXY_OBS:SERVER:Lin Xiaozhou:1001::1:9\r\n"));
        TRY_VERIFY(second.got("#APAB1:SERVER:1001::1:9:5:Lin Xiaozhou ZBAA\r\n"));
        QVERIFY(!first.got("#APAB1"));
        first.send("#DPAB1:1001");
        TRY_VERIFY(second.got("#DPAB1:1001\r\n"));
        TRY_VERIFY(first.closed());
        FsdLineClient third(m_network->fsd());
        third.logIn("CD3");
        TRY_VERIFY(third.got("#AAXY_OBS"));
        second.socket.abort();
        TRY_VERIFY(third.got("#DAXY_OBS:1001\r\n"));
    }

    void aSessionIsHandedOver()
    {
        PracticeSettings settings = quietSettings();
        settings.secondAddress = QHostAddress(QStringLiteral("127.0.0.2"));
        start(settings);
        FsdLineClient peer(m_network->fsd());
        peer.logIn("AB1");
        TRY_VERIFY(peer.got("#TM"));
        QVERIFY(m_network->fsd().handOver(QStringLiteral("AB1"), *m_network->secondFsd()));
        TRY_VERIFY(peer.got("$XXSERVER:AB1:127.0.0.2\r\n"));
        FsdLineClient moved(*m_network->secondFsd());
        moved.send(identification);
        TRY_COMPARE(m_network->secondFsd()->callsigns(), QStringList{QStringLiteral("AB1")});
        moved.send(pilotLogin); // a client that logs in again all the same is welcome
        moved.send("$CQAB1:SERVER:IP");
        TRY_VERIFY(moved.got("$CRSERVER:AB1:IP:127.0.0.1\r\n"));
        QVERIFY(!moved.got("$ER"));
    }

    void anUnexpectedSessionIsNotTakenOver()
    {
        FsdLineClient peer(m_network->fsd());
        peer.send(identification);
        peer.send("$CQAB1:SERVER:IP");
        TRY_VERIFY(peer.got("$ERSERVER:unknown:5:AB1:"));
        QVERIFY(m_network->fsd().callsigns().isEmpty());
    }
};

TARVO_TEST(FsdLoginTest)
#include "FsdLoginTest.moc"

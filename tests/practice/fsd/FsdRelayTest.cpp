#include "Peers.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

/// Two pilots, AB1 at Beijing and XY2, and a controller ZBAA_TWR.
class FsdRelayTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<FsdLineClient> m_a;
    std::unique_ptr<FsdLineClient> m_b;
    std::unique_ptr<FsdLineClient> m_tower;

    FsdServer &fsd() { return m_network->fsd(); }
    void place(double latitudeOfB)
    {
        m_a->report("AB1", 40.0, 116.5);
        m_b->report("XY2", latitudeOfB, 116.5);
        settle(*m_a, "AB1");
        settle(*m_b, "XY2");
    }

private slots:
    void init()
    {
        m_network = std::make_unique<PracticeNetwork>(quietSettings(), m_clock);
        QVERIFY(m_network->start());
        m_a = std::make_unique<FsdLineClient>(fsd());
        m_a->logIn("AB1");
        m_b = std::make_unique<FsdLineClient>(fsd());
        m_b->logIn("XY2", "1002");
        m_tower = std::make_unique<FsdLineClient>(fsd());
        m_tower->logInAsAtc("ZBAA_TWR");
        TRY_COMPARE(fsd().callsigns().size(), 3);
    }

    void answersQueries_data()
    {
        QTest::addColumn<QByteArray>("query");
        QTest::addColumn<QByteArray>("answer");
        const auto row = [](const char *name, const char *query, const char *answer) {
            QTest::newRow(name) << QByteArray(query) << QByteArray(answer);
        };
        row("address", "$CQAB1:SERVER:IP", "$CRSERVER:AB1:IP:127.0.0.1\r\n");
        row("capabilities", "$CQAB1:SERVER:CAPS", "$CRSERVER:AB1:CAPS:ATCINFO=1:");
        row("real name", "$CQAB1:SERVER:RN", "$CRSERVER:AB1:RN:Practice network:1\r\n");
        row("a controller", "$CQAB1:SERVER:ATC:zbaa_twr", "$CRSERVER:AB1:ATC:Y:ZBAA_TWR\r\n");
        row("a pilot is none", "$CQAB1:SERVER:ATC:XY2", "$CRSERVER:AB1:ATC:N:XY2\r\n");
        row("nobody is none", "$CQAB1:SERVER:ATC:NOBODY", "$CRSERVER:AB1:ATC:N:NOBODY\r\n");
        row("nothing is none", "$CQAB1:SERVER:ATC", "$CRSERVER:AB1:ATC:N:\r\n");
        row("flight plan", "$CQAB1:SERVER:FP:XY2", "$CRSERVER:AB1:FP:XY2:B738\r\n");
        row("flight plan itself", "$CQAB1:SERVER:FP:XY2", "$FPXY2:SERVER:I:B738:");
        row("flight plan by text", "#TMAB1:SERVER:FP:XY2:GET", "$CRSERVER:AB1:FP:XY2:B738\r\n");
        row("no flight plan", "$CQAB1:SERVER:FP:AB1", "$ERSERVER:AB1:8:AB1:No flight plan\r\n");
        row("no such pilot", "$CQAB1:SERVER:FP:NOBODY", "$ERSERVER:AB1:8:NOBODY:No flight plan\r\n");
        row("no such recipient", "$CQAB1:NOBODY:RN", "$ERSERVER:AB1:7:NOBODY:No such callsign\r\n");
        row("ping", "$PIAB1:SERVER:77", "$POSERVER:AB1:77\r\n");
        row("wallop", "#TMAB1:*S:help", "#TMSERVER:AB1:Your call");
        row("query without type", "$CQAB1:SERVER", "$ERSERVER:AB1:4::Invalid field count for ClientQuery command.\r\n");
        row("unknown line", "$YYAB1:SERVER", "$ERSERVER:AB1:4::Invalid PDU type.\r\n");
        row("another's callsign", "#TMXY2:AB1:hi", "$ERSERVER:AB1:5:XY2:Invalid source callsign\r\n");
        row("text without text", "#TMAB1:XY2", "$ERSERVER:AB1:4::Invalid field count.\r\n");
        row("position nowhere", "@N:AB1:2000:1:91:116:1:2:3:4", "$ERSERVER:AB1:4::No such place\r\n");
        row("pilot as controller", "%AB1:18500:4:100:1:40:116:0", "$ERSERVER:AB1:4::A pilot sends no");
    }

    void answersQueries()
    {
        QFETCH(QByteArray, query);
        QFETCH(QByteArray, answer);
        m_b->send("$FPXY2:SERVER:I:B738:450:ZBAA:0100:0100:FL350:ZSSS:2:0:4:0:ZSPD:remarks:DCT:X");
        settle(*m_b, "XY2");
        m_tower->send("%ZBAA_TWR:18500:4:100:1:40.0:116.5:0");
        settle(*m_tower, "ZBAA_TWR");
        m_a->send(query);
        QTRY_VERIFY2(m_a->got(answer), m_a->all().constData());
        QVERIFY(!m_a->closed());
    }

    void relays_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("toB");
        QTest::addColumn<bool>("toTower");
        const auto row = [](const char *name, const char *line, bool toB, bool toTower) {
            QTest::newRow(name) << QByteArray(line) << toB << toTower;
        };
        row("private text", "#TMAB1:XY2:hi:there \xe4", true, false);
        row("private text in lower case", "#TMAB1:xy2:hi", true, false);
        row("broadcast", "#TMAB1:*:hi", true, true);
        row("broadcast to controllers' form", "#TMAB1:*A:hi", true, true);
        row("radio", "#TMAB1:@18500&@21700:hi", true, true);
        row("query", "$CQAB1:XY2:RN", true, false);
        row("query of one's information", "$CQAB1:XY2:INF", true, false);
        row("answer", "$CRAB1:XY2:RN:Lin Xiaozhou ZBAA:1", true, false);
        row("configuration to all", "$CQAB1:@94386:ACC:{\"request\":\"full\"}", true, true);
        row("aircraft request", "#SBAB1:XY2:PIR", true, false);
        row("aircraft answer", "#SBAB1:XY2:PI:GEN:EQUIPMENT=B738", true, false);
        row("slow position", "@N:AB1:2000:1:40.000000:116.500000:115:0:2:-118", true, true);
        row("fast position", "^AB1:40.000000:116.500000:115.00:115.00:2:0:0:0:0:0:0:0.00", true, true);
        row("slow-velocity position", "#SLAB1:40.000000:116.500000:115.00:115.00:2:0:0:0:0:0:0:0.00", true, true);
        row("stopped position", "#STAB1:40.000000:116.500000:115.00:115.00:2:0.00", true, true);
        row("flight plan", "$FPAB1:SERVER:I:B738:450:ZBAA:0100:0100:FL350:ZSSS:2:0:4:0:ZSPD:r:DCT", false, true);
        row("ping to another", "$PIAB1:XY2:1", true, false);
        row("answer to the server", "$CRAB1:SERVER:RN:Lin", false, false);
        row("text to the server", "#TMAB1:SERVER:hi", false, false);
        row("wallop", "#TMAB1:*S:hi", false, false);
    }

    void relays()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, toB);
        QFETCH(bool, toTower);
        place(40.5);
        m_tower->send("%ZBAA_TWR:18500:4:100:1:40.0:116.5:0");
        settle(*m_tower, "ZBAA_TWR");
        m_b->forget();
        m_tower->forget();
        m_a->send(line);
        settle(*m_a, "AB1");
        settle(*m_b, "XY2");
        settle(*m_tower, "ZBAA_TWR");
        QCOMPARE(m_b->count(line + "\r\n"), toB ? 1 : 0);
        QCOMPARE(m_tower->count(line + "\r\n"), toTower ? 1 : 0);
        QCOMPARE(m_a->count(line + "\r\n"), 0);
    }

    void positionsReachAsFarAsTheRange_data()
    {
        QTest::addColumn<double>("latitude");
        QTest::addColumn<bool>("heard");
        QTest::newRow("59 miles") << 40.98 << true;
        QTest::newRow("61 miles") << 41.02 << false;
        QTest::newRow("other side of the world") << -40.0 << false;
    }

    void positionsReachAsFarAsTheRange()
    {
        QFETCH(double, latitude);
        QFETCH(bool, heard);
        place(latitude);
        m_b->forget();
        m_a->report("AB1", 40.0, 116.5);
        m_a->send("#TMAB1:@18500:hi");
        settle(*m_a, "AB1");
        settle(*m_b, "XY2");
        QCOMPARE(m_b->got("@N:AB1"), heard);
        QCOMPARE(m_b->got("#TMAB1:@18500"), heard);
    }

    void whoHasNoPositionHearsNoPosition()
    {
        m_a->report("AB1", 40.0, 116.5);
        settle(*m_a, "AB1");
        settle(*m_b, "XY2");
        QVERIFY(!m_b->got("@N:AB1"));
    }

    void aControllersRangeCounts()
    {
        m_tower->send("%ZBAA_TWR:18500:4:200:1:40.0:116.5:0");
        settle(*m_tower, "ZBAA_TWR");
        m_a->report("AB1", 43.0, 116.5); // 180 miles
        settle(*m_a, "AB1");
        settle(*m_tower, "ZBAA_TWR");
        QVERIFY(m_tower->got("@N:AB1"));
    }

    void asksNeighboursForFastPositions()
    {
        place(40.2); // 12 miles
        QVERIFY(!m_a->got("$SF"));
        place(40.07); // 4.2 miles
        QCOMPARE(m_a->count("$SFSERVER:AB1:1\r\n"), 1);
        QCOMPARE(m_b->count("$SFSERVER:XY2:1\r\n"), 1);
        place(40.095); // 5.7 miles: not yet apart
        QCOMPARE(m_a->count("$SF"), 1);
        place(40.12); // 7.2 miles
        QCOMPARE(m_a->count("$SFSERVER:AB1:0\r\n"), 1);
        QCOMPARE(m_b->count("$SFSERVER:XY2:0\r\n"), 1);
    }

    void aNeighbourWhoLeavesEndsFastPositions()
    {
        place(40.01);
        TRY_COMPARE(m_a->count("$SFSERVER:AB1:1\r\n"), 1);
        m_b->socket.abort();
        TRY_VERIFY(m_a->got("#DPXY2:1002\r\n"));
        settle(*m_a, "AB1"); // at once, not with the next look round
        QCOMPARE(m_a->count("$SFSERVER:AB1:0\r\n"), 1);
    }

    void aControllerIsNoNeighbour()
    {
        m_tower->send("%ZBAA_TWR:18500:4:100:1:40.0:116.5:0");
        m_a->report("AB1", 40.0, 116.5);
        settle(*m_tower, "ZBAA_TWR");
        settle(*m_a, "AB1");
        QVERIFY(!m_a->got("$SF"));
        QVERIFY(!m_tower->got("$SF"));
    }

    void kills()
    {
        QVERIFY(fsd().kill(QStringLiteral("AB1"), QStringLiteral("Inactive: too long")));
        TRY_VERIFY(m_a->got("$!!SERVER:AB1:Inactive: too long\r\n"));
        TRY_VERIFY(m_a->closed());
        TRY_VERIFY(m_b->got("#DPAB1:1001\r\n"));
        QVERIFY(!fsd().kill(QStringLiteral("AB1"), QString()));
    }

    void theDeveloperHasHisHandOnAClient()
    {
        const QString ab1 = QStringLiteral("AB1");
        QVERIFY(fsd().redirect(ab1, QStringLiteral("127.0.0.9")));
        QVERIFY(fsd().sendText(ab1, QStringLiteral("good evening")));
        QVERIFY(fsd().sendError(ab1, 9, QStringLiteral("p"), QStringLiteral("m")));
        QVERIFY(fsd().setFast(ab1, true));
        QVERIFY(fsd().setFast(ab1, false));
        QVERIFY(fsd().sendLine(ab1, QStringLiteral("#Q")));
        const QByteArray all = "$XXSERVER:AB1:127.0.0.9\r\n#TMSERVER:AB1:good evening\r\n$ERSERVER:AB1:9:p:m\r\n"
                               "$SFSERVER:AB1:1\r\n$SFSERVER:AB1:0\r\n#Q\r\n";
        TRY_VERIFY(m_a->all().endsWith(all));
        QVERIFY(fsd().dropClient(ab1));
        TRY_VERIFY(m_a->closed());
        QVERIFY(!fsd().ping(QStringLiteral("NOBODY")));
    }

    void challengesAreAnswered()
    {
        QVERIFY(fsd().challenge(QStringLiteral("AB1")));
        TRY_VERIFY(m_a->got("$ZCSERVER:AB1:"));
        const qsizetype at = m_a->all().lastIndexOf("$ZCSERVER:AB1:") + 14;
        m_a->send("$ZRAB1:SERVER:" + m_a->all().mid(at).trimmed());
        settle(*m_a, "AB1");
        QVERIFY(!m_a->got("$ER"));
        QVERIFY(fsd().challenge(QStringLiteral("AB1"))); // unanswered this time
        QVERIFY(fsd().challenge(QStringLiteral("AB1")));
        TRY_VERIFY(m_a->got("$ERSERVER:AB1:16::No answer"));
        TRY_VERIFY(m_a->closed());
    }

    void aWrongAnswerEndsTheSession_data()
    {
        QTest::addColumn<bool>("challenged");
        QTest::newRow("wrong answer") << true;
        QTest::newRow("answer to nothing") << false;
    }

    void aWrongAnswerEndsTheSession()
    {
        QFETCH(bool, challenged);
        if (challenged)
            QVERIFY(fsd().challenge(QStringLiteral("AB1")));
        m_a->send("$ZRAB1:SERVER:");
        TRY_VERIFY(m_a->got("$ERSERVER:AB1:16::Wrong answer"));
        TRY_VERIFY(m_a->closed());
    }

    void pingsAndChallengesByItself()
    {
        PracticeSettings settings = quietSettings();
        settings.fsd.pingIntervalMs = 30'000;
        settings.fsd.challengeIntervalMs = 44'000;
        m_network = std::make_unique<PracticeNetwork>(settings, m_clock);
        QVERIFY(m_network->start());
        FsdLineClient peer(fsd());
        peer.logIn("AB1");
        settle(peer, "AB1");
        const auto after = [&](qint64 ms) {
            m_clock.advance(ms);
            fsd().keepAlive();
            fsd().keepAlive(); // once is enough
            settle(peer, "AB1");
        };
        after(29'999);
        QVERIFY(!peer.got("$PI"));
        QVERIFY(!peer.got("$ZC")); // comes after 33 to 55 seconds
        const QByteArray seconds = QByteArray::number((m_clock.wallMs() + 1) / 1000);
        after(1);
        QCOMPARE(peer.count("$PISERVER:AB1:"), 1);
        QVERIFY(peer.got("$PISERVER:AB1:" + seconds + "\r\n"));
        after(25'000);
        QCOMPARE(peer.count("$PISERVER:AB1:"), 1);
        QCOMPARE(peer.count("$ZCSERVER:AB1:"), 1);
        after(5'000);
        QCOMPARE(peer.count("$PISERVER:AB1:"), 2);
    }

    void everyLineIsTold()
    {
        QSignalSpy received(&fsd(), &FsdServer::lineReceived);
        QSignalSpy sent(&fsd(), &FsdServer::lineSent);
        m_a->send("$CQAB1:SERVER:IP");
        TRY_COMPARE(received.size(), 1);
        QCOMPARE(received.at(0), (QVariantList{QStringLiteral("AB1"), QStringLiteral("$CQAB1:SERVER:IP")}));
        TRY_COMPARE(sent.size(), 1);
        QCOMPARE(sent.at(0), (QVariantList{QStringLiteral("AB1"), QStringLiteral("$CRSERVER:AB1:IP:127.0.0.1")}));
    }
};

TARVO_TEST(FsdRelayTest)
#include "FsdRelayTest.moc"

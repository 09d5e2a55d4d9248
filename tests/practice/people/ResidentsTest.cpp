#include "FieldBench.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::practice;
using namespace tarvo::test;

/// The residents' controllers and its supervisor, and who is there at all.
class ResidentsTest : public QObject, private ResidentsBench
{
    Q_OBJECT

private slots:
    void init() { start(); }

    void theyAreThere()
    {
        QCOMPARE(m_network->fsd().residents().join(u' '),
                 QStringLiteral("ZBAA_TWR ZBAA_GND ZBAA_APP CES2117 CCA908 CHH7182 BAW38 NET_SUP"));
        QCOMPARE(lines("#AP").size(), 4);
        QCOMPARE(lines("#AA").size(), 4);
        QVERIFY(m_a->got("#APCCA908:SERVER:9002::1:9:0:Zhao Ming ZBAA\r\n"));
        m_network->residents()->stop();
        TRY_COMPARE(lines("#DP").size(), 4);
        TRY_COMPARE(lines("#DA").size(), 4);
        QVERIFY(m_network->fsd().residents().isEmpty());
        m_network->residents()->start();
        m_network->residents()->start(); // once is enough
        QCOMPARE(m_network->fsd().residents().size(), 8);
    }

    void testsHaveNoneUnlessTheyAskForThem()
    {
        PracticeNetwork network(PracticeSettings::ephemeral());
        QVERIFY(!network.residents());
        QVERIFY(PracticeNetwork(PracticeSettings()).residents());
    }

    void isOnTheSecondServerToo()
    {
        QVERIFY(!m_network->secondResidents());
        PracticeSettings settings = quietSettings();
        settings.secondAddress = QHostAddress(QStringLiteral("127.0.0.2"));
        QVERIFY(!PracticeNetwork(settings).secondResidents());
        settings.residents.present = true;
        open(settings);
        FsdServer &second = *m_network->secondFsd();
        QCOMPARE(second.residents(), m_network->fsd().residents());
        QVERIFY(m_network->fsd().handOver(QStringLiteral("AB1"), second));
        FsdLineClient moved(second);
        moved.logIn("AB1");
        moved.report("AB1", fieldLatitude, fieldLongitude);
        settle(moved, "AB1");
        m_clock.advance(5'000);
        m_network->secondResidents()->step();
        settle(moved, "AB1");
        for (const char *callsign : {"CES2117", "CCA908", "CHH7182", "BAW38"}) // where he saw them last
            QVERIFY2(moved.all().contains(QByteArray(":") + callsign + ":340"), moved.all().constData());
        QVERIFY(moved.got("%ZBAA_TWR:18500:4:60:"));
        m_network->stop();
        QVERIFY(second.residents().isEmpty());
    }

    void whoseCallsignIsTakenStaysAway()
    {
        m_network->residents()->stop();
        FsdLineClient peer(m_network->fsd());
        peer.logIn("NET_SUP", "1002");
        settle(peer, "NET_SUP");
        m_network->residents()->start();
        QCOMPARE(m_network->fsd().residents().size(), 7);
        m_network->residents()->broadcast(QStringLiteral("x")); // nobody does
        pass(10'000);
        QVERIFY(lines("#TMNET_SUP").isEmpty());
    }

    void controllersReportTheirPositions()
    {
        m_a->forget();
        pass(10'000);
        QCOMPARE(m_a->count("%ZBAA_TWR:18500:4:60:1:40.07250:116.59750:0\r\n"), 2);
        QCOMPARE(m_a->count("%ZBAA_GND:21900:3:30:1:40.07250:116.59750:0\r\n"), 2);
        QCOMPARE(m_a->count("%ZBAA_APP:19000:5:150:1:40.07250:116.59750:0\r\n"), 2);
        m_a->report("AB1", fieldLatitude + 1.5, fieldLongitude); // 90 miles
        settle(*m_a, "AB1");
        m_a->forget();
        pass(5'000);
        QCOMPARE(lines("%").size(), 1);
        QVERIFY(m_a->got("%ZBAA_APP"));
    }

    void controllersAnswer_data()
    {
        QTest::addColumn<QByteArray>("question");
        QTest::addColumn<QByteArray>("answer");
        const auto row = [](const char *name, const char *question, const char *answer) {
            QTest::newRow(name) << QByteArray(question) << QByteArray(answer);
        };
        row("validity", "$CQAB1:SERVER:ATC:ZBAA_GND", "$CRSERVER:AB1:ATC:Y:ZBAA_GND\r\n");
        row("the supervisor serves none", "$CQAB1:SERVER:ATC:NET_SUP", "$CRSERVER:AB1:ATC:N:NET_SUP\r\n");
        row("real name", "$CQAB1:ZBAA_APP:RN", "$CRZBAA_APP:AB1:RN:Ma Li:1\r\n");
        row("capabilities", "$CQAB1:ZBAA_APP:CAPS", "$CRZBAA_APP:AB1:CAPS:VERSION=1:ATCINFO=1:");
        row("frequency", "$CQAB1:ZBAA_APP:C?", "$CRZBAA_APP:AB1:C?:119.000\r\n");
        row("ATIS with logoff time", "$CQAB1:ZBAA_TWR:ATIS",
            "$CRZBAA_TWR:AB1:ATIS:T:Beijing Tower, 118.500\r\n"
            "$CRZBAA_TWR:AB1:ATIS:T:Runway 36R in use, wind calm, QNH 1013\r\n"
            "$CRZBAA_TWR:AB1:ATIS:T:Text me for a SELCAL check\r\n"
            "$CRZBAA_TWR:AB1:ATIS:Z:1500z\r\n"
            "$CRZBAA_TWR:AB1:ATIS:E:4\r\n");
        row("ATIS without", "$CQAB1:ZBAA_GND:ATIS",
            "$CRZBAA_GND:AB1:ATIS:T:Beijing Ground, 121.900\r\n"
            "$CRZBAA_GND:AB1:ATIS:T:Push-back and taxi: on request\r\n"
            "$CRZBAA_GND:AB1:ATIS:E:3\r\n");
    }

    void controllersAnswer()
    {
        QFETCH(QByteArray, question);
        QFETCH(QByteArray, answer);
        ask(question, answer);
    }

    void theTowerGreetsAPilotAndNobodyElse()
    {
        pass(5'900);
        QVERIFY(lines("#TMZBAA").isEmpty());
        pass(100);
        QCOMPARE(m_a->count("#TMZBAA_TWR:AB1:Good day AB1, welcome to Beijing. I am on 118.500.\r\n"), 1);
        QCOMPARE(lines("#TMZBAA").size(), 1);
        FsdLineClient observer(m_network->fsd());
        observer.logInAsAtc("XY_OBS");
        settle(observer, "XY_OBS");
        pass(10'000);
        settle(observer, "XY_OBS");
        QVERIFY(!observer.got("#TMZBAA"));
    }

    void theTowerAnswersTexts_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("answer");
        const auto row = [](const char *name, const char *text, const char *answer) {
            QTest::newRow(name) << QByteArray(text) << QByteArray(answer);
        };
        row("a text", "hello: tower", "AB1, ZBAA_TWR, I read you.");
        row("a code", "SELCAL AB-CD", "AB1, your SELCAL is AB-CD.\r\n");
        row("a code in lower case without dash", " selcal efgh ", "AB1, your SELCAL is EF-GH.\r\n");
        row("no code", "SELCAL AB", "AB1, ZBAA_TWR, I read you.");
        row("a call without a code", "SELCAL", "AB1, tell me your code first, such as SELCAL AB-CD.\r\n");
    }

    void theTowerAnswersTexts()
    {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, answer);
        m_a->send("#TMAB1:ZBAA_TWR:" + text);
        m_a->send("#TMAB1:ZBAA_GND:" + text); // who doesn't talk
        settle(*m_a, "AB1");
        pass(1'400);
        QVERIFY(lines("#TMZBAA").isEmpty());
        pass(100);
        QVERIFY2(m_a->got("#TMZBAA_TWR:AB1:" + answer), m_a->all().constData());
        QCOMPARE(lines("#TMZBAA").size(), 1);
    }

    void theTowerCallsBySelcal_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<qint64>("after");
        QTest::addColumn<QByteArray>("call");
        const QByteArray onHis = "#TMZBAA_TWR:@18500:SELCAL AB-CD\r\n";
        QTest::newRow("on the pilot's frequency")
            << QByteArray("121.800") << qint64(0) << QByteArray("#TMZBAA_TWR:@21800:SELCAL AB-CD\r\n");
        QTest::newRow("pilot says nonsense") << QByteArray("nan") << qint64(0) << onHis;
        QTest::newRow("pilot says too much") << QByteArray("1e9") << qint64(0) << onHis;
        QTest::newRow("pilot says nothing") << QByteArray() << qint64(5'000) << onHis;
    }

    void theTowerCallsBySelcal()
    {
        QFETCH(QByteArray, answer);
        QFETCH(qint64, after);
        QFETCH(QByteArray, call);
        m_a->send("#TMAB1:ZBAA_TWR:SELCAL AB-CD");
        m_a->send("#TMAB1:ZBAA_TWR:SELCAL");
        settle(*m_a, "AB1");
        QVERIFY(m_a->got("$CQZBAA_TWR:AB1:C?\r\n"));
        if (after > 0) {
            pass(after - 100);
            QVERIFY(!m_a->got(call));
            pass(100);
        } else {
            m_a->send("$CRAB1:ZBAA_TWR:C?:" + answer);
            m_a->send("$CRAB1:ZBAA_TWR:C?:" + answer); // once is enough
            settle(*m_a, "AB1");
        }
        pass(10'000);
        QVERIFY2(m_a->got(call), m_a->all().constData());
        QCOMPARE(m_a->all().count(":SELCAL AB-CD\r\n"), 1);
    }

    void theTowerForgetsWhoHasLeft()
    {
        m_a->send("#TMAB1:ZBAA_TWR:SELCAL AB-CD");
        m_a->send("#TMAB1:ZBAA_TWR:SELCAL");
        settle(*m_a, "AB1");
        m_a->socket.abort();
        TRY_VERIFY(m_network->fsd().callsigns().isEmpty());
        m_a = std::make_unique<FsdLineClient>(m_network->fsd());
        m_a->logIn("AB1");
        m_a->report("AB1", fieldLatitude, fieldLongitude);
        m_a->send("#TMAB1:ZBAA_TWR:SELCAL");
        settle(*m_a, "AB1");
        pass(6'000);
        QVERIFY(m_a->got("#TMZBAA_TWR:AB1:AB1, tell me your code first"));
        QVERIFY(!m_a->got("#TMZBAA_TWR:@"));
    }

    void theTowerAnswersOnHisFrequency()
    {
        m_a->send("#TMAB1:@18500&@21700:tower, AB1, ready");
        settle(*m_a, "AB1");
        pass(1'500);
        QCOMPARE(m_a->count("#TMZBAA_TWR:@18500:AB1, ZBAA_TWR, roger.\r\n"), 1);
        m_a->forget();
        m_a->send("#TMAB1:@21700:anybody?");
        m_a->send("#TMAB1:@21900:ground?"); // who doesn't talk
        settle(*m_a, "AB1");
        pass(3'000);
        QVERIFY(lines("#TMZBAA").size() <= 1); // the greeting
        QVERIFY(!m_a->got("#TMZBAA_TWR:@"));
    }

    void aFloodOfTextsGetsSomeAnswers()
    {
        for (int i = 0; i < 200; ++i)
            m_a->send("#TMAB1:ZBAA_TWR:hello");
        settle(*m_a, "AB1");
        pass(10'000);
        QCOMPARE(lines("#TMZBAA_TWR:AB1:").size(), 32);
    }

    void theSupervisorAnswersAWallop()
    {
        m_a->send("#TMAB1:*S:help me");
        settle(*m_a, "AB1");
        pass(1'500);
        QCOMPARE(m_a->count("#TMNET_SUP:AB1:Supervisor here, AB1. I got: help me\r\n"), 1);
    }

    void theSupervisorSpeaksToAllNowAndThen()
    {
        m_network->residents()->broadcast(QStringLiteral("to all: hello"));
        TRY_COMPARE(lines("#TMNET_SUP:*:").size(), 1);
        QVERIFY(m_a->got("#TMNET_SUP:*:to all: hello\r\n"));
        pass(400'000, 5'000);
        QCOMPARE(lines("#TMNET_SUP:*:").size(), 1); // never by himself
        start(60'000);
        pass(59'900, 59'900);
        QVERIFY(lines("#TMNET_SUP:*:").isEmpty());
        pass(100);
        QCOMPARE(lines("#TMNET_SUP:*:All stations").size(), 1);
        pass(180'000, 1'000);
        const QByteArrayList all = lines("#TMNET_SUP:*:All stations");
        QCOMPARE(all.size(), 4);
        QVERIFY(all.at(0) != all.at(1));
        QCOMPARE(all.at(3), all.at(0));
    }
};

TARVO_TEST(ResidentsTest)
#include "ResidentsTest.moc"

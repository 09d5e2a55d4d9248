#include "Peers.h"
#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/PilotPosition.h"
#include "model/AircraftConfiguration.h"
#include "practice/Patterns.h"
#include "practice/Roster.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

#include <cmath>
#include <map>
#include <memory>

using namespace tarvo;
using namespace tarvo::practice;
using namespace tarvo::test;
using fsd::pdu::FastPilotPosition;
using fsd::pdu::FastPilotPositionType;
using fsd::pdu::PilotPosition;

/// A pilot AB1, who connects to a network with company and stands near the tower unless told otherwise.
class CompanyTest : public QObject
{
    Q_OBJECT

    static constexpr double fieldLatitude = 40.0725;
    static constexpr double fieldLongitude = 116.5975;

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<FsdPeer> m_a;

    void start(int broadcastIntervalMs = 0, double fastRangeNm = 0)
    {
        PracticeSettings settings = quietSettings();
        settings.fsd.silenceMs = 1 << 30;
        settings.fsd.fastRangeNm = fastRangeNm;
        settings.company.present = true;
        settings.company.broadcastIntervalMs = broadcastIntervalMs;
        m_a.reset();
        m_network = std::make_unique<PracticeNetwork>(settings, m_clock);
        QVERIFY(m_network->start());
        m_a = std::make_unique<FsdPeer>(m_network->fsd());
        m_a->logIn("AB1");
        m_a->report("AB1", fieldLatitude, fieldLongitude);
        settle(*m_a, "AB1");
        m_network->company()->step(); // what is due at the very start
        settle(*m_a, "AB1");
    }
    /// Lets time pass in steps of the company.
    void pass(qint64 ms, qint64 stepMs = 100)
    {
        for (qint64 gone = 0; gone < ms; gone += stepMs) {
            m_clock.advance(stepMs);
            m_network->company()->step();
            m_network->fsd().keepAlive();
        }
        settle(*m_a, "AB1");
    }
    QByteArrayList lines(const QByteArray &start) const
    {
        QByteArrayList found;
        for (const QByteArray &line : m_a->all().split('\n')) {
            if (line.startsWith(start))
                found.append(line.trimmed());
        }
        return found;
    }
    static QStringList fields(const QByteArray &line, qsizetype identifier)
    {
        return QString::fromLatin1(line.mid(identifier)).split(u':');
    }
    /// What the pilot's next slow position says.
    PilotPosition slowPositionOf(const QByteArray &callsign)
    {
        m_a->forget();
        pass(5'000);
        for (const QByteArray &line : lines("@")) {
            const PilotPosition report = PilotPosition::parse(fields(line, 1));
            if (report.From == QString::fromLatin1(callsign))
                return report;
        }
        return {};
    }
    model::AircraftConfigurationMessage configurationIn(const QByteArray &line)
    {
        return model::AircraftConfigurationMessage::parse(
            QString::fromLatin1(line).section(QStringLiteral(":ACC:"), 1));
    }
    /// Asks and waits for a line that begins like this.
    void ask(const QByteArray &question, const QByteArray &answer)
    {
        m_a->forget();
        m_a->send(question);
        settle(*m_a, "AB1");
        QVERIFY2(m_a->got(answer), m_a->all().constData());
    }

private slots:
    void init() { start(); }

    void theyAreThere()
    {
        QCOMPARE(m_network->fsd().residents().join(u' '),
                 QStringLiteral("ZBAA_TWR ZBAA_GND ZBAA_APP CES2117 CCA908 CHH7182 BAW38 NET_SUP"));
        QCOMPARE(lines("#AP").size(), 4);
        QCOMPARE(lines("#AA").size(), 4);
        QVERIFY(m_a->got("#APCCA908:SERVER:9002::1:9:0:Zhao Ming ZBAA\r\n"));
        m_network->company()->stop();
        QTRY_COMPARE(lines("#DP").size(), 4);
        QTRY_COMPARE(lines("#DA").size(), 4);
        QVERIFY(m_network->fsd().residents().isEmpty());
        m_network->company()->start();
        m_network->company()->start(); // once is enough
        QCOMPARE(m_network->fsd().residents().size(), 8);
    }

    void testsHaveNoneUnlessTheyAskForThem()
    {
        PracticeNetwork network(PracticeSettings::ephemeral());
        QVERIFY(!network.company());
        QVERIFY(PracticeNetwork(PracticeSettings()).company());
    }

    void whoseCallsignIsTakenStaysAway()
    {
        m_network->company()->stop();
        FsdPeer peer(m_network->fsd());
        peer.logIn("NET_SUP", "1002");
        settle(peer, "NET_SUP");
        m_network->company()->start();
        QCOMPARE(m_network->fsd().residents().size(), 7);
        m_network->company()->broadcast(QStringLiteral("x")); // nobody does
        pass(10'000);
        QVERIFY(lines("#TMNET_SUP").isEmpty());
    }

    void pilotsAreWhereTheyShouldBe_data()
    {
        QTest::addColumn<QByteArray>("callsign");
        QTest::addColumn<bool>("onGround");
        QTest::addColumn<bool>("moving");
        QTest::newRow("on the circuit") << QByteArray("CES2117") << false << true;
        QTest::newRow("climbing") << QByteArray("CCA908") << false << true;
        QTest::newRow("taxiing") << QByteArray("CHH7182") << true << true;
        QTest::newRow("holding short") << QByteArray("BAW38") << true << false;
    }

    void pilotsAreWhereTheyShouldBe()
    {
        QFETCH(QByteArray, callsign);
        QFETCH(bool, onGround);
        QFETCH(bool, moving);
        const PilotPosition first = slowPositionOf(callsign);
        const PilotPosition second = slowPositionOf(callsign);
        QCOMPARE(second.onGround, onGround);
        QCOMPARE(second.groundSpeed > 3, moving);
        QCOMPARE(second.trueAltitude < 150, onGround); // the field lies at 115 feet
        const double gone =
            distanceNm({first.latitude, first.longitude}, {second.latitude, second.longitude}) * 3600 / 5;
        QVERIFY2(std::abs(gone - (first.groundSpeed + second.groundSpeed) / 2.0) < 3,
                 qPrintable(QString::number(gone)));
        QVERIFY(distanceNm({fieldLatitude, fieldLongitude}, {second.latitude, second.longitude}) < 6);
        QCOMPARE(m_a->count("#SL" + callsign + ':'), moving ? 1 : 0);
    }

    void fastPositionsComeWhenAskedFor()
    {
        pass(10'000);
        QVERIFY(!m_a->got("^"));
        QVERIFY(!m_a->got("#ST"));
        QVERIFY(!m_a->got("$SF"));
        start(0, 10);
        QTRY_VERIFY(m_a->got("$SFSERVER:AB1:1\r\n"));
        m_a->forget();
        pass(2'000, 50);
        for (const char *callsign : {"CES2117", "CCA908", "CHH7182"})
            QCOMPARE(m_a->count(QByteArray("^") + callsign + ':'), 10);
        QCOMPARE(m_a->count("#STBAW38:"), 10);
        m_a->report("AB1", fieldLatitude + 0.5, fieldLongitude);
        settle(*m_a, "AB1");
        m_a->forget();
        pass(2'000, 50);
        QVERIFY(!m_a->got("^"));
        QVERIFY(!m_a->got("#ST"));
    }

    void fastPositionsHaveTheVelocitiesOfTheWay_data()
    {
        QTest::addColumn<QByteArray>("callsign");
        QTest::newRow("on the circuit") << QByteArray("CES2117");
        QTest::newRow("climbing") << QByteArray("CCA908");
        QTest::newRow("taxiing") << QByteArray("CHH7182");
    }

    void fastPositionsHaveTheVelocitiesOfTheWay()
    {
        QFETCH(QByteArray, callsign);
        start(0, 10);
        pass(20'000); // the one who taxis has to start first
        m_a->forget();
        pass(2'000, 50);
        const QByteArrayList reports = lines('^' + callsign + ':');
        QCOMPARE(reports.size(), 10);
        const auto first = FastPilotPosition::parse(fields(reports.first(), 1), FastPilotPositionType::Fast);
        const auto last = FastPilotPosition::parse(fields(reports.last(), 1), FastPilotPositionType::Fast);
        constexpr double metresPerDegree = 111'194.9;
        constexpr double seconds = 1.8;
        const double north = (last.latitude - first.latitude) * metresPerDegree / seconds;
        const double east =
            (last.longitude - first.longitude) * metresPerDegree * std::cos(qDegreesToRadians(40.07)) / seconds;
        const double up = (last.trueAltitude - first.trueAltitude) / 3.28084 / seconds;
        QVERIFY(std::abs((first.velocity1 + last.velocity1) / 2 - east) < 0.4);
        QVERIFY(std::abs((first.velocity2 + last.velocity2) / 2 - up) < 0.2);
        QVERIFY(std::abs((first.velocity3 + last.velocity3) / 2 - north) < 0.4);
        QVERIFY(std::hypot(north, east) > 2);
    }

    void pilotsAnswer_data()
    {
        QTest::addColumn<QByteArray>("question");
        QTest::addColumn<QByteArray>("answer");
        const auto row = [](const char *name, const char *question, const char *answer) {
            QTest::newRow(name) << QByteArray(question) << QByteArray(answer);
        };
        row("capabilities", "$CQAB1:CES2117:CAPS",
            "$CRCES2117:AB1:CAPS:VERSION=1:ATCINFO=1:MODELDESC=1:ACCONFIG=1:VISUPDATE=1\r\n");
        row("real name", "$CQAB1:BAW38:RN", "$CRBAW38:AB1:RN:Tom Baker EGLL:1\r\n");
        row("type", "#SBAB1:CES2117:PIR", "#SBCES2117:AB1:PI:GEN:EQUIPMENT=B738:AIRLINE=CES\r\n");
        row("livery and model", "#SBAB1:CCA908:PIR",
            "#SBCCA908:AB1:PI:GEN:EQUIPMENT=A333:AIRLINE=CCA:LIVERY=SWIFT_A333_CCA:CSL=A333_CCA\r\n");
        row("flight plan", "$CQAB1:SERVER:FP:BAW38", "$CRSERVER:AB1:FP:BAW38:H/B789/L\r\n$FPBAW38:SERVER:I:H/B789/L:");
        row("no flight plan", "$CQAB1:SERVER:FP:CHH7182", "$ERSERVER:AB1:8:CHH7182:No flight plan\r\n");
        row("ping", "$PIAB1:CES2117:42", "$POCES2117:AB1:42\r\n");
        row("no controller", "$CQAB1:SERVER:ATC:CES2117", "$CRSERVER:AB1:ATC:N:CES2117\r\n");
        row("configuration", R"($CQAB1:BAW38:ACC:{"request":"full"})",
            R"($CQBAW38:AB1:ACC:{"config":{"is_full_data":true,"lights":{"strobe_on":false,"landing_on":false,)"
            R"("taxi_on":true,"beacon_on":true,"nav_on":true},"engines":{"1":{"on":true,"is_reversing":false},)"
            R"("2":{"on":true,"is_reversing":false}},"gear_down":true,"flaps_pct":25,"spoilers_out":false,)"
            R"("on_ground":true}})");
    }

    void pilotsAnswer()
    {
        QFETCH(QByteArray, question);
        QFETCH(QByteArray, answer);
        ask(question, answer);
    }

    void whatPilotsDoNotAnswer_data()
    {
        QTest::addColumn<QByteArray>("question");
        QTest::newRow("type, to another world's client") << QByteArray("#SBAB1:BAW38:PIR");
        QTest::newRow("ATIS") << QByteArray("$CQAB1:BAW38:ATIS");
        QTest::newRow("a configuration that asks for none") << QByteArray("$CQAB1:BAW38:ACC:{\"config\":{}}");
        QTest::newRow("a configuration that is none") << QByteArray("$CQAB1:BAW38:ACC:full");
        QTest::newRow("private text") << QByteArray("#TMAB1:BAW38:SELCAL");
        QTest::newRow("query of an unknown type") << QByteArray("$CQAB1:BAW38:ZZ:1");
        QTest::newRow("a radio text without frequency") << QByteArray("#TMAB1:@:x");
    }

    void whatPilotsDoNotAnswer()
    {
        QFETCH(QByteArray, question);
        m_a->forget();
        m_a->send(question);
        settle(*m_a, "AB1");
        pass(3'000);
        QVERIFY2(!m_a->all().contains("BAW38:AB1:"), m_a->all().constData());
        QVERIFY(!m_a->got("$ER"));
    }

    void theOneOnTheCircuitChangesHisConfiguration()
    {
        std::map<QByteArray, int> seen; // what changed, how often
        model::AircraftConfiguration known;
        ask(R"($CQAB1:CES2117:ACC:{"request":"full"})", "$CQCES2117:AB1:ACC:");
        known = *configurationIn(lines("$CQCES2117:AB1").constFirst()).configuration;
        QVERIFY(known.isFullData.value_or(false));
        QCOMPARE(known.gearDown, std::optional(false));
        m_a->forget();
        pass(700'000, 1'000); // a whole circuit
        const QByteArrayList messages = lines("$CQCES2117:@94386:ACC:");
        QVERIFY(messages.size() > 20);
        for (const QByteArray &message : messages) {
            const auto change = configurationIn(message).configuration;
            QVERIFY2(change, message.constData());
            QVERIFY(!change->isFullData);
            seen["gear"] += change->gearDown ? 1 : 0;
            seen["flaps"] += change->flapsPct ? 1 : 0;
            seen["spoilers"] += change->spoilersOut ? 1 : 0;
            seen["ground"] += change->onGround ? 1 : 0;
            seen["landing lights"] += change->lights.landingOn ? 1 : 0;
            seen["engine"] += change->engines.engine[0].on ? 1 : 0;
            seen["reverse"] += change->engines.engine[0].isReversing ? 1 : 0;
        }
        QCOMPARE(seen["gear"], 2);
        QCOMPARE(seen["spoilers"], 2);
        QCOMPARE(seen["ground"], 2);
        QCOMPARE(seen["engine"], 2);
        QCOMPARE(seen["reverse"], 2);
        QVERIFY(seen["landing lights"] == 2);
        QVERIFY(seen["flaps"] > 10);
        QVERIFY(lines("$CQBAW38:@94386").isEmpty()); // he stands there
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
        FsdPeer observer(m_network->fsd());
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
        QTRY_VERIFY(m_network->fsd().callsigns().isEmpty());
        m_a = std::make_unique<FsdPeer>(m_network->fsd());
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
        m_network->company()->broadcast(QStringLiteral("to all: hello"));
        QTRY_COMPARE(lines("#TMNET_SUP:*:").size(), 1);
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

TARVO_TEST(CompanyTest)
#include "CompanyTest.moc"

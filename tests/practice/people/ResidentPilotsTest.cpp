#include "FieldBench.h"
#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/PilotPosition.h"
#include "model/AircraftConfiguration.h"
#include "practice/flight/Flight.h"
#include "practice/flight/Patterns.h"
#include "practice/fsd/Roster.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <cmath>
#include <map>

using namespace tarvo;
using namespace tarvo::practice;
using namespace tarvo::test;
using fsd::pdu::FastPilotPosition;
using fsd::pdu::FastPilotPositionType;
using fsd::pdu::PilotPosition;

/// The resident pilots.
class ResidentPilotsTest : public QObject, private ResidentsBench
{
    Q_OBJECT

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
    static model::AircraftConfigurationMessage configurationIn(const QByteArray &line)
    {
        return model::AircraftConfigurationMessage::parse(
            QString::fromLatin1(line).section(QStringLiteral(":ACC:"), 1));
    }

private slots:
    void init() { start(); }

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

    void twoAreAlwaysInTheAir()
    {
        m_a->forget();
        pass(1'000'000, 1'000);          // more than two circuits, and as long as anybody is likely to look
        std::map<QString, int> inTheAir; // slow positions
        std::map<QString, int> onGround;
        for (const QByteArray &line : lines("@")) {
            const PilotPosition report = PilotPosition::parse(fields(line, 1));
            ++(report.onGround ? onGround : inTheAir)[report.From];
        }
        const std::map<QString, int> expectedInTheAir{{QStringLiteral("CCA908"), 200},
                                                      {QStringLiteral("CES2117"), 200}};
        const std::map<QString, int> expectedOnGround{{QStringLiteral("BAW38"), 200}, {QStringLiteral("CHH7182"), 200}};
        QCOMPARE(inTheAir, expectedInTheAir);
        QCOMPARE(onGround, expectedOnGround);
    }

    void fastPositionsComeWhenAskedFor()
    {
        pass(10'000);
        QVERIFY(!m_a->got("^"));
        QVERIFY(!m_a->got("#ST"));
        QVERIFY(!m_a->got("$SF"));
        start(0, 10);
        TRY_VERIFY(m_a->got("$SFSERVER:AB1:1\r\n"));
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
        const Flight flight(westCircuit());
        pass(qRound64(flight.duration()) * 1'000, 1'000); // a whole circuit
        const QByteArrayList messages = lines("$CQCES2117:@94386:ACC:");
        QVERIFY(messages.size() > 15);
        for (const QByteArray &message : messages) {
            const auto change = configurationIn(message).configuration;
            QVERIFY2(change, message.constData());
            QVERIFY(!change->isFullData);
            seen["gear"] += change->gearDown ? 1 : 0;
            seen["flaps"] += change->flapsPct ? 1 : 0;
            seen["spoilers"] += change->spoilersOut ? 1 : 0;
            seen["landing lights"] += change->lights.landingOn ? 1 : 0;
            seen["taxi lights"] += change->lights.taxiOn ? 1 : 0;
            QVERIFY(!change->onGround && !change->engines.engine[0].on);
        }
        QCOMPARE(seen["gear"], 2);
        QCOMPARE(seen["spoilers"], 2);
        QCOMPARE(seen["landing lights"], 2);
        QCOMPARE(seen["taxi lights"], 2);
        QVERIFY(seen["flaps"] > 10);
        QVERIFY(lines("$CQBAW38:@94386").isEmpty()); // he stands there
    }
};

TARVO_TEST(ResidentPilotsTest)
#include "ResidentPilotsTest.moc"

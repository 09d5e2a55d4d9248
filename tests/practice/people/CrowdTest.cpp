#include "practice/people/Crowd.h"
#include "FieldBench.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PilotPosition.h"
#include "practice/fsd/Roster.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <cmath>
#include <limits>
#include <memory>

using namespace tarvo;
using namespace tarvo::practice;
using namespace tarvo::test;
using fsd::pdu::FastPilotPosition;
using fsd::pdu::FastPilotPositionType;

/// AB1 at Beijing, and a crowd about him.
class CrowdTest : public QObject, private FieldBench
{
    Q_OBJECT

    std::unique_ptr<Crowd> m_crowd;

    void start(int pilots, double rateHz)
    {
        open(quietSettings());
        m_crowd = std::make_unique<Crowd>(m_network->fsd(), CrowdSettings{.pilots = pilots, .rateHz = rateHz}, m_clock);
        m_crowd->start();
    }
    void pass(qint64 ms, qint64 stepMs)
    {
        passWith(ms, stepMs, [this] { m_crowd->step(); });
    }
    static FastPilotPosition fast(const QByteArray &line)
    {
        return FastPilotPosition::parse(QString::fromLatin1(line.mid(1)).split(u':'), FastPilotPositionType::Fast);
    }

private slots:
    void cleanup()
    {
        m_crowd.reset();
        m_a.reset();
        m_network.reset();
    }

    void writesNumbers_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("latitude") << 40.0665 << 6 << QByteArray("40.066500");
        QTest::newRow("negative") << -116.000001 << 6 << QByteArray("-116.000001");
        QTest::newRow("rounded up") << 0.99995 << 4 << QByteArray("1.0000");
        QTest::newRow("rounded to nothing") << -0.00001 << 4 << QByteArray("0.0000");
        QTest::newRow("small") << 0.0275 << 4 << QByteArray("0.0275");
        QTest::newRow("whole") << 12.0 << 0 << QByteArray("12");
    }

    void writesNumbers()
    {
        QFETCH(double, value);
        QFETCH(int, decimals);
        QFETCH(QByteArray, text);
        QByteArray written = "x";
        appendFixed(written, value, decimals);
        QCOMPARE(written, "x" + text);
    }

    void everyoneSendsAtTheRate_data()
    {
        QTest::addColumn<int>("pilots");
        QTest::addColumn<double>("rate");
        QTest::addColumn<qint64>("stepMs");
        QTest::addColumn<int>("expected");
        QTest::newRow("5 Hz") << 100 << 5.0 << qint64(10) << 50;
        QTest::newRow("one pilot") << 1 << 5.0 << qint64(50) << 50;
        QTest::newRow("1 Hz") << 30 << 1.0 << qint64(20) << 10;
        QTest::newRow("steps too far apart") << 30 << 5.0 << qint64(1000) << 10; // what was missed stays missed
    }

    void everyoneSendsAtTheRate()
    {
        QFETCH(int, pilots);
        QFETCH(double, rate);
        QFETCH(qint64, stepMs);
        QFETCH(int, expected);
        start(pilots, rate);
        TRY_COMPARE(lines("#AP").size(), pilots);
        m_a->forget();
        pass(10'000, stepMs);
        QCOMPARE(lines("^").size(), pilots * expected);
        QCOMPARE(lines("@").size(), pilots * 2); // each five seconds
        for (const QString &callsign : m_network->fsd().residents())
            QCOMPARE(m_a->count('^' + callsign.toLatin1() + ':'), expected);
    }

    void reportsAreThoseOfTheProtocol()
    {
        start(20, 5);
        pass(10'000, 10);
        for (const QByteArray &line : lines("^")) {
            const FastPilotPosition report = fast(line);
            const QByteArray again = fsd::toLine(report).toLatin1().trimmed();
            QCOMPARE(again.split(':').mid(0, 5), line.split(':').mid(0, 5)); // a round trip changes the attitude
            QCOMPARE(again.split(':').mid(6), line.split(':').mid(6));
            QCOMPARE(report.pitch, 2.0);
            QVERIFY(report.bank > 0); // to the right
        }
        for (const QByteArray &line : lines("@")) {
            const auto report = fsd::pdu::PilotPosition::parse(QString::fromLatin1(line.mid(1)).split(u':'));
            QCOMPARE(report.groundSpeed, 213);
            QVERIFY(report.squawkingModeC);
            QVERIFY(!report.onGround);
            QVERIFY(distanceNm({40.07, 116.6}, {report.latitude, report.longitude}) < 30);
        }
    }

    void velocitiesAreThoseOfTheWay()
    {
        start(1, 50);
        pass(1'000, 10);
        pass(150'000, 5'000); // somewhere else on the circle
        m_a->forget();
        pass(1'000, 10);
        const QByteArrayList reports = lines("^");
        QVERIFY(reports.size() > 40);
        const FastPilotPosition first = fast(reports.first());
        const FastPilotPosition last = fast(reports.last());
        const double seconds = static_cast<double>(reports.size() - 1) / 50;
        const double north = (last.latitude - first.latitude) * 111'194.9 / seconds;
        const double east = (last.longitude - first.longitude) * 111'194.9 *
                            std::cos(qDegreesToRadians((first.latitude + last.latitude) / 2)) / seconds;
        QVERIFY(std::abs((first.velocity1 + last.velocity1) / 2 - east) < 1);
        QVERIFY(std::abs((first.velocity3 + last.velocity3) / 2 - north) < 1);
        QCOMPARE(std::lround(std::hypot(north, east)), 110L);
        const double track = qRadiansToDegrees(std::atan2(east, north));
        QVERIFY(std::abs(std::remainder(track - (first.heading + last.heading) / 2, 360.0)) < 2);
    }

    void eachAnswers_data()
    {
        QTest::addColumn<QByteArray>("question");
        QTest::addColumn<QByteArray>("answer");
        const auto row = [](const char *name, const char *question, const char *answer) {
            QTest::newRow(name) << QByteArray(question) << QByteArray(answer);
        };
        row("capabilities", "$CQAB1:CES5001:CAPS", "$CRCES5001:AB1:CAPS:VERSION=1:ATCINFO=1:");
        row("real name", "$CQAB1:CES5001:RN", "$CRCES5001:AB1:RN:Crowd 2 ZBAA:1\r\n");
        row("type", "#SBAB1:CES5001:PIR", "#SBCES5001:AB1:PI:GEN:EQUIPMENT=A320\r\n");
        row("configuration", "$CQAB1:CES5001:ACC:{\"request\":\"full\"}",
            "$CQCES5001:AB1:ACC:{\"config\":{\"is_full_data\":true,");
        row("flight plan", "$CQAB1:SERVER:FP:CES5001", "$CRSERVER:AB1:FP:CES5001:A320\r\n$FPCES5001:SERVER:I:A320:");
    }

    void eachAnswers()
    {
        QFETCH(QByteArray, question);
        QFETCH(QByteArray, answer);
        start(2, 5);
        m_a->send("$CQAB1:CES5001:ATIS"); // no answer
        m_a->send("#TMAB1:CES5001:hello");
        m_a->send(question);
        settle(*m_a, "AB1");
        QVERIFY2(m_a->got(answer), m_a->all().constData());
        QCOMPARE(m_a->all().count("CES5001:AB1:") + m_a->all().count("SERVER:AB1:FP:"), 1);
    }

    void thousandsAreServedAtOnce()
    {
        constexpr int pilots = 2'000;
        PracticeSettings settings = quietSettings();
        settings.crowd.pilots = pilots;
        open(settings);
        QCOMPARE(lines("#AP").size(), pilots);
        const QStringList residents = m_network->fsd().residents();
        QCOMPARE(residents.size(), pilots);
        for (const QString &resident : residents) { // as a client asks that meets them all at once
            const QByteArray callsign = resident.toLatin1();
            m_a->send("$CQAB1:" + callsign + ":CAPS");
            m_a->send("#SBAB1:" + callsign + ":PIR");
            m_a->send("$CQAB1:SERVER:FP:" + callsign);
            m_a->send("$CQAB1:" + callsign + ":ACC:{\"request\":\"full\"}");
        }
        settle(*m_a, "AB1");
        QCOMPARE(lines("$CR").size(), 2 * pilots);
        QCOMPARE(lines("#SB").size(), pilots);
        QCOMPARE(lines("$CQ").size(), pilots);
        QCOMPARE(lines("$FP").size(), pilots);
        QVERIFY(!m_a->closed());
        m_network->stop();
    }

    void thereAreNoMoreThanTheMost()
    {
        start(std::numeric_limits<int>::max(), 5);
        QCOMPARE(m_network->fsd().residents().size(), qsizetype(CrowdSettings::mostPilots));
        m_crowd->stop();
        QVERIFY(m_network->fsd().residents().isEmpty());
        m_crowd->step(); // nobody is there
    }
};

TARVO_TEST(CrowdTest)
#include "CrowdTest.moc"

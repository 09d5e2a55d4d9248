#include "manager/PositionReporter.h"
#include "fsd/pdu/PilotPosition.h"
#include "support/Columns.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <limits>

using namespace tarvo::manager;
using tarvo::model::UserAircraftData;
using tarvo::test::columns;

namespace {

OwnPosition parked()
{
    OwnPosition own;
    own.callsign = u"AB1"_qs;
    own.aircraft.latitude = 40.08;
    own.aircraft.longitude = 116.6;
    own.radio.transponderCode = 2000;
    own.onGround = true;
    own.trueAltitudeFeet = 115.75;
    own.pressureAltitudeFeet = 90.25;
    return own;
}

OwnPosition flying()
{
    OwnPosition own = parked();
    own.onGround = false;
    own.aircraft.longitudeVelocity = 1; // east
    own.aircraft.altitudeVelocity = 2;  // up
    own.aircraft.latitudeVelocity = 3;  // north
    own.aircraft.pitchVelocity = 0.1;
    own.aircraft.headingVelocity = 0.2;
    own.aircraft.bankVelocity = 0.3;
    own.aircraft.noseWheelAngle = 4;
    own.aircraft.groundSpeed = 250.9;
    return own;
}

const QString parkedSlow = u"@S:AB1:2000:1:40.080000:116.600000:115:0:2:-25\r\n"_qs;
const QString parkedStopped = u"#STAB1:40.080000:116.600000:115.75:90.25:2:0.00\r\n"_qs;
const QString velocities = u"1.0000:2.0000:3.0000:0.1000:0.2000:0.3000:4.00\r\n"_qs;
const QString noVelocities = u"0.0000:0.0000:0.0000:0.0000:0.0000:0.0000:0.00\r\n"_qs;
const QString flyingSlow = u"@S:AB1:2000:1:40.080000:116.600000:115:250:0:-25\r\n"_qs;

/// A reporter whose lines are kept.
struct Reports
{
    OwnPosition own = parked();
    PositionReporter reporter{[this] { return own; }};
    QStringList lines;

    Reports()
    {
        QObject::connect(&reporter, &PositionReporter::lineReady, &reporter,
                         [this](const QString &line) { lines.append(line); });
    }
    QTimer *timer(const char *name) const { return reporter.findChild<QTimer *>(QLatin1StringView(name)); }
    QStringList slow()
    {
        return after([this] { reporter.slowTick(); });
    }
    QStringList fast()
    {
        return after([this] { reporter.fastTick(); });
    }

    template <class Action>
    QStringList after(Action action)
    {
        lines.clear();
        action();
        return lines;
    }
};

} // namespace

class PositionReporterTest : public QObject
{
    Q_OBJECT

private slots:
    void moving_data()
    {
        columns<int, double, bool>("field", "value", "expected");
        for (const char *name : {"east", "up", "north", "pitch", "heading"}) {
            const int index = m_movingRow++;
            QTest::addRow("%s at 0.005", name) << index << 0.005 << true;
            QTest::addRow("%s at -0.005", name) << index << -0.005 << true;
            QTest::addRow("%s at 0.00499", name) << index << 0.00499 << false;
        }
        QTest::newRow("bank alone") << 5 << 1.0 << false;
        QTest::newRow("not a number") << 0 << std::numeric_limits<double>::quiet_NaN() << false;
    }

    void moving()
    {
        constexpr double UserAircraftData::*fields[] = {
            &UserAircraftData::longitudeVelocity, &UserAircraftData::altitudeVelocity,
            &UserAircraftData::latitudeVelocity,  &UserAircraftData::pitchVelocity,
            &UserAircraftData::headingVelocity,   &UserAircraftData::bankVelocity};
        QFETCH(int, field);
        QFETCH(double, value);
        UserAircraftData aircraft;
        aircraft.*fields[field] = value;
        QTEST(isMoving(aircraft), "expected");
    }

    void velocityGoesOutEastUpNorth()
    {
        const UserAircraftData aircraft{.latitudeVelocity = 3, .altitudeVelocity = 2, .longitudeVelocity = 1};
        QCOMPARE(positionalVelocity(aircraft), (tarvo::model::VelocityVector{.x = 1, .y = 2, .z = 3}));
    }

    void startSendsSlowThenStopped()
    {
        Reports reports;
        reports.own = flying(); // even then
        reports.own.onGround = true;
        reports.reporter.start();
        QCOMPARE(reports.lines.size(), 2);
        QCOMPARE(reports.lines.at(0), u"@S:AB1:2000:1:40.080000:116.600000:115:250:2:-25\r\n"_qs);
        QCOMPARE(reports.lines.at(1), parkedStopped);
        QVERIFY(reports.timer("slowTimer")->isActive());
        QCOMPARE(reports.timer("slowTimer")->interval(), 5000);
        QVERIFY(!reports.timer("fastTimer")->isActive());
        QCOMPARE(reports.timer("fastTimer")->interval(), 200);
    }

    void transponder_data()
    {
        columns<bool, bool, QString>("modeC", "ident", "mode");
        QTest::newRow("standby") << false << false << u"@S:"_qs;
        QTest::newRow("mode C") << true << false << u"@N:"_qs;
        QTest::newRow("ident") << true << true << u"@Y:"_qs;
    }

    void transponder()
    {
        QFETCH(bool, modeC);
        QFETCH(bool, ident);
        QFETCH(QString, mode);
        Reports reports;
        reports.own.radio.squawkingModeC = modeC;
        reports.own.radio.squawkingIdent = ident;
        reports.own.radio.transponderCode = 20;
        QVERIFY(reports.slow().last().startsWith(mode + u"AB1:20:1:"_qs));
    }

    void slowTickParkedSendsOnlyTheSlowPosition()
    {
        Reports reports;
        QCOMPARE(reports.slow(), QStringList{parkedSlow});
    }

    void slowTickMovingSendsVelocitiesFirst()
    {
        Reports reports;
        reports.own = flying();
        QCOMPARE(reports.slow(),
                 (QStringList{u"#SLAB1:40.080000:116.600000:115.75:90.25:0:"_qs + velocities, flyingSlow}));
    }

    void slowTickPausedSendsZeroVelocities()
    {
        Reports reports;
        reports.own = flying();
        reports.own.paused = true;
        QCOMPARE(reports.slow(),
                 (QStringList{u"^AB1:40.080000:116.600000:115.75:90.25:0:"_qs + noVelocities, flyingSlow}));
    }

    void fastTick()
    {
        Reports reports;
        QCOMPARE(reports.fast(), QStringList{parkedStopped});
        reports.own = flying();
        QCOMPARE(reports.fast(), QStringList{u"^AB1:40.080000:116.600000:115.75:90.25:0:"_qs + velocities});
        reports.own.paused = true;
        QCOMPARE(reports.fast(), QStringList{u"^AB1:40.080000:116.600000:115.75:90.25:0:"_qs + noVelocities});
    }

    void bankRateAloneSendsStoppedReports()
    {
        Reports reports;
        reports.own.aircraft.bankVelocity = 1.0;
        QCOMPARE(reports.fast(), QStringList{parkedStopped});
        QCOMPARE(reports.slow(), QStringList{parkedSlow});
    }

    void setFastStartsAndEndsWithAStoppedReport()
    {
        Reports reports;
        reports.own = flying();
        QCOMPARE(reports.after([&] { reports.reporter.setFast(true); }), QStringList());
        QVERIFY(reports.timer("fastTimer")->isActive());
        const QStringList ended = reports.after([&] { reports.reporter.setFast(false); });
        QCOMPARE(ended, QStringList{u"#STAB1:40.080000:116.600000:115.75:90.25:0:0.00\r\n"_qs});
        QVERIFY(!reports.timer("fastTimer")->isActive());
    }

    void aServerThatRepeatsItselfStarvesNothing()
    {
        Reports reports;
        reports.reporter.setFast(true);
        const QTimer *timer = reports.timer("fastTimer");
        TRY_VERIFY(timer->remainingTime() < timer->interval());
        const int left = timer->remainingTime();
        reports.reporter.setFast(true);
        QVERIFY(timer->remainingTime() <= left); // not begun anew
    }

    void stopEndsBothTimers()
    {
        Reports reports;
        reports.reporter.start();
        reports.reporter.setFast(true);
        QCOMPARE(reports.after([&] { reports.reporter.stop(); }), QStringList());
        QVERIFY(!reports.timer("fastTimer")->isActive());
        QVERIFY(!reports.timer("slowTimer")->isActive());
    }

    void aStopDuringTheFirstReportsLasts()
    {
        Reports reports;
        QObject::connect(&reports.reporter, &PositionReporter::lineReady, &reports.reporter,
                         [&] { reports.reporter.stop(); });
        reports.reporter.start();
        QVERIFY(!reports.timer("slowTimer")->isActive());
    }

    void theTimersDriveTheTicks()
    {
        Reports reports;
        QVERIFY(QMetaObject::invokeMethod(reports.timer("slowTimer"), "timeout"));
        QCOMPARE(reports.lines, QStringList{parkedSlow});
        reports.lines.clear();
        QVERIFY(QMetaObject::invokeMethod(reports.timer("fastTimer"), "timeout"));
        QCOMPARE(reports.lines, QStringList{parkedStopped});
    }

    void anObserverSendsOnlyItsPosition()
    {
        const QString position = u"%AB1:99998:0:40:1:40.08000:116.60000:0\r\n"_qs;
        Reports reports;
        reports.own = flying();
        reports.own.observer = true;
        QCOMPARE(reports.after([&] { reports.reporter.start(); }), QStringList{position});
        QCOMPARE(reports.timer("slowTimer")->interval(), 15000);
        QCOMPARE(reports.slow(), QStringList{position});
        QCOMPARE(reports.after([&] { reports.reporter.setFast(true); }), QStringList());
        QVERIFY(reports.timer("fastTimer")->isActive()); // it runs, and sends nothing
        QCOMPARE(reports.fast(), QStringList());
        reports.own.paused = true;
        QCOMPARE(reports.slow(), QStringList{position});
        QCOMPARE(reports.after([&] { reports.reporter.setFast(false); }), QStringList());
    }

    void numbersOfASlowPositionAreCutTowardsZero_data()
    {
        columns<double, qint32>("value", "expected");
        QTest::newRow("positive") << 99.99 << 99;
        QTest::newRow("negative") << -99.99 << -99;
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 0;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 1'000'000'000;
        QTest::newRow("far too low") << -1e300 << -1'000'000'000;
    }

    void numbersOfASlowPositionAreCutTowardsZero()
    {
        QFETCH(double, value);
        QFETCH(qint32, expected);
        OwnPosition own = parked();
        own.trueAltitudeFeet = value;
        own.pressureAltitudeFeet = value;
        own.aircraft.groundSpeed = value;
        const tarvo::fsd::pdu::PilotPosition report = pilotPosition(own);
        QCOMPARE(report.trueAltitude, expected);
        QCOMPARE(report.pressureAltitude, expected);
        QCOMPARE(report.groundSpeed, expected);
    }

private:
    int m_movingRow = 0;
};

TARVO_TEST(PositionReporterTest)
#include "PositionReporterTest.moc"

#include "practice/flight/Flight.h"
#include "support/TestRegistry.h"

#include <QTest>
#include <QtMath>

#include <cmath>
#include <limits>

using namespace tarvo::practice;

namespace {
constexpr double step = 0.05; // seconds
constexpr double metresPerDegree = 111'194.9;

double metresNorth(const AircraftState &a, const AircraftState &b)
{
    return (b.latitude - a.latitude) * metresPerDegree;
}

double metresEast(const AircraftState &a, const AircraftState &b)
{
    return (b.longitude - a.longitude) * metresPerDegree * std::cos(qDegreesToRadians(40.0665));
}
} // namespace

class FlightTest : public QObject
{
    Q_OBJECT

    Flight m_flight;

    /// Calls `check(before, after, time)` along the whole loop and over its end.
    template <class Check>
    void walk(Check check) const
    {
        for (double time = 0; time < m_flight.duration() + 2; time += step)
            check(m_flight.at(time - step), m_flight.at(time), time);
    }

private slots:
    void lastsSomeTenMinutes()
    {
        QVERIFY(m_flight.duration() >= 540);
        QVERIFY(m_flight.duration() <= 780);
    }

    void velocitiesAreTheDerivativesOfThePosition()
    {
        double worst = 0;
        walk([&](const AircraftState &a, const AircraftState &b, double) {
            worst = std::max(worst, std::abs(metresNorth(a, b) / step - (a.northVelocity + b.northVelocity) / 2));
            worst = std::max(worst, std::abs(metresEast(a, b) / step - (a.eastVelocity + b.eastVelocity) / 2));
            worst = std::max(worst, std::abs((b.altitudeM - a.altitudeM) / step - (a.upVelocity + b.upVelocity) / 2));
        });
        QVERIFY2(worst < 0.01, qPrintable(QString::number(worst))); // metres per second
    }

    void nothingJumps()
    {
        double acceleration = 0;
        double attitude = 0;
        walk([&](const AircraftState &a, const AircraftState &b, double) {
            acceleration =
                std::max(acceleration, std::hypot(b.northVelocity - a.northVelocity, b.eastVelocity - a.eastVelocity,
                                                  b.upVelocity - a.upVelocity) /
                                           step);
            const double turned = std::remainder(b.heading - a.heading, 360.0);
            attitude = std::max({attitude, std::abs(turned) / step, std::abs(b.pitch - a.pitch) / step,
                                 std::abs(b.bank - a.bank) / step});
        });
        QVERIFY2(acceleration < 6, qPrintable(QString::number(acceleration))); // metres per second squared
        QVERIFY2(attitude < 15, qPrintable(QString::number(attitude)));        // degrees per second
    }

    void ratesAgreeWithTheAttitude()
    {
        double worst = 0;
        walk([&](const AircraftState &a, const AircraftState &b, double) {
            const double pitch = qDegreesToRadians((a.pitch + b.pitch) / 2);
            const double bank = qDegreesToRadians((a.bank + b.bank) / 2);
            const double pitchChange = qDegreesToRadians(b.pitch - a.pitch) / step;
            const double bankChange = qDegreesToRadians(b.bank - a.bank) / step;
            const double turn = qDegreesToRadians(std::remainder(b.heading - a.heading, 360.0)) / step;
            worst = std::max(worst, std::abs((a.rollRate + b.rollRate) / 2 - (bankChange - turn * std::sin(pitch))));
            worst = std::max(worst, std::abs((a.pitchRate + b.pitchRate) / 2 -
                                             (pitchChange * std::cos(bank) + turn * std::sin(bank) * std::cos(pitch))));
            worst = std::max(worst, std::abs((a.yawRate + b.yawRate) / 2 -
                                             (turn * std::cos(bank) * std::cos(pitch) - pitchChange * std::sin(bank))));
        });
        QVERIFY2(worst < 0.003, qPrintable(QString::number(worst))); // radians per second
    }

    void goesWhereTheNosePoints()
    {
        double worst = 0;
        walk([&](const AircraftState &, const AircraftState &s, double) {
            if (s.groundSpeed() < 3)
                return;
            const double track = qRadiansToDegrees(std::atan2(s.eastVelocity, s.northVelocity));
            worst = std::max(worst, std::abs(std::remainder(track - s.heading, 360.0)));
        });
        QVERIFY2(worst < 3, qPrintable(QString::number(worst))); // degrees
    }

    void theCircuitIsOneOfAnAirliner()
    {
        double highest = 0;
        double fastest = 0;
        double steepest = 0;
        int landings = 0;
        int takeOffs = 0;
        walk([&](const AircraftState &a, const AircraftState &s, double time) {
            highest = std::max(highest, s.heightM);
            fastest = std::max(fastest, s.groundSpeed());
            steepest = std::max(steepest, std::abs(s.bank));
            takeOffs += a.onGround && !s.onGround ? 1 : 0;
            landings += !a.onGround && s.onGround ? 1 : 0;
            QVERIFY2(s.heightM > -0.01, qPrintable(QString::number(time)));
            if (!a.onGround && s.onGround)
                QVERIFY(std::abs(s.upVelocity) < 1.5); // a landing, no crash
        });
        QCOMPARE(takeOffs, 1);
        QCOMPARE(landings, 1);
        QVERIFY(highest > 440 && highest < 470);
        QVERIFY(fastest > 85 && fastest < 100);
        QVERIFY(steepest > 15 && steepest < 30);
    }

    void turnsToTheLeft()
    {
        const AircraftState state = m_flight.at(m_flight.startOf(QStringLiteral("crosswind")) + 20);
        QVERIFY(state.bank < -10);
        QVERIFY(state.yawRate < 0);
    }

    void standsStillAtTheStand()
    {
        const AircraftState state = m_flight.at(0);
        QVERIFY(state.onGround);
        QVERIFY(state.groundSpeed() < 1e-9);
        QCOMPARE(state.altitudeM, 35.0);
        QVERIFY(std::abs(state.latitude - 40.07) < 0.02);
        QVERIFY(std::abs(state.longitude - 116.59) < 0.02);
        QVERIFY(!state.engine1 && !state.engine2 && !state.beacon && !state.avionics);
    }

    void thePilotSetsHisSwitches_data()
    {
        QTest::addColumn<QString>("phase");
        QTest::addColumn<double>("after");
        QTest::addColumn<bool AircraftState::*>("what");
        QTest::addColumn<bool>("on");
        const auto row = [](const char *name, const char16_t *phase, double after, bool AircraftState::*what, bool on) {
            QTest::newRow(name) << QString::fromUtf16(phase) << after << what << on;
        };
        row("beacon before the engines", u"engine start", 1, &AircraftState::beacon, true);
        row("right engine first", u"engine start", 10, &AircraftState::engine2, true);
        row("left engine second", u"engine start", 10, &AircraftState::engine1, false);
        row("both for taxi", u"taxi out", 0, &AircraftState::engine1, true);
        row("taxi light out", u"taxi out", 1, &AircraftState::taxiLights, true);
        row("no strobes on the taxiway", u"taxi out", 30, &AircraftState::strobes, false);
        row("strobes for take-off", u"take-off", 0, &AircraftState::strobes, true);
        row("landing lights for take-off", u"take-off", 0, &AircraftState::landingLights, true);
        row("mode C for take-off", u"take-off", 0, &AircraftState::modeC, true);
        row("gear down for take-off", u"take-off", 20, &AircraftState::gearDown, true);
        row("gear up in the climb", u"climb", 10, &AircraftState::gearDown, false);
        row("gear up downwind", u"downwind", 10, &AircraftState::gearDown, false);
        row("gear down on final", u"final", 0, &AircraftState::gearDown, true);
        row("speedbrake armed on final", u"final", 5, &AircraftState::speedbrakeArmed, true);
        row("reverse after landing", u"roll-out", 8, &AircraftState::reverse, true);
        row("no reverse on the taxiway", u"vacate", 1, &AircraftState::reverse, false);
        row("standby on the taxiway", u"taxi in", 1, &AircraftState::modeC, false);
        row("beacon off last", u"shutdown", 12, &AircraftState::beacon, false);
    }

    void thePilotSetsHisSwitches()
    {
        QFETCH(QString, phase);
        QFETCH(double, after);
        QFETCH(bool AircraftState::*, what);
        QFETCH(bool, on);
        const double start = m_flight.startOf(phase);
        QVERIFY(start >= 0);
        QCOMPARE(m_flight.at(start + after).*what, on);
    }

    void surfacesMoveAsInAFlight()
    {
        const auto at = [this](const char16_t *phase, double after) {
            return m_flight.at(m_flight.startOf(QString::fromUtf16(phase)) + after);
        };
        QCOMPARE(at(u"taxi out", 0).flaps, 0.0);
        QCOMPARE(at(u"take-off", 0).flaps, 0.25);
        QCOMPARE(at(u"downwind", 20).flaps, 0.0);
        QCOMPARE(at(u"flare", 0).flaps, 1.0);
        QVERIFY(at(u"flare", 0).speedbrake < 0.01);
        QCOMPARE(at(u"roll-out", 12).speedbrake, 1.0);
        QCOMPARE(at(u"shutdown", 0).flaps, 0.0);
    }

    void reverseOnlyOnTheGround()
    {
        walk([](const AircraftState &, const AircraftState &s, double) {
            QVERIFY(!s.reverse || s.onGround);
            QVERIFY(s.gearDown || !s.onGround);
        });
    }

    void anyTimeGivesAFlight_data()
    {
        QTest::addColumn<double>("time");
        QTest::newRow("before the start") << -1.0;
        QTest::newRow("many loops") << 1e9;
        QTest::newRow("enormous") << 1e300;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
    }

    void anyTimeGivesAFlight()
    {
        QFETCH(double, time);
        const AircraftState state = m_flight.at(time);
        QVERIFY(std::abs(state.latitude - 40.07) < 0.2);
        QVERIFY(!m_flight.phaseAt(time).isEmpty());
    }

    void isAPureFunctionOfTime()
    {
        QCOMPARE(m_flight.at(321.5), Flight().at(321.5));
        QCOMPARE(m_flight.startOf(QStringLiteral("barrel roll")), -1.0);
    }
};

TARVO_TEST(FlightTest)
#include "FlightTest.moc"

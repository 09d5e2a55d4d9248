#include "e2e/Client.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/PilotPosition.h"
#include "support/TestRegistry.h"

#include <cmath>

using namespace tarvo;
using tarvo::fsd::pdu::FastPilotPosition;
using tarvo::fsd::pdu::FastPilotPositionType;
using tarvo::fsd::pdu::PilotPosition;
using tarvo::practice::AircraftState;
using tarvo::test::Client;
using tarvo::test::Network;
using tarvo::test::Protocol;

namespace {

/// A pilot on the network, his aeroplane at some moment of its flight.
struct Flight
{
    Network network;
    Client client{network, Protocol::Classic};
    bool online = false;

    explicit Flight(const QString &phase)
    {
        practice::XPlaneStandIn &xplane = network.practice.xplane();
        xplane.setFlightTime(std::max(0.0, xplane.flight().startOf(phase) + 1));
        online = network.started && client.signIn() && client.activateXPlane() && client.connectPilot() &&
                 QTest::qWaitFor([this] { return network.heard.contains(test::identification()); });
    }

    AircraftState truth()
    {
        const practice::XPlaneStandIn &xplane = network.practice.xplane();
        return xplane.flight().at(xplane.flightTime());
    }

    /// Stops the flight, and waits until the client has noticed and knows the aeroplane's last state.
    bool hold()
    {
        manager::SimulatorData known;
        const auto watching =
            QObject::connect(client.manager.get(), &manager::NetworkManager::simulatorDataUpdated, client.manager.get(),
                             [&](const manager::SimulatorData &data) { known = data; });
        network.practice.xplane().setPaused(true);
        const AircraftState last = truth();
        const bool held = QTest::qWaitFor([&] {
            return known.simPaused && std::abs(known.aircraft.latitude - last.latitude) < 1e-5 &&
                   std::abs(known.aircraft.bank - last.bank) < 1e-3 &&
                   std::abs(known.aircraft.pitch - last.pitch) < 1e-3;
        });
        QObject::disconnect(watching);
        return held;
    }

    /// What the server hears of one turn of a timer. The pong that is asked for behind it ends the wait.
    QStringList linesOfTick(const char *timer)
    {
        network.heard.clear();
        client.fire(timer);
        network.practice.fsd().ping(QStringLiteral("AB1"));
        if (!QTest::qWaitFor([this] { return !network.linesOf(QStringLiteral("$PO")).isEmpty(); }))
            return {};
        network.heard.removeIf([](const QString &line) { return line.startsWith(QStringLiteral("$PO")); });
        return network.heard;
    }
};

/// The fields of a line whose identifier is `length` characters long.
QStringList fieldsOf(const QString &line, int length)
{
    return line.mid(length).split(u':');
}

bool isNear(double a, double b, double tolerance)
{
    if (std::abs(a - b) <= tolerance)
        return true;
    qWarning("%f is not near %f", a, b);
    return false;
}

} // namespace

class FlightTest : public QObject
{
    Q_OBJECT

private slots:
    void positionsAreThoseOfTheAeroplane_data()
    {
        QTest::addColumn<QString>("phase");
        for (const char *phase : {"parked", "taxi out", "climb", "downwind", "final"})
            QTest::newRow(phase) << QString::fromLatin1(phase);
    }

    void positionsAreThoseOfTheAeroplane()
    {
        QFETCH(QString, phase);
        Flight flight(phase);
        QVERIFY(flight.online && flight.hold());
        const AircraftState truth = flight.truth();
        const QStringList slow = flight.linesOfTick("slowTimer").filter(QRegularExpression(u"^@"_qs));
        QCOMPARE(slow.size(), 1);
        const PilotPosition report = PilotPosition::parse(fieldsOf(slow.first(), 1));
        QCOMPARE(report.From, u"AB1"_qs);
        QVERIFY(isNear(report.latitude, truth.latitude, 1e-5)); // the simulator's floats
        QVERIFY(isNear(report.longitude, truth.longitude, 1e-5));
        QVERIFY(isNear(report.groundSpeed, std::floor(truth.groundSpeed() * 1.94384), 1));
        QVERIFY(isNear(report.heading, truth.heading, 0.5));
        QVERIFY(isNear(report.pitch, truth.pitch, 1.5)); // whole degrees, rounded down twice
        QVERIFY(isNear(report.bank, truth.bank, 1.5));
        QCOMPARE(report.onGround, truth.onGround);
        QCOMPARE(report.squawkingModeC, truth.modeC);
        const bool plausible = report.pressureAltitude > truth.altitudeM * 3.28084 - 1000 &&
                               report.pressureAltitude < truth.altitudeM * 3.28084 + 1000;
        QVERIFY2(plausible, qPrintable(slow.first()));
    }

    void aPausedSimulatorSendsZeroVelocities()
    {
        Flight flight(u"downwind"_qs);
        QVERIFY(flight.online && flight.hold());
        const QStringList lines = flight.linesOfTick("slowTimer");
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.at(0).startsWith(u"^AB1:"_qs)); // although nobody asked for fast reports
        QVERIFY(lines.at(0).endsWith(u":0.0000:0.0000:0.0000:0.0000:0.0000:0.0000:0.00"_qs));
        QVERIFY(lines.at(1).startsWith(u"@"_qs));
    }

    void theServerAsksForFastReports()
    {
        Flight flight(u"downwind"_qs);
        QVERIFY(flight.online);
        QVERIFY(!flight.client.isRunning("fastTimer"));
        QVERIFY(flight.network.practice.fsd().setFast(u"AB1"_qs, true));
        QTRY_VERIFY(flight.client.isRunning("fastTimer"));
        flight.network.heard.clear();
        QTRY_VERIFY(flight.network.linesOf(u"^AB1:"_qs).size() >= 2); // its own turns
        QVERIFY(flight.network.practice.fsd().setFast(u"AB1"_qs, false));
        QTRY_VERIFY(!flight.client.isRunning("fastTimer"));
        QTRY_COMPARE(flight.network.linesOf(u"#STAB1:"_qs).size(), 1);
        QVERIFY(flight.network.heard.last().startsWith(u"#STAB1:"_qs));
    }

    void velocitiesAreThoseOfTheAeroplane_data()
    {
        QTest::addColumn<QString>("timer");
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<FastPilotPositionType>("type");
        QTest::newRow("fast") << u"fastTimer"_qs << u"^"_qs << FastPilotPositionType::Fast;
        QTest::newRow("slow") << u"slowTimer"_qs << u"#SL"_qs << FastPilotPositionType::Slow;
    }

    void velocitiesAreThoseOfTheAeroplane()
    {
        QFETCH(QString, timer);
        QFETCH(QString, prefix);
        QFETCH(FastPilotPositionType, type);
        Flight flight(u"climb"_qs);
        QVERIFY(flight.online);
        const AircraftState truth = flight.truth();
        const QStringList lines = flight.linesOfTick(qPrintable(timer));
        QVERIFY(!lines.isEmpty());
        QVERIFY2(lines.first().startsWith(prefix), qPrintable(lines.first()));
        const FastPilotPosition report = FastPilotPosition::parse(fieldsOf(lines.first(), prefix.size()), type);
        QVERIFY(isNear(report.velocity1, truth.eastVelocity, 2));
        QVERIFY(isNear(report.velocity2, truth.upVelocity, 2));
        QVERIFY(isNear(report.velocity3, truth.northVelocity, 2));
        QVERIFY(std::abs(report.velocity3) > 20); // runway 36: it does fly north
        QVERIFY(isNear(report.latitude, truth.latitude, 0.01));
        QCOMPARE(report.onGround, false);
    }

    void aParkedAeroplaneSendsStoppedReports()
    {
        Flight flight(u"parked"_qs);
        QVERIFY(flight.online);
        const QStringList lines = flight.linesOfTick("fastTimer");
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().startsWith(u"#STAB1:"_qs), qPrintable(lines.first()));
    }

    void aFrozenSimulatorLeavesTheSessionUp()
    {
        Flight flight(u"parked"_qs);
        QVERIFY(flight.online);
        flight.network.practice.xplane().setFrozen(true);
        const QStringList lines = flight.linesOfTick("slowTimer");
        QCOMPARE(lines.filter(QRegularExpression(u"^@"_qs)).size(), 1);
        QCOMPARE(flight.network.practice.fsd().callsigns(), QStringList{u"AB1"_qs});
    }
};

TARVO_TEST(FlightTest)
#include "FlightTest.moc"

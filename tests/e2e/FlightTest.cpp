#include "e2e/Client.h"
#include "e2e/Stage.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/PilotPosition.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

#include <QDateTime>

#include <cmath>

using namespace tarvo;
using tarvo::fsd::pdu::FastPilotPosition;
using tarvo::fsd::pdu::FastPilotPositionType;
using tarvo::fsd::pdu::PilotPosition;
using tarvo::practice::AircraftState;
using tarvo::test::Client;
using tarvo::test::ManualClock;
using tarvo::test::Network;
using tarvo::test::patienceMs;
using tarvo::test::Protocol;
using tarvo::test::Stage;

namespace {

/// A pilot on the network, his aeroplane at one moment of its flight, where it stays: nothing moves its clock but this.
struct Flight
{
    ManualClock clock{QDateTime::currentMSecsSinceEpoch()}; ///< of the simulator and the services
    ManualClock sessionClock;
    Network network{clock};
    Client client{network, Protocol::Classic, sessionClock};
    double moment = 0; ///< seconds
    bool online = false;

    explicit Flight(const QString &phase)
    {
        moment = std::max(0.0, network.practice.xplane().flight().startOf(phase) + 1);
        online = network.started && client.signIn() && listen() && client.activateXPlane([this] { rock(); }) &&
                 client.connectPilot() &&
                 test::waitFor([this] { return network.heard.contains(test::identification()); }) && rest();
    }

    AircraftState truth() { return network.practice.xplane().flight().at(moment); }

    /// Stops the flight, and waits until the client has noticed.
    bool hold()
    {
        network.practice.xplane().setPaused(true);
        return rest();
    }

    /// Waits until the client knows the aeroplane's state at that moment.
    bool rest()
    {
        return QTest::qWaitFor(
            [this] {
                sendAt(moment);
                return m_known.simPaused == network.practice.xplane().isPaused() && isTruth(m_known.aircraft);
            },
            patienceMs);
    }

    /// What the server hears of one turn of a timer. The pong that is asked for behind it ends the wait.
    QStringList linesOfTick(const char *timer)
    {
        network.heard.clear();
        client.fire(timer);
        network.practice.fsd().ping(QStringLiteral("AB1"));
        const auto answered = [this] { return !network.linesOf(QStringLiteral("$PO")).isEmpty(); };
        if (!test::waitFor(answered))
            return {};
        network.heard.removeIf([](const QString &line) { return line.startsWith(QStringLiteral("$PO")); });
        return network.heard;
    }

private:
    bool listen()
    {
        QObject::connect(client.manager.get(), &manager::NetworkManager::simulatorDataUpdated, client.manager.get(),
                         [this](const manager::SimulatorData &data) { m_known = data; });
        return true;
    }

    /// The simulator tells its data as they are at that moment.
    void sendAt(double seconds)
    {
        clock.advance(1000); // until all of it is due again
        network.practice.xplane().setFlightTime(seconds);
        network.practice.xplane().tick();
    }

    /// Moves to and fro, so that the client takes the simulator for alive.
    void rock()
    {
        m_rocked = !m_rocked;
        sendAt(moment + (m_rocked ? 1 : 0));
    }

    bool isTruth(const model::UserAircraftData &known)
    {
        const AircraftState wanted = truth();
        const auto near = [](double a, double b) { return std::abs(a - b) < 1e-3; };
        return std::abs(known.latitude - wanted.latitude) < 1e-5 && near(known.bank, wanted.bank) &&
               near(known.pitch, wanted.pitch) && near(known.longitudeVelocity, wanted.eastVelocity) &&
               near(known.altitudeVelocity, wanted.upVelocity) && near(known.latitudeVelocity, wanted.northVelocity);
    }

    manager::SimulatorData m_known;
    bool m_rocked = false;
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
        TRY_VERIFY(flight.client.isRunning("fastTimer"));
        flight.network.heard.clear();
        TRY_VERIFY(flight.network.linesOf(u"^AB1:"_qs).size() >= 2); // its own turns
        QVERIFY(flight.network.practice.fsd().setFast(u"AB1"_qs, false));
        TRY_VERIFY(!flight.client.isRunning("fastTimer"));
        TRY_COMPARE(flight.network.linesOf(u"#STAB1:"_qs).size(), 1);
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
        QVERIFY(isNear(report.velocity1, truth.eastVelocity, 1e-3)); // four decimals of the simulator's floats
        QVERIFY(isNear(report.velocity2, truth.upVelocity, 1e-3));
        QVERIFY(isNear(report.velocity3, truth.northVelocity, 1e-3));
        QVERIFY(std::abs(report.velocity3) > 20); // runway 36: it does fly north
        QVERIFY(isNear(report.latitude, truth.latitude, 1e-5));
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

    void whatChangesIsToldToAll()
    {
        Stage stage;
        QVERIFY(stage.start());
        QStringList &told = stage.network.toAll;
        QCOMPARE(told, QStringList()); // the first sample says nothing
        const QString landingLights = u"sim/cockpit2/switches/landing_lights_on"_qs;
        for (const bool on : {true, false}) {
            told.clear();
            QVERIFY(stage.turn(landingLights, on ? 1 : 0, [&] { return !told.isEmpty(); }) && stage.settle());
            const QString json = u"{\"config\":{\"lights\":{\"landing_on\":%1}}}"_qs.arg(on ? u"true"_qs : u"false"_qs);
            QCOMPARE(told, QStringList{u"$CQAB1:@94386:ACC:"_qs + json});
        }
        QCOMPARE(stage.takeLines(), QStringList());
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

#include "traffic/Ledger.h"

#include "model/Controller.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"
#include "simulator/xplane/PluginMessages.h"
#include "support/TestRegistry.h"
#include "traffic/Scene.h"

#include <QTest>

using namespace tarvo;
using bench::Ledger;
using bench::Tally;
namespace message = simulator::xplane::message;
namespace scene = bench::scene;

namespace {

constexpr int pilots = 20;
constexpr int highPilot = 1;
constexpr int otherPilot = 2;
constexpr int lowPilot = 9;

model::RemoteAircraft aircraftOf(int pilot, const scene::Report &report)
{
    model::RemoteAircraft aircraft;
    aircraft.callsign = scene::callsignOf(pilot);
    aircraft.airline = u"TST"_qs;
    aircraft.typeCode = u"B738"_qs;
    aircraft.groundSpeed = report.groundSpeed;
    aircraft.visualState = {.latitude = report.latitude,
                            .longitude = report.longitude,
                            .altitudeMslM = report.altitude,
                            .altitudeAglM = report.height,
                            .pitch = report.pitch,
                            .heading = report.heading,
                            .bank = report.bank,
                            .noseWheelAngle = report.noseWheelAngle};
    return aircraft;
}

/// A ledger, what is sent, and what a client would tell its plugin of it.
struct Load
{
    Ledger ledger{pilots, 100};

    void tell(const QByteArray &message) { ledger.receive(message, bench::steadyNs()); }
    int sendFast(int pilot)
    {
        const int number = ledger.nextFast(pilot);
        ledger.noteFast(pilot, number);
        return number;
    }
    int sendSlow(int pilot)
    {
        const int number = ledger.nextSlow(pilot);
        ledger.noteSlow(pilot, number);
        return number;
    }
    void tellFast(int pilot, int number, bool second = false, double latitudeError = 0)
    {
        scene::Report report = scene::fastReport(pilot, number);
        report.latitude += latitudeError;
        if (second)
            report.groundSpeed = scene::slowReport(pilot, 0).groundSpeed;
        const model::RemoteAircraft aircraft = aircraftOf(pilot, report);
        const auto &[vx, vy, vz] = report.velocity;
        const auto &[rx, ry, rz] = report.rotation;
        tell(message::fastPosition(aircraft, aircraft.visualState, {vx, vy, vz}, {rx, ry, rz}));
    }
    void tellFastTwice(int pilot, int number)
    {
        tellFast(pilot, number);
        tellFast(pilot, number, true);
    }
    void tellSlow(int pilot, int number)
    {
        const model::RemoteAircraft aircraft = aircraftOf(pilot, scene::slowReport(pilot, number));
        tell(message::position(aircraft, aircraft.visualState));
    }
    void beat(int pilot) { tell(message::heartbeat(scene::callsignOf(pilot))); }
    void add(int pilot, int placeOf)
    {
        tell(message::add([&] {
            model::RemoteAircraft aircraft = aircraftOf(placeOf, scene::fastReport(placeOf, 0));
            aircraft.callsign = scene::callsignOf(pilot);
            return aircraft;
        }()));
    }
};

struct Play
{
    const char *name;
    bool measuring;
    void (*play)(Load &load);
};

constexpr Play wrongs[] = {
    {"a heartbeat that is not due", true, [](Load &load) { load.beat(highPilot); }},
    {"a second heartbeat", true,
     [](Load &load) {
         load.tellSlow(highPilot, load.sendSlow(highPilot));
         load.beat(highPilot);
         load.beat(highPilot);
     }},
    {"somebody else's heartbeat", true,
     [](Load &load) {
         load.tellSlow(highPilot, load.sendSlow(highPilot));
         load.beat(otherPilot);
         load.beat(highPilot);
     }},
    {"an addition", true, [](Load &load) { load.add(highPilot, highPilot); }},
    {"a configuration", true,
     [](Load &load) { load.tell(message::configuration(aircraftOf(highPilot, scene::fastReport(highPilot, 0)))); }},
    {"a removal", false, [](Load &load) { load.tell(message::remove(scene::callsignOf(highPilot), u"Stale"_qs)); }},
    {"the removal of all", false, [](Load &load) { load.tell(message::removeAll()); }},
    {"the end of the connection", true, [](Load &load) { load.tell(message::networkDisconnected()); }},
    {"another connection", true, [](Load &load) { load.tell(message::networkConnected(u"AB1"_qs, {}, false)); }},
    {"a notification", true, [](Load &load) { load.tell(message::notification(u"x"_qs, 0)); }},
    {"an unknown name", false, [](Load &load) { load.tell(QByteArrayLiteral("\x92\xa3NEW\x90")); }},
    {"nothing", false, [](Load &load) { load.tell({}); }},
    {"an addition in another's place", false, [](Load &load) { load.add(highPilot, otherPilot); }},
    {"an addition of nobody", false, [](Load &load) { load.add(pilots, pilots); }},
    {"a pilot's slow report after a later fast one", true,
     [](Load &load) {
         const int slow = load.sendSlow(highPilot);
         load.tellFastTwice(highPilot, load.sendFast(highPilot));
         load.tellSlow(highPilot, slow);
         load.beat(highPilot);
     }},
    {"two pilots in the wrong order", true,
     [](Load &load) {
         const int first = load.sendFast(highPilot);
         load.tellFastTwice(otherPilot, load.sendFast(otherPilot));
         load.tellFastTwice(highPilot, first);
     }},
    {"the second copy after another line", true,
     [](Load &load) {
         const int first = load.sendFast(highPilot);
         const int second = load.sendFast(otherPilot);
         load.tellFast(highPilot, first);
         load.tellFastTwice(otherPilot, second);
         load.tellFast(highPilot, first, true);
     }},
    {"a third copy", true,
     [](Load &load) {
         const int number = load.sendFast(highPilot);
         load.tellFastTwice(highPilot, number);
         load.tellFast(highPilot, number, true);
     }},
    {"a latitude that is a little off", true,
     [](Load &load) {
         const int number = load.sendFast(highPilot);
         load.tellFast(highPilot, number, false, 1e-8);
         load.tellFast(highPilot, number, true);
     }},
};

} // namespace

/// The load test's ledger must notice what it is there to notice.
class LedgerTest : public QObject
{
    Q_OBJECT

private slots:
    void whatMustCome()
    {
        Load load;
        load.tell(message::networkConnected(u"AB1"_qs, {}, false));
        load.add(highPilot, highPilot);
        load.beat(highPilot); // of an aircraft that only one of the two ways knows by now
        load.ledger.begin();
        load.tellFastTwice(highPilot, load.sendFast(highPilot));
        load.tell(message::controllers({}));
        load.tell(message::stationCallsign(1, {}));
        load.tellSlow(lowPilot, load.sendSlow(lowPilot));
        load.beat(lowPilot);
        load.tellFastTwice(lowPilot, load.sendFast(lowPilot));
        load.ledger.end();
        const Tally tally = load.ledger.tally();
        QVERIFY2(tally.wrong == 0, qPrintable(tally.firstWrong));
        QCOMPARE(tally.missing, 0U);
        QCOMPARE(tally.messages, 6U);
        QCOMPARE(load.ledger.measuredLines(), 3U);
    }

    void whatIsWrong_data()
    {
        QTest::addColumn<int>("index");
        for (const Play &row : wrongs)
            QTest::newRow(row.name) << static_cast<int>(&row - wrongs);
    }
    void whatIsWrong()
    {
        QFETCH(int, index);
        Load load;
        if (wrongs[index].measuring)
            load.ledger.begin();
        wrongs[index].play(load);
        load.ledger.end();
        QVERIFY(load.ledger.tally().wrong > 0);
    }

    void whatIsMissing()
    {
        Load load;
        load.ledger.begin();
        load.tellFast(highPilot, load.sendFast(highPilot));
        load.tellSlow(otherPilot, load.sendSlow(otherPilot));
        load.sendFast(otherPilot);
        load.ledger.end();
        QCOMPARE(load.ledger.tally().missing, 4U);
    }

    /// Near the own aircraft the altimeter's error counts.
    void drawnAltitudes()
    {
        QCOMPARE(scene::slowReport(lowPilot, 0).altitude, (2000 - scene::temperatureErrorFeet) / 3.28084);
        QCOMPARE(scene::slowReport(highPilot, 0).altitude, 30000 / 3.28084);
    }
};

TARVO_TEST(LedgerTest)
#include "LedgerTest.moc"

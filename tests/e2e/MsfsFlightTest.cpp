#include "e2e/MsfsStage.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/PilotPosition.h"
#include "support/TestRegistry.h"

#include <QRegularExpression>

#include <cmath>

using namespace tarvo;
using namespace tarvo::test;

namespace {

/// The place and the attitude of a report, as the wire has them.
struct Reported
{
    double latitude = 0;
    double longitude = 0;
    QString attitude; ///< pitch, bank, heading and the ground in one number
};

/// `place`: of the latitude among the fields; `attitude`: of the packed number.
Reported reportedIn(const QString &line, int place, int attitude)
{
    const QStringList fields = line.split(u':');
    return {fields.value(place).toDouble(), fields.value(place + 1).toDouble(), fields.value(attitude)};
}

bool isSame(const Reported &one, const Reported &other)
{
    return std::abs(one.latitude - other.latitude) < 1e-5 && std::abs(one.longitude - other.longitude) < 1e-5 &&
           one.attitude == other.attitude;
}

/// A slow report says first whether the transponder tells the altitude.
QString slowReport(MsfsStage &stage)
{
    return stage.linesOfTick("slowTimer").filter(QRegularExpression(u"^@[SN]:AB1:"_qs)).value(0);
}

/// X-Plane in the place of MSFS, at that moment of the same flight.
bool flyXPlane(MsfsStage &stage, double moment)
{
    practice::XPlaneStandIn &xplane = stage.network.practice.xplane();
    bool away = false;
    const auto send = [&](double seconds) {
        stage.simulatorClock.advance(1000); // all of it is due again
        xplane.setFlightTime(seconds);
        xplane.tick();
    };
    const auto rock = [&] {
        away = !away;
        send(away ? moment + 1 : moment);
    };
    const double latitude = xplane.flight().at(moment).latitude;
    return stage.client.activateXPlane(rock) && waitFor([&] {
               send(moment);
               return std::abs(stage.known().aircraft.latitude - latitude) < 1e-5; // its floats
           });
}

} // namespace

/// The own aircraft in Microsoft Flight Simulator, from a frame to the line at the server.
class MsfsFlightTest : public QObject
{
    Q_OBJECT

private slots:
    void theWireHasTheSameFlightAsInXPlane_data()
    {
        QTest::addColumn<QString>("phase");
        for (const char *phase : {"parked", "climb", "downwind", "final"})
            QTest::newRow(phase) << QString::fromLatin1(phase);
    }

    void theWireHasTheSameFlightAsInXPlane()
    {
        QFETCH(QString, phase);
        MsfsStage stage;
        const double moment = stage.simulator.flight().startOf(phase) + 1;
        QVERIFY(stage.open(moment) && stage.goOnline());
        const QString slow = slowReport(stage);
        const QString fast = stage.linesOfTick("fastTimer").filter(u"^AB1:"_qs).value(0);
        QVERIFY(flyXPlane(stage, moment));
        const QString xplaneSlow = slowReport(stage);
        const QString xplaneFast = stage.linesOfTick("fastTimer").filter(u"^AB1:"_qs).value(0);

        QVERIFY(!slow.isEmpty());
        QCOMPARE(slow.section(u':', 0, 2), xplaneSlow.section(u':', 0, 2)); // the transponder
        QCOMPARE(slow.section(u':', 7, 7), xplaneSlow.section(u':', 7, 7)); // knots
        QVERIFY(isSame(reportedIn(slow, 4, 8), reportedIn(xplaneSlow, 4, 8)));
        QCOMPARE(fast.isEmpty(), phase == u"parked"_qs); // whoever stands sends none
        QVERIFY(fast.isEmpty() || isSame(reportedIn(fast, 1, 5), reportedIn(xplaneFast, 1, 5)));
    }

    void theLoginNamesTheSimulator_data()
    {
        QTest::addColumn<bool>("is2024");
        QTest::addColumn<QString>("number");
        QTest::newRow("2020") << false << u"1"_qs;
        QTest::newRow("2024") << true << u"2"_qs;
    }

    void theLoginNamesTheSimulator()
    {
        QFETCH(bool, is2024);
        QFETCH(QString, number);
        MsfsStage stage;
        if (is2024)
            stage.simulator.setApplication(practice::message::msfs2024());
        QVERIFY(stage.open() && stage.goOnline());
        QCOMPARE(stage.network.linesOf(u"#AP"_qs).value(0).section(u':', 6, 6), number);
    }

    void switchesAreToldToAll()
    {
        MsfsStage stage;
        QVERIFY(stage.open() && stage.goOnline());
        QStringList &told = stage.network.toAll;
        for (const bool on : {true, false}) {
            told.clear();
            QVERIFY(stage.simulator.setValue("LIGHT LANDING", "bool", on ? 1 : 0));
            stage.frame();
            TRY_COMPARE(told.size(), 1);
            QCOMPARE(told.first(), u"$CQAB1:@94386:ACC:{\"config\":{\"lights\":{\"landing_on\":%1}}}"_qs.arg(
                                       on ? u"true"_qs : u"false"_qs));
        }
    }

    void radiosAreWrittenAndReadBack()
    {
        MsfsStage stage;
        QVERIFY(stage.open() && stage.goOnline());
        const std::shared_ptr<simulator::Simulator> simulator = stage.manager().simulator();
        simulator->setCom1Frequency(121'800);
        simulator->setCom2Frequency(124'550);
        simulator->setTransponderCode(7000);
        QVERIFY(stage.radio.com1Frequency != 121'800); // what is shown is what the simulator says
        TRY_COMPARE((stage.frame(), stage.radio.com1Frequency), 121'800U);
        QCOMPARE(stage.radio.com2Frequency, 124'550U);
        const QString line = stage.linesOfTick("slowTimer").filter(u":AB1:"_qs).last();
        QCOMPARE(line.section(u':', 2, 2), u"7000"_qs);

        simulator->transponderIdent();
        stage.pump();
        QVERIFY(stage.simulator.isIdenting());
        const bool modeC = stage.radio.squawkingModeC;
        simulator->transponderModeToggle();
        TRY_COMPARE((stage.frame(), stage.radio.squawkingModeC), !modeC);
    }

    void aSimulatorThatIsNotThereIsTold()
    {
        MsfsStage stage;
        stage.simulator.wire().setLibraryNames({});
        QVERIFY(stage.signIn());
        TRY_COMPARE(stage.failures, QStringList{u"模拟器未启动或连接服务异常，请联系TARVO技术部"_qs});
        QVERIFY(!stage.connections.contains(true));
        QVERIFY(!stage.manager().connectToNetwork(u"AB1"_qs, u"B738"_qs, {}, false)); // nothing to fly

        stage.simulator.wire().setLibraryNames({u"SimConnect.dll"_qs});
        stage.manager().reconnectSimulator(); // the pilot's own retry
        TRY_VERIFY((stage.frame(), stage.known().simConnected));
        QVERIFY(stage.connections.last());
    }

    void aLostLinkComesBackWhenThePilotAsks()
    {
        MsfsStage stage;
        QVERIFY(stage.open() && stage.goOnline());
        stage.connections.clear();
        stage.simulator.quit();
        stage.pump();
        TRY_VERIFY(stage.connections.contains(false));
        QVERIFY(!stage.connections.contains(true));
        QCOMPARE(stage.failures.size(), 1);
        QCOMPARE(stage.client.events.last(), u"connected AB1"_qs); // the session outlives it

        stage.simulator.start();
        stage.manager().reconnectSimulator();
        TRY_VERIFY((stage.frame(), stage.connections.contains(true)));
        QVERIFY(stage.flyTo(stage.simulator.flight().startOf(u"climb"_qs) + 1));
    }

    void anotherModeAndBack()
    {
        MsfsStage stage;
        QVERIFY(stage.open() && stage.goOnline());
        QVERIFY(flyXPlane(stage, MsfsStage::standing));
        TRY_VERIFY(!stage.simulator.wire().isOpen());
        stage.activate();
        TRY_VERIFY(stage.simulator.wire().isOpen());
        QVERIFY(stage.flyTo(stage.simulator.flight().startOf(u"climb"_qs) + 1));
        QCOMPARE(stage.client.events, QStringList{u"connected AB1"_qs});
    }
};

TARVO_TEST(MsfsFlightTest)
#include "MsfsFlightTest.moc"

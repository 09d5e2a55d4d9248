#include "FlyingStage.h"

#include "model/VelocityVector.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;
using tarvo::model::AircraftVisualState;
using tarvo::model::RemoteAircraft;
using tarvo::model::VelocityVector;
using tarvo::test::csn1;
using tarvo::test::FlyingStage;
using tarvo::test::MsfsStage;
using tarvo::test::staleAssignment;
using Answering = tarvo::practice::CreateAnswering;
namespace message = tarvo::practice::message;

namespace {

constexpr auto sim2020 = MsfsRuntimeProfile::Msfs2020;
constexpr auto sim2024 = MsfsRuntimeProfile::Msfs2024;

RemoteAircraft configured(RemoteAircraft aircraft)
{
    aircraft.hasConfiguration = true;
    aircraft.configuration.gearDown = true;
    aircraft.configuration.flapsPct = 35;
    aircraft.configuration.lights.present = true;
    aircraft.configuration.lights.navOn = true;
    return aircraft;
}

} // namespace

class MsfsTrafficTest : public QObject
{
    Q_OBJECT

private slots:
    // --- which model ---

    void anotherLiveryOfAnotherModel()
    {
        FlyingStage stage;
        const quint32 red = stage.addOne();
        stage.adapter->updateAircraftConfiguration(MsfsStage::remote("CSN1", "A320", "BLUE"));
        QCOMPARE(stage.calls("AIRemoveObject"), QStringList{QStringLiteral("AIRemoveObject %1 2").arg(red)});
        TRY_COMPARE(stage.added, QStringList{csn1});
        QCOMPARE(stage.simulator.aircraft().size(), 1);
        QCOMPARE(stage.simulator.aircraft("CSN1").title, "A320 Blue");
        QCOMPARE(stage.simulator.aircraft("CSN1").request, 3U);
        QCOMPARE(stage.removed, QStringList()); // he is still there
    }

    void anotherLiveryOfTheSameModel()
    {
        FlyingStage stage;
        stage.addOne();
        const qsizetype lines = stage.log.texts().size();
        stage.adapter->updateAircraftConfiguration(MsfsStage::remote("CSN1", "A320", "RED AND WHITE"));
        stage.adapter->addAircraft(MsfsStage::remote("CSN1", "A320", "red"));
        QCOMPARE(stage.wire().calls(), QStringList());
        QCOMPARE(stage.log.texts().size(), lines);
    }

    void anotherModelWhileOneIsComing()
    {
        FlyingStage stage(Answering::Mode::Never);
        stage.adapter->addAircraft(MsfsStage::remote("CSN1", "A320", "RED"));
        stage.adapter->addAircraft(MsfsStage::remote("CSN1", "A320", "BLUE"));
        QCOMPARE(stage.calls("AICreate").size(), 2);
        QVERIFY(stage.simulator.assignPending());
        QVERIFY(stage.simulator.assignPending());
        TRY_COMPARE(stage.added, QStringList{csn1});
        QCOMPARE(stage.log.startingWith(staleAssignment).size(), 1);
        QCOMPARE(stage.simulator.aircraft().size(), 1);
        QCOMPARE(stage.simulator.aircraft("CSN1").title, "A320 Blue");
    }

    void noModelIsHere()
    {
        FlyingStage stage;
        RemoteAircraft aircraft = MsfsStage::remote("N123AB", "C172", "WHITE");
        aircraft.airline = QStringLiteral(" abc ");
        stage.adapter->addAircraft(aircraft);
        QCOMPARE(stage.statuses, QStringList{QStringLiteral("MSFS 无本地模型匹配：C172/ABC/WHITE")});
        const QStringList warnings{QStringLiteral("No local MSFS model match found for N123AB [C172/ABC/WHITE]"),
                                   QStringLiteral("Skipping remote spawn for N123AB due to missing model match")};
        QCOMPARE(stage.log.texts(QtWarningMsg), warnings);
        QVERIFY(stage.log.contains(QStringLiteral("strategy=type_airline_livery_fallback container=<none>")));
        stage.adapter->positionUpdate(aircraft, aircraft.visualState);
        stage.adapter->updateAircraftConfiguration(configured(aircraft));
        QCOMPARE(stage.wire().calls(), QStringList());
        QCOMPARE(stage.log.texts(QtWarningMsg), warnings);
        stage.wire().queue(tarvo::practice::message::assignedObject(0, 7)); // no request of his
        TRY_COMPARE(stage.calls("AIRemoveObject").size(), 1);
        QCOMPARE(stage.added, QStringList());
        aircraft.typeCode = QStringLiteral("A320"); // he is known, and gets one later
        stage.adapter->updateAircraftConfiguration(aircraft);
        QCOMPARE(stage.calls("AICreate").size(), 1);
    }

    void aModelThatGoes()
    {
        FlyingStage stage;
        const quint32 object = stage.addOne();
        stage.adapter->updateAircraftConfiguration(MsfsStage::remote("CSN1", "C172"));
        QCOMPARE(stage.wire().calls(), QStringList{QStringLiteral("AIRemoveObject %1 2").arg(object)});
    }

    void thePeersOwnModel_data()
    {
        QTest::addColumn<QString>("hint");
        QTest::addColumn<QString>("title");
        QTest::addColumn<bool>("taken");
        QTest::newRow("installed") << "A320 Blue"
                                   << "A320 Blue" << true;
        QTest::newRow("written otherwise") << "a320-blue"
                                           << "A320 Blue" << true;
        QTest::newRow("not installed") << "A320 Green"
                                       << "A320 Red" << false;
        QTest::newRow("of another type") << "C172 White"
                                         << "A320 Red" << false;
    }

    void thePeersOwnModel()
    {
        QFETCH(QString, hint);
        QFETCH(QString, title);
        QFETCH(bool, taken);
        MsfsStage stage;
        stage.addModel(sim2020, "A320 Red", "A320", "RED");
        stage.addModel(sim2020, "A320 Blue", "A320", "BLUE");
        stage.addModel(sim2020, "C172 White", "C172", "WHITE");
        stage.scanLibrary();
        stage.connectSimulator();
        RemoteAircraft aircraft = MsfsStage::remote("CSN1", "A320", "RED");
        aircraft.remoteModelHint = hint;
        stage.adapter->addAircraft(aircraft);
        QVERIFY(stage.calls("AICreate").first().contains(title));
        QCOMPARE(stage.log.contains(QStringLiteral("Using peer model hint for CSN1: ") + title), taken);
        QCOMPARE(stage.log.contains(QStringLiteral("strategy=peer_hint")), taken);
        const QString refused = QStringLiteral("Peer model hint unavailable or type-mismatched for CSN1: %1, falling "
                                               "back to type/airline matching");
        QCOMPARE(stage.log.contains(refused.arg(hint)), !taken);
    }

    void theCallsignsAirlineComesFirst_data()
    {
        QTest::addColumn<QString>("callsign");
        QTest::addColumn<QString>("title");
        QTest::newRow("of the callsign") << "CSN1234"
                                         << "A320 CSN";
        QTest::newRow("what he tells") << "N123AB"
                                       << "A320 CCA";
    }

    void theCallsignsAirlineComesFirst()
    {
        QFETCH(QString, callsign);
        QFETCH(QString, title);
        MsfsStage stage;
        stage.addModel(sim2020, "A320 CCA", "A320", "CCA");
        stage.addModel(sim2020, "A320 CSN", "A320", "CSN");
        stage.scanLibrary();
        stage.connectSimulator();
        RemoteAircraft aircraft = MsfsStage::remote("", "A320");
        aircraft.callsign = callsign;
        aircraft.airline = QStringLiteral("cca");
        stage.adapter->addAircraft(aircraft);
        QVERIFY(stage.calls("AICreate").first().contains(title));
    }

    // --- the library comes late ---

    void theLibraryComesLate()
    {
        MsfsStage stage;
        stage.addModel(sim2020, "A320 Red", "A320", "RED");
        stage.connectSimulator();
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.adapter->updateAircraftConfiguration(MsfsStage::remote("CSN1"));
        QCOMPARE(stage.calls("AICreate"), QStringList());
        QCOMPARE(stage.statuses, QStringList{QStringLiteral("MSFS 机库扫描中...")});
        TRY_COMPARE(stage.added, QStringList{csn1});
        QVERIFY(stage.statuses.contains(QStringLiteral("MSFS 机库已扫描：1 个模型")));
        QCOMPARE(stage.statuses.last(), QStringLiteral("MSFS 映射 CSN1 -> A320 Red"));
    }

    void whoLeavesMeanwhileIsNotCreated()
    {
        MsfsStage stage;
        stage.addModel(sim2020, "A320 Red", "A320", "RED");
        stage.connectSimulator();
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.adapter->addAircraft(MsfsStage::remote("CSN2"));
        stage.adapter->removeAircraft(MsfsStage::remote("CSN1"), {});
        TRY_COMPARE(stage.added, QStringList{QStringLiteral("CSN2")});
        QCOMPARE(stage.simulator.aircraft().size(), 1);
    }

    void aReloadLooksAtTheLibrary()
    {
        MsfsStage stage;
        stage.config.set(tarvo::config::msfsLibraryReloadToken, 7);
        QCOMPARE(stage.statuses, QStringList{QStringLiteral("MSFS 机库扫描中...")});
        stage.config.set(tarvo::config::msfsLibraryReloadToken, 8); // it looks already
        QCOMPARE(stage.statuses.size(), 1);
        stage.scanLibrary();
        TRY_COMPARE(stage.statuses.last(), QStringLiteral("MSFS 机库已扫描：0 个模型"));
        stage.statuses.clear();
        stage.config.set(tarvo::config::msfsLibraryReloadToken, 9);
        QCOMPARE(stage.statuses, QStringList()); // nothing scans anew
        stage.config.set(tarvo::config::msfsCommunityPath2020, QStringLiteral("/"));
        QCOMPARE(stage.statuses, QStringList());
    }

    // --- the simulator turns out to be another one ---

    void correctedByTheOpenMessage()
    {
        MsfsStage stage;
        stage.addModel(sim2020, "Old A320", "A320", "");
        stage.addModel(sim2024, "New A320", "A320", "Red Livery");
        stage.scanLibrary();
        stage.simulator.setApplication(message::msfs2024());
        stage.adapter->addAircraft(MsfsStage::remote("CSN1", "A320", "BLUE"));
        QCOMPARE(stage.wire().calls(), QStringList());
        stage.connectSimulator();
        TRY_VERIFY(!stage.added.isEmpty());
        TRY_COMPARE(stage.simulator.aircraft().size(), 1);
        const auto aircraft = stage.simulator.aircraft("CSN1");
        QCOMPARE(aircraft.title, "New A320");
        QCOMPARE(aircraft.livery, "Red Livery"); // the model's own
    }

    void theLiveryOfAModelWithoutOne_data()
    {
        QTest::addColumn<QByteArray>("own");
        QTest::newRow("none") << QByteArray();
        QTest::newRow("a wide blank") << QByteArray("\xe3\x80\x80");
    }

    void theLiveryOfAModelWithoutOne()
    {
        QFETCH(QByteArray, own);
        MsfsStage stage;
        stage.addModel(sim2024, "New A320", "A320", own);
        stage.scanLibrary();
        stage.simulator.setApplication(message::msfs2024());
        stage.connectSimulator();
        stage.adapter->addAircraft(MsfsStage::remote("CSN1", "A320", "BLUE"));
        TRY_COMPARE(stage.added, QStringList{csn1});
        QCOMPARE(stage.simulator.aircraft("CSN1").livery, "BLUE");
    }

    void in2024NoVisualIsEverWritten()
    {
        MsfsStage stage;
        stage.addModel(sim2024, "New A320", "A320", "");
        stage.scanLibrary();
        stage.simulator.setApplication(message::msfs2024());
        stage.connectSimulator();
        RemoteAircraft aircraft = configured(MsfsStage::remote("CSN1"));
        aircraft.configuration.onGround = true;
        stage.adapter->addAircraft(aircraft);
        TRY_COMPARE(stage.added, QStringList{csn1});
        stage.wire().takeCalls();
        stage.adapter->updateAircraftConfiguration(aircraft);
        QCOMPARE(stage.calls("SetDataOnSimObject").size(), 1);
        QCOMPARE(stage.waypoints(stage.simulator.aircraft("CSN1").id).size(), 1); // the position alone
    }

    // --- the link ---

    void whoWasThereBeforeTheLink()
    {
        MsfsStage stage;
        stage.addModel(sim2020, "A320 Red", "A320", "RED");
        stage.scanLibrary();
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.adapter->positionUpdate(MsfsStage::remote("CSN1"), {.latitude = 41});
        QCOMPARE(stage.wire().calls(), QStringList());
        stage.connectSimulator();
        TRY_COMPARE(stage.added, QStringList{csn1});
        QCOMPARE(stage.simulator.aircraft("CSN1").start.Latitude, 41.0);
    }

    void afterAReconnectAllAreMadeAnew()
    {
        FlyingStage stage;
        const quint32 before = stage.addOne();
        stage.simulator.quit();
        TRY_VERIFY(!stage.wire().isOpen());
        stage.wire().takeCalls();
        stage.adapter->positionUpdate(MsfsStage::remote("CSN1"), {.latitude = 42});
        stage.adapter->updateAircraftConfiguration(configured(MsfsStage::remote("CSN1", "A320", "RED")));
        QCOMPARE(stage.wire().calls(), QStringList());
        QVERIFY(!stage.log.contains(QStringLiteral("Cannot update remote aircraft position")));
        QCOMPARE(stage.removed, QStringList());
        stage.simulator.start();
        stage.links.clear();
        stage.connectSimulator();
        TRY_COMPARE(stage.added, QStringList{csn1});
        QCOMPARE(stage.simulator.aircraft().size(), 1);
        const auto after = stage.simulator.aircraft("CSN1");
        QVERIFY(after.id != before);
        QVERIFY(!stage.log.contains(staleAssignment));
    }

    void onePendingAtTheEndIsMadeAnew()
    {
        FlyingStage stage(Answering::Mode::Never);
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.adapter->reconnectSimulator();
        stage.simulator.setCreateAnswering({.mode = Answering::Mode::AtOnce});
        QCoreApplication::processEvents();
        stage.simulator.frame();
        TRY_COMPARE(stage.added, QStringList{csn1});
    }

    /// Another simulator is picked.
    void theEndTakesAllAway()
    {
        FlyingStage stage;
        const quint32 object = stage.addOne();
        stage.adapter.reset();
        const QStringList calls{QStringLiteral("AIRemoveObject %1 2").arg(object), QStringLiteral("Close")};
        QCOMPARE(stage.calls("(AI|Close)"), calls);
        QCOMPARE(stage.removed, QStringList());
    }

    // --- removal ---

    void removes()
    {
        FlyingStage stage;
        const quint32 object = stage.addOne();
        stage.adapter->removeAircraft(MsfsStage::remote("CSN1"), {});
        QCOMPARE(stage.wire().calls(), QStringList{QStringLiteral("AIRemoveObject %1 2").arg(object)});
        QCOMPARE(stage.removed, QStringList{csn1});
        QVERIFY(!stage.log.contains(QStringLiteral("Removing MSFS remote aircraft")));
        stage.adapter->removeAircraft(MsfsStage::remote("CSN1"), {}); // unknown by now
        QCOMPARE(stage.removed.size(), 2);
        stage.adapter->positionUpdate(MsfsStage::remote("CSN1"), {}); // late
        QCOMPARE(stage.wire().calls().size(), 1);
    }

    void removesAll()
    {
        FlyingStage stage(Answering::Mode::AtOnce);
        stage.addOne();
        stage.addOne(MsfsStage::remote("CSN2"));
        stage.simulator.setCreateAnswering({.mode = Answering::Mode::Never});
        stage.adapter->addAircraft(MsfsStage::remote("CSN3"));
        stage.wire().takeCalls();
        stage.adapter->removeAllAircraft();
        QCOMPARE(stage.calls("AIRemoveObject").size(), 2);
        QCOMPARE(stage.removed, QStringList());
        QVERIFY(stage.simulator.assignPending());
        TRY_COMPARE(stage.simulator.aircraft().size(), 0);
    }

    // --- where and how ---

    void writesPositions()
    {
        FlyingStage stage;
        const quint32 object = stage.addOne();
        const AircraftVisualState state{.latitude = 40.5,
                                        .longitude = 116.5,
                                        .altitudeMslM = 2000,
                                        .altitudeAglM = 5,
                                        .pitch = 1,
                                        .heading = 180,
                                        .bank = 0,
                                        .noseWheelAngle = 0};
        RemoteAircraft aircraft = MsfsStage::remote("CSN1", "A320", "RED");
        aircraft.groundSpeed = 120;
        stage.adapter->positionUpdate(aircraft, state);
        aircraft.hasConfiguration = true;
        aircraft.configuration.onGround = true;
        aircraft.visualState = state;
        stage.adapter->updateAircraftConfiguration(aircraft); // and where he is
        stage.adapter->fastPositionUpdate(aircraft, state, VelocityVector{10, 0, 0}, VelocityVector{});
        aircraft.groundSpeed = 85;
        stage.adapter->positionUpdate(aircraft, state);
        auto written = stage.waypoints(object);
        QCOMPARE(written.size(), 4);
        QCOMPARE(written.takeAt(1).Flags, 4U); // at 120 knots
        QCOMPARE(written[0].Latitude, 40.5);
        QCOMPARE(written[0].Longitude, 116.5);
        QCOMPARE(written[0].Altitude, 6561.68); // feet
        QCOMPARE(written[0].ktsSpeed, 120.0);
        QCOMPARE(written[0].Flags, 4U);
        QCOMPARE(written[1].ktsSpeed, 19.43844);
        QCOMPARE(written[1].Flags, 6U); // and on the ground
        QCOMPARE(written[2].Flags, 4U); // too fast for it
        QCOMPARE(stage.calls("SetDataOnSimObject").size(), 4);
    }

    /// Both managers tell positions, and one of them may not have heard of the type yet.
    void aPositionDoesNotTellWhoHeIs()
    {
        FlyingStage stage;
        const quint32 object = stage.addOne();
        stage.adapter->positionUpdate(MsfsStage::remote("CSN1", ""), {.latitude = 41});
        stage.adapter->fastPositionUpdate(MsfsStage::remote("CSN1", ""), {.latitude = 42}, {}, {});
        QCOMPARE(stage.waypoints(object).size(), 2);
        stage.wire().takeCalls();
        stage.adapter->addAircraft(MsfsStage::remote("CSN1", "A320", "RED"));
        QCOMPARE(stage.wire().calls(), QStringList());
    }

    /// Or whoever flies would be put on the ground by a message about his lights.
    void aPartOfAConfigurationLeavesTheRest()
    {
        FlyingStage stage;
        RemoteAircraft aircraft = MsfsStage::remote("CSN1", "A320", "RED");
        aircraft.hasConfiguration = true;
        aircraft.configuration.onGround = false;
        const quint32 object = stage.addOne(aircraft);
        aircraft.configuration = {};
        aircraft.configuration.gearDown = true;
        stage.adapter->updateAircraftConfiguration(aircraft);
        aircraft.hasConfiguration = false;
        stage.adapter->addAircraft(aircraft);
        stage.wire().takeCalls();
        stage.adapter->positionUpdate(aircraft, {}); // told without a height above ground
        QCOMPARE(stage.waypoints(object).size(), 1);
        QCOMPARE(stage.waypoints(object)[0].Flags, 4U);
        aircraft.hasConfiguration = true;
        aircraft.configuration = {};
        aircraft.configuration.isFullData = true; // tells all that there is
        stage.adapter->updateAircraftConfiguration(aircraft);
        stage.adapter->positionUpdate(aircraft, {});
        QCOMPARE(stage.waypoints(object).last().Flags, 6U);
    }

    void keepsTheSpeedThroughAConfiguration()
    {
        FlyingStage stage;
        const quint32 object = stage.addOne();
        RemoteAircraft aircraft = MsfsStage::remote("CSN1", "A320", "RED");
        stage.adapter->fastPositionUpdate(aircraft, aircraft.visualState, {10, 0, 0}, {});
        stage.wire().takeCalls();
        aircraft.hasConfiguration = true;
        aircraft.configuration.onGround = false;
        stage.adapter->updateAircraftConfiguration(aircraft);
        const auto written = stage.waypoints(object);
        QCOMPARE(written.size(), 1);
        QCOMPARE(written[0].ktsSpeed, 19.43844);
    }

    void appliesVisuals()
    {
        FlyingStage stage;
        const RemoteAircraft aircraft = configured(MsfsStage::remote("CSN1", "A320", "RED"));
        const quint32 object = stage.addOne(aircraft); // with its creation
        QCOMPARE(stage.simulator.written(object, "GEAR HANDLE POSITION", "bool"), 1.0);
        QCOMPARE(stage.simulator.written(object, "FLAPS HANDLE PERCENT", "percent"), 35.0);
        QCOMPARE(stage.simulator.written(object, "LIGHT NAV", "bool"), 1.0);
        QCOMPARE(stage.simulator.written(object, "LIGHT BEACON", "bool"), -1.0); // not told
        RemoteAircraft changed = aircraft;
        changed.configuration = {};
        changed.configuration.spoilersOut = true;
        stage.adapter->updateAircraftConfiguration(changed);
        QCOMPARE(stage.simulator.written(object, "SPOILERS HANDLE POSITION", "percent over 100"), 1.0);
        QCOMPARE(stage.waypoints(object).size(), 0); // nothing is known of the ground
    }
};

TARVO_TEST(MsfsTrafficTest)
#include "MsfsTrafficTest.moc"

#include "FlyingStage.h"

#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;
using tarvo::model::RemoteAircraft;
using tarvo::test::csn1;
using tarvo::test::FlyingStage;
using tarvo::test::MsfsStage;
using tarvo::test::staleAssignment;
using Answering = tarvo::practice::CreateAnswering;

/// Objects that are asked for, and come at once, late, never or for nobody.
class MsfsTrafficCreationTest : public QObject
{
    Q_OBJECT

private slots:
    void createsTheBestModel()
    {
        FlyingStage stage;
        const RemoteAircraft aircraft = MsfsStage::remote("CSN1", "A320", "BLUE");
        stage.adapter->addAircraft(aircraft);
        QCOMPARE(stage.calls("AICreate"),
                 QStringList{
                     QStringLiteral("AICreateNonATCAircraft \"A320 Blue\" \"CSN1\" {40 116 3280.84 2 -3 90 0 250} 1")});
        QCOMPARE(stage.statuses, QStringList{QStringLiteral("MSFS 映射 CSN1 -> A320 Blue")});
        QVERIFY(stage.log.contains(
            QStringLiteral("MSFS match decision: callsign=CSN1 type=A320 airline=<none> callsignAirlineHint=CSN "
                           "livery=BLUE peerHint=<none> strategy=type_airline_livery container=A320 Blue")));
        QVERIFY(stage.log.contains(QStringLiteral(
            "MSFS model match CSN1 [A320/CSN/BLUE hint=CSN] -> A320 Blue (MSFS 2020, score=2250, fallback=no)")));
        QCOMPARE(stage.added, QStringList());
        TRY_COMPARE(stage.added, QStringList{csn1});
        const quint32 object = stage.simulator.aircraft("CSN1").id;
        QVERIFY(object != 0);
        QVERIFY(stage.log.contains(QStringLiteral("MSFS remote aircraft created: CSN1 req=1 object=%1").arg(object)));
        QCOMPARE(stage.waypoints(object).size(), 1); // where he is by now
    }

    void sendsWhereHeIsByThen()
    {
        FlyingStage stage(Answering::Mode::Never);
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.adapter->positionUpdate(MsfsStage::remote("CSN1"), {.latitude = 41, .longitude = 117});
        QCOMPARE(stage.calls("SetDataOnSimObject"), QStringList()); // no object yet
        QVERIFY(stage.simulator.assignPending());
        TRY_COMPARE(stage.added.size(), 1);
        const auto written = stage.waypoints(stage.simulator.aircraft("CSN1").id);
        QCOMPARE(written.size(), 1);
        QCOMPARE(written[0].Latitude, 41.0);
    }

    void addedTwiceHeIsCreatedOnce()
    {
        FlyingStage stage(Answering::Mode::Never);
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        QCOMPARE(stage.calls("AICreate").size(), 1);
        QVERIFY(stage.simulator.assignPending());
        TRY_COMPARE(stage.added.size(), 1);
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        QCOMPARE(stage.calls("AICreate").size(), 1);
    }

    void goneBeforeHeCame()
    {
        FlyingStage stage(Answering::Mode::Never);
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.adapter->removeAircraft(MsfsStage::remote("CSN1"), QStringLiteral("Stale"));
        QCOMPARE(stage.removed, QStringList{csn1});
        QVERIFY(stage.log.contains(QStringLiteral("Removing MSFS remote aircraft CSN1: Stale")));
        QCOMPARE(stage.calls("AIRemoveObject"), QStringList());
        QVERIFY(stage.simulator.assignPending());
        TRY_COMPARE(stage.calls("AIRemoveObject"), QStringList{QStringLiteral("AIRemoveObject 258 2")});
        QVERIFY(stage.log.contains(staleAssignment + QStringLiteral(" req=1 object=258, removing orphan object")));
        QCOMPARE(stage.simulator.aircraft().size(), 0);
        QCOMPARE(stage.added, QStringList());
    }

    void oneFailureReleasesAll()
    {
        FlyingStage stage(Answering::Mode::Never);
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.adapter->addAircraft(MsfsStage::remote("CSN2"));
        QVERIFY(stage.simulator.failPending());
        const QString released = QStringLiteral("Releasing pending remote create state after CREATE_OBJECT_FAILED: ");
        TRY_COMPARE(stage.log.startingWith(released).size(), 2);
        QVERIFY(stage.simulator.assignPending()); // the other one came
        TRY_COMPARE(stage.log.startingWith(staleAssignment).size(), 1);
        QCOMPARE(stage.simulator.aircraft().size(), 0);
        QCOMPARE(stage.added, QStringList());
        QCOMPARE(stage.links, QList<bool>());        // no error of the link
        QCOMPARE(stage.calls("AICreate").size(), 2); // nothing tries by itself
        stage.wire().takeCalls();
        stage.adapter->addAircraft(MsfsStage::remote("CSN2")); // but whoever adds again
        QCOMPARE(stage.calls("AICreate").size(), 1);
    }

    void aCallThatFailsReleasesAll()
    {
        FlyingStage stage(Answering::Mode::Never);
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.wire().failNext(QStringLiteral("AICreateNonATCAircraft"));
        stage.adapter->addAircraft(MsfsStage::remote("CSN2"));
        QCOMPARE(stage.log.startingWith(QStringLiteral("Releasing pending")).size(), 2);
        QCOMPARE(stage.calls("AICreate").size(), 2); // nobody asks twice
        QVERIFY(stage.simulator.assignPending());
        TRY_COMPARE(stage.log.startingWith(staleAssignment).size(), 1);
    }

    void whoIsTakenAwayOverAFailureIsNotAdded()
    {
        FlyingStage stage(Answering::Mode::Never);
        stage.adapter->addAircraft(MsfsStage::remote("CSN1"));
        stage.wire().failNext(QStringLiteral("SetDataOnSimObject"));
        connect(stage.adapter.get(), &MsfsAdapter::simConnectionFailed, this,
                [&stage] { stage.adapter->removeAircraft(MsfsStage::remote("CSN1"), {}); });
        QVERIFY(stage.simulator.assignPending());
        TRY_COMPARE(stage.removed, QStringList{csn1});
        stage.settle();
        QCOMPARE(stage.added, QStringList());
    }

    void aFailureLeavesTheLiveAlone()
    {
        FlyingStage stage;
        stage.addOne();
        stage.simulator.raise(22);
        stage.settle();
        QCOMPARE(stage.log.startingWith(QStringLiteral("Releasing pending")).size(), 0);
        QCOMPARE(stage.simulator.aircraft().size(), 1);
    }

    void logsNoMoreThanOneSpawnInFiveSeconds()
    {
        FlyingStage stage;
        const QString debug = QStringLiteral("MSFS spawn debug: callsign=CSN1 ");
        const auto again = [&stage] {
            stage.addOne(MsfsStage::remote("CSN1"));
            stage.adapter->removeAircraft(MsfsStage::remote("CSN1"), {});
        };
        again();
        again();
        QCOMPARE(stage.log.startingWith(debug).size(), 1);
        stage.addOne(MsfsStage::remote("CSN2"));
        QCOMPARE(stage.log.startingWith(QStringLiteral("MSFS spawn debug:")).size(), 2);
        stage.clock.advance(4999);
        again();
        QCOMPARE(stage.log.startingWith(debug).size(), 1);
        stage.clock.advance(1);
        again();
        QCOMPARE(stage.log.startingWith(debug).size(), 2);
    }
};

TARVO_TEST(MsfsTrafficCreationTest)
#include "MsfsTrafficCreationTest.moc"

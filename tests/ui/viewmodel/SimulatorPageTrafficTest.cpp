#include "ui/viewmodel/SimulatorPageViewModel.h"

#include "SimulatorPageFixture.h"
#include "support/OddNumbers.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <limits>

using namespace tarvo::test;
using tarvo::model::RemoteAircraft;
using tarvo::ui::PlotContact;
using tarvo::ui::SimulatorPageViewModel;

namespace {

QVariantMap snapshotRow(const char *label, double latitude, double longitude, double altitudeFeet)
{
    return {{u"label"_qs, QString::fromLatin1(label)}, {u"latitude"_qs, latitude}, {u"longitude"_qs, longitude},
            {u"altitudeFeet"_qs, altitudeFeet},        {u"headingTrue"_qs, 0.0},   {u"groundSpeedKnots"_qs, 0.0}};
}

} // namespace

/// The traffic of the simulator page: what feeds the plot, and when it is told.
class SimulatorPageTrafficTest : public QObject
{
    Q_OBJECT

private slots:
    void aPickedRangeStaysUntilItIsFreed()
    {
        SimulatorPageViewModel model;
        feed(model, overShanghai());
        model.setRemoteAircraft({remote("CES1", 31.1, 121)}); // 6 NM away
        QCOMPARE(model.plotRange(), 10);
        QSignalSpy traffic(&model, &SimulatorPageViewModel::trafficChanged);
        model.freePlotRange();
        QCOMPARE(traffic.count(), 0);
        model.stepPlotRange(1);
        QVERIFY(model.plotRangePicked());
        QCOMPARE(model.plotRange(), 20);
        QCOMPARE(traffic.count(), 1);
        model.setRemoteAircraft({remote("CES1", 33, 121)});
        QCOMPARE(model.plotRange(), 20);
        for (int i = 0; i < 9; ++i)
            model.stepPlotRange(-1);
        QCOMPARE(model.plotRange(), 2);
        QCOMPARE(traffic.count(), 5); // one for the aircraft; the last steps change nothing
        model.freePlotRange();
        QVERIFY(!model.plotRangePicked());
        QCOMPARE(model.plotRange(), 160);
    }

    void oneIsPickedOrNobody()
    {
        SimulatorPageViewModel model;
        QSignalSpy changed(&model, &SimulatorPageViewModel::pickedCallsignChanged);
        model.pickCallsign({});
        QCOMPARE(changed.count(), 0);
        for (const QString &callsign : {u"CES1"_qs, u"CES2"_qs}) {
            model.pickCallsign(callsign);
            QCOMPARE(model.pickedCallsign(), callsign);
        }
        model.pickCallsign(u"CES2"_qs); // a second click
        QCOMPARE(model.pickedCallsign(), QString());
        QCOMPARE(changed.count(), 3);
    }

    void whichRowIsWhose()
    {
        SimulatorPageViewModel model;
        feed(model, overShanghai());
        model.setRemoteAircraft({remote("FAR", 32, 121), remote("NEAR", 31.1, 121)});
        QCOMPARE(model.contactRow(u"NEAR"_qs), 0);
        QCOMPARE(model.contactRow(u"FAR"_qs), 1);
        QCOMPARE(model.contactRow(u"NOBODY"_qs), -1);
    }

    void thePickIsStepped_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QString>("after");
        QTest::newRow("down from nobody") << QString() << 1 << u"A"_qs;
        QTest::newRow("up from nobody") << QString() << -1 << u"D"_qs;
        QTest::newRow("down, over one without a callsign") << u"A"_qs << 1 << u"B"_qs;
        QTest::newRow("up, over one without a callsign") << u"B"_qs << -1 << u"A"_qs;
        QTest::newRow("two down") << u"A"_qs << 2 << u"D"_qs;
        QTest::newRow("beyond the last") << u"A"_qs << 9 << u"D"_qs;
        QTest::newRow("at the last") << u"D"_qs << 1 << u"D"_qs;
        QTest::newRow("beyond the first") << u"D"_qs << -9 << u"A"_qs;
        QTest::newRow("at the first") << u"A"_qs << -1 << u"A"_qs;
        QTest::newRow("the end of the list, from nobody") << QString() << 4 << u"D"_qs;
        QTest::newRow("from one who has gone") << u"GONE"_qs << 1 << u"A"_qs;
        QTest::newRow("nowhere") << u"B"_qs << 0 << u"B"_qs;
        QTest::newRow("as far as numbers go") << u"B"_qs << std::numeric_limits<int>::min() << u"A"_qs;
    }

    void thePickIsStepped()
    {
        QFETCH(QString, before);
        QFETCH(int, rows);
        SimulatorPageViewModel model;
        feed(model, overShanghai());
        model.setRemoteAircraft(
            {remote("A", 31.1, 121), remote("", 31.2, 121), remote("B", 31.3, 121), remote("D", 31.4, 121)});
        model.pickCallsign(before);
        model.stepPickedContact(rows);
        QTEST(model.pickedCallsign(), "after");
    }

    void nobodyIsPickedOfNobody()
    {
        SimulatorPageViewModel model;
        model.stepPickedContact(1);
        model.stepPickedContact(-1);
        QCOMPARE(model.pickedCallsign(), QString());
    }

    void aNumberThatStaysBrokenTellsOnce()
    {
        SimulatorPageViewModel model;
        QSignalSpy data(&model, &SimulatorPageViewModel::dataChanged);
        QSignalSpy traffic(&model, &SimulatorPageViewModel::trafficChanged);
        model.setRemoteAircraft({remote("CES1", 31.1, 121)});
        Own own;
        own.aircraft.latitude = own.aircraft.pitch = notANumber;
        own.config.flapsRatio = own.config.speedbrakeRatio = notANumber;
        for (int i = 0; i < 3; ++i)
            feed(model, own);
        QCOMPARE(data.count(), 1);
        QCOMPARE(traffic.count(), 2);
        QVERIFY(std::isnan(model.pitch()));
        QVERIFY(model.plotContacts().isEmpty());
    }

    void remoteAircraftFeedThePlot()
    {
        SimulatorPageViewModel model;
        model.setMode(u"XPLANE"_qs);
        QSignalSpy traffic(&model, &SimulatorPageViewModel::trafficChanged);
        const QList<RemoteAircraft> table{remote("FAR", 32, 121), remote("NEAR", 31.1, 121), remote("NOWHERE", 0, 0)};
        for (int i = 0; i < 2; ++i)
            model.setRemoteAircraft(table);
        QCOMPARE(traffic.count(), 1);
        QCOMPARE(model.trafficSummary(), u"附近 2 个交通目标"_qs);
        QVERIFY(model.plotContacts().isEmpty());
        feed(model, overShanghai());
        QCOMPARE(traffic.count(), 2);
        QCOMPARE(model.plotContacts().size(), 2);
        const QVariantMap row = model.contactRows()->toList().constFirst().toMap();
        QCOMPARE(row.value(u"callsign"_qs).toString(), u"NEAR"_qs);
        QCOMPARE(row.value(u"type"_qs).toString(), u"A320"_qs);
        QCOMPARE(row.value(u"bearing"_qs).toDouble(), 0.0);
        QVERIFY(std::abs(row.value(u"distanceNm"_qs).toDouble() - 6.0) < 0.1);
        QVERIFY(std::abs(row.value(u"relativeAltitudeFeet"_qs).toDouble() - 1640.42) < 0.01);
        QCOMPARE(row.value(u"heading"_qs).toDouble(), 270.0);
        QCOMPARE(row.value(u"groundSpeed"_qs).toDouble(), 210.0);
        QCOMPARE(model.plotRange(), 80); // FAR counts
        QCOMPARE(model.plotSummary(), u"2 个目标，最近的在方位 360，6.0 海里：NEAR"_qs);
        QCOMPARE(model.trafficContacts(), QVariantList());
        model.setRemoteAircraft({});
        QCOMPARE(model.trafficSummary(), u"附近暂无交通目标"_qs);
        QVERIFY(model.plotContacts().isEmpty());
    }

    void aCrowdIsCutToTheNearest()
    {
        SimulatorPageViewModel model;
        feed(model, overShanghai());
        QList<RemoteAircraft> table;
        for (int i = 500; i > 0; --i)
            table << remote(qPrintable(QString::number(i)), 31 + i * 0.001, 121);
        model.setRemoteAircraft(table);
        QCOMPARE(model.trafficSummary(), u"附近 500 个交通目标"_qs);
        const QList<PlotContact> rows = model.plotContacts();
        QCOMPARE(rows.size(), 200);
        QCOMPARE(rows.first().target.callsign, u"1"_qs);
        QCOMPARE(rows.last().target.callsign, u"200"_qs);
    }

    void aSnapshotIsPassedOnAndPlotted()
    {
        SimulatorPageViewModel model;
        model.setMode(u"MSFS"_qs);
        feed(model, overShanghai());
        QSignalSpy traffic(&model, &SimulatorPageViewModel::trafficChanged);
        const QVariantList rows{snapshotRow("B2352", 31.1, 121, 0), snapshotRow("OBJ-7", 31.2, 121, 3000), QVariant(7),
                                QVariantMap{{u"label"_qs, u"NOWHERE"_qs}}};
        for (int i = 0; i < 2; ++i)
            model.setTrafficContacts(rows);
        QCOMPARE(traffic.count(), 1);
        QCOMPARE(model.trafficContacts(), rows);
        QCOMPARE(model.trafficSummary(), u"附近 4 个交通目标"_qs);
        QCOMPARE(model.plotContacts().size(), 2);
        const PlotContact bare = model.plotContacts().at(0);
        QCOMPARE(bare.target.callsign, u"B2352"_qs);
        for (const double unknown : {bare.relativeAltitudeFeet, bare.target.heading, bare.target.groundSpeed})
            QVERIFY(std::isnan(unknown));
        QVERIFY(std::abs(model.plotContacts().at(1).relativeAltitudeFeet - 1359.58) < 0.01);
        model.setRemoteAircraft({remote("CES1", 31.1, 121)}); // the session's table stays out of it
        model.setRemoteAircraft({});
        QCOMPARE(model.plotContacts().size(), 2);
        QCOMPARE(traffic.count(), 1);
        model.setTrafficContacts({});
        QCOMPARE(model.trafficContacts(), QVariantList());
        QVERIFY(model.plotContacts().isEmpty());
        QCOMPARE(traffic.count(), 2);
    }

    void thePlotFollowsVisibleMoves_data()
    {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<int>("told");
        QTest::newRow("stands") << Edit([](Own &) {}) << 0;
        QTest::newRow("a few metres") << Edit([](Own &o) { o.aircraft.latitude += 0.0001; }) << 0;
        QTest::newRow("a tenth of a mile") << Edit([](Own &o) { o.aircraft.latitude += 0.1 / 60; }) << 1;
        QTest::newRow("a small climb") << Edit([](Own &o) { o.aircraft.altitudeMslM += 10; }) << 0;
        QTest::newRow("a climb") << Edit([](Own &o) { o.aircraft.altitudeMslM += 20; }) << 1;
        QTest::newRow("only turns") << Edit([](Own &o) { o.aircraft.heading = 90; }) << 0;
        QTest::newRow("loses its position") << Edit([](Own &o) { o.aircraft.latitude = notANumber; }) << 1;
        QTest::newRow("loses its height") << Edit([](Own &o) { o.aircraft.altitudeMslM = notANumber; }) << 1;
    }

    void thePlotFollowsVisibleMoves()
    {
        QFETCH(Edit, edit);
        SimulatorPageViewModel model;
        model.setRemoteAircraft({remote("CES1", 31.1, 121)});
        Own own = overShanghai();
        feed(model, own);
        QSignalSpy traffic(&model, &SimulatorPageViewModel::trafficChanged);
        edit(own);
        feed(model, own);
        QTEST(int(traffic.count()), "told");
    }

    void smallMovesAddUp()
    {
        SimulatorPageViewModel model;
        model.setRemoteAircraft({remote("CES1", 31.1, 121)});
        Own own = overShanghai();
        feed(model, own);
        QSignalSpy traffic(&model, &SimulatorPageViewModel::trafficChanged);
        for (int i = 0; i < 100; ++i) { // a hundredth of a mile each
            own.aircraft.latitude += 0.01 / 60;
            feed(model, own);
        }
        QVERIFY(traffic.count() >= 15 && traffic.count() <= 20);
        const double distance = model.plotContacts().first().distanceNm;
        QVERIFY(std::abs(distance - 5.0) < 0.1);
    }

    void anEmptyPlotIsNotToldOfMoves()
    {
        SimulatorPageViewModel model;
        Own own = overShanghai();
        feed(model, own);
        QSignalSpy traffic(&model, &SimulatorPageViewModel::trafficChanged);
        own.aircraft.latitude += 1;
        feed(model, own);
        QCOMPARE(traffic.count(), 0);
        model.setRemoteAircraft({remote("CES1", 32.1, 121)});
        const double distance = model.plotContacts().first().distanceNm;
        QVERIFY(distance < 7); // seen from where the aircraft is now
    }

    void aSnapshotWithoutAnOwnPositionIsListedUpToTheBound()
    {
        SimulatorPageViewModel model;
        model.setMode(u"MSFS"_qs);
        model.setTrafficContacts(QVariantList(300, snapshotRow("B2352", 31.1, 121, 0)));
        QCOMPARE(model.contactRows()->rowCount(), 200);
        QVERIFY(model.plotContacts().isEmpty());
    }

    void aSnapshotInAnotherModeIsNotPlotted()
    {
        SimulatorPageViewModel model;
        model.setMode(u"XPLANE"_qs);
        feed(model, overShanghai());
        model.setRemoteAircraft({remote("CES1", 31.1, 121)});
        const QVariantList rows{snapshotRow("B2352", 31.1, 121, 0), snapshotRow("B2353", 31.1, 121, 0)};
        model.setTrafficContacts(rows);
        QCOMPARE(model.trafficContacts(), rows);
        QCOMPARE(model.trafficSummary(), u"附近 1 个交通目标"_qs);
        QCOMPARE(model.plotContacts().size(), 1);
    }
};

TARVO_TEST(SimulatorPageTrafficTest)
#include "SimulatorPageTrafficTest.moc"

#include "manager/RemoteAircraftUpdates.h"

#include "AppConfig.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/PilotPosition.h"
#include "fsd/pdu/PlaneInfoResponse.h"
#include "manager/AircraftTypeRules.h"
#include "model/ConnectInfo.h"
#include "model/RemoteAircraft.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tarvo;
using namespace tarvo::manager;
using tarvo::fsd::pdu::FastPilotPosition;
using tarvo::fsd::pdu::FastPilotPositionType;
using tarvo::fsd::pdu::PlaneInfoResponse;
using tarvo::model::RemoteAircraft;
using tarvo::test::columns;

/// What the messages of another pilot change in his record.
class RemoteAircraftUpdatesTest : public QObject
{
    Q_OBJECT

private slots:
    void ownAndShadowed_data()
    {
        columns<QString, bool, QString, bool>("own", "observer", "callsign", "dropped");
        QTest::newRow("own") << u"CES1"_qs << false << u"CES1"_qs << true;
        QTest::newRow("own, observer") << u"CES1A"_qs << true << u"CES1A"_qs << true;
        QTest::newRow("other") << u"CES1"_qs << false << u"CES2"_qs << false;
        QTest::newRow("shadowed flight") << u"CES1A"_qs << true << u"CES1"_qs << true;
        QTest::newRow("a pilot has no shadow") << u"CES1A"_qs << false << u"CES1"_qs << false;
        QTest::newRow("digit behind") << u"CES12"_qs << true << u"CES1"_qs << false;
        QTest::newRow("underscore behind") << u"CES1_"_qs << true << u"CES1"_qs << false;
        QTest::newRow("two letters behind") << u"CES1AB"_qs << true << u"CES1"_qs << false;
        QTest::newRow("shadow the other way round") << u"CES1"_qs << true << u"CES1A"_qs << false;
        QTest::newRow("other flight") << u"CES2A"_qs << true << u"CES1"_qs << false;
        QTest::newRow("no pattern") << u"CES1A"_qs << true << u"C.S1"_qs << false;
        QTest::newRow("empty") << u"CES1A"_qs << true << QString() << false;
    }

    void ownAndShadowed()
    {
        QFETCH(QString, own);
        QFETCH(bool, observer);
        QFETCH(QString, callsign);
        QTEST(isOwnOrShadowed(callsign, {.callsign = own, .typeCode = {}, .selcal = {}, .observer = observer}),
              "dropped");
    }

    void slowState()
    {
        fsd::pdu::PilotPosition report;
        report.latitude = 40.5;
        report.longitude = -116.25;
        report.trueAltitude = 1; // the adjusted one counts
        report.pitch = 2;
        report.heading = 270;
        report.bank = -3;
        const model::AircraftVisualState expected{.latitude = 40.5,
                                                  .longitude = -116.25,
                                                  .altitudeMslM = 3280.84 / 3.28084,
                                                  .altitudeAglM = 0,
                                                  .pitch = 2,
                                                  .heading = 270,
                                                  .bank = -3,
                                                  .noseWheelAngle = 0};
        QCOMPARE(visualStateOf(report, 3280.84), expected);
    }

    void fastState()
    {
        FastPilotPosition report;
        report.latitude = 40.5;
        report.longitude = -116.25;
        report.altitudeAboveGround = 656.168;
        report.pitch = 2;
        report.heading = 270;
        report.bank = -3;
        report.noseGearAngle = 12.5;
        const model::AircraftVisualState expected{.latitude = 40.5,
                                                  .longitude = -116.25,
                                                  .altitudeMslM = 3280.84 / 3.28084,
                                                  .altitudeAglM = 656.168 / 3.28084,
                                                  .pitch = 2,
                                                  .heading = 270,
                                                  .bank = -3,
                                                  .noseWheelAngle = 12.5};
        QCOMPARE(visualStateOf(report, 3280.84), expected);
    }

    void groundSpeed_data()
    {
        columns<FastPilotPositionType, double, double, double>("type", "east", "north", "knots");
        const auto fast = FastPilotPositionType::Fast;
        const auto slow = FastPilotPositionType::Slow;
        const auto stopped = FastPilotPositionType::Stopped;
        QTest::newRow("both directions") << fast << 30.0 << 40.0 << 50 * 1.943844;
        QTest::newRow("slow report") << slow << -30.0 << -40.0 << 50 * 1.943844;
        QTest::newRow("0.04 keeps") << fast << 0.04 << 0.0 << 123.0;
        QTest::newRow("0.05 keeps") << fast << 0.05 << 0.0 << 123.0;
        QTest::newRow("0.06 counts") << fast << 0.0 << 0.06 << 0.06 * 1.943844;
        QTest::newRow("nothing keeps") << fast << 0.0 << 0.0 << 123.0;
        QTest::newRow("slow report that stands keeps") << slow << 0.0 << 0.0 << 123.0;
        QTest::newRow("stopped") << stopped << 0.0 << 0.0 << 0.0;
        QTest::newRow("1000 knots") << fast << 1000 / 1.943844 << 0.0 << 900.0;
        QTest::newRow("beyond all numbers") << fast << 1e300 << 1e300 << 900.0;
    }

    void groundSpeed()
    {
        QFETCH(FastPilotPositionType, type);
        QFETCH(double, east);
        QFETCH(double, north);
        FastPilotPosition report;
        report.type = type;
        report.velocity1 = east;
        report.velocity2 = 500; // climbing is no ground speed
        report.velocity3 = north;
        QTEST(groundSpeedAfter(report, 123), "knots");
    }

    void velocities_data()
    {
        columns<FastPilotPositionType, QList<double>>("type", "expected");
        const QList<double> told{1, 2, 3, 0.1, 0.2, 0.3};
        QTest::newRow("fast") << FastPilotPositionType::Fast << told;
        QTest::newRow("slow") << FastPilotPositionType::Slow << told;
        QTest::newRow("stopped") << FastPilotPositionType::Stopped << QList<double>{0, 0, 0, 0, 0, 0};
    }

    void velocities()
    {
        QFETCH(FastPilotPositionType, type);
        FastPilotPosition report;
        report.type = type;
        report.velocity1 = 1;
        report.velocity2 = 2;
        report.velocity3 = 3;
        report.pitchVelocity = 0.1;
        report.headingVelocity = 0.2;
        report.bankVelocity = 0.3;
        const auto [positional, rotational] = velocitiesOf(report);
        QTEST((QList<double>{positional.x, positional.y, positional.z, rotational.x, rotational.y, rotational.z}),
              "expected");
    }

    void planeInfo_data()
    {
        QTest::addColumn<QString>("before"); // callsign:type:airline:livery:hint
        QTest::addColumn<QString>("told");   // equipment:airline:livery:csl
        QTest::addColumn<QString>("after");  // type:airline:livery:hint
        QTest::newRow("everything") << u"AB2::::"_qs << u"b738:ces:blue:Model 1"_qs << u"B738:CES:BLUE:Model 1"_qs;
        QTest::newRow("nothing") << u"AB2::::"_qs << u":::"_qs << u":::"_qs;
        QTest::newRow("nothing keeps all") << u"AB2:A320:CES:RED:M"_qs << u":::"_qs << u"A320:CES:RED:M"_qs;
        QTest::newRow("blanks are nothing") << u"AB2:A320:CES:RED:M"_qs << u" : : : "_qs << u"A320:CES:RED:M"_qs;
        QTest::newRow("the callsign's airline") << u"CCA1::::"_qs << u":CES::"_qs << u":CCA::"_qs;
        QTest::newRow("the callsign's airline comes back") << u"CCA1::CES::"_qs << u":::"_qs << u":CCA::"_qs;
        QTest::newRow("a known airline stays") << u"AB2::CES::"_qs << u":CSN::"_qs << u":CES::"_qs;
        QTest::newRow("a livery is replaced") << u"AB2:::RED:"_qs << u"::blue:"_qs << u"::BLUE:"_qs;
        QTest::newRow("a type is replaced") << u"AB2:A320:::"_qs << u"B738:::"_qs << u"B738:::"_qs;
        QTest::newRow("a hint is replaced") << u"AB2::::M"_qs << u":::N"_qs << u":::N"_qs;
        QTest::newRow("SWIFT_ livery is a hint")
            << u"AB2::::"_qs << u"::swift_Model a:"_qs << u"::SWIFT_MODEL A:SWIFT_MODEL A"_qs;
        QTest::newRow("SWIFT_ livery after a hint") << u"AB2::::M"_qs << u"::SWIFT_X:"_qs << u"::SWIFT_X:M"_qs;
        QTest::newRow("the CSL field goes first") << u"AB2::::"_qs << u"::SWIFT_X:N"_qs << u"::SWIFT_X:N"_qs;
        QTest::newRow("SWIFT without the stroke") << u"AB2::::"_qs << u"::SWIFTX:"_qs << u"::SWIFTX:"_qs;
        QTest::newRow("SWIFT_ in the middle") << u"AB2::::"_qs << u"::A SWIFT_X:"_qs << u"::A SWIFT_X:"_qs;
    }

    void planeInfo()
    {
        QFETCH(QString, before);
        QFETCH(QString, told);
        const QTemporaryDir root;
        AppConfig config(root.path());
        const network::SwiftAircraftIcaoService icao(config);
        TypeNormalizer types(icao);

        const QStringList known = before.split(u':');
        RemoteAircraft aircraft;
        aircraft.callsign = known[0];
        aircraft.typeCode = known[1];
        aircraft.airline = known[2];
        aircraft.livery = known[3];
        aircraft.remoteModelHint = known[4];
        const QStringList fields = told.split(u':');
        apply(aircraft, PlaneInfo::of({known[0], u"AB1"_qs, fields[0], fields[1], fields[2], fields[3]}), types);
        QTEST(QStringList({aircraft.typeCode, aircraft.airline, aircraft.livery, aircraft.remoteModelHint}).join(u':'),
              "after");
    }

    void longTextsAreCut()
    {
        const QString text(1'000'000, QLatin1Char('x'));
        const PlaneInfo info = PlaneInfo::of({u"AB2"_qs, u"AB1"_qs, u"  "_qs + text, text, text, text});
        for (const QString &kept : {info.equipment, info.airline, info.livery, info.csl})
            QCOMPARE(kept.size(), PlaneInfo::longestText);
    }
};

TARVO_TEST(RemoteAircraftUpdatesTest)
#include "RemoteAircraftUpdatesTest.moc"

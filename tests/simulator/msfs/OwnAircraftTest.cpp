#include "simulator/msfs/OwnAircraft.h"
#include "support/Columns.h"
#include "support/OddNumbers.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;

namespace {

/// Reads what a test looks at, as a number.
using Look = double (*)(const OwnAircraft &);

QVariantMap sampleOf(std::initializer_list<std::pair<const char *, QVariant>> values)
{
    QVariantMap sample;
    for (const auto &[key, value] : values)
        sample.insert(QLatin1String(key), value);
    return sample;
}

/// Every field is something else than at the beginning.
OwnAircraft inFlight()
{
    OwnAircraft own;
    own.data = {.latitude = 40,
                .longitude = 116,
                .altitudeMslM = 3000,
                .altitudeAglM = 2900,
                .altitudePressure = 9800,
                .qnh = 1003,
                .temperatureError = 0,
                .groundSpeed = 250,
                .pitch = 2,
                .heading = 90,
                .bank = -5,
                .latitudeVelocity = 1,
                .altitudeVelocity = 2,
                .longitudeVelocity = 3,
                .pitchVelocity = 0.1,
                .headingVelocity = 0.2,
                .bankVelocity = 0.3,
                .noseWheelAngle = 4};
    own.config = {.strobesOn = true,
                  .landingLightsOn = true,
                  .taxiLightsOn = true,
                  .beaconOn = true,
                  .navLightsOn = true,
                  .engineCount = 2,
                  .engine1Running = true,
                  .engine2Running = true,
                  .engine3Running = true,
                  .engine4Running = true,
                  .engine1Reversing = true,
                  .engine2Reversing = true,
                  .engine3Reversing = true,
                  .engine4Reversing = true,
                  .gearDown = true,
                  .flapsRatio = 0.29,
                  .speedbrakeRatio = 0.4,
                  .speedbrakeArmed = true,
                  .onGround = true};
    own.radio.avionicsPowerOn = true;
    own.radio.com1Frequency = 118275;
    own.radio.com2Frequency = 121905;
    own.radio.com1TransmitEnabled = true;
    own.radio.com2TransmitEnabled = true;
    own.radio.com1ReceiveEnabled = true;
    own.radio.com1Volume = 100;
    own.radio.com2Volume = 100;
    own.radio.squawkingModeC = true;
    own.radio.transponderCode = 2000;
    own.title = QStringLiteral("Asobo A320");
    return own;
}

} // namespace

Q_DECLARE_METATYPE(Look)

class OwnAircraftTest : public QObject
{
    Q_OBJECT

private slots:
    void anEmptySampleChangesNothing() { QCOMPARE(afterSample(inFlight(), {}), inFlight()); }

    void butVolumesAndPause()
    {
        OwnAircraft paused;
        paused.paused = true;
        const OwnAircraft now = afterSample(paused, {});
        QCOMPARE(now.radio.com1Volume, 100U);
        QCOMPARE(now.radio.com2Volume, 100U);
        QVERIFY(!now.paused);
    }

    /// Each key alone, from nothing and from a flight.
    void oneKey_data()
    {
        tarvo::test::columns<QString, QVariant, Look, double>("key", "value", "look", "expected");
#define KEY_ROW(KEY, PART, VALUE, EXPECTED)                                                                            \
    QTest::newRow(#KEY) << QStringLiteral(#KEY) << QVariant(VALUE)                                                     \
                        << Look([](const OwnAircraft &own) { return double(own.PART.KEY); }) << double(EXPECTED)
        KEY_ROW(latitude, data, -33.5, -33.5);
        KEY_ROW(longitude, data, 151.25, 151.25);
        KEY_ROW(altitudeMslM, data, 1234.5, 1234.5);
        KEY_ROW(altitudeAglM, data, 200.25, 200.25);
        KEY_ROW(altitudePressure, data, 4050.0, 4050);
        KEY_ROW(qnh, data, 1021.5, 1021.5);
        KEY_ROW(groundSpeed, data, 133.0, 133);
        KEY_ROW(pitch, data, -3.5, -3.5);
        KEY_ROW(heading, data, 359.5, 359.5);
        KEY_ROW(bank, data, 12.5, 12.5);
        KEY_ROW(latitudeVelocity, data, -7.0, -7);
        KEY_ROW(longitudeVelocity, data, 8.5, 8.5);
        KEY_ROW(altitudeVelocity, data, -9.5, -9.5);
        KEY_ROW(pitchVelocity, data, 0.25, 0.25);
        KEY_ROW(headingVelocity, data, -0.5, -0.5);
        KEY_ROW(bankVelocity, data, 0.75, 0.75);
        KEY_ROW(noseWheelAngle, data, -30.0, -30);
        KEY_ROW(flapsRatio, config, 50.0, 0.5);
        KEY_ROW(speedbrakeRatio, config, 0.75, 0.75);
        KEY_ROW(engineCount, config, 4, 4);
        KEY_ROW(transponderCode, radio, 7000, 7000);
        KEY_ROW(com1Frequency, radio, 122.85, 122850);
        KEY_ROW(com2Frequency, radio, 118.02, 118020);
#undef KEY_ROW
        // Both ways, because a switch that is never read looks like one that is off.
#define SWITCH_ROW(KEY, PART)                                                                                          \
    for (const bool on : {true, false})                                                                                \
    QTest::addRow("%s %s", #KEY, on ? "on" : "off")                                                                    \
        << QStringLiteral(#KEY) << QVariant(on) << Look([](const OwnAircraft &own) { return double(own.PART.KEY); })   \
        << double(on)
        SWITCH_ROW(speedbrakeArmed, config);
        SWITCH_ROW(engine1Running, config);
        SWITCH_ROW(engine2Running, config);
        SWITCH_ROW(engine3Running, config);
        SWITCH_ROW(engine4Running, config);
        SWITCH_ROW(engine1Reversing, config);
        SWITCH_ROW(engine2Reversing, config);
        SWITCH_ROW(engine3Reversing, config);
        SWITCH_ROW(engine4Reversing, config);
        SWITCH_ROW(beaconOn, config);
        SWITCH_ROW(landingLightsOn, config);
        SWITCH_ROW(taxiLightsOn, config);
        SWITCH_ROW(navLightsOn, config);
        SWITCH_ROW(strobesOn, config);
        SWITCH_ROW(onGround, config);
        SWITCH_ROW(avionicsPowerOn, radio);
        SWITCH_ROW(com1TransmitEnabled, radio);
        SWITCH_ROW(com2TransmitEnabled, radio);
        SWITCH_ROW(com1ReceiveEnabled, radio);
#undef SWITCH_ROW
        const auto gear = Look([](const OwnAircraft &own) { return double(own.config.gearDown); });
        QTest::newRow("gear down") << QStringLiteral("gearDown") << QVariant(100.0) << gear << 1.0;
        QTest::newRow("gear at half a percent") << QStringLiteral("gearDown") << QVariant(0.5) << gear << 0.0;
        QTest::newRow("gear above half a percent") << QStringLiteral("gearDown") << QVariant(0.51) << gear << 1.0;
        QTest::newRow("gear up") << QStringLiteral("gearDown") << QVariant(0.0) << gear << 0.0;
        const auto modeC = Look([](const OwnAircraft &own) { return double(own.radio.squawkingModeC); });
        for (const int state : {0, 1, 2, 3, 4, 5})
            QTest::addRow("transponder state %d", state)
                << QStringLiteral("squawkingModeC") << QVariant(state) << modeC << (state > 3 ? 1.0 : 0.0);
        QTest::newRow("frequency in kilohertz")
            << QStringLiteral("com1Frequency") << QVariant(122850.0)
            << Look([](const OwnAircraft &own) { return double(own.radio.com1Frequency); }) << 122850.0;
        QTest::newRow("no frequency") << QStringLiteral("com2Frequency") << QVariant(0.0)
                                      << Look([](const OwnAircraft &own) { return double(own.radio.com2Frequency); })
                                      << 0.0;
        QTest::newRow("paused") << QStringLiteral("simPaused") << QVariant(true)
                                << Look([](const OwnAircraft &own) { return double(own.paused); }) << 1.0;
        QTest::newRow("title") << QStringLiteral("aircraftTitle") << QVariant(QStringLiteral(" C172 "))
                               << Look(
                                      [](const OwnAircraft &own) { return double(own.title == QLatin1String("C172")); })
                               << 1.0;
        QTest::newRow("empty title") << QStringLiteral("aircraftTitle") << QVariant(QStringLiteral("  "))
                                     << Look([](const OwnAircraft &own) { return double(own.title.isEmpty()); }) << 0.0;
    }

    void oneKey()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        QFETCH(Look, look);
        QFETCH(double, expected);
        OwnAircraft now = afterSample(inFlight(), {{key, value}});
        QCOMPARE(look(now), expected);
        // Nothing else has changed: with that key as it was, all is.
        if (key == QLatin1String("aircraftTitle") || key == QLatin1String("simPaused"))
            return;
        OwnAircraft first = inFlight();
        QVERIFY(now == first ||
                (now.data != first.data) + (now.config != first.config) + (now.radio != first.radio) == 1);
    }

    void speedbrake_data()
    {
        tarvo::test::columns<QVariantMap, double>("sample", "ratio");
        const char *sources[] = {"speedbrakeRatio",
                                 "speedbrakeLeftPosition",
                                 "speedbrakeRightPosition",
                                 "speedbrakeHandlePositionRaw",
                                 "speedbrakeLeftPositionRaw",
                                 "speedbrakeRightPositionRaw",
                                 "airbusSpeedbrakeHandlePosition",
                                 "iniSpeedbrakeHandle"};
        for (const char *largest : sources) {
            QVariantMap sample;
            for (const char *source : sources)
                sample.insert(QLatin1String(source), source == largest ? 0.7 : 0.1);
            QTest::newRow(largest) << sample << 0.7;
        }
        QTest::newRow("handle and one raw surface")
            << sampleOf({{"speedbrakeRatio", 0.1}, {"speedbrakeLeftPositionRaw", 0.7}}) << 0.7;
        QTest::newRow("a raw surface alone: the last one is larger")
            << sampleOf({{"speedbrakeLeftPositionRaw", 0.3}}) << 0.4;
        QTest::newRow("handle alone may go down") << sampleOf({{"speedbrakeRatio", 0.0}}) << 0.0;
        QTest::newRow("no more than 1") << sampleOf({{"airbusSpeedbrakeHandlePosition", 1.5}}) << 1.0;
        QTest::newRow("no less than 0") << sampleOf({{"speedbrakeRatio", -0.5}}) << 0.0;
        QTest::newRow("none: as it was") << QVariantMap() << 0.4;
    }

    void speedbrake()
    {
        QFETCH(QVariantMap, sample);
        QTEST(afterSample(inFlight(), sample).config.speedbrakeRatio, "ratio");
    }

    void armed_data()
    {
        tarvo::test::columns<QVariantMap, bool>("sample", "armed");
        QTest::newRow("none: as it was") << QVariantMap() << true;
        QTest::newRow("all off") << sampleOf({{"speedbrakeArmed", false},
                                              {"airbusSpeedbrakeArmed", false},
                                              {"iniSpeedbrakeArmed", false}})
                                 << false;
        QTest::newRow("its own off, others absent") << sampleOf({{"speedbrakeArmed", false}}) << false;
        QTest::newRow("Airbus alone") << sampleOf({{"speedbrakeArmed", false}, {"airbusSpeedbrakeArmed", true}})
                                      << true;
        QTest::newRow("ini alone") << sampleOf({{"speedbrakeArmed", false}, {"iniSpeedbrakeArmed", true}}) << true;
    }

    void armed()
    {
        QFETCH(QVariantMap, sample);
        QTEST(afterSample(inFlight(), sample).config.speedbrakeArmed, "armed");
    }

    /// Or the network would be told of a new configuration with every frame.
    void flapsStayAsTheyAreToTheLastDigit()
    {
        for (int percent = 0; percent <= 100; ++percent) {
            const OwnAircraft own = afterSample({}, sampleOf({{"flapsRatio", double(percent)}}));
            QCOMPARE(afterSample(own, sampleOf({{"latitude", 1.0}})).config, own.config);
        }
    }

    void everyFrequencyStaysAsItIs()
    {
        for (quint32 kilohertz = 118'000; kilohertz < 137'000; kilohertz += 5) {
            OwnAircraft own;
            own.radio.com1Frequency = kilohertz;
            QCOMPARE(afterSample(own, {}).radio.com1Frequency, kilohertz);
        }
    }

    void aNumberThatIsNoneIsAChange()
    {
        const QVariantMap sample = sampleOf({{"pitch", tarvo::test::notANumber}});
        const OwnAircraft own = afterSample(inFlight(), sample);
        QVERIFY(afterSample(own, sample).data != own.data);
    }

    void inputEvent_data()
    {
        tarvo::test::columns<double, double>("value", "ratio");
        QTest::newRow("percent") << 75.0 << 0.75;
        QTest::newRow("ratio") << 0.75 << 0.75;
        QTest::newRow("one is a ratio") << 1.0 << 1.0;
        QTest::newRow("percent above all") << 250.0 << 1.0;
        QTest::newRow("below 0") << -0.5 << 0.0;
    }

    void inputEvent()
    {
        QFETCH(double, value);
        QTEST(speedbrakeOf(value), "ratio");
    }

    void altitudes_data()
    {
        tarvo::test::columns<double, double>("pressure", "told");
        QTest::newRow("pressure altitude known") << 9800.0 << 9800.0;
        QTest::newRow("0: the true one") << 0.0 << 3280.84;
        QTest::newRow("below 0: the true one") << -120.0 << 3280.84;
    }

    void altitudes()
    {
        QFETCH(double, pressure);
        tarvo::model::UserAircraftData own;
        own.altitudeMslM = 1000;
        own.altitudePressure = pressure;
        QTEST(pressureAltitudeFeet(own), "told");
        QCOMPARE(trueAltitudeFeet(own), 3280.84);
    }
};

TARVO_TEST(OwnAircraftTest)
#include "OwnAircraftTest.moc"

#include "simulator/xplane/DatarefTable.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>
#include <vector>

using namespace tarvo::simulator::xplane;

namespace {

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// Reads one field of a sample as a number.
using Reader = double (*)(const DatarefSample &);
#define FIELD(name) [](const DatarefSample &s) { return static_cast<double>(s.name); }

} // namespace

class DatarefTableTest : public QObject
{
    Q_OBJECT

private slots:
    void valueGoesInto_data()
    {
        tarvo::test::columns<quint32, float, Reader, double>("id", "value", "field", "expected");
        addRadioRows();
        addAudioAndTransponderRows();
        addPositionRows();
        addMotionRows();
        addConfigRows();
    }

    void valueGoesInto()
    {
        QFETCH(quint32, id);
        QFETCH(float, value);
        QFETCH(Reader, field);
        QFETCH(double, expected);
        DatarefSample sample;
        QCOMPARE(applyDataref(sample, id, value), DatarefEvent::None);
        QCOMPARE(field(sample), expected);
    }

    void flagFollowsZeroAndNonZero_data()
    {
        tarvo::test::columns<quint32, Reader>("id", "field");
        const auto add = [](const char *name, quint32 id, Reader field) { QTest::newRow(name) << id << field; };
        add("avionics", 0, FIELD(radio.avionicsPowerOn));
        add("COM1 receive", 2, FIELD(radio.com1ReceiveEnabled));
        add("COM2 receive", 3, FIELD(radio.com2ReceiveEnabled));
        add("ident", 11, FIELD(radio.squawkingIdent));
        add("beacon", 13, FIELD(config.beaconOn));
        add("landing lights", 14, FIELD(config.landingLightsOn));
        add("taxi lights", 15, FIELD(config.taxiLightsOn));
        add("navigation lights", 16, FIELD(config.navLightsOn));
        add("strobes", 17, FIELD(config.strobesOn));
        add("engine 1", 36, FIELD(config.engine1Running));
        add("engine 2", 37, FIELD(config.engine2Running));
        add("engine 3", 38, FIELD(config.engine3Running));
        add("engine 4", 39, FIELD(config.engine4Running));
        add("on ground", 44, FIELD(config.onGround));
        add("gear", 45, FIELD(config.gearDown));
    }

    void flagFollowsZeroAndNonZero()
    {
        QFETCH(quint32, id);
        QFETCH(Reader, field);
        for (const float on : {1.0F, 0.25F, -1.0F, 7.0F}) {
            DatarefSample sample;
            applyDataref(sample, id, on);
            QCOMPARE(field(sample), 1.0);
            applyDataref(sample, id, 0);
            QCOMPARE(field(sample), 0.0);
        }
    }

    void transmitSelection_data()
    {
        tarvo::test::columns<float, bool, bool>("value", "com1", "com2");
        QTest::newRow("6 is COM1") << 6.0F << true << false;
        QTest::newRow("7 is COM2") << 7.0F << false << true;
    }

    void transmitSelection()
    {
        QFETCH(float, value);
        QFETCH(bool, com1);
        QFETCH(bool, com2);
        DatarefSample sample;
        sample.radio.com1TransmitEnabled = !com1;
        sample.radio.com2TransmitEnabled = !com2;
        applyDataref(sample, 1, value);
        QCOMPARE(sample.radio.com1TransmitEnabled, com1);
        QCOMPARE(sample.radio.com2TransmitEnabled, com2);
    }

    void otherTransmitSelectionsChangeNothing()
    {
        for (const float value : {0.0F, 5.0F, 8.0F, 6.5F, -6.0F, notANumber, infinity}) {
            for (const bool com1 : {false, true}) {
                DatarefSample sample;
                sample.radio.com1TransmitEnabled = com1;
                sample.radio.com2TransmitEnabled = !com1;
                applyDataref(sample, 1, value);
                QCOMPARE(sample.radio.com1TransmitEnabled, com1);
                QCOMPARE(sample.radio.com2TransmitEnabled, !com1);
            }
        }
    }

    void reversingIsExactlyThree_data()
    {
        tarvo::test::columns<float, bool>("value", "reversing");
        QTest::newRow("0") << 0.0F << false;
        QTest::newRow("1") << 1.0F << false;
        QTest::newRow("2.9") << 2.9F << false;
        QTest::newRow("3") << 3.0F << true;
        QTest::newRow("3.1") << 3.1F << false;
        QTest::newRow("4") << 4.0F << false;
    }

    void reversingIsExactlyThree()
    {
        QFETCH(float, value);
        QFETCH(bool, reversing);
        DatarefSample sample;
        for (quint32 id = 40; id <= 43; ++id)
            applyDataref(sample, id, value);
        QCOMPARE(sample.config.engine1Reversing, reversing);
        QCOMPARE(sample.config.engine2Reversing, reversing);
        QCOMPARE(sample.config.engine3Reversing, reversing);
        QCOMPARE(sample.config.engine4Reversing, reversing);
    }

    void eachEngineHasItsOwnReverser()
    {
        DatarefSample sample;
        applyDataref(sample, 42, 3);
        QCOMPARE(sample.config.engine1Reversing, false);
        QCOMPARE(sample.config.engine2Reversing, false);
        QCOMPARE(sample.config.engine3Reversing, true);
        QCOMPARE(sample.config.engine4Reversing, false);
    }

    void replayIsTold()
    {
        DatarefSample sample;
        QCOMPARE(applyDataref(sample, 50, 0), DatarefEvent::None);
        QCOMPARE(applyDataref(sample, 50, -1), DatarefEvent::None);
        QCOMPARE(applyDataref(sample, 50, 1), DatarefEvent::ReplayMode);
        QCOMPARE(applyDataref(sample, 50, 1), DatarefEvent::ReplayMode); // each time anew
    }

    void pauseIsToldOnAChange()
    {
        DatarefSample sample;
        QCOMPARE(applyDataref(sample, 51, 0), DatarefEvent::None);
        QCOMPARE(applyDataref(sample, 51, 1), DatarefEvent::PausedChanged);
        QVERIFY(sample.paused);
        QCOMPARE(applyDataref(sample, 51, 2), DatarefEvent::None);
        QCOMPARE(applyDataref(sample, 51, 0), DatarefEvent::PausedChanged);
        QVERIFY(!sample.paused);
    }

    void versionIsToldOnAChange()
    {
        DatarefSample sample;
        QCOMPARE(applyDataref(sample, 52, 0), DatarefEvent::None);
        QCOMPARE(applyDataref(sample, 52, 115000), DatarefEvent::VersionChanged);
        QCOMPARE(sample.version, 115000);
        QCOMPARE(applyDataref(sample, 52, 115000), DatarefEvent::None);
        QCOMPARE(applyDataref(sample, 52, 0), DatarefEvent::None);
        QCOMPARE(sample.version, 115000);
        QCOMPARE(applyDataref(sample, 52, 120105), DatarefEvent::VersionChanged);
        QCOMPARE(sample.version, 120105);
        QCOMPARE(applyDataref(sample, 52, notANumber), DatarefEvent::None);
        QCOMPARE(sample.version, 120105);
    }

    void idsOutsideTheTableChangeNothing()
    {
        for (const quint32 id : {53U, 54U, 1000U, 0x7fffffffU, 0xffffffffU}) {
            DatarefSample sample;
            QCOMPARE(applyDataref(sample, id, 3), DatarefEvent::None);
            QVERIFY(sample.user == DatarefSample().user);
            QVERIFY(sample.config == DatarefSample().config);
            QVERIFY(sample.radio == DatarefSample().radio);
            QCOMPARE(sample.version, 0);
        }
    }

    void everyRowReachesAFieldOfItsOwn()
    {
        // Two rows that wrote the same field would leave equal samples.
        const auto equal = [](const DatarefSample &a, const DatarefSample &b) {
            return a.user == b.user && a.config == b.config && a.radio == b.radio && a.paused == b.paused &&
                   a.version == b.version;
        };
        std::vector<DatarefSample> seen;
        for (quint32 id = 0; id < datarefs().size(); ++id) {
            DatarefSample sample;
            const DatarefEvent event = applyDataref(sample, id, id == 1 ? 6.0F : 3.0F);
            if (event == DatarefEvent::ReplayMode)
                continue; // has no field
            for (const DatarefSample &other : seen)
                QVERIFY2(!equal(sample, other), datarefs()[id].name);
            seen.push_back(sample);
        }
        QCOMPARE(seen.size(), 52U);
    }

    void whatCannotBeIsIgnored()
    {
        for (const float value : {notANumber, infinity, -infinity, 3.4e38F, -3.4e38F, 2147483648.0F, -1.1e6F, 1.1e6F}) {
            for (quint32 id = 0; id < datarefs().size(); ++id) {
                DatarefSample sample;
                applyDataref(sample, id, 6);
                const DatarefSample before = sample;
                QCOMPARE(applyDataref(sample, id, value), DatarefEvent::None);
                QVERIFY2(sample.user == before.user && sample.config == before.config && sample.radio == before.radio &&
                             sample.paused == before.paused && sample.version == before.version,
                         datarefs()[id].name);
            }
        }
    }

    void theLargestValueIsBelieved()
    {
        for (quint32 id = 0; id < datarefs().size(); ++id) {
            const float most = datarefs()[id].most;
            QCOMPARE(most, id == 18 ? 90.0F : id == 19 ? 180.0F : id == 12 ? 9999.0F : 1e6F);
        }
        for (const float sign : {1.0F, -1.0F}) {
            DatarefSample sample;
            applyDataref(sample, 18, sign * 90);
            applyDataref(sample, 19, sign * 180);
            applyDataref(sample, 20, sign * 1e6F);
            QCOMPARE(sample.user.latitude, static_cast<double>(sign) * 90);
            QCOMPARE(sample.user.longitude, static_cast<double>(sign) * 180);
            QCOMPARE(sample.user.altitudeMslM, static_cast<double>(sign) * 1e6);
            applyDataref(sample, 18, sign * 90.1F);
            applyDataref(sample, 19, sign * 180.1F);
            QCOMPARE(sample.user.latitude, static_cast<double>(sign) * 90);
            QCOMPARE(sample.user.longitude, static_cast<double>(sign) * 180);
        }
    }

private:
    static void add(const char *name, quint32 id, float value, Reader field, double expected)
    {
        QTest::newRow(name) << id << value << field << expected;
    }

    static void addRadioRows()
    {
        const Reader com1 = FIELD(radio.com1Frequency);
        add("COM1", 4, 118275, com1, 118275);
        add("COM1 truncated", 4, 118275.75F, com1, 118275);
        add("COM1 negative", 4, -5, com1, 0);
        add("COM1 not a number", 4, notANumber, com1, 0);
        add("COM1 too large", 4, infinity, com1, 0);
        add("COM1 standby", 5, 121800, FIELD(radio.com1StandbyFrequency), 121800);
        add("COM2", 6, 122805, FIELD(radio.com2Frequency), 122805);
        add("COM2 standby", 7, 136990, FIELD(radio.com2StandbyFrequency), 136990);
    }

    static void addAudioAndTransponderRows()
    {
        const Reader volume1 = FIELD(radio.com1Volume);
        add("volume 0", 8, 0, volume1, 0);
        add("volume 0.5", 8, 0.5F, volume1, 50);
        add("volume 0.004 rounds down", 8, 0.004F, volume1, 0);
        add("volume 0.006 rounds up", 8, 0.006F, volume1, 1);
        add("volume 0.999 rounds up", 8, 0.999F, volume1, 100);
        add("volume 1", 8, 1, volume1, 100);
        add("volume 1.2 is cut", 8, 1.2F, volume1, 100);
        add("volume -0.1 is cut", 8, -0.1F, volume1, 0);
        add("volume not a number", 8, notANumber, volume1, 0);
        add("COM2 volume", 9, 0.25F, FIELD(radio.com2Volume), 25);
        const Reader modeC = FIELD(radio.squawkingModeC);
        add("transponder 0", 10, 0, modeC, 0);
        add("transponder 2 is no mode C", 10, 2, modeC, 0);
        add("transponder 2.9 is no mode C", 10, 2.9F, modeC, 0);
        add("transponder 3 is mode C", 10, 3, modeC, 1);
        add("transponder 5 is mode C", 10, 5, modeC, 1);
        const Reader code = FIELD(radio.transponderCode);
        add("code", 12, 2000, code, 2000);
        add("code truncated", 12, 7777.9F, code, 7777);
        add("code negative", 12, -1, code, 0);
        add("code of four digits", 12, 9999, code, 9999);
    }

    static void addPositionRows()
    {
        add("latitude", 18, 40.25F, FIELD(user.latitude), 40.25);
        add("latitude keeps its single precision", 18, 40.1F, FIELD(user.latitude), static_cast<double>(40.1F));
        add("longitude", 19, -116.5F, FIELD(user.longitude), -116.5);
        add("elevation", 20, 3048, FIELD(user.altitudeMslM), 3048);
        add("height", 21, 12.5F, FIELD(user.altitudeAglM), 12.5);
        add("pressure altitude", 22, 9850, FIELD(user.altitudePressure), 9850);
        add("QNH", 23, 30, FIELD(user.qnh), 1015.917);
        add("temperature error", 24, -250, FIELD(user.temperatureError), -250);
        add("nose wheel", 49, -12.5F, FIELD(user.noseWheelAngle), -12.5);
    }

    static void addMotionRows()
    {
        add("ground speed", 25, 100, FIELD(user.groundSpeed), 194.384);
        add("pitch", 26, 2.5F, FIELD(user.pitch), 2.5);
        add("heading", 27, 359, FIELD(user.heading), 359);
        add("bank", 28, -30, FIELD(user.bank), -30);
        add("local_vz is negated", 29, 4, FIELD(user.latitudeVelocity), -4);
        add("local_vy", 30, 5, FIELD(user.altitudeVelocity), 5);
        add("local_vx", 31, 6, FIELD(user.longitudeVelocity), 6);
        add("Qrad is negated", 32, 0.5F, FIELD(user.pitchVelocity), -0.5);
        add("Rrad is not negated", 33, 0.25F, FIELD(user.headingVelocity), 0.25);
        add("Prad is negated", 34, 0.125F, FIELD(user.bankVelocity), -0.125);
    }

    static void addConfigRows()
    {
        const Reader engines = FIELD(config.engineCount);
        add("engines", 35, 2, engines, 2);
        add("engines truncated", 35, 3.9F, engines, 3);
        add("engines negative", 35, -1.9F, engines, -1);
        add("flaps", 46, 0.375F, FIELD(config.flapsRatio), 0.375);
        add("speed brake", 47, 0.75F, FIELD(config.speedbrakeRatio), 0.75);
        const Reader armed = FIELD(config.speedbrakeArmed);
        add("speed brake armed at 0.5: no", 48, 0.5F, armed, 0);
        add("speed brake armed above 0.5", 48, 0.51F, armed, 1);
        add("speed brake armed at -1: no", 48, -1, armed, 0);
    }
};

#undef FIELD

TARVO_TEST(DatarefTableTest)
#include "DatarefTableTest.moc"

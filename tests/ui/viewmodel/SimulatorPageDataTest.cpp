#include "ui/viewmodel/SimulatorPageViewModel.h"

#include "SimulatorPageFixture.h"
#include "support/OddNumbers.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using namespace tarvo::test;
using tarvo::ui::SimulatorPageViewModel;

namespace {

/// A sample that is all zeros but for the edit makes the text.
void row(const char *name, const Edit &edit, const char *property, const char16_t *text)
{
    QTest::newRow(name) << edit << QByteArray(property) << QString::fromUtf16(text);
}

void addTuning()
{
    row(
        "frequency", [](Own &o) { o.radio.com1Frequency = 121800; }, "com1Frequency", u"121.800");
    row(
        "8.33 channel", [](Own &o) { o.radio.com2Frequency = 118005; }, "com2Frequency", u"118.005");
    row(
        "absurd frequency", [](Own &o) { o.radio.com1Frequency = 4294967295U; }, "com1Frequency", u"4294967.295");
    row(
        "code", [](Own &o) { o.radio.transponderCode = 7700; }, "transponderCode", u"7700");
    row(
        "short code", [](Own &o) { o.radio.transponderCode = 21; }, "transponderCode", u"0021");
}

void addSurfaces()
{
    row(
        "flaps", [](Own &o) { o.config.flapsRatio = 0.126; }, "flapsLabel", u"13%");
    row(
        "full flaps", [](Own &o) { o.config.flapsRatio = 1; }, "flapsLabel", u"100%");
    row(
        "flaps a hair below", [](Own &o) { o.config.flapsRatio = -0.001; }, "flapsLabel", u"0%");
    row(
        "flaps not a number", [](Own &o) { o.config.flapsRatio = notANumber; }, "flapsLabel", u"0%");
    row(
        "flaps infinite", [](Own &o) { o.config.flapsRatio = infinite; }, "flapsLabel", u"0%");
    row(
        "flaps absurd", [](Own &o) { o.config.flapsRatio = 1e300; }, "flapsLabel", u"--%");
    row(
        "speedbrake", [](Own &o) { o.config.speedbrakeRatio = 0.5; }, "speedbrakeLabel", u"50%");
    row(
        "speedbrake armed", [](Own &o) { o.config.speedbrakeArmed = true; }, "speedbrakeLabel", u"预位");
    row(
        "armed and deployed",
        [](Own &o) {
            o.config.speedbrakeArmed = true;
            o.config.speedbrakeRatio = 0.5;
        },
        "speedbrakeLabel", u"50%");
    row(
        "armed, not a number",
        [](Own &o) {
            o.config.speedbrakeArmed = true;
            o.config.speedbrakeRatio = notANumber;
        },
        "speedbrakeLabel", u"预位");
}

void addActiveRadios()
{
    row(
        "transmits on COM1",
        [](Own &o) {
            o.radio.com1TransmitEnabled = true;
            o.radio.com1Frequency = 121800;
        },
        "activeTransmitLabel", u"COM1 121.800");
    row(
        "transmits on COM2",
        [](Own &o) {
            o.radio.com2TransmitEnabled = true;
            o.radio.com2Frequency = 124550;
        },
        "activeTransmitLabel", u"COM2 124.550");
    row(
        "transmits on both shows COM1",
        [](Own &o) { o.radio.com1TransmitEnabled = o.radio.com2TransmitEnabled = true; }, "activeTransmitLabel",
        u"COM1 0.000");
    row(
        "transmits on none", [](Own &o) { o.radio.com1ReceiveEnabled = true; }, "activeTransmitLabel", u"无");
    row(
        "receives on COM2",
        [](Own &o) {
            o.radio.com2ReceiveEnabled = true;
            o.radio.com2Frequency = 124550;
        },
        "activeReceiveLabel", u"COM2 124.550");
    row(
        "receives on both",
        [](Own &o) {
            o.radio.com1ReceiveEnabled = o.radio.com2ReceiveEnabled = true;
            o.radio.com1Frequency = 121800;
            o.radio.com2Frequency = 124550;
        },
        "activeReceiveLabel", u"COM1 121.800 / COM2 124.550");
    row(
        "receives on none", [](Own &o) { o.radio.com1TransmitEnabled = true; }, "activeReceiveLabel", u"无");
}

void addMotion()
{
    row(
        "standing still", [](Own &) {}, "motionSummary", u"地速 0 节 | 垂直速度 0.0 m/s | 前轮角 0.0°");
    row(
        "moving",
        [](Own &o) {
            o.aircraft.groundSpeed = 267.6;
            o.aircraft.altitudeVelocity = -7.26;
            o.aircraft.noseWheelAngle = 3.04;
        },
        "motionSummary", u"地速 268 节 | 垂直速度 -7.3 m/s | 前轮角 3.0°");
    row(
        "no minus before zero",
        [](Own &o) {
            o.aircraft.groundSpeed = -0.4;
            o.aircraft.altitudeVelocity = -0.04;
            o.aircraft.noseWheelAngle = -0.0;
        },
        "motionSummary", u"地速 0 节 | 垂直速度 0.0 m/s | 前轮角 0.0°");
    row(
        "not numbers",
        [](Own &o) {
            o.aircraft.groundSpeed = notANumber;
            o.aircraft.altitudeVelocity = infinite;
            o.aircraft.noseWheelAngle = -infinite;
        },
        "motionSummary", u"地速 -- 节 | 垂直速度 -- m/s | 前轮角 --°");
}

void addEngines()
{
    row(
        "no engine", [](Own &o) { o.config.engine1Running = true; }, "engineSummary", u"未检测到发动机");
    row(
        "fewer than none", [](Own &o) { o.config.engineCount = -1; }, "engineSummary", u"未检测到发动机");
    row(
        "two engines, one runs",
        [](Own &o) {
            o.config.engineCount = 2;
            o.config.engine2Running = true;
        },
        "engineSummary", u"2 台发动机 | 1 台运行中 | 0 台反推");
    row(
        "engines beyond the count are not counted",
        [](Own &o) {
            o.config.engineCount = 1;
            o.config.engine1Running = o.config.engine2Running = true;
            o.config.engine3Reversing = true;
        },
        "engineSummary", u"1 台发动机 | 1 台运行中 | 0 台反推");
    row(
        "four reverse",
        [](Own &o) {
            o.config.engineCount = 4;
            o.config.engine1Reversing = o.config.engine2Reversing = true;
            o.config.engine3Reversing = o.config.engine4Reversing = true;
        },
        "engineSummary", u"4 台发动机 | 0 台运行中 | 4 台反推");
    row(
        "more engines than are known", [](Own &o) { o.config.engineCount = 2147483647; }, "engineSummary",
        u"2147483647 台发动机 | 0 台运行中 | 0 台反推");
}

/// The edit is passed on as the property's value; the row is the property's name.
void row(const char *property, const Edit &edit, const QVariant &value)
{
    QTest::newRow(property) << edit << value;
}

void addMotionFields()
{
    row(
        "simPaused", [](Own &o) { o.paused = true; }, true);
    row(
        "latitude", [](Own &o) { o.aircraft.latitude = 1; }, 1.0);
    row(
        "longitude", [](Own &o) { o.aircraft.longitude = 2; }, 2.0);
    row(
        "altitudeMslM", [](Own &o) { o.aircraft.altitudeMslM = 3; }, 3.0);
    row(
        "altitudeAglM", [](Own &o) { o.aircraft.altitudeAglM = 4; }, 4.0);
    row(
        "altitudePressure", [](Own &o) { o.aircraft.altitudePressure = 5; }, 5.0);
    row(
        "heading", [](Own &o) { o.aircraft.heading = 6; }, 6.0);
    row(
        "groundSpeed", [](Own &o) { o.aircraft.groundSpeed = 7; }, 7.0);
    row(
        "pitch", [](Own &o) { o.aircraft.pitch = 8; }, 8.0);
    row(
        "bank", [](Own &o) { o.aircraft.bank = 9; }, 9.0);
    row(
        "latitudeVelocity", [](Own &o) { o.aircraft.latitudeVelocity = 10; }, 10.0);
    row(
        "longitudeVelocity", [](Own &o) { o.aircraft.longitudeVelocity = 11; }, 11.0);
    row(
        "altitudeVelocity", [](Own &o) { o.aircraft.altitudeVelocity = 12; }, 12.0);
    row(
        "pitchVelocity", [](Own &o) { o.aircraft.pitchVelocity = 13; }, 13.0);
    row(
        "headingVelocity", [](Own &o) { o.aircraft.headingVelocity = 14; }, 14.0);
    row(
        "bankVelocity", [](Own &o) { o.aircraft.bankVelocity = 15; }, 15.0);
    row(
        "noseWheelAngle", [](Own &o) { o.aircraft.noseWheelAngle = 16; }, 16.0);
}

void addConfigurationFields()
{
    row(
        "onGround", [](Own &o) { o.config.onGround = true; }, true);
    row(
        "gearDown", [](Own &o) { o.config.gearDown = true; }, true);
    row(
        "beaconOn", [](Own &o) { o.config.beaconOn = true; }, true);
    row(
        "landingLightsOn", [](Own &o) { o.config.landingLightsOn = true; }, true);
    row(
        "taxiLightsOn", [](Own &o) { o.config.taxiLightsOn = true; }, true);
    row(
        "navLightsOn", [](Own &o) { o.config.navLightsOn = true; }, true);
    row(
        "strobesOn", [](Own &o) { o.config.strobesOn = true; }, true);
    row(
        "engineCount", [](Own &o) { o.config.engineCount = 4; }, 4);
    row(
        "flapsRatio", [](Own &o) { o.config.flapsRatio = 0.4; }, 0.4);
    row(
        "speedbrakeRatio", [](Own &o) { o.config.speedbrakeRatio = 0.6; }, 0.6);
    row(
        "speedbrakeArmed", [](Own &o) { o.config.speedbrakeArmed = true; }, true);
}

void addRadioFields()
{
    row(
        "avionicsPowerOn", [](Own &o) { o.radio.avionicsPowerOn = true; }, true);
    row(
        "com1ReceiveEnabled", [](Own &o) { o.radio.com1ReceiveEnabled = true; }, true);
    row(
        "com2ReceiveEnabled", [](Own &o) { o.radio.com2ReceiveEnabled = true; }, true);
    row(
        "com1TransmitEnabled", [](Own &o) { o.radio.com1TransmitEnabled = true; }, true);
    row(
        "com2TransmitEnabled", [](Own &o) { o.radio.com2TransmitEnabled = true; }, true);
    row(
        "com1Volume", [](Own &o) { o.radio.com1Volume = 80; }, 80);
    row(
        "com2Volume", [](Own &o) { o.radio.com2Volume = 90; }, 90);
    row(
        "squawkingModeC", [](Own &o) { o.radio.squawkingModeC = true; }, true);
    row(
        "squawkingIdent", [](Own &o) { o.radio.squawkingIdent = true; }, true);
}

} // namespace

/// The simulator page: what it makes of the own aircraft's data.
class SimulatorPageDataTest : public QObject
{
    Q_OBJECT

private slots:
    void texts_data()
    {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<QByteArray>("property");
        QTest::addColumn<QString>("text");
        addTuning();
        addSurfaces();
        addActiveRadios();
        addMotion();
        addEngines();
    }

    void texts()
    {
        QFETCH(Edit, edit);
        QFETCH(QByteArray, property);
        SimulatorPageViewModel model;
        Own own;
        edit(own);
        feed(model, own);
        QTEST(model.property(property.constData()).toString(), "text");
    }

    void engineStates()
    {
        SimulatorPageViewModel model;
        Own own;
        own.config.engineCount = 2;
        own.config.engine1Running = true;
        own.config.engine2Reversing = true;
        feed(model, own);
        const auto engine = [](int index, bool running, bool reversing, const QString &label) {
            return QVariantMap{
                {u"index"_qs, index}, {u"running"_qs, running}, {u"reversing"_qs, reversing}, {u"label"_qs, label}};
        };
        QCOMPARE(model.engineStates(),
                 (QVariantList{engine(0, true, false, u"ENG1"_qs), engine(1, false, true, u"ENG2"_qs)}));
        own.config.engineCount = 8;
        feed(model, own);
        QCOMPARE(model.engineStates().size(), 4);
        own.config.engineCount = 0;
        feed(model, own);
        QCOMPARE(model.engineStates(), QVariantList());
    }

    void everyFieldTellsOnceAndIsPassedOn_data()
    {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<QVariant>("value");
        addMotionFields();
        addConfigurationFields();
        addRadioFields();
    }

    void everyFieldTellsOnceAndIsPassedOn()
    {
        QFETCH(Edit, edit);
        SimulatorPageViewModel model;
        Own own;
        feed(model, own);
        QSignalSpy data(&model, &SimulatorPageViewModel::dataChanged);
        edit(own);
        feed(model, own);
        feed(model, own);
        QCOMPARE(data.count(), 1);
        QTEST(model.property(QTest::currentDataTag()), "value");
    }

    void theFirstSampleTellsEvenOfZeros()
    {
        SimulatorPageViewModel model;
        QSignalSpy data(&model, &SimulatorPageViewModel::dataChanged);
        feed(model, Own());
        feed(model, Own());
        QCOMPARE(data.count(), 1);
    }
};

TARVO_TEST(SimulatorPageDataTest)
#include "SimulatorPageDataTest.moc"

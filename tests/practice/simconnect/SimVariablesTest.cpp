#include "practice/simconnect/SimVariables.h"
#include "practice/simconnect/SimUnits.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cmath>

using namespace tarvo::practice;

namespace {
AircraftState strangeState()
{
    AircraftState state;
    state.latitude = 40;
    state.longitude = 116.5;
    state.altitudeM = 100;
    state.heightM = 65;
    state.pitch = 4;
    state.bank = -3;
    state.heading = 90;
    state.eastVelocity = 10;
    state.northVelocity = 0;
    state.pitchRate = 0.1;
    state.yawRate = 0.2;
    state.rollRate = 0.3;
    state.noseWheel = 180;
    state.flaps = 0.5;
    state.speedbrake = 0.25;
    state.engine1 = state.reverse = state.modeC = state.beacon = true;
    state.onGround = state.gearDown = false;
    return state;
}

const SimVariable &variable(const QByteArray &name)
{
    return simVariables()[static_cast<std::size_t>(simVariableIndex(name))];
}
} // namespace

class SimVariablesTest : public QObject
{
    Q_OBJECT

private slots:
    void readsTheAeroplane_data()
    {
        QTest::addColumn<QByteArray>("unit");
        QTest::addColumn<double>("value");
        const auto row = [](const char *name, const char *unit, double value) {
            QTest::newRow(name) << QByteArray(unit) << value;
        };
        row("PLANE LATITUDE", "degrees", 40);
        row("PLANE LONGITUDE", "degrees", 116.5);
        row("PLANE ALTITUDE", "meters", 100);
        row("PLANE ALT ABOVE GROUND", "meters", 65);
        row("INDICATED ALTITUDE", "feet", 209.276);
        row("PLANE PITCH DEGREES", "degrees", 4);
        row("PLANE HEADING DEGREES TRUE", "degrees", 90);
        row("PLANE BANK DEGREES", "degrees", -3);
        row("VELOCITY BODY X", "meters per second", -0.0365);
        row("VELOCITY BODY Y", "meters per second", -0.6966);
        row("VELOCITY BODY Z", "meters per second", 9.9756);
        row("ROTATION VELOCITY BODY X", "radians per second", 0.1);
        row("ROTATION VELOCITY BODY Y", "radians per second", 0.2);
        row("ROTATION VELOCITY BODY Z", "radians per second", 0.3);
        row("GROUND VELOCITY", "knots", 19.43844);
        row("GEAR STEER ANGLE:0", "radians", M_PI);
        row("GEAR POSITION", "percent", 0);
        row("GEAR HANDLE POSITION", "bool", 0);
        row("FLAPS HANDLE PERCENT", "percent", 50);
        row("SPOILERS HANDLE POSITION", "percent over 100", 0.25);
        row("SPOILERS LEFT POSITION", "position", 4095.75);
        row("SPOILERS RIGHT POSITION", "position", 4095.75);
        row("L:SpoilersHandle", "number", 0);
        row("NUMBER OF ENGINES", "number", 2);
        row("GENERAL ENG COMBUSTION:1", "bool", 1);
        row("GENERAL ENG COMBUSTION:2", "bool", 0);
        row("TURB ENG REVERSE NOZZLE PERCENT:2", "percent", 100);
        row("TURB ENG REVERSE NOZZLE PERCENT:3", "percent", 0);
        row("LIGHT BEACON", "bool", 1);
        row("LIGHT NAV", "bool", 0);
        row("COM ACTIVE FREQUENCY:1", "Frequency BCD16", 0x1850);
        row("COM ACTIVE FREQUENCY:2", "Frequency BCD16", 0x2150);
        row("TRANSPONDER CODE:1", "Bco16", 0x2000);
        row("TRANSPONDER STATE:1", "enum", 4);
        row("BAROMETER PRESSURE", "millibars", 1017.61);
        row("SIM ON GROUND", "bool", 0);
        row("PAUSE INDICATOR", "bool", 0);
    }

    void readsTheAeroplane()
    {
        QFETCH(QByteArray, unit);
        QFETCH(double, value);
        const QByteArray name = QTest::currentDataTag();
        QVERIFY(simVariableIndex(name) >= 0);
        const SimUnit *in = simUnit(unit, variable(name).quantity);
        QVERIFY(in);
        const double read = in->fromNatural(variable(name).read(strangeState()));
        QVERIFY2(std::abs(read - value) < 0.005, qPrintable(QString::number(read)));
    }

    void convertsThereAndBack_data()
    {
        QTest::addColumn<int>("quantity");
        QTest::addColumn<double>("natural");
        QTest::addColumn<double>("inUnit");
        const auto row = [](const char *unit, Quantity quantity, double natural, double inUnit) {
            QTest::addRow("%s of %d", unit, static_cast<int>(quantity))
                << static_cast<int>(quantity) << natural << inUnit;
        };
        row("Frequency BCD16", Quantity::Frequency, 122'850, 0x2285);
        row("kHz", Quantity::Frequency, 118'025, 118'025);
        row("Bco16", Quantity::Code, 7, 7);
        row("BCO16", Quantity::Code, 7654, 0x7654);
        row("number", Quantity::Code, 7654, 7654);
        row("feet", Quantity::Length, 100, 328.084);
        row("knots", Quantity::Speed, 10, 19.43844);
        row("radians", Quantity::Angle, 90, M_PI / 2);
        row("percent", Quantity::Ratio, 0.5, 50);
        row("position", Quantity::Ratio, 1, 16383);
        row("bool", Quantity::Number, 1, 1);
    }

    void convertsThereAndBack()
    {
        QFETCH(int, quantity);
        QFETCH(double, natural);
        QFETCH(double, inUnit);
        const QByteArray tag = QTest::currentDataTag();
        const SimUnit *unit = simUnit(tag.left(tag.indexOf(" of ")), static_cast<Quantity>(quantity));
        QVERIFY(unit);
        QCOMPARE(unit->fromNatural(natural), inUnit);
        QCOMPARE(unit->toNatural(inUnit), natural);
    }

    void knowsNoOthers()
    {
        QCOMPARE(simVariableIndex("PLANE SMELL"), -1);
        QCOMPARE(simVariableIndex(""), -1);
        QVERIFY(simVariableIndex("plane latitude") >= 0);
        QCOMPARE(simUnit("degrees", Quantity::Length), nullptr);
        QCOMPARE(simUnit("furlongs", Quantity::Length), nullptr);
    }

    void aThirdDecimalIsLostInBcd16()
    {
        const SimUnit *unit = simUnit("Frequency BCD16", Quantity::Frequency);
        QCOMPARE(unit->fromNatural(118'025), 0x1802);
        QCOMPARE(unit->toNatural(0x1802), 118'020);
    }

    void oddNumbersStayInRange()
    {
        for (const char *name : {"Frequency BCD16", "Bco16"}) {
            const SimUnit *unit = simUnit(name, *name == 'F' ? Quantity::Frequency : Quantity::Code);
            for (const double number : {-1.0, 1e300, -1e300}) {
                QVERIFY(unit->fromNatural(number) >= 0 && unit->fromNatural(number) <= 0x9999);
                QVERIFY(std::isfinite(unit->toNatural(number)));
            }
        }
    }

    void aWriteStandsUntilThePilotMoves()
    {
        const int state = simVariableIndex("TRANSPONDER STATE:1");
        AircraftState flown;
        VariableWrites writes;
        QVERIFY(!writes.contains(state));
        writes.write(state, 4, flown);
        QVERIFY(writes.contains(state));
        flown.heading = 90; // something else
        writes.settle(flown);
        QCOMPARE(writes.value(state, flown), 4.0);
        flown.modeC = true;
        writes.settle(flown);
        flown.modeC = false;
        QCOMPARE(writes.value(state, flown), 1.0);
    }
};

TARVO_TEST(SimVariablesTest)
#include "SimVariablesTest.moc"

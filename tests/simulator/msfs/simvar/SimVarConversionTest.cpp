#include "simulator/msfs/simvar/SimVarConversion.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>

using namespace tarvo::simulator::msfs;
using enum SimVarConversion;

class SimVarConversionTest : public QObject
{
    Q_OBJECT

private slots:
    void reads_data()
    {
        tarvo::test::columns<SimVarConversion, QVariant, QVariant>("conversion", "wire", "value");
        const auto add = [](const char *name, SimVarConversion conversion, const QVariant &wire,
                            const QVariant &value) { QTest::newRow(name) << conversion << wire << value; };
        add("as it is: number", None, -3.25, -3.25);
        add("as it is: bool", None, true, true);
        add("as it is: text", None, QStringLiteral("x"), QStringLiteral("x"));
        add("frequency", FrequencyBcd16, double(0x2285), 122.85);
        add("frequency without its third decimal", FrequencyBcd16, double(0x1802), 118.02);
        add("highest frequency", FrequencyBcd16, double(0x3697), 136.97);
        add("no frequency", FrequencyBcd16, 0.0, 100.0);
        add("frequency beyond four nibbles", FrequencyBcd16, double(0x92285), 122.85);
        add("frequency that is no number", FrequencyBcd16, std::numeric_limits<double>::quiet_NaN(), 100.0);
        add("frequency beyond all", FrequencyBcd16, 1e300, 100.0);
        add("code 7000", Bco16, 0x7000, 7000);
        add("code 0007", Bco16, 0x0007, 7);
        add("code 1234", Bco16, 0x1234, 1234);
        add("code below zero: its lowest four nibbles", Bco16, -1, 16665);
        add("reverser at a hundredth", ReverserRatio, 0.01, false);
        add("reverser just above", ReverserRatio, 0.0101, true);
        add("reverser closed", ReverserRatio, 0.0, false);
        add("reverser full", ReverserRatio, 100.0, true);
        add("half a turn", RadiansToDegrees, 3.141592653589793, 180.0);
        add("a turn to the left", RadiansToDegrees, -0.017453292519943295, -1.0);
        add("position 0", Position16K, 0.0, 0.0);
        add("position half", Position16K, 8191.5, 0.5);
        add("position full", Position16K, 16383.0, 1.0);
        add("position above", Position16K, 20000.0, 1.0);
        add("position below", Position16K, -1.0, 0.0);
        add("percent", PercentOrRatio, 50.0, 0.5);
        add("ratio", PercentOrRatio, 0.5, 0.5);
        add("one is a ratio", PercentOrRatio, 1.0, 1.0);
        add("just above one is percent", PercentOrRatio, 1.5, 0.015);
        add("percent above all", PercentOrRatio, 150.0, 1.0);
        add("ratio below", PercentOrRatio, -0.5, 0.0);
    }

    void reads()
    {
        QFETCH(SimVarConversion, conversion);
        QFETCH(QVariant, wire);
        checkSame(fromWire(conversion, wire));
    }

    void writes_data()
    {
        tarvo::test::columns<SimVarConversion, QVariant, QVariant>("conversion", "written", "value");
        const auto add = [](const char *name, SimVarConversion conversion, const QVariant &written,
                            const QVariant &value) { QTest::newRow(name) << conversion << written << value; };
        add("as it is", None, 4, 4);
        add("frequency", FrequencyBcd16, 122.85, 0x2285);
        add("third decimal is lost", FrequencyBcd16, 118.025, 0x1802);
        add("kilohertz are rounded", FrequencyBcd16, 121.4999, 0x2150);
        add("the hundreds are lost", FrequencyBcd16, 236.97, 0x3697);
        add("frequency below zero", FrequencyBcd16, -1.0, 0);
        add("code 7", Bco16, 7, 0x0007);
        add("code 7000", Bco16, 7000, 0x7000);
        add("code below zero", Bco16, -1234, 0x1234);
        add("lowest four digits", Bco16, 127654, 0x7654);
        add("reverser on", ReverserRatio, true, 100.0);
        add("reverser off", ReverserRatio, false, 0.0);
        add("degrees", RadiansToDegrees, 180.0, 3.141592653589793);
        add("position", Position16K, 0.5, 8191.5);
        add("position above", Position16K, 1.5, 16383.0);
        add("position below", Position16K, -0.5, 0.0);
        add("ratio", PercentOrRatio, 0.5, 0.5);
        add("ratio above", PercentOrRatio, 50.0, 1.0);
        add("ratio below", PercentOrRatio, -1.0, 0.0);
    }

    void writes()
    {
        QFETCH(SimVarConversion, conversion);
        QFETCH(QVariant, written);
        checkSame(toWire(conversion, written));
    }

    void everyFrequencyOfTheBandComesBack()
    {
        for (int channel = 11800; channel <= 13699; ++channel) {
            const double megahertz = channel / 100.0;
            const QVariant wire(toWire(FrequencyBcd16, megahertz).toDouble());
            QCOMPARE(fromWire(FrequencyBcd16, wire).toDouble(), megahertz);
        }
    }

    void everyCodeComesBack()
    {
        for (int code = 0; code <= 7777; ++code)
            QCOMPARE(fromWire(Bco16, toWire(Bco16, code)).toInt(), code);
    }

private:
    /// Of the same type too, and doubles as near as QCOMPARE wants them.
    static void checkSame(const QVariant &actual)
    {
        QFETCH(QVariant, value);
        QCOMPARE(actual.typeId(), value.typeId());
        if (value.typeId() == QMetaType::Double)
            QCOMPARE(actual.toDouble(), value.toDouble());
        else
            QCOMPARE(actual, value);
    }
};

TARVO_TEST(SimVarConversionTest)
#include "SimVarConversionTest.moc"

#include "simulator/msfs/RadioFrequency.h"
#include "support/OddNumbers.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cstdlib>

using namespace tarvo::simulator::msfs;
using tarvo::test::infinite;
using tarvo::test::notANumber;

class RadioFrequencyTest : public QObject
{
    Q_OBJECT

private slots:
    void hertz_data()
    {
        QTest::addColumn<float>("given");
        QTest::addColumn<quint32>("hertz");
        QTest::newRow("megahertz") << 118.5F << 118'500'000U;
        QTest::newRow("kilohertz") << 118'500.0F << 118'500'000U;
        QTest::newRow("hertz") << 118'500'000.0F << 118'500'000U;
        QTest::newRow("below 0") << -1.0F << 0U;
        QTest::newRow("0") << 0.0F << 0U;
        QTest::newRow("channel of 8.33 kHz") << 118'005.0F << 118'005'000U;
        QTest::newRow("highest channel") << 136'990.0F << 136'990'000U;
        QTest::newRow("megahertz in single precision") << 118.025F << 118'025'000U;
        QTest::newRow("1000 is megahertz") << 1'000.0F << 1'000'000'000U;
        QTest::newRow("just above is kilohertz") << 1'000.5F << 1'000'500U;
        QTest::newRow("half a hertz more") << 1'000.0625F << 1'000'063U;
        QTest::newRow("1,000,000 is kilohertz") << 1'000'000.0F << 1'000'000'000U;
        QTest::newRow("just above is hertz") << 1'000'001.0F << 1'000'001U;
        QTest::newRow("half away from zero") << 0.0000005F << 1U;
        QTest::newRow("less than half") << 0.0000004F << 0U;
        QTest::newRow("more than fits") << 1e20F << 0xFFFFFFFFU;
        QTest::newRow("more than fits, as megahertz times") << 5e9F << 0xFFFFFFFFU;
        QTest::newRow("no number") << float(notANumber) << 0U;
        QTest::newRow("infinite") << float(infinite) << 0xFFFFFFFFU;
    }

    void hertz()
    {
        QFETCH(float, given);
        QTEST(hertzOf(given), "hertz");
    }

    /// What a page asks for is what the simulator is told, but for what single precision loses above 2^27 Hz.
    void everyChannelIsTold()
    {
        for (quint32 kilohertz = 118'000; kilohertz < 137'000; kilohertz += 5) {
            const qint64 off = qint64(hertzOf(static_cast<float>(kilohertz))) - qint64(kilohertz) * 1000;
            QVERIFY2(std::abs(off) <= (kilohertz < 134'218 ? 0 : 8), qPrintable(QString::number(kilohertz)));
        }
    }

    void kilohertz_data()
    {
        QTest::addColumn<double>("given");
        QTest::addColumn<quint32>("kilohertz");
        QTest::newRow("megahertz") << 122.85 << 122'850U;
        QTest::newRow("megahertz to the nearest") << 118.02 << 118'020U;
        QTest::newRow("half away from zero") << 0.0005 << 1U;
        QTest::newRow("1000 is megahertz") << 1000.0 << 1'000'000U;
        QTest::newRow("above is kilohertz") << 118'275.0 << 118'275U;
        QTest::newRow("kilohertz to the nearest") << 118'274.5 << 118'275U;
        QTest::newRow("just above 1000") << 1000.4 << 1000U;
        QTest::newRow("0") << 0.0 << 0U;
        QTest::newRow("below 0") << -122.8 << 0U;
        QTest::newRow("more than fits") << 1e20 << 0xFFFFFFFFU;
        QTest::newRow("no number") << notANumber << 0U;
    }

    void kilohertz()
    {
        QFETCH(double, given);
        QTEST(kilohertzOf(given), "kilohertz");
    }
};

TARVO_TEST(RadioFrequencyTest)
#include "RadioFrequencyTest.moc"

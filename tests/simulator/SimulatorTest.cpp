#include "simulator/Simulator.h"
#include "support/TestRegistry.h"

#include <QTest>

using tarvo::simulator::SimulatorType;
using tarvo::simulator::simulatorTypeName;

class SimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void typeIsCalled_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("name");
        QTest::newRow("nothing known") << 0 << "Unknown";
        QTest::newRow("MSFS 2020") << 1 << "MFS2020";
        QTest::newRow("MSFS 2024") << 2 << "MFS2024";
        QTest::newRow("X-Plane 10") << 3 << "XPlane10";
        QTest::newRow("X-Plane 11") << 4 << "XPlane11";
        QTest::newRow("X-Plane 12") << 5 << "XPlane12";
        QTest::newRow("beyond the known ones") << 6 << "Unknown";
        QTest::newRow("largest byte") << 255 << "Unknown";
    }

    void typeIsCalled()
    {
        QFETCH(int, type);
        QTEST(simulatorTypeName(static_cast<SimulatorType>(type)), "name");
    }
};

TARVO_TEST(SimulatorTest)
#include "SimulatorTest.moc"

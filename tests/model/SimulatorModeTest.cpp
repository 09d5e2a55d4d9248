#include "model/SimulatorMode.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::model;

class SimulatorModeTest : public QObject
{
    Q_OBJECT

private slots:
    void hasOneTextEach_data()
    {
        QTest::addColumn<SimulatorMode>("mode");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << SimulatorMode::None << QStringLiteral("NONE");
        QTest::newRow("MSFS") << SimulatorMode::Msfs << QStringLiteral("MSFS");
        QTest::newRow("X-Plane") << SimulatorMode::XPlane << QStringLiteral("XPLANE");
    }
    void hasOneTextEach()
    {
        QFETCH(SimulatorMode, mode);
        QFETCH(QString, text);
        QCOMPARE(modeText(mode), text);
        QCOMPARE(modeFromText(text), mode);
    }

    void anyOtherTextIsNone()
    {
        for (const char *text : {"", "xplane", "GLIDER", "XPLANE "})
            QCOMPARE(modeFromText(QString::fromLatin1(text)), SimulatorMode::None);
    }
};

TARVO_TEST(SimulatorModeTest)
#include "SimulatorModeTest.moc"

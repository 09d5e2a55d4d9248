#include "simulator/msfs/session/RuntimeDetection.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;

/// Which of the two simulators it is, by the library and by what it calls itself.
class RuntimeDetectionTest : public QObject
{
    Q_OBJECT

private slots:
    void libraries_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<MsfsRuntimeProfile>("profile");
        QTest::newRow("2024") << QStringLiteral("SimConnect2024.dll") << MsfsRuntimeProfile::Msfs2024;
        QTest::newRow("2024 in capitals") << QStringLiteral("SIMCONNECT2024.DLL") << MsfsRuntimeProfile::Msfs2024;
        QTest::newRow("2020") << QStringLiteral("SimConnect.dll") << MsfsRuntimeProfile::Msfs2020;
        QTest::newRow("any other") << QStringLiteral("MySimConnect2024.dll") << MsfsRuntimeProfile::Msfs2020;
    }

    void libraries()
    {
        QFETCH(QString, name);
        QTEST(profileOfLibrary(name), "profile");
    }

    void applications_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<quint32>("major");
        QTest::addColumn<MsfsRuntimeProfile>("profile");
        const auto add = [](const char *name, quint32 major, MsfsRuntimeProfile profile) {
            QTest::addRow("%s, %u", name, major) << QString::fromLatin1(name) << major << profile;
        };
        add("Microsoft Flight Simulator 2024", 1, MsfsRuntimeProfile::Msfs2024);
        add("Limitless", 0, MsfsRuntimeProfile::Msfs2024);
        add("lIMITLESS edition", 1, MsfsRuntimeProfile::Msfs2024);
        add("Anything", 2, MsfsRuntimeProfile::Msfs2024);
        add("Anything", 11, MsfsRuntimeProfile::Msfs2024);
        add("Microsoft Flight Simulator 2020", 2, MsfsRuntimeProfile::Msfs2024);
        add("Microsoft Flight Simulator 2020", 1, MsfsRuntimeProfile::Msfs2020);
        add("Simulator 2020", 0, MsfsRuntimeProfile::Msfs2020);
        add("FLIGHT simulator", 0, MsfsRuntimeProfile::Msfs2020);
        add("Anything", 1, MsfsRuntimeProfile::Msfs2020);
        add("Anything", 0, MsfsRuntimeProfile::Unknown);
        add("", 0, MsfsRuntimeProfile::Unknown);
    }

    void applications()
    {
        QFETCH(QString, name);
        QFETCH(quint32, major);
        QTEST(profileOfApplication(name, major), "profile");
    }
};

TARVO_TEST(RuntimeDetectionTest)
#include "RuntimeDetectionTest.moc"

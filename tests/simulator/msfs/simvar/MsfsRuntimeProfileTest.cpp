#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"
#include "support/TestRegistry.h"

#include <QMetaType>
#include <QTest>

using tarvo::simulator::msfs::MsfsRuntimeProfile;

class MsfsRuntimeProfileTest : public QObject
{
    Q_OBJECT

private slots:
    void names_data()
    {
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("name");
        QTest::newRow("unknown") << 0 << QStringLiteral("Unknown");
        QTest::newRow("2020") << 1 << QStringLiteral("MSFS 2020");
        QTest::newRow("2024") << 2 << QStringLiteral("MSFS 2024");
        QTest::newRow("no such") << 3 << QStringLiteral("Unknown");
    }

    void names()
    {
        QFETCH(int, value);
        QTEST(displayName(static_cast<MsfsRuntimeProfile>(value)), "name");
    }

    void isAMetaType()
    {
        QCOMPARE(QMetaType::fromType<MsfsRuntimeProfile>().name(), "tarvo::simulator::msfs::MsfsRuntimeProfile");
    }
};

TARVO_TEST(MsfsRuntimeProfileTest)
#include "MsfsRuntimeProfileTest.moc"

#include "app/InstanceProcess.h"
#include "app/SingleInstance.h"
#include "support/SmallDisk.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTest>

#include <chrono>

using namespace std::chrono_literals;
using tarvo::app::SingleInstance;
using tarvo::test::InstanceProcess;
using tarvo::test::SmallDisk;

/// The data root has become read-only since an earlier start.
class ReadOnlyRootTest : public QObject
{
    Q_OBJECT

private slots:
    void theLockOfAKilledOneKeepsNobodyOut()
    {
        const SmallDisk disk;
        if (!disk.isThere())
            QSKIP("nothing may be mounted here");
        {
            InstanceProcess killed(disk.path());
            QCOMPARE(killed.line(), QByteArray("first"));
            killed.process.kill();
            QVERIFY(killed.process.waitForFinished());
        }
        QVERIFY(QFile::exists(disk.filePath(QStringLiteral("TarvoClient.lock"))));
        QVERIFY(disk.lock());
        SingleInstance instance(disk.path());
        QCOMPARE(instance.start(0ms), SingleInstance::Outcome::First);
        QVERIFY2(instance.warning().startsWith(QStringLiteral("Another start is not kept out: ")),
                 qPrintable(instance.warning()));
    }
};

TARVO_TEST(ReadOnlyRootTest)
#include "ReadOnlyRootTest_linux.moc"

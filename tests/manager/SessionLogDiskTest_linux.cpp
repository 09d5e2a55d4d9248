#include "manager/SessionLog.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/SmallDisk.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTest>

using namespace tarvo::manager;
using namespace tarvo::test;

/// The network log on a disk that is full for a while.
class SessionLogDiskTest : public QObject
{
    Q_OBJECT

    static QByteArray contents(const SessionLog &log)
    {
        QFile file(log.path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }

private slots:
    void itGoesOnWhenThereIsRoomAgain()
    {
        const SmallDisk disk;
        if (!disk.isThere())
            QSKIP("nothing may be mounted here");
        const ManualClock clock;
        const LogCapture said;
        SessionLog log(disk.path(), clock);
        log.writeSent(QStringLiteral("first"), {});
        log.stopFlushing();
        const QByteArray before = contents(log);
        QVERIFY(before.endsWith(">>> first\n"));
        QVERIFY(disk.fill());
        for (int second = 0; second < 20; ++second) {
            for (int line = 0; line < 50; ++line)
                log.writeReceived(QString(100, u'y'), {});
            log.stopFlushing();
        }
        QVERIFY(contents(log).startsWith(before));
        QCOMPARE(said.startingWith(QStringLiteral("Lines of the network log may be lost:")).size(), 1);
        QVERIFY(disk.clear());
        log.writeSent(QStringLiteral("last"), {});
        log.stopFlushing();
        const QByteArray after = contents(log);
        QVERIFY(after.startsWith(before));
        QVERIFY(after.endsWith(">>> last\n"));
        QVERIFY2(after.size() < 60'000, "what the disk didn't take was kept"); // of 130,000
    }
};

TARVO_TEST(SessionLogDiskTest)
#include "SessionLogDiskTest_linux.moc"

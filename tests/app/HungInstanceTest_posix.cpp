#include "app/InstanceProcess.h"
#include "support/TestRegistry.h"

#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using tarvo::test::InstanceProcess;

/// The first copy of the program is stopped, as by a debugger.
class HungInstanceTest : public QObject
{
    Q_OBJECT

private slots:
    void aStoppedOneIsWaitedForAndKeepsItsRoot()
    {
        const QTemporaryDir folder;
        InstanceProcess first(folder.path());
        QCOMPARE(first.line(), QByteArray("first"));
        const auto pid = static_cast<pid_t>(first.process.processId());
        QCOMPARE(kill(pid, SIGSTOP), 0);
        InstanceProcess hasty(folder.path());
        QCOMPARE(hasty.line(), QByteArray("no answer"));
        QCOMPARE(hasty.exitCode(), 1);
        InstanceProcess patient(folder.path(), u"patient"_qs);
        QVERIFY(patient.process.waitForStarted());
        QCOMPARE(kill(pid, SIGCONT), 0);
        QCOMPARE(patient.line(), QByteArray("shown"));
        QCOMPARE(patient.exitCode(), 0);
    }
};

TARVO_TEST(HungInstanceTest)
#include "HungInstanceTest_posix.moc"

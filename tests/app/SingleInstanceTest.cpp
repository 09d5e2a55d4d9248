#include "app/SingleInstance.h"

#include "app/InstanceProcess.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QTemporaryDir>
#include <QTest>

#include <chrono>
#include <memory>

using namespace std::chrono_literals;
using tarvo::app::SingleInstance;
using tarvo::test::InstanceProcess;

class SingleInstanceTest : public QObject
{
    Q_OBJECT

    QString root() const { return m_folder->path(); }
    QString lockName() const { return root() + u"/TarvoClient.lock"_qs; }

    /// What a program leaves in its lock file when it is killed.
    static QByteArray lockText(qint64 pid, const QByteArray &host, const QByteArray &hostId)
    {
        return QByteArray::number(pid) + "\napp_instance\n" + host + '\n' + hostId + "\n\n";
    }
    static qint64 goneProcess()
    {
        InstanceProcess gone(QTemporaryDir().path());
        return gone.process.processId();
    }
    void writeLock(const QByteArray &text) const
    {
        QFile file(lockName());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    std::unique_ptr<QTemporaryDir> m_folder;

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void theSecondStartBringsTheFirstForwardAndEnds()
    {
        InstanceProcess first(root());
        QCOMPARE(first.line(), QByteArray("first"));
        for (int start = 0; start < 3; ++start) {
            InstanceProcess second(root(), u"patient"_qs);
            QCOMPARE(second.line(), QByteArray("shown"));
            QCOMPARE(second.exitCode(), 0);
            QCOMPARE(first.line(), QByteArray("wanted"));
        }
    }

    void theRootIsTheSameHoweverItIsWritten()
    {
        InstanceProcess first(root());
        QCOMPARE(first.line(), QByteArray("first"));
        InstanceProcess second(root() + u"/../"_qs + QDir(root()).dirName() + u'/', u"patient"_qs);
        QCOMPARE(second.line(), QByteArray("shown"));
    }

    void anotherRootIsFree()
    {
        const QTemporaryDir other;
        InstanceProcess first(root());
        QCOMPARE(first.line(), QByteArray("first"));
        InstanceProcess second(other.path());
        QCOMPARE(second.line(), QByteArray("first"));
    }

    void afterTheFirstsEndTheNextIsFirst()
    {
        {
            InstanceProcess first(root());
            QCOMPARE(first.line(), QByteArray("first"));
        }
        InstanceProcess next(root());
        QCOMPARE(next.line(), QByteArray("first"));
    }

    void theLockOfAKilledOneIsTakenOver()
    {
        InstanceProcess first(root());
        QCOMPARE(first.line(), QByteArray("first"));
        first.process.kill();
        QVERIFY(first.process.waitForFinished());
        QVERIFY(QFile::exists(lockName()));
        InstanceProcess next(root());
        QCOMPARE(next.line(), QByteArray("first"));
        InstanceProcess second(root(), u"patient"_qs); // which reaches the new one
        QCOMPARE(second.line(), QByteArray("shown"));
        QCOMPARE(next.line(), QByteArray("wanted"));
    }

    void aLockThatNobodyHoldsIsTakenOver_data()
    {
        const QByteArray gone = lockText(goneProcess(), "elsewhere", {});
        QTest::addColumn<QByteArray>("lock");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("cut behind a process that runs") << QByteArray::number(QCoreApplication::applicationPid());
        QTest::newRow("bytes of anything") << QByteArray("\xff\0\n\n\n", 5);
        QTest::newRow("of this machine by an earlier name") << gone;
        QTest::newRow("of another machine") << lockText(QCoreApplication::applicationPid(), "elsewhere", "0123456789");
    }
    void aLockThatNobodyHoldsIsTakenOver()
    {
        QFETCH(QByteArray, lock);
        writeLock(lock);
        SingleInstance instance(root());
        QCOMPARE(instance.start(0ms), SingleInstance::Outcome::First);
        InstanceProcess second(root(), u"patient"_qs);
        QVERIFY(second.process.waitForStarted());
        TRY_VERIFY(second.process.state() == QProcess::NotRunning);
        QCOMPARE(second.line(), QByteArray("shown"));
    }

    void aLockThatIsHeldIsKeptWhateverItSays_data()
    {
        QTest::addColumn<QByteArray>("lock");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("of another machine") << lockText(goneProcess(), "elsewhere", {});
    }
    void aLockThatIsHeldIsKeptWhateverItSays()
    {
        QFETCH(QByteArray, lock);
        QLockFile held(lockName()); // by a start that doesn't listen yet
        QVERIFY(held.tryLock());
        writeLock(lock);
        SingleInstance second(root());
        QCOMPARE(second.start(0ms), SingleInstance::Outcome::NoAnswer);
        QVERIFY(QFile::exists(lockName()));
    }

    void oneThatListensIsFoundWhateverItsLockSays()
    {
        InstanceProcess first(root());
        QCOMPARE(first.line(), QByteArray("first"));
        writeLock({});
        InstanceProcess second(root(), u"patient"_qs);
        QCOMPARE(second.line(), QByteArray("shown"));
    }

    void oneThatIsBusyKeepsItsRoot()
    {
        InstanceProcess first(root(), u"busy"_qs);
        QCOMPARE(first.line(), QByteArray("first"));
        InstanceProcess second(root());
        QCOMPARE(second.line(), QByteArray("no answer"));
        QCOMPARE(second.exitCode(), 1);
    }

    void aRootThatCannotBeWrittenKeepsNobodyOut()
    {
        QFile file(root() + u"/file"_qs);
        QVERIFY(file.open(QIODevice::WriteOnly));
        SingleInstance instance(file.fileName()); // no lock can be made inside a file
        QCOMPARE(instance.start(0ms), SingleInstance::Outcome::First);
        QVERIFY2(instance.warning().startsWith(u"Another start is not kept out: "_qs), qPrintable(instance.warning()));
    }

    void aRootThatIsWellHasNothingForTheLog()
    {
        SingleInstance instance(root());
        QCOMPARE(instance.start(0ms), SingleInstance::Outcome::First);
        QCOMPARE(instance.warning(), QString());
    }
};

TARVO_TEST(SingleInstanceTest)
#include "SingleInstanceTest.moc"

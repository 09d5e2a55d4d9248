#include "app/SingleInstance.h"

#include "app/InstanceProcess.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
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
        QVERIFY(QFile::exists(root() + u"/TarvoClient.lock"_qs));
        InstanceProcess next(root());
        QCOMPARE(next.line(), QByteArray("first"));
        InstanceProcess second(root(), u"patient"_qs); // which reaches the new one
        QCOMPARE(second.line(), QByteArray("shown"));
        QCOMPARE(next.line(), QByteArray("wanted"));
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
    }
};

TARVO_TEST(SingleInstanceTest)
#include "SingleInstanceTest.moc"

#include "support/Patience.h"
#include "support/SourceFolder.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

using namespace tarvo::test;

namespace {

/// The program beside the data that it looks at.
struct SupportProgram
{
    SupportProgram() { QFile::copy(QStringLiteral(TARVO_SUPPORT_PROGRAM), path()); }

    QString path() const { return folder.filePath(QStringLiteral("tarvo-support")); }
    /// Its exit code; -1 when it doesn't end.
    int run(const QStringList &arguments)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ALSA_CONFIG_PATH"), alsaConfiguration);
        process.setProcessEnvironment(environment);
        process.start(path(), arguments);
        if (!process.waitForFinished(patienceMs))
            return -1;
        said = QString::fromUtf8(process.readAllStandardOutput());
        complained = QString::fromUtf8(process.readAllStandardError());
        return process.exitCode();
    }

    QTemporaryDir folder;
    QString alsaConfiguration = sourceFile(QStringLiteral("tests/support/no-sound.conf"));
    QString said;
    QString complained;
};

} // namespace

/// The program, as a pilot starts it.
class SupportProgramTest : public QObject
{
    Q_OBJECT

private slots:
    void exitCodes_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("code");
        QTest::newRow("help") << QStringList{u"--help"_qs} << 0;
        QTest::newRow("version") << QStringList{u"--version"_qs} << 0;
        QTest::newRow("unknown option") << QStringList{u"--mend"_qs} << 2;
    }
    void exitCodes()
    {
        QFETCH(const QStringList, arguments);
        QFETCH(const int, code);
        SupportProgram program;
        QCOMPARE(program.run(arguments), code);
        QCOMPARE(program.complained.isEmpty(), code == 0);
        QCOMPARE(program.said.isEmpty(), code != 0);
    }

    void checksAndPacks()
    {
        SupportProgram program;
        const QString archive = program.folder.filePath(u"a.zip"_qs);
        // Whether there is sound, and whether a practice network serves this build's addresses, is the machine's
        // matter.
        const int code = program.run({u"--simulator=none"_qs, u"--pack"_qs, archive});
        QCOMPARE(code, program.said.contains(u"✗"_qs) ? 1 : 0);
        QVERIFY2(program.said.contains(u"✓ 数据文件夹："_qs + program.folder.path()), qPrintable(program.said));
        QVERIFY(program.said.contains(u"耳机和扬声器"_qs) && program.said.contains(archive));
        QCOMPARE(program.complained, QString());
        QVERIFY(QFile(archive).size() > 100);
        QVERIFY(!QFile::exists(program.folder.filePath(u"config.ini"_qs))); // it only looks
    }

    void aSoundSystemThatEndsItsProcessIsAFault()
    {
        SupportProgram program;
        program.alsaConfiguration = u"/none"_qs; // for which PortAudio aborts
        QCOMPARE(program.run({u"--simulator=none"_qs}), 1);
        QVERIFY2(program.said.contains(u"✗ 声音"_qs), qPrintable(program.said));
    }
};

TARVO_TEST(SupportProgramTest)
#include "SupportProgramTest.moc"

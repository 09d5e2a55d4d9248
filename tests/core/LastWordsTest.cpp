#include "LastWords.h"

#include "CrashReport.h"
#include "StateFile.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using tarvo::StateFile;
using tarvo::lastwords::BoundedText;
using tarvo::lastwords::fileName;
using tarvo::lastwords::filesAfter;

namespace {
#ifdef Q_OS_WIN
constexpr bool hasNames = false;
#else
constexpr bool hasNames = true;
#endif
} // namespace

class LastWordsTest : public QObject
{
    Q_OBJECT

    static QStringList crashFiles(const QTemporaryDir &folder)
    {
        return filesAfter(folder.path(), {}, QDateTime::currentMSecsSinceEpoch() + 60'000);
    }

    /// What the program leaves that crashes in this way.
    static QString reportOf(const QString &how, const QTemporaryDir &folder)
    {
        QProcess program;
        program.start(QCoreApplication::applicationDirPath() + QStringLiteral("/core_crasher"), {folder.path(), how});
        program.waitForFinished();
        const QStringList names = crashFiles(folder);
        QFile file(folder.filePath(names.value(0)));
        if (names.size() != 1 || !file.open(QIODevice::ReadOnly | QIODevice::Text))
            return QStringLiteral("files: ") + names.join(u' ');
        return QString::fromUtf8(file.readAll());
    }

private slots:
    void everyCrashIsReported_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("what");
        QTest::addColumn<QString>("call");
        const auto row = [](const char *how, const char *signal, const char *code, const char *call = "") {
            QTest::newRow(how) << QString::fromLatin1(how) << QString::fromLatin1(hasNames ? signal : code)
                               << QString::fromLatin1(call);
        };
        row("memory", "\nSignal: SIGSEGV, address 0x10\n", "\nException code: 0xc0000005, ", "writeIntoNothing");
        row("thread", "\nSignal: SIGSEGV, address 0x10\n", "\nException code: 0xc0000005, ", "writeIntoNothing");
        row("stack", "\nSignal: SIGSEGV, address 0x", "\nException code: 0xc00000fd, ", "goDeeper");
        row("threads", "\nSignal: SIGSEGV, address 0x10\n", "\nException code: 0xc0000005, ", "writeIntoNothing");
        row("nothing", "\nSignal: SIGSEGV, address 0x0\n", "\nException code: 0xc0000005, ", "callNothing");
        row("abort", "\nSignal: SIGABRT\n", "\nSignal: SIGABRT\n", "abort");
        row("fatal", "\nSignal: SIGABRT\n", "\nSignal: SIGABRT\n", "abort");
        row("exception", "\nSignal: SIGABRT\nException: N12_GLOBAL__N_18OddErrorE\n",
            "\nSignal: SIGABRT\nException: N12_GLOBAL__N_18OddErrorE\n", "abort");
    }
    void everyCrashIsReported()
    {
        QFETCH(const QString, how);
        QFETCH(const QString, what);
        QFETCH(const QString, call);
        const QTemporaryDir folder;
        const QString report = reportOf(how, folder);
        const auto hint = qPrintable(report);
        QVERIFY2(report.startsWith(QStringLiteral("TarvoClient 9.8.7\n")), hint);
        QVERIFY2(report.contains(what), hint);
        const QString calls = report.section(QStringLiteral("\nCalls, the last one first:\n"), 1);
        QVERIFY2(calls.count(u'\n') >= 3, hint);
        QVERIFY2(calls.contains(QStringLiteral("core_crasher")), hint);
        if (hasNames)
            QVERIFY2(calls.contains(call), hint);
        QVERIFY2(!report.contains(QStringLiteral("geheim123")), hint);
    }

    void theLastLinesOfTheLogAreThere()
    {
        const QTemporaryDir folder;
        const QString report = reportOf(QStringLiteral("abort"), folder);
        const QStringList lines = report.section(QStringLiteral("\nLast lines of the log:\n"), 1)
                                      .section(QStringLiteral("\n\nCalls"), 0, 0)
                                      .split(u'\n');
        QCOMPARE(lines.size(), 50);
        QVERIFY(lines.first().endsWith(QStringLiteral("line 13")));
        QVERIFY(lines.at(47).endsWith(QStringLiteral("line 60")));
        for (const QString &tooLong : lines.sliced(48)) {
            QVERIFY(tooLong.endsWith(QStringLiteral("航 [cut]")));
            QVERIFY(tooLong.toUtf8().size() > 397 && tooLong.toUtf8().size() <= 400);
        }
        QVERIFY(!report.contains(QChar::ReplacementCharacter));
    }

    void theThreadIsTold()
    {
        const QTemporaryDir main;
        const QTemporaryDir other;
        const QRegularExpression thread(QStringLiteral("\nThread: [0-9]+( \\(main\\))?\n"));
        const QRegularExpressionMatch ofMain = thread.match(reportOf(QStringLiteral("memory"), main));
        const QRegularExpressionMatch ofOther = thread.match(reportOf(QStringLiteral("thread"), other));
        QVERIFY(ofMain.hasMatch() && ofOther.hasMatch());
        QCOMPARE(ofMain.captured(1).isEmpty(), !hasNames);
        QVERIFY(ofOther.captured(1).isEmpty());
    }

    void onlyTheUserMayReadIt()
    {
        if (!hasNames)
            QSKIP("rights of a folder on Windows");
        const QTemporaryDir folder;
        reportOf(QStringLiteral("abort"), folder);
        const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QCOMPARE(QFile::permissions(folder.filePath(crashFiles(folder).value(0))) & others, QFile::Permissions());
    }

    void aGoodEndLeavesNothing()
    {
        const QTemporaryDir folder;
        QCOMPARE(reportOf(QStringLiteral("not at all"), folder), QStringLiteral("files: "));
        QCOMPARE(crashFiles(folder), QStringList());
    }

    void theFileBearsTheTime_data()
    {
        QTest::addColumn<qint64>("seconds");
        for (const qint64 seconds :
             {0LL, 86'399LL, 951'782'399LL, 951'782'400LL, 951'868'799LL, 951'868'800LL, 1'700'000'000LL,
              1'709'164'800LL, 1'709'251'200LL, 1'735'689'599LL, 4'107'542'399LL, 4'107'542'400LL})
            QTest::addRow("%lld", seconds) << seconds;
    }
    void theFileBearsTheTime()
    {
        QFETCH(const qint64, seconds);
        const QDateTime time = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
        QCOMPARE(QString::fromLatin1(fileName(seconds).data()),
                 time.toString(QStringLiteral("'crash-'yyyy-MM-dd_hh-mm-ss'.txt'")));
    }

    void newerFilesAreFound_data()
    {
        QTest::addColumn<QString>("lastTold");
        QTest::addColumn<QStringList>("found");
        const QString first = QStringLiteral("crash-2024-01-01_00-00-00.txt");
        const QString second = QStringLiteral("crash-2024-01-02_00-00-00.txt");
        QTest::newRow("none told") << QString() << QStringList{first, second};
        QTest::newRow("one told") << first << QStringList{second};
        QTest::newRow("all told") << second << QStringList();
        QTest::newRow("told what is none") << QStringLiteral("crash-zzz.txt") << QStringList{first, second};
        QTest::newRow("told by a clock ahead")
            << QStringLiteral("crash-2024-01-03_12-00-01.txt") << QStringList{first, second};
    }
    void newerFilesAreFound()
    {
        QFETCH(const QString, lastTold);
        const QTemporaryDir folder;
        for (const char *name :
             {"crash-2024-01-02_00-00-00.txt", "crash-2024-01-01_00-00-00.txt", "b.log", "crash-zzz.txt",
              "crash-2024-01-01_00-00-00 (copy).txt", "crash-2024-01-32_00-00-00.txt", "crash-2024-01-03_12-00-01.txt"})
            QVERIFY(QFile(folder.filePath(QString::fromLatin1(name))).open(QIODevice::WriteOnly));
        const qint64 now = QDateTime({2024, 1, 3}, {12, 0}, Qt::UTC).toMSecsSinceEpoch();
        QTEST(filesAfter(folder.path(), lastTold, now), "found");
        QCOMPARE(filesAfter(folder.filePath(QStringLiteral("none")), lastTold, now), QStringList());
    }

    void theNextStartNamesThemOnce()
    {
        const QTemporaryDir folder;
        StateFile state(folder.path());
        const auto told = [&] {
            const tarvo::test::LogCapture log;
            tarvo::lastwords::tellOfEarlierCrashes(folder.path(), state);
            return log.texts(QtWarningMsg);
        };
        QCOMPARE(told(), QStringList());
        QVERIFY(QFile(folder.filePath(QStringLiteral("crash-2024-01-01_00-00-00.txt"))).open(QIODevice::WriteOnly));
        QCOMPARE(told(), QStringList{QStringLiteral("An earlier run crashed; what it left is ") +
                                     folder.filePath(QStringLiteral("crash-2024-01-01_00-00-00.txt"))});
        QCOMPARE(told(), QStringList());
        QVERIFY(QFile(folder.filePath(QStringLiteral("crash-2024-01-02_00-00-00.txt"))).open(QIODevice::WriteOnly));
        QCOMPARE(told().size(), 1);
    }

    void aTextIsCutWhereItEnds()
    {
        BoundedText text;
        for (int i = 0; i < 200; ++i)
            text << "0123456789";
        QCOMPARE(text.size(), 1023U);
        QCOMPARE(qstrlen(text.data()), 1023U);
        BoundedText numbers;
        numbers << std::uint64_t{0} << " ";
        numbers.hex(0xDEADBEEF) << " ";
        numbers.padded(7, 3) << " " << UINT64_MAX;
        QCOMPARE(numbers.data(), "0 0xdeadbeef 007 18446744073709551615");
    }
};

TARVO_TEST(LastWordsTest)
#include "LastWordsTest.moc"

#include "Logging.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <thread>
#include <vector>

namespace logging = tarvo::logging;

namespace {

/// The program's handler for the life of this object, then the one that was there before.
class HandlerGuard
{
public:
    HandlerGuard()
    {
        m_previous = qInstallMessageHandler(nullptr);
        logging::installHandler();
    }
    ~HandlerGuard() { qInstallMessageHandler(m_previous); }
    Q_DISABLE_COPY_MOVE(HandlerGuard)

private:
    QtMessageHandler m_previous;
};

const QStringList twoStarts{QStringLiteral("2026-01-01_00-00-00.log"), QStringLiteral("2026-01-01_00-00-01.log")};

} // namespace

class LoggingTest : public QObject
{
    Q_OBJECT

private:
    QString at(const QString &relative) const { return m_dir->filePath(relative); }

    QStringList readLines(const QString &relative) const
    {
        QFile file(at(relative));
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            return {QStringLiteral("no such file")};
        QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
        lines.removeLast(); // what follows the last line feed: nothing
        return lines;
    }

    /// A file that was written `ageSeconds` ago.
    void makeOld(const QString &relative, int ageSeconds) const
    {
        QFile file(at(relative));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("x");
        file.flush();
        const QDateTime time = QDateTime::currentDateTime().addSecs(-ageSeconds);
        QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
    }

    QStringList filesIn(const QString &relative) const
    {
        return QDir(at(relative)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    /// Leaves the temporary folder, which Windows doesn't delete while a log in it is open.
    static void closeLog()
    {
        static const QTemporaryDir parked;
        logging::openLogFile(parked.filePath(QStringLiteral("parked.log")));
    }

    std::unique_ptr<QTemporaryDir> m_dir;

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void cleanup() { closeLog(); }

    void levels_data()
    {
        QTest::addColumn<QtMsgType>("type");
        QTest::addColumn<QString>("word");
        QTest::newRow("debug") << QtDebugMsg << QStringLiteral("DEBUG");
        QTest::newRow("info") << QtInfoMsg << QStringLiteral("INFO ");
        QTest::newRow("warning") << QtWarningMsg << QStringLiteral("WARN ");
        QTest::newRow("critical") << QtCriticalMsg << QStringLiteral("ERROR");
        QTest::newRow("fatal") << QtFatalMsg << QStringLiteral("FATAL");
    }

    void levels()
    {
        QFETCH(const QtMsgType, type);
        QFETCH(const QString, word);
        const QDateTime time(QDate(2026, 3, 4), QTime(5, 6, 7, 8));
        const QMessageLogContext context("/src/fsd/FsdClient.cpp", 42, "f", "default");
        QCOMPARE(logging::formatLine(time, type, context, QStringLiteral("text")),
                 QStringLiteral("2026-03-04 05:06:07.008 | %1 | FsdClient.cpp:42 - text").arg(word));
    }

    void sources_data()
    {
        QTest::addColumn<QByteArray>("file"); // null: the context has none
        QTest::addColumn<QString>("shown");
        QTest::newRow("none") << QByteArray() << QStringLiteral("unknown:0");
        QTest::newRow("name only") << QByteArray("a.cpp") << QStringLiteral("a.cpp:0");
        QTest::newRow("slashes") << QByteArray("../../src/a.cpp") << QStringLiteral("a.cpp:0");
        QTest::newRow("backslashes") << QByteArray("C:\\src\\a.cpp") << QStringLiteral("a.cpp:0");
        QTest::newRow("QML") << QByteArray("qrc:/pages/Main.qml") << QStringLiteral("Main.qml:0");
    }

    void sources()
    {
        QFETCH(const QByteArray, file);
        QFETCH(const QString, shown);
        const QMessageLogContext context(file.isNull() ? nullptr : file.constData(), 0, nullptr, nullptr);
        const QString line = logging::formatLine(QDateTime::currentDateTime(), QtInfoMsg, context, QString());
        QVERIFY2(line.endsWith(QStringLiteral(" | INFO  | %1 - ").arg(shown)), qPrintable(line));
    }

    void placeholdersInAMessageStay()
    {
        const QString line = logging::formatLine(QDateTime::currentDateTime(), QtInfoMsg, QMessageLogContext(),
                                                 QStringLiteral("100% %1 %5"));
        QVERIFY(line.endsWith(QStringLiteral(" - 100% %1 %5")));
    }

    void fileNamesAreInUtc()
    {
        QCOMPARE(logging::fileTimeStamp(1'700'000'000'000), QStringLiteral("2023-11-14_22-13-20"));
        QCOMPARE(logging::fileTimeStamp(0), QStringLiteral("1970-01-01_00-00-00"));
    }

    void aMessageIsOnDiskAtOnceInLocalTime()
    {
        const HandlerGuard guard;
        logging::openLogFile(at(QStringLiteral("deep/logs/a.log")));
        const QDateTime before = QDateTime::currentDateTime();
        qInfo("一 line");
        const int line = __LINE__ - 1;
        const QStringList lines = readLines(QStringLiteral("deep/logs/a.log"));
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().endsWith(QStringLiteral(" | INFO  | LoggingTest.cpp:%1 - 一 line").arg(line)),
                 qPrintable(lines.first()));
        const QDateTime time =
            QDateTime::fromString(lines.first().first(23), QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
        QVERIFY(time.isValid());
        QVERIFY(time >= before && time <= QDateTime::currentDateTime());
    }

    void everyLevelIsWritten()
    {
        const HandlerGuard guard;
        logging::openLogFile(at(QStringLiteral("a.log")));
        qDebug("d");
        qInfo("i");
        qWarning("w");
        qCritical("c");
        QStringList words;
        for (const QString &line : readLines(QStringLiteral("a.log")))
            words += line.section(QStringLiteral(" | "), 1, 1);
        QCOMPARE(words, (QStringList{QStringLiteral("DEBUG"), QStringLiteral("INFO "), QStringLiteral("WARN "),
                                     QStringLiteral("ERROR")}));
    }

    void openingAgainChangesTheFileAndAppends()
    {
        const HandlerGuard guard;
        logging::openLogFile(at(twoStarts.first()));
        qInfo("first");
        logging::openLogFile(at(twoStarts.last()));
        qInfo("second");
        logging::openLogFile(at(twoStarts.first()));
        qInfo("third");
        QCOMPARE(readLines(twoStarts.first()).size(), 2);
        QVERIFY(readLines(twoStarts.first()).last().endsWith(QStringLiteral("third")));
        QCOMPARE(readLines(twoStarts.last()).size(), 1);
    }

    void withoutAFolderThereIsNoLogAndNoReport()
    {
        const HandlerGuard guard;
        logging::openLogFile(at(QStringLiteral("a.log")));
        logging::openLogFile(at(QStringLiteral("a.log/logs/b.log"))); // no folder can be made inside a file
        logging::openLogFile(at(QStringLiteral("x")) + QChar(0) + QStringLiteral("/b.log")); // Qt warns meanwhile
        qInfo("lost");
        QCOMPARE(readLines(QStringLiteral("a.log")), QStringList());
    }

    void atMostNineOldLogsStay_data()
    {
        QTest::addColumn<int>("old");
        QTest::addColumn<int>("kept");
        QTest::newRow("none") << 0 << 0;
        QTest::newRow("8") << 8 << 8;
        QTest::newRow("9") << 9 << 9;
        QTest::newRow("10") << 10 << 9;
        QTest::newRow("12") << 12 << 9;
        QTest::newRow("40") << 40 << 9;
    }

    void atMostNineOldLogsStay()
    {
        QFETCH(const int, old);
        QFETCH(const int, kept);
        QStringList expected{QStringLiteral("new.log")};
        for (int i = 0; i < old; ++i) {
            const QString name = QStringLiteral("old%1").arg((i * 17) % 40, 2, 10, QLatin1Char('0')); // not by name
            makeOld(name, 100 + i);
            if (i < kept)
                expected += name;
        }
        expected.sort();
        logging::openLogFile(at(QStringLiteral("new.log")));
        QCOMPARE(filesIn(QString()), expected);
    }

    void everyFileCountsButNoFolder()
    {
        QVERIFY(QDir().mkpath(at(QStringLiteral("network"))));
        makeOld(QStringLiteral("network/inner.log"), 9000);
        makeOld(QStringLiteral("notes.txt"), 500);
        makeOld(QStringLiteral(".hidden"), 400);
        makeOld(QStringLiteral("no extension"), 300);
        logging::removeOldFiles(m_dir->path(), 1);
        QCOMPARE(filesIn(QString()), QStringList{QStringLiteral("no extension")});
        QCOMPARE(filesIn(QStringLiteral("network")), QStringList{QStringLiteral("inner.log")});
    }

    void namesDecideBetweenFilesOfOneMoment()
    {
        const QDateTime moment = QDateTime::currentDateTime().addSecs(-50);
        for (const QString &name : twoStarts) {
            QFile file(at(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            QVERIFY(file.setFileTime(moment, QFileDevice::FileModificationTime));
        }
        logging::removeOldFiles(m_dir->path(), 1);
        QCOMPARE(filesIn(QString()), QStringList{twoStarts.last()});
    }

    void aMissingFolderIsNoError()
    {
        logging::removeOldFiles(at(QStringLiteral("nowhere")), 9);
        QVERIFY(!QDir(at(QStringLiteral("nowhere"))).exists());
    }

    void anEmptyFolderNameIsNotTheWorkingDirectory()
    {
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_dir->path()));
        makeOld(QStringLiteral("mine"), 10);
        logging::removeOldFiles(QString(), 0);
        QVERIFY(QDir::setCurrent(before));
        QCOMPARE(filesIn(QString()), QStringList{QStringLiteral("mine")});
    }

    void aFailedOpenEndsTheProcess_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("opens");
        QTest::newRow("new file") << QStringLiteral("a.log") << true;
        QTest::newRow("a folder has the name") << QStringLiteral("taken") << false;
    }

    void aFailedOpenEndsTheProcess()
    {
        QFETCH(const QString, name);
        QFETCH(const bool, opens);
        QVERIFY(QDir().mkpath(at(QStringLiteral("taken"))));
        QProcess opener;
        opener.setWorkingDirectory(m_dir->path());
        opener.start(QCoreApplication::applicationDirPath() + QStringLiteral("/core_log_opener"), {at(name)});
        QVERIFY(opener.waitForFinished());
        QCOMPARE(opener.readAllStandardOutput().trimmed(), opens ? QByteArray("opened") : QByteArray());
        QCOMPARE(opener.readAllStandardError().contains("Failed to open log file for writing: " +
                                                        QDir::toNativeSeparators(at(name)).toLocal8Bit()),
                 !opens);
        QCOMPARE(opener.exitStatus() == QProcess::NormalExit && opener.exitCode() == 0, opens);
    }

    void twoThreadsNeverShareALine()
    {
        constexpr int perThread = 2000;
        const HandlerGuard guard;
        logging::openLogFile(at(QStringLiteral("a.log")));
        std::vector<std::thread> threads;
        for (const char letter : {'a', 'b'}) {
            threads.emplace_back([letter] {
                const QByteArray text(200, letter);
                for (int i = 0; i < perThread; ++i)
                    qInfo("%s", text.constData());
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        const QStringList lines = readLines(QStringLiteral("a.log"));
        QCOMPARE(lines.size(), 2 * perThread);
        const QRegularExpression whole(
            QStringLiteral("^[-0-9]{10} [:.0-9]{12} \\| INFO  \\| LoggingTest\\.cpp:\\d+ - (a{200}|b{200})$"));
        for (const QString &line : lines)
            QVERIFY2(whole.match(line).hasMatch(), qPrintable(line));
    }

    void openingWhileAnotherThreadLogs()
    {
        const HandlerGuard guard;
        logging::openLogFile(at(twoStarts.first()));
        std::thread writer([] {
            for (int i = 0; i < 500; ++i)
                qInfo("line");
        });
        for (int i = 0; i < 50; ++i)
            logging::openLogFile(at(twoStarts.at(i % 2)));
        writer.join();
        const qsizetype written = readLines(twoStarts.first()).size() + readLines(twoStarts.last()).size();
        QCOMPARE(written, 500); // between close and open the lock is held, so no line falls through
    }
};

TARVO_TEST(LoggingTest)
#include "LoggingTest.moc"

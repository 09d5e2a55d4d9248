#include "network/IcaoDatabase.h"
#include "network/IcaoFiles.h"
#include "support/Columns.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tarvo::network;
using namespace tarvo::test;

namespace {
const QString tableColumns =
    QStringLiteral("id INTEGER PRIMARY KEY, designator TEXT, manufacturer TEXT, model TEXT, type TEXT, engine TEXT, "
                   "engine_count INTEGER, wake_turbulence_category TEXT, rank INTEGER, real_world INTEGER, "
                   "legacy INTEGER, military INTEGER, created TEXT, last_updated TEXT");
} // namespace

/// One SQLite file: what it holds after an import, and what each failure leaves.
class IcaoDatabaseTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QString m_path;

    static IcaoImport importOf(const QList<SwiftAircraftIcaoRow> &rows)
    {
        return {.rows = rows,
                .label = QStringLiteral("L"),
                .sourceUrl = QStringLiteral("U"),
                .sourceLicense = QStringLiteral("C"),
                .importedAtUtc = QStringLiteral("T")};
    }

private slots:
    void init()
    {
        m_path = m_folder.filePath(QStringLiteral("a/b/%1.sqlite").arg(QLatin1String(QTest::currentTestFunction())));
    }

    void anImportIsReadBack()
    {
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(database.open(m_path, IcaoDatabase::Mode::Writable));
        QVERIFY(database.isOpen() && database.isWritable());
        QCOMPARE(database.path(), m_path);
        const SwiftAircraftIcaoRow full = fullIcaoRow(9, true);
        QVERIFY(
            database.replaceAll(importOf({full, icaoRow(1, QStringLiteral("A20N")), icaoRow(2, QStringLiteral(" "))})));
        const std::optional<IcaoSnapshot> snapshot = database.load();
        QVERIFY(snapshot);
        QCOMPARE(snapshot->designatorCount(), 2);
        QCOMPARE(snapshot->rowsFor(QStringLiteral("B738")), QList<SwiftAircraftIcaoRow>{full});
        const IcaoSnapshot::Metadata expected{{QStringLiteral("latest_snapshot"), QStringLiteral("L")},
                                              {QStringLiteral("source_url"), QStringLiteral("U")},
                                              {QStringLiteral("source_license"), QStringLiteral("C")},
                                              {QStringLiteral("imported_at_utc"), QStringLiteral("T")},
                                              {QStringLiteral("record_count"), QStringLiteral("2")}};
        QCOMPARE(snapshot->metadata(), expected);
        QCOMPARE(database.countRows(), 2);
    }

    void anImportReplacesWhatWasThere()
    {
        QVERIFY(writeIcaoDatabase(m_path, {QStringLiteral("B738"), QStringLiteral("B739")}));
        QVERIFY(writeIcaoDatabase(m_path, {QStringLiteral("DC3")}));
        QCOMPARE(runSql(m_path, {QStringLiteral("SELECT designator FROM aircraft_icao")}),
                 QStringList(QStringLiteral("DC3")));
    }

    void theSchemaIsTheKnownOne()
    {
        QVERIFY(writeIcaoDatabase(m_path, {}));
        const QStringList expected{
            QStringLiteral(
                "CREATE TABLE aircraft_icao (  id INTEGER PRIMARY KEY,  designator TEXT NOT NULL,  "
                "manufacturer TEXT NOT NULL,  model TEXT NOT NULL,  type TEXT NOT NULL,  engine TEXT NOT NULL,  "
                "engine_count INTEGER NOT NULL,  wake_turbulence_category TEXT NOT NULL,  rank INTEGER NOT NULL,  "
                "real_world INTEGER NOT NULL,  legacy INTEGER NOT NULL,  military INTEGER NOT NULL,  created TEXT "
                "NOT NULL,  last_updated TEXT NOT NULL)"),
            QStringLiteral("CREATE INDEX idx_aircraft_icao_designator ON aircraft_icao(designator)"),
            QStringLiteral("CREATE TABLE metadata (  key TEXT PRIMARY KEY,  value TEXT NOT NULL)"),
        };
        QCOMPARE(runSql(m_path, {QStringLiteral("SELECT sql FROM sqlite_master WHERE sql IS NOT NULL ORDER BY name")})
                     .size(),
                 3);
        QStringList found = runSql(m_path, {QStringLiteral("SELECT sql FROM sqlite_master WHERE sql IS NOT NULL")});
        found.sort();
        QStringList sorted = expected;
        sorted.sort();
        QCOMPARE(found, sorted);
    }

    void anImportThroughAReadOnlyConnectionSwitches()
    {
        QVERIFY(writeIcaoDatabase(m_path, {QStringLiteral("B738")}));
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(database.open(m_path, IcaoDatabase::Mode::ReadOnly));
        QVERIFY(!database.isWritable());
        QVERIFY(database.replaceAll(importOf({icaoRow(1, QStringLiteral("DC3"))})));
        QVERIFY(database.isWritable());
        QCOMPARE(database.load()->designatorCount(), 1);
    }

    void aSwitchThatFailsIsTold()
    {
        QVERIFY(writeIcaoDatabase(m_path, {QStringLiteral("B738")}));
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(database.open(m_path, IcaoDatabase::Mode::ReadOnly));
        QVERIFY(QFile::remove(m_path));
        QVERIFY(QDir().mkdir(m_path)); // a folder in the file's place
        LogCapture log;
        QVERIFY(!database.replaceAll(importOf({icaoRow(1, QStringLiteral("DC3"))})));
        QCOMPARE(log.texts(QtWarningMsg).last(),
                 QStringLiteral("Failed to switch to writable swift aircraft ICAO SQLite database for import"));
    }

    void importsThatNeverStart_data()
    {
        columns<bool, QString, QString>("open", "designator", "line");
        const QString none = QStringLiteral("swift aircraft ICAO data produced no valid designators");
        QTest::newRow("empty designator") << true << QString() << none;
        QTest::newRow("blank designator") << true << QStringLiteral(" ") << none;
        QTest::newRow("not open") << false << QStringLiteral("B738")
                                  << QStringLiteral("swift aircraft ICAO SQLite database is not ready");
        QTest::newRow("neither") << false << QString() << none;
    }

    void importsThatNeverStart()
    {
        QFETCH(bool, open);
        QFETCH(QString, designator);
        IcaoDatabase database(QStringLiteral("test"));
        QCOMPARE(open && database.open(m_path, IcaoDatabase::Mode::Writable), open);
        LogCapture log;
        QVERIFY(!database.replaceAll(importOf({icaoRow(1, designator)})));
        QFETCH(QString, line);
        QCOMPARE(log.texts(QtWarningMsg), QStringList(line));
    }

    void aFailedImportLeavesTheOldData_data()
    {
        columns<QString, QString>("trigger", "line");
        const auto trigger = [](const char *when) {
            return QStringLiteral("CREATE TRIGGER t BEFORE %1 BEGIN SELECT RAISE(ABORT, 'no'); END")
                .arg(QLatin1String(when));
        };
        QTest::newRow("clearing rows") << trigger("DELETE ON aircraft_icao")
                                       << QStringLiteral("Failed to clear swift aircraft ICAO table: ");
        QTest::newRow("clearing metadata")
            << trigger("DELETE ON metadata") << QStringLiteral("Failed to clear swift aircraft ICAO metadata: ");
        QTest::newRow("inserting rows") << trigger("INSERT ON aircraft_icao")
                                        << QStringLiteral("Failed to insert swift aircraft ICAO row: ");
        QTest::newRow("inserting metadata")
            << trigger("INSERT ON metadata") << QStringLiteral("Failed to insert swift aircraft ICAO metadata row: ");
    }

    void aFailedImportLeavesTheOldData()
    {
        QFETCH(QString, trigger);
        QFETCH(QString, line);
        const QString path = m_folder.filePath(QLatin1String(QTest::currentDataTag()) + QStringLiteral(".sqlite"));
        QVERIFY(writeIcaoDatabase(path, {QStringLiteral("B738")}, QStringLiteral("old")));
        QCOMPARE(runSql(path, {trigger}), QStringList());
        LogCapture log;
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(database.open(path, IcaoDatabase::Mode::Writable));
        QVERIFY(!database.replaceAll(importOf({icaoRow(1, QStringLiteral("DC3"))})));
        QCOMPARE(log.texts().size(), 1);
        QVERIFY2(log.texts(QtWarningMsg).first().startsWith(line), qPrintable(log.texts().first()));
        const std::optional<IcaoSnapshot> snapshot = database.load();
        QVERIFY(snapshot);
        QCOMPARE(snapshot->label(), QStringLiteral("old"));
        QVERIFY(!snapshot->rowsFor(QStringLiteral("B738")).isEmpty());
        QCOMPARE(snapshot->designatorCount(), 1);
    }

    void aRepeatedIdFailsTheImport()
    {
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(database.open(m_path, IcaoDatabase::Mode::Writable));
        LogCapture log;
        QVERIFY(!database.replaceAll(importOf({icaoRow(1, QStringLiteral("DC3")), icaoRow(1, QStringLiteral("DC4"))})));
        QCOMPARE(log.startingWith(QStringLiteral("Failed to insert swift aircraft ICAO row: ")).size(), 1);
        QCOMPARE(database.countRows(), 0);
    }

    void aConnectionThatWasLostStartsNoTransaction()
    {
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(database.open(m_path, IcaoDatabase::Mode::Writable));
        QSqlDatabase::database(QStringLiteral("test"), false).close();
        LogCapture log;
        QVERIFY(!database.replaceAll(importOf({icaoRow(1, QStringLiteral("DC3"))})));
        QCOMPARE(log.startingWith(QStringLiteral("Failed to start swift aircraft ICAO SQLite transaction:")).size(), 1);
    }

    void aMissingDriverIsTold()
    {
        LogCapture log;
        IcaoDatabase database(QStringLiteral("test"), QStringLiteral("QNONE"));
        QVERIFY(!database.open(m_path, IcaoDatabase::Mode::Writable));
        QVERIFY(!database.isOpen());
        QCOMPARE(log.texts(QtWarningMsg).last(),
                 QStringLiteral("Failed to initialize SQLite driver for swift aircraft ICAO database"));
    }

    void aFolderThatCannotBeMadeIsTold()
    {
        const QString file = m_folder.filePath(QStringLiteral("plain"));
        QVERIFY(writeFile(file, "x"));
        LogCapture log;
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(!database.open(file + QStringLiteral("/sub/a.sqlite"), IcaoDatabase::Mode::Writable));
        QCOMPARE(log.texts(QtWarningMsg),
                 QStringList(QStringLiteral("Failed to create swift aircraft ICAO database directory: ") + file +
                             QStringLiteral("/sub")));
    }

    void aMissingFileIsNotMadeForReading()
    {
        LogCapture log;
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(!database.open(m_folder.filePath(QStringLiteral("none.sqlite")), IcaoDatabase::Mode::ReadOnly));
        QCOMPARE(log.startingWith(QStringLiteral("Failed to open swift aircraft ICAO SQLite database: ")).size(), 1);
        QVERIFY(!QFile::exists(m_folder.filePath(QStringLiteral("none.sqlite"))));
    }

    void damagedFiles_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("text") << QByteArray(5000, 'x');
        QTest::newRow("header alone") << QByteArray("SQLite format 3\0", 16) + QByteArray(84, '\xff');
        QTest::newRow("header and noise")
            << QByteArray("SQLite format 3\0\x10\0\1\1\0\x40\x20\x20", 24) + QByteArray(9000, '\x5a');
    }

    void damagedFiles()
    {
        QFETCH(QByteArray, bytes);
        const QString path = m_folder.filePath(QStringLiteral("damaged.sqlite"));
        QVERIFY(writeFile(path, bytes));
        LogCapture log;
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(!database.open(path, IcaoDatabase::Mode::Writable));
        QVERIFY(!database.isOpen());
        QCOMPARE(log.startingWith(QStringLiteral("Failed to ensure swift aircraft ICAO SQLite schema: ")).size(), 1);
        QVERIFY(!database.open(path, IcaoDatabase::Mode::ReadOnly) || database.countRows() == 0);
    }

    void aFileCutShortNeverCrashes()
    {
        QStringList designators;
        for (int i = 0; i < 2000; ++i)
            designators.append(QStringLiteral("%1").arg(i, 4, 10, QLatin1Char('0')));
        QVERIFY(writeIcaoDatabase(m_path, designators));
        QFile file(m_path);
        QVERIFY(file.resize(file.size() / 2));
        LogCapture log;
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(!database.open(m_path, IcaoDatabase::Mode::Writable) || !database.load());
        QVERIFY(!log.texts(QtWarningMsg).isEmpty());
    }

    void missingTables_data()
    {
        columns<QString, QString>("statement", "line");
        QTest::newRow("metadata") << QStringLiteral("CREATE TABLE aircraft_icao (%1)").arg(tableColumns)
                                  << QStringLiteral("Failed to load swift aircraft ICAO metadata: ");
        QTest::newRow("rows") << QStringLiteral("CREATE TABLE metadata (key TEXT, value TEXT)")
                              << QStringLiteral("Failed to load swift aircraft ICAO rows: ");
    }

    void missingTables()
    {
        QFETCH(QString, statement);
        QFETCH(QString, line);
        const QString path =
            m_folder.filePath(QLatin1String(QTest::currentDataTag()) + QStringLiteral("_missing.sqlite"));
        QCOMPARE(runSql(path, {statement}), QStringList());
        LogCapture log;
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(database.open(path, IcaoDatabase::Mode::ReadOnly));
        QVERIFY(!database.load());
        QVERIFY2(log.texts(QtWarningMsg).last().startsWith(line), qPrintable(log.texts().last()));
    }

    void oddValuesReadAsWhatTheyAre()
    {
        const QString insert =
            QStringLiteral("INSERT INTO aircraft_icao VALUES (1, x'42373338', NULL, 5, 1.5, '', 'many', "
                           "NULL, 1e300, 'x', 7, NULL, '', '')");
        QCOMPARE(runSql(m_path, {QStringLiteral("CREATE TABLE metadata (key TEXT, value TEXT)"),
                                 QStringLiteral("CREATE TABLE aircraft_icao (%1)").arg(tableColumns), insert}),
                 QStringList());
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(database.open(m_path, IcaoDatabase::Mode::ReadOnly));
        const std::optional<IcaoSnapshot> snapshot = database.load();
        QVERIFY(snapshot);
        const QList<SwiftAircraftIcaoRow> rows = snapshot->rowsFor(QStringLiteral("B738"));
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.first().manufacturer, QString());
        QCOMPARE(rows.first().model, QStringLiteral("5"));
        QCOMPARE(rows.first().engineCount, 0);
        QVERIFY(rows.first().legacy);
        QVERIFY(!rows.first().military);
    }

    void aLockedFileIsTold()
    {
        QVERIFY(writeIcaoDatabase(m_path, {QStringLiteral("B738")}));
        {
            QSqlDatabase holder = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("holder"));
            holder.setDatabaseName(m_path);
            QVERIFY(holder.open());
            QVERIFY(QSqlQuery(holder).exec(QStringLiteral("BEGIN EXCLUSIVE")));
            LogCapture log;
            IcaoDatabase database(QStringLiteral("test"));
            QVERIFY(!database.open(m_path, IcaoDatabase::Mode::Writable));
            QCOMPARE(log.startingWith(QStringLiteral("Failed to ensure swift aircraft ICAO SQLite schema: ")).size(),
                     1);
            holder.close();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("holder"));
        IcaoDatabase database(QStringLiteral("test"));
        QVERIFY(database.open(m_path, IcaoDatabase::Mode::Writable));
        QCOMPARE(database.countRows(), 1);
    }
};

TARVO_TEST(IcaoDatabaseTest)
#include "IcaoDatabaseTest.moc"

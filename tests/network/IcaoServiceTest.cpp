#include "AppConfig.h"
#include "DataFolders.h"
#include "network/IcaoFiles.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/SourceFolder.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace tarvo;
using namespace tarvo::network;
using namespace tarvo::test;

namespace {
const QString notReady =
    QStringLiteral("Swift aircraft ICAO SQLite data is not ready; continuing without ICAO normalization snapshot");
const QByteArray tableLine = "BOEING\t\xe6\xb3\xa2\xe9\x9f\xb3 737-800\tB738\tL2J\tM\nDOUGLAS\tDC-3\tDC3\tL2P\tM\n";
const QByteArray goodJson = R"({"latest":"J","data":[{"id":1,"designator":"A20N","model":"A-320neo"}]})";
} // namespace

/// The load order of the aircraft type data, with its exact log lines.
class IcaoServiceTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<AppConfig> m_config;
    std::unique_ptr<SwiftAircraftIcaoService> m_service;
    ManualClock m_clock; // 2023-11-14T22:13:20Z
    const QString m_relative = QStringLiteral("cache/swift/aircrafticao.sqlite");

    QString inRoot(const QString &path) const { return m_folder->filePath(path); }
    QString writable() const { return inRoot(m_relative); }
    QString sibling() const { return inRoot(QStringLiteral("bin/") + m_relative); }
    QString json() const { return inRoot(QStringLiteral("cache/swift/aircrafticao.json")); }
    QString table() const { return inRoot(QStringLiteral("resources/Doc8643.txt")); }
    static QString appData() { return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation); }
    QString legacy() const { return appData() + QLatin1Char('/') + m_relative; }

    /// Loads, and gives what was logged.
    QStringList load()
    {
        LogCapture log;
        m_service->ensureLoaded();
        return log.texts();
    }
    QString loadedLine(const QString &label, int count) const
    {
        return QStringLiteral("Loaded swift aircraft ICAO SQLite snapshot from %1 snapshot: %2 designators: %3")
            .arg(writable(), label, QString::number(count));
    }
    QString usingLine() const
    {
        return QStringLiteral("Using writable swift aircraft ICAO SQLite database: ") + writable();
    }
    QString importedLine(int count) const
    {
        return QStringLiteral("Imported Doc8643 fallback aircraft ICAO data into SQLite database: %1 designators: %2")
            .arg(writable(), QString::number(count));
    }
    bool knows(const char *designator) const { return m_service->normalize(QString::fromLatin1(designator)).found; }

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_config = std::make_unique<AppConfig>(m_folder->path());
        m_service = std::make_unique<SwiftAircraftIcaoService>(*m_config, nullptr, m_clock);
        QDir(appData()).removeRecursively(); // test mode's own folder
    }

    void cleanup()
    {
        m_service.reset();
        m_config.reset();
        QDir(appData()).removeRecursively();
    }

    void aWritableDatabaseIsAllThatIsLookedAt()
    {
        QVERIFY(writeIcaoDatabase(writable(), {QStringLiteral("B738"), QStringLiteral("A20N")}, QStringLiteral("W")));
        QVERIFY(writeIcaoDatabase(legacy(), {QStringLiteral("DC3")}));
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        QVERIFY(writeFile(json(), "not even JSON"));
        QVERIFY(writeFile(table(), tableLine));
        QSignalSpy ready(m_service.get(), &SwiftAircraftIcaoService::readyChanged);
        QCOMPARE(load(), (QStringList{usingLine(), loadedLine(QStringLiteral("W"), 2)}));
        QVERIFY(m_service->isReady());
        QCOMPARE(ready.count(), 1);
        QVERIFY(knows("B738") && knows("A20N") && !knows("DC3"));
        QVERIFY(QFile::exists(json()));
    }

    void withoutAnyDataOneLineTellsIt()
    {
        QSignalSpy ready(m_service.get(), &SwiftAircraftIcaoService::readyChanged);
        QCOMPARE(load(), QStringList{notReady});
        QCOMPARE(load(), QStringList());
        QVERIFY(!m_service->isReady());
        QCOMPARE(ready.count(), 0);
        QCOMPARE(m_service->normalize(QStringLiteral(" b738 ")).canonical, QStringLiteral("B738"));
        QVERIFY(!knows("B738"));
        QVERIFY(m_service->suggest(QStringLiteral("B"), 5).isEmpty());
        QVERIFY(m_service->rowsFor(QStringLiteral("B738")).isEmpty());
        QVERIFY(!QFile::exists(writable()));
    }

    void aFailedLoadIsNotRepeated()
    {
        load();
        QVERIFY(writeFile(table(), tableLine));
        QCOMPARE(load(), QStringList());
        QVERIFY(!m_service->isReady());
    }

    void theLegacyDatabaseIsMigrated()
    {
        QVERIFY(writeIcaoDatabase(legacy(), {QStringLiteral("DC3")}, QStringLiteral("L")));
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        const QString migrated =
            QStringLiteral("Migrated legacy AppData swift aircraft ICAO SQLite database to: ") + writable();
        QCOMPARE(load(), (QStringList{migrated, loadedLine(QStringLiteral("L"), 1)}));
        QVERIFY(knows("DC3") && !knows("DC4"));
        QVERIFY(QFile::exists(legacy()));
    }

    void anEmptyLegacyDatabaseIsSkipped()
    {
        QVERIFY(writeIcaoDatabase(legacy(), {}));
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}, QStringLiteral("S")));
        const QString skipped =
            QStringLiteral(
                "Skip migrating legacy AppData swift aircraft ICAO SQLite database because source is empty: ") +
            legacy();
        const QString migrated =
            QStringLiteral("Migrated bundled sibling swift aircraft ICAO SQLite database to: ") + writable();
        QCOMPARE(load(), (QStringList{skipped, migrated, loadedLine(QStringLiteral("S"), 1)}));
        QVERIFY(knows("DC4"));
    }

    void anEmptyWritableDatabaseIsReplaced()
    {
        QVERIFY(writeIcaoDatabase(writable(), {}));
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}, QStringLiteral("S")));
        QCOMPARE(load().first(), usingLine());
        QVERIFY(knows("DC4"));
    }

    void emptySourcesNeverReplaceTheTarget()
    {
        QVERIFY(writeIcaoDatabase(writable(), {}, {}));
        QCOMPARE(runSql(writable(), {QStringLiteral("CREATE TABLE mark (x)")}), QStringList());
        QVERIFY(writeIcaoDatabase(legacy(), {}));
        QVERIFY(writeIcaoDatabase(sibling(), {}));
        QCOMPARE(load().last(), notReady);
        QCOMPARE(runSql(writable(), {QStringLiteral("SELECT count(*) FROM mark")}), QStringList(QStringLiteral("0")));
    }

    void aDamagedSourceIsSkipped()
    {
        QVERIFY(writeFile(legacy(), QByteArray(5000, 'x')));
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        load();
        QVERIFY(knows("DC4"));
    }

    void aDamagedWritableDatabaseIsReplacedByAMigration()
    {
        QVERIFY(writeFile(writable(), QByteArray(5000, 'x')));
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        QVERIFY(load().first().startsWith(QStringLiteral("Failed to ensure swift aircraft ICAO SQLite schema: ")));
        QVERIFY(knows("DC4"));
    }

    void aDamagedWritableDatabaseIsRebuilt_data()
    {
        QTest::addColumn<QStringList>("statements"); // none: no database at all
        QTest::newRow("no database") << QStringList();
        QTest::newRow("rows of another make") << QStringList{QStringLiteral("CREATE TABLE aircraft_icao (code TEXT)")};
        QTest::newRow("metadata of another make") << QStringList{QStringLiteral("CREATE TABLE metadata (code TEXT)")};
    }

    void aDamagedWritableDatabaseIsRebuilt()
    {
        QFETCH(const QStringList, statements);
        QVERIFY(!statements.isEmpty() || writeFile(writable(), QByteArray(5000, 'x')));
        QCOMPARE(statements.isEmpty() ? QStringList() : runSql(writable(), statements), QStringList());
        const qint64 size = QFileInfo(writable()).size();
        QVERIFY(writeFile(writable() + QStringLiteral("-journal"), "x"));
        QVERIFY(writeFile(table(), tableLine));
        const QString kept = writable() + QStringLiteral(".damaged");
        QVERIFY(writeFile(kept, "an earlier one"));
        const QStringList log = load();
        QVERIFY(log.contains(QStringLiteral("Damaged swift aircraft ICAO SQLite database is kept as: ") + kept));
        QCOMPARE(log.last(), importedLine(2));
        QVERIFY(knows("B738"));
        QVERIFY(QFileInfo(kept).size() >= size); // an open that got far enough may have added to it
        QVERIFY(!QFile::exists(writable() + QStringLiteral("-journal")));
        SwiftAircraftIcaoService next(*m_config, nullptr, m_clock);
        LogCapture nextLog;
        next.ensureLoaded();
        QCOMPARE(nextLog.texts().first(), usingLine());
        QVERIFY(next.isReady());
    }

    void aDamagedWritableDatabaseIsKeptWithoutAnotherSource()
    {
        QVERIFY(writeFile(writable(), QByteArray(5000, 'x')));
        QCOMPARE(load().last(), notReady);
        QVERIFY(!QFile::exists(writable()));
        QCOMPARE(QFileInfo(writable() + QStringLiteral(".damaged")).size(), 5000);
    }

    void whatHoldsNothingOfUseIsNotDamaged()
    {
        QVERIFY(writeFile(writable(), QByteArray(5000, 'x')));
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        QCOMPARE(runSql(sibling(), {QStringLiteral("UPDATE aircraft_icao SET designator = ''")}), QStringList());
        QCOMPARE(load().last(), notReady);
        QCOMPARE(QFileInfo(writable() + QStringLiteral(".damaged")).size(), 5000); // the first is kept, not the second
    }

    void aSourceThatLoadsNothingGivesWayToTheNext()
    {
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        QCOMPARE(runSql(sibling(),
                        {QStringLiteral("DROP TABLE metadata"), QStringLiteral("CREATE TABLE metadata (code TEXT)")}),
                 QStringList());
        QVERIFY(writeFile(table(), tableLine));
        QCOMPARE(load().last(), importedLine(2));
        QVERIFY(knows("B738"));
    }

    void aDatabaseThatAnotherProgramHoldsIsNotDamaged()
    {
        QVERIFY(writeIcaoDatabase(writable(), {QStringLiteral("B738")}));
        {
            QSqlDatabase other = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
            other.setDatabaseName(writable());
            QVERIFY(other.open());
            QVERIFY(QSqlQuery(other).exec(QStringLiteral("BEGIN EXCLUSIVE")));
            load();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("other"));
        QVERIFY(QFile::exists(writable()));
        QVERIFY(!QFile::exists(writable() + QStringLiteral(".damaged")));
    }

    void aReadOnlySourceBecomesAWritableCopy()
    {
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        QVERIFY(QFile::setPermissions(sibling(), QFile::ReadOwner));
        load();
        QVERIFY(knows("DC4"));
        QVERIFY(QFile::permissions(writable()) & QFile::WriteOwner);
        QFile::setPermissions(sibling(), QFile::ReadOwner | QFile::WriteOwner);
    }

    void aTargetThatCannotBeRemovedIsTold()
    {
        QVERIFY(QDir().mkpath(writable())); // a folder in the file's place
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        QVERIFY(load().contains(
            QStringLiteral("Failed to remove swift aircraft ICAO SQLite database before migration: ") + writable()));
        QVERIFY(!m_service->isReady());
    }

    void aTargetFolderThatCannotBeMadeIsTold()
    {
        QVERIFY(writeFile(inRoot(QStringLiteral("cache")), "x"));
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        const QStringList expected{
            QStringLiteral("Failed to create swift aircraft ICAO target directory for migration: ") +
                inRoot(QStringLiteral("cache/swift")),
            notReady};
        QCOMPARE(load(), expected);
    }

    void anIndexThatCannotBeBuiltIsTold()
    {
        QCOMPARE(runSql(sibling(), {QStringLiteral("CREATE TABLE aircraft_icao (code TEXT)"),
                                    QStringLiteral("INSERT INTO aircraft_icao VALUES ('B738')")}),
                 QStringList());
        const QStringList log = load();
        QCOMPARE(log.size(), 3);
        QVERIFY2(log.at(0).startsWith(QStringLiteral("swift aircraft ICAO SQLite migrated but index rebuild failed: ")),
                 qPrintable(log.at(0)));
        QCOMPARE(log.at(2), notReady);
    }

    void aSourceThatIsTheTargetIsNotMigrated()
    {
        m_service.reset();
        m_config = std::make_unique<AppConfig>(appData());
        m_service = std::make_unique<SwiftAircraftIcaoService>(*m_config, nullptr, m_clock);
        QVERIFY(writeIcaoDatabase(legacy(), {}));
        const QString used = QStringLiteral("Using writable swift aircraft ICAO SQLite database: ") + legacy();
        QCOMPARE(load(), (QStringList{used, notReady}));
    }

    /// Told apart by their paths they would be one file all the same: the copy would remove its own source.
    void aSourceThatIsTheTargetThroughALinkIsNotMigrated()
    {
        QVERIFY(writeIcaoDatabase(legacy(), {}));
        if (!QFile::link(appData() + QStringLiteral("/cache"), inRoot(QStringLiteral("cache"))) ||
            !QFile::exists(writable()))
            QSKIP("the system's links are no folders");
        QCOMPARE(load(), (QStringList{usingLine(), notReady}));
    }

    void theLegacyJsonIsMigrated()
    {
        QVERIFY(writeFile(json(), goodJson));
        QVERIFY(writeFile(table(), tableLine));
        const QString migrated =
            QStringLiteral("Migrated legacy swift aircraft ICAO JSON cache into writable SQLite database");
        QCOMPARE(load(), (QStringList{loadedLine(QStringLiteral("J"), 1), migrated}));
        QVERIFY(knows("A20N") && !knows("B738"));
        QVERIFY(!QFile::exists(json()));
        const QStringList expected{QStringLiteral("imported_at_utc|2023-11-14T22:13:20Z"),
                                   QStringLiteral("latest_snapshot|J"), QStringLiteral("record_count|1"),
                                   QStringLiteral("source_license|migrated-from-local-json"),
                                   QStringLiteral("source_url|legacy-json-migration")};
        QCOMPARE(runSql(writable(), {QStringLiteral("SELECT key, value FROM metadata ORDER BY key")}), expected);
    }

    void aJsonBesideAMigratedDatabaseIsDeletedUnread()
    {
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}, QStringLiteral("S")));
        QVERIFY(writeFile(json(), goodJson));
        load();
        QVERIFY(knows("DC4") && !knows("A20N"));
        QVERIFY(!QFile::exists(json()));
    }

    void jsonThatCannotBeDeletedIsTold()
    {
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}, QStringLiteral("S")));
        QVERIFY(QDir().mkpath(json())); // a folder exists, but is no file to remove
        QVERIFY(load().contains(QStringLiteral("Failed to remove legacy swift aircraft ICAO JSON cache: ") + json()));
    }

    void badJson_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("lines");
        const QString failed = QStringLiteral("Failed to migrate legacy swift aircraft ICAO JSON cache into SQLite");
        QTest::newRow("not JSON") << QByteArray("{x")
                                  << QStringList{QStringLiteral("swift aircraft ICAO JSON parse error: ")};
        QTest::newRow("no data") << QByteArray("{}")
                                 << QStringList{QStringLiteral("swift aircraft ICAO JSON is missing data array")};
        QTest::newRow("no rows") << QByteArray(R"({"data":[]})")
                                 << QStringList{
                                        QStringLiteral("swift aircraft ICAO data produced no valid designators"),
                                        failed};
        QTest::newRow("no designator") << QByteArray(R"({"data":[{"id":1},{"id":2,"designator":" "},7]})")
                                       << QStringList{
                                              QStringLiteral("swift aircraft ICAO data produced no valid designators"),
                                              failed};
        QTest::newRow("an id twice") << QByteArray(
                                            R"({"data":[{"id":1,"designator":"DC3"},{"id":1,"designator":"DC4"}]})")
                                     << QStringList{QStringLiteral("Failed to insert swift aircraft ICAO row: "),
                                                    failed};
    }

    void badJson()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, lines);
        QVERIFY(writeFile(json(), bytes));
        QVERIFY(writeFile(table(), tableLine));
        const QStringList log = load();
        QCOMPARE(log.size(), lines.size() + 2);
        for (qsizetype i = 0; i < lines.size(); ++i)
            QVERIFY2(log.at(i).startsWith(lines.at(i)), qPrintable(log.at(i)));
        // The file stays, and the next source is tried.
        QVERIFY(QFile::exists(json()));
        QCOMPARE(log.last(), importedLine(2));
    }

    void jsonThatCannotBeOpenedIsTold()
    {
        QVERIFY(QDir().mkpath(json()));
        QCOMPARE(load(), (QStringList{QStringLiteral("Failed to open legacy swift aircraft ICAO JSON cache: ") + json(),
                                      notReady}));
    }

    void jsonWithoutAWritableDatabaseIsTold()
    {
        QVERIFY(writeFile(json(), goodJson));
        QVERIFY(QDir().mkpath(writable()));
        QVERIFY(load().contains(QStringLiteral(
            "Failed to switch to writable swift aircraft ICAO SQLite database for legacy JSON migration")));
        QVERIFY(QFile::exists(json()));
    }

    void theTableIsImported_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("Resources") << QStringLiteral("Resources/Doc8643.txt");
        QTest::newRow("resources") << QStringLiteral("resources/Doc8643.txt");
        QTest::newRow("plugin beside") << QStringLiteral("app/../../plugin/include/XPMP2/Resources/Doc8643.txt");
        QTest::newRow("plugin inside") << QStringLiteral("plugin/include/XPMP2/Resources/Doc8643.txt");
    }

    void theTableIsImported()
    {
        QFETCH(QString, path);
        // The data root is one folder deeper, so that its parent is this test's own.
        const QTemporaryDir outer;
        const QString root = outer.filePath(QStringLiteral("root"));
        QVERIFY(QDir().mkpath(root + QStringLiteral("/app")));
        m_service.reset();
        m_config = std::make_unique<AppConfig>(root);
        m_service = std::make_unique<SwiftAircraftIcaoService>(*m_config, nullptr, m_clock);
        QVERIFY(writeFile(QDir::cleanPath(root + QLatin1Char('/') + path), tableLine));
        load();
        QVERIFY(knows("B738") && knows("DC3"));
    }

    void theTableIsFoundWhereItWasInstalled_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("beside the program") << QStringLiteral("bin/resources/Doc8643.txt");
        QTest::newRow("with the installed data") << QStringLiteral("share/TarvoClient/resources/Doc8643.txt");
    }

    void theTableIsFoundWhereItWasInstalled()
    {
        QFETCH(const QString, path);
        const QTemporaryDir outer;
        const DataFolders folders{
            .root = outer.filePath(QStringLiteral("own")),
            .readOnly = {outer.filePath(QStringLiteral("bin")), outer.filePath(QStringLiteral("share/TarvoClient"))}};
        m_service.reset();
        m_config = std::make_unique<AppConfig>(folders);
        m_service = std::make_unique<SwiftAircraftIcaoService>(*m_config, nullptr, m_clock);
        QVERIFY(writeFile(outer.filePath(path), tableLine));
        load();
        QVERIFY(knows("B738"));
        QVERIFY(QFile::exists(outer.filePath(QStringLiteral("own/") + m_relative))); // what it learns stays in the root
    }

    void theImportIsToldAndStored()
    {
        QVERIFY(writeFile(table(), tableLine));
        QCOMPARE(load(), (QStringList{loadedLine(QStringLiteral("Doc8643 2023-11-14"), 2), importedLine(2)}));
        const QStringList metadata{
            QStringLiteral("imported_at_utc|2023-11-14T22:13:20Z"),
            QStringLiteral("latest_snapshot|Doc8643 2023-11-14"), QStringLiteral("record_count|2"),
            QStringLiteral("source_license|bundled-with-xpmp2"), QStringLiteral("source_url|xpmp2-doc8643-fallback")};
        QCOMPARE(runSql(writable(), {QStringLiteral("SELECT key, value FROM metadata ORDER BY key")}), metadata);
        // The import has cleaned the model before it was stored.
        QCOMPARE(runSql(writable(), {QStringLiteral("SELECT id, designator, model, real_world, legacy, military "
                                                    "FROM aircraft_icao ORDER BY id")}),
                 (QStringList{QStringLiteral("1|B738|737-800|1|0|0"), QStringLiteral("2|DC3|DC-3|1|0|0")}));
    }

    void theNextStartUsesTheImport()
    {
        QVERIFY(writeFile(table(), tableLine));
        load();
        QVERIFY(QFile::remove(table()));
        SwiftAircraftIcaoService next(*m_config, nullptr, m_clock);
        LogCapture log;
        next.ensureLoaded();
        QCOMPARE(log.texts(), (QStringList{usingLine(), loadedLine(QStringLiteral("Doc8643 2023-11-14"), 2)}));
        QCOMPARE(next.rowsFor(QStringLiteral("B738")), m_service->rowsFor(QStringLiteral("B738")));
    }

    void aTableThatCannotBeUsed_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no columns") << QByteArray("B738\nDC3\n");
        QTest::newRow("noise") << QByteArray(100000, '\xfe');
    }

    void aTableThatCannotBeUsed()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(writeFile(table(), bytes));
        QCOMPARE(load(),
                 (QStringList{QStringLiteral("swift aircraft ICAO data produced no valid designators"), notReady}));
    }

    void aTableThatCannotBeOpenedIsTold()
    {
        QVERIFY(QDir().mkpath(table()));
        QCOMPARE(load(), (QStringList{QStringLiteral("Failed to open Doc8643 fallback aircraft ICAO data: ") + table(),
                                      notReady}));
    }

    void aTableWithoutAWritableDatabaseIsTold()
    {
        QVERIFY(writeFile(table(), tableLine));
        QVERIFY(writeFile(inRoot(QStringLiteral("cache")), "x"));
        const QStringList expected{QStringLiteral("Failed to create swift aircraft ICAO database directory: ") +
                                       inRoot(QStringLiteral("cache/swift")),
                                   QStringLiteral("swift aircraft ICAO SQLite database is not ready"), notReady};
        QCOMPARE(load(), expected);
        QVERIFY(!m_service->isReady());
    }

    void chineseTextStaysInACopiedDatabase()
    {
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("B738")}));
        QCOMPARE(runSql(sibling(), {QStringLiteral("UPDATE aircraft_icao SET model = '\u5ba2\u673a 737-800'")}),
                 QStringList());
        load();
        const QList<SwiftAircraftIcaoRow> rows = m_service->rowsFor(QStringLiteral("B738"));
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.first().model, QStringLiteral("737-800"));
        QCOMPARE(runSql(writable(), {QStringLiteral("SELECT model FROM aircraft_icao")}),
                 QStringList(QStringLiteral("\u5ba2\u673a 737-800")));
    }

    void pendingTextsAreAnsweredInOrderAfterTheLoad()
    {
        QVERIFY(writeFile(table(), tableLine));
        QStringList answers;
        const auto note = [&answers](const SwiftAircraftIcaoResult &result) {
            answers.append(result.canonical + (result.found ? QStringLiteral(" found") : QStringLiteral(" unknown")));
        };
        m_service->normalizeAsync(QStringLiteral("b738/m"), note);
        m_service->normalizeAsync(QStringLiteral("nonsense"), note);
        QVERIFY(answers.isEmpty());
        QVERIFY(!m_service->isReady());
        load();
        QCOMPARE(answers, (QStringList{QStringLiteral("B738 found"), QStringLiteral("NONSENSE unknown")}));
        m_service->normalizeAsync(QStringLiteral("dc3"), note);
        QCOMPARE(answers.last(), QStringLiteral("DC3 found"));
    }

    void pendingTextsAreAnsweredWithoutDataToo()
    {
        int calls = 0;
        SwiftAircraftIcaoResult answer;
        const auto note = [&](const SwiftAircraftIcaoResult &result) {
            ++calls;
            answer = result;
            if (calls == 1) // asking from within an answer is answered as well
                m_service->normalizeAsync(QStringLiteral("dc3"), [&](const SwiftAircraftIcaoResult &) { ++calls; });
        };
        m_service->normalizeAsync(QStringLiteral(" b738 "), note);
        load();
        QCOMPARE(calls, 2);
        QCOMPARE(answer, (SwiftAircraftIcaoResult{QStringLiteral(" b738 "), QStringLiteral("B738"), false, false}));
    }

    void theLoadIsNotEnteredAgainFromItsSignal()
    {
        QVERIFY(writeFile(table(), tableLine));
        QSignalSpy ready(m_service.get(), &SwiftAircraftIcaoService::readyChanged);
        connect(m_service.get(), &SwiftAircraftIcaoService::readyChanged, m_service.get(),
                &SwiftAircraftIcaoService::ensureLoaded);
        load();
        QCOMPARE(ready.count(), 1);
        QVERIFY(m_service->property("ready").toBool());
    }

    void noConnectionOutlivesTheLoad()
    {
        QVERIFY(writeIcaoDatabase(sibling(), {QStringLiteral("DC4")}));
        load();
        QCOMPARE(QSqlDatabase::connectionNames(), QStringList());
    }

    void theProgramsOwnTableIsImported()
    {
        QVERIFY(QDir().mkpath(inRoot(QStringLiteral("resources"))));
        QVERIFY(QFile::copy(sourceFile(QStringLiteral("resources/Doc8643.txt")), table()));
        load();
        QVERIFY(m_service->isReady());
        QCOMPARE(m_service->suggest(QStringLiteral("b73"), 3),
                 (QStringList{QStringLiteral("B731"), QStringLiteral("B732"), QStringLiteral("B733")}));
    }
};

TARVO_TEST(IcaoServiceTest)
#include "IcaoServiceTest.moc"

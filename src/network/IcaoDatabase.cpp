#include "network/IcaoDatabase.h"

#include "network/IcaoText.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvo::network {

namespace {

constexpr const char *schemaStatements[] = {
    "CREATE TABLE IF NOT EXISTS metadata (  key TEXT PRIMARY KEY,  value TEXT NOT NULL)",
    "CREATE TABLE IF NOT EXISTS aircraft_icao (  id INTEGER PRIMARY KEY,  designator TEXT NOT NULL,  "
    "manufacturer TEXT NOT NULL,  model TEXT NOT NULL,  type TEXT NOT NULL,  engine TEXT NOT NULL,  "
    "engine_count INTEGER NOT NULL,  wake_turbulence_category TEXT NOT NULL,  rank INTEGER NOT NULL,  "
    "real_world INTEGER NOT NULL,  legacy INTEGER NOT NULL,  military INTEGER NOT NULL,  created TEXT NOT NULL,  "
    "last_updated TEXT NOT NULL)",
    "CREATE INDEX IF NOT EXISTS idx_aircraft_icao_designator ON aircraft_icao(designator)",
};
constexpr char selectMetadata[] = "SELECT key, value FROM metadata";
constexpr char selectRows[] =
    "SELECT id, designator, manufacturer, model, type, engine, engine_count, wake_turbulence_category, rank, "
    "real_world, legacy, military, created, last_updated FROM aircraft_icao ORDER BY designator, id";
constexpr char selectCount[] = "SELECT COUNT(*) FROM aircraft_icao";
constexpr char deleteRows[] = "DELETE FROM aircraft_icao";
constexpr char deleteMetadata[] = "DELETE FROM metadata";
constexpr char insertRow[] =
    "INSERT INTO aircraft_icao (  id, designator, manufacturer, model, type, engine, engine_count,  "
    "wake_turbulence_category, rank, real_world, legacy, military, created, last_updated) "
    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
constexpr char insertMetadataRow[] = "INSERT INTO metadata (key, value) VALUES (?, ?)";

bool failed(const char *what, const QString &detail)
{
    qWarning().noquote() << what << detail;
    return false;
}

bool failed(const char *what, const QSqlError &error)
{
    return failed(what, error.text());
}

/// True for an error that lies in the file itself: no database, broken pages, or tables of another make.
bool meansDamage(const QSqlError &error)
{
    constexpr int genericError = 1; // SQLite's result codes
    constexpr int corrupt = 11;
    constexpr int notADatabase = 26;
    const int code = error.nativeErrorCode().toInt() & 0xff; // the rest tells more of the same
    return code == genericError || code == corrupt || code == notADatabase;
}

/// A null text would be stored as NULL, which no column takes.
QString notNull(const QString &text)
{
    return text.isNull() ? QStringLiteral("") : text;
}

SwiftAircraftIcaoRow readRow(const QSqlQuery &query)
{
    return {.id = query.value(0).toLongLong(),
            .designator = query.value(1).toString(),
            .manufacturer = query.value(2).toString(),
            .model = query.value(3).toString(),
            .type = query.value(4).toString(),
            .engine = query.value(5).toString(),
            .engineCount = query.value(6).toInt(),
            .wakeTurbulenceCategory = query.value(7).toString(),
            .rank = query.value(8).toInt(),
            .realWorld = query.value(9).toBool(),
            .legacy = query.value(10).toBool(),
            .military = query.value(11).toBool(),
            .created = query.value(12).toString(),
            .lastUpdated = query.value(13).toString()};
}

void bindRow(QSqlQuery &query, const SwiftAircraftIcaoRow &row)
{
    query.addBindValue(row.id);
    query.addBindValue(notNull(row.designator));
    query.addBindValue(notNull(row.manufacturer));
    query.addBindValue(notNull(row.model));
    query.addBindValue(notNull(row.type));
    query.addBindValue(notNull(row.engine));
    query.addBindValue(row.engineCount);
    query.addBindValue(notNull(row.wakeTurbulenceCategory));
    query.addBindValue(row.rank);
    query.addBindValue(row.realWorld ? 1 : 0);
    query.addBindValue(row.legacy ? 1 : 0);
    query.addBindValue(row.military ? 1 : 0);
    query.addBindValue(notNull(row.created));
    query.addBindValue(notNull(row.lastUpdated));
}

} // namespace

IcaoDatabase::IcaoDatabase(QString connectionName, QString driver)
    : m_connectionName(std::move(connectionName)), m_driver(std::move(driver))
{
}

IcaoDatabase::~IcaoDatabase()
{
    close();
}

bool IcaoDatabase::open(QString path, Mode mode)
{
    if (!openFile(std::move(path), mode))
        return false;
    if (mode == Mode::ReadOnly)
        return true;
    if (const std::optional<QString> error = schemaError()) {
        close();
        return failed("Failed to ensure swift aircraft ICAO SQLite schema:", *error);
    }
    return true;
}

bool IcaoDatabase::openFile(QString path, Mode mode)
{
    close();
    m_damaged = false;
    const QString folder = QFileInfo(path).absolutePath();
    if (mode == Mode::Writable && !QDir().mkpath(folder))
        return failed("Failed to create swift aircraft ICAO database directory:", folder);
    QSqlDatabase database = QSqlDatabase::addDatabase(m_driver, m_connectionName);
    m_registered = true;
    if (!database.isValid()) {
        database = QSqlDatabase();
        close();
        qWarning("Failed to initialize SQLite driver for swift aircraft ICAO database");
        return false;
    }
    database.setDatabaseName(path);
    // A file that another program holds must not keep the window from opening for the driver's five seconds.
    QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=500");
    if (mode == Mode::ReadOnly)
        options += QStringLiteral(";QSQLITE_OPEN_READONLY");
    database.setConnectOptions(options);
    if (!database.open()) {
        const QString error = database.lastError().text();
        database = QSqlDatabase();
        close();
        return failed("Failed to open swift aircraft ICAO SQLite database:", error);
    }
    m_path = std::move(path);
    m_writable = mode == Mode::Writable;
    return true;
}

void IcaoDatabase::close()
{
    m_path.clear();
    // Qt's registry of connections is not asked without need: at process exit it goes before this object.
    if (std::exchange(m_registered, false))
        QSqlDatabase::removeDatabase(m_connectionName);
}

bool IcaoDatabase::isOpen() const
{
    return !m_path.isEmpty();
}

QSqlDatabase IcaoDatabase::connection() const
{
    return QSqlDatabase::database(m_connectionName, false);
}

std::optional<QString> IcaoDatabase::schemaError()
{
    QSqlQuery query(connection());
    for (const char *statement : schemaStatements) {
        if (!query.exec(QLatin1String(statement))) {
            m_damaged = meansDamage(query.lastError());
            return query.lastError().text();
        }
    }
    return std::nullopt;
}

qint64 IcaoDatabase::countRows()
{
    QSqlQuery query(connection());
    return query.exec(QLatin1String(selectCount)) && query.next() ? query.value(0).toLongLong() : 0;
}

std::optional<IcaoSnapshot> IcaoDatabase::load()
{
    QSqlQuery query(connection());
    query.setForwardOnly(true);
    IcaoSnapshot::Metadata metadata;
    if (query.exec(QLatin1String(selectMetadata))) {
        while (query.next())
            metadata.insert(query.value(0).toString(), sanitizeText(query.value(1).toString()));
    }
    if (query.lastError().isValid()) {
        m_damaged = meansDamage(query.lastError());
        failed("Failed to load swift aircraft ICAO metadata:", query.lastError());
        return std::nullopt;
    }
    QList<SwiftAircraftIcaoRow> rows;
    if (query.exec(QLatin1String(selectRows))) {
        while (query.next())
            rows.append(readRow(query));
    }
    if (query.lastError().isValid()) { // a damaged file may fail only after some rows
        m_damaged = meansDamage(query.lastError());
        failed("Failed to load swift aircraft ICAO rows:", query.lastError());
        return std::nullopt;
    }
    return IcaoSnapshot(rows, metadata);
}

bool IcaoDatabase::replaceAll(const IcaoImport &import)
{
    IcaoImport valid = import;
    valid.rows.removeIf([](const SwiftAircraftIcaoRow &row) { return row.designator.trimmed().isEmpty(); });
    if (valid.rows.isEmpty()) {
        qWarning("swift aircraft ICAO data produced no valid designators");
        return false;
    }
    if (!isOpen()) {
        qWarning("swift aircraft ICAO SQLite database is not ready");
        return false;
    }
    if (!isWritable() && !open(m_path, Mode::Writable)) {
        qWarning("Failed to switch to writable swift aircraft ICAO SQLite database for import");
        return false;
    }
    QSqlDatabase database = connection();
    if (!database.transaction())
        return failed("Failed to start swift aircraft ICAO SQLite transaction:", database.lastError());
    if (!writeAll(valid)) {
        database.rollback();
        return false;
    }
    if (!database.commit()) {
        failed("Failed to commit swift aircraft ICAO SQLite transaction:", database.lastError());
        database.rollback();
        return false;
    }
    return true;
}

bool IcaoDatabase::writeAll(const IcaoImport &import)
{
    QSqlQuery query(connection());
    if (!query.exec(QLatin1String(deleteRows)))
        return failed("Failed to clear swift aircraft ICAO table:", query.lastError());
    if (!query.exec(QLatin1String(deleteMetadata)))
        return failed("Failed to clear swift aircraft ICAO metadata:", query.lastError());
    return insertRows(import.rows) && insertMetadata(import);
}

bool IcaoDatabase::insertRows(const QList<SwiftAircraftIcaoRow> &rows)
{
    QSqlQuery query(connection());
    query.prepare(QLatin1String(insertRow));
    return std::all_of(rows.begin(), rows.end(), [&query](const SwiftAircraftIcaoRow &row) {
        bindRow(query, row);
        return query.exec() || failed("Failed to insert swift aircraft ICAO row:", query.lastError());
    });
}

bool IcaoDatabase::insertMetadata(const IcaoImport &import)
{
    const std::pair<const char *, QString> values[] = {
        {"latest_snapshot", import.label},
        {"source_url", import.sourceUrl},
        {"source_license", import.sourceLicense},
        {"imported_at_utc", import.importedAtUtc},
        {"record_count", QString::number(import.rows.size())},
    };
    QSqlQuery query(connection());
    query.prepare(QLatin1String(insertMetadataRow));
    return std::all_of(std::begin(values), std::end(values), [&query](const auto &entry) {
        query.addBindValue(QLatin1String(entry.first));
        query.addBindValue(notNull(entry.second));
        return query.exec() || failed("Failed to insert swift aircraft ICAO metadata row:", query.lastError());
    });
}

} // namespace tarvo::network

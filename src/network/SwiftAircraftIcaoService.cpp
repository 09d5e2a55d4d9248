#include "network/SwiftAircraftIcaoService.h"

#include "AppConfig.h"
#include "network/IcaoSources.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <utility>

namespace tarvo::network {

namespace {

constexpr char databasePath[] = "cache/swift/aircrafticao.sqlite";
constexpr char jsonPath[] = "cache/swift/aircrafticao.json";
constexpr const char *doc8643Paths[] = {
    "Resources/Doc8643.txt",
    "resources/Doc8643.txt",
    "../plugin/include/XPMP2/Resources/Doc8643.txt",
    "plugin/include/XPMP2/Resources/Doc8643.txt",
};
constexpr char probeConnection[] = "swift_aircraft_icao_probe";

qint64 rowsIn(const QString &path)
{
    IcaoDatabase probe{QLatin1String(probeConnection)};
    return probe.open(path, IcaoDatabase::Mode::ReadOnly) ? probe.countRows() : 0;
}

QString connectionName(const void *owner)
{
    return QStringLiteral("swift_aircraft_icao_%1").arg(reinterpret_cast<quintptr>(owner), 0, 16);
}

} // namespace

SwiftAircraftIcaoService &SwiftAircraftIcaoService::instance()
{
    static SwiftAircraftIcaoService service(AppConfig::instance());
    return service;
}

SwiftAircraftIcaoService::SwiftAircraftIcaoService(AppConfig &config, QObject *parent, const common::Clock &clock)
    : QObject(parent), m_config(config), m_clock(clock), m_database(connectionName(this))
{
}

SwiftAircraftIcaoService::~SwiftAircraftIcaoService() = default;

void SwiftAircraftIcaoService::ensureLoaded()
{
    if (m_loadAttempted || m_loading)
        return;
    m_loading = true;
    loadFromSources();
    m_database.close(); // from here on everything is answered from memory
    m_loading = false;
    m_loadAttempted = true;
    if (!m_ready)
        qInfo("Swift aircraft ICAO SQLite data is not ready; continuing without ICAO normalization snapshot");
    runPending();
}

void SwiftAircraftIcaoService::loadFromSources()
{
    const QString writable = underDataRoot(QLatin1String(databasePath));
    if (QFileInfo::exists(writable) && m_database.open(writable, IcaoDatabase::Mode::Writable)) {
        qInfo().noquote() << "Using writable swift aircraft ICAO SQLite database:" << writable;
        if (loadSnapshot())
            return;
    }
    setDamagedAside();
    if (!std::exchange(m_migrationTried, true)) {
        const QString appData = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
        if (!migrateDatabase(QStringLiteral("legacy AppData"), QDir(appData).filePath(QLatin1String(databasePath))))
            migrateDatabase(QStringLiteral("bundled sibling"),
                            underDataRoot(QLatin1String("bin/") + QLatin1String(databasePath)));
    }
    // Also when a migrated database has made the service ready: the JSON beside it is then removed unread.
    migrateLegacyJson();
    if (!m_ready)
        importDoc8643();
}

/// A database that can't be read would keep every next source out for good. SQLite's own files go with it: a journal
/// would be played into the next database of the name.
void SwiftAircraftIcaoService::setDamagedAside()
{
    if (!m_database.isDamaged())
        return;
    m_database.close();
    const QString path = underDataRoot(QLatin1String(databasePath));
    for (const char *companion : {"", "-journal", "-wal", "-shm"}) {
        const QString from = path + QLatin1String(companion);
        const QString aside = path + QStringLiteral(".damaged") + QLatin1String(companion);
        QFile::remove(aside);
        if (QFile::exists(from) && !QFile::rename(from, aside))
            qWarning().noquote() << "Failed to set damaged swift aircraft ICAO SQLite database aside:" << from;
    }
    qWarning().noquote() << "Damaged swift aircraft ICAO SQLite database is kept as:"
                         << path + QStringLiteral(".damaged");
}

bool SwiftAircraftIcaoService::switchToWritable()
{
    return m_database.open(underDataRoot(QLatin1String(databasePath)), IcaoDatabase::Mode::Writable);
}

bool SwiftAircraftIcaoService::loadSnapshot()
{
    const std::optional<IcaoSnapshot> loaded = m_database.load();
    if (!loaded || loaded->isEmpty())
        return false;
    m_snapshot = *loaded;
    m_ready = true;
    qInfo().noquote() << "Loaded swift aircraft ICAO SQLite snapshot from" << m_database.path()
                      << "snapshot:" << m_snapshot.label() << "designators:" << m_snapshot.designatorCount();
    emit readyChanged();
    return true;
}

bool SwiftAircraftIcaoService::migrateDatabase(const QString &label, const QString &source)
{
    const QString target = underDataRoot(QLatin1String(databasePath));
    if (!QFileInfo::exists(source) || QFileInfo(source) == QFileInfo(target))
        return false;
    // Asked first, so that an empty file never replaces the target.
    if (rowsIn(source) == 0) {
        qInfo().noquote() << "Skip migrating" << label
                          << "swift aircraft ICAO SQLite database because source is empty:" << source;
        return false;
    }
    if (!copyDatabase(label, source))
        return false;
    if (!m_database.openFile(target, IcaoDatabase::Mode::Writable)) {
        qWarning().noquote() << "Failed to reopen swift aircraft ICAO SQLite database after migration:" << target;
        return false;
    }
    if (const std::optional<QString> error = m_database.schemaError()) {
        qWarning().noquote() << "swift aircraft ICAO SQLite migrated but index rebuild failed:" << *error;
        setDamagedAside();
        m_database.close();
        return false;
    }
    qInfo().noquote() << "Migrated" << label << "swift aircraft ICAO SQLite database to:" << target;
    const bool loaded = loadSnapshot();
    if (!loaded)
        setDamagedAside();
    return loaded;
}

bool SwiftAircraftIcaoService::copyDatabase(const QString &label, const QString &source)
{
    m_database.close();
    const QString target = underDataRoot(QLatin1String(databasePath));
    const QString folder = QFileInfo(target).absolutePath();
    if (!QDir().mkpath(folder)) {
        qWarning().noquote() << "Failed to create swift aircraft ICAO target directory for migration:" << folder;
        return false;
    }
    if (QFileInfo::exists(target) && !QFile::remove(target)) {
        qWarning().noquote() << "Failed to remove swift aircraft ICAO SQLite database before migration:" << target;
        return false;
    }
    if (!QFile::copy(source, target)) {
        qWarning().noquote() << "Failed to copy" << label << "swift aircraft ICAO SQLite database:" << source;
        return false;
    }
    // A copy has its source's permissions, and the source may be installed for reading only.
    QFile::setPermissions(target, QFile::permissions(target) | QFile::ReadOwner | QFile::WriteOwner);
    return true;
}

void SwiftAircraftIcaoService::migrateLegacyJson()
{
    QFile file(underDataRoot(QLatin1String(jsonPath)));
    if (!file.exists())
        return;
    if (m_ready) {
        if (!file.remove())
            qWarning().noquote() << "Failed to remove legacy swift aircraft ICAO JSON cache:" << file.fileName();
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning().noquote() << "Failed to open legacy swift aircraft ICAO JSON cache:" << file.fileName();
        return;
    }
    if (!switchToWritable()) {
        qWarning("Failed to switch to writable swift aircraft ICAO SQLite database for legacy JSON migration");
        return;
    }
    const LegacyIcaoJson json = parseLegacyIcaoJson(file.readAll());
    file.close();
    if (!json.error.isEmpty()) {
        qWarning().noquote() << json.error;
        return;
    }
    if (!importRows({.rows = json.rows,
                     .label = json.label,
                     .sourceUrl = QStringLiteral("legacy-json-migration"),
                     .sourceLicense = QStringLiteral("migrated-from-local-json"),
                     .importedAtUtc = importTime()})) {
        qWarning("Failed to migrate legacy swift aircraft ICAO JSON cache into SQLite");
        return;
    }
    qInfo("Migrated legacy swift aircraft ICAO JSON cache into writable SQLite database");
    if (!file.remove())
        qWarning().noquote() << "Failed to remove migrated swift aircraft ICAO JSON cache:" << file.fileName();
}

/// The first that is there; empty without any.
QString SwiftAircraftIcaoService::doc8643Path() const
{
    const QStringList folders = m_config.readFolders();
    for (const QString &folder : folders) {
        for (const char *name : doc8643Paths) {
            QString path = QDir::cleanPath(QDir(folder).filePath(QLatin1String(name)));
            if (QFile::exists(path))
                return path;
        }
    }
    return {};
}

void SwiftAircraftIcaoService::importDoc8643()
{
    QFile file(doc8643Path());
    if (file.fileName().isEmpty())
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning().noquote() << "Failed to open Doc8643 fallback aircraft ICAO data:" << file.fileName();
        return;
    }
    switchToWritable(); // tells itself why it fails; the import then finds no database
    const QString time = importTime();
    if (importRows({.rows = parseDoc8643(file),
                    .label = QStringLiteral("Doc8643 %1").arg(time.left(10)),
                    .sourceUrl = QStringLiteral("xpmp2-doc8643-fallback"),
                    .sourceLicense = QStringLiteral("bundled-with-xpmp2"),
                    .importedAtUtc = time}))
        qInfo().noquote() << "Imported Doc8643 fallback aircraft ICAO data into SQLite database:" << m_database.path()
                          << "designators:" << m_snapshot.designatorCount();
}

bool SwiftAircraftIcaoService::importRows(const IcaoImport &import)
{
    return m_database.replaceAll(import) && loadSnapshot();
}

SwiftAircraftIcaoResult SwiftAircraftIcaoService::normalize(const QString &text) const
{
    return m_snapshot.normalize(text);
}

QList<SwiftAircraftIcaoRow> SwiftAircraftIcaoService::rowsFor(const QString &designator) const
{
    return m_snapshot.rowsFor(designator);
}

QStringList SwiftAircraftIcaoService::suggest(const QString &query, int limit) const
{
    return m_snapshot.suggest(query, limit);
}

QList<SwiftAircraftIcaoRow> SwiftAircraftIcaoService::searchByName(const QString &query, int limit) const
{
    return m_snapshot.searchByName(query, limit);
}

void SwiftAircraftIcaoService::normalizeAsync(const QString &text,
                                              std::function<void(const SwiftAircraftIcaoResult &)> callback)
{
    if (m_ready || m_loadAttempted)
        callback(normalize(text));
    else
        m_pending.append({text, std::move(callback)});
}

void SwiftAircraftIcaoService::runPending()
{
    const QList<PendingText> pending = std::exchange(m_pending, {});
    for (const PendingText &request : pending)
        request.callback(normalize(request.text));
}

QString SwiftAircraftIcaoService::underDataRoot(const QString &path) const
{
    return QDir::cleanPath(QDir(m_config.dataRoot()).filePath(path));
}

/// Now, as ISO date and time in UTC; begins with the date.
QString SwiftAircraftIcaoService::importTime() const
{
    return QDateTime::fromMSecsSinceEpoch(m_clock.wallMs(), Qt::UTC).toString(Qt::ISODate);
}

} // namespace tarvo::network

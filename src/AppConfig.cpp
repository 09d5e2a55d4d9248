#include "AppConfig.h"

#include "ConfigCipher.h"
#include "DataFolders.h"
#include "IniFormat.h"
#include "MsfsFolders.h"
#include "ServiceEndpoints.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <cmath>
#include <type_traits>
#include <utility>

namespace tarvo {

namespace {

QVariant defaultOf(const StringKey &key)
{
    return QString::fromUtf8(key.defaultValue);
}

QVariant defaultOf(const PathListKey &)
{
    return QString(); // an empty list as the file shows it best
}

template <typename Key>
QVariant defaultOf(const Key &key)
{
    return key.defaultValue;
}

/// Absolute and clean, with links resolved where the path exists; empty for blank text.
QString normalizedPath(const QString &item)
{
    const QString path = QDir::fromNativeSeparators(item.trimmed());
    if (path.isEmpty())
        return {};
    const QFileInfo info(path);
    return QDir::cleanPath(info.exists() ? info.canonicalFilePath() : info.absoluteFilePath());
}

/// The file holds a password: nobody but the user needs to read it. Rights that the user took away stay away.
void keepToTheUser(const QString &path)
{
    constexpr QFile::Permissions others =
        QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    const QFile::Permissions permissions = QFile::permissions(path);
    if (permissions & others)
        QFile::setPermissions(path, permissions & ~others);
}

/// A QSettings object keeps its first error for good; a new one shares what waits to be written and tries now.
bool canBeWritten(const QString &path)
{
    QSettings settings(path, ini::format());
    settings.sync();
    return settings.status() == QSettings::NoError;
}

} // namespace

AppConfig &AppConfig::instance()
{
    static AppConfig config(dataFolders());
    return config;
}

AppConfig::AppConfig(const QString &dataRoot, QObject *parent)
    : AppConfig(DataFolders{.root = dataRoot, .readOnly = {}}, parent)
{
}

AppConfig::AppConfig(const DataFolders &folders, QObject *parent)
    : QObject(parent),
      m_dataRoot(folders.root),
      m_readFolders(QStringList{folders.root} + folders.readOnly),
      m_configPath(QDir(folders.root).filePath(QStringLiteral("config.ini"))),
      m_copy(m_configPath),
      m_state(folders.root)
{
    m_readFolders.removeDuplicates();
    m_settings = std::make_unique<QSettings>(m_configPath, ini::format());
    const bool readWell = !bringBackWhatIsLost();
    writeMissingDefaults();
    keepToTheUser(m_configPath);
    detectFolders();
    if (readWell)
        m_copy.take();
}

AppConfig::~AppConfig() = default;

/// True when the file lacked a key that the last good copy has. A file that isn't there at all is a fresh start.
bool AppConfig::bringBackWhatIsLost()
{
    if (!QFileInfo::exists(m_configPath))
        return false;
    const QSettings::SettingsMap copied = m_copy.values();
    int lost = 0;
    for (const config::AnyKey &anyKey : config::storedKeys) {
        const QString name = std::visit([](const auto &key) { return QString::fromUtf8(key.key); }, anyKey);
        if (!copied.contains(name) || m_settings->contains(name))
            continue;
        m_settings->setValue(name, copied.value(name));
        ++lost;
    }
    if (lost == 0)
        return false;
    m_copy.keepDamagedFile();
    sync();
    m_startupWarning =
        QStringLiteral("AppConfig: config.ini had lost %1 settings, which came back from config.ini.bak; "
                       "the damaged file is kept as config.ini.damaged")
            .arg(lost);
    return true;
}

void AppConfig::writeMissingDefaults()
{
    bool wrote = false;
    for (const config::AnyKey &anyKey : config::storedKeys) {
        std::visit(
            [&](const auto &key) {
                const QString name = QString::fromUtf8(key.key);
                if (m_settings->contains(name))
                    return;
                m_settings->setValue(name, defaultOf(key));
                wrote = true;
            },
            anyKey);
    }
    if (wrote)
        sync();
}

void AppConfig::sync()
{
    m_settings->sync();
    const bool saved = m_settings->status() == QSettings::NoError || canBeWritten(m_configPath);
    if (saved == std::exchange(m_saved, saved))
        return;
    if (saved)
        qInfo("AppConfig: config.ini can be written again; nothing that was set meanwhile is lost");
    else
        qWarning("AppConfig: config.ini can't be written; what is set stays in memory until it can be");
}

void AppConfig::detectFolders()
{
    using namespace config;
    const auto isUnset = [this](const StringKey &key) { return get(key).trimmed().isEmpty(); };
    const auto fill = [&](const StringKey &key, const QString &folder) {
        if (!folder.isEmpty() && isUnset(key))
            set(key, folder);
    };
    if (!isUnset(msfsPackagesPath2020) && !isUnset(msfsPackagesPath2024) && !isUnset(msfsCommunityPath2020) &&
        !isUnset(msfsCommunityPath2024)) {
        return;
    }
    const MsfsFolders folders =
        detectMsfsFolders(qEnvironmentVariable("LOCALAPPDATA"), qEnvironmentVariable("APPDATA"));
    fill(msfsPackagesPath2020, folders.packages2020);
    fill(msfsPackagesPath2024, folders.packages2024);
    fill(msfsCommunityPath2020, folders.community2020);
    fill(msfsCommunityPath2024, folders.community2024);
}

QVariant AppConfig::read(const char *key, const QVariant &defaultValue) const
{
    return m_settings->value(QString::fromUtf8(key), defaultValue);
}

QString AppConfig::get(const StringKey &key) const
{
    if (key.isVolatile)
        return m_volatile.value(QString::fromUtf8(key.key), defaultOf(key)).toString();
    const QString text = read(key.key, defaultOf(key)).toString();
    return key.isEncrypted ? decrypted(key.key, text) : text;
}

bool AppConfig::get(const BoolKey &key) const
{
    // Not QVariant::toBool, for which any text that it doesn't know is true.
    const QString text = read(key.key, key.defaultValue).toString().trimmed();
    return text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0 || text.toInt() != 0;
}

int AppConfig::get(const IntKey &key) const
{
    // Not QVariant::toInt, which cuts a number that is too large instead of refusing it.
    return read(key.key, key.defaultValue).toString().toInt();
}

double AppConfig::get(const RealKey &key) const
{
    const double value = read(key.key, key.defaultValue).toDouble();
    return std::isfinite(value) ? value : 0.0;
}

QStringList AppConfig::get(const PathListKey &key) const
{
    return existingPaths(storedPaths(key));
}

QStringList AppConfig::storedPaths(const PathListKey &key) const
{
    return read(key.key).toStringList();
}

QStringList AppConfig::existingPaths(const QStringList &stored)
{
    QStringList paths;
    for (const QString &item : stored) {
        const QString path = normalizedPath(item);
        if (QFileInfo::exists(path) && !paths.contains(path))
            paths += path;
    }
    return paths;
}

QString AppConfig::decrypted(const char *key, const QString &stored) const
{
    if (stored.isEmpty())
        return {};
    Decrypted &last = m_decrypted[QString::fromUtf8(key)];
    if (last.stored != stored)
        last = {stored, cipher::decrypt(stored, configSecret())};
    return last.plain;
}

QString AppConfig::encrypted(const char *key, const QString &plain)
{
    const QString name = QString::fromUtf8(key);
    if (plain.isEmpty()) { // an empty text stays empty in the file
        m_decrypted.remove(name);
        m_copy.forget(name); // a secret that the pilot took back doesn't come back
        return {};
    }
    QString stored = cipher::encrypt(plain, configSecret());
    m_decrypted[name] = {stored, plain};
    return stored;
}

void AppConfig::set(const StringKey &key, const QString &value)
{
    if (!key.isVolatile) {
        store(key.key, key.isEncrypted ? encrypted(key.key, value) : value);
        return;
    }
    m_volatile.insert(QString::fromUtf8(key.key), value);
    announce(key.key);
}

void AppConfig::set(const BoolKey &key, bool value)
{
    store(key.key, value);
}

void AppConfig::set(const IntKey &key, int value)
{
    store(key.key, value);
}

void AppConfig::set(const RealKey &key, double value)
{
    store(key.key, value);
}

void AppConfig::set(const PathListKey &key, const QStringList &value)
{
    // QSettings writes an empty list as "@Invalid()".
    store(key.key, value.isEmpty() ? QVariant(QString()) : QVariant(value));
}

void AppConfig::reset(const StringKey &key)
{
    if (!key.isVolatile) {
        set(key, QString::fromUtf8(key.defaultValue));
        return;
    }
    m_volatile.remove(QString::fromUtf8(key.key));
    announce(key.key);
}

QString AppConfig::logsFolder() const
{
    return QDir(m_dataRoot).filePath(QStringLiteral("logs"));
}

void AppConfig::store(const char *key, const QVariant &value)
{
    m_settings->setValue(QString::fromUtf8(key), value);
    sync();
    announce(key);
}

void AppConfig::announce(const char *key)
{
    emit configChanged(QString::fromUtf8(key));
}

} // namespace tarvo

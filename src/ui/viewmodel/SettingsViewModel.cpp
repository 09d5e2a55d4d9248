#include "ui/viewmodel/SettingsViewModel.h"

#include "AppConfig.h"
#include "ServiceEndpoints.h"
#include "network/ApiService.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>

#include <limits>
#include <optional>
#include <variant>

namespace tarvo::ui::viewmodel {

namespace {

template <class Key, class Value>
struct Field
{
    Key key;
    Value SettingsValues::*value;
};
using TextField = Field<StringKey, QString>;
using FlagField = Field<BoolKey, bool>;
using NumberField = Field<IntKey, int>;
using PathListField = Field<PathListKey, QString>;
using AnyField = std::variant<TextField, FlagField, NumberField, PathListField>;

using Values = SettingsValues;

/// In the order in which they are written.
const AnyField fields[] = {
    TextField{config::authUsername, &Values::username},
    TextField{config::authPassword, &Values::password},
    FlagField{config::authRememberPassword, &Values::rememberPassword},
    FlagField{config::authAutoLogin, &Values::autoLogin},
    FlagField{config::authVatsim, &Values::vatsimProtocol},
    TextField{config::profileRealname, &Values::realname},
    TextField{config::profileHomeAirport, &Values::homeAirport},
    NumberField{config::xplaneUdpPort, &Values::xplaneUdpPort},
    TextField{config::xplaneNetworkAddress, &Values::xplaneNetworkAddress},
    PathListField{config::xplaneCsl, &Values::xplaneCslPathsText},
    TextField{config::msfsPackagesPath2020, &Values::msfsPackagesPath2020},
    TextField{config::msfsCommunityPath2020, &Values::msfsCommunityPath2020},
    TextField{config::msfsPackagesPath2024, &Values::msfsPackagesPath2024},
    TextField{config::msfsCommunityPath2024, &Values::msfsCommunityPath2024},
    PathListField{config::msfsCustomMappingPaths2020, &Values::msfsCustomMappingPaths2020},
    PathListField{config::msfsCustomMappingPaths2024, &Values::msfsCustomMappingPaths2024},
};

struct PathField
{
    const char *property;
    QString SettingsValues::*value;
    bool isList;
};
constexpr PathField pathFields[] = {
    {"xplaneCslPathsText", &Values::xplaneCslPathsText, true},
    {"msfsPackagesPath2020", &Values::msfsPackagesPath2020, false},
    {"msfsCommunityPath2020", &Values::msfsCommunityPath2020, false},
    {"msfsPackagesPath2024", &Values::msfsPackagesPath2024, false},
    {"msfsCommunityPath2024", &Values::msfsCommunityPath2024, false},
    {"msfsCustomMappingPaths2020", &Values::msfsCustomMappingPaths2020, true},
    {"msfsCustomMappingPaths2024", &Values::msfsCustomMappingPaths2024, true},
};

QStringList entries(const QString &text)
{
    static const QRegularExpression separators(QStringLiteral("[\r\n;,]+"));
    QStringList result;
    for (const QString &piece : text.split(separators)) {
        if (const QString entry = piece.trimmed(); !entry.isEmpty())
            result.append(entry);
    }
    return result;
}

QStringList pathsIn(const PathField &field, const SettingsValues &values)
{
    const QString &text = values.*field.value;
    if (field.isList)
        return entries(text);
    const QString path = text.trimmed();
    return path.isEmpty() ? QStringList() : QStringList(path);
}

template <class AnyOtherField>
void read(const AppConfig &config, const AnyOtherField &field, SettingsValues &values)
{
    values.*field.value = config.get(field.key);
}

void read(const AppConfig &config, const PathListField &field, SettingsValues &values)
{
    values.*field.value = config.storedPaths(field.key).join(u'\n');
}

template <class AnyOtherField>
void write(AppConfig &config, const AnyOtherField &field, const SettingsValues &values)
{
    config.set(field.key, values.*field.value);
}

void write(AppConfig &config, const PathListField &field, const SettingsValues &values)
{
    config.set(field.key, entries(values.*field.value));
}

std::optional<int> portOf(const QString &text)
{
    bool isNumber = false;
    const int port = text.trimmed().toInt(&isNumber);
    return isNumber && port >= 1 && port <= 65535 ? std::optional(port) : std::nullopt;
}

} // namespace

SettingsViewModel::SettingsViewModel(AppConfig &config, const network::ApiService &api,
                                     const ServiceEndpoints &endpoints, QObject *parent)
    : QObject(parent),
      m_config(config),
      m_api(api),
      m_apiBaseUrl(endpoints.apiBaseUrl),
      m_networkAddress(QStringLiteral("%1:%2").arg(endpoints.fsdHost).arg(endpoints.fsdPort)),
      m_voiceAddress(QStringLiteral("%1:%2").arg(endpoints.voiceHost).arg(endpoints.voiceTcpPort))
{
    connect(this, &SettingsViewModel::settingsChanged, this, &SettingsViewModel::onSettingsChanged);
    connect(&m_folders, &FolderCheck::answered, this, &SettingsViewModel::onFoldersChecked);
    reload();
}

void SettingsViewModel::reload()
{
    for (const AnyField &any : fields)
        std::visit([this](const auto &field) { read(m_config, field, m_stored); }, any);
    shown() = m_stored;
    if (realname.isEmpty() || realname == QLatin1String("Unknown"))
        realname = m_api.currentUser().username;
    if (homeAirport.isEmpty() || homeAirport == QLatin1String("ZZZZ"))
        homeAirport = QString::fromUtf8(config::profileHomeAirport.defaultValue);
    m_loaded = shown();
    m_portText = QString::number(xplaneUdpPort);
    m_saveStatus = tr("已从 config.ini 加载");
    emit settingsChanged();
    emit saveStatusChanged();
}

void SettingsViewModel::saveAll()
{
    const SettingsValues values = shown(); // whoever hears of a change may have them read anew
    for (const AnyField &any : fields) {
        std::visit(
            [&](const auto &field) {
                if (values.*field.value != m_stored.*field.value)
                    write(m_config, field, values);
            },
            any);
    }
    m_stored = values;
    m_loaded = values;
    emit settingsChanged();
    setSaveStatus(m_config.isSaved() ? tr("已保存到 config.ini")
                                     : tr("无法写入 config.ini（磁盘已满或文件夹只读），更改暂时只在本次运行中有效"));
}

void SettingsViewModel::triggerMsfsLibraryReload()
{
    const int token = msfsLibraryReloadToken();
    m_config.set(config::msfsLibraryReloadToken, token == std::numeric_limits<int>::max() ? 0 : token + 1);
    emit settingsChanged();
    setSaveStatus(tr("已触发 MSFS 机模库重载"));
}

void SettingsViewModel::setUdpPort(int port)
{
    setUdpPortText(QString::number(port));
}

void SettingsViewModel::setUdpPortText(const QString &text)
{
    if (text == m_portText)
        return;
    m_portText = text;
    if (const auto port = portOf(text))
        xplaneUdpPort = *port;
    emit settingsChanged();
}

bool SettingsViewModel::isEdited() const
{
    return shown() != m_loaded;
}

int SettingsViewModel::msfsLibraryReloadToken() const
{
    return m_config.get(config::msfsLibraryReloadToken);
}

QString SettingsViewModel::dataFolder() const
{
    return QDir::toNativeSeparators(m_config.dataRoot());
}

QString SettingsViewModel::appVersion() const
{
    return QCoreApplication::applicationVersion();
}

QVariantMap SettingsViewModel::hints() const
{
    QVariantMap result;
    if (!portOf(m_portText))
        result.insert(QStringLiteral("xplaneUdpPort"), tr("应为 1 到 65535，仍用 %1").arg(xplaneUdpPort));
    for (const PathField &field : pathFields) {
        QStringList paths = pathsIn(field, shown());
        paths.removeIf([this](const QString &path) { return !m_missingFolders.contains(path); });
        if (!paths.isEmpty())
            result.insert(QString::fromUtf8(field.property),
                          tr("找不到文件夹：%1").arg(paths.join(QStringLiteral("、"))));
    }
    return result;
}

void SettingsViewModel::setSaveStatus(const QString &status)
{
    m_saveStatus = status;
    emit saveStatusChanged();
}

void SettingsViewModel::onSettingsChanged()
{
    QStringList paths;
    for (const PathField &field : pathFields)
        paths += pathsIn(field, shown());
    m_folders.ask(paths);
    emit hintsChanged();
}

void SettingsViewModel::onFoldersChecked(const QStringList &missing)
{
    m_missingFolders = missing;
    emit hintsChanged();
}

} // namespace tarvo::ui::viewmodel

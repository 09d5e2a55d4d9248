#pragma once

#include "ui/viewmodel/FolderCheck.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace tarvo {
class AppConfig;
struct ServiceEndpoints;
} // namespace tarvo
namespace tarvo::network {
class ApiService;
}

namespace tarvo::ui::viewmodel {

/// The settings as the page edits them.
struct SettingsValues
{
    QString username;
    QString password;
    bool rememberPassword = false;
    bool autoLogin = false;
    bool vatsimProtocol = true;
    QString realname;
    QString homeAirport;
    int xplaneUdpPort = 0;
    QString xplaneNetworkAddress;
    QString xplaneCslPathsText; ///< one path a line, as the other lists
    QString msfsPackagesPath2020;
    QString msfsCommunityPath2020;
    QString msfsPackagesPath2024;
    QString msfsCommunityPath2024;
    QString msfsCustomMappingPaths2020;
    QString msfsCustomMappingPaths2024;

    bool operator==(const SettingsValues &) const = default;
};

/// A copy of the settings for the page to edit, which saveAll() writes back. In QML it is the context property
/// "settingsBackend".
class SettingsViewModel : public QObject, private SettingsValues
{
    Q_OBJECT
    Q_PROPERTY(QString username MEMBER username NOTIFY settingsChanged)
    Q_PROPERTY(QString password MEMBER password NOTIFY settingsChanged)
    Q_PROPERTY(bool rememberPassword MEMBER rememberPassword NOTIFY settingsChanged)
    Q_PROPERTY(bool autoLogin MEMBER autoLogin NOTIFY settingsChanged)
    Q_PROPERTY(bool vatsimProtocol MEMBER vatsimProtocol NOTIFY settingsChanged)
    Q_PROPERTY(QString realname MEMBER realname NOTIFY settingsChanged)
    Q_PROPERTY(QString homeAirport MEMBER homeAirport NOTIFY settingsChanged)
    Q_PROPERTY(int xplaneUdpPort READ udpPort WRITE setUdpPort NOTIFY settingsChanged)
    Q_PROPERTY(QString xplaneNetworkAddress MEMBER xplaneNetworkAddress NOTIFY settingsChanged)
    Q_PROPERTY(QString xplaneCslPathsText MEMBER xplaneCslPathsText NOTIFY settingsChanged)
    Q_PROPERTY(QString msfsPackagesPath2020 MEMBER msfsPackagesPath2020 NOTIFY settingsChanged)
    Q_PROPERTY(QString msfsCommunityPath2020 MEMBER msfsCommunityPath2020 NOTIFY settingsChanged)
    Q_PROPERTY(QString msfsPackagesPath2024 MEMBER msfsPackagesPath2024 NOTIFY settingsChanged)
    Q_PROPERTY(QString msfsCommunityPath2024 MEMBER msfsCommunityPath2024 NOTIFY settingsChanged)
    Q_PROPERTY(QString msfsCustomMappingPaths2020 MEMBER msfsCustomMappingPaths2020 NOTIFY settingsChanged)
    Q_PROPERTY(QString msfsCustomMappingPaths2024 MEMBER msfsCustomMappingPaths2024 NOTIFY settingsChanged)
    /// The port as it is typed. While that is no port, the number stays as it was.
    Q_PROPERTY(QString xplaneUdpPortText READ udpPortText WRITE setUdpPortText NOTIFY settingsChanged)
    Q_PROPERTY(bool edited READ isEdited NOTIFY settingsChanged)
    Q_PROPERTY(int msfsLibraryReloadToken READ msfsLibraryReloadToken NOTIFY settingsChanged)
    Q_PROPERTY(QString apiBaseUrl READ apiBaseUrl CONSTANT)
    Q_PROPERTY(QString networkAddress READ networkAddress CONSTANT)
    Q_PROPERTY(QString voiceAddress READ voiceAddress CONSTANT)
    Q_PROPERTY(QString appVersion READ appVersion CONSTANT)
    Q_PROPERTY(QString dataFolder READ dataFolder CONSTANT)
    Q_PROPERTY(QString saveStatus READ saveStatus NOTIFY saveStatusChanged)
    /// What is wrong with a field, by the name of its property; no entry for a good one.
    Q_PROPERTY(QVariantMap hints READ hints NOTIFY hintsChanged)

public:
    /// `config` and `api` outlive it.
    SettingsViewModel(AppConfig &config, const network::ApiService &api, const ServiceEndpoints &endpoints,
                      QObject *parent = nullptr);

    int udpPort() const { return xplaneUdpPort; }
    void setUdpPort(int port);
    QString udpPortText() const { return m_portText; }
    void setUdpPortText(const QString &text);
    /// Whether the pilot has changed something since it was read or written.
    bool isEdited() const;
    int msfsLibraryReloadToken() const;
    QString apiBaseUrl() const { return m_apiBaseUrl; }
    QString networkAddress() const { return m_networkAddress; }
    QString voiceAddress() const { return m_voiceAddress; }
    QString appVersion() const;
    /// Where settings and logs are, as the system writes it.
    QString dataFolder() const;
    QString saveStatus() const { return m_saveStatus; }
    QVariantMap hints() const;

    /// Reads the settings. Edits are lost.
    Q_INVOKABLE void reload();
    /// Writes what has changed.
    Q_INVOKABLE void saveAll();
    /// Has the library of MSFS aircraft read anew.
    Q_INVOKABLE void triggerMsfsLibraryReload();
    Q_INVOKABLE void triggerMSFSLibraryReload() { triggerMsfsLibraryReload(); }

signals:
    void settingsChanged();
    void saveStatusChanged();
    void hintsChanged();

private:
    SettingsValues &shown() { return *this; }
    const SettingsValues &shown() const { return *this; }
    void setSaveStatus(const QString &status);
    void onSettingsChanged();
    void onFoldersChecked(const QStringList &missing);

    AppConfig &m_config;
    const network::ApiService &m_api;
    const QString m_apiBaseUrl;
    const QString m_networkAddress;
    const QString m_voiceAddress;
    SettingsValues m_stored; ///< as last read or written
    SettingsValues m_loaded; ///< as it was shown then
    QString m_portText;
    QString m_saveStatus;
    QStringList m_missingFolders;
    FolderCheck m_folders;
};

} // namespace tarvo::ui::viewmodel

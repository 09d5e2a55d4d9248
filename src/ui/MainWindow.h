#pragma once

#include "ServiceEndpoints.h"
#include "input/PttService.h"
#include "model/SimulatorMode.h"
#include "ui/AccountFeed.h"
#include "ui/SoundPlayer.h"
#include "ui/viewmodel/CompactViewModel.h"
#include "ui/viewmodel/DashboardViewModel.h"
#include "ui/viewmodel/LeaveQuestion.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/PilotOverview.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SettingsViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"
#include "ui/viewmodel/SoundsViewModel.h"
#include "ui/viewmodel/StatusViewModel.h"
#include "ui/viewmodel/Tour.h"
#include "ui/viewmodel/VoiceServiceViewModel.h"
#include "ui/viewmodel/VoiceSettingsViewModel.h"
#include "voice/engine/AudioDevice.h"

#include <QMainWindow>

#include <memory>

class QQuickView;

namespace tarvo {
class AppConfig;
}
namespace tarvo::network {
class ApiService;
class SwiftAircraftIcaoService;
} // namespace tarvo::network
namespace tarvo::model {
struct ConnectInfo;
}
namespace tarvo::manager {
class ControllerManager;
class NetworkManager;
struct SimulatorData;
} // namespace tarvo::manager

namespace tarvo::ui {

class MessagesFeed;
class OverviewFeed;
class SimulatorFeed;
class StatusFeed;
class VoiceFeed;

/// Hosts the QML pages and owns their view models. Feeds these from the session, and turns their requests into calls.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(std::shared_ptr<manager::NetworkManager> network,
               std::shared_ptr<manager::ControllerManager> controllers, AppConfig &config, network::ApiService &api,
               network::SwiftAircraftIcaoService &icao, const ServiceEndpoints &endpoints = {},
               QWidget *parent = nullptr);
    ~MainWindow() override;

    /// "XPLANE" or "MSFS"; "NONE" while no simulator is picked.
    QString currentMode() const { return model::modeText(m_mode); }

    DashboardViewModel &dashboard() { return m_dashboard; }
    SimulatorPageViewModel &simulator() { return m_simulator; }
    ServerPageViewModel &server() { return m_server; }
    MessagesPageViewModel &messages() { return m_messages; }
    VoiceServiceViewModel &voice() { return m_voice; }
    CompactViewModel &compact() { return m_compact; }
    LeaveQuestion &leaveQuestion() { return m_leave; }
    PilotOverview &overview() { return m_overview; }
    StatusViewModel &status() { return m_status; }
    Tour &tour() { return m_tour; }
    SoundPlayer &sounds() { return m_sounds; }
    SoundsViewModel &soundSettings() { return m_soundSettings; }
    QQuickView *view() const { return m_view; }

signals:
    /// The first frame of the pages is on the screen.
    void painted();
    /// The taskbar was asked to point at the window, which isn't in front.
    void attentionAsked();
    void logoutRequested();
    // Raised when that simulator was picked. A receiver that doesn't have it picks "NONE" again.
    void msfsSelected();
    void xplaneSelected();

public slots:
    void onLogoutClicked();
    /// "XPLANE" or "MSFS" picks that simulator; any other text clears the mode.
    void onModeSelected(const QString &mode);

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void createView();
    void passFocusOn(const QWindow *focused);
    void followScreen();
    void exposeModels();
    void connectRequests();
    void connectSounds();
    void connectCompact();
    void placeCompact();
    void onCompactChanged();
    void askForExportFile(const QString &fileName, const QString &text);
    void exportTo(const QString &path, const QString &text);
    void connectSession();
    void connectStatus();
    void askBeforeClosing();
    void updateProfile();
    void onConnectRequested(const QString &callsign, const QString &typeCode, const QString &selcal, bool observer);
    void connectToNetwork(const model::ConnectInfo &info, LinkState stateBefore);
    void onDisconnectRequested();
    void onNetworkConnected(const QString &callsign);
    void onNetworkDisconnected(bool forced);
    void onSimulatorStateChanged(bool connected);
    void onSimulatorFailed(const QString &message);
    void onSimulatorAwaited();
    void reconnectToNetwork();
    void askForAttention();
    void showFlight(const manager::SimulatorData &sample);
    void tellWhetherSeen();
    void setSimulatorState(bool connected, LinkState state);
    void setServerState(bool connected, LinkState state);
    void log(const QString &text);

    AppConfig &m_config;
    network::ApiService &m_api;
    ServiceEndpoints m_endpoints;
    model::SimulatorMode m_mode = model::SimulatorMode::None;
    std::shared_ptr<manager::NetworkManager> m_network;
    std::shared_ptr<manager::ControllerManager> m_controllers;
    input::PttService m_ptt;
    voice::AudioDevice m_audioDevice;
    DashboardViewModel m_dashboard;
    SimulatorPageViewModel m_simulator;
    ServerPageViewModel m_server;
    MessagesPageViewModel m_messages;
    CompactViewModel m_compact;
    StatusViewModel m_status;
    LeaveQuestion m_leave;
    PilotOverview m_overview;
    VoiceServiceViewModel m_voice;
    viewmodel::SettingsViewModel m_settings;
    viewmodel::VoiceSettingsViewModel m_voiceSettings;
    AccountFeed m_account;
    SoundsViewModel m_soundSettings;
    Tour m_tour;
    SoundPlayer m_sounds;
    std::unique_ptr<SimulatorFeed> m_simulatorFeed; ///< null without a session
    std::unique_ptr<MessagesFeed> m_messagesFeed;   ///< null without a session
    std::unique_ptr<VoiceFeed> m_voiceFeed;         ///< null without a session
    std::unique_ptr<StatusFeed> m_statusFeed;       ///< null without a session
    std::unique_ptr<OverviewFeed> m_overviewFeed;   ///< null without a session
    QQuickView *m_view = nullptr;                   ///< owned by the central widget
};

} // namespace tarvo::ui

#include "ui/MainWindow.h"

#include "AppConfig.h"
#include "common/Units.h"
#include "input/PttHandler.h"
#include "manager/NetworkManager.h"
#include "manager/PilotName.h"
#include "model/ConnectInfo.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "ui/LastConnection.h"
#include "ui/MessagesFeed.h"
#include "ui/OverviewFeed.h"
#include "ui/SceneGraph.h"
#include "ui/SimulatorFeed.h"
#include "ui/StatusFeed.h"
#include "ui/TextFile.h"
#include "ui/VoiceFeed.h"
#include "ui/WindowBackdrop.h"
#include "ui/WindowPlace.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/SoundThread.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDebug>
#include <QDir>
#include <QFileDialog>
#include <QGuiApplication>
#include <QIcon>
#include <QMetaMethod>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QScreen>
#include <QShowEvent>
#include <QStandardPaths>

#include <chrono>

namespace tarvo::ui {

using model::SimulatorMode;

namespace {
constexpr std::chrono::milliseconds figuresEvery{200}; ///< as fast as a figure can be read
constexpr float connectionSoundVolume = 0.55F;

voice::VoiceClient *voiceClientOf(const std::shared_ptr<manager::NetworkManager> &network)
{
    return network ? &network->voiceClient() : nullptr;
}

std::shared_ptr<voice::SoundThread> soundThreadOf(const std::shared_ptr<manager::NetworkManager> &network)
{
    return network ? network->voiceClient().soundThread() : std::make_shared<voice::SoundThread>();
}

QUrl soundUrl(const char *name)
{
    return QUrl(QStringLiteral("qrc:/resources/sounds/") + QLatin1String(name));
}
} // namespace

MainWindow::MainWindow(std::shared_ptr<manager::NetworkManager> network,
                       std::shared_ptr<manager::ControllerManager> controllers, AppConfig &config,
                       network::ApiService &api, network::SwiftAircraftIcaoService &icao,
                       const ServiceEndpoints &endpoints, QWidget *parent)
    : QMainWindow(parent),
      m_config(config),
      m_api(api),
      m_endpoints(endpoints),
      m_network(std::move(network)),
      m_controllers(std::move(controllers)),
      m_ptt(input::PttHandler::instance()),
      m_audioDevice(config, soundThreadOf(m_network)),
      m_server(icao),
      m_compact(m_messages),
      m_voice(voiceClientOf(m_network), m_ptt, m_audioDevice, config),
      m_settings(config, api, endpoints),
      m_voiceSettings(config, m_audioDevice, m_ptt),
      m_account(api, m_dashboard),
      m_soundSettings(config.state()),
      m_tour(config.state())
{
    setWindowTitle(tr("TARVO Client - 控制面板"));
    setWindowIcon(QIcon(QStringLiteral(":/resources/logo.png")));
    setMinimumSize(1000, 700);
    applyWindowBackdrop(*this);
    m_dashboard.setWebPages(endpoints.updateUrl, endpoints.docsUrl);
    updateProfile();
    m_ptt.setBoundKey(config.get(config::voicePttKey));
    followScreen();
    createView();
    connectRequests();
    offerConnection(m_server, config.state());
    connectSounds();
    connectCompact();
    if (m_network)
        connectSession();
}

MainWindow::~MainWindow()
{
    // The focus moves while the view is destroyed. The window must not hear of it any more.
    disconnect(qGuiApp, nullptr, this, nullptr);
    // The pages bind to the view models: they must go first.
    const std::unique_ptr<QWidget> pages(takeCentralWidget());
}

void MainWindow::createView()
{
    chooseSceneGraph();
    m_view = new QQuickView;
    m_view->setResizeMode(QQuickView::SizeRootObjectToView);
    m_view->setColor(Qt::transparent);
    exposeModels();
    m_view->setSource(QUrl(QStringLiteral("qrc:/src/ui/view/Dashboard.qml")));

    QWidget *container = QWidget::createWindowContainer(m_view, this); // takes the view
    container->setContentsMargins(0, 0, 0, 0);
    container->setFocusPolicy(Qt::StrongFocus);
    setCentralWidget(container);
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, &MainWindow::passFocusOn);
    connect(m_view, &QQuickWindow::frameSwapped, this, &MainWindow::painted, Qt::SingleShotConnection);

    const QQuickItem *root = m_view->rootObject();
    const int logout = root ? root->metaObject()->indexOfSignal("logoutRequested()") : -1;
    if (logout < 0) {
        qCritical() << "The pages could not be loaded:" << m_view->errors();
        return;
    }
    connect(root, root->metaObject()->method(logout), this,
            metaObject()->method(metaObject()->indexOfSlot("onLogoutClicked()")), Qt::QueuedConnection);
}

void MainWindow::passFocusOn(const QWindow *focused)
{
    // Window managers focus the frame, some at every click, even when the view inside has the keys already. The
    // container doesn't hear of that, because its window was active all along, and the keys would be lost.
    if (focused && focused == windowHandle())
        m_view->requestActivate();
}

void MainWindow::exposeModels()
{
    QQmlContext *pages = m_view->rootContext();
    pages->setContextProperty(QStringLiteral("dashboardBackend"), &m_dashboard);
    pages->setContextProperty(QStringLiteral("simulatorBackend"), &m_simulator);
    pages->setContextProperty(QStringLiteral("serverBackend"), &m_server);
    pages->setContextProperty(QStringLiteral("messagesBackend"), &m_messages);
    pages->setContextProperty(QStringLiteral("statusBackend"), &m_status);
    pages->setContextProperty(QStringLiteral("leaveBackend"), &m_leave);
    pages->setContextProperty(QStringLiteral("overviewBackend"), &m_overview);
    pages->setContextProperty(QStringLiteral("compactBackend"), &m_compact);
    pages->setContextProperty(QStringLiteral("soundsBackend"), &m_soundSettings);
    pages->setContextProperty(QStringLiteral("tourBackend"), &m_tour);
    pages->setContextProperty(QStringLiteral("voiceBackend"), &m_voice);
    pages->setContextProperty(QStringLiteral("voiceServiceBackend"), &m_voice);
    pages->setContextProperty(QStringLiteral("settingsBackend"), &m_settings);
    pages->setContextProperty(QStringLiteral("voiceSettingsBackend"), &m_voiceSettings);
}

void MainWindow::followScreen()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    const auto takeCorner = [this, screen] {
        m_voice.setMiniCorner(screen->availableGeometry().bottomRight() + QPoint(1, 1));
    };
    takeCorner();
    connect(screen, &QScreen::availableGeometryChanged, this, takeCorner);
}

void MainWindow::connectRequests()
{
    // A request comes from a QML handler of a page. Answering it may run a nested event loop, in which the page may be
    // destroyed. So it is answered later, from the event loop.
    const auto later = Qt::QueuedConnection;
    connect(&m_dashboard, &DashboardViewModel::modeChangedRequest, this, &MainWindow::onModeSelected, later);
    connect(&m_dashboard, &DashboardViewModel::serverDisconnectRequest, this, &MainWindow::onDisconnectRequested,
            later);
    connect(&m_server, &ServerPageViewModel::disconnectRequested, this, &MainWindow::onDisconnectRequested, later);
    connect(&m_dashboard, &DashboardViewModel::serverConnectRequest, this, &MainWindow::onConnectRequested);
    connect(&m_server, &ServerPageViewModel::connectRequested, this, &MainWindow::onConnectRequested);
    connect(&m_messages, &MessagesPageViewModel::exportRequested, this, &MainWindow::askForExportFile, later);
    connect(&m_config, &AppConfig::configChanged, this, &MainWindow::updateProfile);
    connect(&m_voice, &VoiceServiceViewModel::miniModeChanged, this, &MainWindow::tellWhetherSeen);
    connect(
        &m_leave, &LeaveQuestion::closeConfirmed, this, [this] { close(); }, later);
}

void MainWindow::connectSounds()
{
    const auto apply = [this] {
        m_sounds.setOn(m_soundSettings.isOn());
        m_sounds.setLevel(static_cast<float>(m_soundSettings.volume()) / 100.0F);
    };
    apply();
    connect(&m_soundSettings, &SoundsViewModel::changed, this, apply);
    connect(&m_soundSettings, &SoundsViewModel::trialRequested, this,
            [this] { m_sounds.play(soundUrl("manager.mp3"), connectionSoundVolume); });
    connect(&m_sounds, &SoundPlayer::wanted, &m_soundSettings, &SoundsViewModel::showSign);
}

void MainWindow::connectCompact()
{
    connect(&m_compact, &CompactViewModel::openingSoon, this, &MainWindow::placeCompact);
    connect(&m_compact, &CompactViewModel::openChanged, this, &MainWindow::onCompactChanged);
    connect(&m_compact, &CompactViewModel::placeLeft, this,
            [this](const QRect &place) { m_config.state().set(state::compactPlace, placeText(place)); });
}

void MainWindow::askForExportFile(const QString &fileName, const QString &text)
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    auto *dialog = new QFileDialog(this, tr("导出消息"), folder.filePath(fileName), tr("文本文件 (*.txt)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    connect(dialog, &QFileDialog::fileSelected, this, [this, text](const QString &path) { exportTo(path, text); });
    dialog->open();
}

void MainWindow::exportTo(const QString &path, const QString &text)
{
    const QString shown = QDir::toNativeSeparators(path);
    const QString error = writeTextFile(path, text);
    m_messages.setExportNote(error.isEmpty() ? tr("已导出到 %1").arg(shown) : tr("无法写入 %1：%2").arg(shown, error),
                             !error.isEmpty());
}

/// Top right, until it has been dragged elsewhere.
void MainWindow::placeCompact()
{
    constexpr int margin = 16;
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry().adjusted(0, margin, -margin, 0);
    QRect corner(screen.topLeft(), CompactViewModel::size);
    corner.moveRight(screen.right());
    m_compact.setPlace(rememberedPlace(m_config.state(), state::compactPlace, corner));
}

/// The one stands for the other.
void MainWindow::onCompactChanged()
{
    tellWhetherSeen();
    if (!isVisible())
        return;
    if (m_compact.isOpen()) {
        setWindowState(windowState() | Qt::WindowMinimized);
    } else {
        setWindowState(windowState() & ~Qt::WindowMinimized);
        raise();
        activateWindow();
    }
}

void MainWindow::connectSession()
{
    using manager::NetworkManager;
    NetworkManager *network = m_network.get();
    connect(&m_dashboard, &DashboardViewModel::simulatorReconnectRequest, network, &NetworkManager::reconnectSimulator,
            Qt::QueuedConnection);
    connect(network, &NetworkManager::networkConnected, this, &MainWindow::onNetworkConnected);
    connect(network, &NetworkManager::networkDisconnected, this, &MainWindow::onNetworkDisconnected);
    connect(network, &NetworkManager::simulatorConnectionStateChanged, this, &MainWindow::onSimulatorStateChanged);
    connect(network, &NetworkManager::simulatorConnectionFailed, this, &MainWindow::onSimulatorFailed);
    connect(network, &NetworkManager::notificationPosted, this,
            [this](const QString &message) { m_server.addRecentEvent(tr("通知"), message, tr("系统")); });
    m_simulatorFeed = std::make_unique<SimulatorFeed>(m_network, m_simulator);
    m_simulatorFeed->setPace(figuresEvery);
    connect(m_simulatorFeed.get(), &SimulatorFeed::sampleShown, this, &MainWindow::showFlight);
    m_messagesFeed = std::make_unique<MessagesFeed>(m_network, m_controllers, m_messages, m_sounds);
    m_voiceFeed = std::make_unique<VoiceFeed>(m_network, m_audioDevice, m_voice);
    connectStatus();
    m_overviewFeed = std::make_unique<OverviewFeed>(m_network, m_server, m_simulator, m_messages, m_overview);
}

/// Behind all that sets the states' texts.
void MainWindow::connectStatus()
{
    m_statusFeed =
        std::make_unique<StatusFeed>(m_network, StatusSources{m_dashboard, m_server, m_simulator, m_voice}, m_status);
    const auto later = Qt::QueuedConnection;
    connect(m_statusFeed.get(), &StatusFeed::attentionWanted, this, &MainWindow::askForAttention);
    connect(&m_status, &StatusViewModel::networkReconnectRequested, this, &MainWindow::reconnectToNetwork, later);
    connect(&m_status, &StatusViewModel::simulatorReconnectRequested, &m_dashboard,
            &DashboardViewModel::requestSimulatorReconnect);
    connect(&m_status, &StatusViewModel::voiceReconnectRequested, &m_voice,
            &VoiceServiceViewModel::connectToVoiceServer);
    connect(&m_dashboard, &DashboardViewModel::simulatorReconnectRequest, this, &MainWindow::onSimulatorAwaited);
    connect(&m_simulator, &SimulatorPageViewModel::reconnectRequested, this, &MainWindow::onSimulatorAwaited);
}

void MainWindow::showEvent(QShowEvent *event)
{
    QMainWindow::showEvent(event);
    tellWhetherSeen();
    if (event->spontaneous())
        return;      // back from the task bar: the pages stay as they are
    updateProfile(); // another account may have signed in
    m_account.applyUserInfoDefaults();
    m_account.loadUserInfo();
    m_account.loadUserHistory();
    m_account.loadLeaderboard();
    m_tour.begin();
}

void MainWindow::hideEvent(QHideEvent *event)
{
    QMainWindow::hideEvent(event);
    if (!event->spontaneous()) {
        m_voice.setMiniMode(false); // it would keep a program running whose main window is closed
        m_compact.setOpen(false);   // so would this
        rememberPlace(*this, m_config.state());
    }
    tellWhetherSeen();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    // The system's own end can't wait for an answer.
    if (event->spontaneous() && m_leave.mustAsk() && !qGuiApp->isSavingSession()) {
        event->ignore();
        askBeforeClosing();
        return;
    }
    QMainWindow::closeEvent(event);
}

void MainWindow::askBeforeClosing()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
    m_leave.close();
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    const Qt::WindowStates before = static_cast<QWindowStateChangeEvent *>(event)->oldState();
    if (before.testFlag(Qt::WindowMinimized) && !isMinimized())
        m_compact.setOpen(false); // the task bar, or a second start, brings this window back
    tellWhetherSeen();
}

void MainWindow::tellWhetherSeen()
{
    const bool isSeen = (isVisible() && !isMinimized()) || m_voice.miniMode() || m_compact.isOpen();
    m_voice.setSeen(isSeen);
    if (m_simulatorFeed)
        m_simulatorFeed->setSeen(isSeen);
}

void MainWindow::updateProfile()
{
    m_server.setVatsimProtocol(m_config.get(config::authVatsim));
    m_server.setProfile(manager::pilotName(m_config, m_api),
                        manager::homeAirport(m_config.get(config::profileHomeAirport)));
}

void MainWindow::onLogoutClicked()
{
    // The session's end is the pilot's wish, and a window that goes makes no sound.
    if (m_statusFeed)
        m_statusFeed->networkLeaves();
    m_sounds.setOn(false);
    emit logoutRequested();
}

void MainWindow::onModeSelected(const QString &mode)
{
    if (!m_network)
        return;
    const SimulatorMode picked = model::modeFromText(mode);
    m_mode = picked;
    m_dashboard.setCurrentMode(currentMode());
    m_simulator.setMode(currentMode());
    m_simulator.setFailure({});
    m_server.setCurrentMode(currentMode());
    if (picked == SimulatorMode::None)
        return;
    m_tour.modePicked();
    if (picked == SimulatorMode::XPlane)
        emit xplaneSelected();
    else
        emit msfsSelected();
    // Not the server page's status: there these words would disable the connect button.
    if (m_mode == picked)
        setSimulatorState(false, LinkState::Connecting);
}

void MainWindow::onConnectRequested(const QString &callsign, const QString &typeCode, const QString &selcal,
                                    bool observer)
{
    if (!m_network)
        return;
    const LinkState before = m_server.serverState();
    if (!m_network->isBusy())
        setServerState(false, LinkState::Connecting);
    QMetaObject::invokeMethod(
        this,
        [this, info = model::ConnectInfo{callsign, typeCode, selcal, observer}, before] {
            connectToNetwork(info, before);
        },
        Qt::QueuedConnection);
}

void MainWindow::connectToNetwork(const model::ConnectInfo &info, LinkState stateBefore)
{
    if (!m_network->connectToNetwork(info.callsign, info.typeCode, info.selcal, info.observer)) {
        // A refusal has told its reason. Another attempt may be under way.
        if (!m_network->isBusy() && m_server.serverState() == LinkState::Connecting)
            setServerState(false, stateBefore);
        return;
    }
    setServerState(false, LinkState::Connecting);
    log(tr("正在连接 FSD %1:%2，呼号=%3，机型=%4，观察员模式=%5")
            .arg(m_endpoints.fsdHost, QString::number(m_endpoints.fsdPort), info.callsign, info.typeCode,
                 info.observer ? tr("是") : tr("否")));
}

void MainWindow::onDisconnectRequested()
{
    if (!m_network)
        return;
    // Told first: the session ends inside the call, and its end sets the last state.
    setServerState(m_server.serverConnected(), LinkState::Disconnecting);
    log(tr("正在断开 FSD 连接..."));
    m_statusFeed->networkLeaves();
    m_network->disconnectFromNetwork();
    if (m_server.serverState() == LinkState::Disconnecting)
        setServerState(false, LinkState::Absent); // there was nothing to end
}

void MainWindow::onNetworkConnected(const QString &callsign)
{
    setServerState(true, LinkState::Connected);
    m_leave.setOnline(callsign);
    rememberConnection(m_network->connectInfo(), m_config.state());
    m_server.setConnectedAsObserver(m_network->connectInfo().observer);
    m_server.setEndpoint(QStringLiteral("%1:%2").arg(m_endpoints.fsdHost).arg(m_endpoints.fsdPort));
    log(tr("FSD 已连接：%1").arg(callsign));
    m_server.addRecentEvent(tr("网络已连接"), tr("网络已连接，当前呼号：%1").arg(callsign), tr("网络"));
    m_sounds.play(soundUrl("connect.mp3"), connectionSoundVolume);
}

void MainWindow::onNetworkDisconnected(bool forced)
{
    const QString callsign = m_network->connectInfo().callsign;
    setServerState(false, forced ? LinkState::ForcedOut : LinkState::Ended);
    m_leave.setOnline({});
    m_server.setConnectedAsObserver(false);
    m_server.setEndpoint(QString());
    log(tr("FSD 已断开：%1").arg(callsign));
    m_server.addRecentEvent(tr("网络已断开"), tr("网络连接已断开：%1").arg(callsign), forced ? tr("强制") : tr("网络"));
    m_sounds.play(soundUrl("disconnect.mp3"), connectionSoundVolume);
}

void MainWindow::onSimulatorStateChanged(bool connected)
{
    setSimulatorState(connected, connected ? LinkState::Connected : LinkState::Absent);
}

void MainWindow::onSimulatorAwaited()
{
    if (!m_simulator.simulatorConnected())
        setSimulatorState(false, LinkState::Connecting);
}

void MainWindow::reconnectToNetwork()
{
    const model::ConnectInfo last = m_network->connectInfo();
    m_dashboard.requestServerConnect(last.callsign, last.typeCode, last.selcal, last.observer);
}

void MainWindow::askForAttention()
{
    if (isActiveWindow())
        return;
    QApplication::alert(this);
    emit attentionAsked();
}

void MainWindow::onSimulatorFailed(const QString &message)
{
    // What counts is the simulator's data, which may come although the link to its plugin is down.
    if (!m_simulator.simulatorConnected())
        setSimulatorState(false, LinkState::Failed);
    m_simulator.setFailure(message);
    m_server.addRecentEvent(tr("模拟器连接失败"), message, tr("模拟器"));
}

void MainWindow::showFlight(const manager::SimulatorData &sample)
{
    const model::UserAircraftData &aircraft = sample.aircraft;
    m_dashboard.setFlightData(aircraft.latitude, aircraft.longitude, aircraft.altitudeMslM * common::feetPerMetre,
                              aircraft.heading, aircraft.groundSpeed);
}

void MainWindow::setSimulatorState(bool connected, LinkState state)
{
    m_dashboard.setSimulatorState(connected, state);
    m_simulator.setSimulatorState(connected, state);
}

void MainWindow::setServerState(bool connected, LinkState state)
{
    m_dashboard.setServerState(connected, state);
    m_server.setServerState(connected, state);
}

void MainWindow::log(const QString &text)
{
    m_dashboard.appendServerLog(text);
    m_server.appendLog(text);
}

} // namespace tarvo::ui

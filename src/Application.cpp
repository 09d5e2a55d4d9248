#include "Application.h"

#include "AppConfig.h"
#include "DataFolders.h"
#include "LastWords.h"
#include "Logging.h"
#include "common/Clock.h"
#include "manager/AircraftManager.h"
#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "manager/UserAircraftManager.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "simulator/msfs/MsfsAdapter.h"
#include "simulator/xplane/XPlaneAdapter.h"
#include "ui/MainWindow.h"
#include "ui/ThemeManager.h"
#include "ui/WindowPlace.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/SoundThread.h"

#include <QApplication>
#include <QDebug>
#include <QDir>
#include <QTimer>

#include <chrono>
#include <cstdlib>

namespace tarvo {

using namespace std::chrono_literals;
using model::SimulatorMode;

namespace {
constexpr auto longestUnpainted = 3s; ///< a window that opens minimised may never be
}

void Application::setUp()
{
    QCoreApplication::setApplicationVersion(QStringLiteral(TARVO_VERSION));
    ui::ThemeManager::instance().applyTheme(ui::ThemeManager::Theme::Light);
    logging::installHandler();
    const QString name = QStringLiteral("%1.log").arg(logging::fileTimeStamp(common::systemClock().wallMs()));
    logging::openLogFile(QDir(AppConfig::instance().logsFolder()).filePath(name));
    lastwords::install(AppConfig::instance().logsFolder(), QStringLiteral(TARVO_VERSION));
    const DataFolders &folders = dataFolders();
    qInfo().noquote() << "Version" << QLatin1String(TARVO_VERSION) << "with its data in"
                      << QDir::toNativeSeparators(folders.root) << "-" << folders.reason;
    lastwords::tellOfEarlierCrashes(AppConfig::instance().logsFolder(), AppConfig::instance().state());
    if (const QString warning = AppConfig::instance().startupWarning(); !warning.isEmpty())
        qWarning().noquote() << warning;
    if (!AppConfig::instance().isSaved())
        qWarning("Settings can't be written; what is set is lost at the end"); // said before the log was open, too
}

Application::Application(AppConfig &config, network::ApiService &api, network::SwiftAircraftIcaoService &icao,
                         const ServiceEndpoints &endpoints,
                         std::shared_ptr<simulator::msfs::SimConnectBinding> simConnect)
    : m_config(config),
      m_api(api),
      m_icao(icao),
      m_endpoints(endpoints),
      m_simConnect(std::move(simConnect)),
      m_sound(std::make_shared<voice::SoundThread>()),
      m_loginWindow(config, api, endpoints)
{
    QObject::connect(&m_loginWindow, &ui::LoginWindow::loginSuccess, &m_loginWindow,
                     [this] { whenUnwound([this] { compose(); }); });
}

Application::~Application() = default;

int Application::run()
{
    m_loginWindow.show();
    return QApplication::exec();
}

void Application::comeForward()
{
    QWidget *window = m_mainWindow ? static_cast<QWidget *>(m_mainWindow.get()) : &m_loginWindow;
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
}

void Application::leave(int code, const network::ApiService &api)
{
    if (api.isWaiting())
        std::_Exit(code); // settings and log are written as they come: nothing is lost
}

void Application::compose()
{
    cleanUp();
    m_loginPlace = ui::normalPlace(m_loginWindow);
    m_loginMaximized = m_loginWindow.isMaximized();
    // What takes long comes first, so that there is always a window to be seen.
    m_icao.ensureLoaded();
    m_networkManager =
        std::make_shared<manager::NetworkManager>(m_config, m_api, m_icao, m_endpoints, common::systemClock(), m_sound);
    m_aircraftManager = std::make_shared<manager::AircraftManager>(m_networkManager);
    m_userAircraftManager = std::make_shared<manager::UserAircraftManager>(m_networkManager);
    m_controllerManager = std::make_shared<manager::ControllerManager>(m_networkManager);
    m_mainWindow =
        std::make_unique<ui::MainWindow>(m_networkManager, m_controllerManager, m_config, m_api, m_icao, m_endpoints);
    m_mainWindow->leaveQuestion().setSilenced(m_leavesUnasked);
    QObject::connect(m_mainWindow.get(), &ui::MainWindow::logoutRequested, &m_loginWindow, [this] { logOut(); });
    QObject::connect(m_mainWindow.get(), &ui::MainWindow::msfsSelected, &m_loginWindow,
                     [this] { activate(SimulatorMode::Msfs); });
    QObject::connect(m_mainWindow.get(), &ui::MainWindow::xplaneSelected, &m_loginWindow,
                     [this] { activate(SimulatorMode::XPlane); });
    openMainWindow();
    m_networkManager->voiceClient().setCid(static_cast<quint32>(m_api.currentUser().id));
}

void Application::openMainWindow()
{
    const QRect place = ui::reachablePlace(m_loginPlace);
    m_mainWindow->resize(place.size());
    m_mainWindow->move(place.topLeft());
    m_mainWindow->setMinimumSize(m_loginWindow.minimumSize());
    ui::restorePlace(*m_mainWindow, m_config.state());
    if (m_loginMaximized)
        m_mainWindow->setWindowState(m_mainWindow->windowState() | Qt::WindowMaximized);
    // Unseen, or at least under the login window, until there is something to see.
    m_mainWindow->setWindowOpacity(0);
    QObject::connect(m_mainWindow.get(), &ui::MainWindow::painted, m_mainWindow.get(), [this] { uncoverMainWindow(); });
    QTimer::singleShot(longestUnpainted, m_mainWindow.get(), [this] { uncoverMainWindow(); });
    m_mainWindow->show();
    m_loginWindow.stay();
    m_loginWindow.raise();
}

void Application::uncoverMainWindow()
{
    m_mainWindow->setWindowOpacity(1);
    if (m_mainWindow->isVisible())
        m_loginWindow.leave();
}

void Application::activate(SimulatorMode mode)
{
    if (!m_networkManager)
        return;
    qInfo().noquote() << "Activating" << (mode == SimulatorMode::Msfs ? "MSFS" : "X-Plane") << "backend";
    m_networkManager->setSimulator(makeSimulator(mode));
}

std::shared_ptr<simulator::Simulator> Application::makeSimulator(SimulatorMode mode) const
{
    if (mode == SimulatorMode::Msfs)
        return std::make_shared<simulator::msfs::MsfsAdapter>(m_config, m_simConnect);
    return std::make_shared<simulator::xplane::XPlaneAdapter>(m_config, m_endpoints);
}

void Application::logOut()
{
    m_api.clearSession();
    for (const StringKey &key :
         {config::authToken, config::authRefreshToken, config::authUsername, config::authPassword})
        m_config.reset(key);
    m_config.set(config::authRememberPassword, false);
    m_config.set(config::authAutoLogin, false);
    if (m_mainWindow)
        m_mainWindow->hide();
    // The wish came from inside the main window, which the clean-up destroys: not on this call stack.
    QTimer::singleShot(0ms, &m_loginWindow, [this] {
        whenUnwound([this] {
            cleanUp();
            m_config.reset(config::sessionUsername);
            m_config.reset(config::sessionPassword);
            if (!m_loginMaximized)
                m_loginWindow.move(ui::reachablePlace(m_loginPlace).topLeft()); // its screen may be gone
            m_loginWindow.leave(); // it may still be waiting for the main window
            m_loginWindow.show();
        });
    });
}

void Application::cleanUp()
{
    if (m_networkManager)
        m_networkManager->disconnectFromNetwork();
    if (m_mainWindow)
        m_leavesUnasked = m_mainWindow->leaveQuestion().isSilenced();
    m_mainWindow.reset();
    m_controllerManager.reset();
    m_userAircraftManager.reset();
    m_aircraftManager.reset();
    m_networkManager.reset();
}

/// Runs `action` at once, or, while a connect request is on the stack in its look-up's event loop, ends the look-up and
/// tries again from the event loop until that call has returned.
void Application::whenUnwound(std::function<void()> action)
{
    if (!m_networkManager || !m_networkManager->isResolving()) {
        action();
        return;
    }
    m_networkManager->disconnectFromNetwork();
    QTimer::singleShot(0ms, &m_loginWindow, [this, action = std::move(action)] { whenUnwound(action); });
}

} // namespace tarvo

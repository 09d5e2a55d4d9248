#pragma once

#include "ServiceEndpoints.h"
#include "model/SimulatorMode.h"
#include "ui/LoginWindow.h"

#include <QRect>

#include <functional>
#include <memory>

namespace tarvo {

class AppConfig;

namespace network {
class ApiService;
class SwiftAircraftIcaoService;
} // namespace network
namespace manager {
class AircraftManager;
class ControllerManager;
class NetworkManager;
class UserAircraftManager;
} // namespace manager
namespace simulator {
class Simulator;
namespace msfs {
class SimConnectBinding;
}
} // namespace simulator
namespace ui {
class MainWindow;
}
namespace voice {
class SoundThread;
}

/// Owns what a login session is made of: builds it when the pilot has signed in, takes it down when he signs out, and
/// does so any number of times. Needs the QApplication.
class Application
{
public:
    /// Theme, message handler, configuration and log file: what the windows stand on.
    static void setUp();

    /// `simConnect`: how Microsoft Flight Simulator is reached; null for SimConnect as this machine has it.
    Application(AppConfig &config, network::ApiService &api, network::SwiftAircraftIcaoService &icao,
                const ServiceEndpoints &endpoints = {},
                std::shared_ptr<simulator::msfs::SimConnectBinding> simConnect = {});
    ~Application();

    /// Shows the login window and runs the event loop. Returns its exit code.
    int run();

    /// Brings the window that is shown in front of others.
    void comeForward();

    /// To be called when all but the QApplication is gone. Ends the process where Qt's own end would wait: for the
    /// account service's name, 10 s at a name server that is silent. Returns otherwise.
    static void leave(int code, const network::ApiService &api);

    ui::LoginWindow &loginWindow() { return m_loginWindow; }
    /// Null while signed out.
    ui::MainWindow *mainWindow() const { return m_mainWindow.get(); }
    std::shared_ptr<manager::NetworkManager> networkManager() const { return m_networkManager; }

private:
    void compose();
    void openMainWindow();
    void uncoverMainWindow();
    void activate(model::SimulatorMode mode);
    std::shared_ptr<simulator::Simulator> makeSimulator(model::SimulatorMode mode) const;
    void logOut();
    void cleanUp();
    void whenUnwound(std::function<void()> action);

    AppConfig &m_config;
    network::ApiService &m_api;
    network::SwiftAircraftIcaoService &m_icao;
    ServiceEndpoints m_endpoints;
    std::shared_ptr<simulator::msfs::SimConnectBinding> m_simConnect; ///< null: this machine's own
    std::shared_ptr<voice::SoundThread> m_sound; ///< one for all sessions: the sound system knows the process
    // Destroyed from the last to the first: each dependent goes before what it depends on.
    ui::LoginWindow m_loginWindow;
    QRect m_loginPlace; ///< as normalPlace() tells it, from before it was hidden
    bool m_loginMaximized = false;
    bool m_leavesUnasked = false; ///< as the pilot has told an earlier main window
    std::shared_ptr<manager::NetworkManager> m_networkManager;
    std::shared_ptr<manager::AircraftManager> m_aircraftManager;
    std::shared_ptr<manager::UserAircraftManager> m_userAircraftManager;
    std::shared_ptr<manager::ControllerManager> m_controllerManager;
    std::unique_ptr<ui::MainWindow> m_mainWindow;
};

} // namespace tarvo

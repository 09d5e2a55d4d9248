#pragma once

#include "ui/MessagesFeed.h"
#include "ui/SimulatorFeed.h"
#include "ui/SoundPlayer.h"
#include "ui/viewmodel/DashboardViewModel.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <QObject>

#include <memory>

namespace tarvo::network {
class SwiftAircraftIcaoService;
}

namespace tarvo::bench {

/// What the main window holds behind its pages: their models and feeds, composed and fed as it does. In the place of
/// the pages somebody reads what the simulator page binds to, so that the traffic is worked out as if it were shown.
class Pages
{
public:
    Pages(std::shared_ptr<manager::NetworkManager> network, std::shared_ptr<manager::ControllerManager> controllers,
          network::SwiftAircraftIcaoService &icao);

private:
    void feed();
    void read();

    std::shared_ptr<manager::NetworkManager> m_network;
    ui::DashboardViewModel m_dashboard;
    ui::SimulatorPageViewModel m_simulator;
    ui::ServerPageViewModel m_server;
    ui::MessagesPageViewModel m_messages;
    ui::SoundPlayer m_sounds;
    ui::SimulatorFeed m_simulatorFeed;
    ui::MessagesFeed m_messagesFeed;
    QObject m_context;
    qsizetype m_shown = 0; ///< rows and characters read; keeps the reading from being for nothing
};

} // namespace tarvo::bench

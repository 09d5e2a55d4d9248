#pragma once

#include "e2e/Client.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <QTimer>

namespace tarvo::test {

/// The pages' models, which live for the whole program, fed as the main window feeds them.
struct Pages
{
    ui::viewmodel::ServerPageViewModel server;
    ui::viewmodel::MessagesPageViewModel messages;
    ui::viewmodel::SimulatorPageViewModel simulator;

    explicit Pages(network::SwiftAircraftIcaoService &icao) : server(icao) { m_trafficTimer.setInterval(1000); }

    /// The session's managers have just been made.
    void attach(Client &client)
    {
        using manager::ControllerManager;
        using manager::NetworkManager;
        using ui::viewmodel::MessagesPageViewModel;
        const NetworkManager *network = client.manager.get();
        const ControllerManager *controllers = client.controllers.get();
        MessagesPageViewModel *page = &messages;
        QObject::connect(network, &NetworkManager::notificationPosted, page, [this](const QString &text) {
            server.addRecentEvent(QStringLiteral("通知"), text, QStringLiteral("系统"));
            server.appendLog(text);
            messages.addSystemNote(text);
        });
        QObject::connect(network, &NetworkManager::networkConnected, page, [this](const QString &callsign) {
            messages.clearNearby();
            messages.setOwnCallsign(callsign);
            messages.setNetworkConnected(true);
        });
        QObject::connect(network, &NetworkManager::networkDisconnected, page, [this] {
            messages.setNetworkConnected(false);
            messages.clearNearby();
        });
        QObject::connect(network, &NetworkManager::serverMessageReceived, page,
                         &MessagesPageViewModel::addServerMessage);
        QObject::connect(network, &NetworkManager::privateMessageReceived, page,
                         &MessagesPageViewModel::addPrivateReceived);
        QObject::connect(network, &NetworkManager::broadcastMessageReceived, page,
                         &MessagesPageViewModel::addBroadcast);
        QObject::connect(network, &NetworkManager::radioMessageReceived, page,
                         &MessagesPageViewModel::addRadioReceived);
        QObject::connect(network, &NetworkManager::selcalAlertReceived, page, &MessagesPageViewModel::addSelcal);
        QObject::connect(controllers, &ControllerManager::controllerAdded, page,
                         &MessagesPageViewModel::setNearbyController);
        QObject::connect(controllers, &ControllerManager::controllerDeleted, page,
                         [this](const model::Controller &gone) { messages.removeNearbyController(gone.callsign); });
        QObject::connect(&m_trafficTimer, &QTimer::timeout, network,
                         [this, network] { simulator.setRemoteAircraft(network->remoteAircraft()); });
        m_trafficTimer.start();
    }

    qsizetype logLines() const { return server.serverLog().count(QLatin1Char('\n')) + 1; }

private:
    QTimer m_trafficTimer;
};

} // namespace tarvo::test

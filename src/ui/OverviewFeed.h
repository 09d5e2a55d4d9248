#pragma once

#include "common/Clock.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

namespace tarvo::manager {
class NetworkManager;
}

namespace tarvo::ui {

class MessagesPageViewModel;
class PilotOverview;
class ServerPageViewModel;
class SimulatorPageViewModel;

/// Gathers what the pilot flies for the overview's head, from the pages that know it.
class OverviewFeed : public QObject
{
    Q_OBJECT

public:
    /// All must outlive it.
    OverviewFeed(std::shared_ptr<manager::NetworkManager> network, const ServerPageViewModel &server,
                 const SimulatorPageViewModel &simulator, MessagesPageViewModel &messages, PilotOverview &overview,
                 QObject *parent = nullptr, const common::Clock &clock = common::systemClock());

private:
    void show();

    std::shared_ptr<manager::NetworkManager> m_network;
    const ServerPageViewModel &m_server;
    const SimulatorPageViewModel &m_simulator;
    MessagesPageViewModel &m_messages;
    PilotOverview &m_overview;
    const common::Clock &m_clock;
    std::optional<qint64> m_connectedAt; ///< steady time; nothing while not connected
    QTimer m_minuteTimer;                ///< while connected: looks whether another minute is over
};

} // namespace tarvo::ui

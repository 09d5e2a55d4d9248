#pragma once

#include "common/Clock.h"
#include "common/MessageType.h"
#include "ui/viewmodel/ConnectionStatus.h"

#include <QObject>
#include <QString>

#include <memory>

namespace tarvo::manager {
class NetworkManager;
}

namespace tarvo::ui {

class DashboardViewModel;
class ServerPageViewModel;
class SimulatorPageViewModel;
class StatusViewModel;
class VoiceServiceViewModel;

/// The view models that tell how the connections are, and by whose wish they change.
struct StatusSources
{
    DashboardViewModel &dashboard;
    ServerPageViewModel &server;
    SimulatorPageViewModel &simulator;
    VoiceServiceViewModel &voice;
};

/// Tells what is always in sight how the connections are, and why one ended if that wasn't the pilot's wish. To be made
/// when whoever sets the sources' state texts has been connected.
class StatusFeed : public QObject
{
    Q_OBJECT

public:
    /// `sources` and `status` must outlive it.
    StatusFeed(std::shared_ptr<manager::NetworkManager> network, const StatusSources &sources, StatusViewModel &status,
               QObject *parent = nullptr, const common::Clock &clock = common::systemClock());

    /// An attempt begins.
    void networkBegins();

signals:
    /// Something happened that the pilot should look at: a private text, SELCAL, a lost connection.
    void attentionWanted();

private:
    void connectStates();
    void connectWishes();
    void connectSession();
    void showSimulator();
    void showVoice();
    void onVoiceError(const QString &error);
    void onNotification(const QString &message, common::MessageType type);
    void onNetworkEnded();
    void onSimulatorFailed(const QString &message);
    void failNetwork(const QString &reason);

    std::shared_ptr<manager::NetworkManager> m_network;
    StatusSources m_from;
    StatusViewModel &m_status;
    const common::Clock &m_clock;
    ToldError m_error; ///< the session's last
    ToldError m_voiceError;
    // The pilot has asked for what ends a connection. Holds until it has ended, or is up.
    bool m_networkEndWished = false;
    bool m_simulatorEndWished = false;
    // What was shown last.
    bool m_simulatorWas = false;
    bool m_voiceWas = false;
};

} // namespace tarvo::ui

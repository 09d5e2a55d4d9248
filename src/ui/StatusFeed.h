#pragma once

#include "common/Clock.h"
#include "common/MessageType.h"
#include "ui/viewmodel/EndReason.h"

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
/// when the sources, and whoever feeds them, have been connected: where both hear a signal, what has ended is known by
/// the source, which must have changed first.
class StatusFeed : public QObject
{
    Q_OBJECT

public:
    /// `sources` and `status` must outlive it.
    StatusFeed(std::shared_ptr<manager::NetworkManager> network, const StatusSources &sources, StatusViewModel &status,
               QObject *parent = nullptr, const common::Clock &clock = common::systemClock());

    /// An attempt begins.
    void networkBegins();
    /// The pilot's wish to leave is about to be carried out. Not told when he utters it: until then the session may end
    /// by itself, or begin.
    void networkLeaves();

signals:
    /// Something happened that the pilot should look at: a private text, SELCAL, a lost connection.
    void attentionWanted();

private:
    void connectStates();
    void connectWishes();
    void connectSession();
    void showSimulator();
    void loseSimulator();
    void showVoice();
    void onVoiceError(const QString &error);
    void failVoice(const QString &reason);
    void onNotification(const QString &message, common::MessageType type);
    void onNetworkEnded();
    void onSimulatorState(bool connected);
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
    bool m_simulatorEndWished = false; ///< or until the attempt has failed
    bool m_voiceEndExpected = false;   ///< the network's end takes voice with it
    // What was shown last.
    bool m_simulatorWas = false;
    bool m_voiceWas = false;
};

} // namespace tarvo::ui

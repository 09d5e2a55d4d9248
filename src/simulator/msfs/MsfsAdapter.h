#pragma once

#include "common/Clock.h"
#include "simulator/Simulator.h"
#include "simulator/msfs/ConnectionStateMachine.h"
#include "simulator/msfs/OwnAircraft.h"
#include "simulator/msfs/simvar/MsfsRuntimeProfile.h"
#include "simulator/msfs/simvar/SimKey.h"

#include <QTimer>

#include <memory>

namespace tarvo {
class AppConfig;
}

namespace tarvo::simulator::msfs {

class MsfsAircraftLibrary;
class MsfsTraffic;
class SimConnectBinding;
class SimConnectSession;

/// Microsoft Flight Simulator 2020 or 2024 as the session's simulator. Main thread only; nothing here waits for the
/// simulator.
///
/// It connects when reconnectSimulator() is called and never by itself. Another pilot's aircraft is made of the model
/// that fits best of those installed here; the simulator flies it from one reported place to the next.
class MsfsAdapter : public Simulator
{
    Q_OBJECT

public:
    /// The settings, the library and the clock outlive the adapter. Without a binding or a library: the program's own.
    explicit MsfsAdapter(AppConfig &config, std::shared_ptr<SimConnectBinding> binding = nullptr,
                         MsfsAircraftLibrary *library = nullptr, const common::Clock &clock = common::systemClock(),
                         QObject *parent = nullptr);
    /// Takes away what it has put into the simulator, then closes.
    ~MsfsAdapter() override;

public slots:
    void setTransponderCode(int code) override;
    void setCom1Frequency(quint32 freq) override;
    void setCom2Frequency(quint32 freq) override;
    void transponderIdent() override;
    void transponderModeToggle() override;

public:
    void addAircraft(const model::RemoteAircraft &aircraft) override;
    void updateAircraftConfiguration(const model::RemoteAircraft &aircraft) override;
    void removeAircraft(const model::RemoteAircraft &aircraft, const QString &reason) override;
    void removeAllAircraft() override;
    void positionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state) override;
    void fastPositionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
                            const model::VelocityVector &positionalVelocity,
                            const model::VelocityVector &rotationalVelocity) override;
    /// Goes to the log: the simulator has no place for texts. So do the other texts.
    void showRadioMessageSent(const QString &message) override;
    void showRadioMessageReceived(const QString &from, const QString &message, bool direct) override;
    void showNotification(const QString &message, int colour) override;
    void showPrivateMessageSent(const QString &to, const QString &message) override;
    void showPrivateMessageReceived(const QString &from, const QString &message) override;
    SimulatorType simulatorType() const override;

    // The simulator has none of these.
    void setControllers(const QList<model::Controller> &) override {}
    void clearControllers() override {}
    void aircraftHeartbeat(const QString &) override {}
    void networkConnected(const QString &, const QString &, bool) override {}
    void networkDisconnected() override {}
    void setStationCallsign(int, const QString &) override {}
    void selcalAlert() override {}

public slots:
    /// Opens; an open link is closed first and opened in the next turn of the event loop.
    void reconnectSimulator() override;

public:
    double pressureAltitudeFeet() const override;
    double trueAltitudeFeet() const override;
    double adjustRemoteAltitude(double altitudeFeet) const override { return altitudeFeet; }

private:
    void connectSession();
    void connectMachine();
    void connectTraffic();
    void openSession();
    template <class Tell>
    void tellEnd(Tell tell);
    void onSessionConnected();
    void onSessionDisconnected();
    void onSessionError(SimConnectError error, const QString &message);
    void onData(UpdateGroup group, const QVariantMap &sample);
    void onProfile(MsfsRuntimeProfile profile);
    void onTitle(const QString &title);
    void onInputEvent(const QString &name, double value);
    void onStateChanged(ConnectionState oldState, ConnectionState newState);
    void onAttemptEnded();
    void publish(const OwnAircraft &now);
    void sendFrequency(CommandKey radio, quint32 kilohertz);

    std::unique_ptr<SimConnectSession> m_session;
    ConnectionStateMachine m_machine;
    std::unique_ptr<MsfsTraffic> m_traffic;
    OwnAircraft m_own; ///< as last told
    QTimer m_opening;  ///< anew, in the next turn
    bool m_reconnectPending = false;
    bool m_isEnding = false; ///< the end of an attempt is being told
};

} // namespace tarvo::simulator::msfs

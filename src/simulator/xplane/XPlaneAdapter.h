#pragma once

#include "ServiceEndpoints.h"
#include "common/Clock.h"
#include "simulator/Simulator.h"
#include "simulator/xplane/ConnectionAttempt.h"
#include "simulator/xplane/PluginReports.h"

#include <QTimer>

#include <memory>

namespace tarvo {
class AppConfig;
}

namespace tarvo::simulator::xplane {

class DatarefLink;
class PluginLink;
struct OutgoingMessage;

/// X-Plane as the session's simulator: a message socket to a plugin inside it, which draws the traffic, and its UDP
/// interface, which tells of the own aircraft. Main thread only; nothing here waits for the simulator.
///
/// Once a link was asked for, it comes back by itself: an attempt begins when a plugin connects, when it tells its
/// version late, and when X-Plane is heard again. Whoever is silent is called every ten seconds.
///
/// The timers are children by the names "dial" (500 ms, once), "tick" (1000 ms), "attempt" (3000 ms, once) and, inside
/// the UDP link, "publish" (50 ms while X-Plane replies).
class XPlaneAdapter : public Simulator
{
    Q_OBJECT

public:
    /// The settings and the clock outlive the adapter.
    explicit XPlaneAdapter(AppConfig &config, const ServiceEndpoints &endpoints = {},
                           const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);
    ~XPlaneAdapter() override;

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
    void setControllers(const QList<model::Controller> &controllers) override;
    void clearControllers() override;
    void positionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state) override;
    void fastPositionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
                            const model::VelocityVector &positionalVelocity,
                            const model::VelocityVector &rotationalVelocity) override;
    void aircraftHeartbeat(const QString &callsign) override;
    void showRadioMessageSent(const QString &message) override;
    void showRadioMessageReceived(const QString &from, const QString &message, bool direct) override;
    void showNotification(const QString &message, int colour) override;
    void showPrivateMessageSent(const QString &to, const QString &message) override;
    void showPrivateMessageReceived(const QString &from, const QString &message) override;
    void networkConnected(const QString &callsign, const QString &selcal, bool observer) override;
    void networkDisconnected() override;
    void setStationCallsign(int radio, const QString &callsign) override;
    /// Nothing to do here.
    void selcalAlert() override;
    SimulatorType simulatorType() const override;

public slots:
    void reconnectSimulator() override;

public:
    double pressureAltitudeFeet() const override;
    double trueAltitudeFeet() const override;
    double adjustRemoteAltitude(double altitudeFeet) const override;

private:
    void forwardSignals();
    void startTimers();
    void dial();
    /// Does nothing when it was dialled in the last `afterMs`.
    void dialAnew(qint64 afterMs);
    void tick();
    void checkConnection();
    void callTheSilent();
    bool hasDiedInPause() const;
    bool hearsXPlane() const;
    void onPluginConnected(bool first);
    void onPluginNeedsAll();
    void startAttempt();
    void beginAttempt();
    void askPlugin();
    void validateCsl();
    void onAttemptTimeout();
    void disconnectSimulator();
    qint64 nowSeconds() const;

    void send(OutgoingMessage message);
    void onReport(const PluginReport &report);
    // One for each kind of report.
    void on(const report::Unknown &) {}
    void on(const report::Malformed &) {}
    void on(const report::Version &report);
    void on(const report::Csl &report);
    void on(const report::Added &report);
    void on(const report::Deleted &report);
    void on(const report::StationRequest &report);
    void on(const report::RadioSent &report);
    void on(const report::PrivateSent &report);
    void on(const report::ForceDisconnect &report);
    void on(const report::Shutdown &);

    AppConfig &m_config;
    const common::Clock &m_clock;
    QString m_localPluginUrl;
    std::unique_ptr<DatarefLink> m_datarefs;
    std::unique_ptr<PluginLink> m_plugin;
    ConnectionAttempt m_attempt;
    qint64 m_lastDialMs = 0;    ///< of a clock that never jumps
    bool m_heardXPlane = false; ///< at the last tick
    QTimer m_dialTimer;
    QTimer m_tickTimer;
    QTimer m_attemptTimer;
};

} // namespace tarvo::simulator::xplane

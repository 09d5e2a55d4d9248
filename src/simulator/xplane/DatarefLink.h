#pragma once

#include "simulator/xplane/DatarefTable.h"

#include <QByteArrayView>
#include <QHostAddress>
#include <QObject>
#include <QTimer>
#include <QUdpSocket>

#include <optional>

namespace tarvo {
class AppConfig;
namespace common {
class Clock;
}
} // namespace tarvo

namespace tarvo::simulator::xplane {

/// X-Plane's UDP interface: reads the own aircraft's datarefs, writes values, runs commands. Publishes what it has read
/// every 50 ms, each record only when it has changed. The timer rests after a second in which X-Plane has not replied
/// and nothing was published, and goes on with the next reply.
/// Main thread only.
class DatarefLink : public QObject
{
    Q_OBJECT

public:
    /// Takes the simulator's address from the settings; its port is read anew at each send. A port outside 1 to 65535
    /// is warned about once, and the default one is used. Settings and clock outlive the link.
    DatarefLink(const AppConfig &config, const common::Clock &clock, QObject *parent = nullptr);

    /// The values as last reported; nothing waits for the next publication here.
    const DatarefSample &sample() const { return m_sample; }
    /// Forgets the own aircraft. Pause, version and what was published stay.
    void clearAircraft();

    /// When X-Plane last replied, or was taken to have; whole seconds of the steady clock.
    qint64 lastReplySeconds() const { return m_lastReplySeconds; }
    void setLastReplySeconds(qint64 seconds) { m_lastReplySeconds = seconds; }

    /// When X-Plane last replied, without what it was taken to have; 0 for never.
    qint64 lastHeardSeconds() const { return m_lastHeardSeconds; }
    /// True when it was asked and has not replied since, nor was asked again, for so long.
    bool isSilent(qint64 nowSeconds, qint64 forSeconds) const;

    /// Subscribes to every dataref, as often as it is called: X-Plane may have forgotten.
    void subscribe();

    /// Writes one value, in the dataref's own unit. Lost without notice when no simulator is there.
    void write(QByteArrayView dataref, float value);
    /// Runs one of X-Plane's commands, such as "sim/transponder/transponder_ident". Lost in the same way.
    void command(QByteArrayView command);

public slots:
    /// Raises the signals of the records that differ from what was last published; the first time, of all three.
    void publish();

signals:
    /// The own aircraft's motion; raised by publish().
    void userAircraftDataChanged(const tarvo::model::UserAircraftData &data);
    /// Its lights, engines, gear and flaps; raised by publish().
    void userAircraftConfigDataChanged(const tarvo::model::UserAircraftConfigData &data);
    /// Its radios and transponder; raised by publish().
    void radioStackStateChanged(const tarvo::model::RadioStackState &radioStack);
    /// A replay is running. Comes at once, and with every record that says so: about once a second.
    void replayModeDetected();
    /// Comes at once.
    void pausedChanged(bool paused);
    /// X-Plane's internal version number, such as 120105. Comes at once, and never with 0.
    void versionChanged(int version);

private:
    void wakePublishing();
    void receivePending();
    void receive(QByteArrayView datagram, const QHostAddress &sender);
    void raise(DatarefEvent event);
    void send(const QByteArray &packet);
    quint16 targetPort();

    const AppConfig &m_config;
    const common::Clock &m_clock;
    QUdpSocket m_socket;
    QHostAddress m_target;
    std::optional<int> m_refusedPort; ///< the configured port that was last complained about
    qint64 m_lastReplySeconds = 0;
    qint64 m_lastHeardSeconds = 0;
    qint64 m_lastAskedSeconds = 0; ///< 0 for never
    DatarefSample m_sample;
    model::UserAircraftData m_publishedUser;
    model::UserAircraftConfigData m_publishedConfig;
    model::RadioStackState m_publishedRadio;
    bool m_publishedOnce = false;
    int m_quietTicks = 0; ///< of the publish timer with nothing to publish, since X-Plane replied last
    QTimer m_publishTimer;
};

} // namespace tarvo::simulator::xplane

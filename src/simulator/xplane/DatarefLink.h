#pragma once

#include "common/Clock.h"
#include "simulator/xplane/DatarefTable.h"

#include <QByteArrayView>
#include <QHostAddress>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QUdpSocket>

namespace tarvo {
class AppConfig;
}

namespace tarvo::simulator::xplane {

/// X-Plane's UDP interface: reads the own aircraft's datarefs, writes values, runs commands. Publishes what it has read
/// every 50 ms, each record only when it has changed. Main thread only.
class DatarefLink : public QObject
{
    Q_OBJECT

public:
    /// Takes the simulator's address from the settings; its port is read anew at each send.
    DatarefLink(const AppConfig &config, const common::Clock &clock, QObject *parent = nullptr);

    const DatarefSample &sample() const { return m_sample; }
    /// Forgets the own aircraft. Pause, version and what was published stay.
    void clearAircraft();

    /// When X-Plane last replied, or was taken to have; whole seconds since the epoch.
    qint64 lastReplySeconds() const { return m_lastReplySeconds; }
    void setLastReplySeconds(qint64 seconds) { m_lastReplySeconds = seconds; }

    /// Subscribes to every dataref that is not in the list of subscriptions. `remember` adds it to that list.
    void subscribe(bool remember);
    void clearSubscriptions() { m_subscribed.clear(); }

    void write(QByteArrayView dataref, float value);
    void command(QByteArrayView command);

public slots:
    /// Raises the signals of the records that differ from what was last published; the first time, of all three.
    void publish();

signals:
    void userAircraftDataChanged(const tarvo::model::UserAircraftData &data);
    void userAircraftConfigDataChanged(const tarvo::model::UserAircraftConfigData &data);
    void radioStackStateChanged(const tarvo::model::RadioStackState &radioStack);
    void replayModeDetected();
    void pausedChanged(bool paused);
    void versionChanged(int version);

private:
    void receivePending();
    void receive(QByteArrayView datagram, const QHostAddress &sender);
    void raise(DatarefEvent event);
    void send(const QByteArray &packet);

    const AppConfig &m_config;
    const common::Clock &m_clock;
    QUdpSocket m_socket;
    QHostAddress m_target;
    qint64 m_lastReplySeconds = 0;
    DatarefSample m_sample;
    model::UserAircraftData m_publishedUser;
    model::UserAircraftConfigData m_publishedConfig;
    model::RadioStackState m_publishedRadio;
    bool m_publishedOnce = false;
    QStringList m_subscribed;
    QTimer m_publishTimer;
};

} // namespace tarvo::simulator::xplane

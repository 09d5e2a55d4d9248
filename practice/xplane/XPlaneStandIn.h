#pragma once

#include "common/Clock.h"
#include "practice/flight/Flight.h"
#include "practice/xplane/Datarefs.h"
#include "practice/xplane/PluginStandIn.h"
#include "practice/xplane/RrefSubscriptions.h"

#include <QHostAddress>
#include <QObject>
#include <QTimer>
#include <QUdpSocket>

namespace tarvo::practice {

/// X-Plane with its plugin, as far as a pilot client sees it: the UDP interface (RREF, DREF, CMND) and the plugin's end
/// of the message socket. The aeroplane flies Flight in a loop; switches and radios answer to writes.
class XPlaneStandIn : public QObject
{
    Q_OBJECT

public:
    explicit XPlaneStandIn(const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);
    ~XPlaneStandIn() override;

    /// Starts both ends; port 0 takes a free one. Returns false when one can't be had; see errorString().
    bool start(const QHostAddress &address, quint16 udpPort, const QString &pluginUrl);
    void stop();
    quint16 udpPort() const;
    QString errorString() const;

    const Flight &flight() const;
    /// Seconds since the start of the flight.
    double flightTime() const;
    /// Jumps to another moment of the flight.
    void setFlightTime(double seconds);
    /// The flight stands still while paused, and "sim/time/paused" tells it.
    void setPaused(bool paused);
    bool isPaused() const;
    /// The value of a dataref as a client would get it now; 0 for an unknown one.
    float value(const QString &dataref) const;
    /// Writes a dataref as a DREF packet does. Returns false when there is no such dataref.
    bool setValue(const QString &dataref, float value);
    /// Does what a CMND packet does. Returns false for an unknown command.
    bool command(const QString &name);
    /// Stops answering on UDP, as a simulator that hangs does; subscriptions are kept.
    void setFrozen(bool frozen);
    /// Subscriptions that are in force, of all clients.
    int subscriptionCount() const;

    /// The plugin: its version, its verdict on CSL paths, and what it says of its own accord.
    PluginStandIn &plugin() { return m_plugin; }
    const PluginStandIn &plugin() const { return m_plugin; }

    /// Sends what is due now. Called by a timer; a test with a clock of its own may call it.
    void tick();

signals:
    void subscribed(const QString &client, const QString &dataref, int ratePerSecond);
    void written(const QString &dataref, float value);
    void commanded(const QString &command);
    /// A datagram that is none of the three, or names something unknown.
    void refused(const QString &client, const QString &reason);
    /// The pilot begins something else, such as "downwind".
    void phaseChanged(const QString &phase);

private:
    void readDatagrams();
    void obey(const QByteArray &datagram, const QHostAddress &host, quint16 port);
    void subscribe(const QByteArray &datagram, const QHostAddress &host, quint16 port);
    void write(const QByteArray &datagram, const QString &client);
    void resetClock(double flightSeconds);

    const common::Clock &m_clock;
    Flight m_flight;
    QUdpSocket m_socket;
    QTimer m_timer;
    RrefSubscriptions m_subscriptions;
    DatarefWrites m_writes;
    PluginStandIn m_plugin;
    QString m_error;
    QString m_phase;
    double m_flightAtMark = 0; ///< seconds; the flight's time when the clock showed m_mark
    qint64 m_mark = 0;         ///< ms of the steady clock
    qint64 m_identUntil = 0;   ///< ms of the steady clock; 0 when not identing
    bool m_paused = false;
    bool m_frozen = false;
};

} // namespace tarvo::practice

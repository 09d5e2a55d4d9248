#include "simulator/xplane/DatarefLink.h"

#include "AppConfig.h"
#include "common/Clock.h"
#include "simulator/xplane/RrefPacket.h"
#include "simulator/xplane/SimulatorAddress.h"

#include <QDebug>
#include <QMetaObject>
#include <QPointer>

#include <algorithm>
#include <array>
#include <utility>

namespace tarvo::simulator::xplane {

namespace {

constexpr int publishIntervalMs = 50;
/// A second. X-Plane replies more often while it runs, and the timer goes on.
constexpr int ticksUntilRest = 20;
/// A flood of datagrams must not hold up the event loop: what is beyond this waits for its next round.
constexpr int datagramsPerRound = 150;
constexpr qsizetype largestDatagram = 65536;

/// The socket is for IPv4 alone, so that every sender has an IPv4 address.
bool isFrom(const QHostAddress &target, const QHostAddress &sender)
{
    return target.toIPv4Address() == sender.toIPv4Address(); // never 0
}

} // namespace

DatarefLink::DatarefLink(const AppConfig &config, const common::Clock &clock, QObject *parent)
    : QObject(parent),
      m_config(config),
      m_clock(clock),
      m_socket(this),
      m_target(datarefHost(config.get(config::xplaneNetworkAddress))),
      m_publishTimer(this)
{
    connect(&m_socket, &QUdpSocket::readyRead, this, &DatarefLink::receivePending);
    if (!m_socket.bind(QHostAddress(QHostAddress::AnyIPv4), 0))
        qWarning().noquote() << "X-Plane UDP socket could not be bound:" << m_socket.errorString();
    if (m_target.isNull())
        qWarning() << "X-Plane's address is no IP address, its UDP interface is out of reach:"
                   << config.get(config::xplaneNetworkAddress);
    m_publishTimer.setObjectName(QStringLiteral("publish"));
    m_publishTimer.setInterval(publishIntervalMs);
    connect(&m_publishTimer, &QTimer::timeout, this, &DatarefLink::publish);
    m_publishTimer.start();
}

void DatarefLink::clearAircraft()
{
    m_sample.user = {};
    m_sample.config = {};
    m_sample.radio = {};
    wakePublishing();
}

bool DatarefLink::isSilent(qint64 nowSeconds, qint64 forSeconds) const
{
    return m_lastAskedSeconds > 0 && nowSeconds - std::max(m_lastAskedSeconds, m_lastHeardSeconds) >= forSeconds;
}

void DatarefLink::subscribe()
{
    m_lastAskedSeconds = m_clock.steadyMs() / 1000;
    qint32 id = 0;
    for (const Dataref &dataref : datarefs())
        send(subscribePacket(dataref.rateHz, id++, dataref.name));
}

void DatarefLink::write(QByteArrayView dataref, float value)
{
    send(writePacket(dataref, value));
}

void DatarefLink::command(QByteArrayView command)
{
    send(commandPacket(command));
}

void DatarefLink::publish()
{
    const bool all = !std::exchange(m_publishedOnce, true);
    const bool unchanged =
        m_sample.user == m_publishedUser && m_sample.config == m_publishedConfig && m_sample.radio == m_publishedRadio;
    if (!all && unchanged) {
        if (++m_quietTicks >= ticksUntilRest) // a simulator that isn't there need not wake the program
            m_publishTimer.stop();
        return;
    }
    const QPointer<DatarefLink> alive(this);
    if (all || m_sample.user != m_publishedUser) {
        m_publishedUser = m_sample.user;
        emit userAircraftDataChanged(m_publishedUser);
    }
    if (alive && (all || m_sample.config != m_publishedConfig)) {
        m_publishedConfig = m_sample.config;
        emit userAircraftConfigDataChanged(m_publishedConfig);
    }
    if (alive && (all || m_sample.radio != m_publishedRadio)) {
        m_publishedRadio = m_sample.radio;
        emit radioStackStateChanged(m_publishedRadio);
    }
}

void DatarefLink::wakePublishing()
{
    m_quietTicks = 0;
    if (!m_publishTimer.isActive())
        m_publishTimer.start();
}

void DatarefLink::receivePending()
{
    const QPointer<DatarefLink> alive(this);
    std::array<char, largestDatagram> buffer;
    for (int i = 0; alive && m_socket.hasPendingDatagrams(); ++i) {
        if (i == datagramsPerRound) {
            QMetaObject::invokeMethod(this, &DatarefLink::receivePending, Qt::QueuedConnection);
            return;
        }
        QHostAddress sender;
        const qint64 size = m_socket.readDatagram(buffer.data(), buffer.size(), &sender);
        if (size >= 0)
            receive(QByteArrayView(buffer.data(), size), sender);
    }
}

void DatarefLink::receive(QByteArrayView datagram, const QHostAddress &sender)
{
    const RrefReply reply(datagram);
    if (!isFrom(m_target, sender) || !reply.isValid())
        return;
    m_lastHeardSeconds = m_lastReplySeconds = m_clock.steadyMs() / 1000;
    const QPointer<DatarefLink> alive(this);
    const qsizetype count = reply.count();
    for (qsizetype i = 0; alive && i < count; ++i) {
        const RrefRecord record = reply.record(i);
        raise(applyDataref(m_sample, record.id, record.value));
    }
    if (alive)
        wakePublishing();
}

void DatarefLink::raise(DatarefEvent event)
{
    switch (event) {
    case DatarefEvent::None:
        break;
    case DatarefEvent::ReplayMode:
        emit replayModeDetected();
        break;
    case DatarefEvent::PausedChanged:
        emit pausedChanged(m_sample.paused);
        break;
    case DatarefEvent::VersionChanged:
        emit versionChanged(m_sample.version);
        break;
    }
}

void DatarefLink::send(const QByteArray &packet)
{
    if (m_target.isNull())
        return;
    // A simulator that is not there is no error here: the silence is noticed by the adapter.
    m_socket.writeDatagram(packet, m_target, targetPort());
}

quint16 DatarefLink::targetPort()
{
    const int port = m_config.get(config::xplaneUdpPort);
    const quint16 used = datarefPort(port);
    if (used == port)
        m_refusedPort.reset();
    else if (std::exchange(m_refusedPort, port) != port) // once, and not for each of the packets
        qWarning() << "X-Plane UDP port" << port << "does not exist; using" << used;
    return used;
}

} // namespace tarvo::simulator::xplane

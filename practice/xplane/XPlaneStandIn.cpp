#include "practice/xplane/XPlaneStandIn.h"

#include <QNetworkDatagram>
#include <QtEndian>

#include <cmath>

namespace tarvo::practice {

namespace {
constexpr int tickMs = 10;
constexpr int identMs = 18'000; // as long as a transponder idents
constexpr qsizetype subscribeSize = 413;
constexpr qsizetype writeSize = 509;
constexpr qsizetype longestCommand = 500;

const QString transponderMode = QStringLiteral("sim/cockpit/radios/transponder_mode");
const QString transponderIdent = QStringLiteral("sim/cockpit/radios/transponder_id");
const QString pausedFlag = QStringLiteral("sim/time/paused");

/// The text from `offset` to the first zero byte.
QString textAt(const QByteArray &bytes, qsizetype offset)
{
    const qsizetype end = bytes.indexOf('\0', offset);
    return QString::fromLatin1(bytes.mid(offset, end < 0 ? -1 : end - offset));
}

QString printable(const QString &text)
{
    QString result = text.left(80);
    for (QChar &c : result) {
        if (!c.isPrint())
            c = u'?';
    }
    return result;
}
} // namespace

XPlaneStandIn::XPlaneStandIn(const common::Clock &clock, QObject *parent)
    : QObject(parent), m_clock(clock), m_plugin(clock)
{
    resetClock(0);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &XPlaneStandIn::tick);
    connect(&m_socket, &QUdpSocket::readyRead, this, &XPlaneStandIn::readDatagrams);
}

XPlaneStandIn::~XPlaneStandIn() = default;

bool XPlaneStandIn::start(const QHostAddress &address, quint16 udpPort, const QString &pluginUrl)
{
    if (!m_socket.bind(address, udpPort, QAbstractSocket::DontShareAddress)) {
        m_error = QStringLiteral("UDP port %1: %2").arg(udpPort).arg(m_socket.errorString());
        return false;
    }
    if (!m_plugin.listen(pluginUrl)) {
        m_error = m_plugin.errorString();
        m_socket.close();
        return false;
    }
    m_timer.start(tickMs);
    return true;
}

void XPlaneStandIn::stop()
{
    m_timer.stop();
    m_plugin.close();
    m_socket.close();
    m_subscriptions.clear();
}

quint16 XPlaneStandIn::udpPort() const
{
    return m_socket.localPort();
}

QString XPlaneStandIn::errorString() const
{
    return m_error;
}

const Flight &XPlaneStandIn::flight() const
{
    return m_flight;
}

void XPlaneStandIn::resetClock(double flightSeconds)
{
    m_flightAtMark = flightSeconds;
    m_mark = m_clock.steadyMs();
}

double XPlaneStandIn::flightTime() const
{
    return m_paused ? m_flightAtMark : m_flightAtMark + static_cast<double>(m_clock.steadyMs() - m_mark) / 1000.0;
}

void XPlaneStandIn::setFlightTime(double seconds)
{
    resetClock(std::isfinite(seconds) ? seconds : 0);
}

void XPlaneStandIn::setPaused(bool paused)
{
    resetClock(flightTime());
    m_paused = paused;
    setValue(pausedFlag, paused ? 1.0F : 0.0F);
}

bool XPlaneStandIn::isPaused() const
{
    return m_paused;
}

float XPlaneStandIn::value(const QString &dataref) const
{
    const int index = datarefIndex(dataref);
    return index < 0 ? 0 : m_writes.value(index, m_flight.at(flightTime()));
}

bool XPlaneStandIn::setValue(const QString &dataref, float value)
{
    const int index = datarefIndex(dataref);
    if (index < 0)
        return false;
    m_writes.write(index, value, m_flight.at(flightTime()));
    return true;
}

bool XPlaneStandIn::command(const QString &name)
{
    if (name == QLatin1StringView("sim/transponder/transponder_ident")) {
        m_identUntil = m_clock.steadyMs() + identMs;
        return setValue(transponderIdent, 1);
    }
    if (name == QLatin1StringView("sim/transponder/transponder_standby"))
        return setValue(transponderMode, 1);
    if (name == QLatin1StringView("sim/transponder/transponder_alt"))
        return setValue(transponderMode, 3);
    if (name != QLatin1StringView("sim/operation/pause_toggle"))
        return false;
    setPaused(!m_paused);
    return true;
}

void XPlaneStandIn::setFrozen(bool frozen)
{
    m_frozen = frozen;
}

int XPlaneStandIn::subscriptionCount() const
{
    return m_subscriptions.count();
}

void XPlaneStandIn::tick()
{
    const qint64 now = m_clock.steadyMs();
    const AircraftState state = m_flight.at(flightTime());
    m_writes.settle(state);
    if (m_identUntil != 0 && now >= m_identUntil) {
        m_identUntil = 0;
        setValue(transponderIdent, 0);
    }
    const QString phase = m_flight.phaseAt(flightTime());
    if (phase != m_phase) {
        m_phase = phase;
        emit phaseChanged(phase);
    }
    if (m_frozen)
        return;
    const auto read = [&](int dataref) { return m_writes.value(dataref, state); };
    for (const RrefSubscriptions::Datagram &datagram : m_subscriptions.due(now, read))
        m_socket.writeDatagram(datagram.bytes, datagram.host, datagram.port);
}

void XPlaneStandIn::readDatagrams()
{
    while (m_socket.hasPendingDatagrams()) {
        const QNetworkDatagram datagram = m_socket.receiveDatagram();
        if (datagram.isValid())
            obey(datagram.data(), datagram.senderAddress(), static_cast<quint16>(datagram.senderPort()));
    }
}

void XPlaneStandIn::obey(const QByteArray &datagram, const QHostAddress &host, quint16 port)
{
    const QString client = QStringLiteral("%1:%2").arg(host.toString()).arg(port);
    const QByteArray kind = datagram.left(5);
    if (kind == QByteArray("RREF\0", 5) && datagram.size() == subscribeSize) {
        subscribe(datagram, host, port);
    } else if (kind == QByteArray("DREF\0", 5) && datagram.size() == writeSize) {
        write(datagram, client);
    } else if (kind == QByteArray("CMND\0", 5) && datagram.size() <= longestCommand) {
        const QString name = textAt(datagram, 5);
        if (command(name))
            emit commanded(name);
        else
            emit refused(client, QStringLiteral("unknown command %1").arg(printable(name)));
    } else {
        emit refused(client, QStringLiteral("no request of %1 bytes").arg(datagram.size()));
    }
}

void XPlaneStandIn::subscribe(const QByteArray &datagram, const QHostAddress &host, quint16 port)
{
    const QString client = QStringLiteral("%1:%2").arg(host.toString()).arg(port);
    const auto rate = qFromLittleEndian<qint32>(datagram.constData() + 5);
    const auto id = qFromLittleEndian<qint32>(datagram.constData() + 9);
    const QString name = textAt(datagram, 13);
    const int index = datarefIndex(name);
    if (index < 0)
        emit refused(client, QStringLiteral("unknown dataref %1").arg(printable(name)));
    else if (!m_subscriptions.subscribe(host, port, id, index, rate, m_clock.steadyMs()))
        emit refused(client, QStringLiteral("too many subscriptions"));
    else
        emit subscribed(client, name, rate);
}

void XPlaneStandIn::write(const QByteArray &datagram, const QString &client)
{
    const auto number = qFromLittleEndian<float>(datagram.constData() + 5);
    const QString name = textAt(datagram, 9);
    if (setValue(name, number))
        emit written(name, number);
    else
        emit refused(client, QStringLiteral("unknown dataref %1").arg(printable(name)));
}

} // namespace tarvo::practice

#include "practice/voice/VoiceServer.h"

#include "practice/account/AccountBook.h"
#include "practice/account/TokenAuthority.h"
#include "practice/voice/VoiceSession.h"
#include "voice/wire/ControlMessage.h"

#include <QTcpServer>

#include <nlohmann/json.hpp>

#include <algorithm>

namespace tarvo::practice {

using voice::ControlMessage;
using voice::ControlMessageType;
using voice::VoicePacket;

namespace {
constexpr int keepAliveMs = 200;
constexpr int delayStepMs = 2;
constexpr qsizetype mostEarly = 64;
constexpr qint64 largestDatagram = 65'507;
constexpr int datagramsAtOnce = 2'000;        // others wait for their turn
constexpr std::size_t mostVoiceBytes = 1'275; // an Opus frame is never longer

QByteArray wire(const VoicePacket &packet)
{
    const std::vector<std::uint8_t> bytes = voice::serializeVoicePacket(
        packet.cid, static_cast<int>(packet.transmitter), packet.frequency, packet.callsign, packet.payload);
    return {reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

bool speaks(const VoicePacket &packet)
{
    return !packet.payload.empty() && packet.payload.size() <= mostVoiceBytes;
}
} // namespace

VoiceServer::VoiceServer(const AccountBook &accounts, const TokenAuthority &tokens, CallsignOf callsignOf,
                         VoiceSettings settings, const common::Clock &clock, QObject *parent)
    : QObject(parent),
      m_accounts(accounts),
      m_tokens(tokens),
      m_callsignOf(std::move(callsignOf)),
      m_settings(settings),
      m_clock(clock),
      m_server(std::make_unique<QTcpServer>()),
      m_weather(settings.weather)
{
    m_delays.setTimerType(Qt::PreciseTimer);
    connect(m_server.get(), &QTcpServer::newConnection, this, &VoiceServer::acceptConnections);
    connect(&m_udp, &QUdpSocket::readyRead, this, &VoiceServer::readDatagrams);
    connect(&m_keepAlive, &QTimer::timeout, this, &VoiceServer::keepAlive);
    connect(&m_delays, &QTimer::timeout, this, &VoiceServer::sendDue);
}

VoiceServer::~VoiceServer()
{
    close();
}

bool VoiceServer::listen(const QHostAddress &address, quint16 tcpPort, quint16 udpPort)
{
    if (!m_server->listen(address, tcpPort)) {
        m_error = QStringLiteral("TCP port %1: %2").arg(tcpPort).arg(m_server->errorString());
        return false;
    }
    if (!m_udp.bind(address, udpPort, QAbstractSocket::DontShareAddress)) {
        m_error = QStringLiteral("UDP port %1: %2").arg(udpPort).arg(m_udp.errorString());
        m_server->close();
        return false;
    }
    m_keepAlive.start(keepAliveMs);
    return true;
}

void VoiceServer::close()
{
    m_server->close();
    m_udp.close();
    m_keepAlive.stop();
    m_delays.stop();
    m_early.clear();
    const QList<VoiceSession *> sessions = std::exchange(m_sessions, {});
    for (VoiceSession *session : sessions) {
        session->disconnect(this);
        session->finish();
        session->deleteLater();
    }
}

quint16 VoiceServer::tcpPort() const
{
    return m_server->serverPort();
}

quint16 VoiceServer::udpPort() const
{
    return m_udp.localPort();
}

QHostAddress VoiceServer::address() const
{
    return m_server->serverAddress();
}

QStringList VoiceServer::callsigns() const
{
    QStringList list;
    for (const VoiceSession *session : m_sessions) {
        if (session->isOpen() && session->isKnown())
            list.append(session->callsign);
    }
    return list;
}

QStringList VoiceServer::receivers(int frequency) const
{
    QStringList list;
    for (const VoiceSession *session : m_sessions) {
        if (session->isOpen() && session->radios.receives(frequency))
            list.append(session->callsign);
    }
    return list;
}

// --- control connections ---

void VoiceServer::acceptConnections()
{
    while (QTcpSocket *socket = m_server->nextPendingConnection()) {
        auto session = std::make_unique<VoiceSession>(socket, m_settings, m_clock, this);
        attach(session.release()); // a child of this; remove() ends it
    }
}

void VoiceServer::attach(VoiceSession *session)
{
    connect(session, &VoiceSession::lineReceived, this,
            [this, session](const QByteArray &line) { hear(*session, line); });
    connect(session, &VoiceSession::lineSent, this,
            [this, session](const QString &line) { emit lineSent(session->name(), line); });
    connect(session, &VoiceSession::refused, this,
            [this, session](const QString &reason) { emit clientRefused(session->name(), reason); });
    connect(session, &VoiceSession::ended, this, [this, session] { remove(session); });
    m_sessions.append(session);
    emit clientConnected(session->name());
    if (connectionCount() > 2 * m_settings.maxClients) // even those being sent away are too many
        session->drop();
    else if (connectionCount() > m_settings.maxClients)
        session->refuse(QStringLiteral("Server full"));
}

void VoiceServer::remove(VoiceSession *session)
{
    m_sessions.removeOne(session);
    rememberPlace({session->number, session->endpoint});
    session->disconnect(this);
    session->deleteLater();
    emit clientLeft(session->name());
}

void VoiceServer::keepAlive()
{
    const qint64 now = m_clock.steadyMs();
    const QList<VoiceSession *> sessions = m_sessions;
    for (VoiceSession *session : sessions) {
        if (!session->isKnown() && now - session->connectedMs > m_settings.tokenMs)
            session->refuse(QStringLiteral("No token"));
        else if (now - session->heardMs > m_settings.silenceMs)
            session->refuse(QStringLiteral("Not heard of for too long"));
    }
}

void VoiceServer::hear(VoiceSession &session, const QByteArray &line)
{
    if (!session.isKnown()) {
        emit lineReceived(session.name(), QStringLiteral("******"));
        checkToken(session, line);
        return;
    }
    emit lineReceived(session.name(), QString::fromUtf8(line));
    try {
        obey(session, voice::parseControlMessage({line.constData(), static_cast<std::size_t>(line.size())}));
    } catch (const nlohmann::json::exception &) {
        session.complain();
    }
}

void VoiceServer::checkToken(VoiceSession &session, const QByteArray &token)
{
    qint64 cid = 0;
    const JsonWebToken::Verdict verdict = m_tokens.check(TokenUse::Access, token, &cid);
    const Account *account = verdict == JsonWebToken::Verdict::Valid ? m_accounts.find(cid) : nullptr;
    if (!account) {
        session.refuse(verdict == JsonWebToken::Verdict::Expired ? QStringLiteral("Token expired")
                                                                 : QStringLiteral("Invalid token"));
        return;
    }
    const QList<VoiceSession *> sessions = m_sessions;
    for (VoiceSession *other : sessions) {
        if (other->cid != cid)
            continue;
        rememberPlace({other->number, other->endpoint});
        other->refuse(QStringLiteral("Connected from elsewhere")); // a datagram's number tells whose it is
    }
    session.cid = cid;
    session.number = static_cast<quint32>(account->user.id);
    const QString flown = m_callsignOf(cid);
    session.callsign = flown.isEmpty() ? QStringLiteral("U%1").arg(cid) : flown;
    greet(session);
}

void VoiceServer::greet(VoiceSession &session)
{
    const auto early = std::find_if(m_early.begin(), m_early.end(), [&session](const EarlyDatagram &datagram) {
        return datagram.number == session.number && datagram.from.address == session.peerAddress();
    });
    if (early != m_early.end())
        session.endpoint = m_early.takeAt(early - m_early.begin()).from;
    if (m_mute)
        return;
    session.send(ControlMessageType::Message,
                 QStringLiteral("SERVER:%1:Welcome to the practice network").arg(session.callsign));
    emit clientGreeted(session.callsign);
}

void VoiceServer::obey(VoiceSession &session, const ControlMessage &message)
{
    if (message.type == ControlMessageType::Ping && !m_mute) {
        session.send(ControlMessageType::Pong, QString::fromStdString(message.data));
    } else if (message.type == ControlMessageType::Channel) {
        const std::optional<TunedRadio> radio = parseChannel(message.data);
        if (!radio || !session.radios.tune(message.transmitter, *radio))
            session.complain();
        else
            emit tuned(session.callsign, radio->frequency, radio->receive);
    } else if (message.type == ControlMessageType::Disconnect) {
        session.finish();
    }
}

// --- voice ---

void VoiceServer::readDatagrams()
{
    QByteArray buffer(largestDatagram, Qt::Uninitialized);
    for (int i = 0; i < datagramsAtOnce && m_udp.hasPendingDatagrams(); ++i) {
        VoiceEndpoint from;
        const qint64 size = m_udp.readDatagram(buffer.data(), buffer.size(), &from.address, &from.port);
        if (size <= 0)
            continue;
        const auto packet = voice::parseVoicePacket(reinterpret_cast<const std::uint8_t *>(buffer.constData()),
                                                    static_cast<std::size_t>(size));
        if (packet)
            hearDatagram(*packet, from);
    }
}

void VoiceServer::hearDatagram(const VoicePacket &packet, const VoiceEndpoint &from)
{
    // His newest connection, even if it is ending: what a next one says first may come before that end is known.
    const auto found = std::find_if(m_sessions.rbegin(), m_sessions.rend(), [&](const VoiceSession *session) {
        return session->isKnown() && session->number == packet.cid && session->peerAddress() == from.address;
    });
    if (found == m_sessions.rend()) {
        rememberPlace({packet.cid, from});
        return;
    }
    VoiceSession &session = **found;
    if (!session.datagrams.take(1, m_clock.steadyMs()))
        return;
    session.endpoint = from;
    if (m_mute || !session.isOpen() || !speaks(packet) || !session.radios.isTuned(packet.frequency))
        return;
    VoicePacket said = packet;
    said.callsign = session.callsign.toStdString(); // nobody speaks under another's
    relay(said, &session);
    emit voiceReceived(session.callsign, said);
}

void VoiceServer::rememberPlace(const EarlyDatagram &datagram)
{
    if (datagram.from.port == 0)
        return;
    m_early.prepend(datagram);
    m_early.resize(std::min(m_early.size(), mostEarly));
}

bool VoiceServer::say(const VoicePacket &packet)
{
    return relay(packet, nullptr);
}

bool VoiceServer::relay(const VoicePacket &packet, const VoiceSession *sender)
{
    if (m_mute)
        return false;
    VoiceDatagram datagram;
    for (const VoiceSession *session : std::as_const(m_sessions)) {
        if (session == sender || !session->isOpen() || session->endpoint.port == 0 ||
            !session->radios.receives(packet.frequency))
            continue;
        if (datagram.bytes.isEmpty())
            datagram.bytes = wire(packet);
        datagram.to = session->endpoint;
        send(datagram);
    }
    return !datagram.bytes.isEmpty();
}

void VoiceServer::send(const VoiceDatagram &datagram)
{
    m_weather.put(datagram, m_clock.steadyMs());
    sendDue();
}

void VoiceServer::sendDue()
{
    for (const VoiceDatagram &datagram : m_weather.takeDue(m_clock.steadyMs()))
        m_udp.writeDatagram(datagram.bytes, datagram.to.address, datagram.to.port);
    if (m_weather.isEmpty())
        m_delays.stop();
    else if (!m_delays.isActive())
        m_delays.start(delayStepMs);
}

// --- breaking things ---

VoiceSession *VoiceServer::find(const QString &callsign) const
{
    const auto found = std::find_if(m_sessions.begin(), m_sessions.end(), [&callsign](const VoiceSession *session) {
        return session->isOpen() && session->isKnown() && session->callsign == callsign;
    });
    return found == m_sessions.end() ? nullptr : *found;
}

bool VoiceServer::with(const QString &callsign, const std::function<void(VoiceSession &)> &action)
{
    VoiceSession *session = find(callsign);
    if (session)
        action(*session);
    return session != nullptr;
}

bool VoiceServer::sendError(const QString &callsign, const QString &text)
{
    return with(callsign, [&](VoiceSession &session) { session.send(ControlMessageType::Error, text); });
}

bool VoiceServer::sendDisconnect(const QString &callsign)
{
    return with(callsign, [](VoiceSession &session) { session.send(ControlMessageType::Disconnect, {}); });
}

bool VoiceServer::sendLine(const QString &callsign, const QString &line)
{
    return sendBytes(callsign, line.toUtf8() + '\n');
}

bool VoiceServer::sendBytes(const QString &callsign, const QByteArray &bytes)
{
    return with(callsign, [&](VoiceSession &session) { session.sendBytes(bytes); });
}

bool VoiceServer::drop(const QString &callsign)
{
    return with(callsign, [](VoiceSession &session) { session.drop(); });
}

bool VoiceServer::sendGarbage(const QString &callsign, int count)
{
    const VoiceSession *session = find(callsign);
    if (!session || session->endpoint.port == 0)
        return false;
    constexpr unsigned longest = 200;
    constexpr unsigned byteValues = 256;
    for (int i = 0; i < count; ++i) {
        QByteArray bytes(static_cast<qsizetype>(m_garbage() % longest), Qt::Uninitialized);
        for (char &byte : bytes)
            byte = static_cast<char>(m_garbage() % byteValues);
        m_udp.writeDatagram(bytes, session->endpoint.address, session->endpoint.port);
    }
    return true;
}

} // namespace tarvo::practice

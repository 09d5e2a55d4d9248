// What goes out at the wish of the pilot, of the simulator or of a timer.

#include "manager/NetworkManagerSending.h"

#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/RadioMessage.h"
#include "fsd/pdu/TextMessage.h"
#include "fsd/pdu/Wallop.h"
#include "manager/OneLine.h"

namespace tarvo::manager {

using namespace fsd::pdu;

namespace {

constexpr int wallopColour = 0xEB2F06;
/// Everybody in reach hears what is sent to this pseudo-callsign.
const QLatin1StringView configurationChannel("@94386");

QString asOneLine(QString line)
{
    const QLatin1StringView lineEnd("\r\n");
    if (line.endsWith(lineEnd))
        line.chop(lineEnd.size());
    return onOneLine(line) + lineEnd;
}

} // namespace

void NetworkManager::send(const QString &line)
{
    if (m_fsd.isConnected())
        m_fsd.sendRaw(asOneLine(line));
}

OwnPosition NetworkManager::ownPosition() const
{
    return {.callsign = m_connectInfo.callsign,
            .observer = m_connectInfo.observer,
            .aircraft = m_own.aircraft,
            .radio = m_own.radio,
            .onGround = m_own.config.onGround,
            .paused = m_own.simPaused,
            .trueAltitudeFeet = m_simulator ? m_simulator->trueAltitudeFeet() : 0.0,
            .pressureAltitudeFeet = m_simulator ? m_simulator->pressureAltitudeFeet() : 0.0};
}

void NetworkManager::sendRadioMessage(const QString &message)
{
    const QList<uint> frequencies = m_transmitFrequencies;
    if (frequencies.isEmpty())
        return;
    sendPdu(RadioMessage(m_connectInfo.callsign, frequencies, message));
    if (m_simulator)
        m_simulator->showRadioMessageSent(message);
    emit radioMessageSent(message, frequencies);
}

void NetworkManager::sendPrivateMessage(const QString &to, const QString &message)
{
    sendPdu(TextMessage(m_connectInfo.callsign, to.toUpper(), message));
    if (m_simulator)
        m_simulator->showPrivateMessageSent(to, message);
    emit privateMessageSent(to, message);
}

void NetworkManager::sendWallop(const QString &message)
{
    sendPdu(Wallop(m_connectInfo.callsign, message));
    emit wallopSent(message);
    if (m_simulator)
        m_simulator->showNotification(QStringLiteral("[WALLOP] %1").arg(message), wallopColour);
}

void NetworkManager::requestRealName(const QString &callsign)
{
    sendPdu(ClientQuery(m_connectInfo.callsign, callsign, ClientQueryType::RealName, {}));
}

void NetworkManager::sendConfigurationToAll(const model::AircraftConfiguration &configuration)
{
    sendConfiguration(configurationChannel, configuration);
}

void NetworkManager::sendConfiguration(const QString &to, const model::AircraftConfiguration &configuration)
{
    const model::AircraftConfigurationMessage message{.requestFull = {}, .configuration = configuration};
    sendPdu(ClientQuery(m_connectInfo.callsign, to, ClientQueryType::AircraftConfiguration, {message.compose()}));
}

} // namespace tarvo::manager

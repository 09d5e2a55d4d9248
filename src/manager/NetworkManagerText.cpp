// Text, radio and stations.

#include "manager/NetworkManager.h"

#include "common/Callsign.h"
#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/BroadcastMessage.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/DeleteATC.h"
#include "fsd/pdu/Mute.h"
#include "fsd/pdu/RadioMessage.h"
#include "fsd/pdu/TextMessage.h"
#include "manager/RadioReception.h"
#include "manager/SelcalCode.h"
#include "manager/ServerCallsign.h"
#include "model/Controller.h"

namespace tarvo::manager {

using namespace fsd::pdu;

namespace {

constexpr int serverMessageColour = 0x85A664;
constexpr int broadcastColour = 0xFFA500;
constexpr int atisColour = 0xFFA500;

} // namespace

// Whoever hears a signal or is shown a text may act on it at once: what is needed afterwards is copied first.

void NetworkManager::showNotification(const QString &message, int colour)
{
    if (const std::shared_ptr<simulator::Simulator> simulator = m_simulator)
        simulator->showNotification(message, colour);
}

void NetworkManager::onTextMessage(const TextMessage &pdu)
{
    const QString from = pdu.From;
    const QString message = pdu.message;
    if (isServer(from)) {
        emit serverMessageReceived(message);
        showNotification(message, serverMessageColour);
        return;
    }
    emit privateMessageReceived(from, message);
    if (const std::shared_ptr<simulator::Simulator> simulator = m_simulator)
        simulator->showPrivateMessageReceived(from.toUpper(), message);
}

void NetworkManager::onBroadcastMessage(const BroadcastMessage &pdu)
{
    const QString from = pdu.From.toUpper();
    const QString message = pdu.message;
    emit broadcastMessageReceived(from, message);
    showNotification(QStringLiteral("[BROADCAST] %1: %2").arg(from, message), broadcastColour);
}

void NetworkManager::onRadioMessage(const RadioMessage &pdu)
{
    const QList<uint> heard = heardFrequencies(pdu.frequencies, m_own.radio);
    if (heard.isEmpty())
        return;
    const QString from = pdu.From.toUpper();
    if (const std::optional<QString> called = calledSelcal(pdu.message)) {
        if (isOwnSelcal(*called, m_connectInfo.selcal)) // a call for somebody else is silent, and none shows as text
            onSelcal(from, heard);
        return;
    }
    const network::RadioMessageReceived received{.from = from,
                                                 .message = pdu.message,
                                                 .frequencies = QVariant::fromValue(heard),
                                                 .direct = pdu.message.toUpper().startsWith(m_connectInfo.callsign),
                                                 .dualReceive =
                                                     m_own.radio.com1ReceiveEnabled && m_own.radio.com2ReceiveEnabled};
    emit radioMessageReceived(received);
    if (const std::shared_ptr<simulator::Simulator> simulator = m_simulator)
        simulator->showRadioMessageReceived(received.from, received.message, received.direct);
}

void NetworkManager::onSelcal(const QString &from, const QList<uint> &frequencies)
{
    emit selcalAlertReceived(from, frequencies);
    if (const std::shared_ptr<simulator::Simulator> simulator = m_simulator)
        simulator->selcalAlert();
}

void NetworkManager::onATCPosition(const ATCPosition &pdu)
{
    // An observer reports itself this way; its echo is no station.
    if (common::normalisedCallsign(pdu.From) == m_connectInfo.callsign)
        return;
    const quint32 frequency = pdu.frequencies.value(0, model::Controller::noFrequency);
    emit controllerUpdateReceived(pdu.From, frequency, pdu.latitude, pdu.longitude);
}

void NetworkManager::onDeleteATC(const DeleteATC &pdu)
{
    emit controllerDeleted(pdu.From.toUpper());
}

void NetworkManager::onMute(const Mute &pdu)
{
    emit muteReceived(pdu.mute);
}

void NetworkManager::onValidAtcAnswer(const ClientQueryResponse &pdu)
{
    if (pdu.payload.value(0).toUpper() == QLatin1StringView("Y"))
        emit isValidAtcReceived(pdu.payload.value(1).toUpper());
}

void NetworkManager::onAtisAnswer(const ClientQueryResponse &pdu)
{
    const QString callsign = common::normalisedCallsign(pdu.From);
    const QString kind = pdu.payload.value(0);
    const QString text = pdu.payload.value(1); // ends at the first colon: the rest is not put together again
    if (kind == QLatin1StringView("T"))
        m_atis.append(callsign, text);
    else if (kind == QLatin1StringView("Z"))
        m_atis.append(callsign, tr("Estimated logoff time: %1").arg(text));
    else if (kind == QLatin1StringView("E"))
        announceAtis(callsign);
}

void NetworkManager::announceAtis(const QString &callsign)
{
    // Taken out first: a listener may ask for it again.
    const std::optional<QStringList> lines = m_atis.take(callsign);
    if (!lines)
        return;
    emit controllerAtisReceived(callsign, *lines);
    showNotification(callsign + QStringLiteral(" ATIS:"), atisColour);
    for (const QString &line : *lines)
        showNotification(line, atisColour);
}

} // namespace tarvo::manager

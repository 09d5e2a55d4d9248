// Text, radio and stations.

#include "manager/NetworkManagerSending.h"

#include "fsd/pdu/TextMessage.h"

namespace tarvo::manager {

using namespace fsd::pdu;

namespace {

constexpr int serverMessageColour = 0x85A664;

bool isServer(const QString &callsign)
{
    return callsign.toUpper() == QLatin1StringView("SERVER");
}

} // namespace

void NetworkManager::onTextMessage(const TextMessage &pdu)
{
    if (!isServer(pdu.From))
        return;
    const QString message = pdu.message;
    emit serverMessageReceived(message);
    if (m_simulator)
        m_simulator->showNotification(message, serverMessageColour);
}

void NetworkManager::onBroadcastMessage(const BroadcastMessage &) {}

void NetworkManager::onRadioMessage(const RadioMessage &) {}

void NetworkManager::onATCPosition(const ATCPosition &) {}

void NetworkManager::onDeleteATC(const DeleteATC &) {}

void NetworkManager::onMute(const Mute &) {}

void NetworkManager::requestControllerAtis(const QString &) {}

void NetworkManager::requestValidAtc(const QString &) {}

void NetworkManager::requestCapabilities(const QString &) {}

void NetworkManager::sendOwnCapabilities(const QString &) {}

} // namespace tarvo::manager

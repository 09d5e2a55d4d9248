// The other aircraft: what is known of them, and how they get into the simulator.

#include "manager/NetworkManagerSending.h"

#include "fsd/pdu/ClientQueryResponse.h"

namespace tarvo::manager {

using namespace fsd::pdu;

void NetworkManager::onPilotPosition(const PilotPosition &) {}

void NetworkManager::onFastPilotPosition(const FastPilotPosition &) {}

void NetworkManager::onDeletePilot(const DeletePilot &) {}

void NetworkManager::onPlaneInfoRequest(const PlaneInfoRequest &) {}

void NetworkManager::onPlaneInfoResponse(const PlaneInfoResponse &) {}

void NetworkManager::onFlightPlan(const FlightPlan &) {}

void NetworkManager::onFlightPlanAnswer(const ClientQueryResponse &) {}

void NetworkManager::onConfiguration(const QString &from, const QString &json)
{
    emit aircraftConfigurationInfoReceived(from, json);
}

void NetworkManager::moveTrafficToNewSimulator() {}

void NetworkManager::forgetTraffic() {}

void NetworkManager::requestPlaneInfoAndFlightPlan(const QString &) {}

void NetworkManager::requestFullConfiguration(const QString &) {}

std::optional<model::RemoteAircraft> NetworkManager::remoteAircraft(const QString &) const
{
    return {};
}

QList<model::RemoteAircraft> NetworkManager::remoteAircraft() const
{
    return {};
}

} // namespace tarvo::manager

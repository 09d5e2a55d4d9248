#include "simulator/msfs/MsfsAdapter.h"

namespace tarvo::simulator::msfs {

MsfsAdapter::MsfsAdapter(AppConfig &config, std::shared_ptr<SimConnectBinding> binding, MsfsAircraftLibrary *library,
                         const common::Clock &clock, QObject *parent)
    : Simulator(parent),
      m_config(config),
      m_clock(clock){Q_UNUSED(binding) Q_UNUSED(library) Q_UNUSED(m_config) Q_UNUSED(m_clock)}

      MsfsAdapter::~MsfsAdapter() = default;

void MsfsAdapter::setTransponderCode(int) {}
void MsfsAdapter::setCom1Frequency(quint32) {}
void MsfsAdapter::setCom2Frequency(quint32) {}
void MsfsAdapter::transponderIdent() {}
void MsfsAdapter::transponderModeToggle() {}
void MsfsAdapter::addAircraft(const model::RemoteAircraft &) {}
void MsfsAdapter::updateAircraftConfiguration(const model::RemoteAircraft &) {}
void MsfsAdapter::removeAircraft(const model::RemoteAircraft &, const QString &) {}
void MsfsAdapter::removeAllAircraft() {}
void MsfsAdapter::positionUpdate(const model::RemoteAircraft &, const model::AircraftVisualState &) {}
void MsfsAdapter::fastPositionUpdate(const model::RemoteAircraft &, const model::AircraftVisualState &,
                                     const model::VelocityVector &, const model::VelocityVector &)
{
}
void MsfsAdapter::showRadioMessageSent(const QString &) {}
void MsfsAdapter::showRadioMessageReceived(const QString &, const QString &, bool) {}
void MsfsAdapter::showNotification(const QString &, int) {}
void MsfsAdapter::showPrivateMessageSent(const QString &, const QString &) {}
void MsfsAdapter::showPrivateMessageReceived(const QString &, const QString &) {}

SimulatorType MsfsAdapter::simulatorType() const
{
    return SimulatorType::Unknown;
}

void MsfsAdapter::reconnectSimulator() {}

double MsfsAdapter::pressureAltitudeFeet() const
{
    return 0;
}

double MsfsAdapter::trueAltitudeFeet() const
{
    return 0;
}

} // namespace tarvo::simulator::msfs

#pragma once

#include "common/Clock.h"
#include "manager/ConnectionList.h"
#include "model/RemoteAircraft.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <list>
#include <memory>

namespace tarvo::model {
struct VelocityVector;
}
namespace tarvo::simulator {
class Simulator;
}

namespace tarvo::manager {

class NetworkManager;

/// Keeps a second record of each other aircraft, merges its configuration messages, and puts it into the simulator once
/// enough is known to place it well: an aircraft that moves waits for its first fast position. Takes away those that
/// have fallen silent. Works beside NetworkManager, which tells the simulator about the same aircraft by its own
/// simpler rules, so that removals, additions and fast positions reach the simulator twice. Main thread only.
class AircraftManager : public QObject
{
    Q_OBJECT

public:
    explicit AircraftManager(std::shared_ptr<NetworkManager> network,
                             const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);

    /// Callsigns, in any case, whose aircraft this manager never tells the simulator of. Counts for those that are
    /// first seen from now on.
    void setIgnoreList(const QStringList &callsigns);

    /// The records, in the order in which they were first seen.
    QList<model::RemoteAircraft> aircraft() const;

private:
    using Records = std::list<model::RemoteAircraft>;

    void connectNetwork();
    void onNetworkConnected();
    void onNetworkDisconnected();
    void onCapabilitiesResponse(const QString &from, const QString &data);
    void onCapabilitiesRequest(const QString &from);
    void onSlowPosition(const QString &from, const model::AircraftVisualState &visualState, double groundSpeed);
    void onFastPosition(const QString &from, const model::AircraftVisualState &visualState,
                        const model::VelocityVector &positional, const model::VelocityVector &rotational);
    void onConfiguration(const QString &from, const QString &json);
    void onAircraftInfo(const QString &from, const QString &equipment, const QString &airline);
    void onPilotDeleted(const QString &from);
    void onSimulatorChanged();
    void onSimulatorRestarted();
    void onAddedToSim(const QString &callsign);

    model::RemoteAircraft *find(const QString &callsign);
    void meet(const QString &callsign, double groundSpeed);
    model::RemoteAircraft newRecord(const QString &callsign, double groundSpeed) const;
    void add(const model::RemoteAircraft &aircraft);
    void erase(const QString &callsign);
    void makeRoom();
    void takeFromNetwork(model::RemoteAircraft &aircraft) const;
    void updateConfigurationInSimulator(const model::RemoteAircraft &aircraft);
    void tellConfigurations();
    /// To be given a copy, never a record.
    void removeFromSimulator(const model::RemoteAircraft &aircraft, const QString &reason);
    void sync();
    QList<model::RemoteAircraft> takeDue();
    void removeStale();
    QDateTime now() const;

    std::shared_ptr<NetworkManager> m_network;
    std::shared_ptr<simulator::Simulator> m_simulator; ///< may be empty
    ConnectionList m_simulatorConnections;
    const common::Clock &m_clock;
    QTimer m_staleTimer;
    QTimer m_syncTimer; ///< connected, but never started: what it would do happens on the events that matter
    Records m_records;
    /// Finds a record by its callsign. Among 2,000 aircraft a walk along the list takes 3 microseconds, 150 times as
    /// long: for the positions of such a crowd, 10,000 in a second, that alone would be 3 % of a core.
    QHash<QString, Records::iterator> m_index;
    QStringList m_ignored;
};

} // namespace tarvo::manager

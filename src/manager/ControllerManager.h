#pragma once

#include "common/Clock.h"
#include "manager/ConnectionList.h"
#include "manager/SessionMark.h"
#include "model/Controller.h"
#include "model/RadioStackState.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QTimer>

#include <memory>

namespace tarvo::simulator {
class Simulator;
}

namespace tarvo::manager {

class NetworkManager;

/// Keeps the list of controllers in reach, ages them out, feeds the simulator's station list and tells it which station
/// each radio is tuned to. Main thread only.
class ControllerManager : public QObject
{
    Q_OBJECT

public:
    /// A server that invents stations can't fill the memory: the next one finds no room and is ignored until others go.
    static constexpr qsizetype maximumStations = 2000;
    /// Longer names of controllers are cut: all of them go to the simulator every second, in one message of 64 KiB.
    static constexpr qsizetype longestRealName = 256;

    explicit ControllerManager(std::shared_ptr<NetworkManager> network,
                               const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);

    /// All that are known, in the order of their first report. Those without a frequency, those that are not confirmed
    /// yet and those that are about to go are among them. Empty while there is no connection.
    const QList<model::Controller> &controllers() const { return m_controllers; }

signals:
    // When a connection begins or ends the list is emptied without a word. A station that changes is deleted and added.
    void controllerAdded(const tarvo::model::Controller &controller);
    void controllerDeleted(const tarvo::model::Controller &controller);
    /// Something changed that no list shows: the station has no frequency.
    void controllerUpdated(const tarvo::model::Controller &controller);

private:
    void connectNetwork();
    void onNetworkConnected();
    void onNetworkDisconnected();
    void onSimulatorChanged();
    void onRadioStackState(const model::RadioStackState &state);
    void onControllerUpdate(const QString &from, quint32 frequency, double latitude, double longitude);
    void onIsValidAtc(const QString &from);
    void onRealName(const QString &from, const QString &name);
    void onControllerDeleted(const QString &from);
    void onTick();

    void addController(const QString &callsign, quint32 frequency, double latitude, double longitude);
    void moveController(model::Controller &known, quint32 frequency, double latitude, double longitude);
    // To be given a copy, never an element of the list: a listener may change that.
    void announceDetails(const model::Controller &controller);
    void republish(const model::Controller &controller);
    bool hasRoomFor(const QString &callsign);
    void clear();
    void deleteExpired();
    void dropForgotten();
    void giveStations();
    void refreshStations();
    void setStationCallsign(int radio, const QString &callsign);
    QString stationOn(quint32 frequency) const;
    model::Controller *find(const QString &callsign);
    qint64 now() const { return m_clock.wallMs() / 1000; }

    std::shared_ptr<NetworkManager> m_network;
    const common::Clock &m_clock;
    std::shared_ptr<simulator::Simulator> m_simulator; ///< may be empty
    ConnectionList m_simulatorConnections;
    QList<model::Controller> m_controllers;
    QHash<QString, qsizetype> m_places; ///< in `m_controllers`, by callsign
    bool m_fullLogged = false;          ///< since the list was empty
    model::RadioStackState m_radio;
    QTimer m_timer;
    SessionCounter m_lists; ///< changes whenever the list is emptied
};

} // namespace tarvo::manager

#include "manager/ControllerManager.h"

#include "common/Callsign.h"
#include "manager/NetworkManager.h"
#include "simulator/Simulator.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace tarvo::manager {

using model::Controller;
using model::normalisedFrequency;
using simulator::Simulator;

namespace {

constexpr int tickIntervalMs = 1000;
constexpr qint64 silentForSeconds = 61; ///< so long without a report, and a station is gone

void setFrequency(Controller &controller, quint32 frequency)
{
    controller.frequency = frequency;
    controller.normalisedFrequency = normalisedFrequency(frequency);
    controller.frequencyHz = frequency * 1000;
}

} // namespace

ControllerManager::ControllerManager(std::shared_ptr<NetworkManager> network, const common::Clock &clock,
                                     QObject *parent)
    : QObject(parent), m_network(std::move(network)), m_clock(clock), m_timer(this)
{
    m_timer.setObjectName(QStringLiteral("controllerTimer"));
    m_timer.setInterval(tickIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &ControllerManager::onTick);
    connectNetwork();
    onSimulatorChanged();
}

void ControllerManager::connectNetwork()
{
    const NetworkManager *network = m_network.get();
    connect(network, &NetworkManager::networkConnected, this, &ControllerManager::onNetworkConnected);
    connect(network, &NetworkManager::networkDisconnected, this, &ControllerManager::onNetworkDisconnected);
    connect(network, &NetworkManager::simulatorChanged, this, &ControllerManager::onSimulatorChanged);
    connect(network, &NetworkManager::controllerUpdateReceived, this, &ControllerManager::onControllerUpdate);
    connect(network, &NetworkManager::isValidAtcReceived, this, &ControllerManager::onIsValidAtc);
    connect(network, &NetworkManager::realNameReceived, this, &ControllerManager::onRealName);
    connect(network, &NetworkManager::controllerDeleted, this, &ControllerManager::onControllerDeleted);
}

void ControllerManager::onNetworkConnected()
{
    clear();
    m_timer.start();
}

void ControllerManager::onNetworkDisconnected()
{
    clear();
    m_timer.stop();
}

void ControllerManager::onSimulatorChanged()
{
    m_simulatorConnections.clear();
    m_simulator = m_network->simulator();
    m_radio = {}; // the new simulator tells its own
    if (!m_simulator)
        return;
    m_simulatorConnections.add({
        connect(m_simulator.get(), &Simulator::radioStackStateChanged, this, &ControllerManager::onRadioStackState),
        connect(m_simulator.get(), &Simulator::restarted, this, &ControllerManager::giveStations),
    });
}

void ControllerManager::onRadioStackState(const model::RadioStackState &state)
{
    if (state == m_radio)
        return;
    m_radio = state;
    refreshStations();
}

Controller *ControllerManager::find(const QString &callsign)
{
    const auto place = m_places.constFind(common::normalisedCallsign(callsign));
    return place == m_places.constEnd() ? nullptr : &m_controllers[*place];
}

void ControllerManager::clear()
{
    m_lists.next();
    m_controllers.clear();
    m_places.clear();
    m_fullLogged = false;
}

void ControllerManager::onControllerUpdate(const QString &from, quint32 frequency, double latitude, double longitude)
{
    if (Controller *known = find(from))
        moveController(*known, frequency, latitude, longitude);
    else if (const QString callsign = common::normalisedCallsign(from); hasRoomFor(callsign))
        addController(callsign, frequency, latitude, longitude);
}

bool ControllerManager::hasRoomFor(const QString &callsign)
{
    if (callsign.isEmpty() || callsign.size() > common::longestCallsign)
        return false;
    if (m_controllers.size() < maximumStations)
        return true;
    if (!std::exchange(m_fullLogged, true))
        qWarning() << "No room for more than" << maximumStations << "stations; new ones are ignored";
    return false;
}

void ControllerManager::addController(const QString &callsign, quint32 frequency, double latitude, double longitude)
{
    Controller controller;
    controller.callsign = callsign;
    setFrequency(controller, frequency);
    controller.latitude = latitude;
    controller.longitude = longitude;
    controller.lastUpdate = now();
    m_places.insert(callsign, m_controllers.size());
    m_controllers.append(controller);

    const SessionMark mark = m_lists.mark();
    m_network->requestRealName(callsign);
    m_network->requestValidAtc(callsign);
    m_network->requestCapabilities(callsign);
    // A server that has gone shows while a line is sent, and the list is empty by then.
    if (mark.holds())
        emit controllerAdded(controller);
}

void ControllerManager::moveController(Controller &known, quint32 frequency, double latitude, double longitude)
{
    const bool same = known.frequency == frequency && known.latitude == latitude && known.longitude == longitude;
    setFrequency(known, frequency);
    known.latitude = latitude;
    known.longitude = longitude;
    known.lastUpdate = now();
    if (same)
        return;
    // Kept on purpose: a station that moves before it is confirmed goes with the next tick, and nothing takes the mark
    // back. It is a new one with its next report.
    if (!known.valid || frequency == Controller::noFrequency)
        known.deletePending = true;
    republish(Controller(known));
}

void ControllerManager::onIsValidAtc(const QString &from)
{
    if (Controller *known = find(from)) {
        known->valid = true;
        announceDetails(Controller(*known));
    }
}

void ControllerManager::onRealName(const QString &from, const QString &name)
{
    if (Controller *known = find(from)) {
        known->realName = name.left(longestRealName);
        announceDetails(Controller(*known));
    }
}

void ControllerManager::announceDetails(const Controller &controller)
{
    if (controller.frequency == Controller::noFrequency)
        emit controllerUpdated(controller);
    else
        republish(controller);
}

void ControllerManager::republish(const Controller &controller)
{
    const SessionMark mark = m_lists.mark();
    emit controllerDeleted(controller);
    if (mark.holds())
        emit controllerAdded(controller);
}

void ControllerManager::onControllerDeleted(const QString &from)
{
    Controller *known = find(from);
    if (!known)
        return;
    known->deletePending = true;
    const quint32 frequency = known->normalisedFrequency;
    if (frequency == normalisedFrequency(m_radio.com1Frequency))
        setStationCallsign(1, {});
    if (frequency == normalisedFrequency(m_radio.com2Frequency))
        setStationCallsign(2, {});
}

void ControllerManager::onTick()
{
    if (!m_simulator)
        return; // without one nothing ages out
    const SessionMark mark = m_lists.mark();
    deleteExpired();
    if (!mark.holds())
        return; // a listener has ended the connection
    giveStations();
}

void ControllerManager::giveStations()
{
    if (const std::shared_ptr<Simulator> simulator = m_simulator)
        simulator->setControllers(QList<Controller>(m_controllers));
    refreshStations();
}

void ControllerManager::deleteExpired()
{
    const qint64 lastReport = now() - silentForSeconds;
    QList<Controller> expired;
    std::ranges::copy_if(m_controllers, std::back_inserter(expired), [lastReport](const Controller &controller) {
        return controller.deletePending || controller.lastUpdate <= lastReport;
    });
    const SessionMark mark = m_lists.mark();
    for (const Controller &controller : std::as_const(expired)) {
        emit controllerDeleted(controller);
        if (!mark.holds())
            return;
        m_places.remove(controller.callsign);
    }
    if (!expired.isEmpty())
        dropForgotten();
}

/// Takes out those that have no place any more, all at once: to number the rest anew behind each of thousands would
/// hold the window.
void ControllerManager::dropForgotten()
{
    QList<Controller> kept;
    kept.reserve(m_places.size());
    for (qsizetype place = 0; place < m_controllers.size(); ++place) {
        const auto known = m_places.find(m_controllers[place].callsign);
        if (known == m_places.end() || *known != place)
            continue;
        *known = kept.size(); // never above `place`, and so never met again
        kept.append(m_controllers[place]);
    }
    m_controllers = kept;
}

void ControllerManager::refreshStations()
{
    setStationCallsign(1, stationOn(m_radio.com1Frequency));
    setStationCallsign(2, stationOn(m_radio.com2Frequency));
}

void ControllerManager::setStationCallsign(int radio, const QString &callsign)
{
    if (const std::shared_ptr<Simulator> simulator = m_simulator)
        simulator->setStationCallsign(radio, callsign);
}

QString ControllerManager::stationOn(quint32 frequency) const
{
    const auto found =
        std::ranges::find(m_controllers, normalisedFrequency(frequency), &Controller::normalisedFrequency);
    return found == m_controllers.end() ? QString() : found->callsign;
}

} // namespace tarvo::manager

#include "manager/ControllerManager.h"

#include "common/Callsign.h"
#include "manager/NetworkManager.h"

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
    m_simulatorConnections.add(
        {connect(m_simulator.get(), &Simulator::radioStackStateChanged, this, &ControllerManager::onRadioStackState)});
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

void ControllerManager::erase(const QString &callsign)
{
    const auto found = m_places.constFind(callsign);
    if (found == m_places.constEnd())
        return;
    const qsizetype place = *found;
    m_places.erase(found);
    m_controllers.removeAt(place);
    for (qsizetype i = place; i < m_controllers.size(); ++i)
        m_places[m_controllers[i].callsign] = i;
}

void ControllerManager::clear()
{
    ++m_generation;
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

    const quint64 generation = m_generation;
    m_network->requestRealName(callsign);
    m_network->requestValidAtc(callsign);
    m_network->requestCapabilities(callsign);
    // A server that has gone shows while a line is sent, and the list is empty by then.
    if (generation == m_generation)
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
    const quint64 generation = m_generation;
    emit controllerDeleted(controller);
    if (generation == m_generation)
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
    const quint64 generation = m_generation;
    deleteExpired();
    if (generation != m_generation)
        return; // a listener has ended the connection
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
    const quint64 generation = m_generation;
    for (const Controller &controller : std::as_const(expired)) {
        emit controllerDeleted(controller);
        if (generation != m_generation)
            return;
        erase(controller.callsign);
    }
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

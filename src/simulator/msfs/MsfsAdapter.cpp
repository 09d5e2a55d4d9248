#include "simulator/msfs/MsfsAdapter.h"

#include "AppConfig.h"
#include "common/OneLine.h"
#include "model/RemoteAircraft.h"
#include "simulator/msfs/MsfsTraffic.h"
#include "simulator/msfs/RadioFrequency.h"
#include "simulator/msfs/library/MsfsAircraftLibrary.h"
#include "simulator/msfs/session/SimConnectSession.h"

#include <QDebug>
#include <QScopedValueRollback>

#include <utility>

namespace tarvo::simulator::msfs {

using common::excerpt;

namespace {

constexpr quint32 trafficRadiusMetres = 30000;
constexpr int transponderStandby = 1;
constexpr int transponderModeC = 4;

void logNoRelay(const char *kind, const QString &message)
{
    qDebug().noquote() << "MSFS" << kind << "message relay is not implemented yet:" << excerpt(message);
}

} // namespace

MsfsAdapter::MsfsAdapter(AppConfig &config, std::shared_ptr<SimConnectBinding> binding, MsfsAircraftLibrary *library,
                         const common::Clock &clock, QObject *parent)
    : Simulator(parent),
      // A child of the adapter, as a Simulator's timers are to be found below it.
      m_session(std::make_unique<SimConnectSession>(std::move(binding), this, clock)),
      m_traffic(std::make_unique<MsfsTraffic>(*m_session, library ? *library : MsfsAircraftLibrary::instance(), clock))
{
    m_session->setTrafficRadius(trafficRadiusMetres);
    m_session->setTrafficEnabled(true);
    connectSession();
    connectMachine();
    connectTraffic();
    m_opening.setSingleShot(true);
    connect(&m_opening, &QTimer::timeout, this, &MsfsAdapter::reconnectSimulator);
    connect(&config, &AppConfig::configChanged, this, [this](const QString &key) {
        if (key == QLatin1StringView(config::msfsLibraryReloadToken.key))
            m_traffic->checkLibrary();
    });
}

MsfsAdapter::~MsfsAdapter()
{
    m_session->disconnect(this); // nobody is to hear of its end
    m_traffic->removeAll();
    m_session->close();
}

void MsfsAdapter::connectSession()
{
    const SimConnectSession *session = m_session.get();
    connect(session, &SimConnectSession::connected, this, &MsfsAdapter::onSessionConnected);
    connect(session, &SimConnectSession::disconnected, this, &MsfsAdapter::onSessionDisconnected);
    connect(session, &SimConnectSession::errorOccurred, this, &MsfsAdapter::onSessionError);
    connect(session, &SimConnectSession::dataReceived, this, &MsfsAdapter::onData);
    connect(session, &SimConnectSession::msfsVersionDetected, this,
            [](const QString &version) { qInfo().noquote() << "Detected MSFS version:" << version; });
    connect(session, &SimConnectSession::simConnectVersionDetected, this,
            [](const QString &version) { qInfo().noquote() << "Detected SimConnect version:" << version; });
    connect(session, &SimConnectSession::runtimeProfileDetected, this, &MsfsAdapter::onProfile);
    connect(session, &SimConnectSession::userAircraftTitleDetected, this, &MsfsAdapter::onTitle);
    connect(session, &SimConnectSession::inputEventValueChanged, this, &MsfsAdapter::onInputEvent);
    connect(session, &SimConnectSession::trafficSnapshotReceived, this, &Simulator::trafficSnapshotChanged);
    connect(session, &SimConnectSession::remoteAircraftCreated, this,
            [this](quint32 requestId, quint32 objectId) { m_traffic->onCreated(requestId, objectId, m_own.data); });
    connect(session, &SimConnectSession::remoteAircraftCreateFailed, this, [this] { m_traffic->onCreateFailed(); });
}

void MsfsAdapter::connectMachine()
{
    connect(&m_machine, &ConnectionStateMachine::stateChanged, this, &MsfsAdapter::onStateChanged);
    connect(&m_machine, &ConnectionStateMachine::shouldReconnect, this, &MsfsAdapter::onAttemptEnded);
    connect(&m_machine, &ConnectionStateMachine::maxReconnectAttemptsReached, this, &MsfsAdapter::onAttemptEnded);
}

void MsfsAdapter::connectTraffic()
{
    connect(m_traffic.get(), &MsfsTraffic::added, this, &Simulator::aircraftAddedToSim);
    connect(m_traffic.get(), &MsfsTraffic::removed, this, &Simulator::aircraftRemovedFromSim);
    connect(m_traffic.get(), &MsfsTraffic::mappingStatusChanged, this, &Simulator::trafficMappingStatusChanged);
}

// --- the link ---

void MsfsAdapter::reconnectSimulator()
{
    m_reconnectPending = m_isEnding || m_session->isOpen();
    if (!m_reconnectPending)
        openSession();
    else if (!m_isEnding)
        m_session->close(); // tellEnd() has it opened anew
}

void MsfsAdapter::openSession()
{
    m_opening.stop(); // whoever asked twice gets one
    m_machine.requestConnect(true);
    m_traffic->forgetObjects(); // they went with the session that had them made
    m_session->open();
}

void MsfsAdapter::onSessionConnected()
{
    m_machine.onConnected();
    m_session->registerDefinitions();
    for (const UpdateGroup group : updateGroups)
        m_session->subscribeGroup(group);
    m_session->enumerateInputEvents();
}

void MsfsAdapter::onSessionDisconnected()
{
    m_traffic->setProfile(MsfsRuntimeProfile::Unknown);
    tellEnd([this] {
        emit simConnectionStateChanged(false); // the machine may tell it once more, on purpose
        m_machine.onDisconnected();
    });
}

void MsfsAdapter::onSessionError(SimConnectError error, const QString &message)
{
    qWarning().noquote() << "MSFS SimConnect error:" << message;
    tellEnd([this, error] { m_machine.onError(error); });
}

/// Whoever hears of the end may ask for a new link. It is opened when all have heard, in a later turn.
template <class Tell>
void MsfsAdapter::tellEnd(Tell tell)
{
    {
        const QScopedValueRollback ending(m_isEnding, true);
        tell();
    }
    if (!m_isEnding && std::exchange(m_reconnectPending, false))
        m_opening.start();
}

void MsfsAdapter::onStateChanged(ConnectionState, ConnectionState newState)
{
    if (newState == ConnectionState::Idle || newState == ConnectionState::Connecting)
        return;
    emit simConnectionStateChanged(newState != ConnectionState::Disconnected);
    if (m_machine.state() == ConnectionState::Connected)
        m_traffic->spawnAll(); // who was there before the link was
}

/// No failure when the pilot has asked for a new link, however many attempts have ended before, on purpose. Otherwise
/// his next wish opens one: nothing here tries by itself.
void MsfsAdapter::onAttemptEnded()
{
    if (!m_reconnectPending)
        emit simConnectionFailed(tr("模拟器未启动或连接服务异常，请联系TARVO技术部"));
}

// --- the own aircraft ---

void MsfsAdapter::onData(UpdateGroup group, const QVariantMap &sample)
{
    publish(afterSample(m_own, sample));
    if (group == UpdateGroup::Position)
        m_machine.onDataReceived();
}

/// Of a speed brake: the session has subscribed to no others.
void MsfsAdapter::onInputEvent(const QString &, double value)
{
    OwnAircraft now = m_own;
    now.config.speedbrakeRatio = speedbrakeOf(value);
    publish(now);
}

void MsfsAdapter::publish(const OwnAircraft &now)
{
    const OwnAircraft last = std::exchange(m_own, now); // stored first: a receiver may ask for it
    if (now.data != last.data)
        emit userAircraftDataChanged(now.data);
    if (now.config != last.config)
        emit userAircraftConfigDataChanged(now.config);
    if (now.radio != last.radio)
        emit radioStackStateChanged(now.radio);
    if (now.paused != last.paused)
        emit simPausedStateChanged(now.paused);
}

void MsfsAdapter::onTitle(const QString &title)
{
    const QString trimmed = title.trimmed();
    if (trimmed.isEmpty() || trimmed == m_own.title)
        return;
    m_own.title = trimmed;
    qInfo().noquote() << QStringLiteral("Detected local user aircraft container title: %1").arg(excerpt(trimmed));
}

void MsfsAdapter::onProfile(MsfsRuntimeProfile profile)
{
    m_traffic->setProfile(profile);
    qInfo().noquote() << "Detected MSFS runtime profile:" << displayName(profile);
    m_traffic->rematchAll();
}

SimulatorType MsfsAdapter::simulatorType() const
{
    switch (m_traffic->profile()) {
    case MsfsRuntimeProfile::Msfs2020:
        return SimulatorType::Msfs2020;
    case MsfsRuntimeProfile::Msfs2024:
        return SimulatorType::Msfs2024;
    case MsfsRuntimeProfile::Unknown:
        break;
    }
    return SimulatorType::Unknown;
}

double MsfsAdapter::pressureAltitudeFeet() const
{
    return msfs::pressureAltitudeFeet(m_own.data);
}

double MsfsAdapter::trueAltitudeFeet() const
{
    return msfs::trueAltitudeFeet(m_own.data);
}

// --- radios and transponder: what is shown is what the simulator then reports, never what was asked for ---

void MsfsAdapter::setTransponderCode(int code)
{
    m_session->setDataValue(SimKey::TransponderCode, code);
}

void MsfsAdapter::setCom1Frequency(quint32 freq)
{
    sendFrequency(CommandKey::Com1Frequency, freq);
}

void MsfsAdapter::setCom2Frequency(quint32 freq)
{
    sendFrequency(CommandKey::Com2Frequency, freq);
}

void MsfsAdapter::sendFrequency(CommandKey radio, quint32 kilohertz)
{
    m_session->sendCommand(radio, hertzOf(static_cast<float>(kilohertz)));
}

void MsfsAdapter::transponderIdent()
{
    m_session->sendCommand(CommandKey::TransponderIdent, 0);
}

void MsfsAdapter::transponderModeToggle()
{
    m_session->setDataValue(SimKey::SquawkingModeC, m_own.radio.squawkingModeC ? transponderStandby : transponderModeC);
}

// --- other aircraft ---

void MsfsAdapter::addAircraft(const model::RemoteAircraft &aircraft)
{
    m_traffic->add(aircraft);
}

void MsfsAdapter::updateAircraftConfiguration(const model::RemoteAircraft &aircraft)
{
    m_traffic->update(aircraft);
}

void MsfsAdapter::removeAircraft(const model::RemoteAircraft &aircraft, const QString &reason)
{
    m_traffic->remove(aircraft.callsign, reason);
}

void MsfsAdapter::removeAllAircraft()
{
    m_traffic->removeAll();
}

void MsfsAdapter::positionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state)
{
    m_traffic->move(aircraft, state);
}

void MsfsAdapter::fastPositionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
                                     const model::VelocityVector &positionalVelocity, const model::VelocityVector &)
{
    m_traffic->move(aircraft, state, positionalVelocity);
}

// --- texts ---

void MsfsAdapter::showRadioMessageSent(const QString &message)
{
    logNoRelay("radio", message);
}

void MsfsAdapter::showRadioMessageReceived(const QString &, const QString &message, bool)
{
    logNoRelay("radio", message);
}

void MsfsAdapter::showNotification(const QString &message, int)
{
    qInfo().noquote() << "[MSFS]" << excerpt(message);
}

void MsfsAdapter::showPrivateMessageSent(const QString &, const QString &message)
{
    logNoRelay("private", message);
}

void MsfsAdapter::showPrivateMessageReceived(const QString &, const QString &message)
{
    logNoRelay("private", message);
}

} // namespace tarvo::simulator::msfs

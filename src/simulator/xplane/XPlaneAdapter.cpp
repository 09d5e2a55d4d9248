#include "simulator/xplane/XPlaneAdapter.h"

#include "AppConfig.h"
#include "common/TrafficLog.h"
#include "model/Controller.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"
#include "simulator/xplane/DatarefLink.h"
#include "simulator/xplane/PluginLink.h"
#include "simulator/xplane/PluginMessages.h"
#include "simulator/xplane/SimulatorAddress.h"
#include "simulator/xplane/XPlaneAltitudes.h"

#include <QDebug>
#include <QPointer>

#include <utility>

namespace tarvo::simulator::xplane {

using Kind = OutgoingMessage::Kind;

namespace {

constexpr int dialDelayMs = 500;
constexpr int tickIntervalMs = 1000;
constexpr int attemptTimeoutMs = 3000;
constexpr qint64 callIntervalSeconds = 10;
/// Time enough for a plugin on this machine to answer.
constexpr qint64 shortestDialMs = 1000;

constexpr char transponderCodeDataref[] = "sim/cockpit/radios/transponder_code";
constexpr char transponderModeDataref[] = "sim/cockpit/radios/transponder_mode";
constexpr char com1FrequencyDataref[] = "sim/cockpit2/radios/actuators/com1_frequency_hz_833";
constexpr char com2FrequencyDataref[] = "sim/cockpit2/radios/actuators/com2_frequency_hz_833";
constexpr char identCommand[] = "sim/transponder/transponder_ident";
constexpr char standbyCommand[] = "sim/transponder/transponder_standby";
constexpr char altitudeCommand[] = "sim/transponder/transponder_alt";
constexpr float standbyMode = 1.0F;
constexpr float altitudeMode = 3.0F;

/// `deed`: what the plugin says that it has done.
void logSaid(const char *deed, const QString &callsign)
{
    qCDebug(common::trafficLog).noquote()
        << common::trafficText(deed, callsign, "X-Plane", QStringLiteral("its plugin says"));
}

} // namespace

XPlaneAdapter::XPlaneAdapter(AppConfig &config, const ServiceEndpoints &endpoints, const common::Clock &clock,
                             QObject *parent)
    : Simulator(parent),
      m_config(config),
      m_clock(clock),
      m_localPluginUrl(endpoints.localPluginUrl),
      m_datarefs(std::make_unique<DatarefLink>(config, clock, this)),
      m_plugin(std::make_unique<PluginLink>(clock, this)),
      m_dialTimer(this),
      m_tickTimer(this),
      m_attemptTimer(this)
{
    forwardSignals();
    startTimers();
}

XPlaneAdapter::~XPlaneAdapter() = default;

void XPlaneAdapter::forwardSignals()
{
    connect(m_datarefs.get(), &DatarefLink::userAircraftDataChanged, this, &Simulator::userAircraftDataChanged);
    connect(m_datarefs.get(), &DatarefLink::userAircraftConfigDataChanged, this,
            &Simulator::userAircraftConfigDataChanged);
    connect(m_datarefs.get(), &DatarefLink::radioStackStateChanged, this, &Simulator::radioStackStateChanged);
    connect(m_datarefs.get(), &DatarefLink::replayModeDetected, this, &Simulator::replayModeDetected);
    connect(m_datarefs.get(), &DatarefLink::pausedChanged, this, &Simulator::simPausedStateChanged);
    connect(m_datarefs.get(), &DatarefLink::versionChanged, this, &Simulator::xplaneVersionUpdated);
    connect(m_plugin.get(), &PluginLink::socketError, this, &Simulator::nngSocketError);
    connect(m_plugin.get(), &PluginLink::reportReceived, this, &XPlaneAdapter::onReport);
    connect(m_plugin.get(), &PluginLink::pluginConnected, this, &XPlaneAdapter::onPluginConnected);
    connect(m_plugin.get(), &PluginLink::messagesLost, this, &XPlaneAdapter::onPluginNeedsAll);
}

void XPlaneAdapter::startTimers()
{
    m_dialTimer.setObjectName(QStringLiteral("dial"));
    m_dialTimer.setSingleShot(true);
    connect(&m_dialTimer, &QTimer::timeout, this, &XPlaneAdapter::dial);
    m_dialTimer.start(dialDelayMs);

    m_tickTimer.setObjectName(QStringLiteral("tick"));
    connect(&m_tickTimer, &QTimer::timeout, this, &XPlaneAdapter::tick);
    m_tickTimer.start(tickIntervalMs);

    m_attemptTimer.setObjectName(QStringLiteral("attempt"));
    m_attemptTimer.setSingleShot(true);
    m_attemptTimer.setInterval(attemptTimeoutMs);
    connect(&m_attemptTimer, &QTimer::timeout, this, &XPlaneAdapter::onAttemptTimeout);
}

void XPlaneAdapter::dial()
{
    m_plugin->open(pluginAddress(m_config.get(config::xplaneNetworkAddress), m_localPluginUrl));
    m_attempt.socketReady = true;
    m_lastDialMs = m_clock.steadyMs();
    if (m_attempt.requested)
        beginAttempt();
}

void XPlaneAdapter::dialAnew(qint64 afterMs)
{
    if (!m_attempt.socketReady || m_plugin->isConnected() || m_clock.steadyMs() - m_lastDialMs < afterMs)
        return;
    m_lastDialMs = m_clock.steadyMs();
    m_plugin->dialAnew();
}

void XPlaneAdapter::tick()
{
    const QPointer<XPlaneAdapter> alive(this);
    checkConnection();
    if (alive)
        callTheSilent();
}

void XPlaneAdapter::checkConnection()
{
    const qint64 now = nowSeconds();
    const qint64 lastReply = m_datarefs->lastReplySeconds();
    if (m_attempt.isComplete(now, lastReply)) {
        m_attempt.setConnected();
        m_attemptTimer.stop();
        const QPointer<XPlaneAdapter> alive(this);
        emit simConnectionStateChanged(true); // a receiver may reconnect at once
        if (alive && m_attempt.connected && std::exchange(m_attempt.restartDue, false))
            emit restarted();
    } else if (m_attempt.isLost(now, lastReply)) {
        m_datarefs->clearAircraft();
        disconnectSimulator();
    } else if (hasDiedInPause()) {
        m_datarefs->clearAircraft();
        emit simConnectionStateChanged(false);
    }
}

/// The session trusts a pause for as long as it lasts; without a link nothing else tells that X-Plane says so no more.
bool XPlaneAdapter::hasDiedInPause() const
{
    return m_datarefs->sample().paused && m_heardXPlane && !hearsXPlane();
}

bool XPlaneAdapter::hearsXPlane() const
{
    return nowSeconds() - m_datarefs->lastHeardSeconds() < ConnectionAttempt::staleAfterSeconds;
}

/// X-Plane may have been started since, and nng's dialling may have stopped for good.
void XPlaneAdapter::callTheSilent()
{
    const qint64 now = nowSeconds();
    dialAnew(callIntervalSeconds * 1000);
    if (m_datarefs->isSilent(now, callIntervalSeconds))
        m_datarefs->subscribe();
    const bool heard = std::exchange(m_heardXPlane, hearsXPlane());
    const bool hearsAgain = m_heardXPlane && !heard;
    if (hearsAgain && m_plugin->isConnected() && m_attempt.isAwaited())
        startAttempt();
}

void XPlaneAdapter::onPluginConnected(bool first)
{
    if (!first || !m_attempt.isUnderWay()) {
        onPluginNeedsAll();
        return;
    }
    // The questions of the attempt wait in the socket for this very plugin.
    m_attempt.prolonged = true;
    m_attemptTimer.start();
}

void XPlaneAdapter::onPluginNeedsAll()
{
    if (!m_attempt.wanted)
        return;
    m_attempt.restartDue = true;
    if (!m_attempt.isUnderWay()) {
        startAttempt();
        return;
    }
    // Once only: a plugin that takes the connection and ends it, again and again, makes no attempt endless.
    if (!std::exchange(m_attempt.prolonged, true))
        m_attemptTimer.start();
    askPlugin();
}

void XPlaneAdapter::reconnectSimulator()
{
    m_attempt.wanted = true;
    m_attempt.failureTold = false; // who asks gets an answer
    dialAnew(shortestDialMs);
    startAttempt();
}

void XPlaneAdapter::startAttempt()
{
    if (m_attempt.connected)
        disconnectSimulator();
    m_attempt.request();
    beginAttempt();
}

void XPlaneAdapter::beginAttempt()
{
    if (!m_attempt.begin())
        return;
    qInfo() << "X-Plane connection attempt";
    m_datarefs->setLastReplySeconds(nowSeconds() - ConnectionAttempt::assumedAgeSeconds);
    m_datarefs->subscribe();
    askPlugin();
    m_attemptTimer.start();
}

void XPlaneAdapter::askPlugin()
{
    send(message::version());
    validateCsl();
}

void XPlaneAdapter::validateCsl()
{
    const QStringList paths = m_config.get(config::xplaneCsl);
    if (paths.isEmpty()) {
        qWarning() << "X-Plane CSL validation skipped because no CSL paths are configured";
        emit trafficMappingStatusChanged(tr("X-Plane CSL 未配置"));
        return;
    }
    qInfo() << "Validating X-Plane CSL paths:" << paths;
    emit trafficMappingStatusChanged(tr("X-Plane CSL 验证中：%1 个路径").arg(paths.size()));
    send(message::csl(paths));
}

void XPlaneAdapter::onAttemptTimeout()
{
    if (m_attempt.timeOut())
        emit simConnectionFailed(tr("模拟器未启动或连接服务异常，请联系TARVO技术部"));
}

void XPlaneAdapter::disconnectSimulator()
{
    m_attempt.setDisconnected();
    // Raised last, so that a receiver may reconnect at once.
    emit simConnectionStateChanged(false);
}

qint64 XPlaneAdapter::nowSeconds() const
{
    return m_clock.steadyMs() / 1000;
}

// --- what the plugin reports ---

void XPlaneAdapter::onReport(const PluginReport &report)
{
    std::visit([this](const auto &one) { on(one); }, report);
}

void XPlaneAdapter::on(const report::Version &report)
{
    const bool valid = report.version && *report.version >= ConnectionAttempt::oldestPluginVersion;
    m_attempt.versionValid = valid;
    m_attempt.versionReceived = true;
    if (!valid)
        emit invalidPluginVersion();
    emit pluginVersionChecked(valid);
    if (valid && m_attempt.isAwaited()) { // the answer comes after the attempt's time
        startAttempt();
        m_attempt.versionReceived = true;
    }
}

void XPlaneAdapter::on(const report::Csl &report)
{
    m_attempt.cslValid = report.valid;
    qInfo() << "X-Plane CSL validation result:" << (report.valid ? "true" : "false");
    emit trafficMappingStatusChanged(report.valid ? tr("X-Plane CSL 有效") : tr("X-Plane CSL 无效"));
    emit cslValidationChecked(report.valid);
}

void XPlaneAdapter::on(const report::Added &report)
{
    if (report.callsign.isEmpty())
        return;
    logSaid("drawn", report.callsign);
    emit aircraftAddedToSim(report.callsign);
}

void XPlaneAdapter::on(const report::Deleted &report)
{
    if (report.callsign.isEmpty())
        return;
    logSaid("let go", report.callsign);
    emit aircraftRemovedFromSim(report.callsign);
}

void XPlaneAdapter::on(const report::StationRequest &report)
{
    if (!report.callsign.isEmpty())
        emit requestStationInfo(report.callsign);
}

void XPlaneAdapter::on(const report::RadioSent &report)
{
    if (!report.message.isEmpty())
        emit radioMessageSent(report.message);
}

void XPlaneAdapter::on(const report::PrivateSent &report)
{
    if (!report.to.isEmpty() && !report.message.isEmpty())
        emit privateMessageSent(report.to, report.message);
}

void XPlaneAdapter::on(const report::ForceDisconnect &report)
{
    emit forceDisconnect(report.reason);
}

void XPlaneAdapter::on(const report::Shutdown &)
{
    disconnectSimulator();
}

// --- what goes to X-Plane's UDP interface ---

void XPlaneAdapter::setTransponderCode(int code)
{
    m_datarefs->write(transponderCodeDataref, static_cast<float>(code));
}

void XPlaneAdapter::setCom1Frequency(quint32 freq)
{
    m_datarefs->write(com1FrequencyDataref, static_cast<float>(freq));
}

void XPlaneAdapter::setCom2Frequency(quint32 freq)
{
    m_datarefs->write(com2FrequencyDataref, static_cast<float>(freq));
}

void XPlaneAdapter::transponderIdent()
{
    m_datarefs->command(identCommand);
}

void XPlaneAdapter::transponderModeToggle()
{
    const bool toStandby = m_datarefs->sample().radio.squawkingModeC;
    m_datarefs->write(transponderModeDataref, toStandby ? standbyMode : altitudeMode);
    m_datarefs->command(toStandby ? QByteArrayView(standbyCommand) : QByteArrayView(altitudeCommand));
}

// --- what goes to the plugin ---

void XPlaneAdapter::send(OutgoingMessage message)
{
    m_plugin->send(std::move(message));
}

void XPlaneAdapter::addAircraft(const model::RemoteAircraft &aircraft)
{
    qCDebug(common::trafficLog).noquote() << common::trafficText(
        "asked for", aircraft.callsign, "XPlaneAdapter",
        QStringLiteral("type %1, airline %2, %3")
            .arg(aircraft.typeCode, aircraft.airline,
                 m_plugin->isConnected() ? QStringLiteral("the plugin is there") : QStringLiteral("no plugin yet")));
    send({message::add(aircraft), Kind::Existence, aircraft.callsign});
}

void XPlaneAdapter::updateAircraftConfiguration(const model::RemoteAircraft &aircraft)
{
    send(message::configuration(aircraft));
}

void XPlaneAdapter::removeAircraft(const model::RemoteAircraft &aircraft, const QString &reason)
{
    send({message::remove(aircraft.callsign, reason), Kind::Existence, aircraft.callsign});
}

void XPlaneAdapter::removeAllAircraft()
{
    send({message::removeAll(), Kind::ExistenceOfAll});
}

void XPlaneAdapter::setControllers(const QList<model::Controller> &controllers)
{
    send(message::controllers(controllers));
}

void XPlaneAdapter::clearControllers()
{
    send(message::controllers({}));
}

void XPlaneAdapter::positionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state)
{
    send({message::position(aircraft, state), Kind::Position, aircraft.callsign});
}

void XPlaneAdapter::fastPositionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
                                       const model::VelocityVector &positionalVelocity,
                                       const model::VelocityVector &rotationalVelocity)
{
    send({message::fastPosition(aircraft, state, positionalVelocity, rotationalVelocity), Kind::Position,
          aircraft.callsign});
}

void XPlaneAdapter::aircraftHeartbeat(const QString &callsign)
{
    send(message::heartbeat(callsign));
}

void XPlaneAdapter::showRadioMessageSent(const QString &message)
{
    send(message::radioSent(message));
}

void XPlaneAdapter::showRadioMessageReceived(const QString &from, const QString &message, bool direct)
{
    send(message::radioReceived(from, message, direct));
}

void XPlaneAdapter::showNotification(const QString &message, int colour)
{
    send(message::notification(message, colour));
}

void XPlaneAdapter::showPrivateMessageSent(const QString &to, const QString &message)
{
    send(message::privateSent(to, message));
}

void XPlaneAdapter::showPrivateMessageReceived(const QString &from, const QString &message)
{
    send(message::privateReceived(from, message));
}

void XPlaneAdapter::networkConnected(const QString &callsign, const QString &selcal, bool observer)
{
    send(message::networkConnected(callsign, selcal, observer));
}

void XPlaneAdapter::networkDisconnected()
{
    send(message::networkDisconnected());
}

void XPlaneAdapter::setStationCallsign(int radio, const QString &callsign)
{
    send(message::stationCallsign(radio, callsign));
}

void XPlaneAdapter::selcalAlert() {}

// --- what the own data give ---

SimulatorType XPlaneAdapter::simulatorType() const
{
    return simulatorTypeOf(m_datarefs->sample().version);
}

double XPlaneAdapter::pressureAltitudeFeet() const
{
    return xplane::pressureAltitudeFeet(m_datarefs->sample().user, m_datarefs->sample().version);
}

double XPlaneAdapter::trueAltitudeFeet() const
{
    return xplane::trueAltitudeFeet(m_datarefs->sample().user, m_datarefs->sample().version);
}

double XPlaneAdapter::adjustRemoteAltitude(double altitudeFeet) const
{
    return xplane::adjustRemoteAltitude(altitudeFeet, m_datarefs->sample().user, m_datarefs->sample().version);
}

} // namespace tarvo::simulator::xplane

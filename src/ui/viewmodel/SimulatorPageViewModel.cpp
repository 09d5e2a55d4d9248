#include "ui/viewmodel/SimulatorPageViewModel.h"

#include "common/Units.h"
#include "model/RemoteAircraft.h"
#include "ui/viewmodel/Frequency.h"
#include "ui/viewmodel/RadioEntry.h"

#include <QStringList>
#include <QVariantMap>
#include <QtMath>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace tarvo::ui {

namespace {

constexpr qsizetype maximumPlotRows = 200;
constexpr double visibleMoveNm = 0.05; ///< the plot's own movement below this is not told; 0.4 s at 450 knots
constexpr double visibleClimbFeet = 50;
constexpr double largestShownNumber = 999'999;
constexpr qsizetype longestStatus = 200; ///< characters; a page wraps it
constexpr int knownEngines = 4;

/// Equal, or the very same bits: a NaN that stays is no change.
bool isSameSample(const model::UserAircraftData &one, const model::UserAircraftData &other)
{
    using Bits = std::array<quint64, sizeof(model::UserAircraftData) / sizeof(quint64)>;
    return one == other || std::bit_cast<Bits>(one) == std::bit_cast<Bits>(other);
}

/// A number for a text; "--" when there is nothing sensible to show.
QString number(double value, int decimals)
{
    if (!(std::abs(value) <= largestShownNumber))
        return QStringLiteral("--");
    const double scale = std::pow(10.0, decimals);
    return QString::number(std::round(value * scale) / scale + 0.0, 'f', decimals); // + 0.0: never "-0"
}

QString percent(double ratio)
{
    return QStringLiteral("%1%").arg(number(ratio * 100, 0));
}

double finiteOrZero(double value)
{
    return std::isfinite(value) ? value : 0;
}

TrafficTarget targetFrom(const model::RemoteAircraft &aircraft)
{
    const model::AircraftVisualState &state = aircraft.visualState;
    return {aircraft.callsign,
            aircraft.typeCode,
            state.latitude,
            state.longitude,
            state.altitudeMslM * common::feetPerMetre,
            state.heading,
            aircraft.groundSpeed};
}

TrafficTarget targetFrom(const QVariantMap &row)
{
    constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
    const auto value = [&row](const char *key) {
        bool known = false;
        const double found = row.value(QLatin1String(key)).toDouble(&known);
        return known ? found : unknown;
    };
    TrafficTarget target{row.value(QStringLiteral("label")).toString(),
                         QString(),
                         value("latitude"),
                         value("longitude"),
                         value("altitudeFeet"),
                         value("headingTrue"),
                         value("groundSpeedKnots")};
    // Some snapshots have positions only, and zeros for all else.
    if (target.altitudeFeet == 0 && target.heading == 0 && target.groundSpeed == 0)
        target.altitudeFeet = target.heading = target.groundSpeed = unknown;
    return target;
}

constexpr Role<PlotContact> contactRoles[] = {
    {"callsign", [](const PlotContact &row) -> QVariant { return row.target.callsign; }},
    {"type", [](const PlotContact &row) -> QVariant { return row.target.type; }},
    {"bearing", member<&PlotContact::bearing>},
    {"distanceNm", member<&PlotContact::distanceNm>},
    {"relativeAltitudeFeet", member<&PlotContact::relativeAltitudeFeet>},
    {"heading", [](const PlotContact &row) -> QVariant { return row.target.heading; }},
    {"groundSpeed", [](const PlotContact &row) -> QVariant { return row.target.groundSpeed; }},
};

/// A heading or bearing in three figures; north is 360.
QString course(double degrees)
{
    const int rounded = qRound(degrees) % 360;
    return QStringLiteral("%1").arg(rounded == 0 ? 360 : rounded, 3, 10, QLatin1Char('0'));
}

} // namespace

SimulatorPageViewModel::SimulatorPageViewModel(QObject *parent) : QObject(parent), m_contacts(contactRoles) {}

void SimulatorPageViewModel::setMode(const QString &mode)
{
    const model::SimulatorMode picked = model::modeFromText(mode);
    if (picked == m_mode)
        return;
    m_mode = picked;
    m_simulatorName = xplaneMode() ? QStringLiteral("X-Plane")
                      : msfsMode() ? QStringLiteral("Microsoft Flight Simulator")
                                   : tr("未选择");
    m_plugin = {};
    emit stateChanged();
    clearOwnAircraft();
    clearTraffic();
}

void SimulatorPageViewModel::setSimulatorState(bool connected, LinkState state)
{
    if (connected == m_connected && state == m_state)
        return;
    m_connected = connected;
    m_state = state;
    emit stateChanged();
    if (!connected)
        clearOwnAircraft();
}

void SimulatorPageViewModel::setText(QString &member, const QString &text)
{
    if (text == member)
        return;
    member = text;
    emit stateChanged();
}

void SimulatorPageViewModel::setFailure(const QString &reason)
{
    setText(m_failureText, reason.left(longestStatus).simplified());
}

void SimulatorPageViewModel::setPluginValid(bool valid)
{
    if (valid)
        setFailure({});
    setText(m_plugin.plugin, valid ? tr("有效") : tr("无效"));
}

void SimulatorPageViewModel::setCslValid(bool valid)
{
    setText(m_plugin.csl, valid ? tr("有效") : tr("无效"));
}

void SimulatorPageViewModel::setTrafficMappingStatus(const QString &status)
{
    const QString shown = status.left(longestStatus).simplified();
    setText(m_plugin.mapping, shown.isEmpty() ? tr("未知") : shown);
}

void SimulatorPageViewModel::setXPlaneVersion(int version)
{
    setText(m_plugin.version, version > 0 ? QStringLiteral("X-Plane %1").arg(version) : tr("未获取"));
}

void SimulatorPageViewModel::clearPlugin()
{
    if (m_plugin == PluginTexts())
        return;
    m_plugin = {};
    emit stateChanged();
}

void SimulatorPageViewModel::setOwnAircraft(const model::UserAircraftData &aircraft,
                                            const model::UserAircraftConfigData &config,
                                            const model::RadioStackState &radio, bool paused)
{
    model::UserAircraftConfigData shownConfig = config;
    shownConfig.flapsRatio = finiteOrZero(config.flapsRatio);
    shownConfig.speedbrakeRatio = finiteOrZero(config.speedbrakeRatio);
    const bool moved = !m_hasData || !isSameSample(aircraft, m_aircraft);
    const bool configured = !m_hasData || shownConfig != m_config;
    const bool tuned = !m_hasData || radio != m_radio;
    if (!moved && !configured && !tuned && paused == m_paused)
        return;
    m_hasData = true;
    m_paused = paused;
    m_aircraft = aircraft;
    m_config = shownConfig;
    m_radio = radio;
    if (moved)
        updateMotionTexts();
    if (configured) {
        updateSurfaceTexts();
        updateEngineTexts();
    }
    if (tuned)
        updateRadioTexts();
    emit dataChanged();
    if (moved && hasMovedVisibly())
        plotChanged();
}

void SimulatorPageViewModel::updateMotionTexts()
{
    m_texts.motionSummary = tr("地速 %1 节 | 垂直速度 %2 m/s | 前轮角 %3°")
                                .arg(number(m_aircraft.groundSpeed, 0), number(m_aircraft.altitudeVelocity, 1),
                                     number(m_aircraft.noseWheelAngle, 1));
}

void SimulatorPageViewModel::updateSurfaceTexts()
{
    m_texts.flapsLabel = percent(m_config.flapsRatio);
    m_texts.speedbrakeLabel =
        m_config.speedbrakeArmed && m_config.speedbrakeRatio <= 0 ? tr("预位") : percent(m_config.speedbrakeRatio);
}

void SimulatorPageViewModel::updateEngineTexts()
{
    const bool running[] = {m_config.engine1Running, m_config.engine2Running, m_config.engine3Running,
                            m_config.engine4Running};
    const bool reversing[] = {m_config.engine1Reversing, m_config.engine2Reversing, m_config.engine3Reversing,
                              m_config.engine4Reversing};
    const int shown = std::clamp(m_config.engineCount, 0, knownEngines);
    m_engineStates.clear();
    for (int i = 0; i < shown; ++i)
        m_engineStates << QVariantMap{{QStringLiteral("index"), i},
                                      {QStringLiteral("running"), running[i]},
                                      {QStringLiteral("reversing"), reversing[i]},
                                      {QStringLiteral("label"), QStringLiteral("ENG%1").arg(i + 1)}};
    m_texts.engineSummary = shown == 0
                                ? tr("未检测到发动机")
                                : QStringList{tr("%1 台发动机").arg(m_config.engineCount),
                                              tr("%1 台运行中").arg(std::count(running, running + shown, true)),
                                              tr("%1 台反推").arg(std::count(reversing, reversing + shown, true))}
                                      .join(QStringLiteral(" | "));
}

void SimulatorPageViewModel::updateRadioTexts()
{
    m_texts.com1Frequency = megahertz(m_radio.com1Frequency);
    m_texts.com2Frequency = megahertz(m_radio.com2Frequency);
    m_texts.transponderCode = QStringLiteral("%1").arg(m_radio.transponderCode, 4, 10, QLatin1Char('0'));
    const QString com1 = QStringLiteral("COM1 %1").arg(m_texts.com1Frequency);
    const QString com2 = QStringLiteral("COM2 %1").arg(m_texts.com2Frequency);
    m_texts.activeTransmitLabel = m_radio.com1TransmitEnabled ? com1 : m_radio.com2TransmitEnabled ? com2 : tr("无");
    QStringList receiving;
    if (m_radio.com1ReceiveEnabled)
        receiving << com1;
    if (m_radio.com2ReceiveEnabled)
        receiving << com2;
    m_texts.activeReceiveLabel = receiving.isEmpty() ? tr("无") : receiving.join(QStringLiteral(" / "));
}

void SimulatorPageViewModel::clearOwnAircraft()
{
    if (!m_hasData)
        return;
    m_hasData = false;
    m_paused = false;
    m_aircraft = {};
    m_config = {};
    m_radio = {};
    m_texts = {};
    m_engineStates.clear();
    emit dataChanged();
    plotChanged();
}

void SimulatorPageViewModel::setTrafficContacts(const QVariantList &contacts)
{
    if (contacts == m_trafficContacts)
        return;
    m_trafficContacts = contacts;
    if (msfsMode()) {
        m_targets.clear();
        for (const QVariant &contact : contacts)
            m_targets << targetFrom(contact.toMap());
    }
    plotChanged();
}

void SimulatorPageViewModel::setRemoteAircraft(const QList<model::RemoteAircraft> &aircraft)
{
    if (msfsMode())
        return; // there the snapshot has the same aircraft, where the simulator shows them
    QList<TrafficTarget> targets;
    targets.reserve(aircraft.size());
    for (const model::RemoteAircraft &one : aircraft) {
        if (isPosition(one.visualState.latitude, one.visualState.longitude)) // a flight plan alone is no traffic
            targets << targetFrom(one);
    }
    if (targets == m_targets)
        return;
    m_targets = targets;
    plotChanged();
}

void SimulatorPageViewModel::clearTraffic()
{
    if (m_targets.isEmpty() && m_trafficContacts.isEmpty())
        return;
    m_targets.clear();
    m_trafficContacts.clear();
    plotChanged();
}

void SimulatorPageViewModel::plotChanged()
{
    m_plotOrigin.reset();
    if (m_hasData)
        m_plotOrigin = ownPosition();
    QList<PlotContact> contacts = plotTraffic(m_plotOrigin.value_or(PlotOrigin()), m_targets, maximumPlotRows);
    if (contacts.isEmpty() && msfsMode()) // the snapshot has its labels all the same
        for (const TrafficTarget &target : m_targets.first(std::min(maximumPlotRows, m_targets.size())))
            contacts.append({.target = target});
    m_contacts.setRows(contacts);
    emit trafficChanged();
}

PlotOrigin SimulatorPageViewModel::ownPosition() const
{
    return {m_aircraft.latitude, m_aircraft.longitude, m_aircraft.altitudeMslM * common::feetPerMetre};
}

bool SimulatorPageViewModel::hasMovedVisibly() const
{
    if (!m_plotOrigin)
        return true;
    if (m_targets.isEmpty())
        return false; // an empty plot looks the same from everywhere
    const PlotOrigin now = ownPosition();
    const bool had = isPosition(m_plotOrigin->latitude, m_plotOrigin->longitude);
    if (!had || !isPosition(now.latitude, now.longitude))
        return had != isPosition(now.latitude, now.longitude);
    const double movedNm = greatCircleNm(m_plotOrigin->latitude, m_plotOrigin->longitude, now.latitude, now.longitude);
    const double climbed = std::abs(now.altitudeFeet - m_plotOrigin->altitudeFeet);
    return movedNm > visibleMoveNm || climbed > visibleClimbFeet ||
           std::isfinite(now.altitudeFeet) != std::isfinite(m_plotOrigin->altitudeFeet);
}

QList<PlotContact> SimulatorPageViewModel::plotContacts() const
{
    const QList<PlotContact> &rows = m_contacts.rows();
    const bool placed = !rows.isEmpty() && std::isfinite(rows.first().distanceNm); // all are, or none
    return placed ? rows : QList<PlotContact>();
}

QString SimulatorPageViewModel::plotSummary() const
{
    const QList<PlotContact> contacts = plotContacts();
    if (contacts.isEmpty())
        return tr("附近暂无交通目标");
    const PlotContact &nearest = contacts.first();
    return tr("%1 个目标，最近的在方位 %2，%3 海里：%4")
        .arg(QString::number(contacts.size()), course(nearest.bearing), number(nearest.distanceNm, 1),
             nearest.target.callsign);
}

QString SimulatorPageViewModel::trafficSummary() const
{
    return m_targets.isEmpty() ? tr("附近暂无交通目标") : tr("附近 %1 个交通目标").arg(m_targets.size());
}

QVariantMap SimulatorPageViewModel::checkFrequency(const QString &typed, const QString &example) const
{
    return frequencyVerdict(typed, example);
}

QVariantMap SimulatorPageViewModel::checkTransponderCode(const QString &typed) const
{
    return transponderVerdict(typed);
}

void SimulatorPageViewModel::stepPlotRange(int steps)
{
    const int range = steppedRange(plotRange(), steps);
    if (range == m_pickedRange)
        return;
    m_pickedRange = range;
    emit trafficChanged();
}

void SimulatorPageViewModel::freePlotRange()
{
    if (m_pickedRange == 0)
        return;
    m_pickedRange = 0;
    emit trafficChanged();
}

void SimulatorPageViewModel::pickCallsign(const QString &callsign)
{
    const QString picked = callsign == m_pickedCallsign ? QString() : callsign;
    if (picked == m_pickedCallsign)
        return;
    m_pickedCallsign = picked;
    emit pickedCallsignChanged();
}

void SimulatorPageViewModel::stepPickedContact(int rows)
{
    const QList<PlotContact> &contacts = m_contacts.rows();
    const int count = static_cast<int>(contacts.size());
    const int step = rows < 0 ? -1 : 1;
    int row = m_pickedCallsign.isEmpty() ? -1 : contactRow(m_pickedCallsign);
    if (row < 0)
        row = step > 0 ? -1 : count;
    QString reached = m_pickedCallsign;
    for (int left = std::abs(std::clamp(rows, -count, count)); left > 0; --left) {
        do
            row += step;
        while (row >= 0 && row < count && contacts.at(row).target.callsign.isEmpty());
        if (row < 0 || row >= count)
            break;
        reached = contacts.at(row).target.callsign;
    }
    if (reached != m_pickedCallsign)
        pickCallsign(reached);
}

int SimulatorPageViewModel::contactRow(const QString &callsign) const
{
    const QList<PlotContact> &rows = m_contacts.rows();
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&](const PlotContact &contact) { return contact.target.callsign == callsign; });
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

void SimulatorPageViewModel::requestReconnect()
{
    setFailure({});
    emit reconnectRequested();
}

void SimulatorPageViewModel::requestSetCom1Frequency(const QString &frequency)
{
    emit setCom1FrequencyRequested(frequency);
}

void SimulatorPageViewModel::requestSetCom2Frequency(const QString &frequency)
{
    emit setCom2FrequencyRequested(frequency);
}

void SimulatorPageViewModel::requestSetTransponderCode(const QString &code)
{
    emit setTransponderCodeRequested(code);
}

void SimulatorPageViewModel::requestTransponderIdent()
{
    emit transponderIdentRequested();
}

void SimulatorPageViewModel::requestTransponderModeToggle()
{
    emit transponderModeToggleRequested();
}

} // namespace tarvo::ui

#pragma once

#include "model/RadioStackState.h"
#include "model/SimulatorMode.h"
#include "model/UserAircraftConfigData.h"
#include "model/UserAircraftData.h"
#include "ui/viewmodel/ConnectionStatus.h"
#include "ui/viewmodel/PlotLabels.h"
#include "ui/viewmodel/RowsModel.h"
#include "ui/viewmodel/TrafficPlot.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QVariantList>

#include <optional>

namespace tarvo::model {
struct RemoteAircraft;
}

namespace tarvo::ui {

/// The simulator page: the own aircraft as texts and numbers, the traffic around it, and the page's commands. Only what
/// is shown: SimulatorFeed feeds it and acts on its requests, MainWindow sets mode and link. In QML
/// it is the context property "simulatorBackend".
class SimulatorPageViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString currentMode READ currentMode NOTIFY stateChanged)
    Q_PROPERTY(QString simulatorFamily READ simulatorFamily NOTIFY stateChanged)
    Q_PROPERTY(QString simulatorDisplayName READ simulatorDisplayName NOTIFY stateChanged)
    Q_PROPERTY(bool msfsMode READ msfsMode NOTIFY stateChanged)
    Q_PROPERTY(bool xplaneMode READ xplaneMode NOTIFY stateChanged)
    Q_PROPERTY(bool simulatorConnected READ simulatorConnected NOTIFY stateChanged)
    Q_PROPERTY(QString simulatorStatusText READ simulatorStatusText NOTIFY stateChanged)
    Q_PROPERTY(QString simulatorTone READ simulatorTone NOTIFY stateChanged)
    Q_PROPERTY(QString simulatorFailureText READ simulatorFailureText NOTIFY stateChanged)
    Q_PROPERTY(QString pluginStatusText READ pluginStatusText NOTIFY stateChanged)
    Q_PROPERTY(QString cslStatusText READ cslStatusText NOTIFY stateChanged)
    Q_PROPERTY(QString trafficMappingStatusText READ trafficMappingStatusText NOTIFY stateChanged)
    Q_PROPERTY(QString xplaneVersionText READ xplaneVersionText NOTIFY stateChanged)
    Q_PROPERTY(bool simPaused READ simPaused NOTIFY dataChanged)
    Q_PROPERTY(bool onGround READ onGround NOTIFY dataChanged)
    Q_PROPERTY(bool gearDown READ gearDown NOTIFY dataChanged)
    Q_PROPERTY(bool avionicsPowerOn READ avionicsPowerOn NOTIFY dataChanged)
    Q_PROPERTY(bool com1ReceiveEnabled READ com1ReceiveEnabled NOTIFY dataChanged)
    Q_PROPERTY(bool com2ReceiveEnabled READ com2ReceiveEnabled NOTIFY dataChanged)
    Q_PROPERTY(bool com1TransmitEnabled READ com1TransmitEnabled NOTIFY dataChanged)
    Q_PROPERTY(bool com2TransmitEnabled READ com2TransmitEnabled NOTIFY dataChanged)
    Q_PROPERTY(bool squawkingModeC READ squawkingModeC NOTIFY dataChanged)
    Q_PROPERTY(bool squawkingIdent READ squawkingIdent NOTIFY dataChanged)
    Q_PROPERTY(bool beaconOn READ beaconOn NOTIFY dataChanged)
    Q_PROPERTY(bool landingLightsOn READ landingLightsOn NOTIFY dataChanged)
    Q_PROPERTY(bool taxiLightsOn READ taxiLightsOn NOTIFY dataChanged)
    Q_PROPERTY(bool navLightsOn READ navLightsOn NOTIFY dataChanged)
    Q_PROPERTY(bool strobesOn READ strobesOn NOTIFY dataChanged)
    Q_PROPERTY(double latitude READ latitude NOTIFY dataChanged)
    Q_PROPERTY(double longitude READ longitude NOTIFY dataChanged)
    Q_PROPERTY(double altitudeMslM READ altitudeMslM NOTIFY dataChanged)
    Q_PROPERTY(double altitudeAglM READ altitudeAglM NOTIFY dataChanged)
    Q_PROPERTY(double altitudePressure READ altitudePressure NOTIFY dataChanged)
    Q_PROPERTY(double heading READ heading NOTIFY dataChanged)
    Q_PROPERTY(double groundSpeed READ groundSpeed NOTIFY dataChanged)
    Q_PROPERTY(double pitch READ pitch NOTIFY dataChanged)
    Q_PROPERTY(double bank READ bank NOTIFY dataChanged)
    Q_PROPERTY(double latitudeVelocity READ latitudeVelocity NOTIFY dataChanged)
    Q_PROPERTY(double longitudeVelocity READ longitudeVelocity NOTIFY dataChanged)
    Q_PROPERTY(double altitudeVelocity READ altitudeVelocity NOTIFY dataChanged)
    Q_PROPERTY(double pitchVelocity READ pitchVelocity NOTIFY dataChanged)
    Q_PROPERTY(double headingVelocity READ headingVelocity NOTIFY dataChanged)
    Q_PROPERTY(double bankVelocity READ bankVelocity NOTIFY dataChanged)
    Q_PROPERTY(double noseWheelAngle READ noseWheelAngle NOTIFY dataChanged)
    Q_PROPERTY(double flapsRatio READ flapsRatio NOTIFY dataChanged)
    Q_PROPERTY(double speedbrakeRatio READ speedbrakeRatio NOTIFY dataChanged)
    Q_PROPERTY(bool speedbrakeArmed READ speedbrakeArmed NOTIFY dataChanged)
    Q_PROPERTY(int com1Volume READ com1Volume NOTIFY dataChanged)
    Q_PROPERTY(int com2Volume READ com2Volume NOTIFY dataChanged)
    Q_PROPERTY(int engineCount READ engineCount NOTIFY dataChanged)
    Q_PROPERTY(QString com1Frequency READ com1Frequency NOTIFY dataChanged)
    Q_PROPERTY(QString com2Frequency READ com2Frequency NOTIFY dataChanged)
    Q_PROPERTY(QString transponderCode READ transponderCode NOTIFY dataChanged)
    Q_PROPERTY(QString flapsLabel READ flapsLabel NOTIFY dataChanged)
    Q_PROPERTY(QString speedbrakeLabel READ speedbrakeLabel NOTIFY dataChanged)
    Q_PROPERTY(QString activeTransmitLabel READ activeTransmitLabel NOTIFY dataChanged)
    Q_PROPERTY(QString activeReceiveLabel READ activeReceiveLabel NOTIFY dataChanged)
    Q_PROPERTY(QString motionSummary READ motionSummary NOTIFY dataChanged)
    Q_PROPERTY(QString engineSummary READ engineSummary NOTIFY dataChanged)
    Q_PROPERTY(QVariantList engineStates READ engineStates NOTIFY dataChanged)
    Q_PROPERTY(QVariantList trafficContacts READ trafficContacts NOTIFY trafficChanged)
    Q_PROPERTY(QAbstractListModel *contactRows READ contactRows CONSTANT)
    Q_PROPERTY(int plotRange READ plotRange NOTIFY trafficChanged)
    Q_PROPERTY(bool plotRangePicked READ plotRangePicked NOTIFY trafficChanged)
    Q_PROPERTY(QString pickedCallsign READ pickedCallsign NOTIFY pickedCallsignChanged)
    Q_PROPERTY(QString plotSummary READ plotSummary NOTIFY trafficChanged)
    Q_PROPERTY(tarvo::ui::PlotLabels *plotLabels READ plotLabels CONSTANT)
    Q_PROPERTY(QString trafficSummary READ trafficSummary NOTIFY trafficChanged)

public:
    explicit SimulatorPageViewModel(QObject *parent = nullptr);

    QString currentMode() const { return model::modeText(m_mode); }
    QString simulatorFamily() const { return m_simulatorName; }
    QString simulatorDisplayName() const { return m_simulatorName; }
    bool msfsMode() const { return m_mode == model::SimulatorMode::Msfs; }
    bool xplaneMode() const { return m_mode == model::SimulatorMode::XPlane; }
    bool simulatorConnected() const { return m_connected; }
    QString simulatorStatusText() const { return textOf(m_state); }
    QString simulatorTone() const { return toneText(toneOf(m_state)); }
    /// Why the last attempt to connect failed. Empty when a new attempt has begun, or one has succeeded.
    QString simulatorFailureText() const { return m_failureText; }
    QString pluginStatusText() const { return m_plugin.plugin; }
    QString cslStatusText() const { return m_plugin.csl; }
    QString trafficMappingStatusText() const { return m_plugin.mapping; }
    QString xplaneVersionText() const { return m_plugin.version; }

    bool simPaused() const { return m_paused; }
    bool onGround() const { return m_config.onGround; }
    bool gearDown() const { return m_config.gearDown; }
    bool avionicsPowerOn() const { return m_radio.avionicsPowerOn; }
    bool com1ReceiveEnabled() const { return m_radio.com1ReceiveEnabled; }
    bool com2ReceiveEnabled() const { return m_radio.com2ReceiveEnabled; }
    bool com1TransmitEnabled() const { return m_radio.com1TransmitEnabled; }
    bool com2TransmitEnabled() const { return m_radio.com2TransmitEnabled; }
    bool squawkingModeC() const { return m_radio.squawkingModeC; }
    bool squawkingIdent() const { return m_radio.squawkingIdent; }
    bool beaconOn() const { return m_config.beaconOn; }
    bool landingLightsOn() const { return m_config.landingLightsOn; }
    bool taxiLightsOn() const { return m_config.taxiLightsOn; }
    bool navLightsOn() const { return m_config.navLightsOn; }
    bool strobesOn() const { return m_config.strobesOn; }
    // Numbers are passed on as the simulator gives them: a page shows "--" for one that isn't finite.
    double latitude() const { return m_aircraft.latitude; }                   ///< degrees
    double longitude() const { return m_aircraft.longitude; }                 ///< degrees
    double altitudeMslM() const { return m_aircraft.altitudeMslM; }           ///< metres
    double altitudeAglM() const { return m_aircraft.altitudeAglM; }           ///< metres
    double altitudePressure() const { return m_aircraft.altitudePressure; }   ///< feet
    double heading() const { return m_aircraft.heading; }                     ///< degrees
    double groundSpeed() const { return m_aircraft.groundSpeed; }             ///< knots
    double pitch() const { return m_aircraft.pitch; }                         ///< degrees, nose up positive
    double bank() const { return m_aircraft.bank; }                           ///< degrees, right wing down positive
    double latitudeVelocity() const { return m_aircraft.latitudeVelocity; }   ///< metres per second, north
    double longitudeVelocity() const { return m_aircraft.longitudeVelocity; } ///< metres per second, east
    double altitudeVelocity() const { return m_aircraft.altitudeVelocity; }   ///< metres per second, up
    double pitchVelocity() const { return m_aircraft.pitchVelocity; }         ///< radians per second
    double headingVelocity() const { return m_aircraft.headingVelocity; }     ///< radians per second
    double bankVelocity() const { return m_aircraft.bankVelocity; }           ///< radians per second
    double noseWheelAngle() const { return m_aircraft.noseWheelAngle; }       ///< degrees
    double flapsRatio() const { return m_config.flapsRatio; }                 ///< 0.0 to 1.0
    double speedbrakeRatio() const { return m_config.speedbrakeRatio; }       ///< 0.0 to 1.0
    bool speedbrakeArmed() const { return m_config.speedbrakeArmed; }
    int com1Volume() const { return static_cast<int>(m_radio.com1Volume); } ///< 0 to 100
    int com2Volume() const { return static_cast<int>(m_radio.com2Volume); } ///< 0 to 100
    int engineCount() const { return m_config.engineCount; }

    QString com1Frequency() const { return m_texts.com1Frequency; }
    QString com2Frequency() const { return m_texts.com2Frequency; }
    QString transponderCode() const { return m_texts.transponderCode; }
    QString flapsLabel() const { return m_texts.flapsLabel; }
    QString speedbrakeLabel() const { return m_texts.speedbrakeLabel; }
    QString activeTransmitLabel() const { return m_texts.activeTransmitLabel; }
    QString activeReceiveLabel() const { return m_texts.activeReceiveLabel; }
    QString motionSummary() const { return m_texts.motionSummary; }
    QString engineSummary() const { return m_texts.engineSummary; }
    /// Maps with "index" (from 0), "running", "reversing" and "label"; at most the four engines that are known.
    QVariantList engineStates() const { return m_engineStates; }

    /// The snapshot of Microsoft Flight Simulator, as it came.
    QVariantList trafficContacts() const { return m_trafficContacts; }
    /// Who is around, nearest first, at most 200. Roles: "callsign", "type", "bearing" (degrees from true north),
    /// "distanceNm", "relativeAltitudeFeet", "heading" and "groundSpeed"; a number that isn't known is NaN. Without an
    /// own position nobody; with Microsoft Flight Simulator then the snapshot, without bearings and distances.
    RowsModel<PlotContact> *contactRows() { return &m_contacts; }
    /// Those of them that the plot draws.
    QList<PlotContact> plotContacts() const;
    /// Nautical miles at the plot's outer ring.
    int plotRange() const { return m_pickedRange > 0 ? m_pickedRange : ui::plotRange(plotContacts()); }
    bool plotRangePicked() const { return m_pickedRange > 0; } ///< by the pilot; else the contacts make it
    /// Who is marked in the plot and in the list, also while he isn't there; empty for nobody.
    QString pickedCallsign() const { return m_pickedCallsign; }
    /// What is to be seen on the plot, on one line.
    QString plotSummary() const;
    /// Finds room for the plot's labels; never null.
    PlotLabels *plotLabels() { return &m_plotLabels; }
    QString trafficSummary() const;

    // The program's side. Each emits only on a change.
    /// "XPLANE" or "MSFS"; anything else is "NONE". Another mode than before forgets the old simulator's data.
    void setMode(const QString &mode);
    /// Losing the link takes the own aircraft's data back to the start.
    void setSimulatorState(bool connected, LinkState state);
    /// Cut to 200 characters; empty takes it away.
    void setFailure(const QString &reason);
    void setPluginValid(bool valid);
    void setCslValid(bool valid);
    void setTrafficMappingStatus(const QString &status);
    /// X-Plane's version number, such as 120105; 0 and below is unknown.
    void setXPlaneVersion(int version);
    /// The plugin, model set, mapping and version texts go back to the start.
    void clearPlugin();
    /// Emits dataChanged at most once. The plot follows when the own aircraft has moved by a visible distance.
    void setOwnAircraft(const model::UserAircraftData &aircraft, const model::UserAircraftConfigData &config,
                        const model::RadioStackState &radio, bool paused);
    /// Numbers and texts of the own aircraft go back to the start: there is no simulator that tells them.
    void clearOwnAircraft();
    /// Feeds the plot too, with Microsoft Flight Simulator alone.
    void setTrafficContacts(const QVariantList &contacts);
    /// Feeds the plot, but not with Microsoft Flight Simulator. Once or twice a second is enough.
    void setRemoteAircraft(const QList<model::RemoteAircraft> &aircraft);

    // What the entry fields say to what is typed into them.
    Q_INVOKABLE QVariantMap checkFrequency(const QString &typed, const QString &example) const;
    Q_INVOKABLE QVariantMap checkTransponderCode(const QString &typed) const;

    /// So many steps wider, or for negative ones narrower, than the range is now.
    Q_INVOKABLE void stepPlotRange(int steps);
    /// The contacts make the range again.
    Q_INVOKABLE void freePlotRange();
    /// Marks this one alone, or nobody when it is marked already.
    Q_INVOKABLE void pickCallsign(const QString &callsign);
    /// Picks the contact so many rows further down, or up; at the ends the last one. With none picked one begins before
    /// the first row, or behind the last. Contacts without a callsign are passed over.
    Q_INVOKABLE void stepPickedContact(int rows);
    /// The row of contactRows() with this callsign; -1 for none.
    Q_INVOKABLE int contactRow(const QString &callsign) const;
    Q_INVOKABLE void requestReconnect();
    Q_INVOKABLE void requestSetCom1Frequency(const QString &frequency);
    Q_INVOKABLE void requestSetCom2Frequency(const QString &frequency);
    Q_INVOKABLE void requestSetTransponderCode(const QString &code);
    Q_INVOKABLE void requestTransponderIdent();
    Q_INVOKABLE void requestTransponderModeToggle();

signals:
    void stateChanged();
    void dataChanged();
    void trafficChanged();
    void reconnectRequested();
    void setCom1FrequencyRequested(QString frequency);
    void setCom2FrequencyRequested(QString frequency);
    void setTransponderCodeRequested(QString code);
    void transponderIdentRequested();
    void transponderModeToggleRequested();
    void pickedCallsignChanged();

private:
    struct PluginTexts
    {
        QString plugin = tr("未知");
        QString csl = tr("未知");
        QString mapping = tr("未知");
        QString version = tr("未获取");

        bool operator==(const PluginTexts &) const = default;
    };
    struct DataTexts
    {
        QString com1Frequency = QStringLiteral("0.000");
        QString com2Frequency = QStringLiteral("0.000");
        QString transponderCode = QStringLiteral("0000");
        QString flapsLabel = QStringLiteral("0%");
        QString speedbrakeLabel = QStringLiteral("0%");
        QString activeTransmitLabel = tr("无");
        QString activeReceiveLabel = tr("无");
        QString motionSummary = tr("暂无运动数据");
        QString engineSummary = tr("未检测到发动机");
    };

    void setText(QString &member, const QString &text);
    void updateMotionTexts();
    void updateSurfaceTexts();
    void updateEngineTexts();
    void updateRadioTexts();
    void clearTraffic();
    void plotChanged();
    bool hasMovedVisibly() const;
    PlotOrigin ownPosition() const;

    model::SimulatorMode m_mode = model::SimulatorMode::None;
    QString m_simulatorName = tr("未选择");
    bool m_connected = false;
    LinkState m_state = LinkState::Absent;
    QString m_failureText;
    PluginTexts m_plugin;

    bool m_hasData = false; ///< a sample has come from the simulator
    bool m_paused = false;
    model::UserAircraftData m_aircraft;
    model::UserAircraftConfigData m_config;
    model::RadioStackState m_radio;
    DataTexts m_texts;
    QVariantList m_engineStates;

    QVariantList m_trafficContacts;
    QList<TrafficTarget> m_targets;
    int m_pickedRange = 0; ///< nautical miles; 0: none
    QString m_pickedCallsign;
    std::optional<PlotOrigin> m_plotOrigin; ///< where the plot was last told from
    RowsModel<PlotContact> m_contacts;
    PlotLabels m_plotLabels;
};

} // namespace tarvo::ui

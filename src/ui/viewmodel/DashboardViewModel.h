#pragma once

#include "common/Clock.h"
#include "model/SimulatorMode.h"
#include "ui/viewmodel/ConnectionStatus.h"
#include "ui/viewmodel/LineLog.h"
#include "ui/viewmodel/RowsModel.h"

#include <QObject>
#include <QString>
#include <QVariantList>

namespace tarvo::ui {

/// A flight that has been flown, as texts.
struct RecentFlight
{
    QString callsign;
    QString time = {};
    QString duration = {};

    bool operator==(const RecentFlight &) const = default;
};

/// A place of a leaderboard.
struct RankedUser
{
    int rank = 0; ///< from 1
    QString name = {};
    QString cid = {};
    QString time = {};

    bool operator==(const RankedUser &) const = default;
};

/// What the overview page shows. Holds presentation state only: MainWindow feeds it and acts on its requests.
/// In QML it is the context property "dashboardBackend".
class DashboardViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString username READ username NOTIFY userInfoChanged)
    Q_PROPERTY(QString cid READ cid NOTIFY userInfoChanged)
    Q_PROPERTY(QString rating READ rating NOTIFY userInfoChanged)
    Q_PROPERTY(QString pilotTime READ pilotTime NOTIFY userInfoChanged)
    Q_PROPERTY(QString atcTime READ atcTime NOTIFY userInfoChanged)
    Q_PROPERTY(QString avatarUrl READ avatarUrl NOTIFY userInfoChanged)
    Q_PROPERTY(QString currentMode READ currentMode NOTIFY currentModeChanged)
    Q_PROPERTY(bool modePicked READ modePicked NOTIFY currentModeChanged)
    Q_PROPERTY(bool simulatorConnected READ simulatorConnected NOTIFY simulatorStateChanged)
    Q_PROPERTY(QString simulatorStatusText READ simulatorStatusText NOTIFY simulatorStateChanged)
    Q_PROPERTY(QString simulatorTone READ simulatorTone NOTIFY simulatorStateChanged)
    Q_PROPERTY(QString simulatorHintText READ simulatorHintText NOTIFY simulatorHintChanged)
    Q_PROPERTY(bool serverConnected READ serverConnected NOTIFY serverStateChanged)
    Q_PROPERTY(QString serverStatusText READ serverStatusText NOTIFY serverStateChanged)
    Q_PROPERTY(QString serverTone READ serverTone NOTIFY serverStateChanged)
    Q_PROPERTY(QString updateUrl READ updateUrl CONSTANT)
    Q_PROPERTY(QString docsUrl READ docsUrl CONSTANT)
    Q_PROPERTY(double latitude READ latitude NOTIFY flightDataChanged)
    Q_PROPERTY(double longitude READ longitude NOTIFY flightDataChanged)
    Q_PROPERTY(double altitude READ altitude NOTIFY flightDataChanged)
    Q_PROPERTY(double heading READ heading NOTIFY flightDataChanged)
    Q_PROPERTY(double groundSpeed READ groundSpeed NOTIFY flightDataChanged)
    Q_PROPERTY(QString serverLog READ serverLog NOTIFY serverLogChanged)
    Q_PROPERTY(QVariantList recentFlights READ recentFlights NOTIFY recentFlightsChanged)
    Q_PROPERTY(QAbstractListModel *recentFlightRows READ recentFlightRows CONSTANT)
    Q_PROPERTY(QVariantList pilotLeaderboard READ pilotLeaderboard NOTIFY leaderboardChanged)
    Q_PROPERTY(QAbstractListModel *pilotLeaderboardRows READ pilotLeaderboardRows CONSTANT)
    Q_PROPERTY(QVariantList atcLeaderboard READ atcLeaderboard NOTIFY leaderboardChanged)
    Q_PROPERTY(QAbstractListModel *atcLeaderboardRows READ atcLeaderboardRows CONSTANT)

public:
    explicit DashboardViewModel(QObject *parent = nullptr, const common::Clock &clock = common::systemClock());

    QString username() const { return m_username; }
    QString cid() const { return m_cid; }
    QString rating() const { return m_rating; }
    QString pilotTime() const { return m_pilotTime; }
    QString atcTime() const { return m_atcTime; }
    QString avatarUrl() const { return m_avatarUrl; }
    QString currentMode() const { return m_currentMode; }
    bool modePicked() const { return model::modeFromText(m_currentMode) != model::SimulatorMode::None; }
    bool simulatorConnected() const { return m_simulatorConnected; }
    LinkState simulatorState() const { return m_simulatorState; }
    QString simulatorStatusText() const { return textOf(m_simulatorState); }
    QString simulatorTone() const { return toneText(toneOf(m_simulatorState)); }
    /// Why there is no simulator, or what would bring it; empty while it is there.
    QString simulatorHintText() const;
    bool serverConnected() const { return m_serverConnected; }
    LinkState serverState() const { return m_serverState; }
    QString serverStatusText() const { return textOf(m_serverState); }
    QString serverTone() const { return toneText(toneOf(m_serverState)); }
    QString updateUrl() const { return m_updateUrl; } ///< a web page; empty: there is none
    QString docsUrl() const { return m_docsUrl; }
    double latitude() const { return m_latitude; }
    double longitude() const { return m_longitude; }
    double altitude() const { return m_altitude; }       ///< feet
    double heading() const { return m_heading; }         ///< degrees
    double groundSpeed() const { return m_groundSpeed; } ///< knots
    QString serverLog() const { return m_serverLog.text(); }
    /// Maps with "callsign", "time" and "duration".
    QVariantList recentFlights() const { return m_recentFlights.toList(); }
    QAbstractListModel *recentFlightRows() { return &m_recentFlights; }
    /// Maps with "rank", "name", "cid" and "time".
    QVariantList pilotLeaderboard() const { return m_pilotLeaderboard.toList(); }
    QAbstractListModel *pilotLeaderboardRows() { return &m_pilotLeaderboard; }
    QVariantList atcLeaderboard() const { return m_atcLeaderboard.toList(); }
    QAbstractListModel *atcLeaderboardRows() { return &m_atcLeaderboard; }

    // The program's side. Each emits only on a change.
    /// Before the pages are there.
    void setWebPages(const QString &updateUrl, const QString &docsUrl);
    /// Longer texts are cut to 64 characters.
    void setUserInfo(const QString &username, const QString &cid, const QString &rating);
    void setTimes(const QString &pilotTime, const QString &atcTime);
    void setAvatarUrl(const QString &avatarUrl);
    void setCurrentMode(const QString &mode);
    void setSimulatorState(bool connected, LinkState state);
    /// `reason`: why the simulator could not be reached; empty when that is over.
    void setSimulatorFailure(const QString &reason);
    void setServerState(bool connected, LinkState state);
    void setFlightData(double latitude, double longitude, double altitudeFeet, double heading, double groundSpeed);
    /// Newest first.
    void setRecentFlights(const QList<RecentFlight> &flights);
    /// Best first.
    void setLeaderboard(const QList<RankedUser> &pilots, const QList<RankedUser> &controllers);
    /// Adds a line with the local time in front. The oldest lines go beyond 2,000.
    void appendServerLog(const QString &text);

    Q_INVOKABLE void requestModeChange(const QString &mode);
    Q_INVOKABLE void requestServerConnect(const QString &callsign, const QString &typeCode, const QString &selcal,
                                          bool observer);
    Q_INVOKABLE void requestServerDisconnect();
    Q_INVOKABLE void requestSimulatorReconnect();

signals:
    void userInfoChanged();
    void currentModeChanged();
    void simulatorStateChanged();
    void serverStateChanged();
    void flightDataChanged();
    void serverLogChanged();
    void recentFlightsChanged();
    void leaderboardChanged();
    void modeChangedRequest(QString mode);
    void serverConnectRequest(QString callsign, QString typeCode, QString selcal, bool observer);
    void serverDisconnectRequest();
    void simulatorReconnectRequest();
    void simulatorHintChanged();

private:
    const common::Clock &m_clock;
    QString m_username = tr("游客");
    QString m_cid = QStringLiteral("--");
    QString m_rating = QStringLiteral("--");
    QString m_pilotTime = tr("0小时 0分");
    QString m_atcTime = tr("0小时 0分");
    QString m_avatarUrl;
    QString m_currentMode = model::modeText(model::SimulatorMode::None);
    bool m_simulatorConnected = false;
    LinkState m_simulatorState = LinkState::Absent;
    QString m_simulatorFailure;
    bool m_serverConnected = false;
    LinkState m_serverState = LinkState::Absent;
    QString m_updateUrl;
    QString m_docsUrl;
    double m_latitude = 0;
    double m_longitude = 0;
    double m_altitude = 0;
    double m_heading = 0;
    double m_groundSpeed = 0;
    LineLog m_serverLog;
    RowsModel<RecentFlight> m_recentFlights;
    RowsModel<RankedUser> m_pilotLeaderboard;
    RowsModel<RankedUser> m_atcLeaderboard;
};

} // namespace tarvo::ui

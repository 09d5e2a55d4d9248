#include "ui/viewmodel/DashboardViewModel.h"

#include "common/Clock.h"
#include "ui/viewmodel/ShownText.h"

namespace tarvo::ui {

namespace {
constexpr qsizetype longestReason = 200; ///< characters; a page wraps it
constexpr qsizetype longestText = 64;    ///< characters; a page lays it out on one line

constexpr Role<RecentFlight> flightRoles[] = {
    {"callsign", member<&RecentFlight::callsign>},
    {"time", member<&RecentFlight::time>},
    {"duration", member<&RecentFlight::duration>},
};
constexpr Role<RankedUser> rankRoles[] = {
    {"rank", member<&RankedUser::rank>},
    {"name", member<&RankedUser::name>},
    {"cid", member<&RankedUser::cid>},
    {"time", member<&RankedUser::time>},
};

/// What brings the data of a simulator that has not been heard of yet.
QString hintFor(model::SimulatorMode mode)
{
    if (mode == model::SimulatorMode::XPlane)
        return DashboardViewModel::tr("等待 X-Plane：请启动 X-Plane 并载入航班，客户端会自动连接。");
    if (mode == model::SimulatorMode::Msfs)
        return DashboardViewModel::tr("等待 Microsoft Flight Simulator：请启动模拟器并载入航班。");
    return {};
}

} // namespace

DashboardViewModel::DashboardViewModel(QObject *parent, const common::Clock &clock)
    : QObject(parent),
      m_clock(clock),
      m_recentFlights(flightRoles),
      m_pilotLeaderboard(rankRoles),
      m_atcLeaderboard(rankRoles)
{
}

void DashboardViewModel::setWebPages(const QString &updateUrl, const QString &docsUrl)
{
    m_updateUrl = updateUrl;
    m_docsUrl = docsUrl;
}

void DashboardViewModel::setUserInfo(const QString &username, const QString &cid, const QString &rating)
{
    const QString shownName = shownText(username, longestText);
    const QString shownCid = shownText(cid, longestText);
    const QString shownRating = shownText(rating, longestText);
    if (shownName == m_username && shownCid == m_cid && shownRating == m_rating)
        return;
    m_username = shownName;
    m_cid = shownCid;
    m_rating = shownRating;
    emit userInfoChanged();
}

void DashboardViewModel::setTimes(const QString &pilotTime, const QString &atcTime)
{
    if (pilotTime == m_pilotTime && atcTime == m_atcTime)
        return;
    m_pilotTime = pilotTime;
    m_atcTime = atcTime;
    emit userInfoChanged();
}

void DashboardViewModel::setAvatarUrl(const QString &avatarUrl)
{
    if (avatarUrl == m_avatarUrl)
        return;
    m_avatarUrl = avatarUrl;
    emit userInfoChanged();
}

void DashboardViewModel::setCurrentMode(const QString &mode)
{
    if (mode == m_currentMode)
        return;
    m_currentMode = mode;
    emit currentModeChanged();
    emit simulatorHintChanged();
}

void DashboardViewModel::setSimulatorState(bool connected, LinkState state)
{
    if (connected == m_simulatorConnected && state == m_simulatorState)
        return;
    m_simulatorConnected = connected;
    m_simulatorState = state;
    emit simulatorStateChanged();
    emit simulatorHintChanged();
}

void DashboardViewModel::setSimulatorFailure(const QString &reason)
{
    const QString shown = shownText(reason, longestReason);
    if (shown == m_simulatorFailure)
        return;
    m_simulatorFailure = shown;
    emit simulatorHintChanged();
}

QString DashboardViewModel::simulatorHintText() const
{
    if (m_simulatorConnected)
        return {};
    if (!m_simulatorFailure.isEmpty())
        return m_simulatorFailure;
    return hintFor(model::modeFromText(m_currentMode));
}

void DashboardViewModel::setServerState(bool connected, LinkState state)
{
    if (connected == m_serverConnected && state == m_serverState)
        return;
    m_serverConnected = connected;
    m_serverState = state;
    emit serverStateChanged();
}

void DashboardViewModel::setFlightData(double latitude, double longitude, double altitudeFeet, double heading,
                                       double groundSpeed)
{
    if (latitude == m_latitude && longitude == m_longitude && altitudeFeet == m_altitude && heading == m_heading &&
        groundSpeed == m_groundSpeed)
        return;
    m_latitude = latitude;
    m_longitude = longitude;
    m_altitude = altitudeFeet;
    m_heading = heading;
    m_groundSpeed = groundSpeed;
    emit flightDataChanged();
}

void DashboardViewModel::setRecentFlights(const QList<RecentFlight> &flights)
{
    if (m_recentFlights.setRows(flights))
        emit recentFlightsChanged();
}

void DashboardViewModel::setLeaderboard(const QList<RankedUser> &pilots, const QList<RankedUser> &controllers)
{
    const bool otherPilots = m_pilotLeaderboard.setRows(pilots);
    const bool otherControllers = m_atcLeaderboard.setRows(controllers);
    if (otherPilots || otherControllers)
        emit leaderboardChanged();
}

void DashboardViewModel::appendServerLog(const QString &text)
{
    m_serverLog.append(m_clock.wallMs(), text);
    emit serverLogChanged();
}

void DashboardViewModel::requestModeChange(const QString &mode)
{
    emit modeChangedRequest(mode);
}

void DashboardViewModel::requestServerConnect(const QString &callsign, const QString &typeCode, const QString &selcal,
                                              bool observer)
{
    emit serverConnectRequest(callsign, typeCode, selcal, observer);
}

void DashboardViewModel::requestServerDisconnect()
{
    emit serverDisconnectRequest();
}

void DashboardViewModel::requestSimulatorReconnect()
{
    emit simulatorReconnectRequest();
}

} // namespace tarvo::ui

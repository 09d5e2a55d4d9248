#include "ui/AccountFeed.h"

#include "network/ApiService.h"
#include "ui/DurationText.h"
#include "ui/viewmodel/DashboardViewModel.h"
#include "ui/viewmodel/ShownText.h"

#include <QPointer>

#include <algorithm>

namespace tarvo::ui {

namespace {

constexpr qsizetype leaderboardRows = 10;
constexpr qsizetype flightRows = 200;
// Characters that a row has room for.
constexpr qsizetype longestCallsign = 32;
constexpr qsizetype longestName = 64;

QList<RecentFlight> historyRows(QList<model::UserHistoryEntry> flights)
{
    std::stable_sort(flights.begin(), flights.end(),
                     [](const auto &a, const auto &b) { return a.startTime > b.startTime; });
    QList<RecentFlight> rows;
    for (const model::UserHistoryEntry &flight : flights.first(std::min(flightRows, flights.size())))
        rows.append({shownText(flight.callsign, longestCallsign), flightTimeText(flight.startTime, flight.endTime),
                     durationText(flight.onlineTime)});
    return rows;
}

QList<RankedUser> leaderboard(const QList<model::RatingEntry> &entries)
{
    QList<RankedUser> rows;
    for (const model::RatingEntry &entry : entries.first(std::min(leaderboardRows, entries.size())))
        rows.append({static_cast<int>(rows.size()) + 1, shownText(entry.username, longestName),
                     QString::number(entry.cid), durationText(entry.time)});
    return rows;
}

} // namespace

AccountFeed::AccountFeed(network::ApiService &api, DashboardViewModel &dashboard, QObject *parent)
    : QObject(parent), m_api(api), m_dashboard(dashboard)
{
}

void AccountFeed::applyUserInfoDefaults()
{
    const QString loading = tr("加载中...");
    m_dashboard.setUserInfo(tr("未知用户"), QString::number(m_api.currentUser().id), loading);
    m_dashboard.setTimes(loading, loading);
    m_dashboard.setSimulatorState(false, LinkState::Absent);
    m_dashboard.setServerState(false, LinkState::Absent);
}

void AccountFeed::loadUserInfo()
{
    m_api.getUserProfile(
        [self = QPointer<AccountFeed>(this)](bool success, const model::UserProfile &profile, const QString &) {
            if (!self || !success)
                return;
            const model::User &user = self->m_api.currentUser();
            self->m_dashboard.setUserInfo(user.username, QStringLiteral("CID: %1").arg(user.cid),
                                          QString::number(profile.rating));
            self->m_dashboard.setTimes(durationText(profile.totalPilotTime), durationText(profile.totalAtcTime));
            self->m_dashboard.setAvatarUrl(user.avatarUrl);
        });
}

void AccountFeed::loadUserHistory()
{
    m_api.getUserHistory(
        [self = QPointer<AccountFeed>(this)](bool success, const model::UserHistory &history, const QString &) {
            if (self && success)
                self->m_dashboard.setRecentFlights(historyRows(history.pilots));
        });
}

void AccountFeed::loadLeaderboard()
{
    m_api.getLeaderboard(
        [self = QPointer<AccountFeed>(this)](bool success, const model::RatingList &ratings, const QString &) {
            if (self && success)
                self->m_dashboard.setLeaderboard(leaderboard(ratings.pilots), leaderboard(ratings.controllers));
        });
}

} // namespace tarvo::ui

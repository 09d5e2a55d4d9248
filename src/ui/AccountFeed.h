#pragma once

#include <QObject>

namespace tarvo::network {
class ApiService;
}

namespace tarvo::ui {

class DashboardViewModel;

/// Brings what the account service knows of the user to the overview page. When a request fails, the page keeps what it
/// has.
class AccountFeed : public QObject
{
    Q_OBJECT

public:
    AccountFeed(network::ApiService &api, DashboardViewModel &dashboard, QObject *parent = nullptr);

    /// The texts that stand until the service has answered.
    void applyUserInfoDefaults();
    void loadUserInfo();
    void loadUserHistory();
    void loadLeaderboard();

private:
    network::ApiService &m_api;
    DashboardViewModel &m_dashboard;
};

} // namespace tarvo::ui

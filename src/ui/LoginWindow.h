#pragma once

#include "ServiceEndpoints.h"
#include "ui/PhotoBackdrop.h"

#include <QTimer>
#include <QWidget>

class QLabel;

namespace tarvo {
class AppConfig;
}
namespace tarvo::network {
class ApiService;
}

namespace tarvo::ui {

class LoginForm;

/// Signs the pilot in, by hand or by itself: a photograph, and the form on a frosted panel in front of it.
class LoginWindow : public QWidget
{
    Q_OBJECT

public:
    LoginWindow(AppConfig &config, network::ApiService &api, const ServiceEndpoints &endpoints = {},
                QWidget *parent = nullptr);

    /// To be called while loginSuccess() is raised: the window stays, busy, until leave() is called.
    void stay();
    /// Hides the window.
    void leave();

signals:
    /// The account service holds a valid session.
    void loginSuccess();

public slots:
    void onLoginClicked();
    void onRegisterClicked();

protected:
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void buildBrand();
    void restoreForm();
    void storeForm();
    void layOut();
    void fadeIn();
    bool tellOfLostSettings();
    void scheduleAutoLogin();
    void tryAutoLogin();
    void tryPasswordLogin();
    void refreshFailed(const QString &reason);
    void startPasswordLogin();
    void cancelLogin();
    void passwordLoginFailed(const QString &reason);
    void rememberForSession(const QString &username, const QString &password);
    void finishWithRemembered();
    void finish(const QString &username, const QString &password);

    AppConfig &m_config;
    network::ApiService &m_api;
    QString m_registerUrl;
    PhotoBackdrop m_backdrop;
    QWidget *m_brand = nullptr;
    LoginForm *m_form;
    qreal m_panelOpacity = 1;
    QTimer m_autoLoginTimer{this}; ///< lets the window appear before it signs in by itself
    bool m_autoLoginTried = false;
    bool m_lossTold = false;
    bool m_stays = false;
};

} // namespace tarvo::ui

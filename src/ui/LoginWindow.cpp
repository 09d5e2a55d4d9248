#include "ui/LoginWindow.h"

#include "AppConfig.h"
#include "network/ApiService.h"
#include "network/LogRedaction.h"
#include "ui/ErrorDialog.h"
#include "ui/LoginForm.h"

#include <QDebug>
#include <QDesktopServices>
#include <QGraphicsOpacityEffect>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QPropertyAnimation>
#include <QShowEvent>
#include <QUrl>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace tarvo::ui {

namespace {
using namespace std::chrono_literals;

constexpr QSize minimumWindow{1000, 700}; ///< the main window opens at the login window's size
constexpr int panelWidth = 392;
constexpr int sideMargin = 64;
constexpr auto autoLoginDelay = 500ms;
constexpr int windowFadeMs = 420;
constexpr QColor placeholderColour{0x1A, 0x2B, 0x47};

/// Darkens the photograph towards the panel, and at the top, where text stands on it.
void paintShade(QPainter &painter, const QRect &area)
{
    QLinearGradient across(area.topLeft(), area.topRight());
    across.setColorAt(0.0, QColor(8, 14, 28, 20));
    across.setColorAt(1.0, QColor(8, 14, 28, 110));
    painter.fillRect(area, across);
    QLinearGradient down(area.topLeft(), area.bottomLeft());
    down.setColorAt(0.0, QColor(8, 14, 28, 110));
    down.setColorAt(0.45, QColor(8, 14, 28, 0));
    painter.fillRect(area, down);
}
} // namespace

LoginWindow::LoginWindow(AppConfig &config, network::ApiService &api, const ServiceEndpoints &endpoints,
                         QWidget *parent)
    : QWidget(parent),
      m_config(config),
      m_api(api),
      m_registerUrl(endpoints.registerUrl),
      m_backdrop(QStringLiteral(":/resources/signpic.jpg")),
      m_form(new LoginForm(this))
{
    setWindowTitle(tr("TARVO Client - 登录"));
    setWindowIcon(QIcon(QStringLiteral(":/resources/logo.png")));
    setMinimumSize(minimumWindow);
    resize(minimumWindow);
    setAttribute(Qt::WA_OpaquePaintEvent);
    buildBrand();
    m_autoLoginTimer.setObjectName(QStringLiteral("autoLoginTimer"));
    m_autoLoginTimer.setSingleShot(true);
    m_autoLoginTimer.setInterval(autoLoginDelay);
    connect(&m_autoLoginTimer, &QTimer::timeout, this, &LoginWindow::tryAutoLogin);
    connect(m_form, &LoginForm::loginRequested, this, &LoginWindow::onLoginClicked);
    connect(m_form, &LoginForm::cancelRequested, this, &LoginWindow::cancelLogin);
    connect(m_form, &LoginForm::registerRequested, this, &LoginWindow::onRegisterClicked);
}

void LoginWindow::buildBrand()
{
    m_brand = new QWidget(this);
    auto *column = new QVBoxLayout(m_brand);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    auto *name = new QLabel(QStringLiteral("TARVO"), m_brand);
    name->setProperty("type", QStringLiteral("brand"));
    auto *line = new QLabel(tr("模拟飞行联飞客户端"), m_brand);
    line->setProperty("type", QStringLiteral("brandline"));
    column->addWidget(name);
    column->addWidget(line);
}

void LoginWindow::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (event->spontaneous())
        return; // back from the task bar: what the pilot has typed stays
    restoreForm();
    layOut();
    fadeIn();
    if (!tellOfLostSettings())
        scheduleAutoLogin();
}

/// Only once, and before the automatic login, which would close the window. False when there is nothing to tell.
bool LoginWindow::tellOfLostSettings()
{
    if (m_config.startupWarning().isEmpty() || std::exchange(m_lossTold, true))
        return false;
    // The window has its place on the screen only when this event is done.
    QTimer::singleShot(0ms, this, [this] {
        const ErrorDialog *dialog = ErrorDialog::open(
            tr("设置已恢复"),
            tr("配置文件 config.ini 已损坏，丢失的设置已从上次的备份恢复。损坏的文件保留为 config.ini.damaged。"),
            this);
        connect(dialog, &QDialog::finished, this, &LoginWindow::scheduleAutoLogin);
    });
    return true;
}

void LoginWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (isVisible())
        layOut();
}

void LoginWindow::layOut()
{
    m_backdrop.fit(size(), devicePixelRatioF());
    const int panelHeight = m_form->sizeHint().height();
    const int margin = std::max(sideMargin, width() / 12);
    m_form->setGeometry(width() - margin - panelWidth, (height() - panelHeight) / 2, panelWidth, panelHeight);
    const QSize brand = m_brand->sizeHint();
    m_brand->setGeometry(QRect(QPoint(margin, sideMargin), brand));
    update();
}

void LoginWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (m_backdrop.photograph().devicePixelRatio() != devicePixelRatioF())
        m_backdrop.fit(size(), devicePixelRatioF()); // moved to a screen of another scale
    if (m_backdrop.photograph().isNull()) {
        painter.fillRect(rect(), placeholderColour);
        return;
    }
    painter.drawPixmap(0, 0, m_backdrop.photograph());
    paintShade(painter, rect());

    QPainterPath glass;
    glass.addRoundedRect(m_form->geometry(), LoginForm::cornerRadius, LoginForm::cornerRadius);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setClipPath(glass);
    painter.setOpacity(m_panelOpacity);
    painter.drawPixmap(rect(), m_backdrop.blurred());
}

void LoginWindow::fadeIn()
{
    auto *effect = new QGraphicsOpacityEffect(m_form);
    effect->setOpacity(0);
    m_form->setGraphicsEffect(effect);
    auto *fade = new QPropertyAnimation(effect, "opacity", effect);
    fade->setDuration(windowFadeMs);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    fade->setEasingCurve(QEasingCurve::OutCubic);
    m_panelOpacity = 0;
    connect(fade, &QPropertyAnimation::valueChanged, this, [this](const QVariant &opacity) {
        m_panelOpacity = opacity.toReal();
        update(m_form->geometry());
    });
    // An effect renders its widget twice: it goes when it has done its work.
    connect(
        fade, &QPropertyAnimation::finished, m_form,
        [this, done = QPointer<QGraphicsEffect>(effect)] {
            if (done) // a later show may have begun another fade, which deletes the earlier effect
                m_form->setGraphicsEffect(nullptr);
        },
        Qt::QueuedConnection);
    fade->start();
}

void LoginWindow::restoreForm()
{
    const bool remember = m_config.get(config::authRememberPassword);
    m_form->setRemember(remember);
    m_form->setAutoLogin(m_config.get(config::authAutoLogin));
    if (remember) {
        if (const QString username = m_config.get(config::authUsername); !username.isEmpty())
            m_form->setUsername(username);
        if (const QString password = m_config.get(config::authPassword); !password.isEmpty())
            m_form->setPassword(password);
    }
    m_form->focusFirstEmptyField();
}

void LoginWindow::storeForm()
{
    const bool remember = m_form->remember();
    m_config.set(config::authRememberPassword, remember);
    m_config.set(config::authAutoLogin, m_form->autoLogin());
    m_config.set(config::authUsername, remember ? m_form->username() : QString());
    m_config.set(config::authPassword, remember ? m_form->password() : QString());
}

void LoginWindow::scheduleAutoLogin()
{
    if (!m_form->autoLogin() || m_autoLoginTried)
        return;
    m_autoLoginTried = true;
    m_autoLoginTimer.start();
}

void LoginWindow::tryAutoLogin()
{
    if (m_form->isBusy() || !isVisible())
        return; // the pilot was quicker
    const QString token = m_config.get(config::authRefreshToken);
    if (token.isEmpty()) {
        tryPasswordLogin();
        return;
    }
    qInfo() << "Trying auto login with refresh token...";
    m_form->setBusy(true);
    m_api.refresh(
        token,
        [self = QPointer<LoginWindow>(this)](bool success, const QString &reason) {
            if (!self)
                return;
            if (!success) {
                self->refreshFailed(reason);
                return;
            }
            qInfo() << "Auto login with refresh token success";
            self->finishWithRemembered();
        },
        true);
}

void LoginWindow::refreshFailed(const QString &reason)
{
    const QStringList secrets{m_config.get(config::authRefreshToken), m_config.get(config::authToken),
                              m_form->password()};
    qWarning().noquote().nospace() << "Auto login with refresh token failed: "
                                   << network::redactedText(reason, secrets);
    if (m_api.wasAnswered()) { // without a network the tokens are as good as before
        m_api.clearSession();
        m_config.reset(config::authToken);
        m_config.reset(config::authRefreshToken);
    }
    tryPasswordLogin();
}

void LoginWindow::tryPasswordLogin()
{
    if (m_form->username().isEmpty() || m_form->password().isEmpty()) {
        m_form->setBusy(false); // the pilot logs in by hand
        return;
    }
    qInfo() << "Trying auto login with username and password...";
    startPasswordLogin();
}

void LoginWindow::onLoginClicked()
{
    if (m_form->isBusy())
        return;
    m_form->commitComposition();
    if (m_form->username().isEmpty() || m_form->password().isEmpty()) {
        ErrorDialog::open(tr("登录失败"), tr("请输入用户名和密码"), this);
        return;
    }
    startPasswordLogin();
}

void LoginWindow::startPasswordLogin()
{
    m_form->setBusy(true);
    m_api.login(m_form->username(), m_form->password(),
                [self = QPointer<LoginWindow>(this)](bool success, const QString &reason) {
                    if (!self)
                        return;
                    if (!success) {
                        self->passwordLoginFailed(reason);
                        return;
                    }
                    qInfo() << "Auto login with password success"; // also by hand: one line for both
                    self->storeForm();
                    self->finish(self->m_form->username(), self->m_form->password());
                });
}

void LoginWindow::passwordLoginFailed(const QString &reason)
{
    qWarning().noquote().nospace() << "Auto login with password failed: "
                                   << network::redactedText(reason, {m_form->password()});
    m_form->setBusy(false);
    m_form->focusPassword(); // has the keys again when the dialog is closed
    ErrorDialog::open(tr("登录失败"), reason.isEmpty() ? tr("登录失败，请检查用户名和密码") : reason, this);
}

void LoginWindow::cancelLogin()
{
    if (!m_form->isBusy() || m_stays)
        return;
    m_api.clearSession(); // the reply that is under way stores nothing and calls nobody
    m_form->setBusy(false);
    m_form->focusFirstEmptyField();
}

void LoginWindow::rememberForSession(const QString &username, const QString &password)
{
    const model::User &user = m_api.currentUser();
    const QString known = user.cid > 0 ? QString::number(user.cid) : user.username;
    m_config.set(config::sessionUsername, username.isEmpty() ? known : username);
    m_config.set(config::sessionPassword, password);
}

/// Not with what stands in the form: the pilot may have begun to type before the token was taken.
void LoginWindow::finishWithRemembered()
{
    if (m_config.get(config::authRememberPassword))
        finish(m_config.get(config::authUsername), m_config.get(config::authPassword));
    else
        finish({}, {});
}

void LoginWindow::finish(const QString &username, const QString &password)
{
    m_form->setBusy(false);
    rememberForSession(username, password);
    // From here on only the configuration knows them; the next show fills the form from there.
    m_form->setUsername(QString());
    m_form->setPassword(QString());
    const QPointer<LoginWindow> self(this);
    emit loginSuccess(); // shows the main window, so that closing this one doesn't end the program
    if (self && !m_stays)
        self->close();
}

void LoginWindow::stay()
{
    m_stays = true;
    m_form->setBusy(true);
}

/// Not by closing it: that might be the last window, and end the program.
void LoginWindow::leave()
{
    m_stays = false;
    m_form->setBusy(false);
    hide();
}

void LoginWindow::onRegisterClicked()
{
    QDesktopServices::openUrl(QUrl(m_registerUrl));
}

} // namespace tarvo::ui

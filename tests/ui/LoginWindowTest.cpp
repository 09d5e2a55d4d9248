#include "ui/LoginWindow.h"

#include "AppConfig.h"
#include "network/ApiService.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"
#include "ui/AccountPeer.h"
#include "ui/ErrorDialog.h"
#include "ui/LoadingSpinner.h"
#include "ui/LoginForm.h"

#include <QApplication>
#include <QCheckBox>
#include <QDesktopServices>
#include <QGraphicsEffect>
#include <QGraphicsOpacityEffect>
#include <QLabel>
#include <QLineEdit>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <qtestspontaneevent.h>

using namespace tarvo;
using tarvo::test::LogCapture;
using tarvo::test::loginLine;
using tarvo::test::refreshLine;

namespace {

/// A login window with a configuration folder and an account service of its own.
struct Desk
{
    QTemporaryDir folder;
    AppConfig config{folder.path()};
    test::AccountPeer peer;
    network::ApiService api{config, peer.endpoints()};
    ui::LoginWindow window{config, api, peer.endpoints()};
    QSignalSpy success{&window, &ui::LoginWindow::loginSuccess};

    template <class T>
    T *part(const char *name) const
    {
        return window.findChild<T *>(QLatin1String(name));
    }
    QLineEdit *username() const { return part<QLineEdit>("usernameEdit"); }
    QLineEdit *password() const { return part<QLineEdit>("passwordEdit"); }
    QCheckBox *remember() const { return part<QCheckBox>("rememberCheck"); }
    QCheckBox *autoLogin() const { return part<QCheckBox>("autoLoginCheck"); }
    QPushButton *loginButton() const { return part<QPushButton>("loginButton"); }
    QPushButton *registerButton() const { return part<QPushButton>("registerButton"); }
    ui::ErrorDialog *error() const { return window.findChild<ui::ErrorDialog *>(); }
    QTimer *timer() const { return part<QTimer>("autoLoginTimer"); }
    bool busy() const { return window.findChild<ui::LoginForm *>()->isBusy(); }
    QString errorText() const
    {
        return error() ? error()->findChild<QLabel *>(QStringLiteral("messageLabel"))->text() : QString();
    }
    void type(const QString &user, const QString &secret) const
    {
        username()->setText(user);
        password()->setText(secret);
    }
    void store(const QString &user, const QString &secret, bool rememberIt, bool automatic)
    {
        config.set(config::authUsername, user);
        config.set(config::authPassword, secret);
        config.set(config::authRememberPassword, rememberIt);
        config.set(config::authAutoLogin, automatic);
    }
};

} // namespace

/// Takes the web addresses that would open in the browser.
class Catcher : public QObject
{
    Q_OBJECT

public:
    explicit Catcher(QUrl &opened) : m_opened(opened) {}

public slots:
    void open(const QUrl &url) { m_opened = url; }

private:
    QUrl &m_opened;
};

class LoginWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void isMadeAsTold()
    {
        const Desk desk;
        QCOMPARE(desk.window.windowTitle(), u"TARVO Client - 登录"_qs);
        QCOMPARE(desk.window.minimumSize(), QSize(1000, 700));
        QCOMPARE(desk.loginButton()->property("type").toString(), u"primary"_qs);
        QCOMPARE(desk.registerButton()->property("type").toString(), u"secondary"_qs);
        QVERIFY(desk.part<QFrame>("GlassPanel")->styleSheet().contains(u"rgba(24, 25, 30, 0.65)"_qs));
        QCOMPARE(desk.password()->echoMode(), QLineEdit::Password);
    }

    void restoresTheForm_data()
    {
        QTest::addColumn<bool>("remember");
        QTest::addColumn<bool>("automatic");
        QTest::addColumn<QString>("username");
        QTest::addColumn<QString>("password");
        QTest::newRow("remembered") << true << false << u"1001"_qs << u"practice"_qs;
        QTest::newRow("remembered, automatic") << true << true << u"1001"_qs << u"practice"_qs;
        QTest::newRow("not remembered: fields stay empty") << false << false << u""_qs << u""_qs;
        QTest::newRow("automatic without remembering") << false << true << u""_qs << u""_qs;
    }
    void restoresTheForm()
    {
        QFETCH(bool, remember);
        QFETCH(bool, automatic);
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, remember, automatic);
        desk.window.show();
        QCOMPARE(desk.remember()->isChecked(), remember);
        QCOMPARE(desk.autoLogin()->isChecked(), automatic);
        QTEST(desk.username()->text(), "username");
        QTEST(desk.password()->text(), "password");
    }

    void keepsWhatIsTypedWhenRestoredFromTheTaskBar()
    {
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, true, false);
        desk.window.show();
        desk.type(u"2002"_qs, u"other"_qs);
        QShowEvent restored;
        QSpontaneKeyEvent::setSpontaneous(&restored);
        qApp->notify(&desk.window, &restored); // sendEvent() would make it an own event
        QCOMPARE(desk.username()->text(), u"2002"_qs);
    }

    void fadesInAndDropsTheEffect()
    {
        Desk desk;
        desk.window.show();
        auto *panel = desk.part<QFrame>("GlassPanel");
        QVERIFY(panel->graphicsEffect());
        QTRY_VERIFY(!panel->graphicsEffect());
    }

    void aFadeThatHasEndedLeavesTheNextOneAlone()
    {
        Desk desk;
        desk.window.show();
        auto *panel = desk.part<QFrame>("GlassPanel");
        auto *fade = panel->graphicsEffect()->findChild<QPropertyAnimation *>();
        fade->setCurrentTime(fade->duration()); // ends it; what follows is queued
        auto *next = new QGraphicsOpacityEffect(panel);
        panel->setGraphicsEffect(next);
        QCoreApplication::processEvents();
        QCOMPARE(panel->graphicsEffect(), next);
    }

    void aLongPasswordIsRestoredWhole()
    {
        Desk desk;
        const QString secret(4000, u'p');
        desk.store(u"1001"_qs, secret, true, false);
        desk.window.show();
        QCOMPARE(desk.password()->text(), secret);
    }

    void theLogOfAFailedLoginHoldsNoSecret_data()
    {
        QTest::addColumn<bool>("automatic");
        QTest::newRow("by itself") << true;
        QTest::newRow("by hand") << false;
    }
    void theLogOfAFailedLoginHoldsNoSecret()
    {
        QFETCH(bool, automatic);
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, true, automatic);
        desk.peer.answer(loginLine, {{u"code"_qs, u"NO practice"_qs}});
        test::LogCapture log;
        desk.window.show();
        if (!automatic)
            desk.loginButton()->click();
        QTRY_VERIFY(desk.error());
        QCOMPARE(log.startingWith(u"Auto login with password failed: "_qs),
                 QStringList(u"Auto login with password failed: 登录失败 (错误代码: NO ******)"_qs));
        QVERIFY(!log.contains(u"practice"_qs));
    }

    void theLogOfAFailedRefreshHoldsNoSecret()
    {
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, true, true);
        desk.config.set(config::authRefreshToken, u"kept-7"_qs);
        desk.peer.acceptLogin();
        desk.peer.answer(refreshLine, {{u"message"_qs, u"not kept-7\nnor practice"_qs}});
        test::LogCapture log;
        desk.window.show();
        QTRY_COMPARE(desk.success.size(), 1);
        QCOMPARE(log.startingWith(u"Auto login with refresh token failed: "_qs),
                 QStringList(u"Auto login with refresh token failed: not ****** nor ******"_qs));
        QVERIFY(!log.contains(u"kept-7"_qs));
    }

    void paintsThePhotograph()
    {
        Desk desk;
        desk.window.show();
        const QImage picture = desk.window.grab().toImage();
        QCOMPARE(picture.size(), desk.window.size() * desk.window.devicePixelRatioF());
        QVERIFY(picture.pixelColor(40, 40) != picture.pixelColor(40, picture.height() * 6 / 10)); // a picture, no fill
    }

    void refusesAnEmptyForm_data()
    {
        QTest::addColumn<QString>("username");
        QTest::addColumn<QString>("password");
        QTest::newRow("both empty") << u""_qs << u""_qs;
        QTest::newRow("only blanks as name") << u"  "_qs << u"practice"_qs;
        QTest::newRow("no password") << u"1001"_qs << u""_qs;
    }
    void refusesAnEmptyForm()
    {
        QFETCH(QString, username);
        QFETCH(QString, password);
        Desk desk;
        desk.window.show();
        desk.type(username, password);
        desk.loginButton()->click();
        QCOMPARE(desk.errorText(), u"请输入用户名和密码"_qs);
        QVERIFY(!desk.busy());
        QVERIFY(desk.peer.requests().isEmpty());
    }

    void isBusyWhileTheServiceThinks()
    {
        Desk desk;
        desk.peer.refuseLogin(u"WRONG_USERNAME_OR_PASSWORD"_qs);
        desk.window.show();
        desk.type(u" 1001 "_qs, u"wrong"_qs);
        desk.loginButton()->click();
        QVERIFY(desk.window.findChild<ui::LoadingSpinner *>()->isVisible());
        QVERIFY(!desk.loginButton()->findChild<QLabel *>()->isVisible());
        for (QWidget *part : std::initializer_list<QWidget *>{desk.username(), desk.password(), desk.registerButton(),
                                                              desk.remember(), desk.autoLogin()})
            QVERIFY(!part->isEnabled());
        desk.window.onLoginClicked(); // an impatient second click

        QTRY_COMPARE(desk.errorText(), u"用户名或密码错误"_qs);

        QVERIFY(!desk.busy() && desk.username()->isEnabled());
        QCOMPARE(desk.peer.count(loginLine), 1);
        QCOMPARE(desk.peer.requests()[0].body.value(u"username"_qs).toString(), u"1001"_qs);
        QCOMPARE(desk.error()->findChild<QLabel *>(u"titleLabel"_qs)->text(), u"登录失败"_qs);
        QCOMPARE(desk.success.size(), 0);
    }

    void enterLogsIn()
    {
        Desk desk;
        desk.peer.acceptLogin();
        desk.window.show();
        desk.type(u"1001"_qs, u"practice"_qs);
        QTest::keyClick(desk.password(), Qt::Key_Return);
        QTRY_COMPARE(desk.success.size(), 1);
        QVERIFY(!desk.window.isVisible());
    }

    void tabGoesThroughTheFormInOrder()
    {
        Desk desk;
        desk.window.show();
        QVERIFY(QTest::qWaitForWindowActive(&desk.window));
        desk.username()->setFocus();
        for (const char *name :
             {"usernameEdit", "passwordEdit", "rememberCheck", "autoLoginCheck", "loginButton", "registerButton"}) {
            QCOMPARE(QApplication::focusWidget()->objectName(), QLatin1String(name));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
    }

    void storesTheForm_data()
    {
        QTest::addColumn<bool>("remember");
        QTest::addColumn<QString>("username");
        QTest::addColumn<QString>("password");
        QTest::newRow("remembered") << true << u"1001"_qs << u"practice"_qs;
        QTest::newRow("not remembered: stored empty") << false << u""_qs << u""_qs;
    }
    void storesTheForm()
    {
        QFETCH(bool, remember);
        Desk desk;
        desk.store(u"old"_qs, u"older"_qs, false, false);
        desk.peer.acceptLogin();
        desk.window.show();
        desk.type(u"1001 "_qs, u"practice"_qs);
        desk.remember()->setChecked(remember);
        desk.autoLogin()->setChecked(true);
        desk.loginButton()->click();
        QTRY_COMPARE(desk.success.size(), 1);
        QCOMPARE(desk.config.get(config::authRememberPassword), remember);
        QVERIFY(desk.config.get(config::authAutoLogin));
        QTEST(desk.config.get(config::authUsername), "username");
        QTEST(desk.config.get(config::authPassword), "password");
        // What was typed serves the session either way, and no longer stands in the form.
        QCOMPARE(desk.config.get(config::sessionUsername), u"1001"_qs);
        QCOMPARE(desk.config.get(config::sessionPassword), u"practice"_qs);
        QCOMPARE(desk.password()->text(), QString());
    }

    void signsInByRefreshToken()
    {
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, true, true);
        desk.config.set(config::authRefreshToken, u"kept"_qs);
        desk.peer.acceptLogin();
        desk.window.show();
        QTRY_COMPARE(desk.success.size(), 1);
        QCOMPARE(desk.peer.count(refreshLine), 1);
        QCOMPARE(desk.peer.count(loginLine), 0);
        QCOMPARE(desk.peer.requests()[0].authorization, QByteArray("Bearer kept"));
        QCOMPARE(desk.config.get(config::sessionUsername), u"1001"_qs);
        QVERIFY(!desk.window.isVisible());
    }

    void aRefreshWithoutRememberedNameTakesTheAccountsNumber()
    {
        Desk desk;
        desk.store(QString(), QString(), false, true);
        desk.config.set(config::authRefreshToken, u"kept"_qs);
        desk.peer.acceptLogin();
        desk.window.show();
        QTRY_COMPARE(desk.success.size(), 1);
        QCOMPARE(desk.config.get(config::sessionUsername), u"1001"_qs);
        QCOMPARE(desk.config.get(config::sessionPassword), QString());
    }

    void aStaleRefreshTokenFallsThroughToThePassword()
    {
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, true, true);
        desk.peer.acceptLogin();
        bool signedIn = false;
        desk.api.login(u"1001"_qs, u"practice"_qs, [&signedIn](bool success, const QString &) { signedIn = success; });
        QTRY_VERIFY(signedIn);
        QVERIFY(desk.api.hasToken());
        desk.config.set(config::authRefreshToken, u"stale"_qs);
        desk.peer.refuseLogin(u"WRONG_USERNAME_OR_PASSWORD"_qs); // of the password, too
        desk.window.show();
        QTRY_COMPARE(desk.errorText(), u"用户名或密码错误"_qs);
        QCOMPARE(desk.peer.count(refreshLine), 1);
        QCOMPARE(desk.peer.count(loginLine), 2); // the one before, and the one of this window
        QVERIFY(!desk.api.hasToken());
        QCOMPARE(desk.config.get(config::authToken), QString());
        QCOMPARE(desk.config.get(config::authRefreshToken), QString());
        QVERIFY(!desk.busy());
    }

    void tokensStayWhenNobodyAnswers()
    {
        QTcpServer gone;
        QVERIFY(gone.listen(QHostAddress::LocalHost));
        ServiceEndpoints endpoints;
        endpoints.apiBaseUrl = u"http://127.0.0.1:%1/api"_qs.arg(gone.serverPort());
        gone.close();
        QTemporaryDir folder;
        AppConfig config(folder.path());
        config.set(config::authAutoLogin, true);
        config.set(config::authRefreshToken, u"kept"_qs);
        network::ApiService api(config, endpoints);
        ui::LoginWindow window(config, api, endpoints);
        const LogCapture log;
        window.show();
        QTRY_VERIFY(log.contains(u"Auto login with refresh token failed: 无法连接到服务器"_qs));
        QCOMPARE(config.get(config::authRefreshToken), u"kept"_qs);
        QVERIFY(!window.findChild<ui::LoginForm *>()->isBusy());
    }

    void aPilotIsToldOnceThatSettingsCameBack()
    {
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, true, true);
        QCOMPARE(AppConfig(desk.folder.path()).startupWarning(), QString()); // copies the file
        QFile file(desk.folder.filePath(u"config.ini"_qs));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        AppConfig mended(desk.folder.path());
        desk.peer.acceptLogin();
        ui::LoginWindow window(mended, desk.api, desk.peer.endpoints());
        const auto *timer = window.findChild<QTimer *>(u"autoLoginTimer"_qs);
        window.show();
        QTRY_VERIFY(window.findChild<ui::ErrorDialog *>());
        auto *dialog = window.findChild<ui::ErrorDialog *>();
        QCOMPARE(dialog->windowTitle(), u"设置已恢复"_qs);
        QVERIFY(!timer->isActive()); // the window would go before the pilot has read it
        dialog->accept();
        QVERIFY(timer->isActive());
        QTRY_VERIFY(!window.isVisible());
        window.show();
        QCoreApplication::processEvents();
        QVERIFY(!window.findChild<ui::ErrorDialog *>());
    }

    void signsInByPasswordWithoutAToken()
    {
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, true, true);
        desk.peer.acceptLogin();
        desk.window.show();
        QTRY_COMPARE(desk.success.size(), 1);
        QCOMPARE(desk.peer.count(refreshLine), 0);
        QCOMPARE(desk.peer.count(loginLine), 1);
    }

    void anEmptyFormEndsAutomaticLoginSilently()
    {
        Desk desk;
        desk.store(QString(), QString(), false, true);
        desk.config.set(config::authRefreshToken, u"stale"_qs);
        desk.peer.refuseLogin(u"DATABASE_ERROR"_qs);
        desk.window.show();
        QTRY_COMPARE(desk.peer.count(refreshLine), 1);
        QTRY_VERIFY(!desk.busy());
        QVERIFY(!desk.error() && desk.username()->isEnabled());
        QCOMPARE(desk.peer.count(loginLine), 0);
    }

    void triesByItselfOnlyOnce()
    {
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, true, true);
        desk.peer.refuseLogin(u"WRONG_USERNAME_OR_PASSWORD"_qs);
        desk.window.show();
        desk.window.hide();
        desk.window.show();
        QTRY_VERIFY(desk.error());
        QVERIFY(!desk.timer()->isActive());
        desk.error()->close();
        desk.window.hide();
        desk.window.show();
        QVERIFY(!desk.timer()->isActive());
        QTRY_VERIFY(!desk.error());
        desk.peer.acceptLogin();
        desk.loginButton()->click();
        QTRY_COMPARE(desk.success.size(), 1);
        QCOMPARE(desk.peer.count(loginLine), 2); // the one automatic, the one by hand
    }

    void aPilotWhoIsQuickerGoesFirst()
    {
        Desk desk;
        desk.store(u"1001"_qs, u"practice"_qs, true, true);
        desk.config.set(config::authRefreshToken, u"kept"_qs);
        desk.peer.acceptLogin();
        desk.window.show();
        desk.loginButton()->click();
        desk.timer()->setInterval(0);
        QTRY_VERIFY(!desk.timer()->isActive());
        QTRY_COMPARE(desk.success.size(), 1);
        QCOMPARE(desk.peer.count(loginLine), 1);
        QCOMPARE(desk.peer.count(refreshLine), 0);
    }

    void aReplyAfterTheWindowsEndDoesNothing()
    {
        QTemporaryDir folder;
        AppConfig config(folder.path());
        test::AccountPeer peer;
        peer.acceptLogin();
        network::ApiService api(config, peer.endpoints());
        auto window = std::make_unique<ui::LoginWindow>(config, api, peer.endpoints());
        window->show();
        window->findChild<QLineEdit *>(u"usernameEdit"_qs)->setText(u"1001"_qs);
        window->findChild<QLineEdit *>(u"passwordEdit"_qs)->setText(u"practice"_qs);
        window->onLoginClicked();
        window.reset();
        QTRY_VERIFY(api.hasToken());
        QCOMPARE(config.get(config::sessionUsername), QString());
    }

    void registersOnTheWeb()
    {
        Desk desk;
        QUrl opened;
        Catcher catcher(opened);
        QDesktopServices::setUrlHandler(QUrl(desk.peer.endpoints().registerUrl).scheme(), &catcher, "open");
        desk.registerButton()->click();
        QDesktopServices::unsetUrlHandler(QUrl(desk.peer.endpoints().registerUrl).scheme());
        QCOMPARE(opened, QUrl(desk.peer.endpoints().registerUrl));
    }
};

TARVO_TEST(LoginWindowTest)
#include "LoginWindowTest.moc"

#include "ui/LoginWindow.h"

#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/AccountStage.h"
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
#include <QTimer>
#include <qtestspontaneevent.h>

using namespace tarvo;
using tarvo::test::LogCapture;
using tarvo::test::loginLine;
using tarvo::test::refreshLine;

namespace {

struct LoginStage : test::AccountStage
{
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
    QString errorText() const { return error() ? error()->findChild<QLabel *>(u"messageLabel"_qs)->text() : QString(); }
    /// Signs in by itself at once, where it does, and not half a second later.
    void show()
    {
        window.show();
        if (timer()->isActive())
            timer()->start(0);
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
        const LoginStage stage;
        QCOMPARE(stage.window.windowTitle(), u"TARVO Client - 登录"_qs);
        QCOMPARE(stage.window.minimumSize(), QSize(1000, 700));
        QCOMPARE(stage.loginButton()->property("type").toString(), u"primary"_qs);
        QCOMPARE(stage.registerButton()->property("type").toString(), u"secondary"_qs);
        QVERIFY(stage.part<QFrame>("GlassPanel")->styleSheet().contains(u"rgba(24, 25, 30, 0.65)"_qs));
        QCOMPARE(stage.password()->echoMode(), QLineEdit::Password);
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
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, remember, automatic);
        stage.show();
        QCOMPARE(stage.remember()->isChecked(), remember);
        QCOMPARE(stage.autoLogin()->isChecked(), automatic);
        QTEST(stage.username()->text(), "username");
        QTEST(stage.password()->text(), "password");
    }

    void keepsWhatIsTypedWhenRestoredFromTheTaskBar()
    {
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, true, false);
        stage.show();
        stage.type(u"2002"_qs, u"other"_qs);
        QShowEvent restored;
        QSpontaneKeyEvent::setSpontaneous(&restored);
        qApp->notify(&stage.window, &restored); // sendEvent() would make it an own event
        QCOMPARE(stage.username()->text(), u"2002"_qs);
    }

    void fadesInAndDropsTheEffect()
    {
        LoginStage stage;
        stage.show();
        auto *panel = stage.part<QFrame>("GlassPanel");
        QVERIFY(panel->graphicsEffect());
        TRY_VERIFY(!panel->graphicsEffect());
    }

    void aFadeThatHasEndedLeavesTheNextOneAlone()
    {
        LoginStage stage;
        stage.show();
        auto *panel = stage.part<QFrame>("GlassPanel");
        auto *fade = panel->graphicsEffect()->findChild<QPropertyAnimation *>();
        fade->setCurrentTime(fade->duration()); // ends it; what follows is queued
        auto *next = new QGraphicsOpacityEffect(panel);
        panel->setGraphicsEffect(next);
        QCoreApplication::processEvents();
        QCOMPARE(panel->graphicsEffect(), next);
    }

    void aLongPasswordIsRestoredWhole()
    {
        LoginStage stage;
        const QString secret(4000, u'p');
        stage.store(u"1001"_qs, secret, true, false);
        stage.show();
        QCOMPARE(stage.password()->text(), secret);
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
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, true, automatic);
        stage.peer.answer(loginLine, {{u"code"_qs, u"NO practice"_qs}});
        test::LogCapture log;
        stage.show();
        if (!automatic)
            stage.loginButton()->click();
        TRY_VERIFY(stage.error());
        QCOMPARE(log.startingWith(u"Auto login with password failed: "_qs),
                 QStringList(u"Auto login with password failed: 登录失败 (错误代码: NO ******)"_qs));
        QVERIFY(!log.contains(u"practice"_qs));
    }

    void theLogOfAFailedRefreshHoldsNoSecret()
    {
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, true, true);
        stage.config.set(config::authRefreshToken, u"kept-7"_qs);
        stage.peer.acceptLogin();
        stage.peer.answer(refreshLine, {{u"message"_qs, u"not kept-7\nnor practice"_qs}});
        test::LogCapture log;
        stage.show();
        TRY_COMPARE(stage.success.size(), 1);
        QCOMPARE(log.startingWith(u"Auto login with refresh token failed: "_qs),
                 QStringList(u"Auto login with refresh token failed: not ****** nor ******"_qs));
        QVERIFY(!log.contains(u"kept-7"_qs));
    }

    void paintsThePhotograph()
    {
        LoginStage stage;
        stage.show();
        const QImage picture = stage.window.grab().toImage();
        QCOMPARE(picture.size(), stage.window.size() * stage.window.devicePixelRatioF());
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
        LoginStage stage;
        stage.show();
        stage.type(username, password);
        stage.loginButton()->click();
        QCOMPARE(stage.errorText(), u"请输入用户名和密码"_qs);
        QVERIFY(!stage.busy());
        QVERIFY(stage.peer.requests().isEmpty());
    }

    void isBusyWhileTheServiceThinks()
    {
        LoginStage stage;
        stage.peer.refuseLogin(u"WRONG_USERNAME_OR_PASSWORD"_qs);
        stage.show();
        stage.type(u" 1001 "_qs, u"wrong"_qs);
        stage.loginButton()->click();
        QVERIFY(stage.window.findChild<ui::LoadingSpinner *>()->isVisible());
        QVERIFY(!stage.loginButton()->findChild<QLabel *>()->isVisible());
        for (QWidget *part : std::initializer_list<QWidget *>{
                 stage.username(), stage.password(), stage.registerButton(), stage.remember(), stage.autoLogin()})
            QVERIFY(!part->isEnabled());
        stage.window.onLoginClicked(); // an impatient second click

        TRY_COMPARE(stage.errorText(), u"用户名或密码错误"_qs);

        QVERIFY(!stage.busy() && stage.username()->isEnabled());
        QCOMPARE(stage.peer.count(loginLine), 1);
        QCOMPARE(stage.peer.requests()[0].body.value(u"username"_qs).toString(), u"1001"_qs);
        QCOMPARE(stage.error()->findChild<QLabel *>(u"titleLabel"_qs)->text(), u"登录失败"_qs);
        QCOMPARE(stage.success.size(), 0);
    }

    void afterARefusalThePasswordIsTypedAnew()
    {
        LoginStage stage;
        stage.peer.refuseLogin(u"WRONG_USERNAME_OR_PASSWORD"_qs);
        stage.show();
        stage.type(u"1001"_qs, u"wrong"_qs);
        stage.loginButton()->click();
        TRY_VERIFY(stage.error());
        stage.error()->accept();
        TRY_COMPARE(stage.window.focusWidget(), stage.password());
        QCOMPARE(stage.password()->selectedText().size(), 5);
    }

    void aLoginCanBeCalledOff_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("by its button") << false;
        QTest::newRow("by Escape") << true;
    }
    void aLoginCanBeCalledOff()
    {
        QFETCH(bool, byKey);
        LoginStage stage;
        stage.peer.acceptLogin();
        stage.show();
        QVERIFY(QTest::qWaitForWindowActive(&stage.window));
        auto *cancel = stage.part<QPushButton>("cancelButton");
        QVERIFY(!cancel->isVisible() && stage.registerButton()->isVisible());
        stage.type(u"1001"_qs, u"practice"_qs);
        stage.loginButton()->click();
        QVERIFY(cancel->isVisible() && cancel->isEnabled() && !stage.registerButton()->isVisible());
        if (byKey)
            QTest::keyClick(&stage.window, Qt::Key_Escape);
        else
            cancel->click();
        QVERIFY(!stage.busy() && stage.username()->isEnabled() && stage.registerButton()->isVisible());
        TRY_VERIFY(!stage.api.isWaiting());
        QCOMPARE(stage.success.size(), 0);
        QVERIFY(!stage.api.hasToken());
        QCOMPARE(stage.config.get(config::authToken), QString());
        QVERIFY(!stage.error());
        stage.loginButton()->click(); // and it can be begun anew
        TRY_COMPARE(stage.success.size(), 1);
    }

    void enterPressesTheButtonThatHasTheKeys()
    {
        LoginStage stage;
        stage.peer.acceptLogin();
        stage.show();
        stage.type(u"1001"_qs, u"practice"_qs);
        stage.loginButton()->setFocus();
        QTest::keyClick(stage.loginButton(), Qt::Key_Return);
        TRY_COMPARE(stage.success.size(), 1);
    }

    void enterLogsIn()
    {
        LoginStage stage;
        stage.peer.acceptLogin();
        stage.show();
        stage.type(u"1001"_qs, u"practice"_qs);
        QTest::keyClick(stage.password(), Qt::Key_Return);
        TRY_COMPARE(stage.success.size(), 1);
        QVERIFY(!stage.window.isVisible());
    }

    void tabGoesThroughTheFormInOrder()
    {
        LoginStage stage;
        stage.show();
        QVERIFY(QTest::qWaitForWindowActive(&stage.window));
        stage.username()->setFocus();
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
        LoginStage stage;
        stage.store(u"old"_qs, u"older"_qs, false, false);
        stage.peer.acceptLogin();
        stage.show();
        stage.type(u"1001 "_qs, u"practice"_qs);
        stage.remember()->setChecked(remember);
        stage.autoLogin()->setChecked(true);
        stage.loginButton()->click();
        TRY_COMPARE(stage.success.size(), 1);
        QCOMPARE(stage.config.get(config::authRememberPassword), remember);
        QVERIFY(stage.config.get(config::authAutoLogin));
        QTEST(stage.config.get(config::authUsername), "username");
        QTEST(stage.config.get(config::authPassword), "password");
        // What was typed serves the session either way, and no longer stands in the form.
        QCOMPARE(stage.config.get(config::sessionUsername), u"1001"_qs);
        QCOMPARE(stage.config.get(config::sessionPassword), u"practice"_qs);
        QCOMPARE(stage.password()->text(), QString());
    }

    void signsInByRefreshToken()
    {
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, true, true);
        stage.config.set(config::authRefreshToken, u"kept"_qs);
        stage.peer.acceptLogin();
        stage.show();
        TRY_COMPARE(stage.success.size(), 1);
        QCOMPARE(stage.peer.count(refreshLine), 1);
        QCOMPARE(stage.peer.count(loginLine), 0);
        QCOMPARE(stage.peer.requests()[0].authorization, QByteArray("Bearer kept"));
        QCOMPARE(stage.config.get(config::sessionUsername), u"1001"_qs);
        QVERIFY(!stage.window.isVisible());
    }

    void aRefreshWithoutRememberedNameTakesTheAccountsNumber()
    {
        LoginStage stage;
        stage.store(QString(), QString(), false, true);
        stage.config.set(config::authRefreshToken, u"kept"_qs);
        stage.peer.acceptLogin();
        stage.show();
        TRY_COMPARE(stage.success.size(), 1);
        QCOMPARE(stage.config.get(config::sessionUsername), u"1001"_qs);
        QCOMPARE(stage.config.get(config::sessionPassword), QString());
    }

    void whatIsTypedBeforeARefreshIsNobodysName()
    {
        LoginStage stage;
        stage.store(QString(), QString(), false, true);
        stage.config.set(config::authRefreshToken, u"kept"_qs);
        stage.peer.acceptLogin();
        stage.window.show();
        stage.type(u"10"_qs, u"pra"_qs);
        QTRY_COMPARE(stage.success.size(), 1);
        QCOMPARE(stage.config.get(config::sessionUsername), u"1001"_qs);
        QCOMPARE(stage.config.get(config::sessionPassword), QString());
    }

    void aStaleRefreshTokenFallsThroughToThePassword()
    {
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, true, true);
        stage.signIn();
        QVERIFY(stage.api.hasToken());
        stage.config.set(config::authRefreshToken, u"stale"_qs);
        stage.peer.refuseLogin(u"WRONG_USERNAME_OR_PASSWORD"_qs); // of the password, too
        stage.show();
        TRY_COMPARE(stage.errorText(), u"用户名或密码错误"_qs);
        QCOMPARE(stage.peer.count(refreshLine), 1);
        QCOMPARE(stage.peer.count(loginLine), 2); // the one before, and the one of this window
        QVERIFY(!stage.api.hasToken());
        QCOMPARE(stage.config.get(config::authToken), QString());
        QCOMPARE(stage.config.get(config::authRefreshToken), QString());
        QVERIFY(!stage.busy());
    }

    void tokensStayWhenNobodyAnswers()
    {
        QTcpServer gone;
        QVERIFY(gone.listen(QHostAddress::LocalHost));
        ServiceEndpoints endpoints;
        endpoints.apiBaseUrl = u"http://127.0.0.1:%1/api"_qs.arg(gone.serverPort());
        gone.close();
        LoginStage stage;
        stage.config.set(config::authAutoLogin, true);
        stage.config.set(config::authRefreshToken, u"kept"_qs);
        network::ApiService api(stage.config, endpoints);
        ui::LoginWindow window(stage.config, api, endpoints);
        const LogCapture log;
        window.show();
        TRY_VERIFY(log.contains(u"Auto login with refresh token failed: 无法连接到服务器"_qs));
        QCOMPARE(stage.config.get(config::authRefreshToken), u"kept"_qs);
        QVERIFY(!window.findChild<ui::LoginForm *>()->isBusy());
    }

    void aPilotIsToldOnceThatSettingsCameBack()
    {
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, true, true);
        QCOMPARE(AppConfig(stage.folder.path()).startupWarning(), QString()); // copies the file
        QFile file(stage.folder.filePath(u"config.ini"_qs));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        AppConfig mended(stage.folder.path());
        stage.peer.acceptLogin();
        ui::LoginWindow window(mended, stage.api, stage.peer.endpoints());
        const auto *timer = window.findChild<QTimer *>(u"autoLoginTimer"_qs);
        window.show();
        TRY_VERIFY(window.findChild<ui::ErrorDialog *>());
        auto *dialog = window.findChild<ui::ErrorDialog *>();
        QCOMPARE(dialog->windowTitle(), u"设置已恢复"_qs);
        QVERIFY(!timer->isActive()); // the window would go before the pilot has read it
        dialog->accept();
        QVERIFY(timer->isActive());
        TRY_VERIFY(!window.isVisible());
        window.show();
        QCoreApplication::processEvents();
        QVERIFY(!window.findChild<ui::ErrorDialog *>());
    }

    void signsInByPasswordWithoutAToken()
    {
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, true, true);
        stage.peer.acceptLogin();
        stage.show();
        TRY_COMPARE(stage.success.size(), 1);
        QCOMPARE(stage.peer.count(refreshLine), 0);
        QCOMPARE(stage.peer.count(loginLine), 1);
    }

    void anEmptyFormEndsAutomaticLoginSilently()
    {
        LoginStage stage;
        stage.store(QString(), QString(), false, true);
        stage.config.set(config::authRefreshToken, u"stale"_qs);
        stage.peer.refuseLogin(u"DATABASE_ERROR"_qs);
        stage.show();
        TRY_COMPARE(stage.peer.count(refreshLine), 1);
        TRY_VERIFY(!stage.busy());
        QVERIFY(!stage.error() && stage.username()->isEnabled());
        QCOMPARE(stage.peer.count(loginLine), 0);
    }

    void triesByItselfOnlyOnce()
    {
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, true, true);
        stage.peer.refuseLogin(u"WRONG_USERNAME_OR_PASSWORD"_qs);
        stage.window.show();
        QCOMPARE(stage.timer()->interval(), 500);
        stage.window.hide();
        stage.window.show();
        TRY_VERIFY(stage.error());
        QVERIFY(!stage.timer()->isActive());
        stage.error()->close();
        stage.window.hide();
        stage.window.show();
        QVERIFY(!stage.timer()->isActive());
        TRY_VERIFY(!stage.error());
        stage.peer.acceptLogin();
        stage.loginButton()->click();
        TRY_COMPARE(stage.success.size(), 1);
        QCOMPARE(stage.peer.count(loginLine), 2); // the one automatic, the one by hand
    }

    void aPilotWhoIsQuickerGoesFirst()
    {
        LoginStage stage;
        stage.store(u"1001"_qs, u"practice"_qs, true, true);
        stage.config.set(config::authRefreshToken, u"kept"_qs);
        stage.peer.acceptLogin();
        stage.window.show();
        stage.loginButton()->click();
        stage.timer()->setInterval(0);
        TRY_VERIFY(!stage.timer()->isActive());
        TRY_COMPARE(stage.success.size(), 1);
        QCOMPARE(stage.peer.count(loginLine), 1);
        QCOMPARE(stage.peer.count(refreshLine), 0);
    }

    void aReplyAfterTheWindowsEndDoesNothing()
    {
        test::AccountStage account;
        account.peer.acceptLogin();
        auto window = std::make_unique<ui::LoginWindow>(account.config, account.api, account.peer.endpoints());
        window->show();
        window->findChild<QLineEdit *>(u"usernameEdit"_qs)->setText(u"1001"_qs);
        window->findChild<QLineEdit *>(u"passwordEdit"_qs)->setText(u"practice"_qs);
        window->onLoginClicked();
        window.reset();
        TRY_VERIFY(account.api.hasToken());
        QCOMPARE(account.config.get(config::sessionUsername), QString());
    }

    void registersOnTheWeb()
    {
        LoginStage stage;
        QUrl opened;
        Catcher catcher(opened);
        QDesktopServices::setUrlHandler(QUrl(stage.peer.endpoints().registerUrl).scheme(), &catcher, "open");
        stage.registerButton()->click();
        QDesktopServices::unsetUrlHandler(QUrl(stage.peer.endpoints().registerUrl).scheme());
        QCOMPARE(opened, QUrl(stage.peer.endpoints().registerUrl));
    }
};

TARVO_TEST(LoginWindowTest)
#include "LoginWindowTest.moc"

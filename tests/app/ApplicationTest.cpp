#include "Application.h"

#include "AppConfig.h"
#include "manager/NetworkManager.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "simulator/Simulator.h"
#include "support/AccountPeer.h"
#include "support/FsdPeer.h"
#include "support/TestRegistry.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QLineEdit>
#include <QQuickView>
#include <QRegularExpression>
#include <QScreen>
#include <QShowEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <qtestspontaneevent.h>

using namespace tarvo;

namespace {

const QByteArray historyLine = "GET /api/users/histories/self";
const QByteArray profileLine = "GET /api/users/profiles/self";
const QByteArray leaderboardLine = "GET /api/server/rating";

/// The whole program over services of the test's own.
struct Program
{
    QTemporaryDir folder;
    AppConfig config{folder.path()};
    test::AccountPeer account;
    test::FsdPeer fsd;
    network::ApiService api{config, account.endpoints()};
    network::SwiftAircraftIcaoService icao{config};
    Application application;

    explicit Program(const QString &fsdHost = u"127.0.0.1"_qs)
        : application(config, api, icao, endpoints(account, fsd, fsdHost, folder.path()))
    {
        account.acceptLogin();
        config.set(config::authVatsim, false); // the classic login needs no token
        application.loginWindow().show();
    }

    static ServiceEndpoints endpoints(const test::AccountPeer &account, const test::FsdPeer &fsd, const QString &host,
                                      const QString &folder)
    {
        ServiceEndpoints endpoints = account.endpoints();
        endpoints.fsdHost = host;
        endpoints.fsdPort = fsd.port();
        endpoints.localPluginUrl = u"ipc://"_qs + folder + u"/plugin.ipc"_qs;
        return endpoints;
    }
    void signIn()
    {
        ui::LoginWindow &login = application.loginWindow();
        login.findChild<QLineEdit *>(u"usernameEdit"_qs)->setText(u"1001"_qs);
        login.findChild<QLineEdit *>(u"passwordEdit"_qs)->setText(u"practice"_qs);
        login.onLoginClicked();
        QTRY_VERIFY(application.mainWindow());
        QTRY_VERIFY(!login.isVisible());
    }
    void signOut()
    {
        application.mainWindow()->onLogoutClicked();
        QTRY_VERIFY(application.loginWindow().isVisible());
    }
    ui::MainWindow &main() const { return *application.mainWindow(); }
    void connectAsObserver()
    {
        emit main().server().connectRequested(u"CES2352"_qs, QString(), QString(), true);
        QVERIFY(fsd.waitForConnection());
        QVERIFY(fsd.nextLine().startsWith(u"#AACES2352:"_qs));
    }
    /// The next lines of the client until one starts with `start`; null when none does.
    QString lineStarting(const QString &start)
    {
        QString line;
        do
            line = fsd.nextLine();
        while (!line.isNull() && !line.startsWith(start));
        return line;
    }
};

/// What is to be seen of the main window, each time that the login window goes.
class HideWatch : public QObject
{
public:
    explicit HideWatch(Application &application) : m_application(application)
    {
        application.loginWindow().installEventFilter(this);
        // Behind the application's own answer, which makes the main window.
        connect(&application.loginWindow(), &ui::LoginWindow::loginSuccess, this, [this] {
            m_opacity = m_application.mainWindow()->windowOpacity();
            connect(m_application.mainWindow()->view(), &QQuickWindow::afterRendering, this, [this] { ++m_frames; });
        });
    }

    QStringList seen;
    /// Of the main window while it has nothing painted.
    qreal opacityAtFirst() const { return m_opacity; }

private:
    bool eventFilter(QObject *, QEvent *event) override
    {
        const ui::MainWindow *main = m_application.mainWindow();
        if (event->type() == QEvent::Hide)
            seen << (!main || !main->isVisible() ? u"none"_qs : m_frames > 0 ? u"painted"_qs : u"unpainted"_qs);
        return false;
    }

    Application &m_application;
    int m_frames = 0;
    qreal m_opacity = -1;
};

} // namespace

class ApplicationTest : public QObject
{
    Q_OBJECT

private slots:
    void beforeTheLoginThereIsOnlyTheLoginWindow()
    {
        const Program program;
        QVERIFY(!program.application.mainWindow());
        QVERIFY(!program.application.networkManager());
    }

    void theMainWindowTakesTheLoginWindowsPlace()
    {
        Program program;
        program.application.loginWindow().setGeometry(120, 90, 1120, 760);
        const QPoint position = program.application.loginWindow().pos();
        // The type data are looked for before anything can ask for them; here there are none.
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(u"^Swift aircraft ICAO SQLite data is not ready"_qs));
        program.signIn();
        QVERIFY(program.main().isVisible());
        QVERIFY(!program.application.loginWindow().isVisible());
        QCOMPARE(program.main().size(), QSize(1120, 760));
        QCOMPARE(program.main().pos(), position);
        QCOMPARE(program.main().minimumSize(), QSize(1000, 700));
    }

    void thereIsAlwaysAWindow()
    {
        Program program;
        HideWatch watch(program.application);
        program.signIn();
        QCOMPARE(watch.seen, QStringList{u"painted"_qs});
        QCOMPARE(watch.opacityAtFirst(), 0.0);
        QCOMPARE(program.main().windowOpacity(), 1.0);
    }

    void aMaximisedLoginOpensAMaximisedMainWindow()
    {
        Program program;
        ui::LoginWindow &login = program.application.loginWindow();
        login.setGeometry(20, 10, 1010, 710);
        login.showMaximized();
        QVERIFY(login.isMaximized());
        program.signIn();
        QVERIFY(program.main().isMaximized());
        QCOMPARE(program.main().normalGeometry().size(), QSize(1010, 710));
        program.signOut();
        QVERIFY(login.isMaximized());
        program.signIn(); // the place of the last session is known now
        QVERIFY(program.main().isMaximized());
    }

    void theMainWindowComesBackWhereItWasLeft()
    {
        Program program;
        program.application.loginWindow().setGeometry(20, 10, 1010, 710);
        const QPoint position = program.application.loginWindow().pos();
        program.signIn();
        program.main().move(-5000, 30);
        program.main().resize(1020, 730);
        program.signOut();
        program.signIn();
        const QRect screen = program.main().screen()->availableGeometry();
        QCOMPARE(program.main().pos(), QPoint(screen.left(), 30));
        QCOMPARE(program.main().size(), QSize(1020, 730).boundedTo(screen.size()).expandedTo(QSize(1000, 700)));
        program.signOut();
        QCOMPARE(program.application.loginWindow().pos(), position);
    }

    void noWindowOpensOnAScreenThatIsGone()
    {
        Program program;
        program.application.loginWindow().move(5000, 30);
        program.signIn();
        const QRect screen = program.main().screen()->geometry();
        QVERIFY(screen.contains(program.main().pos()));
        program.signOut();
        QVERIFY(screen.contains(program.application.loginWindow().pos()));
    }

    void theWindowThatIsShownComesForward()
    {
        Program program;
        program.application.loginWindow().showMinimized();
        program.application.comeForward();
        QVERIFY(!program.application.loginWindow().isMinimized());
        program.signIn();
        program.main().showMinimized();
        program.application.comeForward();
        QVERIFY(program.main().isVisible() && !program.main().isMinimized());
        QVERIFY(!program.application.loginWindow().isVisible());
    }

    void theAccountIsAskedOnceForEachSession()
    {
        Program program;
        const QList<QByteArray> calls{historyLine, profileLine, leaderboardLine};
        program.signIn();
        for (const QByteArray &call : calls)
            QTRY_COMPARE(program.account.count(call), 1);
        QShowEvent restored;
        QSpontaneKeyEvent::setSpontaneous(&restored);
        qApp->notify(&program.main(), &restored); // sendEvent() would make it an own event
        bool answered = false;                    // after whatever the event may have asked for
        program.api.getLeaderboard([&answered](bool, const model::RatingList &, const QString &) { answered = true; });
        QTRY_VERIFY(answered);
        QCOMPARE(program.account.count(historyLine), 1);
        QCOMPARE(program.account.count(profileLine), 1);
        QCOMPARE(program.account.count(leaderboardLine), 2); // the window's and the test's
    }

    void logoutForgetsTheAccountAndBringsTheLoginBack()
    {
        Program program;
        program.application.loginWindow().move(120, 90);
        const QPoint position = program.application.loginWindow().pos();
        program.config.set(config::authRememberPassword, true);
        program.signIn();
        program.config.set(config::authAutoLogin, true);
        program.config.set(config::xplaneUdpPort, 49005);
        program.main().move(300, 300);

        program.main().onLogoutClicked();

        // At once: the account is forgotten and the window hidden, but not yet destroyed.
        QVERIFY(!program.api.hasToken());
        QVERIFY(!program.main().isVisible());
        QVERIFY(program.application.networkManager());
        QCOMPARE(program.config.get(config::sessionUsername), u"1001"_qs);
        QTRY_VERIFY(program.application.loginWindow().isVisible());
        QVERIFY(!program.application.mainWindow() && !program.application.networkManager());
        for (const StringKey &key : {config::authToken, config::authRefreshToken, config::authUsername,
                                     config::authPassword, config::sessionUsername, config::sessionPassword})
            QCOMPARE(program.config.get(key), QString());
        QVERIFY(!program.config.get(config::authRememberPassword));
        QVERIFY(!program.config.get(config::authAutoLogin));
        QVERIFY(!program.config.get(config::authVatsim));
        QCOMPARE(program.config.get(config::xplaneUdpPort), 49005);
        QCOMPARE(program.application.loginWindow().pos(), position);
    }

    void logoutWhileConnectedSaysGoodbyeFirst()
    {
        Program program;
        program.signIn();
        program.connectAsObserver();
        program.main().onLogoutClicked();
        QCOMPARE(program.lineStarting(u"#DA"_qs), u"#DACES2352:1001"_qs);
        QVERIFY(program.fsd.waitForClose());
        QTRY_VERIFY(program.application.loginWindow().isVisible());
    }

    void twoSessionsInOneProcess()
    {
        Program program;
        program.signIn();
        const std::weak_ptr<manager::NetworkManager> first = program.application.networkManager();
        program.main().leaveQuestion().setSilenced(true);
        program.signOut();
        QVERIFY(first.expired());
        program.signIn();
        QVERIFY(program.main().isVisible());
        QVERIFY(program.main().leaveQuestion().isSilenced()); // for the whole run
        program.connectAsObserver();
        program.signOut();
        QVERIFY(!program.application.networkManager());
    }

    void aSecondLoginTearsTheFirstSessionDown()
    {
        Program program;
        program.signIn();
        const std::weak_ptr<manager::NetworkManager> first = program.application.networkManager();
        emit program.application.loginWindow().loginSuccess();
        QVERIFY(first.expired());
        QVERIFY(program.application.networkManager());
        QVERIFY(program.main().isVisible());
    }

    void eachPickOfAModeMakesAFreshAdapter()
    {
        Program program;
        program.signIn();
        QTest::ignoreMessage(QtInfoMsg, "Activating X-Plane backend");
        program.main().onModeSelected(u"XPLANE"_qs);
        const std::weak_ptr<simulator::Simulator> first = program.application.networkManager()->simulator();
        QVERIFY(!first.expired());
        QTest::ignoreMessage(QtInfoMsg, "Activating X-Plane backend");
        program.main().onModeSelected(u"XPLANE"_qs);
        QTRY_VERIFY(first.expired()); // it may have been what asked, and so lives until the event loop turns
        QVERIFY(program.application.networkManager()->simulator());
        QCOMPARE(program.main().dashboard().simulatorStatusText(), u"连接中..."_qs);
    }

    void eachModeHasItsSimulator_data()
    {
        QTest::addColumn<QByteArray>("adapter");
        QTest::addColumn<QByteArray>("told");
        QTest::newRow("MSFS") << QByteArray("tarvo::simulator::msfs::MsfsAdapter")
                              << QByteArray("Activating MSFS backend");
        QTest::newRow("XPLANE") << QByteArray("tarvo::simulator::xplane::XPlaneAdapter")
                                << QByteArray("Activating X-Plane backend");
    }

    void eachModeHasItsSimulator()
    {
        QFETCH(QByteArray, adapter);
        QFETCH(QByteArray, told);
        Program program;
        program.signIn();
        QTest::ignoreMessage(QtInfoMsg, told.constData());
        program.main().onModeSelected(QString::fromLatin1(QTest::currentDataTag()));
        QCOMPARE(program.main().currentMode(), QString::fromLatin1(QTest::currentDataTag()));
        const std::shared_ptr<simulator::Simulator> simulator = program.application.networkManager()->simulator();
        QVERIFY(simulator);
        QCOMPARE(QByteArray(simulator->metaObject()->className()), adapter);
    }

    void logoutWaitsForALookUpToUnwind()
    {
        Program program(u"no-such-host.invalid"_qs);
        program.signIn();
        const std::shared_ptr<manager::NetworkManager> network = program.application.networkManager();
        bool resolving = false;
        emit program.main().server().connectRequested(u"CES2352"_qs, QString(), QString(), true);
        QTimer::singleShot(0, &program.main(), [&] { // behind the request: in the look-up's own event loop
            resolving = network->isResolving();
            program.main().onLogoutClicked();
        });
        QTRY_VERIFY(resolving);
        QTRY_VERIFY(program.application.loginWindow().isVisible());
        QVERIFY(!program.application.mainWindow());
        QCOMPARE(program.fsd.connectionCount(), 0);
    }

    void closingTheMainWindowEndsTheProgram()
    {
        Program program;
        program.signIn();
        QTimer::singleShot(0, &program.main(), [&program] { program.main().close(); });
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(!program.application.loginWindow().isVisible());
    }

    void theProgramOutlivesALogout()
    {
        Program program;
        program.signIn();
        QTimer::singleShot(0, &program.main(), [&program] { program.main().onLogoutClicked(); });
        QTimer check;
        // Nothing but this closes a window of the pilot's.
        connect(&check, &QTimer::timeout, &check, [&program] {
            if (program.application.loginWindow().isVisible())
                program.application.loginWindow().close();
        });
        check.start(0);
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(!program.application.mainWindow()); // the loop went on until the login window was back
    }
};

TARVO_TEST(ApplicationTest)
#include "ApplicationTest.moc"

#include "ui/MainWindow.h"
#include "AppConfig.h"
#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "ui/MainStage.h"
#include "ui/Sounds.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QPointer>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QScreen>
#include <QSignalSpy>
#include <qtestspontaneevent.h>

#include <functional>
#include <utility>

using namespace tarvo;
using test::click;
using test::headingFor;
using test::itemNamed;
using test::MainStage;
using ui::LinkState;

using Step = std::function<void(ui::MainWindow &)>;
Q_DECLARE_METATYPE(Step)

class MainWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void isMadeAsTold()
    {
        MainStage stage;
        QCOMPARE(stage.window.windowTitle(), u"TARVO Client - 控制面板"_qs);
        QCOMPARE(stage.window.minimumSize(), QSize(1000, 700));
        QCOMPARE(stage.window.currentMode(), u"NONE"_qs);
        QCOMPARE(stage.window.view()->status(), QQuickView::Ready);
        QCOMPARE(stage.window.view()->resizeMode(), QQuickView::SizeRootObjectToView);
    }

    void thePagesHaveTheirModels()
    {
        MainStage stage;
        const auto property = [&stage](const QString &name) {
            return stage.window.view()->rootContext()->contextProperty(name).value<QObject *>();
        };
        QCOMPARE(property(u"dashboardBackend"_qs), &stage.window.dashboard());
        QCOMPARE(property(u"simulatorBackend"_qs), &stage.window.simulator());
        QCOMPARE(property(u"serverBackend"_qs), &stage.window.server());
        QCOMPARE(property(u"messagesBackend"_qs), &stage.window.messages());
    }

    void theKeysReachThePagesWhenTheFrameIsFocused()
    {
        MainStage stage;
        stage.window.show();
        stage.window.activateWindow();
        TRY_COMPARE(QGuiApplication::focusWindow(), stage.window.view());
        const QSignalSpy focused(qGuiApp, &QGuiApplication::focusWindowChanged);
        stage.window.windowHandle()->requestActivate(); // as a window manager does at a click
        TRY_COMPARE(focused.size(), 2);
        QCOMPARE(focused.at(0).at(0).value<QWindow *>(), stage.window.windowHandle());
        QCOMPARE(focused.at(1).at(0).value<QWindow *>(), stage.window.view());
        QWindow other;
        other.show();
        other.requestActivate();
        TRY_COMPARE(focused.size(), 3);
        QCoreApplication::processEvents();
        QCOMPARE(QGuiApplication::focusWindow(), &other); // somebody else's is left alone
    }

    void theSessionReachesThePages()
    {
        MainStage stage;
        emit stage.network->serverMessageReceived(u"welcome"_qs);
        QCOMPARE(stage.window.messages().messages().size(), 1);
        emit stage.controllers->controllerAdded(
            {.callsign = u"ZBAA_TWR"_qs, .frequency = 118500, .normalisedFrequency = 118500});
        QCOMPARE(stage.window.messages().nearbyClients().size(), 1);
        emit stage.network->simulatorDataUpdated(headingFor(271));
        QCOMPARE(stage.window.simulator().heading(), 271.0);
        const QSignalSpy played(&stage.window.sounds(), &ui::SoundPlayer::played);
        TRY_COMPARE(played.size(), 1); // the message's
        QCOMPARE(stage.window.sounds().source(), test::messageSound);
    }

    void aWindowThatIsNotSeenIsNotRedrawn_data()
    {
        QTest::addColumn<Step>("leave");
        QTest::addColumn<Step>("comeBack");
        QTest::newRow("minimised") << Step([](ui::MainWindow &window) { window.showMinimized(); })
                                   << Step([](ui::MainWindow &window) { window.showNormal(); });
        QTest::newRow("minimised from full size")
            << Step([](ui::MainWindow &window) { window.setWindowState(Qt::WindowMaximized | Qt::WindowMinimized); })
            << Step([](ui::MainWindow &window) { window.setWindowState(Qt::WindowMaximized); });
        QTest::newRow("hidden") << Step([](ui::MainWindow &window) { window.hide(); })
                                << Step([](ui::MainWindow &window) { window.show(); });
    }
    void aWindowThatIsNotSeenIsNotRedrawn()
    {
        QFETCH(Step, leave);
        QFETCH(Step, comeBack);
        MainStage stage;
        stage.window.show();
        emit stage.network->simulatorDataUpdated(headingFor(1));
        leave(stage.window);
        emit stage.network->simulatorDataUpdated(headingFor(2));
        emit stage.network->simulatorDataUpdated(headingFor(3));
        QCOMPARE(stage.window.simulator().heading(), 1.0);
        QCOMPARE(stage.dashboard().heading(), 1.0);
        comeBack(stage.window);
        QCOMPARE(stage.window.simulator().heading(), 3.0);
        QCOMPARE(stage.dashboard().heading(), 3.0);
    }

    void thePagesAskForLogout()
    {
        MainStage stage;
        const QSignalSpy logout(&stage.window, &ui::MainWindow::logoutRequested);
        QMetaObject::invokeMethod(stage.window.view()->rootObject(), "logoutRequested");
        MainStage::answer();
        QCOMPARE(logout.size(), 1);
    }

    void firstShowSetsTheDefaultsARestoreDoesNot()
    {
        MainStage stage;
        stage.window.show();
        QCOMPARE(stage.dashboard().username(), u"未知用户"_qs);
        stage.dashboard().setServerState(true, LinkState::Connected);
        QShowEvent restored;
        QSpontaneKeyEvent::setSpontaneous(&restored);
        qApp->notify(&stage.window, &restored); // sendEvent() would make it an own event
        QCOMPARE(stage.dashboard().serverStatusText(), u"已连接"_qs);
    }

    void picksAMode_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("kept");
        QTest::addColumn<int>("activations");
        QTest::addColumn<QString>("simulatorStatus");
        QTest::newRow("X-Plane") << u"XPLANE"_qs << u"XPLANE"_qs << 1 << u"连接中..."_qs;
        QTest::newRow("MSFS") << u"MSFS"_qs << u"MSFS"_qs << 1 << u"连接中..."_qs;
        QTest::newRow("none") << u"NONE"_qs << u"NONE"_qs << 0 << u"未连接"_qs;
        QTest::newRow("unknown text") << u"GLIDER"_qs << u"NONE"_qs << 0 << u"未连接"_qs;
    }
    void picksAMode()
    {
        QFETCH(QString, mode);
        QFETCH(int, activations);
        MainStage stage;
        const QSignalSpy picked(&stage.window,
                                mode == u"MSFS"_qs ? &ui::MainWindow::msfsSelected : &ui::MainWindow::xplaneSelected);
        stage.dashboard().requestModeChange(mode);
        MainStage::answer();
        QTEST(stage.window.currentMode(), "kept");
        QTEST(stage.dashboard().currentMode(), "kept");
        QTEST(stage.window.simulator().currentMode(), "kept");
        QTEST(stage.server().currentMode(), "kept");
        QCOMPARE(picked.size(), activations);
        QTEST(stage.dashboard().simulatorStatusText(), "simulatorStatus");
        QTEST(stage.window.simulator().simulatorStatusText(), "simulatorStatus");
        QCOMPARE(stage.server().serverStatusText(), u"未连接"_qs); // never blocks the connect button
    }

    void aSimulatorThatNobodyCanGiveIsNotWaitedFor()
    {
        MainStage stage;
        connect(&stage.window, &ui::MainWindow::msfsSelected, this, [&] { stage.window.onModeSelected(u"NONE"_qs); });
        stage.window.onModeSelected(u"MSFS"_qs);
        QCOMPARE(stage.window.currentMode(), u"NONE"_qs);
        QCOMPARE(stage.dashboard().simulatorStatusText(), u"未连接"_qs);
    }

    void thePagesGoBeforeWhatTheyShow()
    {
        MainStage stage;
        auto window = std::make_unique<ui::MainWindow>(stage.network, nullptr, stage.config, stage.api, stage.icao,
                                                       stage.endpoints);
        const QPointer<ui::DashboardViewModel> dashboard(&window->dashboard());
        const QPointer<ui::ServerPageViewModel> server(&window->server());
        int seen = 0;
        const auto look = [&] { seen += dashboard && server ? 1 : 0; };
        connect(window->view(), &QObject::destroyed, this, look);
        connect(window->view()->rootObject(), &QObject::destroyed, this, look);
        window.reset();
        QCOMPARE(seen, 2);
    }

    void theFocusThatWandersWhileItGoesIsNotItsAffair()
    {
        MainStage stage;
        auto window = std::make_unique<ui::MainWindow>(stage.network, nullptr, stage.config, stage.api, stage.icao,
                                                       stage.endpoints);
        window->winId();
        QWindow *frame = window->windowHandle();
        QVERIFY(frame);
        int wandered = 0;
        const auto wander = [&] {
            ++wandered;
            emit qGuiApp->focusWindowChanged(frame);
        };
        connect(window->view(), &QObject::destroyed, this, wander);
        connect(new QObject(window.get()), &QObject::destroyed, this, wander); // goes behind all that the window holds
        window.reset();
        QCOMPARE(wandered, 2);
    }

    void closingIsAskedForWhileConnected()
    {
        MainStage stage;
        stage.window.show();
        stage.observe(u"CES2352"_qs);
        emit stage.network->networkConnected(u"CES2352"_qs);
        closeByTheFrame(stage.window);
        QVERIFY(stage.window.isVisible());
        QVERIFY(stage.window.leaveQuestion().isOpen());
        stage.window.leaveQuestion().accept(false);
        MainStage::answer();
        QVERIFY(!stage.window.isVisible());
    }

    void closingIsNotAskedForWithoutAConnection()
    {
        MainStage stage;
        stage.window.show();
        closeByTheFrame(stage.window);
        QVERIFY(!stage.window.isVisible());
    }

    void theProgramClosesItsWindowUnasked()
    {
        MainStage stage;
        stage.window.show();
        emit stage.network->networkConnected(u"CES2352"_qs);
        stage.window.close();
        QVERIFY(!stage.window.isVisible());
    }

    void withoutASessionNothingHappens()
    {
        MainStage stage;
        ui::MainWindow window(nullptr, nullptr, stage.config, stage.api, stage.icao);
        const QSignalSpy xplane(&window, &ui::MainWindow::xplaneSelected);
        window.onModeSelected(u"XPLANE"_qs);
        emit window.server().connectRequested(u"CES2352"_qs, u"B738"_qs, QString(), true);
        emit window.server().disconnectRequested();
        MainStage::answer();
        QCOMPARE(window.currentMode(), u"NONE"_qs);
        QCOMPARE(xplane.size(), 0);
        QCOMPARE(window.server().serverStatusText(), u"未连接"_qs);
    }

    void connects()
    {
        MainStage stage;
        stage.observe(u"CES2352"_qs);
        QCOMPARE(stage.server().serverStatusText(), u"连接中..."_qs);
        QCOMPARE(stage.dashboard().serverStatusText(), u"连接中..."_qs);
        const QString line =
            u"正在连接 FSD 127.0.0.1:%1，呼号=CES2352，机型=B738，观察员模式=是"_qs.arg(stage.fsd.serverPort());
        QVERIFY2(stage.server().serverLog().contains(line), qPrintable(stage.server().serverLog()));
        QVERIFY(stage.dashboard().serverLog().contains(line));
        TRY_VERIFY(stage.fsd.hasPendingConnections());
        QVERIFY(stage.fsd.nextPendingConnection());
        QVERIFY(!stage.fsd.hasPendingConnections()); // one request, one connection
    }

    void theDashboardConnectsTheSameWay()
    {
        MainStage stage;
        stage.dashboard().requestServerConnect(u"CES2352"_qs, QString(), QString(), true);
        QCOMPARE(stage.server().serverStatusText(), u"连接中..."_qs);
        MainStage::answer();
        stage.dashboard().requestServerDisconnect();
        MainStage::answer();
        QCOMPARE(stage.server().serverStatusText(), u"已断开"_qs);
    }

    void aRefusalChangesNothingButTheEvents()
    {
        MainStage stage;
        emit stage.server().connectRequested(u"CES2352"_qs, u"B738"_qs, QString(), false); // no simulator
        QCOMPARE(stage.server().serverStatusText(), u"连接中..."_qs);                      // from the click on
        MainStage::answer();
        QCOMPARE(stage.server().serverStatusText(), u"未连接"_qs);
        QCOMPARE(stage.dashboard().serverStatusText(), u"未连接"_qs);
        QCOMPARE(stage.server().serverLog(), QString());
        QCOMPARE(stage.event(), u"通知|飞行员模式连接 FSD 前，请先连接模拟器并等待有效的飞机数据。|系统"_qs);
    }

    void aSecondRequestDisturbsNoConnection()
    {
        MainStage stage;
        stage.observe(u"CES2352"_qs);
        stage.observe(u"CES2353"_qs);
        QCOMPARE(stage.server().serverStatusText(), u"连接中..."_qs);
        emit stage.network->networkConnected(u"CES2352"_qs);
        stage.observe(u"CES2353"_qs);
        QCOMPARE(stage.server().serverStatusText(), u"已连接"_qs);
        QVERIFY(stage.server().serverConnected());
    }

    void twoRequestsInOneTurnAreRefusedTogether()
    {
        MainStage stage;
        emit stage.server().connectRequested(u"CES2352"_qs, u"B738"_qs, QString(), false); // no simulator
        stage.dashboard().requestServerConnect(u"CES2352"_qs, u"B738"_qs, QString(), false);
        MainStage::answer();
        QCOMPARE(stage.server().serverStatusText(), u"未连接"_qs);
    }

    void thePageMayGoWhileTheServersNameIsLookedUp()
    {
        MainStage stage;
        stage.endpoints.fsdHost = u"no-such-host.invalid"_qs; // looked up in an event loop on top of the request
        const auto network =
            std::make_shared<manager::NetworkManager>(stage.config, stage.api, stage.icao, stage.endpoints);
        ui::MainWindow window(network, nullptr, stage.config, stage.api, stage.icao, stage.endpoints);
        window.resize(1280, 800);
        window.show();
        window.onModeSelected(u"XPLANE"_qs);
        window.server().setCallsign(u"CES2352"_qs);
        window.server().setObserverMode(true);
        click(window, u"section-server"_qs);
        const QPointer<QQuickItem> button(itemNamed(window, u"connectButton"_qs));
        QVERIFY(button);
        bool resolving = false;
        bool left = false;
        QString status;
        connect(network.get(), &manager::NetworkManager::notificationPosted, this, [&] {
            const auto leave = [&] {
                resolving = network->isResolving();
                status = window.server().serverStatusText();
                click(window, u"section-simulator"_qs);
                connect(button.data(), &QObject::destroyed, network.get(),
                        &manager::NetworkManager::disconnectFromNetwork);
            };
            if (!std::exchange(left, true))
                QMetaObject::invokeMethod(this, leave, Qt::QueuedConnection);
        });
        click(window, u"connectButton"_qs);
        TRY_VERIFY(!button); // without an end to the program
        QVERIFY(resolving);
        QCOMPARE(status, u"连接中..."_qs);
        TRY_VERIFY(!network->isResolving());
    }

    void aConnectionThatFailsAtOnceLeavesTheFormFree()
    {
        MainStage stage;
        stage.endpoints.fsdHost = u"255.255.255.255"_qs; // no route: the error comes inside the call
        const auto network =
            std::make_shared<manager::NetworkManager>(stage.config, stage.api, stage.icao, stage.endpoints);
        ui::MainWindow window(network, nullptr, stage.config, stage.api, stage.icao, stage.endpoints);
        window.server().setCallsign(u"CES2352"_qs);
        window.server().setObserverMode(true);
        window.server().requestConnect();
        MainStage::answer();
        QCOMPARE(window.server().serverStatusText(), u"已断开"_qs);
        QCOMPARE(window.dashboard().serverStatusText(), u"已断开"_qs);
        QVERIFY(window.server().canConnect());
    }

    void disconnects()
    {
        MainStage stage;
        stage.observe(u"CES2352"_qs);
        TRY_VERIFY(stage.fsd.hasPendingConnections());
        const QSignalSpy states(&stage.server(), &ui::ServerPageViewModel::serverStateChanged);
        emit stage.server().disconnectRequested();
        MainStage::answer();
        QCOMPARE(states.size(), 2); // leaving, left
        QCOMPARE(stage.server().serverStatusText(), u"已断开"_qs);
        QVERIFY(stage.server().serverLog().contains(u"正在断开 FSD 连接..."_qs));
        QVERIFY(stage.dashboard().serverLog().contains(u"FSD 已断开：CES2352"_qs));
    }

    void aDisconnectWithoutAConnectionDoesNotBlockTheForm()
    {
        MainStage stage;
        emit stage.server().disconnectRequested();
        MainStage::answer();
        QCOMPARE(stage.server().serverStatusText(), u"未连接"_qs);
    }

    void showsTheConnection()
    {
        MainStage stage;
        emit stage.network->networkConnected(u"CES2352"_qs);
        QVERIFY(stage.server().serverConnected() && stage.dashboard().serverConnected());
        QCOMPARE(stage.server().serverStatusText(), u"已连接"_qs);
        QCOMPARE(stage.server().endpoint(), u"127.0.0.1:%1"_qs.arg(stage.fsd.serverPort()));
        QVERIFY(stage.server().serverLog().contains(u"FSD 已连接：CES2352"_qs));
        QCOMPARE(stage.event(), u"网络已连接|网络已连接，当前呼号：CES2352|网络"_qs);
        QCOMPARE(stage.window.sounds().source(), test::connectSound);
        QCOMPARE(stage.window.sounds().volume(), 0.55F);
    }

    void showsTheDisconnection_data()
    {
        QTest::addColumn<bool>("forced");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("event");
        QTest::newRow("wanted") << false << u"已断开"_qs << u"网络已断开|网络连接已断开：CES2352|网络"_qs;
        QTest::newRow("forced") << true << u"已断开（强制）"_qs << u"网络已断开|网络连接已断开：CES2352|强制"_qs;
    }
    void showsTheDisconnection()
    {
        QFETCH(bool, forced);
        MainStage stage;
        stage.observe(u"ces2352"_qs);
        emit stage.network->networkConnected(u"CES2352"_qs);
        QVERIFY(stage.server().connectedAsObserver());
        emit stage.network->networkDisconnected(forced);
        QTEST(stage.server().serverStatusText(), "status");
        QTEST(stage.dashboard().serverStatusText(), "status");
        QTEST(stage.event(), "event");
        QVERIFY(!stage.server().serverConnected() && !stage.server().connectedAsObserver());
        QCOMPARE(stage.server().endpoint(), QString());
        QVERIFY(stage.server().serverLog().contains(u"FSD 已断开：CES2352"_qs));
        QCOMPARE(stage.window.sounds().source(), test::disconnectSound);
    }

    void showsTheSimulator()
    {
        MainStage stage;
        emit stage.network->simulatorConnectionStateChanged(true);
        QVERIFY(stage.dashboard().simulatorConnected());
        QCOMPARE(stage.dashboard().simulatorStatusText(), u"已连接"_qs);
        QVERIFY(stage.window.simulator().simulatorConnected());
        QCOMPARE(stage.window.simulator().simulatorStatusText(), u"已连接"_qs);
        emit stage.network->simulatorConnectionStateChanged(false);
        QCOMPARE(stage.dashboard().simulatorStatusText(), u"未连接"_qs);
        QVERIFY(!stage.window.simulator().simulatorConnected());
        QCOMPARE(stage.window.simulator().simulatorStatusText(), u"未连接"_qs);
        emit stage.network->simulatorConnectionFailed(u"插件没有应答"_qs);
        QCOMPARE(stage.event(), u"模拟器连接失败|插件没有应答|模拟器"_qs);
        QVERIFY(!stage.dashboard().simulatorConnected());
        QCOMPARE(stage.dashboard().simulatorStatusText(), u"连接失败"_qs);
        QCOMPARE(stage.window.simulator().simulatorFailureText(), u"插件没有应答"_qs);
    }

    void aFailureLeavesASimulatorWhoseDataFlow()
    {
        MainStage stage;
        stage.window.onModeSelected(u"XPLANE"_qs);
        emit stage.network->simulatorConnectionStateChanged(true);
        emit stage.network->simulatorDataUpdated(headingFor(271));
        emit stage.network->simulatorConnectionFailed(u"插件没有应答"_qs);
        QVERIFY(stage.dashboard().simulatorConnected());
        QCOMPARE(stage.dashboard().simulatorStatusText(), u"已连接"_qs);
        QVERIFY(stage.window.simulator().simulatorConnected());
        QCOMPARE(stage.window.simulator().heading(), 271.0);
        QCOMPARE(stage.window.simulator().simulatorFailureText(), u"插件没有应答"_qs);
        QCOMPARE(stage.event(), u"模拟器连接失败|插件没有应答|模拟器"_qs);
    }

    void aFailureIsHealedByDataThatCome()
    {
        MainStage stage;
        emit stage.network->simulatorConnectionFailed(u"插件没有应答"_qs);
        emit stage.network->simulatorConnectionStateChanged(true);
        QCOMPARE(stage.window.simulator().simulatorStatusText(), u"已连接"_qs);
        QCOMPARE(stage.window.simulator().simulatorFailureText(), u"插件没有应答"_qs); // still no plugin
    }

    void theReasonOfAFailureGoes_data()
    {
        QTest::addColumn<Step>("step");
        QTest::newRow("another pick") << Step([](ui::MainWindow &window) { window.onModeSelected(u"XPLANE"_qs); });
        QTest::newRow("another attempt") << Step([](ui::MainWindow &window) { window.simulator().requestReconnect(); });
        QTest::newRow("a plugin that fits")
            << Step([](ui::MainWindow &window) { window.simulator().setPluginValid(true); });
    }
    void theReasonOfAFailureGoes()
    {
        QFETCH(Step, step);
        MainStage stage;
        emit stage.network->simulatorConnectionFailed(u"插件没有应答"_qs);
        step(stage.window);
        QCOMPARE(stage.window.simulator().simulatorFailureText(), QString());
    }

    void showsTheFlight()
    {
        MainStage stage;
        manager::SimulatorData data;
        data.aircraft.latitude = 40.07;
        data.aircraft.longitude = 116.6;
        data.aircraft.altitudeMslM = 1000;
        data.aircraft.heading = 359;
        data.aircraft.groundSpeed = 250;
        emit stage.network->simulatorDataUpdated(data);
        QCOMPARE(stage.dashboard().latitude(), 40.07);
        QCOMPARE(stage.dashboard().longitude(), 116.6);
        QCOMPARE(stage.dashboard().altitude(), 3280.84);
        QCOMPARE(stage.dashboard().heading(), 359.0);
        QCOMPARE(stage.dashboard().groundSpeed(), 250.0);
    }

    void followsTheProfile()
    {
        MainStage stage;
        QCOMPARE(stage.server().protocolLabel(), u"VATSIM 协议"_qs);
        QCOMPARE(stage.server().homeAirport(), u"ZBAA"_qs);
        stage.config.set(config::authVatsim, false);
        stage.config.set(config::profileRealname, u"王小明"_qs);
        QCOMPARE(stage.server().protocolLabel(), u"经典协议"_qs);
        QCOMPARE(stage.server().realName(), u"王小明"_qs);
    }

    void theProfileIsWhatTheNetworkWillSee()
    {
        MainStage stage;
        QCOMPARE(stage.server().realName(), u"Unknown"_qs);
        stage.config.set(config::profileHomeAirport, u" zspd "_qs);
        QCOMPARE(stage.server().homeAirport(), u"ZSPD"_qs);
        stage.config.set(config::profileHomeAirport, u"zzzz"_qs);
        QCOMPARE(stage.server().homeAirport(), u"ZBAA"_qs);
        stage.config.set(config::authUsername, u"1001"_qs);
        QCOMPARE(stage.server().realName(), u"1001"_qs);
        stage.config.set(config::sessionUsername, u"1002"_qs); // typed for this session
        QCOMPARE(stage.server().realName(), u"1002"_qs);
        stage.config.set(config::profileRealname, u"uNKNOWN"_qs);
        QCOMPARE(stage.server().realName(), u"1002"_qs);
    }

    void theAccountsNameArrivesWithItsData()
    {
        MainStage stage;
        stage.signIn();
        const QString account = stage.api.currentUser().username;
        QVERIFY(!account.isEmpty());
        stage.window.show();
        QCOMPARE(stage.server().realName(), account);
    }

    void aSignInRefreshesTheProfile()
    {
        MainStage stage;
        stage.window.show();
        QCOMPARE(stage.server().realName(), u"Unknown"_qs);
        stage.signIn();
        QCOMPARE(stage.server().realName(), stage.api.currentUser().username);
    }

private:
    static void closeByTheFrame(ui::MainWindow &window)
    {
        QCloseEvent event;
        QSpontaneKeyEvent::setSpontaneous(&event);
        if (qApp->notify(&window, &event) && event.isAccepted())
            window.hide(); // as Qt does next
    }
};

TARVO_TEST(MainWindowTest)
#include "MainWindowTest.moc"

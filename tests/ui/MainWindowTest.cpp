#include "ui/MainWindow.h"

#include "AppConfig.h"
#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/TestRegistry.h"
#include "ui/AccountPeer.h"

#include <QApplication>
#include <QPointer>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <qtestspontaneevent.h>

#include <functional>
#include <utility>

using namespace tarvo;

namespace {

/// A main window over a session of its own; the FSD server at its far end only listens.
struct Deck
{
    QTemporaryDir folder;
    AppConfig config{folder.path()};
    test::AccountPeer peer;
    QTcpServer fsd;
    ServiceEndpoints endpoints = endpointsOf(peer, fsd);
    network::ApiService api{config, endpoints};
    network::SwiftAircraftIcaoService icao{config};
    std::shared_ptr<manager::NetworkManager> network =
        std::make_shared<manager::NetworkManager>(config, api, icao, endpoints);
    std::shared_ptr<manager::ControllerManager> controllers = std::make_shared<manager::ControllerManager>(network);
    ui::MainWindow window{network, controllers, config, api, icao, endpoints};

    static ServiceEndpoints endpointsOf(const test::AccountPeer &peer, QTcpServer &server)
    {
        server.listen(QHostAddress::LocalHost);
        ServiceEndpoints endpoints = peer.endpoints();
        endpoints.fsdHost = u"127.0.0.1"_qs;
        endpoints.fsdPort = server.serverPort();
        return endpoints;
    }
    ui::ServerPageViewModel &server() { return window.server(); }
    ui::DashboardViewModel &dashboard() { return window.dashboard(); }
    /// The newest event row as "title|detail|tag".
    QString event()
    {
        const QVariantMap row = server().recentEvents().value(0).toMap();
        return QStringList{row[u"title"_qs].toString(), row[u"detail"_qs].toString(), row[u"tag"_qs].toString()}.join(
            u'|');
    }
    /// An observer's request, which needs no simulator.
    void observe(const QString &callsign)
    {
        emit server().connectRequested(callsign, u"B738"_qs, u"AB-CD"_qs, true);
        answer();
    }
    /// Lets what the pages have asked for happen.
    static void answer() { QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall); }
};

/// The visible item with this object name, `from` included; null when there is none.
QQuickItem *itemNamed(QQuickItem *from, const QString &name)
{
    if (from->objectName() == name && from->isVisible())
        return from;
    for (QQuickItem *child : from->childItems()) {
        if (QQuickItem *found = itemNamed(child, name))
            return found;
    }
    return nullptr;
}
QQuickItem *itemNamed(const ui::MainWindow &window, const QString &name)
{
    return itemNamed(window.view()->contentItem(), name);
}

void click(const ui::MainWindow &window, const QString &name)
{
    QTRY_VERIFY(itemNamed(window, name));
    const QQuickItem *item = itemNamed(window, name);
    QTest::mouseClick(window.view(), Qt::LeftButton, {},
                      item->mapToScene({item->width() / 2, item->height() / 2}).toPoint());
}

/// A sample of a connected simulator.
manager::SimulatorData headingFor(double degrees)
{
    manager::SimulatorData sample;
    sample.simConnected = true;
    sample.aircraft.heading = degrees;
    return sample;
}

} // namespace

using Step = std::function<void(ui::MainWindow &)>;
Q_DECLARE_METATYPE(Step)

class MainWindowTest : public QObject
{
    Q_OBJECT

private slots:
    void isMadeAsTold()
    {
        Deck deck;
        QCOMPARE(deck.window.windowTitle(), u"TARVO Client - 控制面板"_qs);
        QCOMPARE(deck.window.minimumSize(), QSize(1000, 700));
        QCOMPARE(deck.window.currentMode(), u"NONE"_qs);
        QCOMPARE(deck.window.view()->status(), QQuickView::Ready);
        QCOMPARE(deck.window.view()->resizeMode(), QQuickView::SizeRootObjectToView);
    }

    void thePagesHaveTheirModels()
    {
        Deck deck;
        const auto property = [&deck](const QString &name) {
            return deck.window.view()->rootContext()->contextProperty(name).value<QObject *>();
        };
        QCOMPARE(property(u"dashboardBackend"_qs), &deck.window.dashboard());
        QCOMPARE(property(u"simulatorBackend"_qs), &deck.window.simulator());
        QCOMPARE(property(u"serverBackend"_qs), &deck.window.server());
        QCOMPARE(property(u"messagesBackend"_qs), &deck.window.messages());
    }

    void theKeysReachThePagesWhenTheFrameIsFocused()
    {
        Deck deck;
        deck.window.show();
        deck.window.activateWindow();
        QTRY_COMPARE(QGuiApplication::focusWindow(), deck.window.view());
        const QSignalSpy focused(qGuiApp, &QGuiApplication::focusWindowChanged);
        deck.window.windowHandle()->requestActivate(); // as a window manager does at a click
        QTRY_COMPARE(focused.size(), 2);
        QCOMPARE(focused.at(0).at(0).value<QWindow *>(), deck.window.windowHandle());
        QCOMPARE(focused.at(1).at(0).value<QWindow *>(), deck.window.view());
    }

    void theSessionReachesThePages()
    {
        Deck deck;
        emit deck.network->serverMessageReceived(u"welcome"_qs);
        QCOMPARE(deck.window.messages().messages().size(), 1);
        emit deck.controllers->controllerAdded(
            {.callsign = u"ZBAA_TWR"_qs, .frequency = 118500, .normalisedFrequency = 118500});
        QCOMPARE(deck.window.messages().nearbyClients().size(), 1);
        emit deck.network->simulatorDataUpdated(headingFor(271));
        QCOMPARE(deck.window.simulator().heading(), 271.0);
        const QSignalSpy played(&deck.window.sounds(), &ui::SoundPlayer::played);
        QTRY_COMPARE(played.size(), 1); // the message's
        QCOMPARE(deck.window.sounds().source(), QUrl(u"qrc:/resources/sounds/manager.mp3"_qs));
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
        Deck deck;
        deck.window.show();
        emit deck.network->simulatorDataUpdated(headingFor(1));
        leave(deck.window);
        emit deck.network->simulatorDataUpdated(headingFor(2));
        emit deck.network->simulatorDataUpdated(headingFor(3));
        QCOMPARE(deck.window.simulator().heading(), 1.0);
        QCOMPARE(deck.dashboard().heading(), 1.0);
        comeBack(deck.window);
        QCOMPARE(deck.window.simulator().heading(), 3.0);
        QCOMPARE(deck.dashboard().heading(), 3.0);
    }

    void thePagesAskForLogout()
    {
        Deck deck;
        const QSignalSpy logout(&deck.window, &ui::MainWindow::logoutRequested);
        QMetaObject::invokeMethod(deck.window.view()->rootObject(), "logoutRequested");
        Deck::answer();
        QCOMPARE(logout.size(), 1);
    }

    void firstShowSetsTheDefaultsARestoreDoesNot()
    {
        Deck deck;
        deck.window.show();
        QCOMPARE(deck.dashboard().username(), u"未知用户"_qs);
        deck.dashboard().setServerState(true, u"已连接"_qs);
        QShowEvent restored;
        QSpontaneKeyEvent::setSpontaneous(&restored);
        qApp->notify(&deck.window, &restored); // sendEvent() would make it an own event
        QCOMPARE(deck.dashboard().serverStatusText(), u"已连接"_qs);
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
        Deck deck;
        const QSignalSpy picked(&deck.window,
                                mode == u"MSFS"_qs ? &ui::MainWindow::msfsSelected : &ui::MainWindow::xplaneSelected);
        deck.dashboard().requestModeChange(mode);
        Deck::answer();
        QTEST(deck.window.currentMode(), "kept");
        QTEST(deck.dashboard().currentMode(), "kept");
        QTEST(deck.window.simulator().currentMode(), "kept");
        QTEST(deck.server().currentMode(), "kept");
        QCOMPARE(picked.size(), activations);
        QTEST(deck.dashboard().simulatorStatusText(), "simulatorStatus");
        QTEST(deck.window.simulator().simulatorStatusText(), "simulatorStatus");
        QCOMPARE(deck.server().serverStatusText(), u"未连接"_qs); // never blocks the connect button
    }

    void thePagesGoBeforeWhatTheyShow()
    {
        Deck deck;
        auto window =
            std::make_unique<ui::MainWindow>(deck.network, nullptr, deck.config, deck.api, deck.icao, deck.endpoints);
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
        Deck deck;
        auto window =
            std::make_unique<ui::MainWindow>(deck.network, nullptr, deck.config, deck.api, deck.icao, deck.endpoints);
        int wandered = 0;
        const auto wander = [&] {
            ++wandered;
            emit qGuiApp->focusWindowChanged(nullptr);
        };
        connect(window->view(), &QObject::destroyed, this, wander);
        connect(new QObject(window.get()), &QObject::destroyed, this, wander); // goes behind all that the window holds
        window.reset();
        QCOMPARE(wandered, 2);
    }

    void withoutASessionNothingHappens()
    {
        Deck deck;
        ui::MainWindow window(nullptr, nullptr, deck.config, deck.api, deck.icao);
        const QSignalSpy xplane(&window, &ui::MainWindow::xplaneSelected);
        window.onModeSelected(u"XPLANE"_qs);
        emit window.server().connectRequested(u"CES2352"_qs, u"B738"_qs, QString(), true);
        emit window.server().disconnectRequested();
        Deck::answer();
        QCOMPARE(window.currentMode(), u"NONE"_qs);
        QCOMPARE(xplane.size(), 0);
        QCOMPARE(window.server().serverStatusText(), u"未连接"_qs);
    }

    void connects()
    {
        Deck deck;
        deck.observe(u"CES2352"_qs);
        QCOMPARE(deck.server().serverStatusText(), u"连接中..."_qs);
        QCOMPARE(deck.dashboard().serverStatusText(), u"连接中..."_qs);
        const QString line =
            u"正在连接 FSD 127.0.0.1:%1，呼号=CES2352，机型=B738，观察员模式=是"_qs.arg(deck.fsd.serverPort());
        QVERIFY2(deck.server().serverLog().contains(line), qPrintable(deck.server().serverLog()));
        QVERIFY(deck.dashboard().serverLog().contains(line));
        QTRY_VERIFY(deck.fsd.hasPendingConnections());
        QVERIFY(deck.fsd.nextPendingConnection());
        QVERIFY(!deck.fsd.hasPendingConnections()); // one request, one connection
    }

    void theDashboardConnectsTheSameWay()
    {
        Deck deck;
        deck.dashboard().requestServerConnect(u"CES2352"_qs, QString(), QString(), true);
        QCOMPARE(deck.server().serverStatusText(), u"连接中..."_qs);
        Deck::answer();
        deck.dashboard().requestServerDisconnect();
        Deck::answer();
        QCOMPARE(deck.server().serverStatusText(), u"已断开"_qs);
    }

    void aRefusalChangesNothingButTheEvents()
    {
        Deck deck;
        emit deck.server().connectRequested(u"CES2352"_qs, u"B738"_qs, QString(), false); // no simulator
        QCOMPARE(deck.server().serverStatusText(), u"连接中..."_qs);                      // from the click on
        Deck::answer();
        QCOMPARE(deck.server().serverStatusText(), u"未连接"_qs);
        QCOMPARE(deck.dashboard().serverStatusText(), u"未连接"_qs);
        QCOMPARE(deck.server().serverLog(), QString());
        QCOMPARE(deck.event(), u"通知|飞行员模式连接 FSD 前，请先连接模拟器并等待有效的飞机数据。|系统"_qs);
    }

    void aSecondRequestDisturbsNoConnection()
    {
        Deck deck;
        deck.observe(u"CES2352"_qs);
        deck.observe(u"CES2353"_qs);
        QCOMPARE(deck.server().serverStatusText(), u"连接中..."_qs);
        emit deck.network->networkConnected(u"CES2352"_qs);
        deck.observe(u"CES2353"_qs);
        QCOMPARE(deck.server().serverStatusText(), u"已连接"_qs);
        QVERIFY(deck.server().serverConnected());
    }

    void twoRequestsInOneTurnAreRefusedTogether()
    {
        Deck deck;
        emit deck.server().connectRequested(u"CES2352"_qs, u"B738"_qs, QString(), false); // no simulator
        deck.dashboard().requestServerConnect(u"CES2352"_qs, u"B738"_qs, QString(), false);
        Deck::answer();
        QCOMPARE(deck.server().serverStatusText(), u"未连接"_qs);
    }

    void thePageMayGoWhileTheServersNameIsLookedUp()
    {
        Deck deck;
        deck.endpoints.fsdHost = u"no-such-host.invalid"_qs; // looked up in an event loop on top of the request
        const auto network =
            std::make_shared<manager::NetworkManager>(deck.config, deck.api, deck.icao, deck.endpoints);
        ui::MainWindow window(network, nullptr, deck.config, deck.api, deck.icao, deck.endpoints);
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
        QTRY_VERIFY(!button); // without an end to the program
        QVERIFY(resolving);
        QCOMPARE(status, u"连接中..."_qs);
        QTRY_VERIFY(!network->isResolving());
    }

    void aConnectionThatFailsAtOnceLeavesTheFormFree()
    {
        Deck deck;
        deck.endpoints.fsdHost = u"255.255.255.255"_qs; // no route: the error comes inside the call
        const auto network =
            std::make_shared<manager::NetworkManager>(deck.config, deck.api, deck.icao, deck.endpoints);
        ui::MainWindow window(network, nullptr, deck.config, deck.api, deck.icao, deck.endpoints);
        window.server().setCallsign(u"CES2352"_qs);
        window.server().setObserverMode(true);
        window.server().requestConnect();
        Deck::answer();
        QCOMPARE(window.server().serverStatusText(), u"已断开"_qs);
        QCOMPARE(window.dashboard().serverStatusText(), u"已断开"_qs);
        QVERIFY(window.server().canConnect());
    }

    void disconnects()
    {
        Deck deck;
        deck.observe(u"CES2352"_qs);
        QTRY_VERIFY(deck.fsd.hasPendingConnections());
        const QSignalSpy states(&deck.server(), &ui::ServerPageViewModel::serverStateChanged);
        emit deck.server().disconnectRequested();
        Deck::answer();
        QCOMPARE(states.size(), 2); // leaving, left
        QCOMPARE(deck.server().serverStatusText(), u"已断开"_qs);
        QVERIFY(deck.server().serverLog().contains(u"正在断开 FSD 连接..."_qs));
        QVERIFY(deck.dashboard().serverLog().contains(u"FSD 已断开：CES2352"_qs));
    }

    void aDisconnectWithoutAConnectionDoesNotBlockTheForm()
    {
        Deck deck;
        emit deck.server().disconnectRequested();
        Deck::answer();
        QCOMPARE(deck.server().serverStatusText(), u"未连接"_qs);
    }

    void showsTheConnection()
    {
        Deck deck;
        emit deck.network->networkConnected(u"CES2352"_qs);
        QVERIFY(deck.server().serverConnected() && deck.dashboard().serverConnected());
        QCOMPARE(deck.server().serverStatusText(), u"已连接"_qs);
        QCOMPARE(deck.server().endpoint(), u"127.0.0.1:%1"_qs.arg(deck.fsd.serverPort()));
        QVERIFY(deck.server().serverLog().contains(u"FSD 已连接：CES2352"_qs));
        QCOMPARE(deck.event(), u"网络已连接|网络已连接，当前呼号：CES2352|网络"_qs);
        QCOMPARE(deck.window.sounds().source(), QUrl(u"qrc:/resources/sounds/connect.mp3"_qs));
        QCOMPARE(deck.window.sounds().volume(), 0.55F);
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
        Deck deck;
        deck.observe(u"ces2352"_qs);
        emit deck.network->networkConnected(u"CES2352"_qs);
        QVERIFY(deck.server().connectedAsObserver());
        emit deck.network->networkDisconnected(forced);
        QTEST(deck.server().serverStatusText(), "status");
        QTEST(deck.dashboard().serverStatusText(), "status");
        QTEST(deck.event(), "event");
        QVERIFY(!deck.server().serverConnected() && !deck.server().connectedAsObserver());
        QCOMPARE(deck.server().endpoint(), QString());
        QVERIFY(deck.server().serverLog().contains(u"FSD 已断开：CES2352"_qs));
        QCOMPARE(deck.window.sounds().source(), QUrl(u"qrc:/resources/sounds/disconnect.mp3"_qs));
    }

    void showsTheSimulator()
    {
        Deck deck;
        emit deck.network->simulatorConnectionStateChanged(true);
        QVERIFY(deck.dashboard().simulatorConnected());
        QCOMPARE(deck.dashboard().simulatorStatusText(), u"已连接"_qs);
        QVERIFY(deck.window.simulator().simulatorConnected());
        QCOMPARE(deck.window.simulator().simulatorStatusText(), u"已连接"_qs);
        emit deck.network->simulatorConnectionStateChanged(false);
        QCOMPARE(deck.dashboard().simulatorStatusText(), u"未连接"_qs);
        QVERIFY(!deck.window.simulator().simulatorConnected());
        QCOMPARE(deck.window.simulator().simulatorStatusText(), u"未连接"_qs);
        emit deck.network->simulatorConnectionFailed(u"插件没有应答"_qs);
        QCOMPARE(deck.event(), u"模拟器连接失败|插件没有应答|模拟器"_qs);
        QVERIFY(!deck.dashboard().simulatorConnected());
        QCOMPARE(deck.dashboard().simulatorStatusText(), u"连接失败"_qs);
        QCOMPARE(deck.window.simulator().simulatorFailureText(), u"插件没有应答"_qs);
    }

    void aFailureLeavesASimulatorWhoseDataFlow()
    {
        Deck deck;
        deck.window.onModeSelected(u"XPLANE"_qs);
        emit deck.network->simulatorConnectionStateChanged(true);
        emit deck.network->simulatorDataUpdated(headingFor(271));
        emit deck.network->simulatorConnectionFailed(u"插件没有应答"_qs);
        QVERIFY(deck.dashboard().simulatorConnected());
        QCOMPARE(deck.dashboard().simulatorStatusText(), u"已连接"_qs);
        QVERIFY(deck.window.simulator().simulatorConnected());
        QCOMPARE(deck.window.simulator().heading(), 271.0);
        QCOMPARE(deck.window.simulator().simulatorFailureText(), u"插件没有应答"_qs);
        QCOMPARE(deck.event(), u"模拟器连接失败|插件没有应答|模拟器"_qs);
    }

    void aFailureIsHealedByDataThatCome()
    {
        Deck deck;
        emit deck.network->simulatorConnectionFailed(u"插件没有应答"_qs);
        emit deck.network->simulatorConnectionStateChanged(true);
        QCOMPARE(deck.window.simulator().simulatorStatusText(), u"已连接"_qs);
        QCOMPARE(deck.window.simulator().simulatorFailureText(), u"插件没有应答"_qs); // still no plugin
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
        Deck deck;
        emit deck.network->simulatorConnectionFailed(u"插件没有应答"_qs);
        step(deck.window);
        QCOMPARE(deck.window.simulator().simulatorFailureText(), QString());
    }

    void showsTheFlight()
    {
        Deck deck;
        manager::SimulatorData data;
        data.aircraft.latitude = 40.07;
        data.aircraft.longitude = 116.6;
        data.aircraft.altitudeMslM = 1000;
        data.aircraft.heading = 359;
        data.aircraft.groundSpeed = 250;
        emit deck.network->simulatorDataUpdated(data);
        QCOMPARE(deck.dashboard().latitude(), 40.07);
        QCOMPARE(deck.dashboard().longitude(), 116.6);
        QCOMPARE(deck.dashboard().altitude(), 3280.84);
        QCOMPARE(deck.dashboard().heading(), 359.0);
        QCOMPARE(deck.dashboard().groundSpeed(), 250.0);
    }

    void followsTheProfile()
    {
        Deck deck;
        QCOMPARE(deck.server().protocolLabel(), u"VATSIM 协议"_qs);
        QCOMPARE(deck.server().homeAirport(), u"ZBAA"_qs);
        deck.config.set(config::authVatsim, false);
        deck.config.set(config::profileRealname, u"王小明"_qs);
        QCOMPARE(deck.server().protocolLabel(), u"经典协议"_qs);
        QCOMPARE(deck.server().realName(), u"王小明"_qs);
    }

    void theProfileIsWhatTheNetworkWillSee()
    {
        Deck deck;
        QCOMPARE(deck.server().realName(), u"Unknown"_qs);
        deck.config.set(config::profileHomeAirport, u" zspd "_qs);
        QCOMPARE(deck.server().homeAirport(), u"ZSPD"_qs);
        deck.config.set(config::profileHomeAirport, u"zzzz"_qs);
        QCOMPARE(deck.server().homeAirport(), u"ZBAA"_qs);
        deck.config.set(config::authUsername, u"1001"_qs);
        QCOMPARE(deck.server().realName(), u"1001"_qs);
        deck.config.set(config::sessionUsername, u"1002"_qs); // typed for this session
        QCOMPARE(deck.server().realName(), u"1002"_qs);
        deck.config.set(config::profileRealname, u"uNKNOWN"_qs);
        QCOMPARE(deck.server().realName(), u"1002"_qs);
    }

    void theAccountsNameArrivesWithItsData()
    {
        Deck deck;
        deck.peer.acceptLogin();
        bool signedIn = false;
        deck.api.login(u"1001"_qs, u"secret"_qs, [&signedIn](bool success, const QString &) { signedIn = success; });
        QTRY_VERIFY(signedIn);
        const QString account = deck.api.currentUser().username;
        QVERIFY(!account.isEmpty());
        deck.window.show();
        QCOMPARE(deck.server().realName(), account);
    }

    void aChangeOfTheAccountsDataRefreshesTheProfile()
    {
        Deck deck;
        deck.peer.acceptLogin();
        deck.window.show();
        QCOMPARE(deck.server().realName(), u"Unknown"_qs);
        bool signedIn = false;
        deck.api.login(u"1001"_qs, u"secret"_qs, [&signedIn](bool success, const QString &) { signedIn = success; });
        QTRY_VERIFY(signedIn);
        const QString account = deck.api.currentUser().username;
        deck.dashboard().setUserInfo(account, u"CID: 1001"_qs, u"3"_qs);
        QCOMPARE(deck.server().realName(), account);
    }
};

TARVO_TEST(MainWindowTest)
#include "MainWindowTest.moc"

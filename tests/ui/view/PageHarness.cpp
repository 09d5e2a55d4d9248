#include "PageHarness.h"

#include "model/RadioStackState.h"
#include "support/Patience.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlError>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include <cmath>
#include <functional>

namespace tarvo::test {

namespace {

/// Some type data where the service looks for it.
QString writeTypeData(const QString &folder)
{
    QDir(folder).mkpath(u"resources"_qs);
    QFile file(folder + u"/resources/Doc8643.txt"_qs);
    if (file.open(QIODevice::WriteOnly))
        file.write("BOEING\t737-800\tB738\tL2J\tM\nBOEING\t737-700\tB737\tL2J\tM\nBOEING\t737 MAX 8\tB38M\tL2J\tM\n"
                   "BOEING\t777-300ER\tB77W\tL2J\tH\nAIRBUS\tA-320\tA320\tL2J\tM\nAIRBUS\tA-320neo\tA20N\tL2J\tM\n"
                   "CESSNA\t172 Skyhawk\tC172\tL1P\tL\n");
    return folder;
}

void collect(QQuickItem *item, const std::function<bool(QQuickItem *)> &wanted, QList<QQuickItem *> &found)
{
    if (!item->isVisible())
        return;
    if (wanted(item))
        found << item;
    const QList<QQuickItem *> children = item->childItems();
    for (QQuickItem *child : children)
        collect(child, wanted, found);
}

bool isText(QQuickItem *item)
{
    return item->inherits("QQuickText");
}

} // namespace

PageHarness::PageHarness(const QString &mode, QSize size, Backends backends)
    : m_config(writeTypeData(m_folder.path())),
      m_icao(m_config),
      m_dashboard(nullptr, m_clock),
      m_server(m_icao, nullptr, m_clock),
      m_messages(nullptr, m_clock),
      m_sounds(m_config.state()),
      m_tour(m_config.state())
{
    m_icao.ensureLoaded();
    readDevices(); // the pages ask no sound system
    m_dashboard.setCurrentMode(mode);
    m_server.setCurrentMode(mode);
    QObject::connect(view.engine(), &QQmlEngine::warnings, view.engine(), [this](const QList<QQmlError> &errors) {
        for (const QQmlError &error : errors)
            m_complaints << error.toString();
    });
    const bool present = backends == Backends::Present;
    if (backends != Backends::Absent) {
        view.rootContext()->setContextProperty(u"dashboardBackend"_qs, present ? &m_dashboard : nullptr);
        view.rootContext()->setContextProperty(u"serverBackend"_qs, present ? &m_server : nullptr);
        view.rootContext()->setContextProperty(u"messagesBackend"_qs, present ? &m_messages : nullptr);
        view.rootContext()->setContextProperty(u"simulatorBackend"_qs, present ? &m_simulator : nullptr);
        view.rootContext()->setContextProperty(u"leaveBackend"_qs, present ? &m_leave : nullptr);
        view.rootContext()->setContextProperty(u"overviewBackend"_qs, present ? &m_overview : nullptr);
        view.rootContext()->setContextProperty(u"statusBackend"_qs, present ? &m_status : nullptr);
        view.rootContext()->setContextProperty(u"compactBackend"_qs, present ? &m_compact : nullptr);
        view.rootContext()->setContextProperty(u"tourBackend"_qs, present ? &m_tour : nullptr);
        view.rootContext()->setContextProperty(u"soundsBackend"_qs, present ? &m_sounds : nullptr);
        view.rootContext()->setContextProperty(u"voiceBackend"_qs, present ? &m_voice : nullptr);
        view.rootContext()->setContextProperty(u"settingsBackend"_qs, present ? &m_settings : nullptr);
        view.rootContext()->setContextProperty(u"voiceSettingsBackend"_qs, present ? &m_voiceSettings : nullptr);
    }
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.setSource(QUrl(u"qrc:/src/ui/view/Dashboard.qml"_qs));
    view.resize(size);
    view.show();
    view.requestActivate();
    QVERIFY(QTest::qWaitForWindowActive(&view));
}

void PageHarness::fillAccount()
{
    m_dashboard.setUserInfo(u"欧阳靖远"_qs, u"CID: 1001"_qs, u"高级教员 (I3)"_qs);
    m_dashboard.setTimes(u"1286小时 47分"_qs, u"342小时 09分"_qs);
    QList<ui::RecentFlight> flights;
    for (int i = 0; i < 20; ++i)
        flights.append({i == 1 ? u"CCAWMDG_2352"_qs : u"CES%1"_qs.arg(2352 + 31 * i),
                        u"11-%1 19:4%2 - 22:1%2"_qs.arg(20 - i, 2, 10, QChar(u'0')).arg(i % 10),
                        u"2小时 %1分"_qs.arg(30 + i)});
    m_dashboard.setRecentFlights(flights);
    const QStringList names{u"欧阳靖远"_qs,
                            u"李想"_qs,
                            u"Zhang Wei"_qs,
                            u"王小明"_qs,
                            u"司徒嘉慧"_qs,
                            u"陈晨"_qs,
                            u"Alexander von Humboldt"_qs,
                            u"刘洋"_qs,
                            u"赵一鸣"_qs,
                            u"孙悦"_qs};
    QList<ui::RankedUser> pilots;
    for (int i = 0; i < names.size(); ++i)
        pilots.append({i + 1, names.at(i), QString::number(1001 + i), u"%1小时 05分"_qs.arg(1286 - 97 * i)});
    m_dashboard.setLeaderboard(pilots, pilots.first(7));
    m_server.setProfile(u"欧阳靖远"_qs, u"ZSPD 上海浦东国际机场"_qs);
}

void PageHarness::fillFlight()
{
    m_dashboard.setSimulatorState(true, ui::LinkState::Connected);
    m_status.setSimulator(true, ui::LinkState::Connected);
    m_overview.show({.callsign = u"CCAWMDG_2352"_qs,
                     .detail = u"B738 · Microsoft Flight Simulator"_qs,
                     .com1 = u"118.500"_qs,
                     .com1Station = u"ZBAA_W_APP +2"_qs,
                     .com2 = u"121.500"_qs,
                     .com2Station = {},
                     .transponder = u"2145"_qs,
                     .online = u"12 小时 05 分"_qs});
    m_dashboard.setWebPages(u"https://example.net/new"_qs, u"https://example.net/docs"_qs);
    m_dashboard.setFlightData(40.0801, 116.5846, 32150.4, 52.4, 451.6);
}

void PageHarness::connectToNetwork()
{
    m_server.setCallsign(u"ces2352"_qs);
    m_server.setTypeCode(u"B738"_qs);
    m_server.appendLog(u"正在连接 FSD 127.0.0.1:6809，呼号=CES2352，机型=B738，观察员模式=false"_qs);
    m_server.appendLog(u"FSD 已连接：CES2352"_qs);
    m_server.setEndpoint(u"127.0.0.1:6809"_qs);
    m_server.setServerState(true, ui::LinkState::Connected);
    m_dashboard.setServerState(true, ui::LinkState::Connected);
    m_status.setNetwork(true, ui::LinkState::Connected);
    m_server.addRecentEvent(u"网络已连接"_qs, u"网络已连接，当前呼号：CES2352"_qs, u"网络"_qs);
    m_server.addRecentEvent(u"通知"_qs, u"Connected to network."_qs, u"系统"_qs);
}

void PageHarness::fillSimulator(const QString &mode)
{
    m_dashboard.setCurrentMode(mode);
    m_server.setCurrentMode(mode);
    m_simulator.setMode(mode);
    m_simulator.setSimulatorState(true, ui::LinkState::Connected);
    m_dashboard.setSimulatorState(true, ui::LinkState::Connected);
    m_simulator.setPluginValid(true);
    m_simulator.setCslValid(true);
    m_simulator.setTrafficMappingStatus(u"已加载 1286 个模型"_qs);
    m_simulator.setXPlaneVersion(120105);
    model::UserAircraftData aircraft;
    aircraft.latitude = 31.1434;
    aircraft.longitude = 121.8052;
    aircraft.altitudeMslM = 2512.4;
    aircraft.altitudeAglM = 2508.1;
    aircraft.altitudePressure = 8251;
    aircraft.groundSpeed = 268.4;
    aircraft.pitch = 7.4;
    aircraft.bank = 21.5;
    aircraft.heading = 52.4;
    aircraft.latitudeVelocity = 84.2;
    aircraft.longitudeVelocity = 109.7;
    aircraft.altitudeVelocity = 9.1;
    aircraft.headingVelocity = 0.026;
    model::UserAircraftConfigData config;
    config.beaconOn = config.navLightsOn = config.strobesOn = config.landingLightsOn = true;
    config.engineCount = 2;
    config.engine1Running = config.engine2Running = true;
    config.flapsRatio = 0.25;
    config.speedbrakeArmed = true;
    model::RadioStackState radio;
    radio.avionicsPowerOn = true;
    radio.com1Frequency = 121800;
    radio.com2Frequency = 124550;
    radio.com1TransmitEnabled = radio.com1ReceiveEnabled = radio.com2ReceiveEnabled = true;
    radio.com1Volume = 100;
    radio.com2Volume = 80;
    radio.squawkingModeC = true;
    radio.transponderCode = 2145;
    m_simulator.setOwnAircraft(aircraft, config, radio, false);
}

void PageHarness::fillTraffic(int count)
{
    const QStringList types{u"B738"_qs, u"A320"_qs, u"B77W"_qs, QString(), u"C172"_qs};
    QList<model::RemoteAircraft> table;
    QVariantList snapshot;
    for (int i = 0; i < count; ++i) {
        model::RemoteAircraft aircraft;
        aircraft.callsign = i == 2 ? u"CCAWMDG_2352"_qs : u"CES%1"_qs.arg(2352 + 31 * i);
        aircraft.typeCode = types.at(i % types.size());
        const double angle = 0.7 + 2.4 * i;
        const double degrees = 0.05 + 0.4 * (i % 40) / 40.0;
        aircraft.visualState.latitude = 31.1434 + degrees * std::cos(angle);
        aircraft.visualState.longitude = 121.8052 + degrees * std::sin(angle);
        aircraft.visualState.altitudeMslM = 2512 + 410.0 * (i % 7 - 3);
        aircraft.visualState.heading = (140 * i) % 360;
        aircraft.groundSpeed = 240;
        table << aircraft;
        snapshot << QVariantMap{{u"label"_qs, aircraft.callsign},
                                {u"latitude"_qs, aircraft.visualState.latitude},
                                {u"longitude"_qs, aircraft.visualState.longitude},
                                {u"altitudeFeet"_qs, 0.0},
                                {u"headingTrue"_qs, 0.0},
                                {u"groundSpeedKnots"_qs, 0.0}};
    }
    if (m_simulator.msfsMode())
        m_simulator.setTrafficContacts(snapshot);
    else
        m_simulator.setRemoteAircraft(table);
}

void PageHarness::fillVoice()
{
    m_voice.radioStackUpdate({.com1Frequency = 118500,
                              .com1StandbyFrequency = 121500,
                              .com1TransmitEnabled = true,
                              .com1ReceiveEnabled = true,
                              .com1Volume = 80,
                              .com2Frequency = 127600,
                              .com2StandbyFrequency = 122800,
                              .com2ReceiveEnabled = true,
                              .com2Volume = 100});
    m_voice.addEvent(
        u"ERROR: Failed to connect to server at voice.example.org (ip=203.0.113.7:6808): Connection refused (errno=111)"_qs);
    m_voice.addEvent(u"未找到音频设备"_qs);
    emit m_voiceClient.connectionStateChanged(voice::ConnectionState::Ready);
    for (int i = 0; i < 40; ++i) {
        m_clock.advance(20);
        emit m_voiceClient.voiceDataReceived(u"ZBAA_TWR"_qs, 118500, {-12.5F, 86});
    }
    for (int i = 0; i < 200; ++i) {
        m_clock.advance(20);
        emit m_voiceClient.voiceDataSent({-31.2F, 67});
    }
    for (int i = 0; i < 300; ++i) {
        m_clock.advance(20);
        emit m_voiceClient.voiceDataReceived(u"ZBAA_ATIS"_qs, 127600, {-9.4F, 90});
    }
}

void PageHarness::readDevices()
{
    m_config.set(config::voiceDriver, 8);
    m_devices.onRead({{.index = 0, .type = 8, .name = "ALSA"}, {.index = 1, .type = 12, .name = "JACK"}},
                     {{.index = 0, .name = "USB Headset", .hostApi = 0, .maxInputChannels = 1, .maxOutputChannels = 2},
                      {.index = 1,
                       .name = "High Definition Audio Controller of the other graphics card: HDMI 0 (hw:0,3)",
                       .hostApi = 0,
                       .maxOutputChannels = 2},
                      {.index = 2, .name = "Studio", .hostApi = 1, .maxInputChannels = 2, .maxOutputChannels = 2}});
}

void PageHarness::fillVoiceSettings()
{
    readDevices();
    m_input.names.insert(163, u"Control_R"_qs);
    m_ptt.setBoundKey(u"kb:163"_qs);
}

void PageHarness::openSection(const QString &title)
{
    click(itemWithText(title));
    QCoreApplication::processEvents();
}

QQuickItem *PageHarness::item(const QString &objectName) const
{
    return items(objectName).value(0);
}

QList<QQuickItem *> PageHarness::items(const QString &objectName) const
{
    QList<QQuickItem *> found;
    collect(
        view.contentItem(), [&](QQuickItem *candidate) { return candidate->objectName() == objectName; }, found);
    return found;
}

QQuickItem *PageHarness::itemWithText(const QString &text) const
{
    const QList<QQuickItem *> all = texts();
    for (QQuickItem *candidate : all)
        if (candidate->property("text").toString() == text)
            return candidate;
    return nullptr;
}

QList<QQuickItem *> PageHarness::texts() const
{
    return textsOf(view);
}

QList<QQuickItem *> PageHarness::textsOf(const QQuickWindow &window)
{
    QList<QQuickItem *> found;
    collect(window.contentItem(), isText, found);
    return found;
}

QStringList PageHarness::textsOutOfBounds() const
{
    QStringList found;
    const QList<QQuickItem *> all = texts();
    for (const QQuickItem *text : all) {
        const QRectF box = text->mapRectToScene(QRectF(0, 0, text->width(), text->height()));
        const bool inBox = text->clip() || text->property("contentWidth").toReal() <= text->width() + 1;
        if (!inBox || box.left() < -1 || box.right() > view.width() + 1)
            found << text->property("text").toString().left(80);
    }
    return found;
}

void PageHarness::settle()
{
    for (int i = 0; i < 3; ++i) {
        QSignalSpy frame(&view, &QQuickWindow::afterAnimating);
        view.update();
        QVERIFY(frame.wait(2000));
        QCoreApplication::processEvents();
    }
}

void PageHarness::click(QQuickItem *item)
{
    QVERIFY(item);
    if (const QVariant settled = item->property("settled"); settled.isValid()) // else it takes this for a double click
        TRY_VERIFY(item->property("settled").toBool());
    const QPointF centre = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, centre.toPoint());
}

bool PageHarness::tabTo(const QString &objectName, bool backwards)
{
    for (int i = 0; i < 200; ++i) {
        const QQuickItem *wanted = item(objectName);
        if (wanted && wanted->hasActiveFocus())
            return true;
        QTest::keyClick(&view, backwards ? Qt::Key_Backtab : Qt::Key_Tab);
        settle(); // what scrolls with the focus
    }
    return false;
}

void PageHarness::hold(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyPress(&view, key, modifiers);
    for (int i = 0; i < 3; ++i)
        for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress})
            qt_handleKeyEvent(&view, type, key, modifiers, QString(), true);
    QTest::keyRelease(&view, key, modifiers);
}

void PageHarness::type(const QString &text)
{
    for (const QChar letter : text)
        QTest::keyClick(&view, letter.toLatin1());
}

QImage PageHarness::grab(const QString &name)
{
    return keep(view.grabWindow(), name);
}

QImage keep(const QImage &picture, const QString &name)
{
    const QString folder = qEnvironmentVariable("TARVO_SHOTS");
    if (!folder.isEmpty())
        picture.save(folder + QLatin1Char('/') + name + u".png"_qs);
    return picture;
}

} // namespace tarvo::test

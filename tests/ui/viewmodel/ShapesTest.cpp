#include "ServerPageFixture.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"
#include "ui/viewmodel/DashboardViewModel.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <QMetaMethod>
#include <QMetaProperty>
#include <QTest>

/// What the pages bind to: the view models' properties with their first values, what can be called, and the signals.
class ShapesTest : public QObject
{
    Q_OBJECT

private slots:
    void startsAsTabled_data()
    {
        tarvo::test::columns<const QObject *, QByteArray, QVariant, QByteArray, bool>("model", "name", "value",
                                                                                      "notify", "writable");
        dashboardRows();
        serverRows();
        simulatorRows();
        messagesRows();
    }

    void startsAsTabled()
    {
        QFETCH(const QObject *, model);
        QFETCH(QByteArray, name);
        const QMetaObject *type = model->metaObject();
        const QMetaProperty property = type->property(type->indexOfProperty(name.constData()));
        QVERIFY(property.isValid());
        QTEST(property.read(model), "value");
        QTEST(QByteArray(property.notifySignal().name()), "notify");
        QTEST(property.isWritable(), "writable");
    }

    void pagesCanCall_data()
    {
        QTest::addColumn<const QObject *>("model");
        const auto rows = [](const QObject &model, std::initializer_list<const char *> signatures) {
            for (const char *signature : signatures)
                QTest::newRow(signature) << &model;
        };
        rows(m_dashboard, {"requestModeChange(QString)", "requestServerConnect(QString,QString,QString,bool)",
                           "requestServerDisconnect()", "requestSimulatorReconnect()"});
        rows(m_server.model, {"requestConnect()", "requestDisconnect()", "clearServerLog()",
                              "refreshTypeCodeSuggestions(QString)", "applyTypeCodeSuggestion(QString)"});
        rows(m_simulator,
             {"requestReconnect()", "requestSetCom1Frequency(QString)", "requestSetCom2Frequency(QString)",
              "requestSetTransponderCode(QString)", "requestTransponderIdent()", "requestTransponderModeToggle()"});
        rows(m_messages, {"clearMessages()", "sendPrivateMessage(QString,QString)", "sendRadioMessage(QString)",
                          "sendWallopMessage(QString)", "prepareReply(QString)", "openPrivateSession(QString)",
                          "closePrivateSession(QString)", "messagesForChannel(QString)", "unreadForChannel(QString)"});
    }

    void pagesCanCall()
    {
        QFETCH(const QObject *, model);
        QVERIFY(model->metaObject()->indexOfMethod(QTest::currentDataTag()) >= 0);
    }

    void signalsStandInOrder_data()
    {
        tarvo::test::columns<const QObject *, QString>("model", "wanted");
        const auto row = [](const QObject &model, const char *wanted) {
            QTest::newRow(model.metaObject()->className()) << &model << QString::fromLatin1(wanted);
        };
        row(m_dashboard,
            "userInfoChanged() currentModeChanged() simulatorStateChanged() serverStateChanged() flightDataChanged() "
            "serverLogChanged() recentFlightsChanged() leaderboardChanged() modeChangedRequest(QString) "
            "serverConnectRequest(QString,QString,QString,bool) serverDisconnectRequest() simulatorReconnectRequest() "
            "simulatorHintChanged()");
        row(m_server.model,
            "serverStateChanged() endpointChanged() protocolChanged() formChanged() profileChanged() logChanged() "
            "logLineAdded(QString) logCleared() recentEventsChanged() typeCodeSuggestionsChanged() "
            "connectRequested(QString,QString,QString,bool) disconnectRequested() "
            "failureChanged()");
        row(m_simulator, "stateChanged() dataChanged() trafficChanged() reconnectRequested() "
                         "setCom1FrequencyRequested(QString) setCom2FrequencyRequested(QString) "
                         "setTransponderCodeRequested(QString) transponderIdentRequested() "
                         "transponderModeToggleRequested() pickedCallsignChanged()");
        row(m_messages,
            "messagesChanged() channelStatsChanged() activeChannelChanged() activeMessagesChanged() sessionsChanged() "
            "unreadChanged() networkStateChanged() nearbyClientsChanged() composeChanged() "
            "messageSoundRequested(QString,int) privateMessageRequested(QString,QString) "
            "radioMessageRequested(QString) wallopRequested(QString) atisRequested(QString) "
            "searchChanged() exportChanged() exportRequested(QString,QString)");
    }

    void signalsStandInOrder()
    {
        QFETCH(const QObject *, model);
        const QMetaObject *type = model->metaObject();
        QStringList found;
        for (int i = type->methodOffset(); i < type->methodCount(); ++i)
            if (type->method(i).methodType() == QMetaMethod::Signal)
                found << QString::fromLatin1(type->method(i).methodSignature());
        QTEST(found.join(u' '), "wanted");
    }

private:
    static void row(const QObject &model, const char *name, const QVariant &value, const char *notify,
                    bool writable = false)
    {
        QTest::addRow("%s of %s", name, model.metaObject()->className())
            << &model << QByteArray(name) << value << QByteArray(notify) << writable;
    }

    void dashboardRows() const
    {
        row(m_dashboard, "username", u"游客"_qs, "userInfoChanged");
        row(m_dashboard, "cid", u"--"_qs, "userInfoChanged");
        row(m_dashboard, "rating", u"--"_qs, "userInfoChanged");
        row(m_dashboard, "pilotTime", u"0小时 0分"_qs, "userInfoChanged");
        row(m_dashboard, "atcTime", u"0小时 0分"_qs, "userInfoChanged");
        row(m_dashboard, "avatarUrl", QString(), "userInfoChanged");
        row(m_dashboard, "currentMode", u"NONE"_qs, "currentModeChanged");
        row(m_dashboard, "simulatorConnected", false, "simulatorStateChanged");
        row(m_dashboard, "simulatorStatusText", u"未连接"_qs, "simulatorStateChanged");
        row(m_dashboard, "serverConnected", false, "serverStateChanged");
        row(m_dashboard, "serverStatusText", u"未连接"_qs, "serverStateChanged");
        for (const char *number : {"latitude", "longitude", "altitude", "heading", "groundSpeed"})
            row(m_dashboard, number, 0.0, "flightDataChanged");
        row(m_dashboard, "serverLog", QString(), "serverLogChanged");
        row(m_dashboard, "recentFlights", QVariantList(), "recentFlightsChanged");
        row(m_dashboard, "pilotLeaderboard", QVariantList(), "leaderboardChanged");
        row(m_dashboard, "atcLeaderboard", QVariantList(), "leaderboardChanged");
    }

    void serverRows() const
    {
        row(m_server.model, "serverConnected", false, "serverStateChanged");
        row(m_server.model, "serverStatusText", u"未连接"_qs, "serverStateChanged");
        row(m_server.model, "endpoint", QString(), "endpointChanged");
        row(m_server.model, "protocolLabel", u"经典协议"_qs, "protocolChanged");
        row(m_server.model, "currentMode", u"NONE"_qs, "formChanged");
        row(m_server.model, "platformLabel", u"未选择平台"_qs, "formChanged");
        row(m_server.model, "connectActionLabel", u"连接网络"_qs, "formChanged");
        row(m_server.model, "modeHintText", u"请先选择模拟平台。"_qs, "formChanged");
        for (const char *text : {"callsign", "typeCode", "selcal"})
            row(m_server.model, text, QString(), "formChanged", true);
        row(m_server.model, "observerMode", false, "formChanged", true);
        row(m_server.model, "coordinatedVoice", false, "formChanged", true);
        row(m_server.model, "typeCodeRequired", true, "formChanged");
        row(m_server.model, "connectedAsObserver", false, "serverStateChanged");
        row(m_server.model, "canConnect", false, "formChanged");
        row(m_server.model, "formErrorText", QString(), "formChanged");
        row(m_server.model, "serverLog", QString(), "logChanged");
        row(m_server.model, "recentEvents", QVariantList(), "recentEventsChanged");
        row(m_server.model, "typeCodeSuggestions", QVariantList(), "typeCodeSuggestionsChanged");
        row(m_server.model, "realName", QString(), "profileChanged");
        row(m_server.model, "homeAirport", QString(), "profileChanged");
    }

    void simulatorRows() const
    {
        row(m_simulator, "currentMode", u"NONE"_qs, "stateChanged");
        for (const char *text : {"simulatorFamily", "simulatorDisplayName"})
            row(m_simulator, text, u"未选择"_qs, "stateChanged");
        for (const char *flag : {"msfsMode", "xplaneMode", "simulatorConnected"})
            row(m_simulator, flag, false, "stateChanged");
        row(m_simulator, "simulatorStatusText", u"未连接"_qs, "stateChanged");
        for (const char *text : {"pluginStatusText", "cslStatusText", "trafficMappingStatusText"})
            row(m_simulator, text, u"未知"_qs, "stateChanged");
        row(m_simulator, "xplaneVersionText", u"未获取"_qs, "stateChanged");
        for (const char *flag :
             {"simPaused", "onGround", "gearDown", "avionicsPowerOn", "com1ReceiveEnabled", "com2ReceiveEnabled",
              "com1TransmitEnabled", "com2TransmitEnabled", "squawkingModeC", "squawkingIdent", "beaconOn",
              "landingLightsOn", "taxiLightsOn", "navLightsOn", "strobesOn", "speedbrakeArmed"})
            row(m_simulator, flag, false, "dataChanged");
        for (const char *number :
             {"latitude", "longitude", "altitudeMslM", "altitudeAglM", "altitudePressure", "heading", "groundSpeed",
              "pitch", "bank", "latitudeVelocity", "longitudeVelocity", "altitudeVelocity", "pitchVelocity",
              "headingVelocity", "bankVelocity", "noseWheelAngle", "flapsRatio", "speedbrakeRatio"})
            row(m_simulator, number, 0.0, "dataChanged");
        for (const char *number : {"com1Volume", "com2Volume", "engineCount"})
            row(m_simulator, number, 0, "dataChanged");
        for (const char *text : {"com1Frequency", "com2Frequency"})
            row(m_simulator, text, u"0.000"_qs, "dataChanged");
        row(m_simulator, "transponderCode", u"0000"_qs, "dataChanged");
        for (const char *text : {"flapsLabel", "speedbrakeLabel"})
            row(m_simulator, text, u"0%"_qs, "dataChanged");
        for (const char *text : {"activeTransmitLabel", "activeReceiveLabel"})
            row(m_simulator, text, u"无"_qs, "dataChanged");
        row(m_simulator, "motionSummary", u"暂无运动数据"_qs, "dataChanged");
        row(m_simulator, "engineSummary", u"未检测到发动机"_qs, "dataChanged");
        row(m_simulator, "engineStates", QVariantList(), "dataChanged");
        row(m_simulator, "trafficContacts", QVariantList(), "trafficChanged");
        row(m_simulator, "plotRange", 20, "trafficChanged");
        row(m_simulator, "plotRangePicked", false, "trafficChanged");
        row(m_simulator, "pickedCallsign", QString(), "pickedCallsignChanged");
        row(m_simulator, "plotSummary", u"附近暂无交通目标"_qs, "trafficChanged");
        row(m_simulator, "trafficSummary", u"附近暂无交通目标"_qs, "trafficChanged");
    }

    void messagesRows() const
    {
        row(m_messages, "messages", QVariantList(), "messagesChanged");
        row(m_messages, "filteredMessages", QVariantList(), "messagesChanged");
        row(m_messages, "activeChannel", u"RADIO"_qs, "activeChannelChanged", true);
        row(m_messages, "activeMessages", QVariantList(), "activeMessagesChanged");
        row(m_messages, "privateSessions", QVariantList(), "sessionsChanged");
        row(m_messages, "nearbyClients", QVariantList(), "nearbyClientsChanged");
        row(m_messages, "draftTarget", QString(), "composeChanged", true);
        row(m_messages, "draftMessage", QString(), "composeChanged", true);
        row(m_messages, "activeFilter", u"ALL"_qs, "messagesChanged", true);
        row(m_messages, "summaryText", u"暂无消息"_qs, "channelStatsChanged");
        row(m_messages, "unreadCount", 0, "unreadChanged");
        row(m_messages, "networkConnected", false, "networkStateChanged");
        row(m_messages, "activeChannelCanSend", false, "composeChanged");
        row(m_messages, "activeChannelTitle", u"无线电"_qs, "activeChannelChanged");
        row(m_messages, "composePlaceholder", u"网络未连接"_qs, "composeChanged");
    }

    const tarvo::ui::DashboardViewModel m_dashboard;
    const tarvo::test::ServerPageFixture m_server;
    const tarvo::ui::SimulatorPageViewModel m_simulator;
    const tarvo::ui::MessagesPageViewModel m_messages;
};

TARVO_TEST(ShapesTest)
#include "ShapesTest.moc"

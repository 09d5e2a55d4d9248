#include "practice/control/ControlService.h"

#include "Peers.h"
#include "PluginDialer.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QJsonArray>
#include <QSignalSpy>

#include <memory>
#include <utility>

using namespace tarvo::practice;
using namespace tarvo::test;

class ControlServiceTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<ControlService> m_control;
    std::unique_ptr<WebPeer> m_web;
    std::unique_ptr<FsdLineClient> m_pilot;
    QByteArray m_function; ///< of the test before

private slots:
    void init()
    {
        const QByteArray before = std::exchange(m_function, QTest::currentTestFunction());
        if (m_function == before && m_function.startsWith("refuses")) // what changes nothing shares a network
            return;
        PracticeSettings settings = quietSettings();
        settings.simulator = true;
        m_network = std::make_unique<PracticeNetwork>(settings, m_clock);
        m_control = std::make_unique<ControlService>(*m_network);
        QVERIFY2(m_network->start(), qPrintable(m_network->errorString()));
        m_web = std::make_unique<WebPeer>(m_network->account());
        m_pilot = std::make_unique<FsdLineClient>(m_network->fsd());
        m_pilot->logIn("AB1");
        TRY_COMPARE(m_network->fsd().callsigns().size(), 1);
    }

    void tellsTheState()
    {
        const QJsonObject state = m_web->get(QStringLiteral("/practice")).json;
        QCOMPARE(state.value(QLatin1String("callsigns")).toArray(), QJsonArray{QStringLiteral("AB1")});
        QCOMPARE(state.value(QLatin1String("phase")).toString(), QStringLiteral("parked"));
        QVERIFY(state.value(QLatin1String("verbs")).toArray().contains(QStringLiteral("kill")));
    }

    void reachesTheClient_data()
    {
        QTest::addColumn<QString>("verb");
        QTest::addColumn<QByteArray>("line");
        const auto row = [](const char16_t *verb, const char *line) {
            const QString text = QString::fromUtf16(verb);
            QTest::newRow(text.toLatin1().constData()) << text << QByteArray(line);
        };
        row(u"kill?callsign=ab1&reason=too%20loud", "$!!SERVER:AB1:too loud\r\n");
        row(u"text?callsign=AB1&text=hi", "#TMSERVER:AB1:hi\r\n");
        row(u"redirect?callsign=AB1&to=127.0.0.9", "$XXSERVER:AB1:127.0.0.9\r\n");
        row(u"error?callsign=AB1&type=9&parameter=p&message=m", "$ERSERVER:AB1:9:p:m\r\n");
        row(u"fast?callsign=AB1", "$SFSERVER:AB1:1\r\n");
        row(u"fast?callsign=AB1&on=0", "$SFSERVER:AB1:0\r\n");
        row(u"ping?callsign=AB1", "$PISERVER:AB1:");
        row(u"challenge?callsign=AB1", "$ZCSERVER:AB1:");
        row(u"line?callsign=AB1&line=%23Q", "#Q\r\n");
    }

    void reachesTheClient()
    {
        QFETCH(QString, verb);
        QFETCH(QByteArray, line);
        QCOMPARE(m_web->post(QStringLiteral("/practice/") + verb, {}).status, 200);
        QTRY_VERIFY2(m_pilot->got(line), m_pilot->all().constData());
    }

    void breaksTheAccountService()
    {
        QCOMPARE(m_web->post(QStringLiteral("/practice/database-error"), {}).status, 200);
        QCOMPARE(m_web->logIn().code(), QStringLiteral("DATABASE_ERROR"));
        QCOMPARE(m_web->post(QStringLiteral("/practice/database-error?on=0"), {}).status, 200);
        const QString token = m_web->token();
        m_web->post(QStringLiteral("/practice/revoke-tokens"), {});
        QCOMPARE(m_web->get(QStringLiteral("/api/server/rating"), token).status, 401);
        m_web->post(QStringLiteral("/practice/token-life?seconds=5"), {});
        QCOMPARE(m_network->tokens().life(TokenUse::Access), 5);
        m_web->post(QStringLiteral("/practice/bare-status?status=503"), {});
        QCOMPARE(m_web->logIn().status, 503);
        QCOMPARE(m_web->post(QStringLiteral("/practice/bare-status?status=0"), {}).status, 200);
        QCOMPARE(m_web->logIn().status, 200);
    }

    void handlesTheSimulator()
    {
        m_web->post(QStringLiteral("/practice/flight?phase=downwind"), {});
        QCOMPARE(m_network->xplane().flight().phaseAt(m_network->xplane().flightTime()), QStringLiteral("downwind"));
        m_web->post(QStringLiteral("/practice/flight?time=12.5"), {});
        QCOMPARE(m_network->xplane().flightTime(), 12.5);
        m_web->post(QStringLiteral("/practice/pause"), {});
        QVERIFY(m_network->xplane().isPaused());
        m_web->post(QStringLiteral("/practice/dataref?name=sim/cockpit/radios/transponder_code&value=7700"), {});
        QCOMPARE(m_network->xplane().value(QStringLiteral("sim/cockpit/radios/transponder_code")), 7700.0F);
        const QString active = QStringLiteral("sim/cockpit2/radios/actuators/com%1_frequency_hz_833");
        m_web->post(QStringLiteral("/practice/tune?frequency=122800"), {});
        QCOMPARE(m_network->xplane().value(active.arg(1)), 122'800.0F);
        m_web->post(QStringLiteral("/practice/tune?com=2&frequency=127600"), {});
        QCOMPARE(m_network->xplane().value(active.arg(2)), 127'600.0F);
    }

    void bringsInScriptedClients()
    {
        QCOMPARE(m_web->post(QStringLiteral("/practice/join?callsign=xy2&cid=1003&name=Wang%20Lei"), {}).status, 200);
        TRY_VERIFY(m_pilot->got("#APXY2:SERVER:1003::"));
        QCOMPARE(m_web->get(QStringLiteral("/practice")).json.value(QLatin1String("residents")).toArray(),
                 QJsonArray{QStringLiteral("XY2")});
        QCOMPARE(m_web->post(QStringLiteral("/practice/speak?callsign=xy2&line=%23TMXY2:AB1:a%2Bb"), {}).status, 200);
        TRY_VERIFY(m_pilot->got("#TMXY2:AB1:a+b\r\n"));
        QCOMPARE(m_web->post(QStringLiteral("/practice/leave?callsign=xy2"), {}).status, 200);
        TRY_VERIFY(m_pilot->got("#DPXY2:1003\r\n"));
        QCOMPARE(m_web->post(QStringLiteral("/practice/join?callsign=zbaa_twr&as=controller"), {}).status, 200);
        TRY_VERIFY(m_pilot->got("#AAZBAA_TWR:SERVER:"));
    }

    void tellsWhatThePluginDraws()
    {
        PluginDialer simulator(m_network->pluginUrl());
        QVERIFY(simulator.send(PluginMessage{
            QStringLiteral("ADD"),
            {QStringLiteral("CCA981"), QStringLiteral("CCA"), QStringLiteral("B738"), 40.5, 116.5, 1000.0, 90.0, 0.0,
             0.0}}.toBytes()));
        const auto drawn = [this] {
            return m_web->get(QStringLiteral("/practice")).json.value(QLatin1String("aircraft")).toArray();
        };
        TRY_COMPARE(m_network->xplane().plugin().aircraft().size(), 1);
        const QJsonObject aircraft = drawn().at(0).toObject();
        QCOMPARE(aircraft.value(QLatin1String("callsign")).toString(), QStringLiteral("CCA981"));
        QCOMPARE(aircraft.value(QLatin1String("type")).toString(), QStringLiteral("B738"));
        QCOMPARE(aircraft.value(QLatin1String("latitude")).toDouble(), 40.5);
        QCOMPARE(aircraft.value(QLatin1String("moved")).toString(), QStringLiteral("ADD"));
        QCOMPARE(m_web->post(QStringLiteral("/practice/plugin-vanish"), {}).status, 200);
        QVERIFY(drawn().isEmpty());
        QVERIFY(!m_web->get(QStringLiteral("/practice")).json.value(QLatin1String("plugin")).toBool());
        QCOMPARE(m_web->post(QStringLiteral("/practice/plugin-vanish"), {}).status, 404);
        QCOMPARE(m_web->post(QStringLiteral("/practice/plugin-return"), {}).status, 200);
        QVERIFY(m_web->get(QStringLiteral("/practice")).json.value(QLatin1String("plugin")).toBool());
    }

    void thePluginSays_data()
    {
        QTest::addColumn<QString>("verb");
        QTest::addColumn<QByteArray>("bytes");
        const auto row = [](const char16_t *verb, const QByteArray &bytes) {
            const QString text = QString::fromUtf16(verb);
            QTest::newRow(text.toLatin1().constData()) << text << bytes;
        };
        row(u"say-radio?text=hi%20you", "\x92\xa8RDIOSENT\x91\xa6hi you");
        row(u"say-private?to=AB9&text=hi", "\x92\xa8PRIVSENT\x92\xa3"
                                           "AB9\xa2hi");
        row(u"request-station?callsign=zbaa_twr", "\x92\xaaREQSTATION\x91\xa8ZBAA_TWR");
        row(u"force-disconnect?reason=why", "\x92\xa9"
                                            "FORCEDISC\x91\xa3why");
        row(u"force-disconnect", "\x92\xa9"
                                 "FORCEDISC\x91\xa0");
        row(u"shut-down", "\x92\xa8SHUTDOWN\x90");
        row(u"plugin-message?name=XYZ", "\x92\xa3XYZ\x90");
        row(u"plugin-message?name=ADDED&arguments=%5B%22AB9%22,null,true,7%5D", "\x92\xa5"
                                                                                "ADDED\x94\xa3"
                                                                                "AB9\xc0\xc3\x07");
        row(u"plugin-bytes?hex=92C1", "\x92\xc1");
    }

    void thePluginSays()
    {
        QFETCH(QString, verb);
        QFETCH(QByteArray, bytes);
        PluginDialer simulator(m_network->pluginUrl());
        QVERIFY(simulator.send(PluginMessage{QStringLiteral("VER"), {}}.toBytes()));
        QByteArray received;
        const auto arrived = [&] {
            if (received.isEmpty())
                received = simulator.receive();
            return !received.isEmpty();
        };
        TRY_VERIFY(arrived()); // the version, now that it is connected
        received.clear();
        QCOMPARE(m_web->post(QStringLiteral("/practice/") + verb, {}).status, 200);
        TRY_VERIFY(arrived());
        QCOMPARE(received, bytes);
    }

    void tellsThePluginHowToAnswer()
    {
        PluginStandIn &plugin = m_network->xplane().plugin();
        PluginDialer simulator(m_network->pluginUrl());
        const auto send = [&](const QString &name) {
            QSignalSpy received(&plugin, &PluginStandIn::messageReceived);
            QVERIFY(simulator.send(PluginMessage{name, {QStringLiteral("AB9")}}.toBytes()));
            TRY_COMPARE(received.size(), 1);
        };
        QCOMPARE(m_web->post(QStringLiteral("/practice/plugin-add?mode=late&delay=500"), {}).status, 200);
        QCOMPARE(m_web->post(QStringLiteral("/practice/plugin-del?mode=silent"), {}).status, 200);
        send(QStringLiteral("ADD"));
        QCOMPARE(plugin.pendingAnswers(), 1);
        m_clock.advance(500);
        plugin.answerDue();
        QCOMPARE(plugin.aircraft().size(), 1);
        send(QStringLiteral("DEL"));
        QCOMPARE(plugin.aircraft().size(), 1);
        QCOMPARE(m_web->post(QStringLiteral("/practice/plugin-del?mode=answer"), {}).status, 200);
        send(QStringLiteral("DEL"));
        QVERIFY(plugin.aircraft().isEmpty());
    }

    void refuses_data()
    {
        QTest::addColumn<QString>("verb");
        QTest::newRow("unknown verb") << QStringLiteral("explode");
        QTest::newRow("unknown callsign") << QStringLiteral("kill?callsign=XY9");
        QTest::newRow("no callsign") << QStringLiteral("kill");
        QTest::newRow("unknown phase") << QStringLiteral("flight?phase=loop");
        QTest::newRow("unknown dataref") << QStringLiteral("dataref?name=sim/nothing&value=1");
        QTest::newRow("plugin answers how") << QStringLiteral("plugin-add");
        QTest::newRow("plugin answers otherwise") << QStringLiteral("plugin-add?mode=rudely");
        QTest::newRow("late by nothing") << QStringLiteral("plugin-del?mode=late");
        QTest::newRow("a plugin that is there") << QStringLiteral("plugin-return");
        QTest::newRow("arguments that are no list") << QStringLiteral("plugin-message?name=X&arguments=7");
        QTest::newRow("odd digits") << QStringLiteral("plugin-bytes?hex=9");
        QTest::newRow("no digits") << QStringLiteral("plugin-bytes?hex=9x");
        QTest::newRow("join as what") << QStringLiteral("join?callsign=XY2&as=bird");
        QTest::newRow("join as somebody there") << QStringLiteral("join?callsign=ab1");
        QTest::newRow("leave unjoined") << QStringLiteral("leave?callsign=XY2");
        QTest::newRow("speak unjoined") << QStringLiteral("speak?callsign=XY2&line=%23TMXY2:AB1:x");
        QTest::newRow("no second server") << QStringLiteral("hand-over?callsign=AB1");
    }

    void refuses()
    {
        QFETCH(QString, verb);
        QCOMPARE(m_web->post(QStringLiteral("/practice/") + verb, {}).status, 404);
    }

    void refusesABadNumber_data()
    {
        QTest::addColumn<QString>("verb");
        const auto rows = [](const char16_t *verb, std::initializer_list<const char16_t *> numbers) {
            for (const char16_t *number : numbers) {
                const QString text = QString::fromUtf16(verb) + QString::fromUtf16(number);
                QTest::newRow(qPrintable(text)) << text;
            }
        };
        rows(u"plugin-add?mode=late&delay=", {u"", u"x", u"0", u"-1", u"1.5", u"3600001"});
        rows(u"token-life?seconds=", {u"", u"x", u"5s", u"1.5", u"9223372036854775807", u"9223372036854775808"});
        rows(u"plugin-version?version=", {u"", u"x", u"-2", u"1.5", u"9223372036854775808"});
        rows(u"bare-status?status=", {u"", u"x", u"-1", u"1", u"99", u"600", u"4294967796"});
        rows(u"error?callsign=AB1&type=", {u"", u"x", u"1.5", u"2147483648"});
        rows(u"tune?frequency=", {u"", u"x", u"122.8", u"117999", u"136991"});
        rows(u"tune?frequency=122800&com=", {u"x", u"0", u"3"});
        rows(u"flight?time=", {u"", u"x", u"-1", u"nan", u"inf"});
        rows(u"dataref?name=sim/cockpit/radios/transponder_code&value=", {u"", u"x", u"7700x", u"nan", u"1e39"});
        QTest::newRow("no seconds") << QStringLiteral("token-life");
        QTest::newRow("no time and no phase") << QStringLiteral("flight");
    }

    void refusesABadNumber()
    {
        QFETCH(QString, verb);
        m_network->xplane().setFlightTime(100);
        const QString code = QStringLiteral("sim/cockpit/radios/transponder_code");
        const float before = m_network->xplane().value(code);
        const Answer answer = m_web->post(QStringLiteral("/practice/") + verb, {});
        QCOMPARE(answer.status, 404);
        QCOMPARE(answer.json, (QJsonObject{{QStringLiteral("done"), false}}));
        QCOMPARE(m_network->tokens().life(TokenUse::Access), 3600);
        QCOMPARE(m_network->xplane().flightTime(), 100.0);
        QCOMPARE(m_network->xplane().value(code), before);
        QCOMPARE(m_web->logIn().status, 200);
        settle(*m_pilot, "AB1");
        QVERIFY(!m_pilot->got("$ER"));
    }

    void takesNumbersAtTheEdge_data()
    {
        QTest::addColumn<QString>("verb");
        QTest::newRow("no version") << QStringLiteral("plugin-version?version=-1");
        QTest::newRow("lowest status") << QStringLiteral("bare-status?status=100");
        QTest::newRow("highest status") << QStringLiteral("bare-status?status=599");
        QTest::newRow("born expired") << QStringLiteral("token-life?seconds=0");
        QTest::newRow("start of the flight") << QStringLiteral("flight?time=0");
        QTest::newRow("negative error type") << QStringLiteral("error?callsign=AB1&type=-1");
    }

    void takesNumbersAtTheEdge()
    {
        QFETCH(QString, verb);
        QCOMPARE(m_web->post(QStringLiteral("/practice/") + verb, {}).status, 200);
    }

    void aWebPageHasNoHandInIt()
    {
        const QString kill = QStringLiteral("/practice/kill?callsign=AB1");
        QCOMPARE(m_web->post(kill, {}, "http://example.org").status, 404);
        QCOMPARE(m_web->get(kill).status, 404);
        QCOMPARE(m_network->fsd().callsigns().size(), 1);
    }
};

TARVO_TEST(ControlServiceTest)
#include "ControlServiceTest.moc"

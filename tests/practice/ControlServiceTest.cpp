#include "practice/ControlService.h"

#include "Peers.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

#include <QJsonArray>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

class ControlServiceTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<ControlService> m_control;
    std::unique_ptr<WebPeer> m_web;
    std::unique_ptr<FsdPeer> m_pilot;

private slots:
    void init()
    {
        PracticeSettings settings = quietSettings();
        settings.simulator = true;
        m_network = std::make_unique<PracticeNetwork>(settings, m_clock);
        m_control = std::make_unique<ControlService>(*m_network);
        QVERIFY2(m_network->start(), qPrintable(m_network->errorString()));
        m_web = std::make_unique<WebPeer>(m_network->account());
        m_pilot = std::make_unique<FsdPeer>(m_network->fsd());
        m_pilot->logIn("AB1");
        QTRY_COMPARE(m_network->fsd().callsigns().size(), 1);
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
    }

    void refuses_data()
    {
        QTest::addColumn<QString>("verb");
        QTest::newRow("unknown verb") << QStringLiteral("explode");
        QTest::newRow("unknown callsign") << QStringLiteral("kill?callsign=XY9");
        QTest::newRow("no callsign") << QStringLiteral("kill");
        QTest::newRow("unknown phase") << QStringLiteral("flight?phase=loop");
        QTest::newRow("unknown dataref") << QStringLiteral("dataref?name=sim/nothing&value=1");
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
        rows(u"token-life?seconds=", {u"", u"x", u"5s", u"1.5", u"9223372036854775807", u"9223372036854775808"});
        rows(u"plugin-version?version=", {u"", u"x", u"-2", u"1.5", u"9223372036854775808"});
        rows(u"bare-status?status=", {u"", u"x", u"-1", u"1", u"99", u"600", u"4294967796"});
        rows(u"error?callsign=AB1&type=", {u"", u"x", u"1.5", u"2147483648"});
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

#include "practice/people/ScriptedClients.h"

#include "Peers.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

/// A pilot AB1 at Beijing, the scripted clients XY2, a pilot, and ZBAA_TWR, a controller.
class ScriptedClientsTest : public QObject
{
    Q_OBJECT

    const QString m_scripted = QStringLiteral("XY2");
    const QString m_tower = QStringLiteral("ZBAA_TWR");
    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<FsdLineClient> m_pilot;

    ScriptedClients &scriptedClients() { return m_network->scriptedClients(); }
    QByteArray answerTo(const QByteArray &line)
    {
        m_pilot->forget();
        m_pilot->send(line);
        settle(*m_pilot, "AB1");
        return m_pilot->all();
    }

private slots:
    void init()
    {
        m_network = std::make_unique<PracticeNetwork>(quietSettings(), m_clock);
        QVERIFY(m_network->start());
        m_pilot = std::make_unique<FsdLineClient>(m_network->fsd());
        m_pilot->logIn("AB1");
        m_pilot->report("AB1", 40.0, 116.5);
        TRY_COMPARE(m_network->fsd().callsigns().size(), 1);
        settle(*m_pilot, "AB1");
        QVERIFY(scriptedClients().join(m_scripted, QStringLiteral("1002"), QStringLiteral("Wang Lei ZBAA"), false));
        QVERIFY(scriptedClients().join(m_tower, QStringLiteral("1003"), QStringLiteral("Chen Yu"), true));
    }

    void cleanup()
    {
        m_pilot.reset();
        m_network.reset();
    }

    void theOthersAreToldWhoComesAndGoes()
    {
        TRY_VERIFY(m_pilot->got("#APXY2:SERVER:1002::"));
        TRY_VERIFY(m_pilot->got("#AAZBAA_TWR:SERVER:Chen Yu:1003:"));
        QCOMPARE(scriptedClients().callsigns(), (QStringList{m_scripted, m_tower}));
        QVERIFY(scriptedClients().leave(m_scripted));
        QVERIFY(scriptedClients().leave(m_tower));
        TRY_VERIFY(m_pilot->got("#DPXY2:1002\r\n"));
        TRY_VERIFY(m_pilot->got("#DAZBAA_TWR:1003\r\n"));
        QVERIFY(!scriptedClients().leave(m_scripted));
        QVERIFY(scriptedClients().callsigns().isEmpty());
        QVERIFY(m_network->fsd().residents().isEmpty());
    }

    void aCallsignIsTakenOnce_data()
    {
        QTest::addColumn<QString>("callsign");
        QTest::newRow("a scripted client's") << QStringLiteral("XY2");
        QTest::newRow("a client's") << QStringLiteral("AB1");
        QTest::newRow("none") << QString();
    }

    void aCallsignIsTakenOnce()
    {
        QFETCH(QString, callsign);
        QVERIFY(!scriptedClients().join(callsign, QStringLiteral("1003"), QStringLiteral("N"), false));
        QCOMPARE(scriptedClients().callsigns().size(), 2);
    }

    void whatIsSaidToAScriptedClientIsNoError()
    {
        QSignalSpy heard(&m_network->fsd(), &FsdServer::lineReceived);
        QVERIFY(!answerTo("$CQAB1:XY2:CAPS").contains("$ER"));
        QCOMPARE(heard.at(0).at(1).toString(), QStringLiteral("$CQAB1:XY2:CAPS"));
        QVERIFY(answerTo("$CQAB1:XY3:CAPS").contains("$ERSERVER:AB1:7:XY3:"));
    }

    void speaks_data()
    {
        QTest::addColumn<QString>("callsign");
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("arrives");
        const auto row = [](const char *name, const char *callsign, const char *line, bool arrives) {
            QTest::newRow(name) << QString::fromLatin1(callsign) << QString::fromLatin1(line) << arrives;
        };
        row("slow position", "XY2", "@N:XY2:2000:1:40.1:116.5:5000:250:0:0", true);
        row("fast position", "XY2", "^XY2:40.1:116.5:5000.00:4900.00:0:0:0:0:0:0:0", true);
        row("slow velocity", "XY2", "#SLXY2:40.1:116.5:5000.00:4900.00:0:0:0:0:0:0:0", true);
        row("stopped", "XY2", "#STXY2:40.1:116.5:5000.00:4900.00:0", true);
        row("controller's position", "ZBAA_TWR", "%ZBAA_TWR:18500:4:100:5:40.1:116.5:0", true);
        row("private", "XY2", "#TMXY2:AB1:hello: you", true);
        row("broadcast", "ZBAA_TWR", "#TMZBAA_TWR:*:hello", true);
        row("query", "XY2", "$CQXY2:AB1:CAPS", true);
        row("plane", "XY2", "#SBXY2:AB1:PI:GEN:EQUIPMENT=B738", true);
        row("far away", "XY2", "@N:XY2:2000:1:30.1:116.5:5000:250:0:0", false);
        row("to nobody", "XY2", "#TMXY2:NOBODY:hello", false);
        row("radio from nowhere", "XY2", "#TMXY2:@18500:hello", false);
        row("another's callsign", "XY2", "#TMAB1:AB1:hello", false);
        row("another's position", "XY2", "@N:AB1:2000:1:40.1:116.5:5000:250:0:0", false);
        row("no scripted client", "AB1", "#TMAB1:AB1:hello", false);
        row("position cut off", "XY2", "@N:XY2:2000:1:40.1", false);
        row("fast position cut off", "XY2", "^XY2:40.1:116.5", false);
        row("controller cut off", "ZBAA_TWR", "%ZBAA_TWR:18500:4", false);
        row("plan cut off", "XY2", "$FPXY2:AB1:I:B738", false);
        row("nothing", "XY2", "", false);
    }

    void speaks()
    {
        QFETCH(QString, callsign);
        QFETCH(QString, line);
        QFETCH(bool, arrives);
        m_pilot->forget();
        QCOMPARE(scriptedClients().speak(callsign, line), arrives);
        settle(*m_pilot, "AB1");
        QCOMPARE(m_pilot->all().contains("\r\n" + line.toLatin1() + "\r\n"), arrives);
    }

    void radioReachesWhoIsNear()
    {
        QVERIFY(scriptedClients().speak(m_scripted, QStringLiteral("@N:XY2:2000:1:40.5:116.5:5000:250:0:0")));
        QVERIFY(scriptedClients().speak(m_scripted, QStringLiteral("#TMXY2:@18500:hello")));
        TRY_VERIFY(m_pilot->got("#TMXY2:@18500:hello\r\n"));
    }

    void theServerAnswersForItsPlan()
    {
        const QString plan = QStringLiteral("$FPXY2:SERVER:I:B738:450:ZBAA:0100:0100:FL350:ZSSS:2:0:4:0:ZSPD::DCT");
        QVERIFY(answerTo("$CQAB1:SERVER:FP:XY2").contains("$ERSERVER:AB1:8:XY2:"));
        QVERIFY(scriptedClients().speak(m_scripted, plan));
        const QByteArray answer = answerTo("$CQAB1:SERVER:FP:XY2");
        QVERIFY(answer.contains("$CRSERVER:AB1:FP:XY2:B738\r\n"));
        QVERIFY(answer.contains("\r\n" + plan.toLatin1() + "\r\n"));
    }

    void aControllerIsValidWithAFacility()
    {
        QVERIFY(answerTo("$CQAB1:SERVER:ATC:ZBAA_TWR").contains("$CRSERVER:AB1:ATC:N:ZBAA_TWR\r\n"));
        QVERIFY(scriptedClients().speak(m_tower, QStringLiteral("%ZBAA_TWR:18500:4:100:5:40.1:116.5:0")));
        QVERIFY(answerTo("$CQAB1:SERVER:ATC:ZBAA_TWR").contains("$CRSERVER:AB1:ATC:Y:ZBAA_TWR\r\n"));
        QVERIFY(scriptedClients().speak(m_tower, QStringLiteral("%ZBAA_TWR:18500:0:100:5:40.1:116.5:0")));
        QVERIFY(answerTo("$CQAB1:SERVER:ATC:ZBAA_TWR").contains("$CRSERVER:AB1:ATC:N:ZBAA_TWR\r\n"));
    }

    void everybodyLeavesAtTheEnd()
    {
        {
            ScriptedClients second(m_network->fsd());
            QVERIFY(second.join(QStringLiteral("XY3"), QStringLiteral("1002"), QStringLiteral("N"), false));
        }
        TRY_VERIFY(m_pilot->got("#DPXY3:1002\r\n"));
        QCOMPARE(m_network->fsd().residents().size(), 2);
    }
};

TARVO_TEST(ScriptedClientsTest)
#include "ScriptedClientsTest.moc"

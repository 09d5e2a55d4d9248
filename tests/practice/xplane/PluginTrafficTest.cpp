#include "PluginDialer.h"
#include "practice/xplane/PluginStandIn.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

/// How the plugin's end answers ADD and DEL, and what it draws.
class PluginTrafficTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    ManualClock m_clock;
    std::unique_ptr<PluginStandIn> m_plugin;
    std::unique_ptr<PluginDialer> m_client;
    QStringList m_said;

    QString url() const { return QStringLiteral("ipc://%1").arg(m_folder.filePath(QStringLiteral("p.ipc"))); }
    /// Sends a message and waits until the plugin has it. The callsign and up to eleven values.
    void send(const QString &name, const QVariantList &arguments)
    {
        QSignalSpy received(m_plugin.get(), &PluginStandIn::messageReceived);
        QVERIFY(m_client->send(PluginMessage{name, arguments}.toBytes()));
        TRY_COMPARE(received.size(), 1);
    }
    void add(const QString &callsign, const QString &type = QStringLiteral("B738"))
    {
        send(QStringLiteral("ADD"), {callsign, QStringLiteral("CCA"), type, 40.5, 116.5, 1000.0, 90.0, 1.0, 2.0});
    }
    void remove(const QString &callsign) { send(QStringLiteral("DEL"), {callsign, QStringLiteral("Stale")}); }
    void pass(qint64 ms)
    {
        m_clock.advance(ms);
        m_plugin->answerDue();
    }
    QStringList drawn() const
    {
        QStringList list;
        for (const DrawnAircraft &aircraft : m_plugin->aircraft())
            list << aircraft.callsign;
        return list;
    }

    const QString m_a = QStringLiteral("CCA1");
    const QString m_b = QStringLiteral("CCA2");

private slots:
    void init()
    {
        m_plugin = std::make_unique<PluginStandIn>(m_clock);
        QVERIFY2(m_plugin->listen(url()), qPrintable(m_plugin->errorString()));
        m_client = std::make_unique<PluginDialer>(url());
        m_said.clear();
        connect(m_plugin.get(), &PluginStandIn::messageSent, this,
                [this](const QString &name, const QVariantList &arguments) {
                    m_said << PluginMessage{name, arguments}.toText();
                });
    }

    void cleanup()
    {
        m_client.reset();
        m_plugin.reset();
    }

    void drawsWhatItIsTold()
    {
        add(m_a);
        add(m_b, QStringLiteral("A320"));
        QCOMPARE(drawn(), (QStringList{m_a, m_b}));
        const DrawnAircraft aircraft = m_plugin->aircraft(m_b);
        QCOMPARE(aircraft.airline, QStringLiteral("CCA"));
        QCOMPARE(aircraft.type, QStringLiteral("A320"));
        QCOMPARE(aircraft.latitude, 40.5);
        QCOMPARE(aircraft.longitude, 116.5);
        QCOMPARE(aircraft.altitudeM, 1000.0);
        QCOMPARE(aircraft.heading, 90.0);
        QCOMPARE(aircraft.bank, 1.0);
        QCOMPARE(aircraft.pitch, 2.0);
        QCOMPARE(aircraft.moved, QStringLiteral("ADD"));
        QCOMPARE(aircraft.positions, 0);
        remove(m_a);
        QCOMPARE(drawn(), QStringList{m_b});
        QVERIFY(m_plugin->aircraft(m_a).callsign.isEmpty());
        QCOMPARE(m_said, (QStringList{QStringLiteral("ADDED CCA1"), QStringLiteral("ADDED CCA2"),
                                      QStringLiteral("DELETED CCA1")}));
    }

    void moves()
    {
        add(m_a);
        const QVariantList slow{m_a, 41.0, 117.0, 1100.0, 1000.0, 91.0, 3.0, 4.0, 250.0};
        send(QStringLiteral("POS"), slow);
        DrawnAircraft aircraft = m_plugin->aircraft(m_a);
        QCOMPARE(aircraft.latitude, 41.0);
        QCOMPARE(aircraft.longitude, 117.0);
        QCOMPARE(aircraft.altitudeM, 1100.0);
        QCOMPARE(aircraft.heading, 91.0);
        QCOMPARE(aircraft.bank, 3.0);
        QCOMPARE(aircraft.pitch, 4.0);
        QCOMPARE(aircraft.groundSpeed, 250.0);
        QCOMPARE(aircraft.moved, QStringLiteral("POS"));
        QCOMPARE(aircraft.movement, slow);
        send(QStringLiteral("FSTPOS"),
             {m_a, 42.0, 118.0, 1200.0, 1000.0, 92.0, 5.0, 6.0, 1.0, 2.0, 3.0, 0.1, 0.2, 0.3, 7.0, 260.0});
        aircraft = m_plugin->aircraft(m_a);
        QCOMPARE(aircraft.latitude, 42.0);
        QCOMPARE(aircraft.heading, 92.0);
        QCOMPARE(aircraft.pitch, 6.0);
        QCOMPARE(aircraft.groundSpeed, 260.0);
        QCOMPARE(aircraft.moved, QStringLiteral("FSTPOS"));
        QCOMPARE(aircraft.positions, 2);
    }

    void mergesItsConfiguration()
    {
        add(m_a);
        QVariantList first(12);
        first[0] = m_a;
        first[1] = true;
        first[6] = false; // gear
        send(QStringLiteral("ACCONF"), first);
        QVariantList second(12);
        second[0] = m_a;
        second[6] = true;
        second[11] = true;
        send(QStringLiteral("ACCONF"), second);
        const QVariantList configuration = m_plugin->aircraft(m_a).configuration;
        QCOMPARE(configuration.size(), 11);
        QCOMPARE(configuration.at(0), QVariant(true));
        QVERIFY(!configuration.at(1).isValid());
        QCOMPARE(configuration.at(5), QVariant(true));
        QCOMPARE(configuration.at(10), QVariant(true));
    }

    void ignoresWhatIsAboutNobody_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariantList>("arguments");
        QTest::newRow("position") << QStringLiteral("POS") << QVariantList{m_b, 41.0};
        QTest::newRow("fast position") << QStringLiteral("FSTPOS") << QVariantList{m_b, 41.0};
        QTest::newRow("configuration") << QStringLiteral("ACCONF") << QVariantList{m_b, true};
        QTest::newRow("add without a callsign") << QStringLiteral("ADD") << QVariantList{};
        QTest::newRow("add with an empty callsign") << QStringLiteral("ADD") << QVariantList{QString()};
        QTest::newRow("delete without a callsign") << QStringLiteral("DEL") << QVariantList{};
        QTest::newRow("heartbeat") << QStringLiteral("HB") << QVariantList{m_a};
    }

    void ignoresWhatIsAboutNobody()
    {
        QFETCH(QString, name);
        QFETCH(QVariantList, arguments);
        add(m_a);
        m_said.clear();
        send(name, arguments);
        QCOMPARE(drawn(), QStringList{m_a});
        QVERIFY(m_said.isEmpty());
    }

    void shortMessagesDoNoHarm()
    {
        send(QStringLiteral("ADD"), {m_a});
        send(QStringLiteral("POS"), {m_a});
        send(QStringLiteral("FSTPOS"), {m_a});
        send(QStringLiteral("ACCONF"), {m_a});
        QCOMPARE(m_plugin->aircraft(m_a).positions, 2);
    }

    void drawsOneAgainWhenItIsAddedAgain()
    {
        add(m_a);
        add(m_b);
        send(QStringLiteral("POS"), {m_a, 41.0});
        add(m_a, QStringLiteral("B77W"));
        QCOMPARE(drawn(), (QStringList{m_a, m_b}));
        QCOMPARE(m_plugin->aircraft(m_a).type, QStringLiteral("B77W"));
        QCOMPARE(m_plugin->aircraft(m_a).positions, 0);
        QCOMPARE(m_said.count(QStringLiteral("ADDED CCA1")), 2);
    }

    void answersLate()
    {
        m_plugin->setAddAnswering({.delayMs = 500});
        m_plugin->setDelAnswering({.delayMs = 2000});
        add(m_a);
        QVERIFY(drawn().isEmpty());
        pass(499);
        QVERIFY(m_said.isEmpty());
        pass(1);
        QCOMPARE(m_said, QStringList{QStringLiteral("ADDED CCA1")});
        QCOMPARE(drawn(), QStringList{m_a});
        remove(m_a);
        pass(1999);
        QCOMPARE(drawn(), QStringList{m_a});
        pass(1);
        QVERIFY(drawn().isEmpty());
        QCOMPARE(m_said.size(), 2);
        QCOMPARE(m_plugin->pendingAnswers(), 0);
    }

    void answersLateByItself()
    {
        m_plugin = std::make_unique<PluginStandIn>();
        m_client.reset();
        QVERIFY(m_plugin->listen(url()));
        m_client = std::make_unique<PluginDialer>(url());
        m_plugin->setAddAnswering({.delayMs = 30});
        add(m_a);
        TRY_COMPARE(drawn(), QStringList{m_a});
    }

    void keepsTheOrderOfDueTimes()
    {
        m_plugin->setAddAnswering({.delayMs = 500});
        add(m_a);
        m_plugin->setAddAnswering({.delayMs = 200});
        add(m_b);
        m_plugin->setAddAnswering({});
        add(QStringLiteral("CCA3"));
        pass(1000);
        QCOMPARE(m_said, (QStringList{QStringLiteral("ADDED CCA3"), QStringLiteral("ADDED CCA2"),
                                      QStringLiteral("ADDED CCA1")}));
    }

    void aDeleteDoesNotOvertakeItsAdd()
    {
        m_plugin->setAddAnswering({.delayMs = 500});
        add(m_a);
        remove(m_a);
        QVERIFY(m_said.isEmpty());
        pass(500);
        QCOMPARE(m_said, (QStringList{QStringLiteral("ADDED CCA1"), QStringLiteral("DELETED CCA1")}));
        QVERIFY(drawn().isEmpty());
    }

    void keepsSilentWhenItIsTold()
    {
        m_plugin->setAddAnswering({.silent = true});
        add(m_a);
        pass(100'000);
        QVERIFY(m_said.isEmpty());
        QVERIFY(drawn().isEmpty());
        m_plugin->setAddAnswering({});
        m_plugin->setDelAnswering({.silent = true});
        add(m_a);
        remove(m_a);
        pass(100'000);
        QCOMPARE(m_said, QStringList{QStringLiteral("ADDED CCA1")});
        QCOMPARE(drawn(), QStringList{m_a});
    }

    void aMutePluginLeavesOutWhatWasDue()
    {
        m_plugin->setAddAnswering({.delayMs = 500});
        add(m_a);
        m_plugin->setMute(true);
        add(m_b);
        pass(500);
        QVERIFY(m_said.isEmpty());
        QVERIFY(drawn().isEmpty());
        QCOMPARE(m_plugin->pendingAnswers(), 0);
    }

    void deletesAllAtOnce()
    {
        add(m_a);
        m_plugin->setAddAnswering({.delayMs = 500});
        add(m_b);
        send(QStringLiteral("DELALL"), {});
        QVERIFY(drawn().isEmpty());
        pass(500);
        QVERIFY(drawn().isEmpty());
        QCOMPARE(m_said, QStringList{QStringLiteral("ADDED CCA1")});
    }

    void vanishesAndComesBack()
    {
        add(m_a);
        m_plugin->setAddAnswering({.delayMs = 500});
        add(m_b);
        QVERIFY(!m_plugin->comeBack());
        QVERIFY(m_plugin->vanish());
        QVERIFY(!m_plugin->isListening());
        QVERIFY(drawn().isEmpty());
        QVERIFY(!m_plugin->sendRadioMessage(m_a));
        QVERIFY(!m_plugin->vanish());
        QVERIFY(m_plugin->comeBack());
        pass(500);
        QVERIFY(drawn().isEmpty());
        m_plugin->setAddAnswering({});
        const auto served = [this] { // again and again: what goes into a connection that is gone is lost
            m_client->send(PluginMessage{QStringLiteral("ADD"), {m_b}}.toBytes());
            return drawn() == QStringList{m_b};
        };
        TRY_VERIFY(served());
    }

    void oneThatNeverListenedCannotComeBack()
    {
        PluginStandIn plugin(m_clock);
        QVERIFY(!plugin.vanish());
        QVERIFY(!plugin.comeBack());
    }

    void drawsNoMoreThanItCan()
    {
        DrawnTraffic traffic;
        for (int i = 0; i <= DrawnTraffic::mostAircraft; ++i)
            traffic.add({QStringLiteral("X%1").arg(i)});
        QCOMPARE(traffic.all().size(), DrawnTraffic::mostAircraft);
    }

    void isWrittenAsText_data()
    {
        QTest::addColumn<QVariantList>("arguments");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << QVariantList{} << QStringLiteral("X");
        QTest::newRow("values") << QVariantList{QStringLiteral("a b"), true, 7, 1.5, QVariant()}
                                << QStringLiteral("X a b true 7 1.5 nil");
        QTest::newRow("short float") << QVariantList{0.3F} << QStringLiteral("X 0.3");
        QTest::newRow("lists") << QVariantList{QVariant(QVariantList{QVariant(QVariantList{1, 2}), 3})}
                               << QStringLiteral("X [[1, 2], 3]");
    }

    void isWrittenAsText()
    {
        QFETCH(QVariantList, arguments);
        QFETCH(QString, text);
        QCOMPARE((PluginMessage{QStringLiteral("X"), arguments}.toText()), text);
    }
};

TARVO_TEST(PluginTrafficTest)
#include "PluginTrafficTest.moc"

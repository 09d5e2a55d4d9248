#include "XPlaneBench.h"
#include "simulator/xplane/PluginLink.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QLocalServer>
#include <QLocalSocket>

#include <utility>

using namespace tarvo;
using simulator::Simulator;
using simulator::xplane::PluginLink;
using test::AdapterBench;

/// A link that was asked for once comes back by itself.
class XPlaneAdapterRecoveryTest : public QObject
{
    Q_OBJECT

private slots:
    void aLateAnswerIsTaken_data()
    {
        tarvo::test::columns<int, bool>("version", "connects");
        QTest::newRow("of a plugin that is too old") << 65535 << false;
        QTest::newRow("of a good one") << 65536 << true;
    }

    void aLateAnswerIsTaken()
    {
        QFETCH(int, version);
        QFETCH(bool, connects);
        AdapterBench bench;
        QVERIFY(bench.begin());
        bench.endAttempt();
        QVERIFY(bench.answerVersion(version));
        bench.tick();
        QCOMPARE(bench.connection->size(), connects ? 1 : 0);
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), 1);
    }

    void aNewPluginBeginsAnAttempt_data()
    {
        tarvo::test::columns<std::function<void(AdapterBench &)>, QList<bool>>("before", "connected");
        const auto add = [](const char *name, std::function<void(AdapterBench &)> before,
                            const QList<bool> &connected) { QTest::newRow(name) << std::move(before) << connected; };
        add("on a link that is up", [](AdapterBench &bench) { QVERIFY(bench.connect()); }, {true, false, true});
        add("in an attempt", [](AdapterBench &bench) { QVERIFY(bench.begin()); }, {true});
        add("after an attempt",
            [](AdapterBench &bench) {
                QVERIFY(bench.begin());
                bench.endAttempt();
            },
            {true});
        add("after its first one has shut down",
            [](AdapterBench &bench) {
                QVERIFY(bench.connect());
                bench.plugin->send(QStringLiteral("SHUTDOWN"));
                TRY_COMPARE(bench.connection->size(), 2);
            },
            {true, false, true});
        add("in place of one that was too old",
            [](AdapterBench &bench) {
                QVERIFY(bench.begin());
                QVERIFY(bench.answerVersion(65535));
                bench.endAttempt();
            },
            {true});
        add("where there was none",
            [](AdapterBench &bench) {
                bench.plugin.reset();
                bench.dial();
                bench.adapter->reconnectSimulator();
                bench.endAttempt();
            },
            {true});
    }

    void aNewPluginBeginsAnAttempt()
    {
        QFETCH(std::function<void(AdapterBench &)>, before);
        QFETCH(QList<bool>, connected);
        AdapterBench bench;
        before(bench);
        QStringList order;
        connect(bench.adapter.get(), &Simulator::simConnectionStateChanged, this,
                [&order](bool up) { order << (up ? QStringLiteral("up") : QStringLiteral("down")); });
        connect(bench.adapter.get(), &Simulator::restarted, this, [&order] { order << QStringLiteral("restarted"); });
        QVERIFY(bench.restartPlugin());
        QVERIFY(bench.answerVersion());
        TRY_VERIFY(bench.attemptTimer()->isActive());
        bench.tick();
        QCOMPARE(order.mid(order.indexOf(QStringLiteral("up"))),
                 (QStringList{QStringLiteral("up"), QStringLiteral("restarted")}));
        QList<bool> seen;
        for (const QList<QVariant> &one : *bench.connection)
            seen.append(one.first().toBool());
        QCOMPARE(seen, connected);
        bench.adapter->reconnectSimulator(); // the plugin knows everything now
        QVERIFY(bench.answerVersion());
        bench.tick();
        QCOMPARE(bench.restarted->size(), 1);
    }

    void aPluginIsNotAskedUnlessSomebodyWantsTo()
    {
        AdapterBench bench;
        bench.dial();
        TRY_VERIFY(bench.plugin->hasClient());
        bench.plugin.reset();
        bench.startPlugin();
        TRY_VERIFY(bench.plugin->hasClient());
        QVERIFY(bench.answerVersion()); // unasked
        bench.clock.advance(10'000);
        bench.tick();
        bench.adapter->networkDisconnected();
        TRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("DISCON")});
        QVERIFY(bench.simulator.datagrams().isEmpty());
    }

    void aPluginThatMissedMessagesIsToldAnew()
    {
        AdapterBench bench;
        bench.plugin.reset();
        bench.dial();
        bench.adapter->reconnectSimulator();
        const QString text(60'000, u'x');
        QTest::ignoreMessage(QtWarningMsg, "X-Plane plugin does not read: messages are lost until it does");
        for (int i = 0; i < 8192 + 200; ++i)
            bench.adapter->showRadioMessageSent(i < 8192 ? QString() : text);
        bench.startPlugin();
        // With the first connection the attempt's own question, and then another.
        TRY_COMPARE(bench.plugin->count(QStringLiteral("VER")), 2);
        QVERIFY(bench.answerVersion());
        bench.tick();
        QCOMPARE(bench.connection->size(), 1);
        QCOMPARE(bench.restarted->size(), 1);
    }

    void aPluginThatComesInAnAttemptProlongsItOnce_data()
    {
        QTest::addColumn<bool>("first");
        QTest::newRow("the first") << true;
        QTest::newRow("another") << false;
    }

    void aPluginThatComesInAnAttemptProlongsItOnce()
    {
        QFETCH(bool, first);
        AdapterBench bench;
        auto *timer = bench.attemptTimer();
        if (first) {
            bench.plugin.reset();
            bench.dial();
        } else {
            QVERIFY(bench.connect());
        }
        bench.adapter->reconnectSimulator();
        for (const bool prolongs : {true, false}) {
            timer->stop();
            QVERIFY(bench.restartPlugin());
            if (prolongs)
                TRY_VERIFY(timer->isActive());
            QCOMPARE(timer->isActive(), prolongs);
        }
        timer->start();
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), 1);
    }

    void anOutageIsToldOnce()
    {
        AdapterBench bench;
        QVERIFY(bench.connect());
        for (int i = 0; i < 3; ++i) {
            QVERIFY(bench.restartPlugin());
            bench.endAttempt(); // by itself, and without an answer
            QCOMPARE(bench.failure->size(), 1);
        }
        bench.adapter->reconnectSimulator();
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), 2); // who asks gets an answer
        QVERIFY(bench.answerVersion());
        bench.tick();
        QVERIFY(bench.connection->last().first().toBool());
        QVERIFY(bench.restartPlugin());
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), 3); // another outage
    }

    void aSilentSimulatorIsCalledEveryTenSeconds_data()
    {
        QTest::addColumn<bool>("up");
        QTest::newRow("on a link that is up") << true;
        QTest::newRow("after an attempt") << false;
    }

    void aSilentSimulatorIsCalledEveryTenSeconds()
    {
        QFETCH(bool, up);
        AdapterBench bench;
        QVERIFY(up ? bench.connect() : bench.begin());
        if (!up)
            bench.endAttempt();
        for (int i = 0; i < 3; ++i) {
            bench.simulator.clear();
            bench.clock.advance(9000);
            bench.tick();
            bench.adapter->transponderIdent(); // comes behind whatever was sent before
            TRY_COMPARE(bench.simulator.commands().size(), 1);
            QVERIFY(bench.simulator.subscriptions().isEmpty());
            bench.clock.advance(1000);
            bench.tick();
            TRY_COMPARE(bench.simulator.subscriptions().size(), 53);
        }
        QCOMPARE(bench.plugin->count(QStringLiteral("VER")), 1);
    }

    void withoutAPluginItBeginsNone()
    {
        AdapterBench bench;
        QVERIFY(bench.connect());
        bench.clock.advance(16'000);
        bench.tick();
        bench.plugin.reset();
        TRY_VERIFY(!bench.adapter->findChild<PluginLink *>()->isConnected());
        QVERIFY(bench.hear());
        bench.tick();
        QVERIFY(!bench.attemptTimer()->isActive());
    }

    void aReceiverMayReconnectBeforeTheRestartIsTold()
    {
        AdapterBench bench;
        QVERIFY(bench.connect());
        QVERIFY(bench.restartPlugin());
        QVERIFY(bench.answerVersion());
        bool reconnects = true;
        connect(bench.adapter.get(), &Simulator::simConnectionStateChanged, this, [&](bool connected) {
            if (connected && std::exchange(reconnects, false))
                bench.adapter->reconnectSimulator();
        });
        bench.tick();
        QVERIFY(!reconnects);
        QCOMPARE(bench.restarted->size(), 0);
        QVERIFY(bench.answerVersion());
        bench.tick();
        QCOMPARE(bench.restarted->size(), 1);
    }

    void aSimulatorThatIsHeardAgainBeginsAnAttempt()
    {
        AdapterBench bench;
        QVERIFY(bench.connect());
        bench.clock.advance(16'000);
        bench.tick();
        QCOMPARE(bench.connection->size(), 2);
        bench.plugin->clear();
        QVERIFY(bench.hear());
        bench.tick();
        TRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        QVERIFY(bench.answerVersion());
        bench.tick();
        QCOMPARE(bench.connection->size(), 3);
        QCOMPARE(bench.restarted->size(), 0); // the plugin was there all the time
        bench.plugin->send(QStringLiteral("SHUTDOWN"));
        TRY_COMPARE(bench.connection->size(), 4);
        bench.tick(); // still heard: nothing new
        bench.adapter->networkDisconnected();
        TRY_COMPARE(bench.plugin->names().mid(1), QStringList{QStringLiteral("DISCON")});
    }

    void aSimulatorThatDiesInAPauseIsLost_data()
    {
        tarvo::test::columns<bool, bool, QList<bool>>("paused", "up", "told");
        QTest::newRow("without a plugin") << true << false << QList<bool>{false};
        QTest::newRow("without a plugin or a pause") << false << false << QList<bool>{}; // the session finds out itself
        QTest::newRow("on a link") << true << true << QList<bool>{true, false};
    }

    void aSimulatorThatDiesInAPauseIsLost()
    {
        QFETCH(bool, paused);
        QFETCH(bool, up);
        AdapterBench bench;
        QVERIFY(up ? bench.connect() : bench.begin());
        bench.endAttempt();
        bench.simulator.report({{20, 3048.0F}, {51, paused ? 1.0F : 0.0F}});
        QVERIFY(bench.hear());
        bench.tick();
        bench.clock.advance(15'000);
        bench.tick();
        QCOMPARE(bench.connection->size(), up ? 1 : 0);
        bench.clock.advance(1000);
        bench.tick();
        bench.tick();
        QList<bool> told;
        for (const QList<QVariant> &one : *bench.connection)
            told.append(one.first().toBool());
        QTEST(told, "told");
        QCOMPARE(bench.adapter->pressureAltitudeFeet() == 0.0, paused || up); // the own aircraft is forgotten
    }

    /// Whoever takes the connection and says nothing sees how the dialling begins anew: within QTRY's 5 seconds, for
    /// nng does it by itself after 10.
    void dialsAnewWhereNoPluginIs()
    {
        AdapterBench bench;
        bench.plugin.reset();
        bench.address.useIpc();
        bench.makeAdapter();
        QLocalServer mute;
        QVERIFY(mute.listen(bench.address.url().mid(6)));
        int calls = 0;
        connect(&mute, &QLocalServer::newConnection, &mute, [&calls] { ++calls; });
        bench.dial();
        bench.adapter->reconnectSimulator(); // too soon after the dial
        QTRY_COMPARE(calls, 1);
        bench.clock.advance(1000);
        bench.adapter->reconnectSimulator();
        QTRY_COMPARE(calls, 2);
        for (int expected : {3, 4}) {
            bench.clock.advance(9000);
            bench.tick();
            bench.clock.advance(1000);
            bench.tick();
            bench.tick();
            QTRY_COMPARE(calls, expected);
        }
    }
};

TARVO_TEST(XPlaneAdapterRecoveryTest)
#include "XPlaneAdapterRecoveryTest.moc"

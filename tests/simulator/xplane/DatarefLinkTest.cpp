#include "XPlaneBench.h"
#include "support/Columns.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

using namespace tarvo;
using namespace tarvo::simulator::xplane;
using tarvo::test::columns;
using tarvo::test::DatarefBench;
using tarvo::test::DatarefPeer;

class DatarefLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void subscribesToEveryRow_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("127.0.0.1") << QStringLiteral("127.0.0.1");
        QTest::newRow("localhost") << QStringLiteral("localhost");
        QTest::newRow("LOCALHOST") << QStringLiteral("LOCALHOST");
        QTest::newRow("empty") << QString();
    }

    void subscribesToEveryRow()
    {
        QFETCH(QString, address);
        DatarefBench bench(address);
        QVERIFY(bench.subscribe());
        const auto subscriptions = bench.simulator.subscriptions();
        qint32 id = 0;
        for (const Dataref &row : datarefs())
            QCOMPARE(subscriptions.value(id++), (DatarefPeer::Subscription{QString::fromLatin1(row.name), row.rateHz}));
        QCOMPARE(bench.simulator.datagrams().size(), 53);
        bench.simulator.clear();
        QVERIFY(bench.subscribe()); // and again
    }

    void portIsReadAtEachSend()
    {
        DatarefBench bench;
        DatarefPeer other;
        bench.config.set(config::xplaneUdpPort, other.port());
        bench.link->command("sim/x");
        TRY_COMPARE(other.commands(), QStringList{QStringLiteral("sim/x")});
        QVERIFY(bench.simulator.datagrams().isEmpty());
    }

    void portOutsideTheRangeIsTheDefaultOne_data()
    {
        columns<int, bool>("base", "addPeer");
        QTest::newRow("70000") << 70000 << false;
        QTest::newRow("65536") << 65536 << false;
        QTest::newRow("0") << 0 << false;
        QTest::newRow("-1") << -1 << false;
        QTest::newRow("the peer's, once cut to 16 bits") << 65536 << true;
        QTest::newRow("the peer's, once wrapped around") << -65536 << true;
    }

    void portOutsideTheRangeIsTheDefaultOne()
    {
        QFETCH(int, base);
        QFETCH(bool, addPeer);
        DatarefBench bench;
        const int port = base + (addPeer ? bench.simulator.port() : 0);
        bench.config.set(config::xplaneUdpPort, port);
        {
            const test::LogCapture log;
            bench.link->command("sim/x");
            bench.link->command("sim/y");
            QCOMPARE(log.texts(QtWarningMsg),
                     QStringList{QStringLiteral("X-Plane UDP port %1 does not exist; using 49000").arg(port)});
        }
        bench.config.set(config::xplaneUdpPort, bench.simulator.port());
        bench.link->command("sim/marker");
        TRY_VERIFY(!bench.simulator.commands().isEmpty());
        QCOMPARE(bench.simulator.commands(), QStringList{QStringLiteral("sim/marker")});
        bench.config.set(config::xplaneUdpPort, port);
        const test::LogCapture log;
        bench.link->command("sim/x");
        QCOMPARE(log.texts(QtWarningMsg).size(), 1); // of another time
    }

    void portsAtTheEndsOfTheRangeAreUsed_data()
    {
        QTest::addColumn<int>("port");
        QTest::newRow("lowest") << 1;
        QTest::newRow("highest") << 65535;
    }

    void portsAtTheEndsOfTheRangeAreUsed()
    {
        QFETCH(int, port);
        DatarefBench bench;
        bench.config.set(config::xplaneUdpPort, port);
        const test::LogCapture log;
        bench.link->command("sim/x");
        QCOMPARE(log.texts(QtWarningMsg), QStringList());
    }

    void textThatIsNoAddressSendsNothing()
    {
        QTest::ignoreMessage(
            QtWarningMsg, "X-Plane's address is no IP address, its UDP interface is out of reach: \"no-such-machine\"");
        DatarefBench bench(QStringLiteral("no-such-machine"));
        bench.link->subscribe();
        bench.link->write("sim/x", 1);
        DatarefPeer stranger;
        stranger.setClient(QHostAddress(QHostAddress::LocalHost), bench.simulator.port());
        stranger.sendRaw("marker");
        TRY_COMPARE(bench.simulator.datagrams(), QList<QByteArray>{"marker"});
    }

    void replyRefreshesTheTime_data()
    {
        columns<QByteArray, bool>("datagram", "refreshes");
        QTest::newRow("4 bytes") << QByteArray("RREF") << true;
        QTest::newRow("5 bytes") << QByteArray("RREF,") << true;
        QTest::newRow("12 bytes") << QByteArray("RREF,\x12\0\0\0\0\0\x20", 12) << true;
        QTest::newRow("another tag") << QByteArray("DREF,\x12\0\0\0\0\0\x20\x42", 13) << false;
        QTest::newRow("3 bytes") << QByteArray("RRE") << false;
        QTest::newRow("empty") << QByteArray() << false;
    }

    void replyRefreshesTheTime()
    {
        QFETCH(QByteArray, datagram);
        QFETCH(bool, refreshes);
        DatarefBench bench;
        QVERIFY(bench.subscribe());
        bench.link->setLastReplySeconds(7);
        bench.simulator.sendRaw(datagram);
        if (refreshes) {
            TRY_COMPARE(bench.link->lastReplySeconds(), bench.clock.steadyMs() / 1000);
            QVERIFY(bench.link->sample().user == model::UserAircraftData());
        } else {
            // Datagrams of one socket arrive in order: when the marker is there, the other one was, too.
            bench.clock.advance(5000);
            QVERIFY(bench.settle());
            QCOMPARE(bench.link->lastReplySeconds(), bench.clock.steadyMs() / 1000);
            QCOMPARE(bench.link->sample().user.latitude, 0.0);
        }
    }

    void foreignHostIsDropped()
    {
        DatarefBench bench;
        QVERIFY(bench.subscribe());
        bench.link->setLastReplySeconds(7);
        DatarefPeer stranger(QHostAddress(QStringLiteral("127.0.0.2")));
        stranger.setClient(QHostAddress(QHostAddress::LocalHost), bench.simulator.clientPort());
        QSignalSpy replay(bench.link.get(), &DatarefLink::replayModeDetected);
        stranger.report({{18, 40.0F}, {50, 1.0F}});
        TRY_VERIFY(!linkHasPending(bench));
        QCOMPARE(bench.link->lastReplySeconds(), 7);
        QVERIFY(bench.settle()); // and it does not stop those of the simulator
        QCOMPARE(bench.link->sample().user.latitude, 0.0);
        QCOMPARE(replay.size(), 0);
    }

    void anotherPortOfTheSimulatorCounts()
    {
        DatarefBench bench;
        QVERIFY(bench.subscribe());
        DatarefPeer other;
        other.setClient(QHostAddress(QHostAddress::LocalHost), bench.simulator.clientPort());
        other.report(18, 40);
        TRY_COMPARE(bench.link->sample().user.latitude, 40.0);
    }

    void manyPendingDatagramsAreReadAtOnce()
    {
        DatarefBench bench;
        QVERIFY(bench.subscribe());
        QSignalSpy rounds(bench.link->findChild<QUdpSocket *>(), &QUdpSocket::readyRead);
        QList<double> afterEachRound; // this comes after the link's own handling of the same signal
        connect(bench.link->findChild<QUdpSocket *>(), &QUdpSocket::readyRead, this,
                [&] { afterEachRound.append(bench.link->sample().user.altitudeMslM); });
        for (int i = 1; i <= 160; ++i)
            bench.simulator.report(20, static_cast<float>(i));
        QVERIFY(rounds.isEmpty()); // no events were handled: all of them are pending
        QVERIFY(rounds.wait());
        QCOMPARE(afterEachRound.first(), 150.0);
        TRY_COMPARE(bench.link->sample().user.altitudeMslM, 160.0); // other events have had their turn
    }

    void everyRecordOfAReplyCounts()
    {
        DatarefBench bench;
        QVERIFY(bench.subscribe());
        bench.simulator.report({{18, 40.0F}, {19, 116.0F}, {53, 1.0F}, {0xffffffff, 1.0F}, {20, 100.0F}});
        TRY_COMPARE(bench.link->sample().user.altitudeMslM, 100.0);
        QCOMPARE(bench.link->sample().user.latitude, 40.0);
        QCOMPARE(bench.link->sample().user.longitude, 116.0);
    }

    void eventsAreRaised()
    {
        DatarefBench bench;
        QVERIFY(bench.subscribe());
        QSignalSpy replay(bench.link.get(), &DatarefLink::replayModeDetected);
        QSignalSpy paused(bench.link.get(), &DatarefLink::pausedChanged);
        QSignalSpy version(bench.link.get(), &DatarefLink::versionChanged);
        bench.simulator.report({{50, 1.0F}, {50, 0.0F}, {50, 2.0F}, {51, 1.0F}, {51, 1.0F}, {51, 0.0F}});
        bench.simulator.report({{52, 0.0F}, {52, 120105.0F}, {52, 120105.0F}});
        QVERIFY(bench.settle());
        QCOMPARE(replay.size(), 2);
        QCOMPARE(paused.size(), 2);
        QCOMPARE(paused.at(0).first().toBool(), true);
        QCOMPARE(paused.at(1).first().toBool(), false);
        QCOMPARE(version.size(), 1);
        QCOMPARE(version.first().first().toInt(), 120105);
    }

    void firstPublicationTellsAll()
    {
        test::XPlaneBench bench;
        DatarefLink link(bench.config, bench.clock);
        QSignalSpy user(&link, &DatarefLink::userAircraftDataChanged);
        QSignalSpy config(&link, &DatarefLink::userAircraftConfigDataChanged);
        QSignalSpy radio(&link, &DatarefLink::radioStackStateChanged);
        test::fire(link, "publish");
        QCOMPARE(user.size(), 1);
        QCOMPARE(config.size(), 1);
        QCOMPARE(radio.size(), 1);
        QVERIFY(user.first().first().value<model::UserAircraftData>() == model::UserAircraftData());
        test::fire(link, "publish"); // nothing has changed
        QCOMPARE(user.size(), 1);
        QCOMPARE(config.size(), 1);
        QCOMPARE(radio.size(), 1);
    }

    void publishingRestsWhileNothingComes()
    {
        DatarefBench bench;
        const auto *timer = bench.link->findChild<QTimer *>(QStringLiteral("publish"));
        const auto rest = [&bench, timer] {
            int ticks = 0;
            for (; timer->isActive() && ticks < 100; ++ticks)
                bench.publish();
            return ticks;
        };
        QVERIFY(bench.subscribe());
        QVERIFY(bench.settle());
        QVERIFY(rest() > 10); // a running simulator replies more often than twice a second
        QVERIFY(!timer->isActive());
        QSignalSpy user(bench.link.get(), &DatarefLink::userAircraftDataChanged);
        bench.simulator.report(18, 40);
        TRY_COMPARE(user.size(), 1); // by its own timer
        QVERIFY(rest() > 10);
        QVERIFY(!timer->isActive());
        bench.link->clearAircraft();
        TRY_COMPARE(user.size(), 2);
        QVERIFY(user.last().first().value<model::UserAircraftData>() == model::UserAircraftData());
    }

    void onlyWhatChangedIsPublished_data()
    {
        columns<quint32, int, int, int>("id", "user", "config", "radio");
        QTest::newRow("position") << 18U << 1 << 0 << 0;
        QTest::newRow("gear") << 45U << 0 << 1 << 0;
        QTest::newRow("COM1") << 4U << 0 << 0 << 1;
        QTest::newRow("pause") << 51U << 0 << 0 << 0;
    }

    void onlyWhatChangedIsPublished()
    {
        QFETCH(quint32, id);
        DatarefBench bench;
        QVERIFY(bench.subscribe());
        QVERIFY(bench.settle());
        bench.publish();
        QSignalSpy user(bench.link.get(), &DatarefLink::userAircraftDataChanged);
        QSignalSpy config(bench.link.get(), &DatarefLink::userAircraftConfigDataChanged);
        QSignalSpy radio(bench.link.get(), &DatarefLink::radioStackStateChanged);
        QSignalSpy paused(bench.link.get(), &DatarefLink::pausedChanged);
        const auto sum = [&] { return user.size() + config.size() + radio.size() + paused.size(); };
        bench.simulator.report(id, 1);
        TRY_COMPARE(sum(), 1);
        bench.publish();
        QTEST(static_cast<int>(user.size()), "user");
        QTEST(static_cast<int>(config.size()), "config");
        QTEST(static_cast<int>(radio.size()), "radio");
    }

    void notANumberKeepsNothingAlive()
    {
        DatarefBench bench;
        QVERIFY(bench.subscribe());
        bench.simulator.report(18, 40);
        bench.simulator.report(
            {{18, std::numeric_limits<float>::quiet_NaN()}, {46, std::numeric_limits<float>::infinity()}});
        QVERIFY(bench.settle());
        bench.publish();
        QCOMPARE(bench.link->sample().user.latitude, 40.0);
        QSignalSpy user(bench.link.get(), &DatarefLink::userAircraftDataChanged);
        QSignalSpy config(bench.link.get(), &DatarefLink::userAircraftConfigDataChanged);
        const auto *timer = bench.link->findChild<QTimer *>(QStringLiteral("publish"));
        for (int i = 0; i < 25; ++i)
            bench.publish();
        QCOMPARE(user.size(), 0);
        QCOMPARE(config.size(), 0);
        QVERIFY(!timer->isActive());
    }

    void silenceIsNoticed_data()
    {
        columns<bool, bool, int, bool>("asked", "replied", "seconds", "silent");
        QTest::newRow("never asked") << false << false << 1000 << false;
        QTest::newRow("asked just now") << true << false << 9 << false;
        QTest::newRow("asked a while ago") << true << false << 10 << true;
        QTest::newRow("replied since") << true << true << 10 << false;
        QTest::newRow("replied a while ago") << true << true << 15 << true;
    }

    void silenceIsNoticed()
    {
        QFETCH(bool, asked);
        QFETCH(bool, replied);
        QFETCH(int, seconds);
        DatarefBench bench;
        const qint64 start = bench.clock.steadyMs() / 1000;
        if (asked)
            QVERIFY(bench.subscribe());
        bench.clock.advance(5000);
        if (replied)
            QVERIFY(bench.settle());
        QTEST(bench.link->isSilent(start + seconds, 10), "silent");
        QCOMPARE(bench.link->lastHeardSeconds(), replied ? start + 5 : 0);
    }

    void clearingKeepsPauseAndVersion()
    {
        DatarefBench bench;
        QVERIFY(bench.subscribe());
        bench.simulator.report({{18, 40.0F}, {45, 1.0F}, {4, 118275.0F}, {51, 1.0F}, {52, 115000.0F}});
        TRY_COMPARE(bench.link->sample().version, 115000);
        bench.link->clearAircraft();
        QVERIFY(bench.link->sample().user == model::UserAircraftData());
        QVERIFY(bench.link->sample().config == model::UserAircraftConfigData());
        QVERIFY(bench.link->sample().radio == model::RadioStackState());
        QVERIFY(bench.link->sample().paused);
        QCOMPARE(bench.link->sample().version, 115000);
    }

private:
    static bool linkHasPending(const DatarefBench &bench)
    {
        return bench.link->findChild<QUdpSocket *>()->hasPendingDatagrams();
    }
};

TARVO_TEST(DatarefLinkTest)
#include "DatarefLinkTest.moc"

#include "XPlaneBench.h"
#include "simulator/xplane/PluginMessages.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QPointer>
#include <QRegularExpression>

using namespace tarvo;
using simulator::Simulator;
using simulator::SimulatorType;
using simulator::xplane::XPlaneAdapter;
using test::AdapterBench;
namespace message = simulator::xplane::message;

namespace {

using Signal = std::function<void(const Simulator *, QObject *, const std::function<void()> &)>;

const QString failureText = QStringLiteral("模拟器未启动或连接服务异常，请联系TARVO技术部");

} // namespace

class XPlaneAdapterTest : public QObject
{
    Q_OBJECT

private slots:
    void connectsWithAGoodVersionAndNoPaths()
    {
        QTest::ignoreMessage(QtWarningMsg, "X-Plane CSL validation skipped because no CSL paths are configured");
        QTest::ignoreMessage(QtInfoMsg, "X-Plane connection attempt");
        AdapterBench bench;
        QVERIFY(bench.begin());
        QCOMPARE(bench.mapping->size(), 1);
        QCOMPARE(bench.mapping->first().first().toString(), QStringLiteral("X-Plane CSL 未配置"));
        bench.tick();
        QCOMPARE(bench.connection->size(), 0); // no version yet
        QVERIFY(bench.answerVersion());
        QCOMPARE(bench.invalidVersion->size(), 0);
        QCOMPARE(bench.connection->size(), 0); // only a tick connects
        bench.tick();
        QCOMPARE(bench.connection->size(), 1);
        QCOMPARE(bench.connection->first().first().toBool(), true);
        bench.tick();
        bench.endAttempt();
        QCOMPARE(bench.connection->size(), 1);
        QCOMPARE(bench.failure->size(), 0);
        QCOMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
    }

    void versionIsChecked_data()
    {
        tarvo::test::columns<QVariantList, bool>("arguments", "valid");
        QTest::newRow("65535") << QVariantList{65535} << false;
        QTest::newRow("65536") << QVariantList{65536} << true;
        QTest::newRow("larger") << QVariantList{131072} << true;
        QTest::newRow("negative") << QVariantList{-1} << false;
        QTest::newRow("none") << QVariantList{} << false;
    }

    void versionIsChecked()
    {
        QFETCH(QVariantList, arguments);
        QFETCH(bool, valid);
        AdapterBench bench;
        QVERIFY(bench.begin());
        bench.plugin->send(QStringLiteral("VER"), arguments);
        TRY_COMPARE(bench.versionChecked->size(), 1);
        QCOMPARE(bench.versionChecked->first().first().toBool(), valid);
        QCOMPARE(bench.invalidVersion->size(), valid ? 0 : 1);
        bench.tick();
        QCOMPARE(bench.connection->size(), valid ? 1 : 0);
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), valid ? 0 : 1);
    }

    void pathsAreValidated_data()
    {
        tarvo::test::columns<bool, QString>("valid", "status");
        QTest::newRow("good") << true << QStringLiteral("X-Plane CSL 有效");
        QTest::newRow("bad") << false << QStringLiteral("X-Plane CSL 无效");
    }

    void pathsAreValidated()
    {
        QFETCH(bool, valid);
        QTest::ignoreMessage(QtInfoMsg,
                             valid ? "X-Plane CSL validation result: true" : "X-Plane CSL validation result: false");
        AdapterBench bench;
        const QTemporaryDir first;
        const QTemporaryDir second;
        const QString log = QStringLiteral("^Validating X-Plane CSL paths: .*\"%1/?\", \"%2/?\"");
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(log.arg(first.path(), second.path())));
        bench.config.set(config::xplaneCsl, {first.path(), second.path()});
        QVERIFY(bench.begin());
        QCOMPARE(bench.mapping->takeFirst().first().toString(), QStringLiteral("X-Plane CSL 验证中：2 个路径"));
        TRY_COMPARE(bench.plugin->names(), (QStringList{QStringLiteral("VER"), QStringLiteral("CSL")}));
        const QStringList paths = bench.config.get(config::xplaneCsl);
        QCOMPARE(bench.plugin->messages().last(), message::csl(paths));
        QVERIFY(bench.answerVersion());
        bench.plugin->send(QStringLiteral("CSL"), {QVariantList{paths.first(), paths.last()}, valid});
        TRY_COMPARE(bench.cslChecked->size(), 1);
        QCOMPARE(bench.cslChecked->first().first().toBool(), valid);
        QTEST(bench.mapping->takeFirst().first().toString(), "status");
        bench.tick();
        QCOMPARE(bench.connection->size(), valid ? 1 : 0);
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), valid ? 0 : 1);
    }

    void attemptEndsInItsTimeOut()
    {
        AdapterBench bench;
        QVERIFY(bench.begin());
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), 1);
        QCOMPARE(bench.failure->first().first().toString(), failureText);
        bench.tick();
        QCOMPARE(bench.connection->size(), 0);
        bench.plugin->clear();
        bench.adapter->reconnectSimulator(); // the pilot tries again
        TRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        QVERIFY(bench.goUp());
        QCOMPARE(bench.connection->size(), 1);
        QCOMPARE(bench.restarted->size(), 0);
    }

    void attemptNeedsFreshValues()
    {
        AdapterBench bench;
        QVERIFY(bench.begin());
        QVERIFY(bench.answerVersion());
        bench.clock.advance(1000); // from 15 seconds, which an attempt assumes, to 16
        bench.tick();
        QCOMPARE(bench.connection->size(), 0);
        QVERIFY(bench.hear());
        bench.clock.advance(15'999);
        bench.tick();
        QCOMPARE(bench.connection->size(), 1);
    }

    void attemptBeforeTheDialWaitsForIt()
    {
        AdapterBench bench;
        bench.adapter->reconnectSimulator();
        QVERIFY(!bench.attemptTimer()->isActive());
        bench.adapter->addAircraft(test::aircraftWithGearDown());
        bench.adapter->updateAircraftConfiguration(test::aircraftWithGearDown());
        bench.dial();
        TRY_COMPARE(bench.plugin->names(),
                    (QStringList{QStringLiteral("ADD"), QStringLiteral("ACCONF"), QStringLiteral("VER")}));
        TRY_COMPARE(bench.simulator.subscriptions().size(), 53);
        QVERIFY(bench.attemptTimer()->isActive());
    }

    void dialWithoutAnAttemptSaysNothing()
    {
        AdapterBench bench;
        bench.dial();
        TRY_VERIFY(bench.plugin->hasClient());
        bench.adapter->networkDisconnected();
        TRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("DISCON")});
        QVERIFY(bench.simulator.datagrams().isEmpty());
    }

    void pluginThatComesLaterIsFound()
    {
        AdapterBench bench;
        bench.plugin.reset();
        bench.dial();
        bench.adapter->reconnectSimulator();
        bench.startPlugin();
        TRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        QVERIFY(bench.goUp());
        QCOMPARE(bench.connection->size(), 1);
    }

    void aReceiverMayReplaceTheAdapter_data()
    {
        QTest::addColumn<Signal>("signal");
        QTest::newRow("mapping") << Signal([](const Simulator *s, QObject *o, const std::function<void()> &deed) {
            QObject::connect(s, &Simulator::trafficMappingStatusChanged, o, deed);
        });
        QTest::newRow("version") << Signal([](const Simulator *s, QObject *o, const std::function<void()> &deed) {
            QObject::connect(s, &Simulator::pluginVersionChecked, o, deed);
        });
        QTest::newRow("invalid version") << Signal(
            [](const Simulator *s, QObject *o, const std::function<void()> &deed) {
                QObject::connect(s, &Simulator::invalidPluginVersion, o, deed);
            });
        QTest::newRow("paths") << Signal([](const Simulator *s, QObject *o, const std::function<void()> &deed) {
            QObject::connect(s, &Simulator::cslValidationChecked, o, deed);
        });
    }

    /// The old adapter lives until the next turn of the event loop.
    void aReceiverMayReplaceTheAdapter()
    {
        QFETCH(Signal, signal);
        AdapterBench bench;
        bench.dial();
        const QPointer<XPlaneAdapter> old = bench.adapter.get();
        signal(old, old, [&bench] {
            if (bench.adapter)
                bench.adapter.release()->deleteLater();
        });
        old->reconnectSimulator();
        if (bench.adapter) {
            TRY_VERIFY(bench.plugin->hasClient());
            bench.plugin->send(QStringLiteral("VER"), {65535});
            bench.plugin->send(QStringLiteral("CSL"), {QVariantList{}, true});
        }
        TRY_VERIFY(!old);
        TRY_VERIFY(!bench.plugin->hasClient());
    }

    void reconnectWhileConnectedDropsTheLinkFirst()
    {
        AdapterBench bench;
        QVERIFY(bench.connect());
        bench.simulator.clear();
        bench.plugin->clear();
        bench.adapter->reconnectSimulator();
        QCOMPARE(bench.connection->size(), 2);
        QCOMPARE(bench.connection->last().first().toBool(), false);
        TRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        TRY_COMPARE(bench.simulator.subscriptions().size(), 53);
        bench.tick();
        QCOMPARE(bench.connection->size(), 2); // the old version reply does not count any more
        QVERIFY(bench.answerVersion());
        bench.tick();
        QCOMPARE(bench.connection->size(), 3);
        QCOMPARE(bench.connection->last().first().toBool(), true);
    }

    void silentSimulatorIsLostAfterSixteenSeconds()
    {
        AdapterBench bench;
        QVERIFY(bench.connect());
        QSignalSpy user(bench.adapter.get(), &Simulator::userAircraftDataChanged);
        QSignalSpy paused(bench.adapter.get(), &Simulator::simPausedStateChanged);
        bench.simulator.report({{20, 3048.0F}, {51, 1.0F}, {52, 115000.0F}});
        TRY_COMPARE(paused.size(), 1);
        bench.publish();
        QCOMPARE(user.last().first().value<model::UserAircraftData>().altitudeMslM, 3048.0);
        bench.clock.advance(15'000);
        bench.tick();
        QCOMPARE(bench.connection->size(), 1);
        bench.clock.advance(1000);
        bench.tick();
        QCOMPARE(bench.connection->size(), 2);
        QCOMPARE(bench.connection->last().first().toBool(), false);
        bench.publish();
        QCOMPARE(user.last().first().value<model::UserAircraftData>().altitudeMslM, 0.0);
        QCOMPARE(bench.adapter->simulatorType(), SimulatorType::XPlane11); // the version stays
        bench.tick();
        QCOMPARE(bench.connection->size(), 2);
    }

    void shutdownDropsTheLink()
    {
        AdapterBench bench;
        QVERIFY(bench.connect());
        bench.plugin->send(QStringLiteral("SHUTDOWN"));
        TRY_COMPARE(bench.connection->size(), 2);
        QCOMPARE(bench.connection->last().first().toBool(), false);
        bench.tick();
        QCOMPARE(bench.connection->size(), 2); // there is no attempt under way
    }

    void shutdownWhileNotConnectedTellsItAndForgetsTheVersion()
    {
        AdapterBench bench;
        QVERIFY(bench.begin());
        QVERIFY(bench.answerVersion());
        bench.plugin->send(QStringLiteral("SHUTDOWN"));
        TRY_COMPARE(bench.connection->size(), 1);
        QCOMPARE(bench.connection->first().first().toBool(), false);
        bench.tick();
        QCOMPARE(bench.connection->size(), 1); // the version that came before does not count any more
        QVERIFY(bench.answerVersion());
        bench.tick();
        QCOMPARE(bench.connection->size(), 2); // the attempt itself goes on
        QCOMPARE(bench.connection->last().first().toBool(), true);
    }

    void receiverMayReconnectAtOnce_data()
    {
        QTest::addColumn<bool>("bySilence");
        QTest::newRow("after a shutdown") << false;
        QTest::newRow("after silence") << true;
    }

    void receiverMayReconnectAtOnce()
    {
        QFETCH(bool, bySilence);
        AdapterBench bench;
        QVERIFY(bench.connect());
        bench.simulator.clear();
        bench.plugin->clear();
        QObject::connect(bench.adapter.get(), &Simulator::simConnectionStateChanged, this, [&bench](bool connected) {
            if (!connected)
                bench.adapter->reconnectSimulator();
        });
        if (bySilence) {
            bench.clock.advance(16'000);
            bench.tick();
        } else {
            bench.plugin->send(QStringLiteral("SHUTDOWN"));
        }
        TRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        TRY_COMPARE(bench.simulator.subscriptions().size(), 53);
        QVERIFY(bench.answerVersion());
        bench.tick();
        QCOMPARE(bench.connection->size(), 3); // true, false, true
        QCOMPARE(bench.connection->last().first().toBool(), true);
    }

    void dialFailureIsReportedAndTheAttemptTimesOut()
    {
        AdapterBench bench;
        bench.config.set(config::xplaneNetworkAddress, QStringLiteral("::1"));
        QSignalSpy error(bench.adapter.get(), &Simulator::nngSocketError);
        bench.dial();
        QCOMPARE(error.size(), 1);
        QVERIFY(error.first().first().toString().startsWith(QStringLiteral("Error dialing socket (tcp://::1:::1): ")));
        bench.adapter->reconnectSimulator();
        bench.endAttempt();
        QCOMPARE(bench.failure->size(), 1);
    }

    void timersRunAsTold_data()
    {
        tarvo::test::columns<QString, int, bool, bool>("name", "interval", "once", "running");
        QTest::newRow("dial") << QStringLiteral("dial") << 500 << true << true;
        QTest::newRow("tick") << QStringLiteral("tick") << 1000 << false << true;
        QTest::newRow("publish") << QStringLiteral("publish") << 50 << false << true;
        QTest::newRow("attempt") << QStringLiteral("attempt") << 3000 << true << false;
    }

    void timersRunAsTold()
    {
        QFETCH(QString, name);
        AdapterBench bench;
        const auto *timer = bench.adapter->findChild<QTimer *>(name);
        QVERIFY(timer);
        QTEST(timer->interval(), "interval");
        QTEST(timer->isSingleShot(), "once");
        QTEST(timer->isActive(), "running");
        QCOMPARE(bench.adapter->findChildren<QTimer *>().size(), 4); // and no others
    }

    void dialsByItself()
    {
        AdapterBench bench;
        bench.adapter->reconnectSimulator();
        TRY_COMPARE(bench.plugin->names(), QStringList{QStringLiteral("VER")});
        bench.plugin->send(QStringLiteral("VER"), {65536});
        TRY_COMPARE(bench.connection->size(), 1); // by its own timers
    }

    void mayBeDestroyedAtAnyMoment()
    {
        const QList<std::function<void(AdapterBench &)>> moments{
            [](AdapterBench &) {},
            [](AdapterBench &bench) { bench.adapter->reconnectSimulator(); },
            [](AdapterBench &bench) { bench.dial(); },
            [](AdapterBench &bench) {
                bench.dial();
                bench.adapter->reconnectSimulator();
            },
            [](AdapterBench &bench) { QVERIFY(bench.begin()); },
            [](AdapterBench &bench) { QVERIFY(bench.connect()); },
            [](AdapterBench &bench) {
                QVERIFY(bench.connect());
                for (int i = 0; i < 500; ++i)
                    bench.plugin->send(QStringLiteral("ADDED"), {QStringLiteral("A")});
            },
            [](AdapterBench &bench) {
                QVERIFY(bench.connect());
                bench.plugin.reset();
            },
        };
        for (const auto &moment : moments) {
            AdapterBench bench;
            moment(bench);
            QVERIFY(!QTest::currentTestFailed());
            bench.adapter.reset(); // would hang if the thread did not leave
            if (!bench.plugin)
                bench.startPlugin();
            TRY_VERIFY(!bench.plugin->hasClient());
            // The plugin speaks to one client only: a successor gets through when nothing is left of this one.
            bench.makeAdapter();
            bench.dial();
            // Sent more than once: what goes out while the first one is still leaving is lost.
            TRY_VERIFY((bench.adapter->networkDisconnected(), bench.plugin->count(QStringLiteral("DISCON")) > 0));
        }
    }

    void lastWordsReachThePlugin()
    {
        AdapterBench bench;
        QVERIFY(bench.connect());
        bench.plugin->clear();
        bench.adapter->removeAllAircraft();
        bench.adapter->clearControllers();
        bench.adapter.reset();
        TRY_COMPARE(bench.plugin->messages(), (QList<QByteArray>{message::removeAll(), message::controllers({})}));
    }
};

TARVO_TEST(XPlaneAdapterTest)
#include "XPlaneAdapterTest.moc"

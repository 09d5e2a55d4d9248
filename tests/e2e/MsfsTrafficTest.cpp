#include "e2e/MsfsStage.h"
#include "e2e/TrafficLines.h"
#include "support/TestRegistry.h"

#include <QRegularExpression>

#include <cmath>
#include <cstring>

using namespace tarvo;
using namespace tarvo::test;
using practice::AiAircraft;
using practice::CreateAnswering;
using simulator::msfs::SIMCONNECT_DATA_WAYPOINT;

namespace {

const QString ces = QStringLiteral("CES456");
constexpr CreateAnswering never{.mode = CreateAnswering::Mode::Never};

/// On the network, with models installed and known; the two other pilots have not been seen yet.
class MsfsTrafficStage : public MsfsStage
{
public:
    bool start()
    {
        install(QStringLiteral("Air China 737"), "B738", "CCA");
        install(QStringLiteral("Any 737"), "B738", "");
        install(QStringLiteral("China Eastern A320"), "A320", "CES");
        return open() && goOnline({cca, ces});
    }
    /// The pilot is seen and tells his type; he is in the simulator as soon as the models are known.
    bool introduce(const QString &callsign, const QString &type = QStringLiteral("B738"))
    {
        return hear({slowPosition(callsign, 250), planeInfo(callsign, QStringLiteral("EQUIPMENT=") + type)});
    }
    /// Whether the scan itself is told depends on who is faster, it or the first pilot.
    bool hasScanned()
    {
        return waitFor([this] { return mappings.contains(scanned) || mappings.join(u'|').contains(u"MSFS 映射"_qs); });
    }
    /// Where the client last sent an object.
    SIMCONNECT_DATA_WAYPOINT lastWaypoint(quint32 object) const
    {
        const QString call = QStringLiteral("SetDataOnSimObject 30000 %1 0 1 44 ").arg(object);
        const QStringList calls = simulator.wire().calls().filter(call);
        SIMCONNECT_DATA_WAYPOINT waypoint{};
        const QByteArray bytes = QByteArray::fromHex(calls.value(calls.size() - 1).mid(call.size()).toLatin1());
        if (bytes.size() == sizeof waypoint)
            std::memcpy(&waypoint, bytes.constData(), sizeof waypoint);
        return waypoint;
    }

    const QString scanned = QStringLiteral("MSFS 机库已扫描：3 个模型");
};

} // namespace

/// Other pilots in Microsoft Flight Simulator, from their lines at the server to the objects.
class MsfsTrafficTest : public QObject
{
    Q_OBJECT

private slots:
    void aWholeLife_data()
    {
        QTest::addColumn<bool>("is2024");
        QTest::newRow("2020") << false;
        QTest::newRow("2024") << true;
    }

    void aWholeLife()
    {
        QFETCH(bool, is2024);
        MsfsTrafficStage stage;
        if (is2024)
            stage.simulator.setApplication(practice::message::msfs2024());
        QVERIFY(stage.start() && stage.introduce(cca) && stage.hasScanned());
        QVERIFY(stage.settle());
        const AiAircraft there = stage.simulator.aircraft("CCA123");
        QCOMPARE(there.title, QByteArray("Air China 737"));
        QVERIFY(std::abs(there.start.Latitude - 40) < 1e-9 && std::abs(there.start.Altitude - 10'000) < 0.01);
        QVERIFY(stage.mappings.contains(u"MSFS 映射 CCA123 -> Air China 737"_qs));

        QVERIFY(stage.hear({fastPosition(cca, u"3.0000:1.0000:4.0000"_qs)}));
        const SIMCONNECT_DATA_WAYPOINT waypoint = stage.lastWaypoint(there.id);
        QVERIFY(std::abs(waypoint.Latitude - 40) < 1e-9);
        QVERIFY(std::abs(waypoint.Altitude - 10'000) < 0.01); // feet there, metres everywhere else
        QVERIFY(std::abs(waypoint.ktsSpeed - 5 * 1.943844) < 1e-6);

        QVERIFY(stage.hear({fullConfiguration(cca)}));
        const double gear = stage.simulator.written(there.id, "GEAR HANDLE POSITION", "bool");
        QCOMPARE(gear, is2024 ? -1.0 : 1.0); // the newer simulator takes none of it
        QCOMPARE(stage.simulator.written(there.id, "LIGHT STROBE", "bool"), is2024 ? -1.0 : 1.0);

        QVERIFY(stage.hear({deletion(cca)}));
        QCOMPARE(stage.simulator.aircraft().size(), 0);
    }

    void aPilotWhoLeavesBeforeHisObjectComes()
    {
        MsfsTrafficStage stage;
        QVERIFY(stage.start());
        stage.simulator.setCreateAnswering(never);
        QVERIFY(stage.introduce(cca) && stage.hasScanned());
        TRY_COMPARE(stage.simulator.pendingCreates(), 1);
        QVERIFY(stage.hear({deletion(cca)}));
        QVERIFY(stage.simulator.assignPending());
        stage.pump();
        QCOMPARE(stage.simulator.aircraft().size(), 0);
        QCOMPARE(stage.simulator.wire().calls().filter(u"AIRemoveObject"_qs).size(), 1); // there it was
    }

    void oneFailureReleasesAllThatWait()
    {
        MsfsTrafficStage stage;
        QVERIFY(stage.start());
        stage.simulator.setCreateAnswering(never);
        QVERIFY(stage.introduce(cca) && stage.introduce(ces, u"A320"_qs) && stage.hasScanned());
        TRY_COMPARE(stage.simulator.pendingCreates(), 2);
        QVERIFY(stage.simulator.failPending() && stage.simulator.assignPending());
        stage.pump();
        QCOMPARE(stage.simulator.aircraft().size(), 0); // the other came to nobody any more
        QCOMPARE(stage.simulator.pendingCreates(), 0);

        // What changes the choice of the model tries again.
        stage.simulator.setCreateAnswering({});
        QVERIFY(stage.introduce(cca, u"A320"_qs) && stage.hear({fullConfiguration(cca)}));
        QCOMPARE(stage.simulator.aircraft("CCA123").title, QByteArray("China Eastern A320"));
    }

    void anotherTypeIsAnotherObject()
    {
        MsfsTrafficStage stage;
        QVERIFY(stage.start() && stage.introduce(cca) && stage.hasScanned() && stage.settle());
        const quint32 first = stage.simulator.aircraft("CCA123").id;
        QVERIFY(first != 0);
        QVERIFY(stage.introduce(cca)); // nothing new
        QCOMPARE(stage.simulator.aircraft("CCA123").id, first);
        QVERIFY(stage.introduce(cca, u"A320"_qs) && stage.hear({fullConfiguration(cca)}));
        QCOMPARE(stage.simulator.aircraft().size(), 1);
        QVERIFY(stage.simulator.aircraft("CCA123").id != first);
    }

    void aSwitchAwayTakesThemAlong()
    {
        MsfsTrafficStage stage;
        QVERIFY(stage.start() && stage.introduce(cca) && stage.hasScanned() && stage.settle());
        QCOMPARE(stage.simulator.aircraft().size(), 1);
        QVERIFY(stage.client.activateXPlane([&] {
            stage.simulatorClock.advance(1000);
            stage.network.practice.xplane().tick();
        }));
        TRY_VERIFY(!stage.simulator.wire().isOpen());
        const QStringList calls = stage.simulator.wire().calls();
        const auto removed = calls.lastIndexOf(QRegularExpression(u"^AIRemoveObject .*"_qs));
        QVERIFY(removed >= 0 && removed < calls.lastIndexOf(QRegularExpression(u"^Close.*"_qs)));
    }

    void theSnapshotShowsWhoIsThere()
    {
        MsfsTrafficStage stage;
        QVERIFY(stage.start());
        stage.simulator.setUserAircraft("My 737", "B-1234");
        const auto labels = [&] {
            QStringList texts;
            for (const QVariant &contact : std::as_const(stage.contacts))
                texts << contact.toMap().value(u"label"_qs).toString();
            return texts;
        };
        TRY_VERIFY(labels().contains(u"B-1234"_qs));
    }
};

TARVO_TEST(MsfsTrafficTest)
#include "MsfsTrafficTest.moc"

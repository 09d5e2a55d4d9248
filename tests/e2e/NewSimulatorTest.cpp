#include "e2e/Stage.h"
#include "e2e/TrafficLines.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using practice::PluginAnswering;
using State = model::RemoteAircraft::State;

/// Another simulator takes the place of the one that is there, in the middle of traffic.
class NewSimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void aSimulatorIsReplacedInTheMiddle()
    {
        const QString csn = u"CSN7"_qs;
        Stage stage;
        QVERIFY(stage.start({cca, csn, u"NOTYPE"_qs}));
        QVERIFY(stage.hear({slowPosition(csn, 0), planeInfo(csn), slowPosition(cca, 0), planeInfo(cca),
                            fullConfiguration(cca), slowPosition(u"NOTYPE"_qs, 0)}));
        stage.takeMessages();
        stage.takeLines();
        QVERIFY(stage.replaceSimulator());
        QVERIFY(stage.settle());
        QCOMPARE(withoutStations(stage.takeMessages()), told({bare(u"DELALL"_qs), stations({}), add(cca),
                                                              acconfFull(cca), add(csn, u"CSN"_qs), bare(u"VER"_qs)}));
        for (const QString &callsign : {cca, csn})
            QCOMPARE(stage.inNetworkTable(callsign).state, State::InSimulator);
        for (const QString &callsign : {cca, csn})
            QCOMPARE(stage.inTrafficList(callsign).state, State::InSimulator);
        QCOMPARE(stage.inNetworkTable(u"NOTYPE"_qs).state, State::New);
        QCOMPARE(stage.plugin().aircraft().size(), 2);
        QCOMPARE(stage.client.events, QStringList{u"connected AB1"_qs}); // the session goes on

        QVERIFY(stage.hear({slowPosition(cca, 5), deletion(csn)}));
        QCOMPARE(stage.takeMessages(),
                 told({pos(cca, 5), hb(cca), del(csn, u"Pilot disconnected"_qs), del(csn, u"Deleted"_qs)}));
        QCOMPARE(stage.plugin().aircraft().size(), 1);
    }

    void itsPluginAnswersOrNot_data()
    {
        QTest::addColumn<PluginAnswering>("before"); // how the earlier plugin answered an addition
        QTest::addColumn<PluginAnswering>("after");
        QTest::addColumn<State>("inListBefore");
        QTest::addColumn<State>("inListAfter");
        QTest::addColumn<State>("inListLater");
        QTest::addColumn<int>("drawnAfter");
        QTest::addColumn<int>("drawnLater");
        const State in = State::InSimulator;
        const State pending = State::Pending;
        // Nothing takes a record out of the simulator but a farewell: one that was in the old one stays so.
        QTest::newRow("known, answers") << atOnce << atOnce << in << in << in << 1 << 1;
        QTest::newRow("known, late") << atOnce << late << in << in << in << 0 << 1;
        QTest::newRow("known, silent") << atOnce << silent << in << in << in << 0 << 0;
        QTest::newRow("pending, answers") << silent << atOnce << pending << in << in << 1 << 1;
        QTest::newRow("pending, late") << silent << late << pending << pending << in << 0 << 1;
        QTest::newRow("pending, silent") << silent << silent << pending << pending << pending << 0 << 0;
        QTest::newRow("asked late before, silent") << late << silent << pending << pending << pending << 0 << 0;
    }

    void itsPluginAnswersOrNot()
    {
        QFETCH(PluginAnswering, before);
        QFETCH(PluginAnswering, after);
        QFETCH(State, inListBefore);
        QFETCH(State, inListAfter);
        QFETCH(State, inListLater);
        Stage stage;
        QVERIFY(stage.start({cca}));
        stage.plugin().setAddAnswering(before);
        QVERIFY(stage.introduce(cca, 0) && stage.hear({fullConfiguration(cca)}));
        QCOMPARE(stage.inTrafficList(cca).state, inListBefore);
        stage.takeMessages();

        stage.plugin().setAddAnswering(after);
        QVERIFY(stage.replaceSimulator() && stage.settle());
        QCOMPARE(withoutStations(stage.takeMessages()),
                 told({bare(u"DELALL"_qs), stations({}), add(cca), acconfFull(cca), bare(u"VER"_qs)}));
        QCOMPARE(stage.inNetworkTable(cca).state, State::InSimulator); // which awaits no answer
        QCOMPARE(stage.inTrafficList(cca).state, inListAfter);
        QTEST(static_cast<int>(stage.plugin().aircraft().size()), "drawnAfter");

        stage.simulatorClock.advance(late.delayMs);
        stage.plugin().answerDue();
        QVERIFY(stage.settle());
        QCOMPARE(stage.inTrafficList(cca).state, inListLater);
        QTEST(static_cast<int>(stage.plugin().aircraft().size()), "drawnLater");

        stage.clock.advance(10'001); // a pending one is added again
        QVERIFY(stage.hear({planeInfo(cca)}));
        QCOMPARE(stage.takeMessages(),
                 inListLater == State::Pending ? told({add(cca), acconfFull(cca)}) : QStringList());
        QCOMPARE(stage.inNetworkTable(cca).state, State::InSimulator);
    }
};

TARVO_TEST(NewSimulatorTest)
#include "NewSimulatorTest.moc"

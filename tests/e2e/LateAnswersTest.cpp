#include "e2e/Stage.h"
#include "e2e/TrafficLines.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using State = model::RemoteAircraft::State;

namespace {

const QString csn = u"CSN7"_qs;

/// The two farewells: the session's and the list's.
QStringList farewells()
{
    return told({del(cca, u"Pilot disconnected"_qs), del(cca, u"Deleted"_qs)});
}

/// A stage where a pilot stands whom both the session and the list have added; what was said is forgotten.
struct Apron : Stage
{
    bool open(const practice::PluginAnswering &addition, const practice::PluginAnswering &farewell)
    {
        if (!start({cca, csn}))
            return false;
        plugin().setAddAnswering(addition);
        plugin().setDelAnswering(farewell);
        const bool added = introduce(cca, 0) && hear({fullConfiguration(cca)});
        takeMessages();
        return added;
    }

    /// Lets the plugin send what it has held back.
    bool answerLate()
    {
        simulatorClock.advance(late.delayMs);
        plugin().answerDue();
        return settle();
    }

    /// What the plugin is told by one turn of the timer that looks for the silent.
    QStringList staleTurn()
    {
        return client.fire("staleTimer") && settle() ? takeMessages() : QStringList{u"no turn"_qs};
    }

    qsizetype known() const { return client.traffic->aircraft().size(); }
};

} // namespace

/// How the two records of an aircraft get on with a plugin that answers an addition or a farewell late or never.
class LateAnswersTest : public QObject
{
    Q_OBJECT

private slots:
    void standingItIsAddedAtOnce()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        stage.plugin().setAddAnswering(silent);
        QVERIFY(stage.introduce(cca, 0));
        QCOMPARE(stage.inTrafficList(cca).state, State::New);
        QVERIFY(stage.hear({fullConfiguration(cca)}));
        QCOMPARE(stage.takeMessages(), told({acconfFull(cca), add(cca), acconfFull(cca)}));
        QCOMPARE(stage.inTrafficList(cca).state, State::Pending);
    }

    void movingItWaitsForAFastPosition()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        stage.plugin().setAddAnswering(silent);
        QVERIFY(stage.introduce(cca, 300));
        QVERIFY(stage.hear({fullConfiguration(cca)}));
        QCOMPARE(stage.takeMessages(), told({acconfFull(cca), acconfFull(cca)}));
        QVERIFY(stage.hear({slowPosition(cca, 300)}));
        QCOMPARE(stage.takeMessages(), told({pos(cca, 300), hb(cca)}));
        QVERIFY(stage.hear({fastPosition(cca, u"3.0000:1.0000:4.0000"_qs)}));
        const double knots = 5 * 1.943844;
        QCOMPARE(stage.takeMessages(), told({fstpos(cca, 3, 1, 4, knots), fstpos(cca, 3, 1, 4, 300)}));
        // It can be placed now, but nothing adds it yet.
        QCOMPARE(stage.inTrafficList(cca).state, State::New);
        QVERIFY(stage.hear({slowPosition(cca, 300)}));
        QCOMPARE(stage.takeMessages(), told({pos(cca, 300), hb(cca), add(cca), acconfFull(cca)}));
        QCOMPARE(stage.inTrafficList(cca).state, State::Pending);
    }

    void aSilentPluginIsAskedAgain()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        stage.plugin().setAddAnswering(silent);
        QVERIFY(stage.introduce(cca, 0));
        QVERIFY(stage.hear({fullConfiguration(cca)}));
        stage.takeMessages();
        stage.clock.advance(10'000);
        QVERIFY(stage.hear({planeInfo(cca)})); // an event that looks after all of them
        QCOMPARE(stage.takeMessages(), QStringList());
        stage.clock.advance(1);
        QVERIFY(stage.hear({slowPosition(cca, 0)})); // this doesn't, while it is pending
        QCOMPARE(stage.takeMessages(), told({pos(cca, 0), hb(cca)}));
        QVERIFY(stage.hear({planeInfo(cca)}));
        QCOMPARE(stage.takeMessages(), told({add(cca), acconfFull(cca)}));
        QCOMPARE(stage.inTrafficList(cca).state, State::Pending);
        QCOMPARE(stage.plugin().aircraft().size(), 0);
    }

    void aLateAnswerCounts()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        stage.plugin().setAddAnswering({.silent = false, .delayMs = 12'000});
        QVERIFY(stage.introduce(cca, 0));
        QVERIFY(stage.hear({fullConfiguration(cca)}));
        stage.clock.advance(11'000);
        stage.simulatorClock.advance(11'000);
        QVERIFY(stage.hear({planeInfo(cca)}));
        QCOMPARE(stage.takeMessages(), told({acconfFull(cca), add(cca), acconfFull(cca), add(cca), acconfFull(cca)}));
        QCOMPARE(stage.inTrafficList(cca).state, State::Pending);
        stage.simulatorClock.advance(1'000); // the first additions are answered now, the last one isn't
        stage.plugin().answerDue();
        QVERIFY(stage.settle());
        QCOMPARE(stage.inTrafficList(cca).state, State::InSimulator);
        QCOMPARE(stage.plugin().pendingAnswers(), 1);
        stage.clock.advance(11'000);
        QVERIFY(stage.hear({planeInfo(cca), slowPosition(cca, 0)}));
        QCOMPARE(stage.takeMessages(), told({pos(cca, 0), hb(cca)})); // added no more
    }

    void aLateFarewellCounts()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        stage.plugin().setDelAnswering({.silent = false, .delayMs = 12'000});
        QVERIFY(stage.introduce(cca, 0));
        QVERIFY(stage.hear({deletion(cca)}));
        QCOMPARE(stage.takeMessages(), told({del(cca, u"Pilot disconnected"_qs), del(cca, u"Deleted"_qs)}));
        QCOMPARE(stage.manager().remoteAircraft().size(), 0);
        QCOMPARE(stage.inTrafficList(cca).state, State::InSimulator);
        stage.simulatorClock.advance(12'000);
        stage.plugin().answerDue();
        QVERIFY(stage.settle());
        QCOMPARE(stage.client.traffic->aircraft().size(), 0);
    }

    void silenceMakesItStale()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        stage.plugin().setDelAnswering(silent);
        QVERIFY(stage.introduce(cca, 0));
        stage.clock.advance(15'000);
        QVERIFY(stage.client.fire("staleTimer"));
        QVERIFY(stage.settle());
        QCOMPARE(stage.takeMessages(), QStringList());
        stage.clock.advance(1);
        for (int turn = 0; turn < 2; ++turn) { // as long as the plugin doesn't answer
            QVERIFY(stage.client.fire("staleTimer"));
            QVERIFY(stage.settle());
            QCOMPARE(stage.takeMessages(), told({del(cca, u"Stale"_qs)}));
            QCOMPARE(stage.inTrafficList(cca).state, State::InSimulator);
        }
        stage.plugin().setDelAnswering({});
        QVERIFY(stage.client.fire("staleTimer"));
        QVERIFY(stage.settle());
        QCOMPARE(stage.client.traffic->aircraft().size(), 0);
        QCOMPARE(stage.inNetworkTable(cca).state, State::New);
        stage.takeMessages();
        QVERIFY(stage.hear({slowPosition(cca, 0)})); // and is drawn again when he is heard again
        QCOMPARE(stage.takeMessages(), told({add(cca), pos(cca, 0)}));
    }

    // --- and the pilot leaves ---

    void heLeavesBeforeHisAdditionIsAnswered_data()
    {
        QTest::addColumn<practice::PluginAnswering>("farewell");
        QTest::addColumn<bool>("gone"); // from the list, once the late answers are there
        QTest::newRow("the farewell is answered behind it") << atOnce << true;
        QTest::newRow("the farewell never is") << silent << false;
    }

    void heLeavesBeforeHisAdditionIsAnswered()
    {
        QFETCH(practice::PluginAnswering, farewell);
        QFETCH(bool, gone);
        Apron apron;
        QVERIFY(apron.open(late, farewell));
        QCOMPARE(apron.inTrafficList(cca).state, State::Pending);
        QVERIFY(apron.hear({deletion(cca)}));
        QCOMPARE(apron.takeMessages(), farewells());
        QCOMPARE(apron.manager().remoteAircraft().size(), 0);
        QCOMPARE(apron.inTrafficList(cca).state, State::Pending);
        QVERIFY(apron.answerLate());
        QCOMPARE(apron.takeMessages(), QStringList());
        QCOMPARE(apron.manager().remoteAircraft().size(), 0);
        QCOMPARE(apron.known(), gone ? 0 : 1);
        QCOMPARE(apron.plugin().aircraft().size(), gone ? 0 : 1);
        if (!gone)
            QCOMPARE(apron.inTrafficList(cca).state, State::InSimulator); // whom nobody flies
        apron.clock.advance(15'001);
        for (int turn = 0; turn < 2; ++turn)
            QCOMPARE(apron.staleTurn(), gone ? QStringList() : told({del(cca, u"Stale"_qs)}));
    }

    void hisAdditionIsAnsweredAfterHisFarewell()
    {
        Apron apron;
        QVERIFY(apron.open(late, silent));
        QVERIFY(apron.hear({deletion(cca)}));
        QVERIFY(apron.plugin().send(u"DELETED"_qs, {cca}) && apron.settle());
        QCOMPARE(apron.known(), 0);
        QVERIFY(apron.answerLate());
        QCOMPARE(apron.known(), 0); // an answer makes no record
        QCOMPARE(apron.takeMessages(), farewells());
        QCOMPARE(apron.manager().remoteAircraft().size(), 0);
        apron.clock.advance(15'001);
        QCOMPARE(apron.staleTurn(), QStringList());
    }

    void aSilentPluginIsToldToAddHimEvenThen()
    {
        Apron apron;
        QVERIFY(apron.open(silent, silent));
        QVERIFY(apron.hear({deletion(cca)}));
        QCOMPARE(apron.takeMessages(), farewells());
        apron.clock.advance(10'001);
        QVERIFY(apron.hear({slowPosition(csn, 0)}));
        QCOMPARE(apron.takeMessages(), QStringList());
        QVERIFY(apron.hear({planeInfo(csn)})); // looks after all records, and his is still there
        QCOMPARE(apron.takeMessages(), told({add(csn, u"CSN"_qs), add(cca), acconfFull(cca)}));
        apron.clock.advance(5'000);
        for (int turn = 0; turn < 2; ++turn)
            QCOMPARE(apron.staleTurn(), told({del(cca, u"Stale"_qs)}));
        QCOMPARE(apron.inTrafficList(cca).state, State::Pending);
    }

    void aPluginThatSaysNoFarewellHearsItEachTurn()
    {
        Apron apron;
        QVERIFY(apron.open(atOnce, silent));
        QVERIFY(apron.hear({deletion(cca)}));
        QCOMPARE(apron.takeMessages(), farewells());
        QCOMPARE(apron.manager().remoteAircraft().size(), 0);
        apron.clock.advance(15'000);
        QCOMPARE(apron.staleTurn(), QStringList());
        apron.clock.advance(1);
        for (int turn = 0; turn < 3; ++turn)
            QCOMPARE(apron.staleTurn(), told({del(cca, u"Stale"_qs)}));
        QCOMPARE(apron.inTrafficList(cca).state, State::InSimulator);
        QCOMPARE(apron.plugin().aircraft().size(), 1);
        apron.plugin().setDelAnswering(atOnce);
        QCOMPARE(apron.staleTurn(), told({del(cca, u"Stale"_qs)}));
        QCOMPARE(apron.known(), 0);
        QCOMPARE(apron.staleTurn(), QStringList());
    }

    void heComesBackBeforeHisFarewellIsAnswered()
    {
        Apron apron;
        QVERIFY(apron.open(atOnce, late));
        QVERIFY(apron.hear({deletion(cca)}));
        QCOMPARE(apron.takeMessages(), farewells());
        QVERIFY(apron.hear({slowPosition(cca, 0)})); // new to the session, an old friend to the list
        QCOMPARE(apron.takeLines(), typeQuestions(cca));
        QCOMPARE(apron.takeMessages(), told({hb(cca)}));
        QCOMPARE(apron.inNetworkTable(cca).state, State::New);
        QCOMPARE(apron.inTrafficList(cca).state, State::InSimulator);
        QVERIFY(apron.hear({planeInfo(cca)}));
        QCOMPARE(apron.takeLines(), QStringList{configurationQuestion(cca)});
        QCOMPARE(apron.takeMessages(), told({add(cca)}));

        QVERIFY(apron.answerLate()); // the old farewells, which cost him his record, and then the new addition
        QCOMPARE(apron.takeMessages() + apron.takeLines(), QStringList());
        QCOMPARE(apron.known(), 0);
        QCOMPARE(apron.inNetworkTable(cca).state, State::New);
        QCOMPARE(apron.plugin().aircraft().size(), 1);

        QVERIFY(apron.hear({slowPosition(cca, 0)})); // with his next report the list meets him anew
        QCOMPARE(apron.takeLines(), QStringList({u"$CQAB1:CCA123:CAPS"_qs, ownCapabilities(cca)}) + typeQuestions(cca));
        QCOMPARE(apron.takeMessages(), told({add(cca), pos(cca, 0)})); // twice does no harm
        QVERIFY(apron.hear({planeInfo(cca), fullConfiguration(cca)}));
        QCOMPARE(apron.takeMessages(), told({acconfFull(cca), acconfFull(cca)})); // the plugin has drawn him by then
        QCOMPARE(apron.inTrafficList(cca).state, State::InSimulator);
    }
};

TARVO_TEST(LateAnswersTest)
#include "LateAnswersTest.moc"

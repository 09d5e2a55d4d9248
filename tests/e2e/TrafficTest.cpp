#include "e2e/Stage.h"
#include "e2e/TrafficLines.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using State = model::RemoteAircraft::State;

/// Other pilots, from their first position to the plugin's last answer.
class TrafficTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<Stage> m_shared;

    /// One session for all rows of a table: each row's aircraft is gone when the next begins.
    bool emptyShared()
    {
        if (!m_shared) {
            m_shared = std::make_unique<Stage>();
            return m_shared->start({cca});
        }
        const bool gone = m_shared->hear({deletion(cca)}) && m_shared->client.traffic->aircraft().isEmpty();
        m_shared->takeMessages();
        return gone;
    }

private slots:
    void cleanupTestCase() { m_shared.reset(); }

    void aWholeLife_data()
    {
        QTest::addColumn<Protocol>("protocol");
        QTest::newRow("classic") << Protocol::Classic;
        QTest::newRow("token") << Protocol::Token;
    }

    void aWholeLife()
    {
        QFETCH(Protocol, protocol);
        Stage stage(protocol);
        QVERIFY(stage.start({cca}));
        const QStringList questions = typeQuestions(cca, protocol == Protocol::Token);

        // First seen: asked what it is, by the session and by the list.
        QVERIFY(stage.hear({slowPosition(cca, 250)}));
        const QStringList greeting{u"$CQAB1:CCA123:CAPS"_qs, ownCapabilities(cca)};
        QCOMPARE(stage.takeLines(), questions + greeting + questions);
        QCOMPARE(stage.takeMessages(), QStringList());
        QCOMPARE(stage.inNetworkTable(cca).state, State::New);
        QCOMPARE(stage.inTrafficList(cca).state, State::New);

        // Its type is known: it appears.
        QVERIFY(stage.hear({planeInfo(cca)}));
        QCOMPARE(stage.takeLines(), QStringList{configurationQuestion(cca)});
        QCOMPARE(stage.takeMessages(), told({add(cca)}));
        QCOMPARE(stage.takeSignals(), QStringList{u"aircraft CCA123 B738 CCA"_qs});
        QCOMPARE(stage.inNetworkTable(cca).state, State::InSimulator);
        QCOMPARE(stage.inTrafficList(cca).state, State::InSimulator); // the plugin has said so

        QVERIFY(stage.hear({u"$CRCCA123:AB1:CAPS:VERSION=1:ACCONFIG=1"_qs}));
        QCOMPARE(stage.takeLines(), QStringList{configurationQuestion(cca)});
        QVERIFY(stage.hear({fullConfiguration(cca)}));
        QCOMPARE(stage.takeMessages(), told({acconfFull(cca), acconfFull(cca)}));
        const QString json = fullConfiguration(cca).section(u":ACC:"_qs, 1);
        QCOMPARE(stage.takeSignals(),
                 (QStringList{u"capabilities CCA123 VERSION=1:ACCONFIG=1"_qs, u"configuration CCA123 "_qs + json}));

        QVERIFY(stage.hear({fastPosition(cca, u"3.0000:1.0000:4.0000"_qs)}));
        const double knots = 5 * 1.943844;
        QCOMPARE(stage.takeMessages(), told({fstpos(cca, 3, 1, 4, knots), fstpos(cca, 3, 1, 4, 250)}));
        QVERIFY(stage.hear({slowPosition(cca, 240)}));
        QCOMPARE(stage.takeMessages(), told({pos(cca, 240), hb(cca)}));
        QCOMPARE(stage.takeLines(), QStringList());

        QVERIFY(stage.hear({deletion(cca)}));
        QCOMPARE(stage.takeMessages(), told({del(cca, u"Pilot disconnected"_qs), del(cca, u"Deleted"_qs)}));
        QCOMPARE(stage.takeSignals(), QStringList{u"pilot deleted CCA123"_qs});
        QCOMPARE(stage.client.traffic->aircraft().size(), 0);
        QCOMPARE(stage.manager().remoteAircraft().size(), 0);
        QCOMPARE(stage.plugin().aircraft().size(), 0);
    }

    void theServerKnowsTheFiledType_data() { aWholeLife_data(); }

    void theServerKnowsTheFiledType()
    {
        QFETCH(Protocol, protocol);
        Stage stage(protocol);
        QVERIFY(stage.start({cca}));
        stage.network.practice.scriptedClients().speak(
            cca, u"$FPCCA123:SERVER:I:H/B744/L:450:ZBAA:1000:1000:35000:ZSPD:2:0:4:0:ZSNJ:RMK:ROUTE"_qs);
        QVERIFY(stage.hear({slowPosition(cca, 250)})); // comes to rest in token mode, too
        const bool token = protocol == Protocol::Token;
        const QStringList questions = typeQuestions(cca, token);
        const QStringList greeting{u"$CQAB1:CCA123:CAPS"_qs, ownCapabilities(cca)};
        // The plans that the two texts bring are not asked for again at once.
        QCOMPARE(stage.takeLines(), questions + greeting + questions + QStringList{configurationQuestion(cca)});
        QCOMPARE(stage.takeMessages(), told({add(cca, u"CCA"_qs, u"B744"_qs), acconf(cca, QVariantList(11))}));
        QCOMPARE(stage.takeSignals(), QStringList(4 + (token ? 2 : 0), u"aircraft CCA123 B744 CCA"_qs));
        QCOMPARE(stage.inTrafficList(cca).typeCode, u"B744"_qs);
    }

    void anIgnoredPilotIsNotTheListsBusiness()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        stage.client.traffic->setIgnoreList({u"cca123"_qs});
        QVERIFY(stage.hear({slowPosition(cca, 0), planeInfo(cca), fullConfiguration(cca), slowPosition(cca, 0)}));
        QCOMPARE(stage.takeMessages(), told({add(cca), acconfFull(cca), pos(cca, 0)}));
        QCOMPARE(stage.inTrafficList(cca).state, State::Ignored);
        QVERIFY(stage.hear({deletion(cca)}));
        QCOMPARE(stage.takeMessages(), told({del(cca, u"Pilot disconnected"_qs)}));
        QCOMPARE(stage.client.traffic->aircraft().size(), 0);
    }

    // --- positions ---

    void groundSpeedOfFastPositions_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<practice::PluginMessage>("shown");
        QTest::newRow("computed") << fastPosition(cca, u"30.0000:9.0000:40.0000"_qs)
                                  << fstpos(cca, 30, 9, 40, 50 * 1.943844);
        QTest::newRow("noise keeps what was known")
            << fastPosition(cca, u"0.0400:0.0000:0.0000"_qs) << fstpos(cca, 0.04, 0, 0, 250);
        QTest::newRow("at most 900") << fastPosition(cca, u"600.0000:0.0000:0.0000"_qs) << fstpos(cca, 600, 0, 0, 900);
        QTest::newRow("slow report") << fastPosition(cca, u"3.0000:0.0000:4.0000"_qs, u"#SL"_qs)
                                     << fstpos(cca, 3, 0, 4, 5 * 1.943844);
    }

    void groundSpeedOfFastPositions()
    {
        QFETCH(QString, line);
        QFETCH(practice::PluginMessage, shown);
        QVERIFY(emptyShared());
        Stage &stage = *m_shared;
        QVERIFY(stage.introduce(cca, 250));
        QVERIFY(stage.hear({line}));
        practice::PluginMessage again = shown; // the list keeps the speed of the slow report
        again.arguments.last() = 250.0;
        QCOMPARE(stage.takeMessages(), told({shown, again}));
    }

    void aStoppedReportHasNoMotion()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        QVERIFY(stage.introduce(cca, 250));
        QVERIFY(stage.hear({stoppedPosition(cca)}));
        practice::PluginMessage first = fstpos(cca, 0, 0, 0, 0);
        for (const int rotation : {11, 12, 13})
            first.arguments[rotation] = 0.0;
        practice::PluginMessage second = first;
        second.arguments.last() = 250.0;
        QCOMPARE(stage.takeMessages(), told({first, second}));
    }

    void ownEchoesAreNobodysAircraft()
    {
        Stage stage;
        QVERIFY(stage.start());
        QVERIFY(stage.hear({slowPosition(u"AB1"_qs, 9), fastPosition(u"AB1"_qs, u"3.0000:0.0000:4.0000"_qs),
                            stoppedPosition(u"AB1"_qs), slowPosition(u"ab1"_qs, 9)}));
        QCOMPARE(stage.manager().remoteAircraft().size(), 0);
        QCOMPARE(stage.takeLines() + stage.takeMessages(), QStringList());
    }

    void withoutASimulatorThereIsNoTraffic()
    {
        Network network;
        Client client(network, Protocol::Classic);
        QVERIFY(network.started && client.signIn() && client.connectObserver());
        TRY_EVENTS(client, u"connected AB1"_qs);
        QVERIFY(network.practice.fsd().sendLine(u"AB1"_qs, slowPosition(cca, 9)));
        QVERIFY(network.practice.fsd().ping(u"AB1"_qs));
        TRY_COMPARE(network.linesOf(u"$POAB1:"_qs).size(), 1);
        QCOMPARE(client.manager->remoteAircraft().size(), 0);
        QCOMPARE(network.linesOf(u"#SB"_qs), QStringList());
    }

    // --- who is nobody, and the ends of sessions ---

    void anObserversShadowIsHisOwnFlight()
    {
        Stage stage;
        QVERIFY(stage.open() && stage.goOnlineAsObserver(u"AB1A"_qs));
        stage.takeLines();
        stage.takeMessages();
        QVERIFY(stage.hear({slowPosition(u"AB1"_qs, 9), fastPosition(u"AB1"_qs, u"3.0000:0.0000:4.0000"_qs)}));
        QCOMPARE(stage.takeLines() + stage.takeMessages(), QStringList());
        QVERIFY(stage.hear({slowPosition(u"AB"_qs, 9)})); // one character less is somebody else
        QCOMPARE(stage.manager().remoteAircraft().size(), 1);
    }

    void thePluginIsToldOfTheSession_data()
    {
        QTest::addColumn<bool>("observer");
        QTest::newRow("pilot") << false;
        QTest::newRow("observer") << true;
    }

    void thePluginIsToldOfTheSession()
    {
        QFETCH(bool, observer);
        Stage stage;
        QVERIFY(stage.open());
        QVERIFY(observer ? stage.goOnlineAsObserver(u"AB1"_qs) : stage.goOnline());
        const practice::PluginMessage greeting = note(u"Welcome to the practice network."_qs, 0x85A664);
        const QString selcal = observer ? QString() : u"EF-GH"_qs;
        QCOMPARE(withoutStations(stage.takeMessages()),
                 told({bare(u"VER"_qs), greeting, {u"CONN"_qs, {u"AB1"_qs, selcal, observer}}}));
    }

    void theNextSessionKnowsNobody()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        QVERIFY(stage.introduce(cca, 0));
        stage.manager().disconnectFromNetwork();
        TRY_COMPARE(stage.server().connectionCount(), 0);
        QVERIFY(stage.goOnline());
        stage.takeLines();
        stage.takeMessages();
        QVERIFY(stage.hear({slowPosition(cca, 0)}));
        const QStringList greeting{u"$CQAB1:CCA123:CAPS"_qs, ownCapabilities(cca)};
        QCOMPARE(stage.takeLines(), typeQuestions(cca) + greeting + typeQuestions(cca));
        QCOMPARE(stage.takeMessages(), QStringList());
    }

    void atTheEndAllAreTakenAway()
    {
        Stage stage;
        QVERIFY(stage.start({cca}));
        QVERIFY(stage.introduce(cca, 0));
        stage.manager().disconnectFromNetwork();
        TRY_EVENTS(stage.client, u"connected AB1"_qs, u"disconnected"_qs);
        QVERIFY(stage.settlePlugin());
        QCOMPARE(stage.takeMessages(),
                 told({bare(u"DISCON"_qs), bare(u"DELALL"_qs), stations({}), bare(u"DELALL"_qs)}));
        QCOMPARE(stage.manager().remoteAircraft().size(), 0);
        QCOMPARE(stage.client.traffic->aircraft().size(), 0);
        QCOMPARE(stage.plugin().aircraft().size(), 0);
    }
};

TARVO_TEST(TrafficTest)
#include "TrafficTest.moc"

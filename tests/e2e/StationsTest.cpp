#include "e2e/Stage.h"
#include "e2e/TrafficLines.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;

namespace {

const QString tower = u"ZBAA_TWR"_qs;

/// A station's report; `frequency` as on the wire, kHz less 100,000.
QString report(const QString &callsign, const QString &frequency, const QString &latitude = u"40.00000"_qs)
{
    return u"%%1:%2:4:100:5:%3:116.50000:0"_qs.arg(callsign, frequency, latitude);
}

QStringList stationQuestions(const QString &callsign)
{
    return {u"$CQAB1:%1:RN"_qs.arg(callsign), u"$CQAB1:SERVER:ATC:%1"_qs.arg(callsign),
            u"$CQAB1:%1:CAPS"_qs.arg(callsign)};
}

QString valid(const QString &callsign)
{
    return u"$CRSERVER:AB1:ATC:Y:"_qs + callsign;
}

QVariant listed(const QString &callsign, const QString &name, const QString &text, int kHz)
{
    return QVariantList{callsign, name, text, kHz};
}

/// A stage whose controllers are watched. COM1 is tuned to 118.500 and receives and sends, COM2 to 121.500.
struct Airspace : Stage
{
    QStringList changes; ///< "added ZBAA_TWR 118500"

    bool start()
    {
        if (!Stage::start({cca}, {tower, u"ZBAA_GND"_qs}))
            return false;
        const auto watch = [this](auto signal, const QString &name) {
            QObject::connect(
                client.controllers.get(), signal, client.controllers.get(),
                [this, name](const model::Controller &controller) {
                    changes << QStringList{name, controller.callsign, QString::number(controller.frequency)}.join(u' ');
                });
        };
        using manager::ControllerManager;
        watch(&ControllerManager::controllerAdded, u"added"_qs);
        watch(&ControllerManager::controllerDeleted, u"deleted"_qs);
        watch(&ControllerManager::controllerUpdated, u"updated"_qs);
        return true;
    }

    /// The tower, confirmed by the server and with a name; what that caused is forgotten.
    bool openTower()
    {
        const bool opened =
            start() && hear({report(tower, u"18500"_qs), valid(tower), u"$CRZBAA_TWR:AB1:RN:Wang Wu:5"_qs});
        takeLines();
        takeSignals();
        changes.clear();
        return opened;
    }

    QStringList takeChanges()
    {
        QStringList taken;
        taken.swap(changes);
        return taken;
    }

    /// What the plugin is told by one turn of the timer.
    QStringList tick()
    {
        takeMessages();
        return client.fire("controllerTimer") && settle() ? takeMessages() : QStringList{u"no turn"_qs};
    }
};

const QVariant openedTower = listed(tower, u"Wang Wu"_qs, u"118.500"_qs, 118500);

} // namespace

/// Controllers, their ATIS and their calls, and text of each kind in both directions.
class StationsTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<Airspace> m_shared; ///< for the rows of a table

private slots:
    void cleanupTestCase() { m_shared.reset(); }

    void aStationAppears()
    {
        Airspace air;
        QVERIFY(air.start());
        QVERIFY(air.hear({report(u"zbaa_twr"_qs, u"18500&21700"_qs)}));
        QCOMPARE(air.takeLines(), stationQuestions(tower));
        QCOMPARE(air.takeSignals().value(0), u"controller zbaa_twr 118500 40 116.5"_qs);
        QCOMPARE(air.takeChanges(), QStringList{u"added ZBAA_TWR 118500"_qs});
        QCOMPARE(air.tick(), told({stations({}), tuned(1, tower), tuned(2, {})})); // not confirmed, but tuned

        QVERIFY(air.hear({valid(tower)}));
        QCOMPARE(air.takeChanges(), (QStringList{u"deleted ZBAA_TWR 118500"_qs, u"added ZBAA_TWR 118500"_qs}));
        QCOMPARE(air.tick(), told({stations({listed(tower, u"Unknown"_qs, u"118.500"_qs, 118500)}), tuned(1, tower),
                                   tuned(2, {})}));
        QVERIFY(air.hear({u"$CRZBAA_TWR:AB1:RN:Wang Wu:5"_qs}));
        QCOMPARE(air.takeChanges(), (QStringList{u"deleted ZBAA_TWR 118500"_qs, u"added ZBAA_TWR 118500"_qs}));
        QCOMPARE(air.tick(), told({stations({openedTower}), tuned(1, tower), tuned(2, {})}));
        QVERIFY(air.hear({report(tower, u"18500"_qs)})); // nothing new
        QCOMPARE(air.takeLines() + air.takeChanges(), QStringList());
    }

    void aStationMoves()
    {
        Airspace air;
        QVERIFY(air.openTower());
        QVERIFY(air.hear({report(tower, u"18500"_qs, u"40.10000"_qs)}));
        QCOMPARE(air.takeChanges(), (QStringList{u"deleted ZBAA_TWR 118500"_qs, u"added ZBAA_TWR 118500"_qs}));
        QCOMPARE(air.tick(), told({stations({openedTower}), tuned(1, tower), tuned(2, {})}));
        QCOMPARE(air.takeLines(), QStringList());
    }

    void theServersDenialChangesNothing()
    {
        Airspace air;
        QVERIFY(air.openTower());
        QVERIFY(air.hear({u"$CRSERVER:AB1:ATC:N:ZBAA_TWR"_qs, report(tower, u"18500"_qs, u"40.10000"_qs)}));
        QCOMPARE(air.takeSignals(), QStringList{u"controller ZBAA_TWR 118500 40.1 116.5"_qs});
        QVERIFY(air.client.controllers->controllers().value(0).valid); // nobody who was confirmed loses it again
        QCOMPARE(air.tick(), told({stations({openedTower}), tuned(1, tower), tuned(2, {})}));

        const QString ground = u"ZBAA_GND"_qs; // and one who was only denied never is
        QVERIFY(air.hear({report(ground, u"21900"_qs), u"$CRSERVER:AB1:ATC:N:ZBAA_GND"_qs}));
        QCOMPARE(air.tick(), told({stations({openedTower}), tuned(1, tower), tuned(2, {})}));
        QVERIFY(!air.client.controllers->controllers().value(1).valid);
    }

    void ofTwoStationsOnOneFrequencyTheFirstIsTuned()
    {
        const QString ground = u"ZBAA_GND"_qs;
        Airspace air;
        QVERIFY(air.openTower());
        QVERIFY(air.hear({report(ground, u"18500"_qs), valid(ground)}));
        const QVariant listedGround = listed(ground, u"Unknown"_qs, u"118.500"_qs, 118500);
        const QStringList both = told({stations({openedTower, listedGround}), tuned(1, tower), tuned(2, {})});
        QCOMPARE(air.tick(), both);
        QVERIFY(air.hear({report(tower, u"18500"_qs, u"40.10000"_qs)})); // the first to come, not the last to report
        QCOMPARE(air.tick(), both);
        QVERIFY(air.hear({u"#DAZBAA_TWR:3001"_qs}));
        QCOMPARE(air.tick(), told({stations({listedGround}), tuned(1, ground), tuned(2, {})}));
    }

    void anUnconfirmedStationThatMovesGoes()
    {
        Airspace air;
        QVERIFY(air.start());
        QVERIFY(air.hear({report(tower, u"18500"_qs), report(tower, u"18500"_qs, u"40.10000"_qs), valid(tower)}));
        air.takeChanges();
        air.takeLines();
        QCOMPARE(air.tick(), told({stations({}), tuned(1, {}), tuned(2, {})})); // the confirmation doesn't save it
        QCOMPARE(air.takeChanges(), QStringList{u"deleted ZBAA_TWR 118500"_qs});
        QVERIFY(air.hear({report(tower, u"18500"_qs)})); // with its next report it is a new one
        QCOMPARE(air.takeLines(), stationQuestions(tower));
    }

    void aStationChangesItsFrequency()
    {
        Airspace air;
        QVERIFY(air.openTower());
        QVERIFY(air.hear({report(tower, u"21500"_qs)}));
        QCOMPARE(air.takeChanges(), (QStringList{u"deleted ZBAA_TWR 121500"_qs, u"added ZBAA_TWR 121500"_qs}));
        QCOMPARE(air.tick(), told({stations({listed(tower, u"Wang Wu"_qs, u"121.500"_qs, 121500)}), tuned(1, {}),
                                   tuned(2, tower)}));
        QVERIFY(air.hear({report(tower, u"99998"_qs)})); // gives up its frequency
        QCOMPARE(air.tick(), told({stations({}), tuned(1, {}), tuned(2, {})}));
        QCOMPARE(air.client.controllers->controllers().size(), 0);
    }

    void aStationWithoutAFrequencyIsNotListed_data()
    {
        QTest::addColumn<QString>("frequency");
        QTest::newRow("199998") << u"99998"_qs;
        QTest::newRow("none") << QString();
    }

    void aStationWithoutAFrequencyIsNotListed()
    {
        QFETCH(QString, frequency);
        Airspace air;
        QVERIFY(air.start());
        QVERIFY(air.hear({report(tower, frequency), valid(tower), u"$CRZBAA_TWR:AB1:RN:Wang Wu:5"_qs}));
        QCOMPARE(air.takeChanges(), (QStringList{u"added ZBAA_TWR 199998"_qs, u"updated ZBAA_TWR 199998"_qs,
                                                 u"updated ZBAA_TWR 199998"_qs}));
        QCOMPARE(air.tick(), told({stations({}), tuned(1, {}), tuned(2, {})}));
        QCOMPARE(air.client.controllers->controllers().size(), 1);
    }

    void aStationLeaves()
    {
        Airspace air;
        QVERIFY(air.openTower());
        air.takeMessages();
        QVERIFY(air.tuneCom2(118'500) && air.settle());
        QCOMPARE(air.takeMessages(), told({tuned(1, tower), tuned(2, tower)}));
        QVERIFY(air.hear({u"#DAzbaa_twr:3001"_qs}));
        QCOMPARE(air.takeMessages(), told({tuned(1, {}), tuned(2, {})})); // both radios at once
        QCOMPARE(air.takeChanges(), QStringList());
        QCOMPARE(air.tick(), told({stations({}), tuned(1, {}), tuned(2, {})}));
        QCOMPARE(air.takeChanges(), QStringList{u"deleted ZBAA_TWR 118500"_qs});
    }

    void aSilentStationIsForgotten()
    {
        Airspace air;
        QVERIFY(air.openTower());
        air.clock.advance(60'000);
        QCOMPARE(air.tick(), told({stations({openedTower}), tuned(1, tower), tuned(2, {})}));
        air.clock.advance(1'000);
        QCOMPARE(air.tick(), told({stations({}), tuned(1, {}), tuned(2, {})}));
        QCOMPARE(air.takeChanges(), QStringList{u"deleted ZBAA_TWR 118500"_qs});
    }

    void theTunedStationFollowsTheRadio()
    {
        Airspace air;
        QVERIFY(air.start());
        QVERIFY(air.hear({report(tower, u"18020"_qs), report(u"ZBAA_GND"_qs, u"21700"_qs)}));
        air.takeMessages();
        QVERIFY(air.tuneCom1(118'025) && air.settle()); // the same channel, written otherwise
        QCOMPARE(air.takeMessages(), told({tuned(1, tower), tuned(2, {})}));
        QVERIFY(air.tuneCom2(121'700) && air.settle());
        QCOMPARE(air.takeMessages(), told({tuned(1, tower), tuned(2, u"ZBAA_GND"_qs)}));
        QVERIFY(air.tuneCom1(136'975) && air.settle());
        QCOMPARE(air.takeMessages(), told({tuned(1, {}), tuned(2, u"ZBAA_GND"_qs)}));
    }

    void theEndOfTheSessionForgetsThem()
    {
        Airspace air;
        QVERIFY(air.openTower());
        air.manager().disconnectFromNetwork();
        QCOMPARE(air.client.controllers->controllers().size(), 0);
        QVERIFY(!air.client.isRunning("controllerTimer"));
    }

    // --- ATIS ---

    void atisThatWasAskedFor()
    {
        Airspace air;
        QVERIFY(air.start());
        QVERIFY(air.hear({u"$CRZBAA_TWR:AB1:ATIS:T:nobody asked"_qs}));
        QVERIFY(air.plugin().requestStation(u"zbaa_twr"_qs) && air.settle());
        QCOMPARE(air.takeLines(), QStringList{u"$CQAB1:ZBAA_TWR:ATIS"_qs});
        QVERIFY(air.hear({u"$CRZBAA_TWR:AB1:ATIS:T:Beijing Tower"_qs, u"$CRZBAA_GND:AB1:ATIS:T:unasked"_qs,
                          u"$CRZBAA_GND:AB1:ATIS:E:1"_qs, u"$CRzbaa_twr:AB1:ATIS:T:runway 36R"_qs,
                          u"$CRZBAA_TWR:AB1:ATIS:Z:1800z"_qs, u"$CRZBAA_TWR:AB1:ATIS:V:voice"_qs}));
        QCOMPARE(air.takeMessages() + air.takeSignals(), QStringList()); // until the last line
        QVERIFY(air.hear({u"$CRZBAA_TWR:AB1:ATIS:E:4"_qs}));
        QCOMPARE(air.takeSignals(),
                 QStringList{u"atis ZBAA_TWR Beijing Tower|runway 36R|Estimated logoff time: 1800z"_qs});
        QCOMPARE(air.takeMessages(),
                 told({note(u"ZBAA_TWR ATIS:"_qs, 0xFFA500), note(u"Beijing Tower"_qs, 0xFFA500),
                       note(u"runway 36R"_qs, 0xFFA500), note(u"Estimated logoff time: 1800z"_qs, 0xFFA500)}));
        QVERIFY(air.hear({u"$CRZBAA_TWR:AB1:ATIS:T:late"_qs, u"$CRZBAA_TWR:AB1:ATIS:E:1"_qs}));
        QCOMPARE(air.takeMessages() + air.takeSignals(), QStringList());
    }

    void atisAskedForAgainBeginsAnew()
    {
        Airspace air;
        QVERIFY(air.start());
        air.manager().requestControllerAtis(tower);
        QVERIFY(air.hear({u"$CRZBAA_TWR:AB1:ATIS:T:old"_qs}));
        air.manager().requestControllerAtis(tower);
        QVERIFY(air.hear({u"$CRZBAA_TWR:AB1:ATIS:T:new"_qs, u"$CRZBAA_TWR:AB1:ATIS:E:1"_qs}));
        QCOMPARE(air.takeSignals(), QStringList{u"atis ZBAA_TWR new"_qs});
    }

    // --- SELCAL ---

    void selcal_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("announced");
        QTest::addColumn<QStringList>("messages");
        const auto row = [](const char *name, const QString &text, const QStringList &announced,
                            const QStringList &messages = {}) { QTest::newRow(name) << text << announced << messages; };
        row("on COM1", u"@18500:SELCAL EF-GH"_qs, {u"selcal ZBAA_TWR 118500"_qs});
        row("on COM2", u"@21500:SELCAL EFGH"_qs, {u"selcal ZBAA_TWR 121500"_qs});
        row("on both", u"@21500&@18500&@21500:SELCAL ef-gh"_qs, {u"selcal ZBAA_TWR 121500&118500"_qs});
        row("unheard", u"@18600:SELCAL EF-GH"_qs, {});
        row("somebody else's", u"@18500:SELCAL AB-CD"_qs, {});
        row("a lower-case word is a text", u"@18500:selcal EF-GH"_qs, {u"radio ZBAA_TWR selcal EF-GH 118500 dual"_qs},
            told({{u"RDIORCVD"_qs, {tower, u"selcal EF-GH"_qs, false}}}));
        row("so is a longer one", u"@18500:SELCAL EF-GHI"_qs, {u"radio ZBAA_TWR SELCAL EF-GHI 118500 dual"_qs},
            told({{u"RDIORCVD"_qs, {tower, u"SELCAL EF-GHI"_qs, false}}}));
    }

    void selcal()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, announced);
        QFETCH(QStringList, messages);
        if (!m_shared) {
            m_shared = std::make_unique<Airspace>();
            QVERIFY(m_shared->start() && m_shared->receiveOnCom2() && m_shared->settle());
        }
        Airspace &air = *m_shared;
        air.takeMessages();
        QVERIFY(air.hear({u"#TMzbaa_twr:"_qs + text}));
        QCOMPARE(air.takeSignals(), announced);
        QCOMPARE(air.takeMessages(), messages);
        QCOMPARE(air.client.notifications, QStringList());
    }

    // --- text ---

    void textComesIn()
    {
        Airspace air;
        QVERIFY(air.start());
        const auto check = [&air](const QString &line, const QStringList &announced, const QStringList &messages) {
            return air.hear({line}) &&
                   QTest::qCompare(air.takeSignals(), announced, "signals", qPrintable(line), __FILE__, __LINE__) &&
                   QTest::qCompare(air.takeMessages(), messages, "messages", qPrintable(line), __FILE__, __LINE__);
        };
        QVERIFY(check(u"#TMcca123:AB1:hi: there"_qs, {u"private cca123 hi: there"_qs},
                      told({{u"PRIVRCVD"_qs, {cca, u"hi: there"_qs}}})));
        QVERIFY(check(u"#TMserver:AB1:Welcome"_qs, {u"server Welcome"_qs}, told({note(u"Welcome"_qs, 0x85A664)})));
        for (const QString &to : {u"*"_qs, u"*A"_qs, u"*P"_qs})
            QVERIFY(check(u"#TMcca123:%1:to: all"_qs.arg(to), {u"broadcast CCA123 to: all"_qs},
                          told({note(u"[BROADCAST] CCA123: to: all"_qs, 0xFFA500)})));
        QVERIFY(check(u"#TMcca123:*S:help"_qs, {}, {})); // supervisors' business
        QVERIFY(check(u"#TMcca123:@18500&@18500:hello"_qs, {u"radio CCA123 hello 118500"_qs},
                      told({{u"RDIORCVD"_qs, {cca, u"hello"_qs, false}}})));
        QVERIFY(check(u"#TMcca123:@18500:ab1, hello"_qs, {u"radio CCA123 ab1, hello 118500 direct"_qs},
                      told({{u"RDIORCVD"_qs, {cca, u"ab1, hello"_qs, true}}})));
        QVERIFY(check(u"#TMcca123:@21500:COM2 is off"_qs, {}, {}));
        QCOMPARE(air.takeLines(), QStringList());
        QCOMPARE(air.client.notifications, QStringList());
        QVERIFY(check(u"#TMcca123:*S:help: me"_qs, {}, {})); // a wallop with a colon can't be read
        QCOMPARE(air.client.notifications,
                 QStringList{u"Invalid field count for Wallop command. (Raw packet: cca123:*S:help: me)"_qs});
    }

    void aFrequencyOnBothRadiosIsHeardOnce()
    {
        Airspace air;
        QVERIFY(air.start() && air.receiveOnCom2() && air.tuneCom2(118'500) && air.settle());
        air.takeMessages();
        QVERIFY(air.hear({u"#TMZBAA_TWR:@18500:hello"_qs}));
        QCOMPARE(air.takeSignals(), QStringList{u"radio ZBAA_TWR hello 118500 dual"_qs});
        QCOMPARE(air.takeMessages(), told({{u"RDIORCVD"_qs, {tower, u"hello"_qs, false}}}));
    }

    void textGoesOutFromThePages()
    {
        Airspace air;
        QVERIFY(air.start());
        air.manager().sendRadioMessage(u"on the radio: hi"_qs);
        air.manager().sendPrivateMessage(u"cca123"_qs, u"to you: hi"_qs);
        air.manager().sendWallop(u"help"_qs);
        QVERIFY(air.settle());
        QCOMPARE(air.takeLines(), (QStringList{u"#TMAB1:@18500:on the radio: hi"_qs, u"#TMAB1:CCA123:to you: hi"_qs,
                                               u"#TMAB1:*S:help"_qs}));
        const QString thanks = u"Your call to the supervisors was received."_qs;
        QCOMPARE(air.takeSignals(),
                 (QStringList{u"radio sent on the radio: hi 118500"_qs, u"private sent cca123 to you: hi"_qs,
                              u"wallop sent help"_qs, u"server "_qs + thanks}));
        QCOMPARE(air.takeMessages(), told({{u"RDIOSENT"_qs, {u"on the radio: hi"_qs}},
                                           {u"PRIVSENT"_qs, {u"cca123"_qs, u"to you: hi"_qs}},
                                           note(u"[WALLOP] help"_qs, 0xEB2F06),
                                           note(thanks, 0x85A664)}));
    }

    void textGoesOutFromTheSimulator()
    {
        Airspace air;
        QVERIFY(air.start());
        QVERIFY(air.plugin().sendRadioMessage(u"hi"_qs) && air.plugin().sendPrivateMessage(u"cca123"_qs, u"hi"_qs));
        QVERIFY(air.settle());
        QCOMPARE(air.takeLines(), (QStringList{u"#TMAB1:@18500:hi"_qs, u"#TMAB1:CCA123:hi"_qs}));
        QCOMPARE(air.takeSignals(), (QStringList{u"radio sent hi 118500"_qs, u"private sent cca123 hi"_qs}));
        QCOMPARE(air.takeMessages(), told({{u"RDIOSENT"_qs, {u"hi"_qs}}, {u"PRIVSENT"_qs, {u"cca123"_qs, u"hi"_qs}}}));
        QVERIFY(air.plugin().sendPrivateMessage(cca, {}) && air.plugin().sendPrivateMessage({}, u"hi"_qs));
        QVERIFY(air.plugin().sendRadioMessage({}) && air.plugin().requestStation({}) && air.settle());
        QCOMPARE(air.takeLines() + air.takeSignals() + air.takeMessages(), QStringList());
    }

    void aRadioThatSendsNowhereSaysNothing()
    {
        Airspace air;
        QVERIFY(air.start());
        QVERIFY(air.turnRadio(u"sim/cockpit2/radios/actuators/audio_com_selection"_qs, 7,
                              [](const model::RadioStackState &radio) { return radio.com2TransmitEnabled; }));
        air.manager().sendRadioMessage(u"on COM2"_qs);
        QVERIFY(air.settle());
        QCOMPARE(air.takeLines(), QStringList{u"#TMAB1:@21500:on COM2"_qs});
        air.manager().disconnectFromNetwork();
        air.takeSignals();
        air.manager().sendRadioMessage(u"nobody hears"_qs); // what was said shows all the same
        QCOMPARE(air.takeSignals(), QStringList{u"radio sent nobody hears 121500"_qs});
    }
};

TARVO_TEST(StationsTest)
#include "StationsTest.moc"

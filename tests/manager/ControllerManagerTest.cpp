#include "common/Callsign.h"
#include "fsd/FsdClient.h"
#include "manager/ControlledSession.h"
#include "support/Columns.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;
using tarvo::manager::ControllerManager;
using tarvo::manager::NetworkManager;
using tarvo::model::Controller;

class ControllerManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void aNewStationIsAskedAbout()
    {
        SimulatedSession s;
        QVERIFY(s.connectPilot());
        QVERIFY(s.peer.skip(4));
        s.peer.inject(u"$CRSERVER:AB1:IP:10.0.0.9"_qs);
        s.peer.inject(u"%zbaa_twr:18020&21700:4:100:3:40.07250:116.59750:0"_qs);
        EXPECT_LINES(s, u"$CQAB1:ZBAA_TWR:RN"_qs, u"$CQAB1:SERVER:ATC:ZBAA_TWR"_qs, u"$CQAB1:ZBAA_TWR:CAPS"_qs);
        QCOMPARE(s.takeChanges(), QStringList{u"added ZBAA_TWR 118020 Unknown"_qs});
        QCOMPARE(s.controllers.controllers(), QList<Controller>{(Controller{.callsign = twr,
                                                                            .frequency = 118020,
                                                                            .normalisedFrequency = 118025,
                                                                            .frequencyHz = 118020000,
                                                                            .latitude = 40.0725,
                                                                            .longitude = 116.5975,
                                                                            .lastUpdate = 1'700'000'000})});
        s.peer.inject(u"%ZBAA_TWR:18020:4:100:3:40.07250:116.59750:0"_qs); // known by now
        s.peer.inject(u"$CRSERVER:AB1:ATC:Y:zbaa_twr"_qs);
        s.peer.inject(u"$CRzbaa_twr:AB1:RN:Han Mei:1:3"_qs);
        s.peer.inject(u"$CRSERVER:AB1:ATC:Y:ZSSS_TWR"_qs); // nobody's
        s.peer.inject(u"#DAzbaa_twr:1002"_qs);
        QVERIFY(s.peer.expectNothing());
        s.tick();
        QCOMPARE(s.takeChanges(),
                 (QStringList{u"deleted ZBAA_TWR 118020 Unknown valid"_qs, u"added ZBAA_TWR 118020 Unknown valid"_qs,
                              u"deleted ZBAA_TWR 118020 Han Mei valid"_qs, u"added ZBAA_TWR 118020 Han Mei valid"_qs,
                              u"deleted ZBAA_TWR 118020 Han Mei valid pending"_qs}));
    }

    void itIsAskedAboutBeforeItIsToldOf()
    {
        SimulatedSession s;
        QVERIFY(s.connectPilot());
        QVERIFY(s.peer.skip(4));
        QObject::connect(s.manager->findChild<fsd::FsdClient *>(), &fsd::FsdClient::raiseRawDataSent, s.manager.get(),
                         [&s](const QString &line) { s.changes << line.trimmed(); });
        s.report(twr, 118500);
        QCOMPARE(s.takeChanges(), (QStringList{u"$CQAB1:ZBAA_TWR:RN"_qs, u"$CQAB1:SERVER:ATC:ZBAA_TWR"_qs,
                                               u"$CQAB1:ZBAA_TWR:CAPS"_qs, u"added ZBAA_TWR 118500 Unknown"_qs}));
    }

    void aServerThatIsGoneWhileItIsAsked()
    {
        SimulatedSession s;
        QVERIFY(s.connectPilot());
        QVERIFY(s.peer.skip(4));
        QObject::connect(
            s.manager->findChild<fsd::FsdClient *>(), &fsd::FsdClient::raiseRawDataSent, s.manager.get(),
            [&s] { s.manager->disconnectFromNetwork(); }, Qt::SingleShotConnection);
        s.report(twr, 118500);
        QCOMPARE(s.takeEvents(), QStringList{u"disconnected"_qs});
        QCOMPARE(s.takeChanges(), QStringList()); // a station that is in no list is not told of
        QCOMPARE(s.callsigns(), QStringList());
    }

    void callsignsThatAreNone_data()
    {
        columns<QString, bool>("callsign", "kept");
        QTest::newRow("longest") << QString(common::longestCallsign, u'X') << true;
        QTest::newRow("longest with blanks around") << u' ' + QString(common::longestCallsign, u'X') + u' ' << true;
        QTest::newRow("too long") << QString(common::longestCallsign + 1, u'X') << false;
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("blanks") << u"  "_qs << false;
    }

    void callsignsThatAreNone()
    {
        QFETCH(QString, callsign);
        QFETCH(bool, kept);
        ControlledSession s;
        s.report(callsign, 118500);
        QCOMPARE(s.callsigns().size(), kept ? 1 : 0);
        QCOMPARE(s.takeChanges().size(), kept ? 1 : 0);
    }

    void thoseThatGoAtOnceGoInOrder()
    {
        SimulatedSession s;
        const auto callsign = [](qsizetype i) { return u"X%1"_qs.arg(i); };
        constexpr qsizetype count = ControllerManager::maximumStations;
        for (qsizetype i = 0; i < count; ++i)
            s.report(callsign(i), 118500);
        for (qsizetype i = 0; i < count; i += 2)
            s.leave(callsign(i));
        s.takeChanges();
        s.tick();
        QCOMPARE(s.changes.size(), count / 2);
        QCOMPARE(s.changes.constFirst(), u"deleted X0 118500 Unknown pending"_qs);
        QCOMPARE(s.changes.constLast(), u"deleted X1998 118500 Unknown pending"_qs);
        QCOMPARE(s.callsigns().size(), count / 2);
        // Each of the others is still found where it stands.
        for (qsizetype i = 1; i < count; i += 2)
            s.name(callsign(i), u"N%1"_qs.arg(i));
        for (qsizetype i = 0; i < count / 2; ++i)
            QCOMPARE(s.known().at(i), u"X%1 118500 N%1"_qs.arg(2 * i + 1));
    }

    void oneThatComesBackWhileItGoesIsANewOne()
    {
        SimulatedSession s;
        s.report(u"A"_qs, 118500);
        s.report(u"B"_qs, 118500);
        s.report(u"C"_qs, 118500);
        s.leave(u"A"_qs);
        s.leave(u"B"_qs);
        QObject::connect(&s.controllers, &ControllerManager::controllerDeleted, s.manager.get(),
                         [&s](const Controller &gone) {
                             if (gone.callsign == u"B"_qs)
                                 s.report(u"A"_qs, 121700);
                         });
        s.tick();
        QCOMPARE(s.known(), (QStringList{u"C 118500 Unknown"_qs, u"A 121700 Unknown"_qs}));
        s.name(u"A"_qs, u"Li Lei"_qs);
        QCOMPARE(s.known().constLast(), u"A 121700 Li Lei"_qs);
    }

    void aServerThatInventsStationsFillsNothing()
    {
        SimulatedSession s;
        const test::LogCapture log;
        const auto callsign = [](qsizetype i) { return u"X%1"_qs.arg(i); };
        for (qsizetype i = 0; i < ControllerManager::maximumStations + 100; ++i)
            s.report(callsign(i), 118500);
        QCOMPARE(s.controllers.controllers().size(), ControllerManager::maximumStations);
        QCOMPARE(s.takeChanges().size(), ControllerManager::maximumStations);
        QCOMPARE(log.texts(QtWarningMsg), QStringList{u"No room for more than 2000 stations; new ones are ignored"_qs});
        // Those who are there are still heard, and one that goes leaves its place to another.
        s.name(callsign(1999), u"Li Lei"_qs);
        s.leave(callsign(0));
        s.leave(callsign(1000));
        s.tick();
        s.report(twr, 118500);
        s.name(callsign(1001), u"Han Mei"_qs);
        QCOMPARE(s.controllers.controllers().size(), ControllerManager::maximumStations - 1);
        QCOMPARE(s.known().constLast(), u"ZBAA_TWR 118500 Unknown"_qs);
        QCOMPARE(s.known().value(1997), u"X1999 118500 Li Lei"_qs);
        QCOMPARE(s.known().value(999), u"X1001 118500 Han Mei"_qs);
        // The next connection is warned of anew.
        emit s.manager->networkConnected(u"AB1"_qs);
        for (qsizetype i = 0; i < ControllerManager::maximumStations + 2; ++i)
            s.report(callsign(i), 118500);
        QCOMPARE(log.texts(QtWarningMsg).size(), 2);
    }

    void aNameBeyondMeasureIsCut()
    {
        ControlledSession s;
        s.report(twr, 118500);
        s.name(twr, QString(70'000, u'x'));
        QCOMPARE(s.controllers.controllers().value(0).realName, QString(ControllerManager::longestRealName, u'x'));
    }

    void reports_data()
    {
        // One step a word: r, m and f report: the same, a place moved, another frequency; n: no frequency; o: back on
        // the first; v: confirmed; d: left; N: named; t: a tick.
        columns<QString, QStringList, QStringList>("steps", "expected", "known");
        const auto row = [](const char *name, const QString &steps, const QStringList &expected,
                            const QStringList &known) { QTest::newRow(name) << steps << expected << known; };
        const QString fresh = u"T 118500 Unknown"_qs;
        const QString pending = u"T 118500 Unknown pending"_qs;
        const QString valid = u"T 118500 Unknown valid"_qs;
        row("new", u"r"_qs, {u"added "_qs + fresh}, {fresh});
        row("new without a frequency", u"n"_qs, {u"added T 199998 Unknown"_qs}, {u"T 199998 Unknown"_qs});
        row("unchanged", u"rrr"_qs, {u"added "_qs + fresh}, {fresh});
        row("unchanged and confirmed", u"rvr"_qs, {u"added "_qs + fresh, u"deleted "_qs + valid, u"added "_qs + valid},
            {valid});
        row("unconfirmed moves", u"rm"_qs, {u"added "_qs + fresh, u"deleted "_qs + pending, u"added "_qs + pending},
            {pending});
        row("unconfirmed moves, then is gone", u"rmt"_qs,
            {u"added "_qs + fresh, u"deleted "_qs + pending, u"added "_qs + pending, u"deleted "_qs + pending}, {});
        row("unconfirmed moves, rests: the mark stays", u"rmmt"_qs,
            {u"added "_qs + fresh, u"deleted "_qs + pending, u"added "_qs + pending, u"deleted "_qs + pending}, {});
        row("confirmed after it moved: the mark stays", u"rmvt"_qs,
            {u"added "_qs + fresh, u"deleted "_qs + pending, u"added "_qs + pending,
             u"deleted T 118500 Unknown valid pending"_qs, u"added T 118500 Unknown valid pending"_qs,
             u"deleted T 118500 Unknown valid pending"_qs},
            {});
        row("new again after it is gone", u"rmtr"_qs,
            {u"added "_qs + fresh, u"deleted "_qs + pending, u"added "_qs + pending, u"deleted "_qs + pending,
             u"added "_qs + fresh},
            {fresh});
        row("confirmed moves", u"rvmt"_qs,
            {u"added "_qs + fresh, u"deleted "_qs + valid, u"added "_qs + valid, u"deleted "_qs + valid,
             u"added "_qs + valid},
            {valid});
        row("confirmed on another frequency", u"rvft"_qs,
            {u"added "_qs + fresh, u"deleted "_qs + valid, u"added "_qs + valid, u"deleted T 121700 Unknown valid"_qs,
             u"added T 121700 Unknown valid"_qs},
            {u"T 121700 Unknown valid"_qs});
        row("unconfirmed on another frequency", u"rf"_qs,
            {u"added "_qs + fresh, u"deleted T 121700 Unknown pending"_qs, u"added T 121700 Unknown pending"_qs},
            {u"T 121700 Unknown pending"_qs});
        row("confirmed loses its frequency", u"rvnt"_qs,
            {u"added "_qs + fresh, u"deleted "_qs + valid, u"added "_qs + valid,
             u"deleted T 199998 Unknown valid pending"_qs, u"added T 199998 Unknown valid pending"_qs,
             u"deleted T 199998 Unknown valid pending"_qs},
            {});
        row("confirmed gets a frequency", u"nvot"_qs,
            {u"added T 199998 Unknown"_qs, u"updated T 199998 Unknown valid"_qs, u"deleted "_qs + valid,
             u"added "_qs + valid},
            {valid});
        row("confirmed without a frequency stays", u"nvnt"_qs,
            {u"added T 199998 Unknown"_qs, u"updated T 199998 Unknown valid"_qs}, {u"T 199998 Unknown valid"_qs});
        row("confirmed twice", u"rvv"_qs,
            {u"added "_qs + fresh, u"deleted "_qs + valid, u"added "_qs + valid, u"deleted "_qs + valid,
             u"added "_qs + valid},
            {valid});
        row("named", u"rN"_qs, {u"added "_qs + fresh, u"deleted T 118500 Li Lei"_qs, u"added T 118500 Li Lei"_qs},
            {u"T 118500 Li Lei"_qs});
        row("named without a frequency", u"nN"_qs, {u"added T 199998 Unknown"_qs, u"updated T 199998 Li Lei"_qs},
            {u"T 199998 Li Lei"_qs});
        row("left", u"rd"_qs, {u"added "_qs + fresh}, {pending});
        row("left, then is gone", u"rdt"_qs, {u"added "_qs + fresh, u"deleted "_qs + pending}, {});
        row("left, reported again: the mark stays", u"rdrt"_qs, {u"added "_qs + fresh, u"deleted "_qs + pending}, {});
        row("never seen", u"vNdt"_qs, {}, {});
    }

    void reports()
    {
        QFETCH(QString, steps);
        QFETCH(QStringList, expected);
        QFETCH(QStringList, known);
        SimulatedSession s;
        const QString callsign = u"T"_qs;
        for (const QChar step : std::as_const(steps)) {
            if (step == u'r' || step == u'o')
                s.report(callsign, 118500);
            else if (step == u'm')
                s.report(callsign, 118500, 40.1);
            else if (step == u'f')
                s.report(callsign, 121700);
            else if (step == u'n')
                s.report(callsign, Controller::noFrequency);
            else if (step == u'v')
                s.confirm(callsign);
            else if (step == u'N')
                s.name(callsign, u"Li Lei"_qs);
            else if (step == u'd')
                s.leave(callsign);
            else
                s.tick();
        }
        QCOMPARE(s.takeChanges(), expected);
        QCOMPARE(s.known(), known);
    }

    void everyFieldFollowsAReport()
    {
        ControlledSession s;
        s.report(twr, 118500, 40, 116);
        s.confirm(twr);
        s.clock.advance(5000);
        s.report(twr, 121970, 41, 116);
        s.report(twr, 121970, 41, 117); // the longitude alone
        const Controller controller = s.controllers.controllers().value(0);
        QCOMPARE(controller, (Controller{.callsign = twr,
                                         .frequency = 121970,
                                         .normalisedFrequency = 121975,
                                         .frequencyHz = 121970000,
                                         .latitude = 41,
                                         .longitude = 117,
                                         .lastUpdate = 1'700'000'005,
                                         .valid = true}));
        QCOMPARE(s.takeChanges().size(), 7); // one added, then three changes
    }

    void callsignsAreComparedInUpperCase()
    {
        ControlledSession s;
        s.report(u" zbaa_twr "_qs, 118500);
        s.report(u"ZBAA_TWR"_qs, 118500);
        s.report(u"ZBAA_TW"_qs, 118500);
        s.confirm(u"zbaa_Twr"_qs);
        s.name(u"zbaa_twr"_qs, u"Li Lei"_qs);
        QCOMPARE(s.known(), (QStringList{u"ZBAA_TWR 118500 Li Lei valid"_qs, u"ZBAA_TW 118500 Unknown"_qs}));
        s.leave(u"zbaa_twr"_qs);
        QCOMPARE(s.known().value(0), u"ZBAA_TWR 118500 Li Lei valid pending"_qs);
    }

    void ageing_data()
    {
        QTest::addColumn<QList<int>>("reports"); // ms behind the first
        QTest::addColumn<int>("tickAt");         // ms behind the first
        QTest::addColumn<bool>("stays");
        QTest::newRow("at once") << QList<int>{} << 0 << true;
        QTest::newRow("60 s") << QList<int>{} << 60'000 << true;
        QTest::newRow("60.999 s") << QList<int>{} << 60'999 << true;
        QTest::newRow("61 s") << QList<int>{} << 61'000 << false;
        QTest::newRow("much later") << QList<int>{} << 600'000 << false;
        QTest::newRow("reported in between") << QList<int>{30'000} << 90'000 << true;
        QTest::newRow("reported in between, then silent") << QList<int>{30'000} << 91'000 << false;
        QTest::newRow("reported at the last moment") << QList<int>{61'000} << 61'000 << true;
    }

    void ageing()
    {
        QFETCH(QList<int>, reports);
        QFETCH(int, tickAt);
        QFETCH(bool, stays);
        SimulatedSession s;
        s.report(twr, 118500);
        int at = 0;
        for (const int time : std::as_const(reports)) {
            s.clock.advance(time - std::exchange(at, time));
            s.report(twr, 118500);
        }
        s.clock.advance(tickAt - at);
        s.takeChanges();
        s.tick();
        QCOMPARE(s.callsigns(), stays ? QStringList{twr} : QStringList());
        QCOMPARE(s.takeChanges(), stays ? QStringList() : QStringList{u"deleted ZBAA_TWR 118500 Unknown"_qs});
        QCOMPARE(s.sim->controllers.size(), stays ? 1 : 0);
    }

    void withoutASimulatorNothingAgesOut()
    {
        ControlledSession s;
        s.report(twr, 118500);
        s.report(gnd, 121700);
        s.leave(gnd);
        s.clock.advance(600'000);
        s.takeChanges();
        s.tick();
        QCOMPARE(s.takeChanges(), QStringList());
        QCOMPARE(s.callsigns(), (QStringList{twr, gnd}));
        s.addSimulator();
        s.tick();
        QCOMPARE(s.callsigns(), QStringList());
        QCOMPARE(s.takeChanges(),
                 (QStringList{u"deleted ZBAA_TWR 118500 Unknown"_qs, u"deleted ZBAA_GND 121700 Unknown pending"_qs}));
    }

    void aTickInOrder()
    {
        SimulatedSession s;
        s.report(u"A"_qs, 118500);
        s.report(u"B"_qs, 121700);
        s.report(u"C"_qs, Controller::noFrequency);
        s.report(u"D"_qs, 122800);
        s.leave(u"B"_qs);
        s.tune(122800, 118500);
        s.sim->takeCalls();
        QObject::connect(&s.controllers, &ControllerManager::controllerDeleted, s.sim.get(),
                         [&s](const Controller &controller) {
                             s.sim->calls << u"deleted "_qs + controller.callsign + u" of "_qs +
                                                 QString::number(s.controllers.controllers().size());
                         });
        s.tick();
        QCOMPARE(s.sim->takeCalls(),
                 (QStringList{u"deleted B of 4"_qs, u"setControllers 3"_qs, tuned(1, u"D"_qs), tuned(2, u"A"_qs)}));
        QCOMPARE(s.sim->controllers, s.controllers.controllers()); // the whole list; a backend shows what it can
    }

    void stationsOfTheRadios_data()
    {
        columns<quint32, quint32, QString, QString>("com1", "com2", "station1", "station2");
        // Stations: A and B on 118020, C on 121975, D without a frequency.
        QTest::newRow("the same text") << 118020U << 121975U << u"A"_qs << u"C"_qs;
        QTest::newRow("118020 meets 118025") << 118025U << 121975U << u"A"_qs << u"C"_qs;
        QTest::newRow("121975 meets 121970") << 118020U << 121970U << u"A"_qs << u"C"_qs;
        QTest::newRow("both on one") << 118025U << 118020U << u"A"_qs << u"A"_qs;
        QTest::newRow("neither") << 118000U << 122800U << QString() << QString();
        QTest::newRow("no radio told yet") << 0U << 121975U << QString() << u"C"_qs;
    }

    void stationsOfTheRadios()
    {
        QFETCH(quint32, com1);
        QFETCH(quint32, com2);
        QFETCH(QString, station1);
        QFETCH(QString, station2);
        SimulatedSession s;
        s.report(u"A"_qs, 118020);
        s.report(u"B"_qs, 118020);
        s.report(u"C"_qs, 121975);
        s.report(u"D"_qs, Controller::noFrequency);
        QCOMPARE(s.sim->takeCalls(), QStringList()); // a report alone tells the simulator nothing
        s.tune(com1, com2);
        const QStringList stations{tuned(1, station1), tuned(2, station2)};
        QCOMPARE(s.sim->takeCalls(), stations);
        s.tune(com1, com2); // unchanged
        QCOMPARE(s.sim->takeCalls(), QStringList());
        s.tick();
        QCOMPARE(s.sim->takeCalls(), QStringList{u"setControllers 4"_qs} + stations);
    }

    void anyChangeOfTheRadiosRefreshesTheStations()
    {
        SimulatedSession s;
        s.tune(118500, 0);
        s.report(twr, 118500);
        s.sim->takeCalls();
        emit s.sim->radioStackStateChanged({.com1Frequency = 118500, .com1Volume = 50});
        QCOMPARE(s.sim->takeCalls(), (QStringList{tuned(1, twr), tuned(2, QString())}));
    }

    void theNextOnTheFrequencyTakesOver()
    {
        SimulatedSession s;
        s.report(u"A"_qs, 118500);
        s.report(u"B"_qs, 118500);
        s.tune(118500, 121700);
        s.leave(u"A"_qs);
        s.sim->takeCalls();
        s.tick();
        QCOMPARE(s.sim->takeCalls(), (QStringList{u"setControllers 1"_qs, tuned(1, u"B"_qs), tuned(2, QString())}));
    }

    void aStationThatLeaves_data()
    {
        columns<quint32, quint32, QStringList>("com1", "com2", "calls");
        QTest::newRow("on COM1") << 118020U << 121700U << QStringList{tuned(1, QString())};
        QTest::newRow("on COM2") << 121700U << 118020U << QStringList{tuned(2, QString())};
        QTest::newRow("on both") << 118020U << 118025U << QStringList{tuned(1, QString()), tuned(2, QString())};
        QTest::newRow("on neither") << 121700U << 122800U << QStringList();
        QTest::newRow("118020 meets 118025") << 118025U << 121700U << QStringList{tuned(1, QString())};
    }

    void aStationThatLeaves()
    {
        QFETCH(quint32, com1);
        QFETCH(quint32, com2);
        QFETCH(QStringList, calls);
        SimulatedSession s;
        s.report(twr, 118020);
        s.tune(com1, com2);
        s.sim->takeCalls();
        s.leave(u"ZBAA"_qs); // somebody else
        QCOMPARE(s.sim->takeCalls(), QStringList());
        s.leave(twr);
        QCOMPARE(s.sim->takeCalls(), calls);
        QCOMPARE(s.known(), QStringList{u"ZBAA_TWR 118020 Unknown pending"_qs});
    }

    void leavingWithoutASimulator()
    {
        ControlledSession s;
        s.report(twr, 118500);
        s.leave(twr);
        QCOMPARE(s.known(), QStringList{u"ZBAA_TWR 118500 Unknown pending"_qs});
    }
};

TARVO_TEST(ControllerManagerTest)
#include "ControllerManagerTest.moc"

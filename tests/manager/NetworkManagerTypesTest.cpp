#include "manager/TrafficSession.h"
#include "support/Columns.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>

using namespace tarvo;
using tarvo::model::RemoteAircraft;
using namespace tarvo::test;
using State = tarvo::model::RemoteAircraft::State;

/// What brings the type of another aircraft: its own answer, a flight plan, the server's answer about one.
class NetworkManagerTypesTest : public QObject
{
    Q_OBJECT

private slots:
    void planeInformationBringsItIn()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::slow(ab2), askForType));
        s.takeTrace();
        test::LogCapture log;
        s.clock.advance(5);
        QVERIFY(
            s.feed(u"#SBab2:AB1:PI:GEN:EQUIPMENT= b738 :AIRLINE=ces:LIVERY=swift_x y:CSL= "_qs, {askForConfiguration}));
        QCOMPARE(s.takeTrace(), (QStringList{u"addAircraft AB2"_qs, u"info AB2 B738 CES"_qs}));
        QCOMPARE(log.texts(QtInfoMsg),
                 (QStringList{u"PlaneInfoResponse in: callsign=AB2 equipment=b738 airline=ces livery=swift_x y csl="_qs,
                              u"PlaneInfoResponse applied: callsign=AB2 typeCode=B738 airline=CES remoteAirline=CES "
                              "livery=SWIFT_X Y remoteModelHint=SWIFT_X Y"_qs}));
        const RemoteAircraft known = s.known();
        QCOMPARE(known.remoteModelHint, u"SWIFT_X Y"_qs);
        QCOMPARE(known.state, State::InSimulator);
        QCOMPARE(known.lastStateChange.toMSecsSinceEpoch(), s.clock.wallMs());
        QCOMPARE(s.sim->told[0].aircraft.livery, u"SWIFT_X Y"_qs);
        QVERIFY(s.feed(TrafficSession::slow(ab2))); // nothing is asked twice
    }

    void planeInformationOfAnUnknownAircraft()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::planeInfo()));
        QCOMPARE(s.takeTrace(), QStringList{u"info AB2 B738 "_qs});
        QVERIFY(s.feed(TrafficSession::slow(ab2), {askForConfiguration})); // nobody is asked for its type
        QCOMPARE(s.takeTrace(), (QStringList{u"addAircraft AB2"_qs, u"positionUpdate AB2"_qs, u"slow AB2 250"_qs}));
    }

    void planeInformationWithoutATypeIsAskedForAgain()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::slow(ab2), askForType));
        s.takeTrace();
        QVERIFY(s.feed(TrafficSession::planeInfo(QString())));
        QCOMPARE(s.takeTrace(), QStringList{u"info AB2  "_qs});
        s.clock.advance(9999);
        QVERIFY(s.feed(TrafficSession::slow(ab2))); // not with every position
        s.clock.advance(1);
        QVERIFY(s.feed(TrafficSession::slow(ab2), askForType));
    }

    void anotherTypeByPlaneInformationUpdatesNothing()
    {
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        QVERIFY(s.feed(TrafficSession::planeInfo(u"A320"_qs)));
        QCOMPARE(s.takeTrace(), QStringList{u"info AB2 A320 "_qs});
        QCOMPARE(s.known().typeCode, u"A320"_qs);
    }

    void flightPlans_data()
    {
        columns<QString, QString, QStringList>("aircraft", "typeCode", "trace");
        QTest::newRow("same type") << u"H/B738/L"_qs << u"B738"_qs << QStringList{u"info AB2 B738 "_qs};
        QTest::newRow("another type") << u"H/B744/L"_qs << u"B744"_qs
                                      << QStringList{u"updateAircraftConfiguration AB2"_qs, u"info AB2 B744 "_qs};
        QTest::newRow("separators") << u"//"_qs << u"ZZZZ"_qs
                                    << QStringList{u"updateAircraftConfiguration AB2"_qs, u"info AB2 ZZZZ "_qs};
    }

    void flightPlans()
    {
        QFETCH(QString, aircraft);
        QFETCH(QString, typeCode);
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        test::LogCapture log;
        s.clock.advance(5);
        QVERIFY(s.feed(TrafficSession::flightPlan(aircraft)));
        QTEST(s.takeTrace(), "trace");
        QCOMPARE(s.known().typeCode, typeCode);
        QCOMPARE(s.known().lastStateChange.toMSecsSinceEpoch(), s.clock.wallMs());
        QCOMPARE(log.texts(QtInfoMsg),
                 QStringList{u"FlightPlan applied: callsign=AB2 typeCode=%1 rawAircraft=%2 route=ZBAA-ZSSS"_qs.arg(
                     typeCode, aircraft)});
    }

    void aFlightPlanBringsItIn()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::slow(ab2), askForType));
        s.takeTrace();
        QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs, u" ab2 "_qs), {askForConfiguration}));
        QCOMPARE(s.takeTrace(),
                 (QStringList{u"addAircraft AB2"_qs, u"updateAircraftConfiguration AB2"_qs, u"info AB2 B738 "_qs}));
        QVERIFY(s.feed(TrafficSession::slow(ab2)));
    }

    void hugeTextsAreCutInTheLog_data()
    {
        QTest::addColumn<QString>("line"); // %1: the text
        QTest::addColumn<QString>("log");  // %1: its beginning
        QTest::newRow("flight plan answer") << u"$CRSERVER:AB1:FP:ab2:B738:%1"_qs
                                            << u"FlightPlan response applied: callsign=AB2 typeCode=B738 payload="
                                               "ab2:B738:%1"_qs;
        QTest::newRow("empty flight plan answer")
            << u"$CR%1:AB1:FP"_qs << u"FlightPlan response ignored: from=%1 payload="_qs;
        QTest::newRow("flight plan") << TrafficSession::flightPlan(u"B738 %1"_qs)
                                     << u"FlightPlan applied: callsign=AB2 typeCode=B738 rawAircraft=B738 %1 "
                                        "route=ZBAA-ZSSS"_qs;
        QTest::newRow("empty flight plan") << TrafficSession::flightPlan(u" "_qs, u"%1"_qs)
                                           << u"FlightPlan ignored: callsign=%1 empty aircraft type"_qs;
        QTest::newRow("no flight plan") << u"$ERSERVER:AB1:8:%1:No flightplan"_qs
                                        << u"No flight plan available for %1"_qs;
        QTest::newRow("version") << u"$DISERVER:CLIENT:%1:abc"_qs << u"Server version: %1"_qs;
    }

    void hugeTextsAreCutInTheLog()
    {
        QFETCH(QString, line);
        QFETCH(QString, log);
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        const test::LogCapture capture;
        s.peer.inject(line.arg(QString(10'000, u'X')));
        TRY_COMPARE(capture.texts(QtInfoMsg).size(), 1);
        const QString logged = capture.texts(QtInfoMsg).constFirst();
        QVERIFY2(logged.size() < 700, qPrintable(logged));
        // Cut, but not to nothing.
        QVERIFY2(logged.startsWith(log.section(u"%1"_qs, 0, 0) + QString(400, u'X')), qPrintable(logged));
        QVERIFY2(logged.endsWith(log.section(u"%1"_qs, 1)), qPrintable(logged));
    }

    void aFlightPlanWithoutAType()
    {
        TrafficSession s;
        QVERIFY(s.online);
        s.config.set(config::authVatsim, true);
        test::LogCapture log;
        QVERIFY(s.feed(TrafficSession::flightPlan(u" "_qs)));
        QCOMPARE(s.takeTrace(), QStringList());
        QCOMPARE(log.texts(QtInfoMsg), QStringList{u"FlightPlan ignored: callsign=AB2 empty aircraft type"_qs});
    }

    void inTokenModeFlightPlansAreAskedForByText()
    {
        TrafficSession s;
        QVERIFY(s.online);
        s.config.set(config::authVatsim, true);
        const QString text = TrafficSession::textQuestion(ab2);
        QVERIFY(s.feed(TrafficSession::slow(ab2), askForType + QStringList{text}));
        QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs), {askForConfiguration})); // asked for a moment ago
        s.clock.advance(4999);
        QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs)));
        s.clock.advance(1);
        QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs), {text}));
        QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs)));
        for (const QStringList &answers : {QStringList{TrafficSession::textQuestion(u"AB1"_qs)}, QStringList()})
            QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs, u"AB1"_qs), answers)); // the own one has no record
        QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs, QString())));              // nobody's
        QVERIFY(s.feed(u"$CRSERVER:AB1:FP:AB2:A320"_qs));                                // an answer is none
        s.config.set(config::authVatsim, false); // a login without an account service
        s.manager->disconnectFromNetwork();
        QVERIFY(s.peer.waitForClose() && s.connectPilot() && s.peer.waitForConnection(2));
        QVERIFY(s.peer.skip(4));
        s.config.set(config::authVatsim, true);
        QVERIFY(s.feed(TrafficSession::flightPlan(u"B738"_qs, u"AB1"_qs), {TrafficSession::textQuestion(u"AB1"_qs)}));
    }

    void flightPlanAnswers_data()
    {
        columns<QString, QString, QStringList>("line", "log", "trace");
        const QStringList changed{u"updateAircraftConfiguration AB2"_qs, u"info AB2 B744 "_qs};
        QTest::newRow("by position")
            << u"$CRSERVER:AB1:FP:ab2:H/B744/L"_qs
            << u"FlightPlan response applied: callsign=AB2 typeCode=B744 payload=ab2:H/B744/L"_qs << changed;
        QTest::newRow("by keys")
            << u"$CRserver:AB1:FP:TYPE=B744:CID=ab2"_qs
            << u"FlightPlan response applied: callsign=AB2 typeCode=B744 payload=TYPE=B744:CID=ab2"_qs << changed;
        QTest::newRow("by the pilot") << u"$CRab2:AB1:FP:TYPE=B744"_qs
                                      << u"FlightPlan response applied: callsign=AB2 typeCode=B744 payload=TYPE=B744"_qs
                                      << changed;
        QTest::newRow("same type") << u"$CRSERVER:AB1:FP:ab2:B738"_qs
                                   << u"FlightPlan response applied: callsign=AB2 typeCode=B738 payload=ab2:B738"_qs
                                   << QStringList{u"info AB2 B738 "_qs};
        QTest::newRow("no type") << u"$CRSERVER:AB1:FP:AB2"_qs
                                 << u"FlightPlan response ignored: from=SERVER payload=AB2"_qs << QStringList();
        QTest::newRow("no callsign") << u"$CRSERVER:AB1:FP:TYPE=B744"_qs
                                     << u"FlightPlan response ignored: from=SERVER payload=TYPE=B744"_qs
                                     << QStringList();
        QTest::newRow("nothing") << u"$CRSERVER:AB1:FP"_qs << u"FlightPlan response ignored: from=SERVER payload="_qs
                                 << QStringList();
        QTest::newRow("a log line of its own")
            << u"$CRSERVER:AB1:FP:%2\nAB2"_qs << u"FlightPlan response ignored: from=SERVER payload=%2 AB2"_qs
            << QStringList();
    }

    void flightPlanAnswers()
    {
        QFETCH(QString, line);
        QFETCH(QString, log);
        TrafficSession s;
        QVERIFY(s.online && s.showAb2());
        const test::LogCapture capture;
        QVERIFY(s.feed(line));
        QTEST(s.takeTrace(), "trace");
        QCOMPARE(capture.texts(QtInfoMsg), QStringList{log});
    }

    void noFlightPlanIsAnAnswer()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::slow(ab2), askForType));
        QVERIFY(s.feed(u"$ERSERVER:AB1:8:x:No flightplan"_qs)); // somebody else
        QVERIFY(s.feed(TrafficSession::slow(ab2)));
        QVERIFY(s.feed(u"$ERSERVER:AB1:8: ab2 :No flightplan"_qs));
        QVERIFY(s.feed(TrafficSession::slow(ab2)));
        s.clock.advance(10'000);
        QVERIFY(s.feed(TrafficSession::slow(ab2), askForType));
    }

    void typeDataThatComeLateNormaliseTheType()
    {
        TrafficSession s;
        QVERIFY(s.online);
        QVERIFY(s.feed(TrafficSession::planeInfo(u"a-1"_qs)));
        QCOMPARE(s.known().typeCode, u"A-1"_qs);
        QVERIFY(QDir(s.root.path()).mkpath(u"resources"_qs));
        QFile file(s.root.filePath(u"resources/Doc8643.txt"_qs));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("X\tX\tA1\tL1P\tL\n");
        file.close();
        s.icao.ensureLoaded();
        QVERIFY(s.feed(TrafficSession::slow(ab2), {askForConfiguration}));
        QCOMPARE(s.known().typeCode, u"A1"_qs);
    }
};

TARVO_TEST(NetworkManagerTypesTest)
#include "NetworkManagerTypesTest.moc"

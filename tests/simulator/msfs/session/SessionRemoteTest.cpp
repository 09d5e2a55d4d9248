#include "SessionBench.h"
#include "simulator/msfs/session/RemoteObjects.h"
#include "simulator/msfs/session/SimConnectLink.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <limits>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

namespace {

RemotePosition somewhere()
{
    return {.latitude = 40.5,
            .longitude = 116.25,
            .altitudeFeet = 1000,
            .pitch = -1.5,
            .bank = 2.5,
            .heading = 352,
            .onGround = false,
            .speedKnots = 120.9};
}

const QString somewhereBraced = line("{40.5 116.25 1000 -1.5 2.5 352 0 120}");

/// The parts without a session, so that the definition of waypoints is a fresh one.
struct ObjectsBench
{
    tarvo::practice::SimConnectStandIn standIn;
    SimConnectLink link{std::make_shared<SimConnectBinding>(standIn.library())};
    bool waypointIsDefined = false;
    RemoteObjects objects{link, waypointIsDefined};
    LogCapture log;
    QSignalSpy failures{&link, &SimConnectLink::failed};

    ObjectsBench()
    {
        link.open();
        standIn.takeCalls();
    }
    ~ObjectsBench() { link.close(); }
};

const QString waypointCall = line("AddToDataDefinition 30000 \"AI WAYPOINT LIST\" \"number\" 14 0 4294967295");

} // namespace

/// Other pilots' aircraft.
class SessionRemoteTest : public QObject
{
    Q_OBJECT

private slots:
    void created_data()
    {
        columns<QString, QStringList, QString>("library", "missing", "call");
        const QString legacy =
            line("AICreateNonATCAircraft \"Airbus A320\" \"CCA123\" ") + somewhereBraced + line(" 7");
        const QString extended = line("AICreateNonATCAircraft_EX1 \"Airbus A320\" \" Air China \" \"CCA123\" ") +
                                 somewhereBraced + line(" 7");
        QTest::newRow("2020") << library2020 << QStringList() << legacy;
        QTest::newRow("2024") << library2024 << QStringList() << extended;
        QTest::newRow("2024, older library")
            << library2024 << QStringList{line("SimConnect_AICreateNonATCAircraft_EX1")} << legacy;
    }

    void created()
    {
        QFETCH(QString, library);
        QFETCH(QStringList, missing);
        SessionBench bench;
        bench.standIn.setMissing(missing);
        bench.open(library);
        const QSignalSpy failed(&bench.session, &SimConnectSession::remoteAircraftCreateFailed);
        bench.session.createRemoteAircraft(7, line("  Airbus A320 "), line(" Air China "), line("CCA123"), somewhere());
        QTEST(bench.standIn.calls().join(u'|'), "call");
        QCOMPARE(bench.log.texts(QtInfoMsg).last(), line("Create remote aircraft request submitted: req=7 "
                                                         "callsign=CCA123 container=Airbus A320 livery= Air China "));
        QCOMPARE(failed.size(), 0);
    }

    void extendedCallIsFollowedByTheOther()
    {
        OpenBench bench(library2024);
        bench.standIn.failNext(line("AICreateNonATCAircraft_EX1"));
        bench.session.createRemoteAircraft(7, line("Airbus"), line("Air"), line("CCA1"), somewhere());
        QCOMPARE(
            bench.standIn.calls(),
            (QStringList{line("AICreateNonATCAircraft_EX1 \"Airbus\" \"Air\" \"CCA1\" ") + somewhereBraced + line(" 7"),
                         line("AICreateNonATCAircraft \"Airbus\" \"CCA1\" ") + somewhereBraced + line(" 7")}));
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 QStringList(line("AICreateNonATCAircraft_EX1 failed for Airbus/CCA1, retrying legacy API")));
        QVERIFY(bench.log.texts().last().startsWith(line("Create remote aircraft request submitted: req=7")));
    }

    void refusedCreation()
    {
        OpenBench bench(library2024);
        bench.standIn.failAlways(line("AICreateNonATCAircraft_EX1"));
        bench.standIn.failAlways(line("AICreateNonATCAircraft"));
        const QSignalSpy failed(&bench.session, &SimConnectSession::remoteAircraftCreateFailed);
        bench.session.createRemoteAircraft(7, line("Airbus"), {}, line("CCA1"), somewhere());
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 lines("AICreateNonATCAircraft_EX1 failed for Airbus/CCA1, retrying legacy API\n"
                       "Failed to create remote aircraft CCA1 with container Airbus (HRESULT: 0x80004005)"));
        QCOMPARE(failed.size(), 1);
        QCOMPARE(bench.errors.size(), 0);
    }

    void withoutATitleNothingIsCreated()
    {
        OpenBench bench;
        const QSignalSpy failed(&bench.session, &SimConnectSession::remoteAircraftCreateFailed);
        bench.session.createRemoteAircraft(7, line("  "), {}, line("CCA1"), somewhere());
        QCOMPARE(bench.standIn.calls(), QStringList());
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 QStringList(line("Cannot create remote aircraft: empty container title")));
        QCOMPARE(failed.size(), 0);
    }

    void tailNumbers_data()
    {
        columns<QString, QString>("callsign", "tail");
        QTest::newRow("11") << line("ABCDEFGHIJK") << line("ABCDEFGHIJK");
        QTest::newRow("12") << line("ABCDEFGHIJKL") << line("ABCDEFGHIJK");
        QTest::newRow("none") << QString() << QString();
        QTest::newRow("a whole character of two at the end")
            << QStringLiteral("ABCDEFGHI\U0001F6E9") << QStringLiteral("ABCDEFGHI\U0001F6E9");
        QTest::newRow("half of one") << QStringLiteral("ABCDEFGHIJ\U0001F6E9") << line("ABCDEFGHIJ");
    }

    void tailNumbers()
    {
        QFETCH(QString, callsign);
        QFETCH(QString, tail);
        OpenBench bench;
        bench.session.createRemoteAircraft(7, line("Airbus"), {}, callsign, somewhere());
        const QString start = QStringLiteral("AICreateNonATCAircraft \"Airbus\" \"%1\" {").arg(tail);
        QVERIFY2(bench.standIn.calls().join(u'|').startsWith(start), qPrintable(bench.standIn.calls().join(u'|')));
        QVERIFY(bench.log.contains(QStringLiteral("callsign=%1 container").arg(callsign)));
    }

    void airspeeds_data()
    {
        columns<double, QString>("speed", "words");
        QTest::newRow("cut") << 120.9 << line(" 1 120} 7");
        QTest::newRow("backwards") << -5.0 << line(" 1 0} 7");
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << line(" 1 0} 7");
        QTest::newRow("beyond all") << 1e30 << line(" 1 100000} 7");
    }

    void airspeeds()
    {
        QFETCH(double, speed);
        QFETCH(QString, words);
        OpenBench bench;
        RemotePosition position = somewhere();
        position.onGround = true;
        position.speedKnots = speed;
        bench.session.createRemoteAircraft(7, line("Airbus"), {}, line("CCA1"), position);
        QVERIFY2(bench.standIn.calls().join(u'|').endsWith(words), qPrintable(bench.standIn.calls().join(u'|')));
    }

    void assignmentIsTold()
    {
        OpenBench bench;
        const QSignalSpy created(&bench.session, &SimConnectSession::remoteAircraftCreated);
        bench.send(message::assignedObject(7, 258));
        QCOMPARE(created, (QList<QVariantList>{{7U, 258U}}));
        QCOMPARE(bench.log.texts(QtInfoMsg).last(), line("Remote aircraft assigned: req=7 object=258"));
    }

    void removed()
    {
        OpenBench bench;
        const QSignalSpy told(&bench.session, &SimConnectSession::remoteAircraftRemoved);
        bench.session.removeRemoteAircraft(258, 9);
        QCOMPARE(bench.standIn.calls(), QStringList(line("AIRemoveObject 258 9")));
        QCOMPARE(told, (QList<QVariantList>{{9U, 258U}}));
        bench.standIn.failNext(line("AIRemoveObject"));
        bench.session.removeRemoteAircraft(259, 10);
        QCOMPARE(told.size(), 1);
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to remove remote aircraft object 259 (HRESULT: 0x80004005)")));
        QCOMPARE(bench.error(), line("Failed to remove remote aircraft object 259"));
    }

    void waypointBytes_data()
    {
        columns<bool, double, QString>("onGround", "speed", "flagsAndSpeed");
        QTest::newRow("in the air") << false << 250.0
                                    << line("04000000"
                                            "0000000000406f40");
        QTest::newRow("on the ground") << true << 10.0
                                       << line("06000000"
                                               "0000000000002440");
        QTest::newRow("backwards") << true << -10.0
                                   << line("06000000"
                                           "0000000000000000");
    }

    void waypointBytes()
    {
        QFETCH(bool, onGround);
        QFETCH(double, speed);
        QFETCH(QString, flagsAndSpeed);
        ObjectsBench bench;
        RemotePosition position = somewhere();
        position.onGround = onGround;
        position.speedKnots = speed;
        bench.objects.move(258, position);
        QCOMPARE(bench.standIn.calls(), (QStringList{waypointCall, line("SetDataOnSimObject 30000 258 0 1 44 "
                                                                        "0000000000404440"
                                                                        "0000000000105d40"
                                                                        "0000000000408f40") +
                                                                       flagsAndSpeed + line("0000000000000000")}));
    }

    void waypointsAreDefinedOnceInTheProgramsLife()
    {
        OpenBench bench;
        bench.session.updateRemoteAircraftPosition(5, somewhere());
        bench.session.close();
        bench.open();
        bench.session.updateRemoteAircraftPosition(5, somewhere());
        QCOMPARE(bench.standIn.calls().size(), 1);
        QVERIFY(bench.standIn.calls().first().startsWith(line("SetDataOnSimObject 30000 5 0 1 44 ")));
        SessionBench other;
        other.open();
        other.session.updateRemoteAircraftPosition(6, somewhere());
        QCOMPARE(other.standIn.calls().size(), 1);
    }

    void refusedWaypointDefinitionIsTriedAgain()
    {
        ObjectsBench bench;
        bench.standIn.failNext(line("AddToDataDefinition"));
        bench.objects.move(258, somewhere());
        QCOMPARE(bench.standIn.takeCalls(), QStringList(waypointCall));
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to register AI waypoint data definition (HRESULT: 0x80004005)")));
        QCOMPARE(bench.failures, (QList<QVariantList>{{line("Failed to register AI waypoint data definition")}}));
        bench.objects.move(258, somewhere());
        QCOMPARE(bench.standIn.calls().size(), 2);
        QCOMPARE(bench.failures.size(), 1);
    }

    void refusedPosition()
    {
        OpenBench bench;
        bench.standIn.failNext(line("SetDataOnSimObject"));
        bench.session.updateRemoteAircraftPosition(258, somewhere());
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to update remote aircraft object 258 position (HRESULT: 0x80004005)")));
        QCOMPARE(bench.error(), line("Failed to update remote aircraft object 258 position"));
        QVERIFY(bench.session.isOpen());
    }

    void textsInTheLogStayOnOneLine()
    {
        OpenBench bench;
        bench.session.createRemoteAircraft(7, line("Airbus"), line("a\nb"), line("CCA1"), somewhere());
        QVERIFY(bench.log.texts().last().endsWith(line("livery=a b")));
    }
};

TARVO_TEST(SessionRemoteTest)
#include "SessionRemoteTest.moc"

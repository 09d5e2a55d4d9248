#include "SessionBench.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

namespace {
const message::Application mutedOf2024{
    .name = "Muted", .version = {11, 0, 62651, 3}, .simConnectVersion = {11, 1, 2, 3}};
}

/// What the simulator says of itself when the session opens.
class SessionProfileTest : public QObject
{
    Q_OBJECT

private slots:
    void versionsAreTold()
    {
        OpenBench bench;
        const QSignalSpy simulator(&bench.session, &SimConnectSession::msfsVersionDetected);
        const QSignalSpy library(&bench.session, &SimConnectSession::simConnectVersionDetected);
        bench.send(message::open(message::msfs2020()));
        QCOMPARE(simulator, (QList<QVariantList>{{line("1.38.2.0")}}));
        QCOMPARE(library, (QList<QVariantList>{{line("11.0.62651.3")}}));
        QCOMPARE(bench.log.texts().last(2), lines("MSFS Version: 1.38.2.0\nSimConnect Version: 11.0.62651.3"));
    }

    void nothingChangesWithoutAKeyword()
    {
        DefinedBench bench;
        const QSignalSpy profiles(&bench.session, &SimConnectSession::runtimeProfileDetected);
        bench.send(message::open({.name = "Muted", .version = {}, .simConnectVersion = {}}));
        QCOMPARE(bench.session.runtimeProfile(), MsfsRuntimeProfile::Msfs2020);
        QCOMPARE(profiles.size(), 0);
        QCOMPARE(bench.standIn.calls(), QStringList());
    }

    void sameProfileChangesNothing()
    {
        DefinedBench bench(library2024);
        bench.send(message::open(message::msfs2024()));
        QCOMPARE(bench.standIn.calls(), QStringList());
    }

    void correctionBeforeTheDefinitions()
    {
        OpenBench bench;
        const QSignalSpy profiles(&bench.session, &SimConnectSession::runtimeProfileDetected);
        bench.send(message::open(mutedOf2024));
        QCOMPARE(bench.session.runtimeProfile(), MsfsRuntimeProfile::Msfs2024);
        QCOMPARE(profiles.size(), 1);
        QCOMPARE(bench.standIn.calls(), QStringList());
        QVERIFY(bench.log.contains(
            line("MSFS runtime profile MSFS 2020 -> MSFS 2024 from SimConnect open app=Muted version=11.0.62651.3")));
    }

    void correctionDefinesEverythingAnew()
    {
        SessionBench bench;
        bench.session.setTrafficEnabled(true);
        bench.openAndRegister();
        for (const UpdateGroup group : {UpdateGroup::Environment, UpdateGroup::Position})
            bench.session.subscribeGroup(group);
        bench.standIn.takeCalls();
        bench.send(message::open(message::msfs2024()));
        QCOMPARE(bench.standIn.calls(), lines("RequestDataOnSimObject 0 0 0 0 0 0 0 0\n"
                                              "RequestDataOnSimObject 3 3 0 0 0 0 0 0\n"
                                              "ClearDataDefinition 0\n"
                                              "ClearDataDefinition 1\n"
                                              "ClearDataDefinition 2\n"
                                              "ClearDataDefinition 3\n"
                                              "ClearDataDefinition 40000\n"
                                              "ClearDataDefinition 50000") +
                                            groupCalls() + titleCalls() + trafficCalls() +
                                            lines("RequestDataOnSimObject 0 0 0 3 1 0 0 0\n"
                                                  "RequestDataOnSimObject 1 1 0 3 1 0 0 0\n"
                                                  "RequestDataOnSimObject 2 2 0 3 1 0 0 0\n"
                                                  "RequestDataOnSimObject 3 3 0 3 1 0 0 0\n"
                                                  "EnumerateInputEvents 60000"));
        QCOMPARE(bench.errors.size(), 0);
    }

    void correctionWithoutTrafficLeavesItOut()
    {
        DefinedBench bench;
        bench.send(message::open(message::msfs2024()));
        QCOMPARE(bench.standIn.calls().first(6).last(2),
                 lines("ClearDataDefinition 50000\n") + QStringList(groupCalls().first()));
        QVERIFY(!bench.standIn.calls().join(u'\n').contains(line("40000")));
    }

    void correctionGoesTheOtherWayToo()
    {
        DefinedBench bench(library2024);
        bench.send(message::open(message::msfs2020()));
        QCOMPARE(bench.session.runtimeProfile(), MsfsRuntimeProfile::Msfs2020);
        QCOMPARE(bench.standIn.calls().last(), line("EnumerateInputEvents 60000"));
    }

    void failedUnsubscriptionIsOnlyLogged()
    {
        DefinedBench bench;
        bench.session.subscribeGroup(UpdateGroup::Position);
        bench.standIn.takeCalls();
        bench.standIn.failNext(line("RequestDataOnSimObject"));
        bench.send(message::open(message::msfs2024()));
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to unsubscribe data group 0 (HRESULT: 0x80004005)")));
        QCOMPARE(bench.errors.size(), 0);
        QVERIFY(bench.standIn.calls().contains(line("RequestDataOnSimObject 0 0 0 3 1 0 0 0")));
    }

    void failedRegistrationLeavesTheGroupsAlone()
    {
        DefinedBench bench;
        bench.standIn.failNext(line("AddToDataDefinition"));
        bench.send(message::open(message::msfs2024()));
        QCOMPARE(bench.error(), line("Failed to register SimVar: PLANE LATITUDE"));
        QCOMPARE(bench.log.texts(QtWarningMsg).count(line("Cannot subscribe data group: definitions not registered")),
                 4);
        QVERIFY(bench.session.isOpen());
    }

    void ownerMayCloseWhenItHears()
    {
        DefinedBench bench;
        connect(&bench.session, &SimConnectSession::runtimeProfileDetected, &bench.session, &SimConnectSession::close);
        bench.send(message::open(message::msfs2024()));
        QVERIFY(!bench.session.isOpen());
        QCOMPARE(bench.standIn.calls().last(), line("Close"));
    }

    void nameInTheLogStaysOnOneLine()
    {
        OpenBench bench;
        bench.send(message::open({.name = "2024\r\nERROR forged", .version = {}, .simConnectVersion = {}}));
        QVERIFY(bench.log.contains(line("app=2024  ERROR forged")));
    }
};

TARVO_TEST(SessionProfileTest)
#include "SessionProfileTest.moc"

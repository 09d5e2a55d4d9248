#include "SessionBench.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

/// The groups of the own aircraft's variables.
class SessionGroupsTest : public QObject
{
    Q_OBJECT

private slots:
    void registers()
    {
        OpenBench bench;
        bench.session.registerDefinitions();
        QCOMPARE(groupCalls().size(), 57);
        QCOMPARE(bench.standIn.calls(), groupCalls() + titleCalls());
        QCOMPARE(bench.log.texts(QtInfoMsg).last(2), lines("Registering SimConnect data definitions for MSFS 2020\n"
                                                           "Successfully registered 57 SimConnect data definitions"));
    }

    void registersWithTraffic()
    {
        SessionBench bench;
        bench.session.setTrafficEnabled(true);
        bench.open();
        bench.session.registerDefinitions();
        QCOMPARE(bench.standIn.calls(), groupCalls() + titleCalls() + trafficCalls());
    }

    void registersOnce()
    {
        DefinedBench bench;
        bench.session.registerDefinitions();
        QCOMPARE(bench.standIn.calls(), QStringList());
        QCOMPARE(bench.log.texts(QtDebugMsg), QStringList(line("Data definitions already registered")));
    }

    void registersAnewInTheNextSession()
    {
        DefinedBench bench;
        bench.session.close();
        bench.open();
        bench.session.registerDefinitions();
        QCOMPARE(bench.standIn.calls(), groupCalls() + titleCalls());
    }

    void firstRefusedVariableStopsIt()
    {
        OpenBench bench;
        bench.standIn.failNext(line("AddToDataDefinition"), 1, static_cast<qint32>(0x80070057), 20);
        bench.session.registerDefinitions();
        QCOMPARE(bench.standIn.takeCalls(),
                 groupCalls().first(21) + lines("ClearDataDefinition 0\nClearDataDefinition 1\n"
                                                "ClearDataDefinition 2\nClearDataDefinition 3"));
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to register SimVar: SPOILERS RIGHT POSITION (HRESULT: 0x80070057)")));
        QCOMPARE(bench.error(), line("Failed to register SimVar: SPOILERS RIGHT POSITION"));
        QCOMPARE(bench.errors.first().first().value<SimConnectError>(), SimConnectError::RuntimeError);
        QVERIFY(bench.session.isOpen());
        bench.session.subscribeGroup(UpdateGroup::Position);
        QCOMPARE(bench.log.texts(QtWarningMsg),
                 QStringList(line("Cannot subscribe data group: definitions not registered")));
        bench.session.registerDefinitions(); // nothing of the first try is left
        QCOMPARE(bench.standIn.calls(), groupCalls() + titleCalls());
    }

    void subscribes()
    {
        DefinedBench bench;
        bench.session.subscribeGroup(UpdateGroup::Avionics);
        QCOMPARE(bench.standIn.takeCalls(), QStringList(line("RequestDataOnSimObject 2 2 0 3 1 0 0 0")));
        QCOMPARE(bench.log.texts(QtInfoMsg).last(), line("Subscribed to data group: 2"));
        bench.session.subscribeGroup(UpdateGroup::Avionics);
        QCOMPARE(bench.standIn.calls(), QStringList());
        QCOMPARE(bench.log.texts(QtDebugMsg), QStringList(line("Data group already subscribed: 2")));
    }

    void refusedSubscriptionCanBeTriedAgain()
    {
        DefinedBench bench;
        bench.standIn.failNext(line("RequestDataOnSimObject"));
        bench.session.subscribeGroup(UpdateGroup::Aircraft);
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to subscribe to data group: 1 (HRESULT: 0x80004005)")));
        QCOMPARE(bench.error(), line("Failed to subscribe to data group: 1"));
        QVERIFY(bench.session.isOpen());
        bench.standIn.takeCalls();
        bench.session.subscribeGroup(UpdateGroup::Aircraft);
        QCOMPARE(bench.standIn.calls(), QStringList(line("RequestDataOnSimObject 1 1 0 3 1 0 0 0")));
    }

    void unsubscribes_data()
    {
        QTest::addColumn<bool>("fails");
        QTest::newRow("well") << false;
        QTest::newRow("refused: forgotten all the same") << true;
    }

    void unsubscribes()
    {
        QFETCH(bool, fails);
        DefinedBench bench;
        bench.session.unsubscribeGroup(UpdateGroup::Position);
        QCOMPARE(bench.standIn.calls(), QStringList());
        bench.session.subscribeGroup(UpdateGroup::Position);
        bench.standIn.takeCalls();
        if (fails)
            bench.standIn.failNext(line("RequestDataOnSimObject"));
        bench.session.unsubscribeGroup(UpdateGroup::Position);
        bench.session.unsubscribeGroup(UpdateGroup::Position);
        QCOMPARE(bench.standIn.calls(), QStringList(line("RequestDataOnSimObject 0 0 0 0 0 0 0 0")));
        const QStringList critical = bench.log.texts(QtCriticalMsg);
        QCOMPARE(critical,
                 fails ? QStringList(line("Failed to unsubscribe data group 0 (HRESULT: 0x80004005)")) : QStringList());
        QCOMPARE(bench.errors.size(), 0);
    }

    void requestsOnce()
    {
        DefinedBench bench;
        bench.session.requestGroupOnce(UpdateGroup::Environment);
        QCOMPARE(bench.standIn.calls(), QStringList());
        QCOMPARE(bench.log.texts(QtWarningMsg), QStringList(line("Cannot request data: group not subscribed 3")));
        bench.session.subscribeGroup(UpdateGroup::Environment);
        bench.standIn.takeCalls();
        bench.session.requestGroupOnce(UpdateGroup::Environment);
        QCOMPARE(bench.standIn.calls(), QStringList(line("RequestDataOnSimObject 3 3 0 1 1 0 0 0")));
        bench.standIn.failNext(line("RequestDataOnSimObject"));
        bench.session.requestGroupOnce(UpdateGroup::Environment);
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to request data for group: 3 (HRESULT: 0x80004005)")));
        QCOMPARE(bench.error(), line("Failed to request data for group: 3"));
    }

    void samplesHaveTheirGroupAndKeys()
    {
        DefinedBench bench;
        const QByteArray data = message::float64(0x2285) + message::float64(0x1802) + message::int32(1) +
                                message::int32(0) + message::int32(5) + message::int32(0x7000) + message::int32(4) +
                                message::int32(1);
        bench.send(message::objectData({.request = 2, .define = 2, .count = 8}, data));
        QCOMPARE(bench.samples.size(), 1);
        QCOMPARE(bench.samples.first().at(0).value<UpdateGroup>(), UpdateGroup::Avionics);
        const QVariantMap sample = bench.samples.first().at(1).toMap();
        QCOMPARE(sample.size(), 8);
        QCOMPARE(sample.value(line("com1Frequency")).toDouble(), 122.85);
        QCOMPARE(sample.value(line("com2Frequency")).toDouble(), 118.02);
        QCOMPARE(sample.value(line("com1TransmitEnabled")), QVariant(true));
        QCOMPARE(sample.value(line("com2TransmitEnabled")), QVariant(false));
        QCOMPARE(sample.value(line("com1ReceiveEnabled")), QVariant(true));
        QCOMPARE(sample.value(line("transponderCode")), QVariant(7000));
        QCOMPARE(sample.value(line("squawkingModeC")), QVariant(4));
        QCOMPARE(sample.value(line("avionicsPowerOn")), QVariant(true));
    }

    void cutSampleGoesOutWithTheRest()
    {
        DefinedBench bench;
        bench.send(message::objectData({.request = 0}, message::float64(40.5) + message::float64(116.25)));
        const QVariantMap expected{{line("latitude"), 40.5}, {line("longitude"), 116.25}};
        QCOMPARE(bench.samples.first().at(1).toMap(), expected);
    }

    void sampleOfNoGroupIsWarnedAbout()
    {
        DefinedBench bench;
        bench.send(message::objectData({.request = 4}, message::float64(40.5)));
        QCOMPARE(bench.samples.size(), 0);
        QCOMPARE(bench.log.texts(QtWarningMsg), QStringList(line("No active definitions found for group: 4")));
    }

    void floodOfSuchSamplesLeavesTheLogReadable()
    {
        DefinedBench bench;
        for (int i = 0; i < 10'000; ++i)
            bench.standIn.queue(message::objectData({.request = 0xFFFFFFFF}, {}));
        bench.pump();
        QCOMPARE(bench.log.texts(QtWarningMsg).size(), 28); // 20, and one at each doubling
        bench.clock.advance(60'000);
        bench.send(message::objectData({.request = 0xFFFFFFFF}, {}));
        QCOMPARE(bench.log.texts(QtWarningMsg).size(), 29);
    }

    void pauseEventIsASampleOfItsOwn()
    {
        OpenBench bench;
        for (const quint32 data : {1, 0, 4})
            bench.send(message::event(0, 20000, data));
        bench.send(message::event(0, 20001, 1));
        QCOMPARE(bench.samples.size(), 3);
        for (const bool paused : {true, false, true}) {
            const QVariantList arguments = bench.samples.takeFirst();
            QCOMPARE(arguments.at(0).value<UpdateGroup>(), UpdateGroup::Environment);
            QCOMPARE(arguments.at(1).toMap(), (QVariantMap{{line("simPaused"), paused}}));
        }
    }
};

TARVO_TEST(SessionGroupsTest)
#include "SessionGroupsTest.moc"

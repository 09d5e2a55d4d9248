#include "SessionBench.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

/// The queue of messages.
class SessionMessagesTest : public QObject
{
    Q_OBJECT

private slots:
    void queueIsEmptiedInOneTick()
    {
        DefinedBench bench;
        for (int i = 0; i < 500; ++i)
            bench.standIn.queue(message::objectData({.request = 0}, message::float64(i)));
        bench.pump();
        QCOMPARE(bench.samples.size(), 500);
        QCOMPARE(bench.standIn.queuedMessages(), 0);
        QCOMPARE(bench.samples.last().at(1).toMap(), (QVariantMap{{line("latitude"), 499.0}}));
    }

    void timerEmptiesIt()
    {
        OpenBench bench;
        bench.standIn.queue(message::event(0, 20000, 1));
        QVERIFY(bench.samples.wait());
    }

    void noMessageEndsTheTick()
    {
        DefinedBench bench;
        bench.standIn.queue({});
        bench.standIn.queue(message::event(0, 20000, 1));
        bench.pump();
        QCOMPARE(bench.samples.size(), 0);
        bench.pump();
        QCOMPARE(bench.samples.size(), 1);
    }

    void failureEndsTheTickWithoutALine()
    {
        OpenBench bench;
        const auto logged = bench.log.texts().size();
        bench.standIn.queue(message::event(0, 20000, 1));
        bench.standIn.failNext(line("GetNextDispatch"));
        bench.pump();
        QCOMPARE(bench.samples.size(), 0);
        QCOMPARE(bench.errors.size(), 0);
        QCOMPARE(bench.log.texts().size(), logged);
        bench.pump();
        QCOMPARE(bench.samples.size(), 1);
    }

    void quitCloses()
    {
        OpenBench bench;
        const QSignalSpy disconnected(&bench.session, &SimConnectSession::disconnected);
        bench.standIn.queue(message::quit());
        bench.standIn.queue(message::event(0, 20000, 1));
        bench.pump();
        QCOMPARE(bench.log.texts().last(2), lines("MSFS quit detected\nSimConnect disconnected"));
        QCOMPARE(disconnected.size(), 1);
        QCOMPARE(bench.standIn.calls(), QStringList(line("Close")));
        QCOMPARE(bench.samples.size(), 0);
    }

    void ownerMayOpenAgainWhenItQuits()
    {
        OpenBench bench;
        connect(&bench.session, &SimConnectSession::disconnected, &bench.session, &SimConnectSession::open);
        bench.send(message::quit());
        QVERIFY(bench.session.isOpen());
        QVERIFY(bench.timer("dispatch")->isActive());
    }

    void otherKindsAreSkippedSilently()
    {
        OpenBench bench;
        const auto logged = bench.log.texts().size();
        bench.send(message::any(0, {}));
        bench.send(message::any(35, "get input event"));
        bench.send(message::any(4711, QByteArray(1000, 'x')));
        QCOMPARE(bench.log.texts().size(), logged);
        QCOMPARE(bench.errors.size(), 0);
    }

    void brokenOneIsDroppedWithALine()
    {
        OpenBench bench;
        const QSignalSpy created(&bench.session, &SimConnectSession::remoteAircraftCreated);
        bench.standIn.queue(message::assignedObject(1, 2).chopped(1));
        bench.standIn.queue("shor");
        bench.standIn.queue(message::assignedObject(7, 8));
        bench.pump();
        QCOMPARE(bench.log.texts(QtWarningMsg), lines("Dropped a broken SimConnect message of 19 bytes, 1 so far\n"
                                                      "Dropped a broken SimConnect message of 4 bytes, 2 so far"));
        QCOMPARE(created, (QList<QVariantList>{{7U, 8U}}));
        QCOMPARE(bench.errors.size(), 0);
    }

    void floodOfBrokenOnesLeavesTheLogReadable()
    {
        OpenBench bench;
        for (int i = 0; i < 10'000; ++i)
            bench.standIn.queue("broken");
        bench.pump();
        QCOMPARE(bench.log.texts(QtWarningMsg).size(), 28); // 20, and one at each doubling
        bench.clock.advance(60'000);
        bench.send("broken");
        QCOMPARE(bench.log.texts(QtWarningMsg).size(), 29);
        QVERIFY(bench.session.isOpen());
    }
};

TARVO_TEST(SessionMessagesTest)
#include "SessionMessagesTest.moc"

#include "TransportStage.h"

#include "support/LogCapture.h"
#include "support/MainThreadWatch.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace tarvo;
using namespace tarvo::test;
using voice::NetworkHandler;

/// More than can be handled at once.
class TransportFloodTest : public QObject
{
    Q_OBJECT

private slots:
    void linesAreHandledForAWhileAndThenTheEventLoopTurns()
    {
        Session session;
        QSignalSpy turns(session.handler().findChild<QTimer *>(), &QTimer::timeout);
        session.client.then = [&](const QString &) { session.client.clock.advance(1); };
        QVERIFY(session.open());
        turns.clear();
        session.peer.injectBytes((messageLine("x") + "\n").repeated(40));
        TRY_COMPARE(session.order().size(), 41);
        QVERIFY(turns.size() >= 40 / NetworkHandler::longestTurnMs);
    }

    /// A dialog that is open in a slot does not keep what comes from its receivers.
    void anEventLoopInASlotGoesOnWithTheRest()
    {
        Session session;
        bool isInside = false;
        QStringList inside;
        session.client.then = [&](const QString &what) {
            if (isInside)
                inside.append(what);
            if (what != u"line 1"_qs)
                return;
            isInside = true;
            TRY_COMPARE(inside.size(), 2);
            isInside = false;
        };
        QVERIFY(session.open());
        session.peer.injectBytes(messageLine("1") + "\n" + messageLine("2") + "\n" + messageLine("3") + "\n");
        TRY_COMPARE(session.order().size(), 4);
        QCOMPARE(inside, (QStringList{u"line 2"_qs, u"line 3"_qs}));
        session.peer.inject(messageLine("4"));
        TRY_COMPARE(session.order().last(), u"line 4"_qs);
    }

    void noLineIsLost()
    {
        Session session;
        QVERIFY(session.open());
        QByteArray bytes;
        QStringList expected{u"connected"_qs};
        for (int i = 0; i < 20'000; ++i) {
            bytes += messageLine(QByteArray::number(i)) + '\n';
            expected.append(u"line %1"_qs.arg(i));
        }
        session.peer.injectBytes(bytes);
        session.peer.closeConnection();
        expected.append(u"disconnected"_qs);
        TRY_COMPARE(session.order().size(), expected.size());
        QCOMPARE(session.order(), expected);
    }

    void packetsThatNobodyHasTimeForAreDroppedAndCounted()
    {
        const QString told = u"NetworkHandler: voice packets dropped, more came than could be handled, total"_qs;
        const LogCapture log;
        Session session;
        QVERIFY(session.open());
        // The event loop stands still while they come. How many the system itself loses differs.
        Patience flooding;
        do {
            for (int i = 0; i < 1'000; ++i) {
                session.peer.sendDatagram(datagramOf("A"));
                QThread::yieldCurrentThread();
            }
        } while (flooding.goesOn() && log.startingWith(told).isEmpty());
        QCOMPARE(log.startingWith(told).size(), 1);
        session.peer.inject(messageLine("end"));
        TRY_VERIFY(session.order().contains(u"line end"_qs));
    }

    void theEventLoopTurnsInAFlood_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("count");
        QTest::newRow("messages") << messageLine("x") << 100'000;
        QTest::newRow("empty lines") << QByteArray() << 100'000;
        QTest::newRow("bad lines") << QByteArray("x") << 100'000;
        QTest::newRow("long lines") << messageLine(QByteArray(60'000, 'x')) << 1'000;
        QTest::newRow("lines that are too long") << QByteArray(100'000, 'x') << 500;
    }
    void theEventLoopTurnsInAFlood()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, count);
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        count /= 10; // an exception for each line takes a sanitizer minutes
#endif
        const LogCapture log;
        Session session;
        QVERIFY(session.open());
        session.peer.injectBytes((line + '\n').repeated(count));
        session.peer.closeConnection();
        MainThreadWatch watch;
        TRY_COMPARE(session.order().last(), u"disconnected"_qs);
        VERIFY_NO_STANDSTILL(watch);
        QVERIFY(log.lines().size() < 100); // no flood of lines in the log either
    }
};

TARVO_TEST(TransportFloodTest)
#include "TransportFloodTest.moc"

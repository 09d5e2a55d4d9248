#include "common/Worker.h"

#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QCoreApplication>
#include <QTest>
#include <QTimer>

#include <atomic>
#include <future>
#include <memory>
#include <utility>
#include <vector>

using tarvo::common::Worker;
using namespace std::chrono_literals;

namespace {

/// Something that a task waits for.
class Gate
{
public:
    void open() { m_promise.set_value(); }
    Worker::Task task() const
    {
        return [future = m_future] { future.wait(); };
    }

private:
    std::promise<void> m_promise;
    std::shared_future<void> m_future{m_promise.get_future()};
};

Worker::Between between(bool handlesEvents)
{
    return handlesEvents ? Worker::Between::HandleEvents : Worker::Between::Sleep;
}

} // namespace

class WorkerTest : public QObject
{
    Q_OBJECT

private slots:
    void tasksAreDoneInOrder_data() { bothKinds(); }
    void tasksAreDoneInOrder()
    {
        QFETCH(bool, handlesEvents);
        std::vector<int> done;
        std::vector<std::thread::id> threads;
        Worker worker("test", 100, between(handlesEvents));
        for (int i = 0; i < 100; ++i)
            QVERIFY(worker.post([&done, &threads, i] {
                done.push_back(i);
                threads.push_back(std::this_thread::get_id());
            }));
        QVERIFY(worker.waitUntilIdle(10s));
        QCOMPARE(done.size(), 100U);
        for (int i = 0; i < 100; ++i) {
            QCOMPARE(done.at(static_cast<size_t>(i)), i);
            QCOMPARE(threads.at(static_cast<size_t>(i)), threads.front());
        }
        QVERIFY(threads.front() != std::this_thread::get_id());
    }

    void theInboxIsBounded_data() { bothKinds(); }
    void theInboxIsBounded()
    {
        QFETCH(bool, handlesEvents);
        Gate gate;
        std::atomic<int> done = 0;
        Worker worker("test", 2, between(handlesEvents));
        const auto count = [&done] { ++done; };
        QVERIFY(worker.isIdle());
        QVERIFY(worker.post(gate.task()));
        QVERIFY(!worker.isIdle());
        while (!worker.post(count)) // until the thread has taken the first
            std::this_thread::yield();
        while (!worker.post(count))
            std::this_thread::yield();
        QVERIFY(!worker.post(count));
        worker.clear();
        QVERIFY(worker.post(count));
        QVERIFY(!worker.waitUntilIdle(1ms));
        gate.open();
        QVERIFY(worker.waitUntilIdle(10s));
        QCOMPARE(done.load(), 1);
        QVERIFY(worker.isIdle());
    }

    void whatWaitsIsDoneAtTheEnd_data() { bothKinds(); }
    void whatWaitsIsDoneAtTheEnd()
    {
        QFETCH(bool, handlesEvents);
        std::atomic<int> done = 0;
        Worker worker("test", 100, between(handlesEvents));
        for (int i = 0; i < 100; ++i)
            worker.post([&done] { ++done; });
        QVERIFY(worker.finish(10s));
        QCOMPARE(done.load(), 100);
        QVERIFY(!worker.post([&done] { ++done; }));
        QVERIFY(worker.finish(10s)); // once more
        QCOMPARE(done.load(), 100);
    }

    void aTaskThatHangsIsLeftBehind_data() { bothKinds(); }
    void aTaskThatHangsIsLeftBehind()
    {
        QFETCH(bool, handlesEvents);
        Gate gate;
        const auto owned = std::make_shared<int>(0);
        std::atomic<bool> begun = false;
        {
            Worker worker("stuck", 2, between(handlesEvents));
            worker.post([&begun, wait = gate.task(), owned] {
                begun = true;
                wait();
            });
            worker.post([owned] { ++*owned; });
            QTRY_VERIFY(begun);
            const tarvo::test::LogCapture log;
            QVERIFY(!worker.finish(20ms));
            QCOMPARE(log.texts(), QStringList{QStringLiteral("Thread \"stuck\" is left behind: its task has not ended "
                                                             "after 20 ms")});
        }
        QVERIFY(owned.use_count() > 1); // the task still has what it uses
        gate.open();
        QTRY_COMPARE(owned.use_count(), 1L);
        QCOMPARE(*owned, 0); // what waited behind it is forgotten
    }

    void aTaskCanBeLeftBehindOnPurpose_data() { bothKinds(); }
    void aTaskCanBeLeftBehindOnPurpose()
    {
        QFETCH(bool, handlesEvents);
        Gate gate;
        const auto owned = std::make_shared<int>(0);
        std::atomic<bool> begun = false;
        const tarvo::test::LogCapture log;
        {
            Worker worker("left", 2, between(handlesEvents));
            worker.post([&begun, wait = gate.task(), owned] {
                begun = true;
                wait();
            });
            worker.post([owned] { ++*owned; });
            QTRY_VERIFY(begun);
            worker.leave();
            QVERIFY(!worker.post([] {}));
        }
        QCOMPARE(log.texts(), QStringList());
        QVERIFY(owned.use_count() > 1);
        gate.open();
        QTRY_COMPARE(owned.use_count(), 1L);
        QCOMPARE(*owned, 0);
    }

    void aWorkerWithoutATaskCanBeLeft()
    {
        Worker worker("idle", 1);
        worker.leave();
        QVERIFY(!worker.post([] {}));
        QVERIFY(worker.finish());
    }

    void endsByItselfWhenItIsDone()
    {
        Gate gate;
        const auto owned = std::make_shared<int>(0);
        Worker worker("test", 2);
        worker.post(gate.task());
        worker.post([owned] { ++*owned; });
        worker.endSoon();
        QVERIFY(!worker.post([owned] { ++*owned; }));
        gate.open();
        QVERIFY(worker.finish(10s));
        QCOMPARE(*owned, 1);
    }

    void whatATaskOwnsGoesBeforeTheTaskIsDone()
    {
        std::atomic<int> idleAtTheEnd = -1;
        Worker worker("test", 1);
        std::shared_ptr<void> owned(nullptr, [&](void *) { idleAtTheEnd = worker.isIdle() ? 1 : 0; });
        worker.post([alone = std::move(owned)] {});
        QVERIFY(worker.finish(10s));
        QCOMPARE(idleAtTheEnd.load(), 0);
    }

    void withoutATaskThereIsNoThread()
    {
        Worker worker("test", 1);
        QVERIFY(worker.waitUntilIdle(0ms));
        QVERIFY(worker.finish(0ms));
    }

    void whatATaskMakesGetsItsEvents()
    {
        std::atomic<int> ticks = 0;
        std::shared_ptr<QTimer> timer;
        Worker worker("test", 1, Worker::Between::HandleEvents);
        worker.post([&timer, &ticks] {
            timer = std::make_shared<QTimer>();
            connect(timer.get(), &QTimer::timeout, timer.get(), [&ticks] { ++ticks; });
            timer->start(1);
        });
        QTRY_VERIFY(ticks > 3);
        worker.post([&timer] { timer.reset(); });
        QVERIFY(worker.finish(10s));
        QVERIFY(!timer);
    }

private:
    static void bothKinds()
    {
        QTest::addColumn<bool>("handlesEvents");
        QTest::newRow("sleeps") << false;
        QTest::newRow("handles events") << true;
    }
};

TARVO_TEST(WorkerTest)
#include "WorkerTest.moc"

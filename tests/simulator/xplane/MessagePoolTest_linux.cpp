#include "simulator/xplane/MessagePool.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <nng/nng.h>

#include <QDir>
#include <QFile>
#include <QSemaphore>
#include <QTest>

#include <array>

#include <sched.h>

using tarvo::simulator::xplane::limitMessagePool;

namespace {

/// Callbacks of nng's that hold their thread until this dies.
class HeldCallbacks
{
public:
    HeldCallbacks()
    {
        for (nng_aio *&aio : m_operations) {
            if (nng_aio_alloc(&aio, &HeldCallbacks::hold, this) == 0)
                nng_sleep_aio(0, aio);
        }
    }
    ~HeldCallbacks()
    {
        m_release.release(static_cast<int>(m_operations.size()));
        for (nng_aio *aio : m_operations)
            nng_aio_free(aio); // waits for its callback
    }
    Q_DISABLE_COPY_MOVE(HeldCallbacks)

    /// Whether `count` of them come to hold a thread at the same time.
    bool atOnce(int count) { return m_begun.tryAcquire(count, 200); }

private:
    static void hold(void *self)
    {
        auto &callbacks = *static_cast<HeldCallbacks *>(self);
        callbacks.m_begun.release();
        callbacks.m_release.acquire();
    }

    std::array<nng_aio *, 6> m_operations{};
    QSemaphore m_begun;
    QSemaphore m_release;
};

QList<int> poolThreads()
{
    QList<int> threads;
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString &thread : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(tasks.filePath(thread + QStringLiteral("/comm")));
        if (name.open(QIODevice::ReadOnly) && name.readAll() == "nng:task\n")
            threads.append(thread.toInt());
    }
    return threads;
}

} // namespace

class MessagePoolTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { limitMessagePool(); }

    void twoOfThePoolWork()
    {
        TRY_VERIFY(HeldCallbacks().atOnce(2));
        TRY_VERIFY(!HeldCallbacks().atOnce(3)); // the others are parked a moment after the start
    }

    void thePoolWaitsForAFreeProcessor()
    {
        TRY_VERIFY(poolThreads().size() >= 2);
        for (const int thread : poolThreads())
            QCOMPARE(sched_getscheduler(thread), SCHED_BATCH);
    }

    void theCallerStaysAsItWas() { QCOMPARE(sched_getscheduler(0), SCHED_OTHER); }
};

TARVO_TEST(MessagePoolTest)
#include "MessagePoolTest_linux.moc"

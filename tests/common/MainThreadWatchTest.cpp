#include "support/MainThreadWatch.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTest>

using tarvo::test::MainThreadWatch;
using tarvo::test::ThreadTime;

namespace {

/// Posts itself again from its own event, each time a millisecond of work.
class Hog : public QObject
{
public:
    Hog(ThreadTime &time, int rounds) : m_time(time), m_left(rounds) { post(); }

    bool isDone() const { return m_left == 0; }

private:
    void post()
    {
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_time.wallMs += 1;
                m_time.processorMs += 1;
                if (--m_left > 0)
                    post();
            },
            Qt::QueuedConnection);
    }

    ThreadTime &m_time;
    int m_left;
};

} // namespace

class MainThreadWatchTest : public QObject
{
    Q_OBJECT

private:
    ThreadTime m_time;

private slots:
    void init() { m_time = {}; }

    void turnsOfLittleWorkDoNotAddUp()
    {
        MainThreadWatch watch([this] { return m_time; });
        const auto *beat = watch.findChild<QTimer *>();
        int turns = 0;
        connect(beat, &QTimer::timeout, this, [this, &turns] { m_time.wallMs = m_time.processorMs = ++turns; });
        QTRY_VERIFY(turns > 60);
        QCOMPARE(watch.longest().wallMs, 1.0);
        QCOMPARE(watch.longest().processorMs, 1.0);
    }

    /// Between two turns, or going on.
    void theLongestStandstillCounts()
    {
        MainThreadWatch watch([this] { return m_time; });
        for (const ThreadTime work : {ThreadTime{10, 9}, ThreadTime{70, 8}, ThreadTime{20, 11}}) {
            m_time.wallMs += work.wallMs;
            m_time.processorMs += work.processorMs;
            QVERIFY(watch.longest().wallMs >= work.wallMs);
            QSignalSpy beats(watch.findChild<QTimer *>(), &QTimer::timeout);
            QVERIFY(beats.wait());
        }
        QCOMPARE(watch.longest().wallMs, 70.0);
        QCOMPARE(watch.longest().processorMs, 11.0);
        watch.restart();
        QCOMPARE(watch.longest().wallMs, 0.0);
    }

    void workThatPostsItselfAgainIsOneStandstill()
    {
        MainThreadWatch watch([this] { return m_time; });
        const Hog hog(m_time, 60);
        QTRY_VERIFY(hog.isDone());
        QCOMPARE(watch.longest().wallMs, 60.0);
    }

    void realTimePasses()
    {
        MainThreadWatch watch;
        volatile int work = 0;
        while (watch.longest().processorMs < 2)
            work = work + 1;
        QVERIFY(watch.longest().wallMs > 0);
    }
};

TARVO_TEST(MainThreadWatchTest)
#include "MainThreadWatchTest.moc"

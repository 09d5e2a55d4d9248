#pragma once

#include "support/ThreadTime.h"

#include <QObject>
#include <QTimer>

#include <functional>

namespace tarvo::test {

/// Measures how long the event loop of its thread stands still: the longest time between two turns, from its
/// construction on.
///
/// A timer beats once a millisecond. It is served in turn with sockets and the window system, so that work that posts
/// itself again and again, and keeps these waiting, counts as one standing still.
class MainThreadWatch : public QObject
{
    Q_OBJECT

public:
    /// The longest that anything from outside may hold the main thread, in ms of its processor time. A sanitizer makes
    /// the same work take several times as long.
    static const int mostMs;

    /// `now` is for the watch's own test.
    explicit MainThreadWatch(std::function<ThreadTime()> now = &ThreadTime::now);

    /// The longest standing still so far, the one that goes on included. `wallMs` counts also what other programs took
    /// of the processor; a test that must hold on a busy machine looks at `processorMs`.
    ThreadTime longest() const;
    /// Forgets what was.
    void restart();

private:
    void beat();
    ThreadTime sinceBeat() const;

    std::function<ThreadTime()> m_now;
    QTimer m_timer{this};
    ThreadTime m_lastBeat;
    ThreadTime m_longest;
};

} // namespace tarvo::test

/// Fails the test when the event loop has stood still for too long.
#define VERIFY_NO_STANDSTILL(watch)                                                                                    \
    QVERIFY2((watch).longest().processorMs < tarvo::test::MainThreadWatch::mostMs,                                     \
             qPrintable(QString::number((watch).longest().processorMs)))

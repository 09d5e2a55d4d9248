#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <functional>

namespace tarvo::test {

/// How long a test waits for what goes over sockets or takes another program's doing, in ms. Far more than that takes,
/// so that a test fails for its reason and not because the machine is busy.
inline constexpr int patienceMs = 30'000;

/// Waits in an event loop that turns with every event. QTRY_ looks only every 50 ms.
class Patience
{
public:
    Patience()
    {
        m_time.start();
        m_tick.start(1); // for what no event tells
    }

    /// Waits until something may have happened; false when it has lasted too long.
    bool goesOn()
    {
        if (m_time.hasExpired(patienceMs))
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return true;
    }

private:
    QElapsedTimer m_time;
    QTimer m_tick;
};

/// True as soon as `comesTrue` does; false when that lasts too long.
inline bool waitFor(const std::function<bool()> &comesTrue)
{
    Patience patience;
    while (!comesTrue()) {
        if (!patience.goesOn())
            return false;
    }
    return true;
}

} // namespace tarvo::test

/// QCOMPARE and QVERIFY of what takes its time.
#define TRY_COMPARE(actual, expected)                                                                                  \
    do {                                                                                                               \
        tarvo::test::Patience patience;                                                                                \
        while (!((actual) == (expected)) && patience.goesOn()) {                                                       \
        }                                                                                                              \
        QCOMPARE(actual, expected);                                                                                    \
    } while (false)
#define TRY_VERIFY(condition)                                                                                          \
    do {                                                                                                               \
        tarvo::test::Patience patience;                                                                                \
        while (!(condition) && patience.goesOn()) {                                                                    \
        }                                                                                                              \
        QVERIFY(condition);                                                                                            \
    } while (false)

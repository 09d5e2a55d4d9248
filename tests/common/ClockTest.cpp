#include "common/Clock.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

#include <QDateTime>
#include <QTest>

class ClockTest : public QObject
{
    Q_OBJECT

private slots:
    void wallTimeIsMillisecondsSinceTheEpoch()
    {
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        const qint64 now = tarvo::common::systemClock().wallMs();
        QVERIFY(now >= before && now <= QDateTime::currentMSecsSinceEpoch());
    }

    void steadyTimeNeverGoesBack()
    {
        const tarvo::common::Clock &clock = tarvo::common::systemClock();
        const qint64 first = clock.steadyMs();
        QVERIFY(clock.steadyMs() >= first);
    }

    void manualClockMovesBothTimes()
    {
        tarvo::test::ManualClock clock(5000);
        const qint64 steady = clock.steadyMs();
        clock.advance(3001);
        QCOMPARE(clock.wallMs(), 8001);
        QCOMPARE(clock.steadyMs() - steady, 3001);
    }
};

TARVO_TEST(ClockTest)
#include "ClockTest.moc"

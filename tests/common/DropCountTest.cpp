#include "common/DropCount.h"
#include "common/TrafficLog.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <utility>

using namespace tarvo::common;
using DropLine = DropCount::Line;

class DropCountTest : public QObject
{
    Q_OBJECT

private slots:
    void everyDropIsLoggedUntilThereAreTooMany()
    {
        DropCount drops;
        QCOMPARE(drops.add(0), DropLine::Warning);
        QList<quint64> logged;
        while (drops.total() < 200) {
            if (drops.add(0) == DropLine::Debug)
                logged.append(drops.total());
        }
        QList<quint64> expected;
        for (quint64 total = 2; total <= 20; ++total)
            expected.append(total);
        QCOMPARE(logged, expected + (QList<quint64>{40, 80, 160}));
        QCOMPARE(drops.add(0, 1000), DropLine::Debug);
        QCOMPARE(drops.total(), 1200);
    }

    void oneWarningAMinute()
    {
        DropCount drops;
        QList<qint64> warned;
        for (qint64 second = 0; second <= 125; ++second) {
            if (drops.add(7000 + second * 1000) == DropLine::Warning)
                warned.append(second);
        }
        QCOMPARE(warned, (QList<qint64>{0, 60, 120}));
        QCOMPARE(drops.reset(), 126);
        QCOMPARE(drops.total(), 0);
        QCOMPARE(drops.add(7000 + 179'999), DropLine::Debug); // the first again, and too soon for a warning
        QCOMPARE(drops.add(7000 + 180'000), DropLine::Warning);
    }

    void aTextFromOutsideStaysOnItsLine()
    {
        QCOMPARE(trafficText("removed", QStringLiteral("A\nB"), "us", QString(600, u'x') + u'y'),
                 QStringLiteral("Traffic: removed A B by us, ") + QString(512, u'x'));
        const tarvo::test::LogCapture log;
        qCDebug(trafficLog) << "one";
        QCOMPARE(log.ofCategory("tarvo.traffic"), QStringList{QStringLiteral("one")});
    }
};

TARVO_TEST(DropCountTest)
#include "DropCountTest.moc"

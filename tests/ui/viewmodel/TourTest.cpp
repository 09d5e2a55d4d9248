#include "ui/viewmodel/Tour.h"

#include "StateFile.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using tarvo::StateFile;
using tarvo::ui::Tour;

class TourTest : public QObject
{
    Q_OBJECT

private slots:
    void itBeginsInTheFirstRunOnly()
    {
        const QTemporaryDir folder;
        {
            StateFile state(folder.path());
            Tour tour(state);
            tour.begin();
            QCOMPARE(tour.step(), 1); // and the program ends here
        }
        StateFile state(folder.path());
        Tour tour(state);
        tour.begin();
        tour.next();
        tour.modePicked();
        QCOMPARE(tour.step(), 0);
    }

    void threeCards()
    {
        const QTemporaryDir folder;
        StateFile state(folder.path());
        Tour tour(state);
        const QSignalSpy changed(&tour, &Tour::stepChanged);
        QCOMPARE(tour.stepCount(), 3);
        tour.begin();
        tour.modePicked();
        QCOMPARE(tour.step(), 2);
        tour.modePicked(); // another one
        QCOMPARE(tour.step(), 2);
        tour.next();
        QCOMPARE(tour.step(), 3);
        tour.next();
        QCOMPARE(tour.step(), 0);
        QCOMPARE(changed.size(), 4);
    }

    void itCanBeEndedAtOnce()
    {
        const QTemporaryDir folder;
        StateFile state(folder.path());
        Tour tour(state);
        tour.begin();
        tour.end();
        tour.modePicked();
        QCOMPARE(tour.step(), 0);
    }
};

TARVO_TEST(TourTest)
#include "TourTest.moc"

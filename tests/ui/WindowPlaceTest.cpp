#include "ui/WindowPlace.h"

#include "StateFile.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <optional>

using tarvo::StateFile;
using tarvo::ui::clampedToScreens;
using tarvo::ui::placeFromText;
using tarvo::ui::placeText;
using tarvo::ui::reachableOnScreens;
using tarvo::ui::rememberPlace;
using tarvo::ui::restorePlace;

namespace {
const QRect leftScreen(0, 0, 1920, 1040);
const QRect rightScreen(1920, 100, 1280, 984);
} // namespace

class WindowPlaceTest : public QObject
{
    Q_OBJECT

private slots:
    void isToldAsText()
    {
        QCOMPARE(placeText(QRect(-7, 30, 1120, 760)), QStringLiteral("-7,30,1120,760"));
        QCOMPARE(placeFromText(QStringLiteral("-7,30,1120,760")), QRect(-7, 30, 1120, 760));
    }

    void otherTextIsNoPlace_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text : {"", "1,2,3", "1,2,3,4,5", "1,2,three,4", "1,2,0,4", "1,2,3,-4", "1000001,2,3,4",
                                 "1,-1000001,3,4", "1,2,2147483648,4", "1,2,3.5,4"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void otherTextIsNoPlace()
    {
        QFETCH(const QString, text);
        QCOMPARE(placeFromText(text), std::nullopt);
    }

    void staysOnTheScreensThatExist_data()
    {
        QTest::addColumn<QRect>("place");
        QTest::addColumn<QRect>("seen");
        QTest::newRow("inside") << QRect(100, 50, 1100, 700) << QRect(100, 50, 1100, 700);
        QTest::newRow("just inside") << QRect(820, 340, 1100, 700) << QRect(820, 340, 1100, 700);
        QTest::newRow("on the other one") << QRect(2000, 150, 1100, 700) << QRect(2000, 150, 1100, 700);
        QTest::newRow("mostly on the other one") << QRect(1800, 150, 1100, 700) << QRect(1920, 150, 1100, 700);
        QTest::newRow("over the upper edge") << QRect(100, -30, 1100, 700) << QRect(100, 0, 1100, 700);
        QTest::newRow("over the lower edge") << QRect(100, 900, 1100, 700) << QRect(100, 340, 1100, 700);
        QTest::newRow("under a screen that went") << QRect(100, 2500, 1100, 700) << QRect(100, 340, 1100, 700);
        QTest::newRow("left of all") << QRect(-3000, 50, 1100, 700) << QRect(0, 50, 1100, 700);
        QTest::newRow("larger than the screen") << QRect(-50, -50, 4000, 3000) << leftScreen;
        QTest::newRow("larger than the other one") << QRect(1950, 200, 1500, 1200) << rightScreen;
    }
    void staysOnTheScreensThatExist()
    {
        QFETCH(const QRect, place);
        QFETCH(const QRect, seen);
        QCOMPARE(clampedToScreens(place, {leftScreen, rightScreen}), seen);
    }

    void isLeftAloneWhereItCanBeGrasped_data()
    {
        QTest::addColumn<QRect>("place");
        QTest::addColumn<bool>("isLeft");
        QTest::newRow("inside") << QRect(100, 50, 1100, 700) << true;
        QTest::newRow("over the lower edge") << QRect(100, 900, 1100, 700) << true;
        QTest::newRow("mostly beside it") << QRect(-1000, 50, 1100, 700) << true;
        QTest::newRow("almost beside it") << QRect(-1001, 50, 1100, 700) << false;
        QTest::newRow("its upper edge outside") << QRect(100, -21, 1100, 700) << false;
        QTest::newRow("its screen is gone") << QRect(-1920, 50, 1100, 700) << false;
    }
    void isLeftAloneWhereItCanBeGrasped()
    {
        QFETCH(const QRect, place);
        QFETCH(const bool, isLeft);
        const QList<QRect> screens{leftScreen, rightScreen};
        QCOMPARE(reachableOnScreens(place, screens), isLeft ? place : clampedToScreens(place, screens));
    }

    void theFrameIsOnTheScreenToo()
    {
        const QTemporaryDir folder;
        StateFile state(folder.path());
        QWidget window;
        const QRect screen = window.screen()->availableGeometry();
        window.resize(500, 400);
        window.move(40, screen.bottom() - 399);
        rememberPlace(window, state);
        QWidget next;
        restorePlace(next, state);
        next.show();
        TRY_VERIFY(next.frameGeometry() != next.geometry());
        TRY_COMPARE(next.frameGeometry().bottom(), screen.bottom());
        QCOMPARE(next.size(), QSize(500, 400));
        next.move(40, screen.bottom() - 100); // the pilot's own doing
        TRY_COMPARE(next.pos(), QPoint(40, screen.bottom() - 100));
    }

    void withoutAScreenItStaysAsItIs() { QCOMPARE(clampedToScreens(QRect(9, 9, 9, 9), {}), QRect(9, 9, 9, 9)); }

    void aMaximisedWindowKeepsItsOtherPlace()
    {
        const QTemporaryDir folder;
        StateFile state(folder.path());
        QWidget window;
        window.setGeometry(40, 30, 500, 400);
        window.showMaximized();
        rememberPlace(window, state);
        QWidget next;
        restorePlace(next, state);
        QVERIFY(next.isMaximized());
        next.showNormal();
        QTRY_COMPARE(next.geometry(), QRect(40, 30, 500, 400));
    }

    void withoutAMemoryTheWindowIsLeftAlone()
    {
        const QTemporaryDir folder;
        QWidget window;
        window.setGeometry(40, 30, 500, 400);
        restorePlace(window, StateFile(folder.path()));
        QCOMPARE(window.geometry(), QRect(40, 30, 500, 400));
    }
};

TARVO_TEST(WindowPlaceTest)
#include "WindowPlaceTest.moc"

#include "ui/LoadingSpinner.h"

#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QImage>
#include <QPixmap>
#include <QTest>
#include <QVBoxLayout>

using tarvo::ui::LoadingSpinner;

class LoadingSpinnerTest : public QObject
{
    Q_OBJECT

private slots:
    void isHiddenUntilStartedAndAfterItsStop()
    {
        QWidget window;
        auto *spinner = new LoadingSpinner(&window);
        window.show();
        QVERIFY(!spinner->isVisible());
        spinner->start();
        QVERIFY(spinner->isVisible() && spinner->isSpinning());
        spinner->stop();
        QVERIFY(!spinner->isVisible() && !spinner->isSpinning());
    }

    void turns()
    {
        LoadingSpinner spinner;
        spinner.resize(spinner.sizeHint());
        spinner.start();
        const QImage first = spinner.grab().toImage();
        TRY_VERIFY(spinner.grab().toImage() != first);
    }
};

TARVO_TEST(LoadingSpinnerTest)
#include "LoadingSpinnerTest.moc"

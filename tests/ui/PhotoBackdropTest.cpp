#include "ui/PhotoBackdrop.h"

#include "support/TestRegistry.h"

#include <QPainter>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using tarvo::ui::PhotoBackdrop;

namespace {
constexpr QSize nativeSize{2400, 1200};
}

class PhotoBackdropTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QImage image(nativeSize, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.fillRect(nativeSize.width() / 2, 0, nativeSize.width() / 2, nativeSize.height(), Qt::white);
        painter.end();
        m_path = m_folder.filePath(u"photo.png"_qs);
        QVERIFY(image.save(m_path));
    }

    void coversTheWindowInDevicePixels_data()
    {
        QTest::addColumn<QSize>("window");
        QTest::addColumn<qreal>("scale");
        QTest::addColumn<QSize>("pixels");
        QTest::newRow("smallest window") << QSize(1000, 700) << 1.0 << QSize(1000, 700);
        QTest::newRow("200 %") << QSize(1000, 600) << 2.0 << QSize(2000, 1200);
        QTest::newRow("150 %") << QSize(1000, 700) << 1.5 << QSize(1500, 1050);
        QTest::newRow("larger than the photograph") << QSize(3000, 2000) << 1.0 << QSize(3000, 2000);
    }
    void coversTheWindowInDevicePixels()
    {
        QFETCH(QSize, window);
        QFETCH(qreal, scale);
        PhotoBackdrop backdrop(m_path);
        QVERIFY(backdrop.fit(window, scale));
        QTEST(backdrop.photograph().size(), "pixels");
        QCOMPARE(backdrop.photograph().devicePixelRatio(), scale);
    }

    void decodesNoMoreThanIsShownUntilMoreIsNeeded()
    {
        PhotoBackdrop backdrop(m_path);
        QVERIFY(backdrop.fit({1000, 500}, 1));
        QCOMPARE(backdrop.imageSize(), QSize(1000, 500));
        QVERIFY(backdrop.fit({1200, 500}, 1));
        QCOMPARE(backdrop.imageSize(), nativeSize);
    }

    void blursTheCopy()
    {
        PhotoBackdrop backdrop(m_path);
        QVERIFY(backdrop.fit({1000, 700}, 1));
        const QImage sharp = backdrop.photograph().toImage();
        const QImage blurred = backdrop.blurred().toImage();
        QVERIFY(blurred.width() < sharp.width());
        // Next to the edge the photograph is black, its blurred copy already grey.
        const QColor before = sharp.pixelColor(sharp.width() * 49 / 100, sharp.height() / 2);
        const QColor after = blurred.pixelColor(blurred.width() * 49 / 100, blurred.height() / 2);
        QVERIFY2(before.lightness() < 10 && after.lightness() > 40, qPrintable(after.name()));
        QVERIFY(blurred.pixelColor(2, blurred.height() / 2).lightness() < 10);
    }

    void aMissingPhotographIsToldOnce()
    {
        const QString path = m_folder.filePath(u"none.jpg"_qs);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"图片加载失败，使用纯色占位:"_qs));
        PhotoBackdrop backdrop(path);
        QVERIFY(!backdrop.fit({1000, 700}, 1));
        QTest::failOnWarning(QRegularExpression(u"图片加载失败"_qs));
        QVERIFY(!backdrop.fit({1200, 700}, 1));
        QVERIFY(backdrop.photograph().isNull());
    }

    void anEmptyWindowNeedsNone()
    {
        PhotoBackdrop backdrop(m_path);
        QVERIFY(!backdrop.fit({0, 700}, 1));
    }

private:
    QTemporaryDir m_folder;
    QString m_path;
};

TARVO_TEST(PhotoBackdropTest)
#include "PhotoBackdropTest.moc"

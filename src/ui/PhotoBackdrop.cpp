#include "ui/PhotoBackdrop.h"

#include <QDebug>
#include <QGraphicsBlurEffect>
#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QImageReader>
#include <QPainter>

namespace tarvo::ui {

namespace {

constexpr int blurShrink = 8;   ///< the blur works on a picture this much smaller
constexpr qreal blurRadius = 5; ///< pixels of the small picture

/// The part of `image` that covers `pixels`, scaled to it.
QImage covering(const QImage &image, const QSize &pixels)
{
    const QImage scaled = image.scaled(pixels, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    const QRect middle(QPoint((scaled.width() - pixels.width()) / 2, (scaled.height() - pixels.height()) / 2), pixels);
    return scaled.size() == pixels ? scaled : scaled.copy(middle);
}

QPixmap blurredCopy(const QPixmap &picture)
{
    QGraphicsScene scene;
    QGraphicsPixmapItem *item = scene.addPixmap(picture);
    auto *blur = new QGraphicsBlurEffect(&scene);
    blur->setBlurRadius(blurRadius);
    item->setGraphicsEffect(blur);
    QPixmap result = picture; // shows through where the blur thins out at the edges
    QPainter painter(&result);
    scene.render(&painter, QRectF(), item->boundingRect());
    return result;
}

} // namespace

bool PhotoBackdrop::fit(const QSize &size, qreal devicePixelRatio)
{
    const QSize pixels = (QSizeF(size) * devicePixelRatio).toSize();
    if (pixels.isEmpty() || m_failed)
        return !m_photograph.isNull();
    if (m_photograph.size() == pixels)
        return true;
    if (!decode(pixels))
        return false;
    const QImage cover = covering(m_source, pixels);
    m_photograph = QPixmap::fromImage(cover);
    m_photograph.setDevicePixelRatio(devicePixelRatio);
    m_blurred = blurredCopy(
        QPixmap::fromImage(cover.scaled(pixels / blurShrink, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
    return true;
}

bool PhotoBackdrop::decode(const QSize &pixels)
{
    const bool first = m_source.isNull();
    const bool largeEnough = m_source.width() >= pixels.width() && m_source.height() >= pixels.height();
    if (!first && (largeEnough || m_source.size() == m_nativeSize))
        return true;
    QImageReader reader(m_path);
    reader.setAutoTransform(true);
    m_nativeSize = reader.size();
    // First only what is needed, for a quick start; once that has been outgrown, the whole picture.
    const QSize wanted = m_nativeSize.scaled(pixels, Qt::KeepAspectRatioByExpanding);
    if (first && m_nativeSize.isValid() && wanted.width() < m_nativeSize.width())
        reader.setScaledSize(wanted);
    const QImage image = reader.read();
    m_failed = image.isNull();
    if (m_failed) {
        qWarning() << "图片加载失败，使用纯色占位:" << m_path << reader.errorString();
        return false;
    }
    m_source = image;
    if (first) {
        qInfo() << "登录图片加载成功，路径:" << m_path;
        qInfo() << "图片尺寸:" << m_source.size();
    }
    return true;
}

} // namespace tarvo::ui

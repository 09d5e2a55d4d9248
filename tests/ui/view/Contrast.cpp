#include "Contrast.h"

#include <QHash>
#include <QJSValue>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <cmath>

namespace tarvo::test {

namespace {

constexpr double enough = 4.5;
constexpr int largePixels = 24;

/// Of one channel, as light.
double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

/// Without the finest shades: a slope is one ground.
constexpr QRgb coarse = 0xfff8f8f8;

/// What there is most of beside the ink.
QColor ground(const QImage &picture, const QRect &area, const QColor &ink)
{
    QHash<QRgb, int> counts;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            ++counts[picture.pixel(x, y) & coarse];
    counts.remove(ink.rgb() & coarse);
    const auto most = std::max_element(counts.cbegin(), counts.cend());
    return most == counts.cend() ? QColor() : QColor(most.key());
}

bool isFaded(const QQuickItem *item)
{
    return item && (!item->isEnabled() || item->opacity() < 0.99 || isFaded(item->parentItem()));
}

/// What of it can be seen, in the window.
QRectF inSight(const QQuickItem *item)
{
    QRectF seen = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    for (const QQuickItem *above = item->parentItem(); above; above = above->parentItem())
        if (above->clip())
            seen &= above->mapRectToScene(QRectF(0, 0, above->width(), above->height()));
    return seen;
}

bool isSmallAndSeen(const QQuickItem *text)
{
    const int pixels = text->property("fontInfo").value<QJSValue>().property(QStringLiteral("pixelSize")).toInt();
    const bool isOutlined = text->property("style").toInt() != 0; // that is its ground
    return pixels < largePixels && !isOutlined && !isFaded(text) && inSight(text).height() >= text->height() - 1;
}

} // namespace

double contrast(const QColor &one, const QColor &other)
{
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

QStringList paleTexts(const QList<QQuickItem *> &texts, const QImage &picture, const QColor &muted)
{
    QStringList pale;
    for (const QQuickItem *text : texts) {
        const auto ink = text->property("color").value<QColor>();
        const qreal scale = static_cast<qreal>(picture.width()) / text->window()->width();
        const QRectF seen = inSight(text);
        const QRect area = QRectF(seen.topLeft() * scale, seen.size() * scale).toAlignedRect() & picture.rect();
        if (ink == muted || area.isEmpty() || !isSmallAndSeen(text))
            continue;
        const double ratio = contrast(ink, ground(picture, area, ink));
        if (ratio < enough)
            pale
                << QStringLiteral("%1 (%2, %3)").arg(text->property("text").toString().left(60), ink.name()).arg(ratio);
    }
    return pale;
}

} // namespace tarvo::test

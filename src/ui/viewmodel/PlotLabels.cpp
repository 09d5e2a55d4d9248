#include "ui/viewmodel/PlotLabels.h"

#include <algorithm>
#include <limits>

namespace tarvo::ui {

namespace {

PlotSymbol symbolFrom(const QString &callsign, const qreal *figures, qreal textHeight)
{
    return {callsign,      {figures[0], figures[1]}, figures[2], {figures[3], textHeight}, {figures[4], textHeight},
            figures[5] > 0};
}

} // namespace

QList<qreal> PlotLabels::place(const QStringList &callsigns, const QList<qreal> &figures, qreal textHeight,
                               const QRectF &glass, const QVariantList &taken)
{
    const qsizetype told = std::min(callsigns.size(), figures.size() / figuresEach);
    QList<PlotSymbol> symbols;
    symbols.reserve(told);
    for (qsizetype i = 0; i < told; ++i)
        symbols << symbolFrom(callsigns.at(i), figures.constData() + figuresEach * i, textHeight);
    QList<QRectF> areas;
    for (const QVariant &area : taken)
        areas << area.toRectF();
    QList<qreal> places;
    places.reserve(placesEach * callsigns.size());
    constexpr qreal none = std::numeric_limits<qreal>::quiet_NaN();
    const QList<PlotLabel> labels = m_placer.place(symbols, glass, areas);
    for (const PlotLabel &label : labels) {
        const QPointF name = label.name.value_or(QPointF(none, none));
        places << name.x() << name.y() << (label.altitude ? 1 : 0);
    }
    return places;
}

} // namespace tarvo::ui

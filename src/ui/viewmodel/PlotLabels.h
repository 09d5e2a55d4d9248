#pragma once

#include "ui/viewmodel/LabelPlacer.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>

namespace tarvo::ui {

/// What the plot in QML asks for its labels' places. Plain lists of numbers: it asks whenever the own aircraft turns.
class PlotLabels : public QObject
{
    Q_OBJECT

public:
    static constexpr int figuresEach = 6;
    static constexpr int placesEach = 3;

    using QObject::QObject;

    /// For each contact six figures: the symbol's x and y, the aircraft's distance, the widths of its callsign's and
    /// its altitude's texts (0 for none), and whether the altitude stands below (1) or above (0). `taken` holds
    /// rectangles. Answers with three for each: x and y of the callsign's upper left corner from the symbol's middle,
    /// NaN without room for it, and 1 when there is room for the altitude. Too few figures leave the contacts at the
    /// end unlabelled.
    Q_INVOKABLE QList<qreal> place(const QStringList &callsigns, const QList<qreal> &figures, qreal textHeight,
                                   const QRectF &glass, const QVariantList &taken);

private:
    LabelPlacer m_placer;
};

} // namespace tarvo::ui

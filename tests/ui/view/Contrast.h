#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

class QQuickItem;

namespace tarvo::test {

/// How much darker the one is than the other, 1 to 21, as WCAG 2 tells it: (L1 + 0.05) / (L2 + 0.05).
double contrast(const QColor &one, const QColor &other);

/// Those of the texts whose ink stands off less than 4.5 from what is behind them in `picture`, the window's, with the
/// ratio. Texts of another colour than `muted` alone: that is for what can be missed. What is large, disabled, faded or
/// scrolled away isn't looked at.
QStringList paleTexts(const QList<QQuickItem *> &texts, const QImage &picture, const QColor &muted);

} // namespace tarvo::test

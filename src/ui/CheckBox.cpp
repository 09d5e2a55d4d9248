#include "ui/CheckBox.h"

#include <QPainter>
#include <QPainterPath>

namespace tarvo::ui {

namespace {
constexpr int boxSide = 18;
constexpr int boxGap = 9; ///< between box and text
constexpr int boxRadius = 5;
constexpr qreal disabledOpacity = 0.45;
} // namespace

CheckBox::CheckBox(const QString &text, QWidget *parent) : QCheckBox(text, parent)
{
    setCursor(Qt::PointingHandCursor);
}

QSize CheckBox::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {boxSide + boxGap + metrics.horizontalAdvance(text()) + 2, std::max(boxSide, metrics.height()) + 6};
}

void CheckBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(isEnabled() ? 1.0 : disabledOpacity);
    paintBox(painter, QRectF(1, (height() - boxSide) / 2.0, boxSide, boxSide));
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect().adjusted(boxSide + boxGap, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
}

void CheckBox::paintBox(QPainter &painter, const QRectF &box) const
{
    const bool lit = hasFocus() || underMouse();
    painter.setPen(QPen(isChecked() || lit ? m_accentColor : m_frameColor, hasFocus() ? 2 : 1));
    painter.setBrush(isChecked() ? m_accentColor : m_boxColor);
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), boxRadius, boxRadius);
    if (!isChecked())
        return;
    QPainterPath tick(box.topLeft() + QPointF(0.26, 0.52) * boxSide);
    tick.lineTo(box.topLeft() + QPointF(0.43, 0.69) * boxSide);
    tick.lineTo(box.topLeft() + QPointF(0.75, 0.33) * boxSide);
    painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(tick);
}

} // namespace tarvo::ui

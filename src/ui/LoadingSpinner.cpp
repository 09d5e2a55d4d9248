#include "ui/LoadingSpinner.h"

#include <QPainter>

#include <chrono>

namespace tarvo::ui {

namespace {
using namespace std::chrono_literals;

constexpr int strokeWidth = 3;
constexpr int degreesPerTick = 8;

/// One arc of the ring. Angles in degrees, clockwise from the head of the ring backwards.
struct Arc
{
    int start;
    int span;
    qreal opacity;
};
constexpr Arc arcs[] = {{0, 360, 0.25}, {-150, 90, 0.5}, {-60, 60, 1.0}};
} // namespace

LoadingSpinner::LoadingSpinner(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_timer.setInterval(16ms);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_angle = (m_angle + degreesPerTick) % 360;
        update();
    });
    hide();
}

void LoadingSpinner::start()
{
    m_timer.start();
    show();
}

void LoadingSpinner::stop()
{
    m_timer.stop();
    hide();
}

void LoadingSpinner::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, strokeWidth, Qt::SolidLine, Qt::RoundCap));
    const qreal side = std::min(width(), height()) - strokeWidth;
    const QRectF ring((width() - side) / 2, (height() - side) / 2, side, side);
    for (const Arc &arc : arcs) {
        painter.setOpacity(arc.opacity);
        painter.drawArc(ring, -(m_angle + arc.start + arc.span) * 16, arc.span * 16);
    }
}

} // namespace tarvo::ui

#include "ui/WindowPlace.h"

#include "StateFile.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QStringList>
#include <QWidget>

#include <algorithm>
#include <array>

namespace tarvo::ui {

namespace {

/// Beyond it there is no screen, and sums of such numbers stay far from what an int holds.
constexpr int farthest = 1'000'000;
/// What must be on a screen of the upper edge, px.
constexpr QSize grip(100, 20);

qint64 commonArea(const QRect &a, const QRect &b)
{
    const QRect common = a.intersected(b);
    return qint64{common.width()} * common.height();
}

QList<QRect> usableScreens()
{
    QList<QRect> areas;
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (const QScreen *screen : screens)
        areas += screen->availableGeometry();
    return areas;
}

/// Brings a window's frame onto the screen, once, as soon as there is one: before the window is shown nobody knows how
/// wide it will be.
class FrameKeeper : public QObject
{
public:
    explicit FrameKeeper(QWidget &window) : QObject(&window) { window.installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *window = qobject_cast<QWidget *>(watched);
        const QEvent::Type type = event->type();
        // X11 tells of a frame by moving the window into it.
        if (type == QEvent::Move || type == QEvent::Resize || type == QEvent::WindowActivate || type == QEvent::Paint)
            keep(*window);
        return false;
    }

private:
    void keep(QWidget &window)
    {
        const QSize frame = window.frameGeometry().size() - window.geometry().size();
        if (!window.isVisible() || frame.isNull())
            return;
        window.removeEventFilter(this);
        deleteLater();
        if (window.windowState() != Qt::WindowNoState && window.windowState() != Qt::WindowActive)
            return; // while a window stops being maximised, its size is still the screen's
        const QRect seen = clampedToScreens(window.frameGeometry(), usableScreens());
        window.resize(seen.size() - frame);
        window.move(seen.topLeft());
    }
};

} // namespace

QString placeText(const QRect &place)
{
    return QStringLiteral("%1,%2,%3,%4").arg(place.x()).arg(place.y()).arg(place.width()).arg(place.height());
}

std::optional<QRect> placeFromText(const QString &text)
{
    const QStringList fields = text.split(u',');
    std::array<int, 4> numbers{};
    if (fields.size() != static_cast<qsizetype>(numbers.size()))
        return std::nullopt;
    for (size_t i = 0; i < numbers.size(); ++i) {
        bool isNumber = false;
        numbers.at(i) = fields.at(static_cast<qsizetype>(i)).toInt(&isNumber);
        if (!isNumber || numbers.at(i) < -farthest || numbers.at(i) > farthest)
            return std::nullopt;
    }
    const auto [x, y, width, height] = numbers;
    if (width <= 0 || height <= 0)
        return std::nullopt;
    return QRect(x, y, width, height);
}

QRect clampedToScreens(const QRect &place, const QList<QRect> &screens)
{
    if (screens.isEmpty())
        return place;
    const QRect screen = *std::max_element(screens.begin(), screens.end(), [&place](const QRect &a, const QRect &b) {
        return commonArea(a, place) < commonArea(b, place); // the first of those that cover nothing
    });
    QRect result(place.topLeft(), place.size().boundedTo(screen.size()));
    result.moveLeft(std::clamp(result.left(), screen.left(), screen.right() - result.width() + 1));
    result.moveTop(std::clamp(result.top(), screen.top(), screen.bottom() - result.height() + 1));
    return result;
}

QRect reachableOnScreens(const QRect &place, const QList<QRect> &screens)
{
    const QRect edge(place.topLeft(), QSize(place.width(), grip.height()));
    const bool isSeen = std::any_of(screens.begin(), screens.end(), [&edge](const QRect &screen) {
        const QRect common = screen.intersected(edge);
        return common.width() >= grip.width() && common.height() >= grip.height();
    });
    return isSeen ? place : clampedToScreens(place, screens);
}

QRect reachablePlace(const QRect &place)
{
    return reachableOnScreens(place, usableScreens());
}

QRect rememberedPlace(const StateFile &state, const StringKey &key, const QRect &otherwise)
{
    const std::optional<QRect> place = placeFromText(state.get(key));
    return clampedToScreens(place ? QRect(place->topLeft(), otherwise.size()) : otherwise, usableScreens());
}

QRect normalPlace(const QWidget &window)
{
    const QPoint frame = window.frameGeometry().topLeft() - window.geometry().topLeft();
    const QRect normal = window.normalGeometry();
    return {normal.topLeft() + frame, normal.size()};
}

void rememberPlace(const QWidget &window, StateFile &state)
{
    state.set(state::windowPlace, placeText(normalPlace(window)));
    state.set(state::windowMaximized, window.isMaximized());
}

void restorePlace(QWidget &window, const StateFile &state)
{
    const std::optional<QRect> place = placeFromText(state.get(state::windowPlace));
    if (!place)
        return;
    const QRect seen = clampedToScreens(*place, usableScreens());
    window.resize(seen.size());
    window.move(seen.topLeft());
    new FrameKeeper(window); // its child
    if (state.get(state::windowMaximized))
        window.setWindowState(window.windowState() | Qt::WindowMaximized);
}

} // namespace tarvo::ui

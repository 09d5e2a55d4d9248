#pragma once

#include <QList>
#include <QRect>
#include <QString>

#include <optional>

class QWidget;

namespace tarvo {
class StateFile;
struct StringKey;
} // namespace tarvo

namespace tarvo::ui {

/// "x,y,width,height" and back: the corner of the frame and the size within it. Nothing for any other text, or without
/// a size.
QString placeText(const QRect &place);
std::optional<QRect> placeFromText(const QString &text);

/// `place` as it can be seen and grasped: on the screen of which it covers most, or the first one when it is on none,
/// no larger than that screen and all of it inside. `screens` are the areas that windows may use; without any, `place`.
QRect clampedToScreens(const QRect &place, const QList<QRect> &screens);

/// `place` when it can be grasped by its upper edge as it is, else as clampedToScreens() has it: its screen may be
/// gone.
QRect reachableOnScreens(const QRect &place, const QList<QRect> &screens);
/// The same for the screens that are there now.
QRect reachablePlace(const QRect &place);

/// The corner that `key` remembers, with the size of `otherwise`, as clampedToScreens() has it; `otherwise` when
/// nothing is remembered.
QRect rememberedPlace(const StateFile &state, const StringKey &key, const QRect &otherwise);

/// Where `window` stands, or would stand if it were neither maximised nor minimised: the corner of its frame and the
/// size within it.
QRect normalPlace(const QWidget &window);

/// Notes normalPlace(), and whether `window` is maximised.
void rememberPlace(const QWidget &window, StateFile &state);
/// Puts `window`, which is not shown yet, where it was remembered. Leaves it alone when nothing was. Once it is shown
/// and the system has given it a frame, that is on the screen as well.
void restorePlace(QWidget &window, const StateFile &state);

} // namespace tarvo::ui

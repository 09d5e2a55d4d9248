#pragma once

#include <QString>

namespace tarvo::ui {

/// What is left of a text on the wire, which has one byte for each character: all others become "?".
QString textOnTheWire(const QString &text);

/// What the pilot should know of a text before he sends it; empty: nothing. `silent`: no radio would transmit it.
QString composeNote(const QString &draft, bool silent);

} // namespace tarvo::ui

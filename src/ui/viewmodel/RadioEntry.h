#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

namespace tarvo::ui {

// What may be typed for a radio and for the transponder. The entry fields say it at each key, and what reaches the
// simulator has been read by the same rule.

/// kHz of an airband frequency typed in MHz, "121.8" or "121.800": 118.000 to 136.990 in steps of 5 kHz. Blanks around
/// it don't count. Nothing for any other text.
std::optional<quint32> comFrequencyKhz(const QString &megahertz);

/// The four digits as a decimal number, of one to four octal digits; nothing for any other text.
std::optional<int> transponderCode(const QString &digits);

/// What an entry field shows: "value" is the text to send; without one "hint" says what is wrong. With "unfinished"
/// nothing is wrong as yet. `example`: a frequency as it should look.
QVariantMap frequencyVerdict(const QString &typed, const QString &example);
QVariantMap transponderVerdict(const QString &typed);

} // namespace tarvo::ui

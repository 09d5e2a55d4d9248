#pragma once

#include <QLatin1StringView>
#include <QString>

#include <algorithm>

namespace tarvo::common {

/// What the server calls itself, and what a line to it is addressed to.
inline constexpr QLatin1StringView serverCallsign{"SERVER"};

/// A text from the network that is longer than this is no callsign, and is not kept. Real ones have 12 characters at
/// most.
inline constexpr qsizetype longestCallsign = 32;

/// A callsign as it is kept and compared: trimmed, upper-case.
inline QString normalisedCallsign(const QString &callsign)
{
    return callsign.trimmed().toUpper();
}

/// True for a callsign that one may connect under: 2 to 12 of A-Z, 0-9 and the underscore.
inline bool isCallsign(const QString &text)
{
    const auto belongs = [](QChar c) { return (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_'; };
    return text.size() >= 2 && text.size() <= 12 && std::all_of(text.begin(), text.end(), belongs);
}

} // namespace tarvo::common

#pragma once

#include <QLatin1StringView>
#include <QString>

namespace tarvo::manager {

/// What the server calls itself.
constexpr QLatin1StringView serverCallsign{"SERVER"};

/// True when a text or a question comes from the server itself; case does not matter.
inline bool isServer(const QString &callsign)
{
    return callsign.toUpper() == serverCallsign;
}

} // namespace tarvo::manager

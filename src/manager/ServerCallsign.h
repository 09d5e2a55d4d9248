#pragma once

#include "common/Callsign.h"

#include <QString>

namespace tarvo::manager {

using common::serverCallsign;

/// True when a text or a question comes from the server itself; case does not matter.
inline bool isServer(const QString &callsign)
{
    return callsign.toUpper() == serverCallsign;
}

} // namespace tarvo::manager

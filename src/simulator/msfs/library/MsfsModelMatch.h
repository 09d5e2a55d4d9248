#pragma once

#include "simulator/msfs/library/MsfsAircraftEntry.h"

#include <limits>

namespace tarvo::simulator::msfs {

/// Which of the installed models shows another pilot's aircraft best.
struct MsfsModelMatch
{
    static constexpr qint32 noScore = std::numeric_limits<qint32>::min();

    MsfsRuntimeProfile runtime = MsfsRuntimeProfile::Unknown; ///< the entry's; the asked one when nothing matched
    MsfsAircraftEntry entry;                                  ///< without a title when nothing matched
    QString normalizedType;                                   ///< trimmed, upper-cased, and made canonical
    QString normalizedAirline;                                ///< trimmed and upper-cased
    QString normalizedLivery;                                 ///< trimmed and upper-cased
    qint32 score = noScore;
    bool fallback = false; ///< the second, looser pass ran

    bool operator==(const MsfsModelMatch &) const = default;
};

/// One result of a search by free text.
struct MsfsScoredModel
{
    MsfsAircraftEntry entry;
    qint32 score = 0;

    bool operator==(const MsfsScoredModel &) const = default;
};

} // namespace tarvo::simulator::msfs

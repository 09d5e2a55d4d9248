#pragma once

#include <QtGlobal>

#include <algorithm>
#include <cmath>

namespace tarvo::manager {

/// `value` cut towards zero. A simulator may deliver anything: a NaN gives 0, and large values are cut at limits that
/// are far beyond any real one and leave room for the difference of two results.
inline qint32 truncated(double value)
{
    constexpr double limit = 1e9;
    return std::isnan(value) ? 0 : static_cast<qint32>(std::clamp(value, -limit, limit));
}

} // namespace tarvo::manager

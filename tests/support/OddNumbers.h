#pragma once

#include <limits>

namespace tarvo::test {

inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr double infinite = std::numeric_limits<double>::infinity();

} // namespace tarvo::test

#pragma once

namespace tarvo::common {

/// Feet in one metre, with the digits that the network's other clients use.
inline constexpr double feetPerMetre = 3.28084;

} // namespace tarvo::common

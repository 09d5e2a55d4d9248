#pragma once

namespace tarvo::common {

/// How loud a piece of sound is: a level, not a gain.
struct VolumeInfo
{
    float db = -96;  ///< -96 to 0, of full scale
    int percent = 0; ///< the same on a linear meter, 0 to 100

    bool operator==(const VolumeInfo &) const = default;
};

} // namespace tarvo::common

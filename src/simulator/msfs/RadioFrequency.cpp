#include "simulator/msfs/RadioFrequency.h"

#include <cmath>
#include <limits>

namespace tarvo::simulator::msfs {

namespace {

/// The whole part; what no quint32 holds becomes its nearest end, and 0 if it is no number.
template <class Real>
quint32 truncated(Real value)
{
    constexpr auto most = std::numeric_limits<quint32>::max();
    if (!(value > 0))
        return 0;
    return value < static_cast<Real>(most) ? static_cast<quint32>(value) : most;
}

} // namespace

quint32 hertzOf(float frequency)
{
    if (frequency > 1'000'000.0F)
        return truncated(frequency + 0.5F);
    if (frequency > 1'000.0F)
        return truncated(frequency * 1'000.0F + 0.5F);
    return truncated(std::round(frequency * 1'000'000.0F));
}

quint32 kilohertzOf(double frequency)
{
    return truncated(frequency > 1000 ? frequency + 0.5 : std::round(frequency * 1000));
}

} // namespace tarvo::simulator::msfs

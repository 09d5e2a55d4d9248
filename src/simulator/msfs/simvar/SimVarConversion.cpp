#include "simulator/msfs/simvar/SimVarConversion.h"

#include <algorithm>
#include <cmath>

namespace tarvo::simulator::msfs {

namespace {

constexpr double degreesPerRadian = 57.29577951308232;
constexpr double radiansPerDegree = 0.017453292519943295;
constexpr double fullPosition = 16383.0;
constexpr double reversingFromPercent = 0.01;
constexpr double allPercent = 100.0;
constexpr double mostThatIsWhole = 1e15;

/// The nearest whole number; 0 for what is none.
qint64 whole(double value)
{
    return std::abs(value) < mostThatIsWhole ? std::llround(value) : 0; // false for NaN as well
}

/// The nibble `place`, counted from the lowest.
int nibble(qint64 value, int place)
{
    return static_cast<int>(value >> (4 * place) & 0xF);
}

int fromNibbles(qint64 n3, qint64 n2, qint64 n1, qint64 n0)
{
    return static_cast<int>(n3 << 12 | n2 << 8 | n1 << 4 | n0);
}

double megahertzFromBcd(qint64 value)
{
    const int fraction = 100 * nibble(value, 1) + 10 * nibble(value, 0);
    return 100 + 10 * nibble(value, 3) + nibble(value, 2) + fraction / 1000.0;
}

/// There is no place for the third decimal: 118.025 becomes 0x1802.
int bcdFromMegahertz(double megahertz)
{
    const qint64 kilohertz = std::max<qint64>(0, whole(megahertz * 1000.0));
    return fromNibbles(kilohertz / 10000 % 10, kilohertz / 1000 % 10, kilohertz % 1000 / 100,
                       kilohertz % 1000 / 10 % 10);
}

int codeFromBco(qint64 value)
{
    return 1000 * nibble(value, 3) + 100 * nibble(value, 2) + 10 * nibble(value, 1) + nibble(value, 0);
}

int bcoFromCode(qint64 code)
{
    code = std::abs(code);
    return fromNibbles(code / 1000 % 10, code / 100 % 10, code / 10 % 10, code % 10);
}

double ratio(double value)
{
    return std::clamp(value, 0.0, 1.0);
}

} // namespace

QVariant fromWire(SimVarConversion conversion, const QVariant &value)
{
    switch (conversion) {
    case SimVarConversion::None:
        break;
    case SimVarConversion::FrequencyBcd16:
        return megahertzFromBcd(whole(value.toDouble()));
    case SimVarConversion::Bco16:
        return codeFromBco(value.toLongLong());
    case SimVarConversion::ReverserRatio:
        return value.toDouble() > reversingFromPercent;
    case SimVarConversion::RadiansToDegrees:
        return value.toDouble() * degreesPerRadian;
    case SimVarConversion::Position16K:
        return ratio(value.toDouble() / fullPosition);
    case SimVarConversion::PercentOrRatio: {
        const double number = value.toDouble();
        return ratio(number > 1.0 ? number / allPercent : number);
    }
    }
    return value;
}

QVariant toWire(SimVarConversion conversion, const QVariant &value)
{
    switch (conversion) {
    case SimVarConversion::None:
        break;
    case SimVarConversion::FrequencyBcd16:
        return bcdFromMegahertz(value.toDouble());
    case SimVarConversion::Bco16:
        return bcoFromCode(value.toLongLong());
    case SimVarConversion::ReverserRatio:
        return value.toBool() ? allPercent : 0.0;
    case SimVarConversion::RadiansToDegrees:
        return value.toDouble() * radiansPerDegree;
    case SimVarConversion::Position16K:
        return ratio(value.toDouble()) * fullPosition;
    case SimVarConversion::PercentOrRatio:
        return ratio(value.toDouble());
    }
    return value;
}

} // namespace tarvo::simulator::msfs

#include "fsd/pdu/AttitudeWord.h"

#include <cmath>

namespace tarvo::fsd::pdu {

namespace {

constexpr double stepsPerDegree = 1024.0 / 360.0; // 2.8444444444444446
constexpr quint32 tenBits = 0x3FF;

/// The low 32 bits of a whole number in two's complement; 0 for what no 64-bit integer can hold.
quint32 lowBits(double whole)
{
    constexpr double limit = 9.2e18;
    if (!(whole > -limit && whole < limit)) // also true for NaN
        return 0;
    return static_cast<quint32>(static_cast<qint64>(whole));
}

/// Rounded down to a whole degree; the sum turns a negative zero into zero.
double wholeDegrees(qint32 steps)
{
    return std::floor(steps / -stepsPerDegree) + 0.0;
}

} // namespace

quint32 packAttitude(const Attitude &attitude)
{
    const quint32 pitch = lowBits(std::floor(attitude.pitch * -stepsPerDegree));
    const quint32 bank = lowBits(std::floor(attitude.bank * -stepsPerDegree));
    const quint32 heading = lowBits(std::trunc(attitude.heading * stepsPerDegree)); // cut, not rounded down
    return (pitch << 22) + ((bank & tenBits) << 12) + ((heading & tenBits) << 2) + (attitude.onGround ? 2U : 0U);
}

Attitude unpackAttitude(quint32 word)
{
    // Shifting right after the cast keeps the sign of the top ten bits.
    const qint32 pitch = static_cast<qint32>(word) >> 22;
    const qint32 bank = static_cast<qint32>(word << 10) >> 22;
    return {.pitch = wholeDegrees(pitch),
            .heading = ((word >> 2) & tenBits) / stepsPerDegree,
            .bank = wholeDegrees(bank),
            .onGround = (word & 2U) != 0};
}

} // namespace tarvo::fsd::pdu

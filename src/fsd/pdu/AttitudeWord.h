#pragma once

#include <QtGlobal>

namespace tarvo::fsd::pdu {

/// How an aircraft lies in the air, in degrees, and whether it stands on the ground.
struct Attitude
{
    double pitch{};   ///< nose up is positive
    double heading{}; ///< 0 up to 360
    double bank{};    ///< as in the simulator's record
    bool onGround{};

    bool operator==(const Attitude &) const = default;
};

// The packed word that position reports carry, from the most significant bit: pitch, 10 bits signed; bank, 10 bits
// signed; heading, 10 bits unsigned; on ground, 1 bit; a zero bit. One step is 360/1024 of a degree. Pitch and bank go
// negated.

/// Packs. Pitch and bank are rounded down, the heading is cut towards zero; what does not fit its bits falls off. A
/// value that is no finite number counts as 0.
quint32 packAttitude(const Attitude &attitude);
/// Unpacks. Pitch and bank come back rounded down to whole degrees, so that a round trip may lose up to a degree; the
/// heading keeps its steps.
Attitude unpackAttitude(quint32 word);

} // namespace tarvo::fsd::pdu

#pragma once

#include "practice/fsd/FsdClientRecord.h"

#include <QByteArray>

#include <vector>

namespace tarvo::practice {

/// The circle that every pilot of a crowd flies, each about a centre of his own. What depends on the direction alone
/// is written down once for all, so that a report costs two numbers and a copy.
class CrowdTrack
{
public:
    static constexpr double radiusM = 4000;
    static constexpr double speed = 110; ///< metres per second

    CrowdTrack();

    /// A pilot on the track.
    struct Place
    {
        FsdPosition centre;
        double metresPerDegreeEast = 0; ///< at the centre
        double phaseAtStart = 0;        ///< radians
        int altitudeFeet = 0;
    };

    static Place place(const FsdPosition &centre, double phaseAtStart, int altitudeFeet);
    /// Where he is after so many seconds.
    static FsdPosition positionAt(const Place &place, double seconds);
    /// A fast position without the identifier and the callsign, from the colon behind that on, with its line end.
    QByteArray fastTail(const Place &place, double seconds) const;
    /// The packed attitude.
    quint32 attitude(const Place &place, double seconds) const;
    /// Ground speed in knots.
    static int knots();

private:
    struct Direction
    {
        quint32 attitude;
        QByteArray velocities; ///< from the colon before the attitude to the line end
    };

    const Direction &directionAt(const Place &place, double seconds) const;

    std::vector<Direction> m_directions; ///< all around, evenly
};

/// Appends the number with `decimals` digits after the point, rounded; for what a wire format holds, up to 9 digits
/// before the point. Much cheaper than the general way.
void appendFixed(QByteArray &text, double value, int decimals);

} // namespace tarvo::practice

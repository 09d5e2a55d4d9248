#pragma once

#include "practice/flight/AircraftState.h"

#include <QHash>
#include <QLatin1StringView>
#include <QString>

#include <span>

namespace tarvo::practice {

/// One of X-Plane's values, and where the flight has it.
struct Dataref
{
    QLatin1StringView name;
    float (*read)(const AircraftState &state);
};

/// All datarefs that the stand-in knows.
std::span<const Dataref> datarefs();
/// Index in datarefs(), or -1.
int datarefIndex(QStringView name);

/// What clients have written. A written value stands until the flight's own value of that dataref changes, as a switch
/// stays where it was put until the pilot's hand moves it.
class DatarefWrites
{
public:
    /// Stores a write. NaN and infinity are ignored.
    void write(int index, float value, const AircraftState &state);
    float value(int index, const AircraftState &state) const;
    /// Forgets the writes that the flight has overtaken.
    void settle(const AircraftState &state);

private:
    struct Write
    {
        float value = 0;
        float flightValue = 0; ///< the flight's value when it was written
    };

    QHash<int, Write> m_writes;
};

} // namespace tarvo::practice

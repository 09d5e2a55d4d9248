#include "manager/Plausible.h"

#include <cmath>

namespace tarvo::manager {

namespace {

using model::RadioStackState;
using model::UserAircraftConfigData;
using model::UserAircraftData;

constexpr double highestFeet = 3e6; ///< some 900 km: X-Plane flies to orbit
constexpr double highestMetres = 1e6;
constexpr double fastest = 1e5;       ///< knots or metres per second
constexpr double quickest = 1e3;      ///< radians per second
constexpr double fullTurn = 360;      ///< degrees; some simulators count longitudes through
constexpr double highestRatio = 10;   ///< flaps and brakes go from 0 to 1
constexpr quint32 highestKhz = 1e6;   ///< no radio can tune it
constexpr quint32 loudest = 1000;     ///< volumes go to 100
constexpr quint16 highestCode = 9999; ///< transponder

struct Limit
{
    double UserAircraftData::*field;
    double largest; ///< on both sides of 0
};

constexpr Limit aircraftLimits[] = {
    {&UserAircraftData::latitude, 90},
    {&UserAircraftData::longitude, fullTurn},
    {&UserAircraftData::altitudeMslM, highestMetres},
    {&UserAircraftData::altitudeAglM, highestMetres},
    {&UserAircraftData::altitudePressure, highestFeet},
    {&UserAircraftData::qnh, 1e4},
    {&UserAircraftData::temperatureError, 1e5},
    {&UserAircraftData::groundSpeed, fastest},
    {&UserAircraftData::pitch, fullTurn},
    {&UserAircraftData::heading, fullTurn},
    {&UserAircraftData::bank, fullTurn},
    {&UserAircraftData::latitudeVelocity, fastest},
    {&UserAircraftData::altitudeVelocity, fastest},
    {&UserAircraftData::longitudeVelocity, fastest},
    {&UserAircraftData::pitchVelocity, quickest},
    {&UserAircraftData::headingVelocity, quickest},
    {&UserAircraftData::bankVelocity, quickest},
    {&UserAircraftData::noseWheelAngle, fullTurn},
};

/// False for what is not a number, too.
bool isWithin(double value, double largest)
{
    return std::abs(value) <= largest;
}

template <class Record, class Value>
void keepWithin(Record &sample, const Record &last, Value Record::*field, Value largest)
{
    if (sample.*field > largest)
        sample.*field = last.*field;
}

} // namespace

double plausibleAltitude(double feet, double last)
{
    return isWithin(feet, highestFeet) ? feet : last;
}

UserAircraftData plausible(UserAircraftData sample, const UserAircraftData &last)
{
    for (const Limit &limit : aircraftLimits) {
        if (!isWithin(sample.*limit.field, limit.largest))
            sample.*limit.field = last.*limit.field;
    }
    return sample;
}

UserAircraftConfigData plausible(UserAircraftConfigData sample, const UserAircraftConfigData &last)
{
    if (!isWithin(sample.flapsRatio, highestRatio))
        sample.flapsRatio = last.flapsRatio;
    if (!isWithin(sample.speedbrakeRatio, highestRatio))
        sample.speedbrakeRatio = last.speedbrakeRatio;
    return sample;
}

RadioStackState plausible(RadioStackState state, const RadioStackState &last)
{
    for (const auto frequency : {&RadioStackState::com1Frequency, &RadioStackState::com1StandbyFrequency,
                                 &RadioStackState::com2Frequency, &RadioStackState::com2StandbyFrequency})
        keepWithin(state, last, frequency, highestKhz);
    for (const auto volume : {&RadioStackState::com1Volume, &RadioStackState::com2Volume})
        keepWithin(state, last, volume, loudest);
    keepWithin(state, last, &RadioStackState::transponderCode, highestCode);
    return state;
}

} // namespace tarvo::manager

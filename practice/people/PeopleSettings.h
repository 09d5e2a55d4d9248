#pragma once

namespace tarvo::practice {

/// The pilots and controllers that are always there, and how often they speak.
struct ResidentSettings
{
    bool present = true;
    int slowIntervalMs = 5'000;        ///< between a pilot's slow positions, and between a controller's
    int fastIntervalMs = 200;          ///< between fast positions, once asked for them
    int configurationMs = 2'000;       ///< between two looks whether the configuration has changed
    int answerMs = 1'500;              ///< a person takes so long to answer a text
    int greetingMs = 6'000;            ///< and so long to greet a pilot
    int broadcastIntervalMs = 300'000; ///< 0: never by itself
};

/// A crowd of pilots for load tests.
struct CrowdSettings
{
    static constexpr int mostPilots = 5'000;

    int pilots = 0;
    double rateHz = 5;          ///< fast positions of each pilot per second, without being asked for them
    int slowIntervalMs = 5'000; ///< between slow positions of each
};

} // namespace tarvo::practice

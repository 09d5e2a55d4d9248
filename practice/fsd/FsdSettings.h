#pragma once

#include <QString>

namespace tarvo::practice {

/// What the FSD server allows and how often it acts.
struct FsdSettings
{
    double relayRangeNm = 60;         ///< positions and radio reach this far; a controller's own range may be longer
    double fastRangeNm = 5;           ///< pilots this near to each other are asked for fast positions
    int pingIntervalMs = 30'000;      ///< 0: never by itself
    int challengeIntervalMs = 60'000; ///< 0: never by itself; each turn is up to a quarter earlier or later
    int identifyMs = 20'000;          ///< a client that hasn't logged in and identified itself by then is sent away
    int silenceMs = 120'000;          ///< a client that sends nothing for so long is sent away
    int maxClients = 64;
    int maxLineBytes = 4096;      ///< a longer line is dropped
    int maxQueuedBytes = 1 << 20; ///< a client that lets more pile up is cut off
    int finishWithinMs = 2000;    ///< for a client that is sent away and doesn't read its last lines
    int maxLinesPerSecond = 500;  ///< a client that sends more is cut off; bursts of twice as many are let through
    int maxBadLines = 50;         ///< so many malformed lines end a session
    QString greeting = QStringLiteral("Welcome to the practice network."); ///< empty: none
};

} // namespace tarvo::practice

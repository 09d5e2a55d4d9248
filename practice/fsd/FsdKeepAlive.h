#pragma once

#include "common/Clock.h"

#include <QString>

namespace tarvo::practice {

class FsdSession;
struct FsdSettings;

/// What the server asks of a session by itself as time passes: an identification, a sign of life, pings, challenges.
class FsdKeepAlive
{
public:
    FsdKeepAlive(const FsdSettings &settings, const common::Clock &clock) : m_settings(settings), m_clock(clock) {}

    /// From now on pings and challenges the session, which has just logged in.
    void begin(FsdSession &session) const;
    /// Does what is due now: sends the session away when it is past a time limit, pings and challenges it.
    void step(FsdSession &session) const;
    /// "$PI" with the time, in seconds.
    void ping(FsdSession &session) const;
    /// "$ZC" with a new challenge; ends the session when the one before is still without an answer.
    void challenge(FsdSession &session) const;

    /// Sixteen random hexadecimal digits.
    static QString newChallenge();

private:
    const FsdSettings &m_settings;
    const common::Clock &m_clock;
};

} // namespace tarvo::practice

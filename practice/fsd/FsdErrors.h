#pragma once

namespace tarvo::practice {

/// What the server says with "$ER". The numbers are those of the protocol; the texts are the server's own.
enum class FsdError
{
    CallsignInUse = 1,
    CallsignInvalid = 2,
    AlreadyRegistered = 3,
    SyntaxError = 4,
    InvalidSource = 5,
    InvalidLogin = 6,
    NoSuchCallsign = 7,
    NoFlightPlan = 8,
    InvalidRevision = 10,
    LevelTooHigh = 11,
    ServerFull = 12,
    UnauthorizedClient = 16,
};

} // namespace tarvo::practice

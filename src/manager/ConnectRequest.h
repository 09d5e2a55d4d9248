#pragma once

#include <QString>

namespace tarvo::manager {

/// What a pilot asks for, with the callsign trimmed and upper-cased.
struct ConnectRequest
{
    QString callsign;
    QString typeCode;
    bool observer = false;
};

/// What the session is like when the request comes.
struct ConnectConditions
{
    bool busy = false;           ///< connected, or on the way there or back
    bool simulatorReady = false; ///< a simulator is there and has delivered a live sample
};

/// Why a request can't be granted, as a text for the pilot; empty when it can. The first reason found is told.
QString refusalOf(const ConnectRequest &request, const ConnectConditions &conditions);

} // namespace tarvo::manager

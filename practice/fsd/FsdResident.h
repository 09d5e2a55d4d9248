#pragma once

#include "practice/fsd/FsdClientRecord.h"

namespace tarvo::practice {

/// A client of the FSD server that lives in this program, with no socket between: it hears and says the same lines as
/// a connected one. Whoever makes it keeps its record up to date: position, range, facility, flight plan.
///
/// One that is marked as part of a crowd before it is let in costs next to nothing: it hears only what is addressed to
/// it, is never asked for fast positions, and what it says isn't told as a line of the server.
class FsdResident : public FsdClientRecord
{
public:
    explicit FsdResident(FsdIdentity who) { identity = std::move(who); }
    FsdResident(const FsdResident &) = delete;
    FsdResident &operator=(const FsdResident &) = delete;
    virtual ~FsdResident() = default;

    const QString &callsign() const { return identity->callsign; }

    /// A line for this client, with its line end: addressed to it, to all, to the supervisors or, when it is in range,
    /// to a frequency; a client's coming or going; "$SF". Positions aren't heard. It may answer at once.
    virtual void hear(const QString &line) = 0;

    /// Who a pilot or a controller is, with the announcement.
    static FsdIdentity pilot(const QString &callsign, const QString &cid, const QString &realName);
    static FsdIdentity controller(const QString &callsign, const QString &cid, const QString &realName);
};

} // namespace tarvo::practice

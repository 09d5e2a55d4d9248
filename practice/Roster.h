#pragma once

#include "practice/FsdSession.h"

#include <QList>

namespace tarvo::practice {

/// Nautical miles between two places, along the great circle.
double distanceNm(const FsdPosition &a, const FsdPosition &b);

/// The sessions of an FSD server, in the order in which they came. Owns none of them.
class Roster
{
public:
    void add(FsdSession *session) { m_sessions.append(session); }
    void remove(FsdSession *session) { m_sessions.removeOne(session); }
    const QList<FsdSession *> &all() const { return m_sessions; }

    /// The open session logged in under that callsign, in any case, or null.
    FsdSession *find(const QString &callsign) const;
    /// All that are open and logged in, without `self`.
    QList<FsdSession *> others(const FsdSession &self) const;
    /// Those of others() that `self` reaches: as far as `rangeNm`, or as the longer range of a controller among the
    /// two. Nobody while a position isn't known.
    QList<FsdSession *> inRange(const FsdSession &self, double rangeNm) const;

private:
    QList<FsdSession *> m_sessions;
};

} // namespace tarvo::practice

#pragma once

#include <QHash>
#include <QList>

namespace tarvo::practice {

class FsdResident;
class FsdSession;
struct FsdClientRecord;
struct FsdPosition;

/// Nautical miles between two places, along the great circle.
double distanceNm(const FsdPosition &a, const FsdPosition &b);

/// True when both places are known and no farther apart than `rangeNm`, or than the longer range of a controller among
/// the two.
bool reach(const FsdClientRecord &a, const FsdClientRecord &b, double rangeNm);

/// The sessions and residents of an FSD server, in the order in which they came. Owns none of them.
class Roster
{
public:
    void add(FsdSession *session) { m_sessions.append(session); }
    void remove(FsdSession *session) { m_sessions.removeOne(session); }
    const QList<FsdSession *> &all() const { return m_sessions; }

    /// The open session logged in under that callsign, in any case, or null.
    FsdSession *find(const QString &callsign) const;
    /// All that are open and logged in, without `self`.
    QList<FsdSession *> others(const FsdClientRecord &self) const;
    /// Those of others() that `self`, be it one of them or a resident, reaches; see reach().
    QList<FsdSession *> inRange(const FsdClientRecord &self, double rangeNm) const;

    /// Returns false when the callsign is taken.
    bool addResident(FsdResident *resident);
    void removeResident(FsdResident *resident);
    const QList<FsdResident *> &residents() const { return m_residents; }
    /// The resident of that callsign, in any case, or null.
    FsdResident *resident(const QString &callsign) const { return m_byCallsign.value(callsign.toUpper()); }
    /// What is known of whoever has that callsign, or null.
    const FsdClientRecord *record(const QString &callsign) const;
    /// True when a line is addressed to one of a crowd, or is a question about one.
    bool isForCrowd(const QString &line) const;

private:
    QList<FsdSession *> m_sessions;
    QList<FsdResident *> m_residents;
    QHash<QString, FsdResident *> m_byCallsign;
    int m_crowd = 0; ///< residents that are of one
};

} // namespace tarvo::practice

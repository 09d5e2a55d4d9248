#include "practice/Roster.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

double distanceNm(const FsdPosition &a, const FsdPosition &b)
{
    constexpr double earthRadiusNm = 3440.065;
    const double latitude1 = qDegreesToRadians(a.latitude);
    const double latitude2 = qDegreesToRadians(b.latitude);
    const double north = std::sin((latitude2 - latitude1) / 2);
    const double east = std::sin(qDegreesToRadians(b.longitude - a.longitude) / 2);
    const double h = north * north + std::cos(latitude1) * std::cos(latitude2) * east * east;
    return 2 * earthRadiusNm * std::asin(std::sqrt(std::clamp(h, 0.0, 1.0)));
}

FsdSession *Roster::find(const QString &callsign) const
{
    for (FsdSession *session : m_sessions) {
        if (session->isOpen() && session->loggedIn() &&
            session->identity->callsign.compare(callsign, Qt::CaseInsensitive) == 0)
            return session;
    }
    return nullptr;
}

QList<FsdSession *> Roster::others(const FsdSession &self) const
{
    QList<FsdSession *> list;
    for (FsdSession *session : m_sessions) {
        if (session != &self && session->isOpen() && session->loggedIn())
            list.append(session);
    }
    return list;
}

QList<FsdSession *> Roster::inRange(const FsdSession &self, double rangeNm) const
{
    QList<FsdSession *> list;
    if (!self.position)
        return list;
    for (FsdSession *other : others(self)) {
        const double reach = std::max({rangeNm, self.visibilityRangeNm, other->visibilityRangeNm});
        if (other->position && distanceNm(*self.position, *other->position) <= reach)
            list.append(other);
    }
    return list;
}

} // namespace tarvo::practice

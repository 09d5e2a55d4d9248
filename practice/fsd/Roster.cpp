#include "practice/fsd/Roster.h"

#include "practice/fsd/FsdResident.h"
#include "practice/fsd/FsdSession.h"

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

QList<FsdSession *> Roster::others(const FsdClientRecord &self) const
{
    QList<FsdSession *> list;
    for (FsdSession *session : m_sessions) {
        if (session != &self && session->loggedIn())
            list.append(session);
    }
    return list;
}

bool reach(const FsdClientRecord &a, const FsdClientRecord &b, double rangeNm)
{
    const double range = std::max({rangeNm, a.visibilityRangeNm, b.visibilityRangeNm});
    return a.position && b.position && distanceNm(*a.position, *b.position) <= range;
}

QList<FsdSession *> Roster::inRange(const FsdClientRecord &self, double rangeNm) const
{
    QList<FsdSession *> list;
    for (FsdSession *other : others(self)) {
        if (reach(self, *other, rangeNm))
            list.append(other);
    }
    return list;
}

bool Roster::addResident(FsdResident *resident)
{
    const QString callsign = resident->callsign().toUpper();
    if (find(callsign) || m_byCallsign.contains(callsign))
        return false;
    m_residents.append(resident);
    m_byCallsign.insert(callsign, resident);
    m_crowd += resident->inCrowd ? 1 : 0;
    return true;
}

void Roster::removeResident(FsdResident *resident)
{
    if (m_residents.removeOne(resident)) {
        m_byCallsign.remove(resident->callsign().toUpper());
        m_crowd -= resident->inCrowd ? 1 : 0;
    }
}

const FsdClientRecord *Roster::record(const QString &callsign) const
{
    if (const FsdClientRecord *session = find(callsign))
        return session;
    return resident(callsign);
}

bool Roster::isForCrowd(const QString &line) const
{
    constexpr qsizetype recipient = 1;
    constexpr qsizetype subject = 3; // of a question to the server, such as "FP"
    if (m_crowd == 0)
        return false;
    for (const qsizetype field : {recipient, subject}) {
        const FsdResident *found = resident(line.section(QLatin1Char(':'), field, field));
        if (found && found->inCrowd)
            return true;
    }
    return false;
}

} // namespace tarvo::practice

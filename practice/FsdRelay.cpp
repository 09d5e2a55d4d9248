#include "practice/FsdRelay.h"

#include "fsd/pdu/DeleteATC.h"
#include "fsd/pdu/DeletePilot.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/SendFast.h"

#include <algorithm>

namespace tarvo::practice {

namespace {
constexpr double partingFactor = 1.2; // who is near already may go this much farther: no toggling on the edge

bool isPilotSomewhere(const FsdSession &session)
{
    return session.loggedIn() && !session.identity->observer && session.position;
}
} // namespace

void FsdRelay::toAll(const FsdSession &from, const QString &line) const
{
    for (FsdSession *other : m_roster.others(from))
        other->send(line);
}

void FsdRelay::toRange(const FsdSession &from, const QString &line) const
{
    for (FsdSession *other : m_roster.inRange(from, m_settings.relayRangeNm))
        other->send(line);
}

void FsdRelay::toControllers(const FsdSession &from, const QString &line) const
{
    for (FsdSession *other : m_roster.others(from)) {
        if (other->identity->observer)
            other->send(line);
    }
}

void FsdRelay::toCallsign(FsdSession &from, const QString &callsign, const QString &line) const
{
    if (FsdSession *to = m_roster.find(callsign))
        to->send(line);
    else
        from.complain(FsdError::NoSuchCallsign, callsign, QStringLiteral("No such callsign"));
}

void FsdRelay::toRecipient(FsdSession &from, const QString &recipient, const QString &line) const
{
    if (recipient.startsWith(u'@'))
        toRange(from, line);
    else if (recipient.startsWith(u'*'))
        toAll(from, line);
    else
        toCallsign(from, recipient, line);
}

void FsdRelay::introduce(FsdSession &newcomer) const
{
    for (FsdSession *other : m_roster.others(newcomer)) {
        other->send(newcomer.identity->announcement);
        newcomer.send(other->identity->announcement);
    }
}

void FsdRelay::farewell(const FsdSession &gone) const
{
    const FsdIdentity &who = *gone.identity;
    toAll(gone, who.observer ? fsd::toLine(fsd::pdu::DeleteATC(who.callsign, who.cid))
                             : fsd::toLine(fsd::pdu::DeletePilot(who.callsign, who.cid)));
    updateFast();
}

void FsdRelay::updateFast() const
{
    for (FsdSession *pilot : m_roster.all()) {
        if (!pilot->isOpen() || !isPilotSomewhere(*pilot))
            continue;
        const bool near = isNearSomebody(*pilot);
        if (near == pilot->fast)
            continue;
        pilot->fast = near;
        pilot->send(fsd::toLine(fsd::pdu::SendFast(QStringLiteral("SERVER"), pilot->identity->callsign, near)));
    }
}

bool FsdRelay::isNearSomebody(const FsdSession &pilot) const
{
    const double range = m_settings.fastRangeNm * (pilot.fast ? partingFactor : 1.0);
    const QList<FsdSession *> others = m_roster.others(pilot);
    return std::any_of(others.begin(), others.end(), [&](const FsdSession *other) {
        return isPilotSomewhere(*other) && distanceNm(*pilot.position, *other->position) <= range;
    });
}

} // namespace tarvo::practice

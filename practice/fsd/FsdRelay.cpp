#include "practice/fsd/FsdRelay.h"

#include "common/Callsign.h"
#include "fsd/pdu/AnyPdu.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PDUFormatException.h"
#include "practice/fsd/FsdResident.h"
#include "practice/fsd/FsdSession.h"
#include "practice/fsd/FsdSettings.h"
#include "practice/fsd/Roster.h"

#include <algorithm>

namespace tarvo::practice {

namespace {
constexpr double partingFactor = 1.2; // who is near already may go this much farther: no toggling on the edge

bool isPilotSomewhere(const FsdClientRecord &client)
{
    return client.identity && !client.identity->observer && client.position;
}

bool isPosition(const QString &line)
{
    try {
        const fsd::AnyPdu pdu = fsd::parseLine(line.trimmed());
        return std::holds_alternative<fsd::pdu::PilotPosition>(pdu) ||
               std::holds_alternative<fsd::pdu::FastPilotPosition>(pdu) ||
               std::holds_alternative<fsd::pdu::ATCPosition>(pdu);
    } catch (const fsd::PDUFormatException &) {
        return false; // a resident may be told to say anything
    }
}

QString sendFast(const FsdClientRecord &pilot)
{
    return fsd::toLine(fsd::pdu::SendFast(common::serverCallsign, pilot.identity->callsign, pilot.fast));
}
} // namespace

void FsdRelay::toAll(const FsdClientRecord &from, const QString &line) const
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
    else if (FsdResident *resident = m_roster.resident(callsign))
        resident->hear(line);
    else
        from.complain(FsdError::NoSuchCallsign, callsign, QStringLiteral("No such callsign"));
}

void FsdRelay::toRecipient(FsdSession &from, const QString &recipient, const QString &line) const
{
    if (recipient.startsWith(u'@')) {
        toRange(from, line);
        toRangeOfResidents(from, line);
    } else if (recipient.startsWith(u'*')) {
        toAll(from, line);
        toResidents(line);
    } else {
        toCallsign(from, recipient, line);
    }
}

void FsdRelay::toResidents(const QString &line) const
{
    const QList<FsdResident *> residents = m_roster.residents();
    for (FsdResident *resident : residents) {
        if (!resident->inCrowd)
            resident->hear(line);
    }
}

void FsdRelay::toRangeOfResidents(const FsdSession &from, const QString &line) const
{
    const QList<FsdResident *> residents = m_roster.residents();
    for (FsdResident *resident : residents) {
        if (!resident->inCrowd && reach(from, *resident, m_settings.relayRangeNm))
            resident->hear(line);
    }
}

bool FsdRelay::say(const FsdResident &from, const QString &line) const
{
    const QString recipient = line.section(QLatin1Char(':'), 1, 1);
    QList<FsdSession *> recipients;
    const bool position = isPosition(line);
    if (position || recipient.startsWith(u'@'))
        recipients = m_roster.inRange(from, m_settings.relayRangeNm);
    else if (recipient.startsWith(u'*'))
        recipients = m_roster.others(from);
    else if (FsdSession *to = m_roster.find(recipient))
        recipients = {to};
    for (FsdSession *to : recipients)
        deliver(from.inCrowd || position, *to, line);
    return !recipients.isEmpty();
}

void FsdRelay::deliver(bool quietly, FsdSession &to, const QString &line)
{
    if (quietly)
        to.sendQuietly(line.toLatin1());
    else
        to.send(line);
}

void FsdRelay::sayPositions(const QList<FsdReport> &reports) const
{
    const QList<FsdSession *> sessions = m_roster.all();
    for (FsdSession *session : sessions) {
        if (!session->position)
            continue;
        QByteArray batch;
        for (const FsdReport &report : reports) {
            if (reach(*report.from, *session, m_settings.relayRangeNm))
                batch += report.line;
        }
        if (!batch.isEmpty())
            session->sendQuietly(batch);
    }
}

void FsdRelay::introduce(FsdSession &newcomer) const
{
    for (FsdSession *other : m_roster.others(newcomer)) {
        other->send(newcomer.identity->announcement);
        newcomer.send(other->identity->announcement);
    }
    QByteArray crowd;
    for (const FsdResident *resident : m_roster.residents()) {
        if (resident->inCrowd)
            crowd += resident->identity->announcement.toLatin1();
        else
            newcomer.send(resident->identity->announcement);
    }
    newcomer.sendQuietly(crowd);
    toResidents(newcomer.identity->announcement);
}

void FsdRelay::introduce(const FsdResident &newcomer) const
{
    for (FsdSession *other : m_roster.others(newcomer))
        deliver(newcomer.inCrowd, *other, newcomer.identity->announcement);
}

void FsdRelay::farewell(const FsdClientRecord &gone) const
{
    const FsdIdentity &who = *gone.identity;
    const QString line = who.observer ? fsd::toLine(fsd::pdu::DeleteATC(who.callsign, who.cid))
                                      : fsd::toLine(fsd::pdu::DeletePilot(who.callsign, who.cid));
    if (gone.inCrowd) {
        for (FsdSession *other : m_roster.others(gone))
            other->sendQuietly(line.toLatin1());
        return; // whoever flies near a crowd goes on sending fast positions until the next look round
    }
    toAll(gone, line);
    toResidents(line);
    updateFast();
}

void FsdRelay::updateFast() const
{
    for (FsdSession *pilot : m_roster.all()) {
        if (!isPilotSomewhere(*pilot))
            continue;
        const bool near = isNearSession(*pilot) || isNearResident(*pilot);
        if (near == pilot->fast)
            continue;
        pilot->fast = near;
        pilot->send(sendFast(*pilot));
    }
    const QList<FsdResident *> residents = m_roster.residents();
    for (FsdResident *pilot : residents) {
        if (pilot->inCrowd || !isPilotSomewhere(*pilot))
            continue;
        const bool near = isNearSession(*pilot);
        if (near == pilot->fast)
            continue;
        pilot->fast = near;
        pilot->hear(sendFast(*pilot));
    }
}

double FsdRelay::fastRange(const FsdClientRecord &pilot) const
{
    return m_settings.fastRangeNm * (pilot.fast ? partingFactor : 1.0);
}

bool FsdRelay::isNearSession(const FsdClientRecord &pilot) const
{
    const double range = fastRange(pilot);
    const QList<FsdSession *> others = m_roster.others(pilot);
    return std::any_of(others.begin(), others.end(), [&](const FsdSession *other) {
        return isPilotSomewhere(*other) && distanceNm(*pilot.position, *other->position) <= range;
    });
}

bool FsdRelay::isNearResident(const FsdClientRecord &pilot) const
{
    const double range = fastRange(pilot);
    const QList<FsdResident *> &residents = m_roster.residents();
    return std::any_of(residents.begin(), residents.end(), [&](const FsdResident *other) {
        return isPilotSomewhere(*other) && distanceNm(*pilot.position, *other->position) <= range;
    });
}

} // namespace tarvo::practice

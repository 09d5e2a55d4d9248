#include "practice/fsd/FsdDispatcher.h"

#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/AuthResponse.h"
#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/FlightPlan.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PDUFormatException.h"
#include "fsd/pdu/PilotPosition.h"
#include "fsd/pdu/Ping.h"
#include "fsd/pdu/Pong.h"
#include "fsd/pdu/ServerIdentification.h"
#include "fsd/pdu/TextMessage.h"

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

using fsd::toLine;
using fsd::pdu::ClientQueryType;

namespace {
const QString server = QStringLiteral("SERVER");
constexpr int longestVisibilityNm = 600;
} // namespace

/// One identifier that a client may send.
struct FsdDispatcher::Command
{
    QLatin1StringView identifier;
    Handler handler;
    int senderField = 0; ///< where the sender's callsign stands, once the identifier is taken off
    bool beforeLogin = false;
};

const FsdDispatcher::Command FsdDispatcher::commands[] = {
    {QLatin1StringView("$ID"), &FsdDispatcher::onIdentification, 0, true},
    {QLatin1StringView("#AP"), &FsdDispatcher::onAddPilot, 0, true},
    {QLatin1StringView("#AA"), &FsdDispatcher::onAddAtc, 0, true},
    {QLatin1StringView("#DP"), &FsdDispatcher::onDelete},
    {QLatin1StringView("#DA"), &FsdDispatcher::onDelete},
    {QLatin1StringView("@"), &FsdDispatcher::onPilotPosition, 1},
    {QLatin1StringView("^"), &FsdDispatcher::onFastPosition},
    {QLatin1StringView("#SL"), &FsdDispatcher::onFastPosition},
    {QLatin1StringView("#ST"), &FsdDispatcher::onFastPosition},
    {QLatin1StringView("%"), &FsdDispatcher::onAtcPosition},
    {QLatin1StringView("#TM"), &FsdDispatcher::onText},
    {QLatin1StringView("$CQ"), &FsdDispatcher::onQuery},
    {QLatin1StringView("$CR"), &FsdDispatcher::onForOthers},
    {QLatin1StringView("#SB"), &FsdDispatcher::onForOthers},
    {QLatin1StringView("$PI"), &FsdDispatcher::onPing},
    {QLatin1StringView("$PO"), &FsdDispatcher::onForOthers},
    {QLatin1StringView("$ZR"), &FsdDispatcher::onAuthResponse},
    {QLatin1StringView("$FP"), &FsdDispatcher::onFlightPlan},
};

FsdDispatcher::FsdDispatcher(const AccountBook &accounts, const TokenAuthority &tokens, const Roster &roster,
                             const FsdKeepAlive &keepAlive, const FsdSettings &settings)
    : m_roster(roster),
      m_keepAlive(keepAlive),
      m_settings(settings),
      m_login(accounts, tokens, roster),
      m_relay(roster, settings)
{
}

void FsdDispatcher::greet(FsdSession &session)
{
    session.send(toLine(fsd::pdu::ServerIdentification(server, QStringLiteral("CLIENT"),
                                                       QStringLiteral("Tarvo practice FSD server 1.0"),
                                                       FsdKeepAlive::newChallenge())));
}

const FsdDispatcher::Command *FsdDispatcher::commandOf(const QString &line)
{
    const auto found = std::find_if(std::begin(commands), std::end(commands),
                                    [&](const Command &command) { return line.startsWith(command.identifier); });
    return found == std::end(commands) ? nullptr : found;
}

void FsdDispatcher::handle(FsdSession &session, const QString &line)
{
    const Command *command = commandOf(line);
    if (!command) {
        session.complain(FsdError::SyntaxError, {}, QStringLiteral("Syntax error"));
        return;
    }
    QStringList fields = line.split(QLatin1Char(':'));
    fields[0].remove(0, command->identifier.size());
    if (!mayUse(session, *command, fields))
        return;
    try {
        (this->*command->handler)(session, fields, line + QLatin1StringView("\r\n"));
    } catch (const fsd::PDUFormatException &e) {
        session.complain(FsdError::SyntaxError, {}, e.error());
    }
}

bool FsdDispatcher::mayUse(FsdSession &session, const Command &command, const QStringList &fields) const
{
    if (command.beforeLogin)
        return true;
    const QString sender = fields.value(command.senderField);
    if (session.loggedIn() && sender == session.identity->callsign)
        return true;
    session.complain(FsdError::InvalidSource, sender, QStringLiteral("Invalid source callsign"));
    return false;
}

void FsdDispatcher::enter(FsdSession &session)
{
    m_keepAlive.begin(session);
    emit loggedIn(session);
    if (!m_settings.greeting.isEmpty())
        session.send(toLine(fsd::pdu::TextMessage(server, session.identity->callsign, m_settings.greeting)));
    m_relay.introduce(session);
}

void FsdDispatcher::leave(FsdSession &session)
{
    if (session.loggedIn())
        m_relay.farewell(session);
}

void FsdDispatcher::onIdentification(FsdSession &session, const QStringList &fields, const QString &)
{
    if (m_login.identify(session, fields))
        enter(session);
}

void FsdDispatcher::onAddPilot(FsdSession &session, const QStringList &fields, const QString &)
{
    if (m_login.addPilot(session, fields))
        enter(session);
}

void FsdDispatcher::onAddAtc(FsdSession &session, const QStringList &fields, const QString &)
{
    if (m_login.addAtc(session, fields))
        enter(session);
}

void FsdDispatcher::onDelete(FsdSession &session, const QStringList &, const QString &)
{
    session.finish();
}

void FsdDispatcher::moveTo(FsdSession &session, double latitude, double longitude, const QString &line)
{
    // Written so that "nan" fails, too.
    if (!(std::abs(latitude) <= 90 && std::abs(longitude) <= 180)) {
        session.complain(FsdError::SyntaxError, {}, QStringLiteral("No such place"));
        return;
    }
    session.position = FsdPosition{latitude, longitude};
    m_relay.toRange(session, line);
    m_relay.updateFast();
}

void FsdDispatcher::onPilotPosition(FsdSession &session, const QStringList &fields, const QString &line)
{
    const auto report = fsd::pdu::PilotPosition::parse(fields);
    moveTo(session, report.latitude, report.longitude, line);
}

void FsdDispatcher::onFastPosition(FsdSession &session, const QStringList &fields, const QString &line)
{
    using fsd::pdu::FastPilotPositionType;
    const auto type = line.startsWith(u'^')                       ? FastPilotPositionType::Fast
                      : line.startsWith(QLatin1StringView("#ST")) ? FastPilotPositionType::Stopped
                                                                  : FastPilotPositionType::Slow;
    const auto report = fsd::pdu::FastPilotPosition::parse(fields, type);
    moveTo(session, report.latitude, report.longitude, line);
}

void FsdDispatcher::onAtcPosition(FsdSession &session, const QStringList &fields, const QString &line)
{
    const auto report = fsd::pdu::ATCPosition::parse(fields);
    if (!session.identity->observer) {
        session.complain(FsdError::SyntaxError, {}, QStringLiteral("A pilot sends no controller's position"));
        return;
    }
    session.facility = static_cast<int>(report.facility);
    session.visibilityRangeNm = std::clamp(report.visibilityRange, 0, longestVisibilityNm);
    moveTo(session, report.latitude, report.longitude, line);
}

void FsdDispatcher::onText(FsdSession &session, const QStringList &fields, const QString &line)
{
    if (fields.size() < 3)
        throw fsd::PDUFormatException(QStringLiteral("Invalid field count."), line);
    const QString &to = fields.at(1);
    if (to == QLatin1StringView("*S")) {
        session.send(toLine(fsd::pdu::TextMessage(server, session.identity->callsign,
                                                  QStringLiteral("Your call to the supervisors was received."))));
        m_relay.toResidents(line);
    } else if (to != server) {
        m_relay.toRecipient(session, to, line);
    } else if (fields.at(2) == QLatin1StringView("FP") && fields.size() > 4) { // FP : callsign : GET
        answerFlightPlan(session, fields.at(3), false);
    }
}

void FsdDispatcher::onQuery(FsdSession &session, const QStringList &fields, const QString &line)
{
    if (fields.value(1) == server)
        answerQuery(session, fields);
    else
        onForOthers(session, fields, line);
}

void FsdDispatcher::answerQuery(FsdSession &session, const QStringList &fields)
{
    const auto query = fsd::pdu::ClientQuery::parse(fields);
    const QString subject = query.payload.value(0).toUpper();
    const FsdClientRecord *other = m_roster.record(subject);
    QStringList answer;
    switch (query.queryType) {
    case ClientQueryType::IsValidAtc:
        answer = {other && other->identity->observer && other->facility > 0 ? QStringLiteral("Y") : QStringLiteral("N"),
                  subject};
        break;
    case ClientQueryType::Capabilities:
        answer = {QStringLiteral("ATCINFO=1"), QStringLiteral("SECPOS=1"), QStringLiteral("FASTPOS=1")};
        break;
    case ClientQueryType::RealName:
        answer = {QStringLiteral("Practice network"), QStringLiteral("1")};
        break;
    case ClientQueryType::PublicAddress:
        answer = {session.peerAddress()};
        break;
    case ClientQueryType::FlightPlan:
        answerFlightPlan(session, subject, true);
        return;
    default:
        return; // the server has no answer to the other types
    }
    session.send(
        toLine(fsd::pdu::ClientQueryResponse(server, session.identity->callsign, query.queryType, std::move(answer))));
}

void FsdDispatcher::answerFlightPlan(FsdSession &session, const QString &callsign, bool withPlan)
{
    const FsdClientRecord *other = m_roster.record(callsign);
    if (!other || other->aircraftType.isEmpty()) {
        session.sendError(FsdError::NoFlightPlan, callsign, QStringLiteral("No flight plan"));
        return;
    }
    const QString answer = toLine(fsd::pdu::ClientQueryResponse(
        server, session.identity->callsign, ClientQueryType::FlightPlan, {callsign, other->aircraftType}));
    const QString plan = withPlan ? other->flightPlan : QString();
    if (other->inCrowd) {
        session.sendQuietly((answer + plan).toLatin1());
        return;
    }
    session.send(answer);
    if (withPlan)
        session.send(plan);
}

void FsdDispatcher::onPing(FsdSession &session, const QStringList &fields, const QString &line)
{
    const auto request = fsd::pdu::Ping::parse(fields);
    if (request.To == server)
        session.send(toLine(fsd::pdu::Pong(server, request.From, request.timestamp)));
    else
        m_relay.toCallsign(session, request.To, line);
}

void FsdDispatcher::onAuthResponse(FsdSession &session, const QStringList &fields, const QString &)
{
    const auto answer = fsd::pdu::AuthResponse::parse(fields);
    if (session.openChallenge.isEmpty() || answer.response != session.openChallenge) {
        session.refuse(FsdError::UnauthorizedClient, {}, QStringLiteral("Wrong answer to the challenge"));
        return;
    }
    session.openChallenge.clear();
}

void FsdDispatcher::onFlightPlan(FsdSession &session, const QStringList &fields, const QString &line)
{
    session.aircraftType = fsd::pdu::FlightPlan::parse(fields).aircraftType;
    session.flightPlan = line;
    m_relay.toControllers(session, line);
}

void FsdDispatcher::onForOthers(FsdSession &session, const QStringList &fields, const QString &line)
{
    if (fields.size() < 3)
        throw fsd::PDUFormatException(QStringLiteral("Invalid field count."), line);
    if (fields.at(1) != server)
        m_relay.toRecipient(session, fields.at(1), line);
}

} // namespace tarvo::practice

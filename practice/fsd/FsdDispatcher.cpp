#include "practice/fsd/FsdDispatcher.h"

#include "common/Callsign.h"
#include "fsd/pdu/AnyPdu.h"
#include "fsd/pdu/AuthResponse.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PDUFormatException.h"
#include "practice/fsd/FsdErrors.h"
#include "practice/fsd/FsdResident.h"
#include "practice/fsd/FsdSession.h"
#include "practice/fsd/FsdSettings.h"
#include "practice/fsd/Roster.h"

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

using common::serverCallsign;
using fsd::toLine;
using fsd::pdu::ClientQueryType;

namespace {
constexpr int longestVisibilityNm = 600;

/// Of a line that is read without its recipient: a login, or a text on frequencies.
QString recipientOf(const QString &line)
{
    return line.section(u':', 1, 1);
}

bool isLogin(const fsd::AnyPdu &pdu)
{
    return std::holds_alternative<fsd::pdu::ClientIdentification>(pdu) ||
           std::holds_alternative<fsd::pdu::AddPilot>(pdu) || std::holds_alternative<fsd::pdu::AddATC>(pdu);
}
} // namespace

/// Does what one line of a session asks for.
struct FsdDispatcher::Reader
{
    FsdDispatcher &dispatcher;
    FsdSession &session;
    QString line; ///< with its line end

    void operator()(const fsd::pdu::ClientIdentification &id) const
    {
        if (dispatcher.m_login.identify(session, id))
            dispatcher.enter(session);
    }
    void operator()(const fsd::pdu::AddPilot &login) const
    {
        if (dispatcher.m_login.addPilot(session, login, recipientOf(line)))
            dispatcher.enter(session);
    }
    void operator()(const fsd::pdu::AddATC &login) const
    {
        if (dispatcher.m_login.addAtc(session, login, recipientOf(line)))
            dispatcher.enter(session);
    }
    void operator()(const fsd::pdu::DeletePilot &) const { session.finish(); }
    void operator()(const fsd::pdu::DeleteATC &) const { session.finish(); }
    void operator()(const fsd::pdu::PilotPosition &at) const { moveTo(at.latitude, at.longitude); }
    void operator()(const fsd::pdu::FastPilotPosition &at) const { moveTo(at.latitude, at.longitude); }
    void operator()(const fsd::pdu::ATCPosition &report) const;
    void operator()(const fsd::pdu::TextMessage &text) const;
    void operator()(const fsd::pdu::RadioMessage &) const { relay(recipientOf(line)); }
    void operator()(const fsd::pdu::BroadcastMessage &text) const { relay(text.To); }
    void operator()(const fsd::pdu::Wallop &) const;
    void operator()(const fsd::pdu::ClientQuery &query) const;
    void operator()(const fsd::pdu::ClientQueryResponse &answer) const { relay(answer.To); }
    void operator()(const fsd::pdu::PlaneInfoRequest &request) const { relay(request.To); }
    void operator()(const fsd::pdu::PlaneInfoResponse &answer) const { relay(answer.To); }
    void operator()(const fsd::pdu::Ping &ping) const;
    void operator()(const fsd::pdu::Pong &pong) const { relay(pong.To); }
    void operator()(const fsd::pdu::FlightPlan &plan) const;
    /// What only a server says.
    template <class Pdu>
    void operator()(const Pdu &) const
    {
        throw fsd::PDUFormatException(QStringLiteral("Syntax error"), line);
    }

private:
    void moveTo(double latitude, double longitude) const;
    /// To somebody else; the server itself has no use for it.
    void relay(const QString &recipient) const
    {
        if (recipient != serverCallsign)
            dispatcher.m_relay.toRecipient(session, recipient, line);
    }
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
    session.send(toLine(fsd::pdu::ServerIdentification(serverCallsign, QStringLiteral("CLIENT"),
                                                       QStringLiteral("Tarvo practice FSD server 1.0"),
                                                       FsdKeepAlive::newChallenge())));
}

void FsdDispatcher::handle(FsdSession &session, const QString &line)
{
    try {
        if (line.startsWith(fsd::pdu::AuthResponse::identifier)) // only ever sent by clients: parseLine() has none
            return onAuthResponse(session, line);
        const fsd::AnyPdu pdu = fsd::parseLine(line);
        const QString sender = std::visit([](const fsd::pdu::PduBase &base) { return base.From; }, pdu);
        if (isLogin(pdu) || isOwn(session, sender))
            std::visit(Reader{*this, session, line + QLatin1StringView("\r\n")}, pdu);
    } catch (const fsd::PDUFormatException &e) {
        session.complain(FsdError::SyntaxError, {}, e.error());
    }
}

bool FsdDispatcher::isOwn(FsdSession &session, const QString &sender)
{
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
        session.send(toLine(fsd::pdu::TextMessage(serverCallsign, session.identity->callsign, m_settings.greeting)));
    m_relay.introduce(session);
}

void FsdDispatcher::leave(FsdSession &session)
{
    if (session.loggedIn())
        m_relay.farewell(session);
}

void FsdDispatcher::Reader::moveTo(double latitude, double longitude) const
{
    // Written so that "nan" fails, too.
    if (!(std::abs(latitude) <= 90 && std::abs(longitude) <= 180)) {
        session.complain(FsdError::SyntaxError, {}, QStringLiteral("No such place"));
        return;
    }
    session.position = FsdPosition{latitude, longitude};
    dispatcher.m_relay.toRange(session, line);
    dispatcher.m_relay.updateFast();
}

void FsdDispatcher::Reader::operator()(const fsd::pdu::ATCPosition &report) const
{
    if (!session.identity->observer) {
        session.complain(FsdError::SyntaxError, {}, QStringLiteral("A pilot sends no controller's position"));
        return;
    }
    session.facility = static_cast<int>(report.facility);
    session.visibilityRangeNm = std::clamp(report.visibilityRange, 0, longestVisibilityNm);
    moveTo(report.latitude, report.longitude);
}

void FsdDispatcher::Reader::operator()(const fsd::pdu::Wallop &) const
{
    session.send(toLine(fsd::pdu::TextMessage(serverCallsign, session.identity->callsign,
                                              QStringLiteral("Your call to the supervisors was received."))));
    dispatcher.m_relay.toResidents(line);
}

void FsdDispatcher::Reader::operator()(const fsd::pdu::TextMessage &text) const
{
    const QStringList words = text.message.split(u':');
    if (text.To == serverCallsign && words.at(0) == QLatin1StringView("FP") && words.size() > 2) // FP : callsign : GET
        dispatcher.answerFlightPlan(session, words.at(1), false);
    else
        relay(text.To);
}

void FsdDispatcher::Reader::operator()(const fsd::pdu::ClientQuery &query) const
{
    if (query.To == serverCallsign)
        dispatcher.answerQuery(session, query);
    else
        relay(query.To);
}

void FsdDispatcher::Reader::operator()(const fsd::pdu::Ping &ping) const
{
    if (ping.To == serverCallsign)
        session.send(toLine(fsd::pdu::Pong(serverCallsign, ping.From, ping.timestamp)));
    else
        dispatcher.m_relay.toCallsign(session, ping.To, line);
}

void FsdDispatcher::Reader::operator()(const fsd::pdu::FlightPlan &plan) const
{
    session.aircraftType = plan.aircraftType;
    session.flightPlan = line;
    dispatcher.m_relay.toControllers(session, line);
}

void FsdDispatcher::onAuthResponse(FsdSession &session, const QString &line)
{
    const auto answer =
        fsd::pdu::AuthResponse::parse(line.sliced(fsd::pdu::AuthResponse::identifier.size()).split(u':'));
    if (!isOwn(session, answer.From))
        return;
    if (session.openChallenge.isEmpty() || answer.response != session.openChallenge) {
        session.refuse(FsdError::UnauthorizedClient, {}, QStringLiteral("Wrong answer to the challenge"));
        return;
    }
    session.openChallenge.clear();
}

void FsdDispatcher::answerQuery(FsdSession &session, const fsd::pdu::ClientQuery &query)
{
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
    session.send(toLine(
        fsd::pdu::ClientQueryResponse(serverCallsign, session.identity->callsign, query.queryType, std::move(answer))));
}

void FsdDispatcher::answerFlightPlan(FsdSession &session, const QString &callsign, bool withPlan)
{
    const FsdClientRecord *other = m_roster.record(callsign);
    if (!other || other->aircraftType.isEmpty()) {
        session.sendError(FsdError::NoFlightPlan, callsign, QStringLiteral("No flight plan"));
        return;
    }
    const QString answer = toLine(fsd::pdu::ClientQueryResponse(
        serverCallsign, session.identity->callsign, ClientQueryType::FlightPlan, {callsign, other->aircraftType}));
    const QString plan = withPlan ? other->flightPlan : QString();
    if (other->inCrowd) {
        session.sendQuietly((answer + plan).toLatin1());
        return;
    }
    session.send(answer);
    if (withPlan)
        session.send(plan);
}

} // namespace tarvo::practice

#include "practice/people/Resident.h"

#include "fsd/pdu/ClientQuery.h"
#include "fsd/pdu/ClientQueryResponse.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PDUFormatException.h"
#include "fsd/pdu/Ping.h"
#include "fsd/pdu/Pong.h"
#include "fsd/pdu/RadioMessage.h"
#include "fsd/pdu/TextMessage.h"
#include "practice/fsd/FsdServer.h"

#include <algorithm>
#include <utility>

namespace tarvo::practice {

using fsd::toLine;
using fsd::pdu::ClientQueryType;

namespace {
constexpr qsizetype mostToSay = 32; ///< lines that wait; a flood of questions gets no more

/// The identifier of three characters that a line begins with.
bool is(const QString &line, const char *identifier)
{
    return line.startsWith(QLatin1StringView(identifier));
}
} // namespace

Resident::Resident(FsdIdentity who, FsdServer &server, const ResidentSettings &settings, const common::Clock &clock)
    : FsdResident(std::move(who)), m_server(server), m_settings(settings), m_clock(clock)
{
}

void Resident::hear(const QString &line)
{
    try {
        read(line);
    } catch (const fsd::PDUFormatException &) {
        return; // the client that sent it has only itself to blame
    }
}

void Resident::read(const QString &line)
{
    QStringList fields = line.trimmed().split(QLatin1Char(':'));
    fields[0].remove(0, 3);
    if (is(line, "$CQ")) {
        const auto query = fsd::pdu::ClientQuery::parse(fields);
        onQuery(query.From, query.queryType, query.payload);
    } else if (is(line, "$CR")) {
        const auto response = fsd::pdu::ClientQueryResponse::parse(fields);
        onAnswer(response.From, response.queryType, response.payload);
    } else if (is(line, "#TM")) {
        readText(fields);
    } else if (is(line, "#SB") && fields.value(2) == QLatin1StringView("PIR")) {
        onPlaneInfoRequest(fields.at(0));
    } else if (is(line, "$PI")) {
        const auto ping = fsd::pdu::Ping::parse(fields);
        say(toLine(fsd::pdu::Pong(callsign(), ping.From, ping.timestamp)));
    } else if (is(line, "#AP")) {
        onPilotComes(fields.at(0));
    } else if (is(line, "#DP")) {
        onPilotLeaves(fields.at(0));
    } else if (is(line, "$SF")) {
        onFastAsked();
    }
}

void Resident::readText(const QStringList &fields)
{
    const QString to = fields.value(1);
    const QString text = fields.mid(2).join(QLatin1Char(':'));
    if (to.startsWith(u'@'))
        onRadio(fields.at(0), fsd::pdu::RadioMessage::parse(fields).frequencies, text);
    else if (to == QLatin1StringView("*S"))
        onWallop(fields.at(0), text);
    else if (!to.startsWith(u'*'))
        onText(fields.at(0), text);
}

void Resident::step()
{
    const auto due =
        std::stable_partition(m_later.begin(), m_later.end(), [&](const Later &l) { return l.dueMs > now(); });
    const QList<Later> lines(due, m_later.end());
    m_later.erase(due, m_later.end());
    for (const Later &later : lines)
        say(later.line);
}

void Resident::onQuery(const QString &from, ClientQueryType type, const QStringList &)
{
    if (type == ClientQueryType::Capabilities)
        answer(from, type,
               {QStringLiteral("VERSION=1"), QStringLiteral("ATCINFO=1"), QStringLiteral("MODELDESC=1"),
                QStringLiteral("ACCONFIG=1"), QStringLiteral("VISUPDATE=1")});
    else if (type == ClientQueryType::RealName)
        answer(from, type, {identity->realName, QStringLiteral("1")});
}

void Resident::onAnswer(const QString &, ClientQueryType, const QStringList &) {}
void Resident::onPlaneInfoRequest(const QString &) {}
void Resident::onText(const QString &, const QString &) {}
void Resident::onRadio(const QString &, const QList<quint32> &, const QString &) {}
void Resident::onWallop(const QString &, const QString &) {}
void Resident::onPilotComes(const QString &) {}
void Resident::onPilotLeaves(const QString &) {}
void Resident::onFastAsked() {}

void Resident::say(const QString &line)
{
    m_server.say(*this, line);
}

void Resident::sayLater(int delayMs, const QString &line)
{
    if (m_later.size() < mostToSay)
        m_later.append({now() + delayMs, line});
}

void Resident::answer(const QString &to, ClientQueryType type, const QStringList &payload)
{
    say(toLine(fsd::pdu::ClientQueryResponse(callsign(), to, type, payload)));
}

void Resident::writeTo(const QString &to, const QString &text)
{
    sayLater(m_settings.answerMs, toLine(fsd::pdu::TextMessage(callsign(), to, text)));
}

} // namespace tarvo::practice

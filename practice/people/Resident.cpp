#include "practice/people/Resident.h"

#include "fsd/pdu/AnyPdu.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PDUFormatException.h"
#include "practice/fsd/FsdServer.h"
#include "practice/fsd/Overloaded.h"

#include <algorithm>
#include <utility>

namespace tarvo::practice {

using fsd::toLine;
using fsd::pdu::ClientQueryType;

namespace {
constexpr qsizetype mostToSay = 32; ///< lines that wait; a flood of questions gets no more
} // namespace

Resident::Resident(FsdIdentity who, FsdServer &server, const ResidentSettings &settings, const common::Clock &clock)
    : FsdResident(std::move(who)), m_server(server), m_settings(settings), m_clock(clock)
{
}

void Resident::hear(const QString &line)
{
    using namespace fsd::pdu;
    const Overloaded reader{
        [this](const ClientQuery &query) { onQuery(query.From, query.queryType, query.payload); },
        [this](const ClientQueryResponse &answer) { onAnswer(answer.From, answer.queryType, answer.payload); },
        [this](const TextMessage &text) {
            if (!text.To.startsWith(u'*')) // to some group that he isn't of
                onText(text.From, text.message);
        },
        [this](const RadioMessage &text) { onRadio(text.From, text.frequencies, text.message); },
        [this](const Wallop &call) { onWallop(call.From, call.message); },
        [this](const PlaneInfoRequest &request) { onPlaneInfoRequest(request.From); },
        [this](const Ping &ping) { say(toLine(Pong(callsign(), ping.From, ping.timestamp))); },
        [this](const AddPilot &pilot) { onPilotComes(pilot.From); },
        [this](const DeletePilot &pilot) { onPilotLeaves(pilot.From); },
        [this](const SendFast &) { onFastAsked(); },
        [](const auto &) {}, // of no interest to a resident
    };
    try {
        std::visit(reader, fsd::parseLine(line.trimmed()));
    } catch (const fsd::PDUFormatException &) {
        return; // the client that sent it has only itself to blame
    }
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

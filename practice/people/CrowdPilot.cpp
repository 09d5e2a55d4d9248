#include "practice/people/CrowdPilot.h"

#include "common/Callsign.h"
#include "fsd/pdu/AnyPdu.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/PDUFormatException.h"
#include "practice/fsd/FsdServer.h"
#include "practice/fsd/Overloaded.h"

namespace tarvo::practice {

using namespace fsd::pdu;
using fsd::toLine;

namespace {
struct Fleet
{
    const char *airline;
    const char *type;
};

constexpr Fleet fleets[] = {{"CCA", "B738"}, {"CES", "A320"}, {"CSN", "A321"}, {"CHH", "B789"},
                            {"CXA", "B737"}, {"CSZ", "A319"}, {"CQH", "A320"}, {"CSC", "A333"}};
constexpr int firstNumber = 5000; // flight numbers above those of the resident pilots

const Fleet &fleetOf(int number)
{
    return fleets[static_cast<std::size_t>(number) % std::size(fleets)];
}

FsdIdentity identityOf(int number)
{
    return FsdResident::pilot(
        QStringLiteral("%1%2").arg(QLatin1StringView(fleetOf(number).airline)).arg(firstNumber + number),
        QString::number(20'000 + number), QStringLiteral("Crowd %1 ZBAA").arg(number + 1));
}

/// Every one of a crowd flies like this.
const QString configuration = QStringLiteral(
    R"({"config":{"is_full_data":true,"lights":{"strobe_on":true,"landing_on":false,"taxi_on":false,"beacon_on":true,)"
    R"("nav_on":true},"engines":{"1":{"on":true,"is_reversing":false},"2":{"on":true,"is_reversing":false}},)"
    R"("gear_down":false,"flaps_pct":0,"spoilers_out":false,"on_ground":false}})");

bool asksConfiguration(const ClientQuery &query)
{
    return query.payload.join(u':').startsWith(QLatin1StringView("{\"request\""));
}
} // namespace

CrowdPilot::CrowdPilot(int number, const CrowdTrack::Place &place, FsdServer &server)
    : FsdResident(identityOf(number)),
      m_server(server),
      m_place(place),
      m_type(QLatin1StringView(fleetOf(number).type)),
      m_fastStart('^' + callsign().toLatin1())
{
    inCrowd = true;
    position = CrowdTrack::positionAt(place, 0);
    aircraftType = m_type;
    flightPlan = QStringLiteral("$FP%1:%3:I:%2:450:ZBAA:0100:0100:FL310:ZSSS:2:10:4:0:ZBTJ:CROWD:DCT\r\n")
                     .arg(callsign(), m_type, common::serverCallsign);
}

void CrowdPilot::hear(const QString &line)
{
    const Overloaded reader{
        [this](const ClientQuery &query) { answer(query); },
        [this](const PlaneInfoRequest &request) {
            m_server.say(*this, toLine(PlaneInfoResponse(callsign(), request.From, m_type, {}, {}, {})));
        },
        [](const auto &) {},
    };
    try {
        std::visit(reader, fsd::parseLine(line.trimmed()));
    } catch (const fsd::PDUFormatException &) {
        return; // nobody answers that
    }
}

void CrowdPilot::answer(const ClientQuery &query)
{
    const auto respond = [&](const QStringList &payload) {
        m_server.say(*this, toLine(ClientQueryResponse(callsign(), query.From, query.queryType, payload)));
    };
    if (query.queryType == ClientQueryType::Capabilities)
        respond({QStringLiteral("VERSION=1"), QStringLiteral("ATCINFO=1"), QStringLiteral("MODELDESC=1"),
                 QStringLiteral("ACCONFIG=1"), QStringLiteral("VISUPDATE=1")});
    else if (query.queryType == ClientQueryType::RealName)
        respond({identity->realName, QStringLiteral("1")});
    else if (query.queryType == ClientQueryType::AircraftConfiguration && asksConfiguration(query))
        m_server.say(*this, toLine(ClientQuery(callsign(), query.From, query.queryType, {configuration})));
}

QByteArray CrowdPilot::slowReport(quint32 attitude) const
{
    QByteArray line = "@N:" + callsign().toLatin1() + ":2000:1:";
    appendFixed(line, position->latitude, 6);
    line += ':';
    appendFixed(line, position->longitude, 6);
    return line + ':' + QByteArray::number(m_place.altitudeFeet) + ':' + QByteArray::number(CrowdTrack::knots()) + ':' +
           QByteArray::number(attitude) + ":0\r\n";
}

} // namespace tarvo::practice

#include "practice/people/CrowdPilot.h"

#include "practice/fsd/FsdServer.h"

namespace tarvo::practice {

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

/// A question that one of a crowd answers: how it ends, and what the answer has behind the two callsigns.
struct Answer
{
    const char *identifier;
    const char *question; ///< the field behind the recipient, and with it the next one when it has a colon
    const char *answer;   ///< identifier of the answer
    const char *content;  ///< "%type" and "%name" stand for his own
};

constexpr Answer answers[] = {
    {"$CQ", "CAPS", "$CR", "CAPS:VERSION=1:ATCINFO=1:MODELDESC=1:ACCONFIG=1:VISUPDATE=1"},
    {"$CQ", "RN", "$CR", "RN:%name:1"},
    {"#SB", "PIR", "#SB", "PI:GEN:EQUIPMENT=%type"},
    {"$CQ", "ACC:{\"request\"", "$CQ",
     "ACC:{\"config\":{\"is_full_data\":true,\"lights\":{\"strobe_on\":true,\"landing_on\":false,\"taxi_on\":false,"
     "\"beacon_on\":true,\"nav_on\":true},\"engines\":{\"1\":{\"on\":true,\"is_reversing\":false},\"2\":{\"on\":true,"
     "\"is_reversing\":false}},\"gear_down\":false,\"flaps_pct\":0,\"spoilers_out\":false,\"on_ground\":false}}"},
};
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
    flightPlan = QStringLiteral("$FP%1:SERVER:I:%2:450:ZBAA:0100:0100:FL310:ZSSS:2:10:4:0:ZBTJ:CROWD:DCT\r\n")
                     .arg(callsign(), m_type);
}

void CrowdPilot::hear(const QString &line)
{
    const QString from = line.section(u':', 0, 0).mid(3);
    const QString question = line.trimmed().section(u':', 2);
    for (const Answer &row : answers) {
        if (!line.startsWith(QLatin1StringView(row.identifier)) ||
            !question.startsWith(QLatin1StringView(row.question)))
            continue;
        QString content = QLatin1StringView(row.content);
        content.replace(QLatin1StringView("%type"), m_type);
        content.replace(QLatin1StringView("%name"), identity->realName);
        m_server.say(*this, QLatin1StringView(row.answer) + callsign() + u':' + from + u':' + content +
                                QLatin1StringView("\r\n"));
        return;
    }
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

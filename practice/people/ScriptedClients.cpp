#include "practice/people/ScriptedClients.h"

#include "fsd/pdu/ATCPosition.h"
#include "fsd/pdu/FastPilotPosition.h"
#include "fsd/pdu/FlightPlan.h"
#include "fsd/pdu/PDUFormatException.h"
#include "fsd/pdu/PilotPosition.h"

namespace tarvo::practice {

namespace {
const QLatin1StringView flightPlan("$FP");

/// The fields of a line whose identifier has so many characters.
QStringList fieldsOf(const QString &line, qsizetype identifier)
{
    return line.mid(identifier).split(u':');
}

bool isFast(const QString &line)
{
    return line.startsWith(u'^') || line.startsWith(QLatin1StringView("#SL")) ||
           line.startsWith(QLatin1StringView("#ST"));
}

/// Takes over what a line tells of its sender. Throws PDUFormatException.
void learn(FsdClientRecord &record, const QString &line)
{
    using fsd::pdu::FastPilotPositionType;
    if (line.startsWith(u'@')) {
        const auto report = fsd::pdu::PilotPosition::parse(fieldsOf(line, 1));
        record.position = FsdPosition{report.latitude, report.longitude};
    } else if (line.startsWith(u'%')) {
        const auto report = fsd::pdu::ATCPosition::parse(fieldsOf(line, 1));
        record.position = FsdPosition{report.latitude, report.longitude};
        record.facility = static_cast<int>(report.facility);
        record.visibilityRangeNm = report.visibilityRange;
    } else if (isFast(line)) {
        const auto type =
            line.startsWith(QLatin1StringView("#ST")) ? FastPilotPositionType::Stopped : FastPilotPositionType::Fast;
        const auto report = fsd::pdu::FastPilotPosition::parse(fieldsOf(line, line.startsWith(u'^') ? 1 : 3), type);
        record.position = FsdPosition{report.latitude, report.longitude};
    } else if (line.startsWith(flightPlan)) {
        record.aircraftType = fsd::pdu::FlightPlan::parse(fieldsOf(line, 3)).aircraftType;
        record.flightPlan = line + QLatin1StringView("\r\n");
    }
}

/// Who sends a line.
QString senderOf(const QString &line)
{
    if (line.startsWith(u'@'))
        return line.section(u':', 1, 1);
    const qsizetype identifier = line.startsWith(u'^') || line.startsWith(u'%') ? 1 : 3;
    return line.section(u':', 0, 0).mid(identifier);
}
} // namespace

/// It hears everything and answers nothing: the server's log has what was said to it.
class ScriptedClients::Client : public FsdResident
{
public:
    using FsdResident::FsdResident;

    void hear(const QString &) override {}
};

ScriptedClients::ScriptedClients(FsdServer &server) : m_server(server) {}

ScriptedClients::~ScriptedClients()
{
    for (const auto &[callsign, client] : m_clients)
        m_server.removeResident(*client);
}

bool ScriptedClients::join(const QString &callsign, const QString &cid, const QString &realName, bool controller)
{
    if (callsign.isEmpty() || m_server.callsigns().contains(callsign))
        return false;
    auto client = std::make_unique<Client>(controller ? FsdResident::controller(callsign, cid, realName)
                                                      : FsdResident::pilot(callsign, cid, realName));
    if (!m_server.addResident(*client))
        return false;
    m_clients.emplace(callsign, std::move(client));
    return true;
}

bool ScriptedClients::leave(const QString &callsign)
{
    const auto found = m_clients.find(callsign);
    if (found == m_clients.end())
        return false;
    const std::unique_ptr<Client> client = std::move(found->second);
    m_clients.erase(found);
    m_server.removeResident(*client);
    return true;
}

bool ScriptedClients::speak(const QString &callsign, const QString &line)
{
    const auto found = m_clients.find(callsign);
    if (found == m_clients.end() || senderOf(line) != callsign)
        return false;
    try {
        learn(*found->second, line);
    } catch (const fsd::PDUFormatException &) {
        return false;
    }
    return m_server.say(*found->second, line + QLatin1StringView("\r\n")) || line.startsWith(flightPlan);
}

QStringList ScriptedClients::callsigns() const
{
    QStringList list;
    for (const auto &[callsign, client] : m_clients)
        list.append(callsign);
    return list;
}

} // namespace tarvo::practice

#include "practice/people/ScriptedClients.h"

#include "fsd/pdu/AnyPdu.h"
#include "fsd/pdu/PDUFormatException.h"
#include "practice/fsd/FsdResident.h"
#include "practice/fsd/FsdServer.h"
#include "practice/fsd/Overloaded.h"

namespace tarvo::practice {

namespace {
/// Takes over what a line, without its line end, tells of its sender.
void learn(FsdClientRecord &record, const fsd::AnyPdu &pdu, const QString &line)
{
    using namespace fsd::pdu;
    const auto moveTo = [&](const auto &report) { record.position = FsdPosition{report.latitude, report.longitude}; };
    std::visit(Overloaded{
                   [&](const PilotPosition &report) { moveTo(report); },
                   [&](const FastPilotPosition &report) { moveTo(report); },
                   [&](const ATCPosition &report) {
                       moveTo(report);
                       record.facility = static_cast<int>(report.facility);
                       record.visibilityRangeNm = report.visibilityRange;
                   },
                   [&](const FlightPlan &plan) {
                       record.aircraftType = plan.aircraftType;
                       record.flightPlan = line + QLatin1StringView("\r\n");
                   },
                   [](const auto &) {},
               },
               pdu);
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
    if (found == m_clients.end())
        return false;
    try {
        const fsd::AnyPdu pdu = fsd::parseLine(line);
        if (std::visit([](const fsd::pdu::PduBase &base) { return base.From; }, pdu) != callsign)
            return false;
        learn(*found->second, pdu, line);
        const bool heard = m_server.say(*found->second, line + QLatin1StringView("\r\n"));
        return heard || std::holds_alternative<fsd::pdu::FlightPlan>(pdu);
    } catch (const fsd::PDUFormatException &) {
        return false;
    }
}

QStringList ScriptedClients::callsigns() const
{
    QStringList list;
    for (const auto &[callsign, client] : m_clients)
        list.append(callsign);
    return list;
}

} // namespace tarvo::practice

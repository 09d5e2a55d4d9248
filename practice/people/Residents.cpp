#include "practice/people/Residents.h"

#include "practice/flight/Patterns.h"
#include "practice/fsd/FsdServer.h"
#include "practice/people/ResidentController.h"
#include "practice/people/ResidentPilot.h"
#include "practice/people/ResidentSupervisor.h"

namespace tarvo::practice {

namespace {
constexpr int residentStepMs = 50;

struct PilotRow
{
    const char *callsign, *cid, *realName, *equipment, *livery, *csl, *airline, *filedType, *destination;
    int squawk;
    const Pattern &(*pattern)();
    const char *startPhase;
};

/// One on the circuit, who lowers flaps and gear and switches his lights as he goes; one with a livery and a model
/// hint; one who tells his type but filed nothing; and one whose client doesn't know the question for the type, so that
/// only his flight plan tells it.
constexpr PilotRow pilotRows[] = {
    {"CES2117", "9001", "Chen Yu ZSPD", "B738", "", "", "CES", "B738/L", "ZSPD", 3401, westCircuit, "downwind"},
    {"CCA908", "9002", "Zhao Ming ZBAA", "A333", "SWIFT_A333_CCA", "A333_CCA", "CCA", "H/A333/L", "ZGGG", 3402,
     racetrack, "climb"},
    {"CHH7182", "9003", "Wu Lan ZJHK", "E190", "", "", "CHH", "", "", 3403, apronTaxi, "taxi"},
    {"BAW38", "9004", "Tom Baker EGLL", "", "", "", "", "H/B789/L", "EGLL", 3404, holdingPoint, "holding"},
};

struct ControllerRow
{
    const char *callsign, *cid, *realName;
    quint32 frequency; ///< kHz
    int facility, rangeNm;
    const char *atis; ///< lines
    const char *logoff;
    bool talks;
};

constexpr ControllerRow controllerRows[] = {
    {"ZBAA_TWR", "9011", "Liu Fang", 118'500, 4, 60,
     "Beijing Tower, 118.500\nRunway 36R in use, wind calm, QNH 1013\nText me for a SELCAL check", "1500z", true},
    {"ZBAA_GND", "9012", "Sun Hao", 121'900, 3, 30, "Beijing Ground, 121.900\nPush-back and taxi: on request", "",
     false},
    {"ZBAA_APP", "9013", "Ma Li", 119'000, 5, 150, "Beijing Approach, 119.000\nExpect the ILS approach, runway 36R",
     "1700z", false},
};

PilotProfile profileOf(const PilotRow &row)
{
    return {.callsign = QLatin1String(row.callsign),
            .cid = QLatin1String(row.cid),
            .realName = QLatin1String(row.realName),
            .equipment = QLatin1String(row.equipment),
            .livery = QLatin1String(row.livery),
            .csl = QLatin1String(row.csl),
            .airline = QLatin1String(row.airline),
            .filedType = QLatin1String(row.filedType),
            .destination = QLatin1String(row.destination),
            .squawk = row.squawk,
            .pattern = row.pattern(),
            .startPhase = QLatin1String(row.startPhase)};
}

ControllerProfile profileOf(const ControllerRow &row)
{
    constexpr double latitude = 40.0725;
    constexpr double longitude = 116.5975;
    return {.callsign = QLatin1String(row.callsign),
            .cid = QLatin1String(row.cid),
            .realName = QLatin1String(row.realName),
            .frequency = row.frequency,
            .facility = row.facility,
            .rangeNm = row.rangeNm,
            .latitude = latitude,
            .longitude = longitude,
            .atis = QString::fromLatin1(row.atis).split(u'\n'),
            .logoff = QLatin1String(row.logoff),
            .talks = row.talks};
}
} // namespace

Residents::Residents(FsdServer &server, const ResidentSettings &settings, const common::Clock &clock, QObject *parent)
    : QObject(parent), m_server(server), m_settings(settings), m_clock(clock)
{
    connect(&m_timer, &QTimer::timeout, this, &Residents::step);
}

Residents::~Residents()
{
    stop();
}

void Residents::start()
{
    if (!m_members.empty())
        return;
    for (const ControllerRow &row : controllerRows)
        add(std::make_unique<ResidentController>(profileOf(row), m_server, m_settings, m_clock));
    for (const PilotRow &row : pilotRows)
        add(std::make_unique<ResidentPilot>(profileOf(row), m_server, m_settings, m_clock));
    auto supervisor = std::make_unique<ResidentSupervisor>(m_server, m_settings, m_clock);
    ResidentSupervisor *const candidate = supervisor.get();
    m_supervisor = add(std::move(supervisor)) ? candidate : nullptr;
    m_timer.start(residentStepMs);
}

bool Residents::add(std::unique_ptr<Resident> member)
{
    if (!m_server.addResident(*member))
        return false;
    m_members.push_back(std::move(member));
    return true;
}

void Residents::stop()
{
    m_timer.stop();
    m_supervisor = nullptr;
    for (const auto &member : m_members)
        m_server.removeResident(*member);
    m_members.clear();
}

void Residents::step()
{
    for (const auto &member : m_members)
        member->step();
}

void Residents::broadcast(const QString &text)
{
    if (m_supervisor)
        m_supervisor->broadcast(text);
}

} // namespace tarvo::practice

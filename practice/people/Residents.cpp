#include "practice/people/Residents.h"

#include "practice/flight/Patterns.h"
#include "practice/fsd/FsdServer.h"
#include "practice/people/ResidentController.h"
#include "practice/people/ResidentPilot.h"
#include "practice/people/ResidentSupervisor.h"

namespace tarvo::practice {

namespace {
constexpr int residentStepMs = 50;

/// One on the circuit, who lowers flaps and gear and switches his lights as he goes; one with a livery and a model
/// hint; one who tells his type but filed nothing; and one whose client doesn't know the question for the type, so that
/// only his flight plan tells it.
std::vector<PilotProfile> pilots()
{
    return {
        {.callsign = QStringLiteral("CES2117"),
         .cid = QStringLiteral("9001"),
         .realName = QStringLiteral("Chen Yu ZSPD"),
         .equipment = QStringLiteral("B738"),
         .livery = {},
         .csl = {},
         .airline = QStringLiteral("CES"),
         .filedType = QStringLiteral("B738/L"),
         .destination = QStringLiteral("ZSPD"),
         .squawk = 3401,
         .pattern = westCircuit(),
         .startPhase = QStringLiteral("downwind")},
        {.callsign = QStringLiteral("CCA908"),
         .cid = QStringLiteral("9002"),
         .realName = QStringLiteral("Zhao Ming ZBAA"),
         .equipment = QStringLiteral("A333"),
         .livery = QStringLiteral("SWIFT_A333_CCA"),
         .csl = QStringLiteral("A333_CCA"),
         .airline = QStringLiteral("CCA"),
         .filedType = QStringLiteral("H/A333/L"),
         .destination = QStringLiteral("ZGGG"),
         .squawk = 3402,
         .pattern = racetrack(),
         .startPhase = QStringLiteral("climb")},
        {.callsign = QStringLiteral("CHH7182"),
         .cid = QStringLiteral("9003"),
         .realName = QStringLiteral("Wu Lan ZJHK"),
         .equipment = QStringLiteral("E190"),
         .livery = {},
         .csl = {},
         .airline = QStringLiteral("CHH"),
         .filedType = {},
         .destination = {},
         .squawk = 3403,
         .pattern = apronTaxi(),
         .startPhase = QStringLiteral("taxi")},
        {.callsign = QStringLiteral("BAW38"),
         .cid = QStringLiteral("9004"),
         .realName = QStringLiteral("Tom Baker EGLL"),
         .equipment = {},
         .livery = {},
         .csl = {},
         .airline = {},
         .filedType = QStringLiteral("H/B789/L"),
         .destination = QStringLiteral("EGLL"),
         .squawk = 3404,
         .pattern = holdingPoint(),
         .startPhase = QStringLiteral("holding")},
    };
}

std::vector<ControllerProfile> controllers()
{
    constexpr double latitude = 40.0725;
    constexpr double longitude = 116.5975;
    return {
        {.callsign = QStringLiteral("ZBAA_TWR"),
         .cid = QStringLiteral("9011"),
         .realName = QStringLiteral("Liu Fang"),
         .frequency = 118'500,
         .facility = 4,
         .rangeNm = 60,
         .latitude = latitude,
         .longitude = longitude,
         .atis = {QStringLiteral("Beijing Tower, 118.500"), QStringLiteral("Runway 36R in use, wind calm, QNH 1013"),
                  QStringLiteral("Text me for a SELCAL check")},
         .logoff = QStringLiteral("1500z"),
         .talks = true},
        {.callsign = QStringLiteral("ZBAA_GND"),
         .cid = QStringLiteral("9012"),
         .realName = QStringLiteral("Sun Hao"),
         .frequency = 121'900,
         .facility = 3,
         .rangeNm = 30,
         .latitude = latitude,
         .longitude = longitude,
         .atis = {QStringLiteral("Beijing Ground, 121.900"), QStringLiteral("Push-back and taxi: on request")},
         .logoff = {},
         .talks = false},
        {.callsign = QStringLiteral("ZBAA_APP"),
         .cid = QStringLiteral("9013"),
         .realName = QStringLiteral("Ma Li"),
         .frequency = 119'000,
         .facility = 5,
         .rangeNm = 150,
         .latitude = latitude,
         .longitude = longitude,
         .atis = {QStringLiteral("Beijing Approach, 119.000"), QStringLiteral("Expect the ILS approach, runway 36R")},
         .logoff = QStringLiteral("1700z"),
         .talks = false},
    };
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
    addControllers();
    addPilots();
    auto supervisor = std::make_unique<ResidentSupervisor>(m_server, m_settings, m_clock);
    ResidentSupervisor *const candidate = supervisor.get();
    m_supervisor = add(std::move(supervisor)) ? candidate : nullptr;
    m_timer.start(residentStepMs);
}

void Residents::addPilots()
{
    for (const PilotProfile &profile : pilots())
        add(std::make_unique<ResidentPilot>(profile, m_server, m_settings, m_clock));
}

void Residents::addControllers()
{
    for (const ControllerProfile &profile : controllers())
        add(std::make_unique<ResidentController>(profile, m_server, m_settings, m_clock));
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

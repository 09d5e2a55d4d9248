#include "practice/people/Crowd.h"

#include "practice/fsd/FsdServer.h"
#include "practice/people/CrowdPilot.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

namespace tarvo::practice {

namespace {
constexpr int stepMs = 10;
constexpr FsdPosition field{40.07, 116.60};
constexpr double spreadDegrees = 0.4;       // of latitude: 24 miles
constexpr double goldenAngle = 2.399963230; // radians; neighbours by number are far apart, and none share a place

CrowdTrack::Place placeOf(int index, int count)
{
    const double angle = index * goldenAngle;
    const double distance = spreadDegrees * std::sqrt((index + 0.5) / count);
    const FsdPosition centre{field.latitude + distance * std::cos(angle),
                             field.longitude +
                                 distance * std::sin(angle) / std::cos(qDegreesToRadians(field.latitude))};
    constexpr int lowest = 3000; // feet
    constexpr int levels = 200;
    return CrowdTrack::place(centre, angle, lowest + index % levels * 100);
}

/// The reports that are due when each of `count` pilots sends `rateHz` of them a second, one after the other: from
/// `said` on, no more than one from each. Moves `said` on.
template <class Report>
void forDue(double seconds, double rateHz, std::size_t count, qint64 &said, const Report &report)
{
    const auto round = static_cast<qint64>(count);
    const auto due = static_cast<qint64>(seconds * rateHz * static_cast<double>(count));
    for (said = std::max(said, due - round); said < due; ++said)
        report(static_cast<std::size_t>(said % round));
}
} // namespace

Crowd::Crowd(FsdServer &server, const CrowdSettings &settings, const common::Clock &clock, QObject *parent)
    : QObject(parent), m_server(server), m_settings(settings), m_clock(clock)
{
    m_settings.pilots = std::clamp(m_settings.pilots, 0, CrowdSettings::mostPilots);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Crowd::step);
}

Crowd::~Crowd()
{
    stop();
}

void Crowd::start()
{
    if (!m_pilots.empty())
        return;
    for (int i = 0; i < m_settings.pilots; ++i) {
        auto pilot = std::make_unique<CrowdPilot>(i, placeOf(i, m_settings.pilots), m_server);
        if (m_server.addResident(*pilot)) // else somebody has that callsign
            m_pilots.push_back(std::move(pilot));
    }
    m_startMs = m_clock.steadyMs();
    m_saidFast = m_saidSlow = 0;
    m_timer.start(stepMs);
}

void Crowd::stop()
{
    m_timer.stop();
    for (const auto &pilot : m_pilots)
        m_server.removeResident(*pilot);
    m_pilots.clear();
}

void Crowd::step()
{
    if (m_pilots.empty())
        return;
    const double seconds = static_cast<double>(m_clock.steadyMs() - m_startMs) / 1000.0;
    saySlow(seconds);
    sayFast(seconds);
}

void Crowd::sayFast(double seconds)
{
    QList<FsdReport> reports;
    forDue(seconds, m_settings.rateHz, m_pilots.size(), m_saidFast, [&](std::size_t index) {
        CrowdPilot &pilot = *m_pilots[index];
        pilot.moveTo(CrowdTrack::positionAt(pilot.place(), seconds));
        reports.append({&pilot, pilot.fastStart() + m_track.fastTail(pilot.place(), seconds)});
    });
    m_server.sayPositions(reports);
}

void Crowd::saySlow(double seconds)
{
    QList<FsdReport> reports;
    forDue(seconds, 1000.0 / m_settings.slowIntervalMs, m_pilots.size(), m_saidSlow, [&](std::size_t index) {
        CrowdPilot &pilot = *m_pilots[index];
        pilot.moveTo(CrowdTrack::positionAt(pilot.place(), seconds));
        reports.append({&pilot, pilot.slowReport(m_track.attitude(pilot.place(), seconds))});
    });
    m_server.sayPositions(reports);
}

} // namespace tarvo::practice

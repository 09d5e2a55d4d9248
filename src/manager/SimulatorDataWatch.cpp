#include "manager/SimulatorDataWatch.h"
#include "model/UserAircraftData.h"

#include <algorithm>
#include <cmath>

namespace tarvo::manager {

namespace {
constexpr int samplesToTrust = 3;
constexpr qint64 staleAfterMs = 3000;
} // namespace

bool isLive(const model::UserAircraftData &data)
{
    const auto exceeds = [](double value, double limit) { return std::abs(value) > limit; };
    return exceeds(data.groundSpeed, 0.1) || exceeds(data.altitudeMslM, 0.1) ||
           exceeds(data.latitudeVelocity, 0.0001) || exceeds(data.longitudeVelocity, 0.0001) ||
           exceeds(data.altitudeVelocity, 0.0001) || exceeds(data.latitude, 0.000001) ||
           exceeds(data.longitude, 0.000001);
}

bool SimulatorDataWatch::addSample(const model::UserAircraftData &data, qint64 nowMs)
{
    if (!isLive(data))
        return false;
    m_lastSampleMs = nowMs;
    m_sampleCount = std::min(m_sampleCount + 1, samplesToTrust);
    if (m_valid || m_sampleCount < samplesToTrust)
        return false;
    m_valid = true;
    return true;
}

void SimulatorDataWatch::simulatorConnected()
{
    m_valid = true;
    m_lastSampleMs = 0; // on purpose: a pilot can't connect until a live sample has come
}

void SimulatorDataWatch::keepAlive(qint64 nowMs)
{
    if (m_valid && m_lastSampleMs > 0)
        m_lastSampleMs = nowMs;
}

bool SimulatorDataWatch::expire(qint64 nowMs)
{
    if (!m_valid || m_lastSampleMs <= 0 || nowMs - m_lastSampleMs <= staleAfterMs)
        return false;
    m_valid = false;
    m_sampleCount = 0;
    return true;
}

} // namespace tarvo::manager

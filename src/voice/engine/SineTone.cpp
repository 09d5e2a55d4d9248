#include "voice/engine/SineTone.h"

#include <algorithm>
#include <cmath>

namespace tarvo::voice {

namespace {

constexpr float twoPi = 6.2831855F;

int periodOf(int sampleRate, float frequency)
{
    if (!(frequency > 0))
        return 1;
    const float period = static_cast<float>(sampleRate) / frequency;
    return static_cast<int>(std::min(period, static_cast<float>(std::max(sampleRate, 1))));
}

} // namespace

SineTone::SineTone(int sampleRate, float frequency, float amplitude)
    : m_sampleRate(sampleRate), m_frequency(frequency), m_amplitude(amplitude)
{
    rebuild();
}

void SineTone::setSampleRate(int sampleRate)
{
    m_sampleRate = sampleRate;
    rebuild();
}

void SineTone::setFrequency(float frequency)
{
    m_frequency = frequency;
    rebuild();
}

void SineTone::rebuild()
{
    m_position = 0;
    m_table.resize(static_cast<std::size_t>(std::max(periodOf(m_sampleRate, m_frequency), 1)));
    m_table[0] = 0; // also where the frequency is no number
    for (std::size_t i = 1; i < m_table.size(); ++i)
        m_table[i] =
            std::sin(static_cast<float>(i) * twoPi * m_frequency / static_cast<float>(m_sampleRate)) * m_amplitude;
}

void SineTone::take(std::span<float> samples, float volume, int channels)
{
    const auto together = static_cast<std::size_t>(channels);
    for (std::size_t start = 0; start < samples.size(); start += together) {
        const std::span<float> moment = samples.subspan(start, std::min(together, samples.size() - start));
        std::fill(moment.begin(), moment.end(), m_table[m_position] * volume);
        m_position = (m_position + 1) % m_table.size();
    }
}

} // namespace tarvo::voice

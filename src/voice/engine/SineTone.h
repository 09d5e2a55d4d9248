#pragma once

#include <span>
#include <vector>

namespace tarvo::voice {

/// A tone without end: one period as a table, in whole samples. Its pitch is therefore `sampleRate` / `period`, a
/// little off the frequency that was asked for.
class SineTone
{
public:
    /// `sampleRate` and `frequency` in Hz. A period is one sample to one second; a frequency of 0 or less, or none, has
    /// a period of one sample. `amplitude`: the peak, 0 to 1.
    SineTone(int sampleRate, float frequency, float amplitude);

    // Each begins the tone anew.
    void setSampleRate(int sampleRate);
    void setFrequency(float frequency);

    int sampleRate() const { return m_sampleRate; }
    /// Samples of a period.
    int period() const { return static_cast<int>(m_table.size()); }

    /// Fills `samples` with what comes next, times `volume`; each sample of the tone once for each of the interleaved
    /// channels.
    void take(std::span<float> samples, float volume, int channels = 1);

private:
    void rebuild();

    int m_sampleRate;
    float m_frequency;
    float m_amplitude;
    std::vector<float> m_table;
    std::size_t m_position = 0; ///< where the next sample comes from
};

} // namespace tarvo::voice

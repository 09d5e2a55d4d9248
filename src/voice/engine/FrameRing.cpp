#include "voice/engine/FrameRing.h"

#include <algorithm>

namespace tarvo::voice {

void FrameRing::push(std::span<const float> samples)
{
    if (isFull())
        return;
    const std::size_t place = (m_first + m_count * m_frameSize) % m_samples.size();
    const std::span<float> frame = std::span(m_samples).subspan(place, m_frameSize);
    const std::span<const float> fitting = samples.first(std::min(samples.size(), m_frameSize));
    std::fill(std::copy(fitting.begin(), fitting.end(), frame.begin()), frame.end(), 0.0F);
    ++m_count;
}

std::span<const float> FrameRing::pop()
{
    if (isEmpty())
        return {};
    const std::span<const float> frame = std::span(m_samples).subspan(m_first, m_frameSize);
    m_first = (m_first + m_frameSize) % m_samples.size();
    --m_count;
    return frame;
}

} // namespace tarvo::voice

#include "voice/engine/OutputMixer.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace tarvo::voice {

namespace {

constexpr std::size_t localFrames = 16;
constexpr std::size_t channelFrames = 32; // 640 ms
constexpr std::size_t usualChannels = 8;  // more than a client has; the map of so many is never moved

} // namespace

OutputMixer::OutputMixer(std::size_t frameSize) : m_frameSize(frameSize), m_local(localFrames, frameSize)
{
    m_channels.reserve(usualChannels);
}

bool OutputMixer::hasChannel(int id)
{
    const std::scoped_lock lock(m_mutex);
    return m_channels.contains(id);
}

void OutputMixer::addChannel(int id)
{
    if (hasChannel(id))
        return;
    decltype(m_channels) added; // before the audio thread would wait for the memory
    added.try_emplace(id, channelFrames, m_frameSize);
    const std::scoped_lock lock(m_mutex);
    m_channels.insert(added.extract(id));
}

void OutputMixer::removeChannel(int id)
{
    decltype(m_channels)::node_type removed; // freed behind the lock
    const std::scoped_lock lock(m_mutex);
    removed = m_channels.extract(id);
}

void OutputMixer::pushLocal(std::span<const float> frame)
{
    if (frame.empty())
        return;
    const std::scoped_lock lock(m_mutex);
    m_local.push(frame);
}

void OutputMixer::pushVoice(int channel, std::span<const float> samples)
{
    const std::scoped_lock lock(m_mutex);
    const auto frames = m_channels.find(channel);
    if (frames == m_channels.end())
        return;
    for (std::size_t start = 0; start < samples.size() && !frames->second.isFull(); start += m_frameSize)
        frames->second.push(samples.subspan(start));
}

void OutputMixer::mix(std::span<float> out)
{
    std::fill(out.begin(), out.end(), 0.0F);
    const std::scoped_lock lock(m_mutex);
    if (!m_local.isEmpty()) {
        const std::span<const float> frame = m_local.pop();
        std::copy_n(frame.begin(), std::min(frame.size(), out.size()), out.begin());
        return;
    }
    bool isSilent = true;
    for (auto &[id, frames] : m_channels) {
        const std::span<const float> frame = frames.pop();
        std::transform(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(std::min(frame.size(), out.size())),
                       out.begin(), out.begin(), std::plus<>());
        isSilent = isSilent && frame.empty();
    }
    if (isSilent)
        return; // as most of the time
    for (float &sample : out)
        sample = std::tanh(sample);
}

} // namespace tarvo::voice

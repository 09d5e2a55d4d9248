#pragma once

#include "voice/engine/FrameRing.h"

#include <mutex>
#include <span>
#include <unordered_map>

namespace tarvo::voice {

/// What waits to be heard on one output: frames of 20 ms, for each channel and for the sounds of our own, which come
/// first. One thread puts in, and the audio thread takes out.
class OutputMixer
{
public:
    /// `frameSize`: the samples of a frame over the device's channels, over 0.
    explicit OutputMixer(std::size_t frameSize);

    void addChannel(int id);    ///< nothing for one that is there
    void removeChannel(int id); ///< with what it holds

    /// Appends a sound of our own. Dropped behind 16 of them, and when it is empty.
    void pushLocal(std::span<const float> frame);

    /// Appends sound of any length to a channel in frames, the last of which ends with silence. There is no jitter
    /// buffer: it plays at once, and a frame behind 32 of them is dropped. All is dropped without the channel.
    void pushVoice(int channel, std::span<const float> samples);

    /// Fills `out` with the next of our own sounds; without one with the sum of the channels' next frames, softly
    /// clipped. A local sound delays voice, they never mix. Allocates and frees nothing.
    void mix(std::span<float> out);

private:
    bool hasChannel(int id);

    const std::size_t m_frameSize;
    std::mutex m_mutex; ///< guards both below
    std::unordered_map<int, FrameRing> m_channels;
    FrameRing m_local;
};

} // namespace tarvo::voice

#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tarvo::voice {

/// A queue of frames of one size in memory that is taken once: putting in and taking out allocates and frees nothing.
class FrameRing
{
public:
    /// At most `capacity` frames of `frameSize` samples, both over 0.
    FrameRing(std::size_t capacity, std::size_t frameSize) : m_frameSize(frameSize), m_samples(capacity * frameSize) {}

    bool isEmpty() const { return m_count == 0; }
    bool isFull() const { return m_count * m_frameSize == m_samples.size(); }

    /// Appends a frame that begins with `samples`, as many as fit, and ends with silence. Nothing when full.
    void push(std::span<const float> samples);
    /// The oldest frame, which is valid until the next push(); empty when there is none.
    std::span<const float> pop();

private:
    std::size_t m_frameSize;
    std::vector<float> m_samples;
    std::size_t m_first = 0; ///< the oldest frame's place in `m_samples`
    std::size_t m_count = 0;
};

} // namespace tarvo::voice

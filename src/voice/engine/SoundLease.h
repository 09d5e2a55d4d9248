#pragma once

#include <memory>

namespace tarvo::voice {

class SoundThread;

/// Has PortAudio held on the SoundThread for as long as it lives; neither its beginning nor its end waits for that.
class SoundLease
{
public:
    explicit SoundLease(std::shared_ptr<SoundThread> sound);
    ~SoundLease();
    SoundLease(const SoundLease &) = delete;
    SoundLease &operator=(const SoundLease &) = delete;

    /// False: the thread had no room for it, and it holds nothing.
    bool isTaken() const { return m_isTaken; }

private:
    std::shared_ptr<SoundThread> m_sound;
    std::shared_ptr<bool> m_isInitialized; ///< the sound thread's
    bool m_isTaken;
};

} // namespace tarvo::voice

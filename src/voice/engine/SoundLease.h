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

private:
    std::shared_ptr<SoundThread> m_sound;
    std::shared_ptr<bool> m_isInitialized; ///< the sound thread's
};

} // namespace tarvo::voice

#include "voice/engine/SoundLease.h"

#include "voice/engine/SoundSystem.h"
#include "voice/engine/SoundThread.h"

#include <utility>

namespace tarvo::voice {

SoundLease::SoundLease(std::shared_ptr<SoundThread> sound)
    : m_sound(std::move(sound)), m_isInitialized(std::make_shared<bool>(false))
{
    m_isTaken = m_sound->post([isInitialized = m_isInitialized] { *isInitialized = initializeSound(); });
}

SoundLease::~SoundLease()
{
    if (!m_isTaken)
        return;
    m_sound->post([isInitialized = m_isInitialized] {
        if (*isInitialized)
            terminateSound();
    });
}

} // namespace tarvo::voice

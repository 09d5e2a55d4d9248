#pragma once

#include "AppConfig.h"
#include "support/SoundServer.h"
#include "voice/engine/AudioHandler.h"
#include "voice/engine/SoundSystem.h"
#include "voice/engine/SoundThread.h"

#include <QByteArray>
#include <QTemporaryDir>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

namespace tarvo::test {

/// The program's one sound server, running.
SoundServer &soundServer();

/// An engine on the sound server: headphone "spk_a", speaker "spk_b", microphone "mic_a".
class SoundStage
{
public:
    SoundStage();

    SoundServer &server = soundServer();
    QTemporaryDir folder;
    AppConfig config{folder.path()};
    std::shared_ptr<voice::SoundThread> sound = std::make_shared<voice::SoundThread>(std::chrono::milliseconds(300));
    std::optional<voice::AudioHandler> audio;

    /// PortAudio's index of the device of that name; -1 for none.
    int device(const char *name) const;
    /// Starts all three streams; true when the outputs run.
    bool startAll();
    /// Plays half a second of speech to the headphone until it is heard well there, which gaps of a busy machine may
    /// hinder; how like it is what was heard best, at most 1.
    double likenessOfSpeech();

    static constexpr double heardWell = 0.8; ///< a likeness
    std::vector<voice::DeviceEvent> events;  ///< of the engine's devices
};

} // namespace tarvo::test

#pragma once

#include "AppConfig.h"
#include "support/Patience.h"
#include "voice/engine/AudioHandler.h"
#include "voice/engine/ScriptedSound.h"
#include "voice/engine/SoundThread.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace tarvo::test {

/// An engine on a sound system of which the test says what it does.
struct WishStage
{
    using Roles = std::set<voice::StreamRole>;
    using Events = std::vector<std::pair<voice::DeviceEvent, Roles>>;

    WishStage()
    {
        audio.emplace(config, sound, nullptr, system.access());
        QObject::connect(&*audio, &voice::AudioHandler::deviceEvent, &*audio,
                         [this](voice::DeviceEvent event, const std::vector<voice::StreamRole> &roles) {
                             events.emplace_back(event, Roles(roles.begin(), roles.end()));
                         });
    }

    QTimer &timer(const char *name) const { return *audio->findChild<QTimer *>(QLatin1String(name)); }
    /// Lets the sound thread do all that is to be done now.
    void settle() const
    {
        // One round's outcome may begin another at once, and that is seen nowhere until it is done.
        for (int turns = 3; turns > 0 || pause() == std::chrono::milliseconds(0); --turns) {
            QCoreApplication::processEvents();
            sound->waitUntilIdle(std::chrono::milliseconds(patienceMs));
            QCoreApplication::processEvents();
        }
    }
    /// When the sound thread goes on by itself; nothing: not at all.
    std::optional<std::chrono::milliseconds> pause() const
    {
        return timer("next").isActive() ? std::optional(timer("next").intervalAsDuration()) : std::nullopt;
    }
    /// Lets that time pass.
    void pass() const
    {
        timer("next").stop(); // as a single shot does before it tells
        QMetaObject::invokeMethod(&timer("next"), "timeout");
        settle();
    }
    /// What has happened since the last question.
    Events takeEvents() { return std::exchange(events, {}); }

    QTemporaryDir folder;
    AppConfig config{folder.path()};
    ScriptedSound system;
    std::shared_ptr<voice::SoundThread> sound = std::make_shared<voice::SoundThread>();
    std::optional<voice::AudioHandler> audio;
    Events events;
};

} // namespace tarvo::test

#pragma once

#include <functional>
#include <memory>

class QUrl;

namespace tarvo::ui {

/// What lets a sound be heard. Any call, the making and the destroying too, may have to wait for the sound system:
/// for a second on a busy machine, for minutes when a sound server takes connections and never answers.
class SoundOutput
{
public:
    using Factory = std::function<std::unique_ptr<SoundOutput>()>;

    SoundOutput() = default;
    SoundOutput(const SoundOutput &) = delete;
    SoundOutput &operator=(const SoundOutput &) = delete;
    virtual ~SoundOutput() = default;

    /// Begins the sound anew, whatever is heard at the moment. `volume`: 0.0 to 1.0.
    virtual void begin(const QUrl &url, float volume) = 0;
};

} // namespace tarvo::ui

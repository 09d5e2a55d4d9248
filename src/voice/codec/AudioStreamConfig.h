#pragma once

#include <QtGlobal>

#include <optional>

namespace tarvo::voice {

/// How a device is opened.
struct AudioStreamConfig
{
    qint32 sampleRate = 44100;    ///< Hz
    qint32 channels = 1;          ///< 1 or 2
    qint32 framesPerBuffer = 882; ///< samples in 20 ms, over all channels
    std::optional<qint32> device; ///< PortAudio's index; nothing: the default device

    bool operator==(const AudioStreamConfig &) const = default;
};

} // namespace tarvo::voice

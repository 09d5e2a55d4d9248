#pragma once

#include <QtGlobal>

namespace tarvo::voice {

/// One radio as the voice service and the audio engine see it.
struct Transmitter
{
    quint32 id = 0;          ///< 0: COM1, 1: COM2
    quint32 frequency = 0;   ///< the active one, in kHz; 0 when not tuned
    bool transmit = false;   ///< the radio that transmits
    bool receive = false;    ///< heard
    float volume = 1;        ///< 0 to 1
    bool useSpeaker = false; ///< heard on the speaker instead of the headphone

    bool operator==(const Transmitter &) const = default;
};

} // namespace tarvo::voice

#pragma once

namespace tarvo::voice {

// The form of all voice on the network, whatever rate a device has.
constexpr int codecSampleRate = 48000; ///< Hz
constexpr int codecFrameSize = 960;    ///< samples of one channel in a frame of 20 ms

constexpr float int16ToFloat = 1.0F / 32768; ///< turns a 16-bit sample into one between -1 and 1

} // namespace tarvo::voice

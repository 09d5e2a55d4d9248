#pragma once

namespace tarvo::voice {

/// Before the first raiseAudioPriority(); as often as you like. May load a library.
void prepareAudioPriority();

/// Asks the system to serve this thread, an audio thread, before others. What was got, in words for the log; a
/// constant, so that the thread neither allocates nor writes.
const char *raiseAudioPriority();

} // namespace tarvo::voice

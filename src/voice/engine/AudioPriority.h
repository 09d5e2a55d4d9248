#pragma once

namespace tarvo::voice {

/// Asks the system to serve this thread, an audio thread, before others. What was got, in words for the log; a
/// constant, so that the thread neither allocates nor writes.
const char *raiseAudioPriority();

} // namespace tarvo::voice

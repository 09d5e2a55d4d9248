#pragma once

#include <QStringList>

namespace tarvo::bench {

// Roles of processes of their own, so that what they cost is theirs alone. Both run until their standard input ends,
// and need a QCoreApplication. They give the exit code.

/// A microphone and two outputs open on the default devices, and nothing done with them: what the sound system itself
/// costs, whatever the client does.
int runOpenDevices();

/// The voice session of a pilot with one radio. `words`: TCP port, UDP port, kHz, the user's id, token, and "talk" for
/// one who holds his key. Says on standard output what the streams say of themselves.
int runVoiceClient(const QStringList &words);

} // namespace tarvo::bench

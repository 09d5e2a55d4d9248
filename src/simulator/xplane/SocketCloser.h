#pragma once

#include <nng/nng.h>

#include <chrono>

namespace tarvo::simulator::xplane {

// nng 1.5 has a flaw: when a pipe is closed at this end just as a message comes in, the close may wait for ever, and no
// later close in the process ever ends either. So a socket is read empty until it is quiet, and only then closed.

/// Reads and drops what comes in until nothing has come for 20 ms, for at most a second, then closes the socket. What
/// was sent before gets its time to leave. Blocks: never to be called on the main thread of the program.
void closeWhenQuiet(nng_socket socket);

/// The same on a thread of its own; returns at once. The program's exit waits for such threads, 100 ms for all of them
/// together: enough for what was sent last to leave, unless the plugin keeps sending or does not read.
void closeInBackground(nng_socket socket);

/// Waits until no such thread is at work; false when that takes longer.
bool waitForClosers(std::chrono::milliseconds longest);

} // namespace tarvo::simulator::xplane

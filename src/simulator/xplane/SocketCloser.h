#pragma once

#include <nng/nng.h>

namespace tarvo::simulator::xplane {

// nng 1.5 has a flaw: when a pipe is closed at this end just as a message comes in, the close may wait for ever, and no
// later close in the process ever ends either. So a socket is read empty until it is quiet, and only then closed.

/// Reads and drops what comes in until nothing has come for 20 ms, for at most a second, then closes the socket. What
/// was sent before gets its time to leave. Blocks: never to be called on the main thread of the program.
void closeWhenQuiet(nng_socket socket);

/// The same on a thread of its own; returns at once.
void closeInBackground(nng_socket socket);

} // namespace tarvo::simulator::xplane

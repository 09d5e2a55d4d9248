#pragma once

#include <nng/nng.h>

#include <chrono>
#include <memory>
#include <vector>

namespace tarvo::common {

// nng 1.5 has a flaw: it reads a message in two steps, and a pipe that is closed at this end between the two waits for
// ever. So does every later close in the process, since one thread ends all pipes. What is here keeps a message from
// getting as far as the second step, and keeps whoever closes from waiting for ever should it hang all the same: a
// large message may be half on its way out, which has the same flaw, and only time helps there.

/// Closes the socket on a worker of its own; returns at once. `lastWords` are sent before, as far as 200 ms will do,
/// and are freed if not. `kept`: what nng's threads may use until the socket is closed. What comes in is dropped, and
/// what was sent before gets its time to leave: until nothing has come for 20 ms, for at most 200 ms. No other call may
/// be at work on the socket. The program's exit waits for the closers, 500 ms for all of them together.
void closeInBackground(nng_socket socket, std::vector<nng_msg *> lastWords = {},
                       std::shared_ptr<const void> kept = nullptr);

/// The same, and waits for the end. False, with a warning, when that takes longer or no thread is to be had: then the
/// socket is left as it is.
bool closeAndWait(nng_socket socket, std::chrono::milliseconds longest = std::chrono::seconds(2));

/// Waits until no closer is at work; false when that takes longer.
bool waitForClosers(std::chrono::milliseconds longest);

} // namespace tarvo::common

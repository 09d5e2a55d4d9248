#pragma once

#include <nng/nng.h>

#include <chrono>

namespace tarvo::common {

// nng 1.5 has a flaw: it reads a message in two steps, and a pipe that is closed at this end between the two waits for
// ever. So does every later close in the process, since one thread ends all pipes. What is here keeps a message from
// getting as far as the second step, and keeps whoever closes from waiting for ever should it hang all the same: a
// large message may be half on its way out, which has the same flaw, and only time helps there.

/// Closes the socket on a thread of its own; returns at once. What comes in is dropped, and what was sent before gets
/// its time to leave: until nothing has come for 20 ms, for at most 200 ms. No other call may be at work on the socket.
/// The program's exit waits for such threads, 500 ms for all of them together.
void closeInBackground(nng_socket socket);

/// The same, and waits for the end. False, with a warning, when that takes longer or no thread is to be had: then the
/// socket is left as it is.
bool closeAndWait(nng_socket socket, std::chrono::milliseconds longest = std::chrono::seconds(2));

/// Waits until no such thread is at work; false when that takes longer.
bool waitForClosers(std::chrono::milliseconds longest);

} // namespace tarvo::common

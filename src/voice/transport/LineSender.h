#pragma once

#include <mutex>
#include <string>
#include <string_view>

namespace tarvo::voice {

class Socket;

/// Writes lines to the control connection and never waits for the server to read them. Any thread.
class LineSender
{
public:
    /// The socket outlives the sender.
    explicit LineSender(const Socket &socket) : m_socket(socket) {}

    /// Sends the line, which has its end, or drops it as a whole: a line of which the system took a part goes on with
    /// the next call. False when it was dropped because the server does not read.
    bool send(std::string_view line);

private:
    bool sendRest();

    const Socket &m_socket;
    std::mutex m_mutex;
    std::string m_rest; ///< of a line that has begun
};

} // namespace tarvo::voice

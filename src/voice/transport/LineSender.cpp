#include "voice/transport/LineSender.h"

#include "voice/transport/Sockets.h"

#include <optional>

namespace tarvo::voice {

bool LineSender::send(std::string_view line)
{
    const std::lock_guard lock(m_mutex);
    if (!sendRest())
        return false;
    m_rest = line;
    sendRest();
    if (m_rest.size() < line.size())
        return true;
    m_rest.clear(); // nothing of it has left
    return false;
}

/// False when the server does not read and some is left. On a broken connection nothing is.
bool LineSender::sendRest()
{
    if (m_rest.empty())
        return true;
    const std::span bytes(reinterpret_cast<const std::uint8_t *>(m_rest.data()), m_rest.size());
    m_rest.erase(0, m_socket.send(bytes).value_or(m_rest.size()));
    return m_rest.empty();
}

} // namespace tarvo::voice

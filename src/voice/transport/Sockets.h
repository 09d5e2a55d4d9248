#pragma once

#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tarvo::voice {

// All that is known here of the system's sockets.

/// Prepares the system's sockets where it asks for that. As often as you like.
void startSockets();

/// The system's text for an error of its sockets, in English. "Unknown error" when it has none.
std::string socketErrorText(int error);

enum class SocketKind
{
    Stream,  ///< TCP
    Datagram ///< UDP
};

struct SocketAddress
{
    int family = 0;
    int type = 0;
    int protocol = 0;
    std::vector<std::uint8_t> bytes; ///< in the system's own form
    std::string text;                ///< "127.0.0.1:6808", "::1:6808", or "Unknown address family"
};

/// The first address that the system has for the host. Blocks, with a dead name server for many seconds, and can't be
/// called off. Any thread.
std::optional<SocketAddress> lookUp(const std::string &host, quint16 port, SocketKind kind);

/// A socket that several threads use at a time. Closed with the object, so whoever uses it keeps that.
class Socket
{
public:
    using Bytes = std::span<const std::uint8_t>;

    Socket() = default;
    ~Socket();
    Socket(const Socket &) = delete;
    Socket &operator=(const Socket &) = delete;

    /// Opens the socket and begins to connect it. Gives the system's error, or 0. Never waits.
    int connectTo(const SocketAddress &address);
    /// Gives the system's error once the connecting has failed, 0 once it has succeeded, and nothing when neither has
    /// happened for so long.
    std::optional<int> waitUntilConnected(std::chrono::milliseconds longest) const;

    /// Waits for bytes and gives their number. 0: an empty datagram, the peer's end, or wake(). Negative: an error.
    std::ptrdiff_t receive(std::span<std::uint8_t> buffer) const;
    /// Gives the number of bytes that the system has taken: 0 when it has no room, nothing on an error. Never waits.
    std::optional<std::size_t> send(Bytes bytes) const;
    /// Ends the receive() under way and every later one, and the connection.
    void wake();

private:
    using Handle = std::intptr_t;
    static constexpr Handle invalid = -1;

    std::atomic<Handle> m_handle = invalid;
};

} // namespace tarvo::voice

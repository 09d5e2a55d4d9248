#include "voice/transport/Sockets.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <clocale>
#include <cstring>
#include <memory>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tarvo::voice {

namespace {

std::string textOf(const void *address, int family, in_port_t port)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(family, address, text.data(), text.size());
    return std::string(text.data()) + ':' + std::to_string(ntohs(port));
}

std::string textOf(const sockaddr *address)
{
    if (address->sa_family == AF_INET) {
        const auto *v4 = reinterpret_cast<const sockaddr_in *>(address);
        return textOf(&v4->sin_addr, AF_INET, v4->sin_port);
    }
    if (address->sa_family == AF_INET6) {
        const auto *v6 = reinterpret_cast<const sockaddr_in6 *>(address);
        return textOf(&v6->sin6_addr, AF_INET6, v6->sin6_port);
    }
    return "Unknown address family";
}

void setBlocking(int socket)
{
    fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) & ~O_NONBLOCK);
}

int errorOf(int socket)
{
    int error = 0;
    socklen_t size = sizeof(error);
    return getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

} // namespace

void startSockets() {}

std::string socketErrorText(int error)
{
    static const locale_t english = newlocale(LC_ALL_MASK, "C", nullptr);
    const std::string text = strerror_l(error, english);
    return text.starts_with("Unknown error") ? "Unknown error" : text; // without the number that follows
}

std::optional<SocketAddress> lookUp(const std::string &host, quint16 port, SocketKind kind)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = kind == SocketKind::Stream ? SOCK_STREAM : SOCK_DGRAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0)
        return std::nullopt;
    const std::unique_ptr<addrinfo, void (*)(addrinfo *)> list(found, &freeaddrinfo);
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(found->ai_addr);
    return SocketAddress{.family = found->ai_family,
                         .type = found->ai_socktype,
                         .protocol = found->ai_protocol,
                         .bytes = {bytes, bytes + found->ai_addrlen},
                         .text = textOf(found->ai_addr)};
}

Socket::~Socket()
{
    if (m_handle != invalid)
        ::close(static_cast<int>(m_handle));
}

int Socket::connectTo(const SocketAddress &address)
{
    const int socket = ::socket(address.family, address.type | SOCK_CLOEXEC | SOCK_NONBLOCK, address.protocol);
    if (socket < 0)
        return errno;
    m_handle = socket;
    const auto *to = reinterpret_cast<const sockaddr *>(address.bytes.data());
    if (::connect(socket, to, static_cast<socklen_t>(address.bytes.size())) == 0 || errno == EINPROGRESS)
        return 0;
    return errno;
}

std::optional<int> Socket::waitUntilConnected(std::chrono::milliseconds longest) const
{
    const int socket = static_cast<int>(m_handle);
    pollfd watched{.fd = socket, .events = POLLOUT, .revents = 0};
    if (::poll(&watched, 1, static_cast<int>(longest.count())) <= 0)
        return std::nullopt;
    const int error = errorOf(socket);
    setBlocking(socket);
    return error;
}

std::ptrdiff_t Socket::receive(std::span<std::uint8_t> buffer) const
{
    for (;;) {
        const ssize_t size = ::recv(static_cast<int>(m_handle), buffer.data(), buffer.size(), 0);
        if (size >= 0 || errno != EINTR)
            return size;
    }
}

std::optional<std::size_t> Socket::send(Bytes bytes) const
{
    const ssize_t size = ::send(static_cast<int>(m_handle), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (size >= 0)
        return static_cast<std::size_t>(size);
    if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)
        return 0;
    return std::nullopt;
}

void Socket::wake()
{
    if (m_handle != invalid)
        ::shutdown(static_cast<int>(m_handle), SHUT_RDWR); // close() would wake nobody
}

} // namespace tarvo::voice

#include "voice/transport/Sockets.h"

#include <array>
#include <memory>

#include <winsock2.h>

#include <ws2tcpip.h>

namespace tarvo::voice {

namespace {

constexpr DWORD english = 1033;

std::string textOf(const void *address, int family, quint16 port)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(family, const_cast<void *>(address), text.data(), text.size());
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

void setBlocking(SOCKET socket, bool blocking)
{
    u_long nonBlocking = blocking ? 0 : 1;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &nonBlocking);
}

/// Whether the socket has room for more. What is sent then is taken whole, without waiting.
bool hasRoom(SOCKET socket)
{
    fd_set writable;
    FD_ZERO(&writable);
    FD_SET(socket, &writable);
    timeval noTime{};
    return select(0, nullptr, &writable, nullptr, &noTime) != 0; // an error is told by what follows
}

int errorOf(SOCKET socket)
{
    int error = 0;
    int size = sizeof(error);
    const int result = getsockopt(socket, SOL_SOCKET, SO_ERROR, reinterpret_cast<char *>(&error), &size);
    return result == 0 ? error : WSAGetLastError();
}

} // namespace

void startSockets()
{
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data); // never undone: a look-up may still be at work when all else has gone
}

std::string socketErrorText(int error)
{
    std::array<char, 512> text{};
    const DWORD size =
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(error),
                       english, text.data(), static_cast<DWORD>(text.size()), nullptr);
    const std::string whole(text.data(), size);
    const auto end = whole.find_last_not_of(" \r\n");
    return end == std::string::npos ? "Unknown error" : whole.substr(0, end + 1);
}

std::optional<SocketAddress> lookUp(const std::string &host, quint16 port, SocketKind kind)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = kind == SocketKind::Stream ? SOCK_STREAM : SOCK_DGRAM;
    addrinfo *found = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0)
        return std::nullopt;
    const std::unique_ptr<addrinfo, void(WSAAPI *)(addrinfo *)> list(found, &freeaddrinfo);
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(found->ai_addr);
    return SocketAddress{.family = found->ai_family,
                         .type = found->ai_socktype,
                         .protocol = found->ai_protocol,
                         .bytes = {bytes, bytes + found->ai_addrlen},
                         .text = textOf(found->ai_addr)};
}

Socket::~Socket()
{
    wake();
}

int Socket::connectTo(const SocketAddress &address)
{
    const SOCKET socket = ::socket(address.family, address.type, address.protocol);
    if (socket == INVALID_SOCKET)
        return WSAGetLastError();
    m_handle = static_cast<Handle>(socket);
    setBlocking(socket, false);
    const auto *to = reinterpret_cast<const sockaddr *>(address.bytes.data());
    if (::connect(socket, to, static_cast<int>(address.bytes.size())) == 0)
        return 0;
    const int error = WSAGetLastError();
    return error == WSAEWOULDBLOCK ? 0 : error;
}

std::optional<int> Socket::waitUntilConnected(std::chrono::milliseconds longest) const
{
    const auto socket = static_cast<SOCKET>(m_handle.load());
    fd_set writable;
    fd_set failed;
    FD_ZERO(&writable);
    FD_ZERO(&failed);
    FD_SET(socket, &writable);
    FD_SET(socket, &failed);
    timeval time{.tv_sec = 0, .tv_usec = static_cast<long>(longest.count() * 1000)};
    const int count = select(0, nullptr, &writable, &failed, &time);
    if (count == 0)
        return std::nullopt;
    const int error = count < 0 ? WSAGetLastError() : errorOf(socket);
    setBlocking(socket, true);
    return error;
}

std::ptrdiff_t Socket::receive(std::span<std::uint8_t> buffer) const
{
    return ::recv(static_cast<SOCKET>(m_handle.load()), reinterpret_cast<char *>(buffer.data()),
                  static_cast<int>(buffer.size()), 0);
}

std::optional<std::size_t> Socket::send(Bytes bytes) const
{
    const auto socket = static_cast<SOCKET>(m_handle.load());
    if (socket == INVALID_SOCKET)
        return std::nullopt;
    if (!hasRoom(socket))
        return 0;
    const int size = ::send(socket, reinterpret_cast<const char *>(bytes.data()), static_cast<int>(bytes.size()), 0);
    return size < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(size));
}

void Socket::wake()
{
    const Handle socket = m_handle.exchange(invalid);
    if (socket == invalid)
        return;
    ::shutdown(static_cast<SOCKET>(socket), SD_BOTH); // so that what was sent arrives
    ::closesocket(static_cast<SOCKET>(socket));       // shutdown() alone may not wake who receives
}

} // namespace tarvo::voice

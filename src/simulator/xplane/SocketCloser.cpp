#include "simulator/xplane/SocketCloser.h"

#include <QDebug>

#include <chrono>
#include <system_error>
#include <thread>

namespace tarvo::simulator::xplane {

namespace {

constexpr nng_duration quietMs = 20;
constexpr std::chrono::seconds longestDrain{1};

} // namespace

void closeWhenQuiet(nng_socket socket)
{
    nng_socket_set_ms(socket, NNG_OPT_RECVTIMEO, quietMs);
    const auto deadline = std::chrono::steady_clock::now() + longestDrain;
    while (std::chrono::steady_clock::now() < deadline) {
        nng_msg *message = nullptr;
        if (nng_recvmsg(socket, &message, 0) != 0)
            break;
        nng_msg_free(message);
    }
    nng_close(socket);
}

void closeInBackground(nng_socket socket)
{
    try {
        std::thread(closeWhenQuiet, socket).detach();
    } catch (const std::system_error &) {
        qWarning() << "X-Plane plugin socket stays open: no thread to close it";
    }
}

} // namespace tarvo::simulator::xplane

#pragma once

#include <nng/nng.h>

#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <functional>
#include <thread>

namespace tarvo::bench {

/// The plugin inside X-Plane: answers as a good one, and hands each message on as soon as it is there.
class PluginEnd
{
public:
    /// Gets each message, packed, and when it came, on a thread of its own. Gives the callsign that is to be answered:
    /// an ADD's, else nothing.
    using Receiver = std::function<QString(QByteArrayView message, std::int64_t now)>;

    /// Listens at that nng address. What the receiver uses outlives this end.
    PluginEnd(const QString &url, Receiver receiver);
    ~PluginEnd();
    PluginEnd(const PluginEnd &) = delete;
    PluginEnd &operator=(const PluginEnd &) = delete;

    bool isListening() const { return m_listening; }

private:
    void receiveLoop();
    void handle(const nng_msg *message);
    void say(const char *name, const QString &argument);
    void sayVersion();

    Receiver m_receiver;
    nng_socket m_socket = NNG_SOCKET_INITIALIZER;
    nng_aio *m_receive = nullptr;
    bool m_listening = false;
    std::thread m_thread;
};

} // namespace tarvo::bench

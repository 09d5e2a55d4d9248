#pragma once

#include <nng/nng.h>

#include <QString>

#include <thread>

namespace tarvo::bench {

class Ledger;

/// The plugin inside X-Plane: answers as a good one, and hands each message to the ledger as soon as it is there.
class PluginEnd
{
public:
    /// Listens at that nng address. The ledger outlives this end.
    PluginEnd(const QString &url, Ledger &ledger);
    ~PluginEnd();
    PluginEnd(const PluginEnd &) = delete;
    PluginEnd &operator=(const PluginEnd &) = delete;

    bool isListening() const { return m_listening; }

private:
    void receiveLoop();
    void handle(const nng_msg *message);
    void say(const char *name, const QString &argument);
    void sayVersion();

    Ledger &m_ledger;
    nng_socket m_socket = NNG_SOCKET_INITIALIZER;
    nng_aio *m_receive = nullptr;
    bool m_listening = false;
    std::thread m_thread;
};

} // namespace tarvo::bench

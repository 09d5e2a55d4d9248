#pragma once

#include "voice/transport/NetworkHandler.h"

#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/VoicePeer.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QStringList>
#include <QThread>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace tarvo::test {

/// How soon "soon" is. What hangs takes a name server's patience, or the system's for a connect.
inline constexpr int soonMs = 5'000;

inline const QString token = QStringLiteral("head.body.signature");

/// A handler that notes what it raises.
struct Listener
{
    explicit Listener(const ServiceEndpoints &endpoints, std::chrono::milliseconds interval = std::chrono::hours(1))
        : handler(std::make_unique<voice::NetworkHandler>(endpoints, nullptr, clock, interval))
    {
        using voice::NetworkHandler;
        QObject *context = handler.get();
        QObject::connect(handler.get(), &NetworkHandler::socketStateChanged, context,
                         [this](bool connected) { note(connected ? u"connected"_qs : u"disconnected"_qs); });
        QObject::connect(handler.get(), &NetworkHandler::errorOccurred, context,
                         [this](const QString &error) { note(u"error: "_qs + error); });
        QObject::connect(
            handler.get(), &NetworkHandler::controlMessageReceived, context,
            [this](const voice::ControlMessage &message) { note(u"line "_qs + QString::fromStdString(message.data)); });
        QObject::connect(
            handler.get(), &NetworkHandler::voicePacketReceived, context,
            [this](const voice::VoicePacket &packet) { note(u"voice "_qs + QString::fromStdString(packet.callsign)); });
    }
    ~Listener()
    {
        handler.reset();
        waitForAttempts();
    }
    Listener(const Listener &) = delete;
    Listener &operator=(const Listener &) = delete;

    /// On a thread of its own. Not one of Qt's pool, whose locks ThreadSanitizer doesn't see.
    void connectToServer(const QString &with = token) { attempts.emplace_back(handler->attempt(with)); }
    void waitForAttempts()
    {
        for (std::thread &attempt : attempts)
            attempt.join();
        attempts.clear();
    }

    ManualClock clock;
    std::unique_ptr<voice::NetworkHandler> handler;
    std::vector<std::thread> attempts;
    QStringList order;                         ///< what was raised
    QThread *thread = nullptr;                 ///< that it was raised on
    std::function<void(const QString &)> then; ///< called with each

private:
    void note(const QString &what)
    {
        thread = QThread::currentThread();
        order.append(what);
        if (then)
            then(what);
    }
};

/// A client and its server.
struct Session
{
    VoicePeer peer;
    Listener client;

    explicit Session(std::chrono::milliseconds interval = std::chrono::hours(1)) : client(peer.endpoints(), interval) {}

    voice::NetworkHandler &handler() { return *client.handler; }
    QStringList &order() { return client.order; }

    /// True once both sides know of it, and the token and the first datagram have been taken.
    bool open()
    {
        const qsizetype before = order().count(u"connected"_qs);
        client.connectToServer();
        return waitFor([&] { return order().count(u"connected"_qs) > before; }) && peer.expect(token.toUtf8()) &&
               !peer.nextDatagram().isNull();
    }
};

inline QByteArray messageLine(const QByteArray &data)
{
    return R"({"type":"message","data":")" + data + R"("})";
}

inline QByteArray datagramOf(const std::string &callsign, int payload = 0)
{
    const auto bytes = voice::serializeVoicePacket(7, 0, 118700, callsign, std::vector<std::uint8_t>(payload, 'v'));
    return QByteArray(reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}

} // namespace tarvo::test

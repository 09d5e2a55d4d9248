#pragma once

#include "ServiceEndpoints.h"
#include "common/Clock.h"
#include "common/DropCount.h"
#include "voice/wire/ControlMessage.h"
#include "voice/wire/VoicePacket.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tarvo::voice {

class Connection;
class Identity;

namespace report {
struct BadLine;
struct Established;
struct Failed;
struct Lost;
struct Note;
} // namespace report

/// The two sockets of the voice service and their threads. Knows the form of what goes over them, and nothing of a
/// session.
///
/// All members but connectToServer() are for the object's thread. All signals are raised there, in order; what an
/// earlier connection still had to say is dropped.
class NetworkHandler : public QObject
{
    Q_OBJECT

public:
    /// How long reports are handled before the event loop turns, in ms. A flood must not hold the window.
    static constexpr qint64 longestTurnMs = 8;

    /// `keepAliveInterval`: between two pings. The clock outlives the handler.
    explicit NetworkHandler(const ServiceEndpoints &endpoints = {}, QObject *parent = nullptr,
                            const common::Clock &clock = common::systemClock(),
                            std::chrono::milliseconds keepAliveInterval = std::chrono::seconds(15));
    /// stop(). No call of connectToServer() may be under way; tasks of attempt() may.
    ~NetworkHandler() override;

    /// Begins an attempt, which takes the place of whatever there was, and gives the rest of it: a task for another
    /// thread, which looks the server up, connects and signs in with the access token. It blocks, ends soon after
    /// stop(), also when it is begun later, and may outlive the handler. How it went comes as socketStateChanged(true)
    /// or errorOccurred(), unless it was stopped or another has taken its place.
    std::function<void()> attempt(const QString &token);
    /// The rest of the attempt can't be done: raises errorOccurred(), when the event loop turns.
    void failAttempt(const QString &why);
    /// The whole of it. Blocks, and may be called on any thread.
    void connectToServer(const QString &token);
    /// Tells the server, raises socketStateChanged(false) and stops.
    void disconnectFromServer();
    /// Ends the connection, or the attempt, without a word. Waits for no more than threads that are about to end.
    void stop();

    /// The pilot's numeric id; 0 until it is known.
    void setCid(quint32 cid);
    /// Cut where a datagram has no room for it (fittingCallsign()).
    void setCallsign(const std::string &callsign);

    /// Both send at once and never wait; nothing without a connection. Lines that the server doesn't read are dropped
    /// in the end, with one warning.
    void sendControlMessage(const ControlMessage &message);
    void sendVoicePacket(const std::vector<std::uint8_t> &packet);

signals:
    void socketStateChanged(bool connected);
    void controlMessageReceived(const tarvo::voice::ControlMessage &message);
    void voicePacketReceived(const tarvo::voice::VoicePacket &packet);
    void errorOccurred(const QString &error);

private:
    struct Threads;
    using Shared = std::shared_ptr<Connection>;

    Shared current() const;
    void end(const Shared &connection);
    bool startThreads(const Shared &connection);
    void handleReports();
    void handle(const Shared &connection, const report::Note &note);
    void handle(const Shared &connection, const report::Established &established);
    void handle(const Shared &connection, const report::Failed &failed);
    void handle(const Shared &connection, const report::BadLine &line);
    void handle(const Shared &connection, const report::Lost &lost);
    void handle(const Shared &connection, const ControlMessage &message);
    void handle(const Shared &connection, const VoicePacket &packet);
    void tellDropped(Connection &connection);

    const ServiceEndpoints m_endpoints;
    const common::Clock &m_clock;
    const std::chrono::milliseconds m_keepAliveInterval;
    const std::shared_ptr<Identity> m_identity;

    mutable std::mutex m_mutex; ///< guards m_current
    Shared m_current;           ///< the connection, or the attempt, that counts

    std::unique_ptr<Threads> m_threads; ///< of the connection, or of one that has ended
    QTimer m_nextTurn{this};            ///< runs out at once; a timer, which lets sockets and windows have theirs
    common::DropCount m_badLines;
    common::DropCount m_droppedPackets;
};

} // namespace tarvo::voice

#pragma once

#include "voice/transport/Inbox.h"
#include "voice/transport/LineSender.h"
#include "voice/transport/Sockets.h"

#include <QObject>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace tarvo::common {
class Clock;
} // namespace tarvo::common

namespace tarvo::voice {

class Identity;

/// One attempt to reach the voice server, and the connection that it becomes: the two sockets, and what its threads
/// share. They keep it, so that it closes its sockets when the last of them has gone.
class Connection : public QObject
{
    Q_OBJECT

public:
    /// `token` is secret: the server alone gets it. What the server says back of it reaches nobody.
    Connection(std::shared_ptr<Identity> identity, std::string token);

    const Identity &identity() const { return *m_identity; }
    Socket &tcp() { return m_tcp; }
    Socket &udp() { return m_udp; }
    Inbox &inbox() { return m_inbox; }

    /// Sends the token. From now on the pilot's lines and packets are sent, too; until then they are dropped.
    void open();
    /// Ends all that waits or receives here. From any thread.
    void end();
    /// True when it was ended, by end() or by the server.
    bool isOver() const { return m_isEnded || m_isLost; }
    /// Waits until that is so or `comesTrue` does, which is to be changed under tell(). False when it is over.
    bool waitFor(const std::function<bool()> &comesTrue);
    /// Waits for so long, or until it is over, which gives false.
    bool sleep(std::chrono::milliseconds time);
    /// Does `change` where no waitFor() looks meanwhile, and then lets it look.
    void tell(const std::function<void()> &change);

    /// Leaves a report for the owner.
    void say(Report report);
    /// Any thread, and none of them ever waits.
    void sendMessage(const ControlMessage &message);
    void sendPacket(Socket::Bytes bytes);

    // What its threads do, each until it is over.
    void receiveLines();
    void receivePackets();
    void keepAlive(std::chrono::milliseconds interval, const common::Clock &clock);

signals:
    /// From any thread: the inbox was empty and no longer is.
    void inboxFilled();

private:
    Report read(std::string_view line) const;
    void tellOwner(bool isNews);

    const std::shared_ptr<Identity> m_identity;
    const std::string m_token;
    Socket m_tcp;
    Socket m_udp;
    LineSender m_lines{m_tcp};
    Inbox m_inbox;
    std::atomic<bool> m_isOpen = false;
    std::atomic<bool> m_isEnded = false; ///< by this side
    std::atomic<bool> m_isLost = false;  ///< by the server
    std::atomic<bool> m_isStuckTold = false;
    std::mutex m_mutex; ///< for those who wait
    std::condition_variable m_changed;
};

} // namespace tarvo::voice

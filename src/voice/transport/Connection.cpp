#include "voice/transport/Connection.h"

#include "common/Clock.h"
#include "common/OneLine.h"
#include "voice/transport/Identity.h"
#include "voice/transport/LineBuffer.h"

#include <nlohmann/json.hpp>

#include <array>
#include <utility>

namespace tarvo::voice {

namespace {

/// A token is longer than any word that a server might say by itself.
constexpr std::size_t shortestToken = 16;

/// No datagram holds more.
constexpr std::size_t largestPayload = 65507;

/// The parser's message without what it read, which may be anything: a part of our token, or 64 KiB.
QString reasonOf(const nlohmann::json::exception &exception)
{
    const QString message = QString::fromUtf8(exception.what());
    return common::excerpt(message.left(message.indexOf(QLatin1String("; last read"))));
}

} // namespace

Connection::Connection(std::shared_ptr<Identity> identity, std::string token)
    : m_identity(std::move(identity)), m_token(std::move(token))
{
}

void Connection::open()
{
    m_lines.send(m_token + '\n');
    m_isOpen = true;
}

void Connection::end()
{
    tell([this] { m_isEnded = true; });
    m_inbox.close();
    m_tcp.wake();
    m_udp.wake();
}

bool Connection::waitFor(const std::function<bool()> &comesTrue)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return isOver() || comesTrue(); });
    return !isOver();
}

bool Connection::sleep(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    return !m_changed.wait_for(lock, time, [this] { return isOver(); });
}

void Connection::tell(const std::function<void()> &change)
{
    const std::lock_guard lock(m_mutex);
    change();
    m_changed.notify_all();
}

void Connection::say(Report report)
{
    tellOwner(m_inbox.say(std::move(report)));
}

void Connection::tellOwner(bool isNews)
{
    if (isNews)
        emit inboxFilled();
}

void Connection::sendMessage(const ControlMessage &message)
{
    if (!m_isOpen)
        return;
    try {
        if (!m_lines.send(serializeControlMessage(message) + '\n') && !m_isStuckTold.exchange(true))
            say(report::Note{QtWarningMsg, QStringLiteral("control lines are dropped: the server does not read")});
    } catch (const nlohmann::json::exception &exception) { // a text that isn't UTF-8
        say(report::Note{QtWarningMsg,
                         QStringLiteral("control message not sent: %1").arg(QLatin1String(exception.what()))});
    }
}

void Connection::sendPacket(Socket::Bytes bytes)
{
    if (m_isOpen)
        m_udp.send(bytes);
}

void Connection::receiveLines()
{
    LineBuffer buffer;
    while (!isOver()) {
        const std::ptrdiff_t size = m_tcp.receive(buffer.room());
        if (size < 1)
            break;
        buffer.add(static_cast<std::size_t>(size));
        while (const std::optional<std::string_view> line = buffer.next())
            tellOwner(m_inbox.putLine(read(*line)));
    }
    if (m_isEnded)
        return;
    tell([this] { m_isLost = true; });
    say(report::Lost{});
}

Report Connection::read(std::string_view line) const
{
    try {
        if (m_token.size() < shortestToken || line.find(m_token) == std::string_view::npos)
            return parseControlMessage(line);
        std::string scrubbed(line);
        for (auto at = scrubbed.find(m_token); at != std::string::npos; at = scrubbed.find(m_token))
            scrubbed.replace(at, m_token.size(), "***");
        return parseControlMessage(scrubbed);
    } catch (const nlohmann::json::exception &exception) {
        return report::BadLine{reasonOf(exception)};
    }
}

void Connection::receivePackets()
{
    std::array<std::uint8_t, largestPayload> buffer;
    while (!isOver()) {
        const std::ptrdiff_t size = m_udp.receive(buffer);
        if (size < 0)
            return; // such as when nobody is at the server's port: silence, and the session goes on
        if (std::optional<VoicePacket> packet = parseVoicePacket(buffer.data(), static_cast<std::size_t>(size)))
            tellOwner(m_inbox.putPacket(std::move(*packet)));
    }
}

void Connection::keepAlive(std::chrono::milliseconds interval, const common::Clock &clock)
{
    while (sleep(interval)) {
        sendMessage(m_identity->ping(clock.wallMs() / 1000));
        sendPacket(m_identity->keepAlivePacket());
    }
}

} // namespace tarvo::voice

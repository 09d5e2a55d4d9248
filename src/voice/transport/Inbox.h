#pragma once

#include "voice/wire/ControlMessage.h"
#include "voice/wire/VoicePacket.h"

#include <QString>
#include <QtGlobal>

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <variant>

namespace tarvo::voice {

namespace report {

/// A line for the log.
struct Note
{
    QtMsgType level = QtDebugMsg; ///< or QtWarningMsg
    QString text;
};
/// The server has been reached.
struct Established
{
};
/// It could not be; the text tells why.
struct Failed
{
    QString why;
};
/// A line that is no control message; the parser tells why.
struct BadLine
{
    QString why;
};
/// The server has gone.
struct Lost
{
};

} // namespace report

/// What the threads of a connection have to say to their owner.
using Report = std::variant<report::Note, report::Established, report::Failed, report::BadLine, report::Lost,
                            ControlMessage, VoicePacket>;

/// Keeps the reports, in their order, until the owner comes for them. Its size is bounded: too many lines wait with the
/// server, and too many voice packets are dropped.
class Inbox
{
public:
    static constexpr std::size_t mostLines = 64;
    static constexpr std::size_t mostPackets = 256; ///< 5 s of one speaker

    /// What comes at most a few times in a connection. True when the owner is to be told that there is something; so
    /// do the next two.
    bool say(Report report);
    /// A line's report: waits until there is room. Nothing once close() has been called.
    bool putLine(Report report);
    bool putPacket(VoicePacket packet);
    /// Lets nobody wait any more.
    void close();

    /// The oldest; nothing when there is none, and then the next report is one to tell the owner of.
    std::optional<Report> take();
    /// How many packets were dropped since the last time.
    quint64 takeDropped();

private:
    bool put(Report report);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Report> m_reports;
    std::size_t m_lines = 0; ///< of them
    std::size_t m_packets = 0;
    quint64 m_dropped = 0;
    bool m_isOwnerTold = false;
    bool m_isClosed = false;
};

} // namespace tarvo::voice

#pragma once

#include <QByteArrayView>
#include <QString>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

namespace tarvo::bench {

/// Nanoseconds of the one clock that both ends of the peer read.
std::int64_t steadyNs();

/// What came of one measurement.
struct Tally
{
    std::uint64_t messages = 0;  ///< FSTPOS, POS and HB
    std::uint64_t overtaken = 0; ///< positions that did not come, but a newer one of the same aircraft did
    std::uint64_t missing = 0;   ///< other messages that did not come
    std::uint64_t wrong = 0;     ///< out of order, too many, or with other values than were sent
    QString firstWrong;          ///< the first of these in words
    double medianMs = 0;         ///< from before the line is written to after its message is there
    double percentile99Ms = 0;   ///< the same
    double maximumMs = 0;        ///< the same
};

/// Keeps when each line was sent and checks each message that the plugin gets for it. Every fast report reaches the
/// plugin twice, first with the ground speed that follows from its velocities, then with that of the last slow report;
/// every slow report gives a position and then a heartbeat. Nothing of another line comes between these two, and they
/// come in the order of the lines, whoever's they are. A client that can't get rid of its messages may leave out
/// positions for newer ones of the same aircraft; then each aircraft's still come in order. One thread sends, one
/// receives.
class Ledger
{
public:
    /// `reports`: the most that one pilot may send of a kind.
    Ledger(int pilots, int reports);

    // The sender's side.
    /// The number of the pilot's next report.
    int nextFast(int pilot) { return m_fast.next(pilot); }
    int nextSlow(int pilot) { return m_slow.next(pilot); }
    /// Notes the time; to be called just before the report is written.
    void noteFast(int pilot, int number) { m_fast.noteSent(pilot, number, ++m_lines); }
    void noteSlow(int pilot, int number) { m_slow.noteSent(pilot, number, ++m_lines); }
    /// When that report was sent; 0 for one that never was.
    std::int64_t fastSentNs(int pilot, int number) const { return m_fast.sentNs(pilot, number); }
    std::int64_t slowSentNs(int pilot, int number) const { return m_slow.sentNs(pilot, number); }
    /// What is sent from now on is measured. Everybody is there: no message may come but those of reports and those
    /// that tell of the stations.
    void begin();
    /// What is sent from now on isn't.
    void end();
    /// How many aircraft the plugin gets both ways by now.
    int completeCount() const;
    // Of the measured time; behind end(), or before begin().
    /// Messages that are still to come, overtaken ones left out.
    std::uint64_t outstanding() const;
    std::uint64_t measuredLines() const;
    Tally tally() const;

    // The receiver's side.
    /// One message of the client, packed. Gives the callsign that is to be answered: an ADD's, else nothing.
    QString receive(QByteArrayView message, std::int64_t now);

private:
    struct Kind
    {
        Kind(int pilots, int reports);

        int next(int pilot);
        void noteSent(int pilot, int number, std::uint32_t line);
        size_t rowOf(int pilot) const { return static_cast<size_t>(pilot) * static_cast<size_t>(reports); }
        bool isMeasured(int pilot, int number) const;
        std::int64_t sentNs(int pilot, int number) const;

        int reports;
        std::vector<int> nextNumber;                 ///< of each pilot; the sender's own
        std::vector<std::atomic<int>> first;         ///< of each pilot: the first measured report
        std::vector<std::atomic<int>> last;          ///< of each pilot: behind the last measured report
        std::vector<std::atomic<std::int64_t>> sent; ///< of each report of each pilot
        std::vector<std::uint32_t> lines;            ///< of each report of each pilot: the serial of its line
        std::vector<std::uint8_t> copies;            ///< of each report of each pilot
    };

    class Message;

    void receiveFast(const Message &message, std::int64_t now);
    void receiveSlow(const Message &message, std::int64_t now);
    void receiveHeartbeat(const Message &message);
    QString receiveAdd(const Message &message);
    void receiveOther(const Message &message);
    /// The pilot that a message is about; -1, and somebody to blame, when there is none or `arguments` is not their
    /// number.
    int pilotOf(const Message &message, std::uint32_t arguments);
    bool isInOrder(int pilot, std::uint32_t line, int copy);
    /// Notes one copy of a report that came. Gives how many had come before, -1 for one that may not come.
    int note(Kind &kind, int pilot, int number, int copy, std::int64_t now);
    void blame(const QString &what);
    struct Lost
    {
        std::uint64_t overtaken = 0;
        std::uint64_t missing = 0;
    };
    Lost lostOf(const Kind &kind, int pilot, int copiesDue) const;
    Lost lost() const;

    const int m_pilots;
    mutable std::mutex m_mutex; ///< guards all that the receiver writes
    Kind m_fast;
    Kind m_slow;
    std::uint32_t m_lines = 0; ///< serial of the last line; the sender's own
    std::atomic<bool> m_measuring = false;
    std::uint32_t m_newestLine = 0;               ///< serial of the newest line that a position came from
    std::vector<std::uint32_t> m_newestOf;        ///< of each pilot: the same
    std::uint64_t m_disordered = 0;               ///< positions behind a newer one of another aircraft
    std::vector<std::uint64_t> m_looseHeartbeats; ///< of each pilot: those without a position right before them
    int m_heartbeatPilot = -1;                    ///< whose heartbeat may come next; -1 for nobody's
    std::vector<bool> m_complete;                 ///< of each pilot
    std::vector<bool> m_heartbeatDue;             ///< of each pilot: that of a measured report
    std::vector<std::int64_t> m_latencies;
    Tally m_tally;
};

} // namespace tarvo::bench

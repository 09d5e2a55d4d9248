#include "traffic/Ledger.h"

#include "traffic/Crowd.h"

#include <msgpack.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <numeric>
#include <string_view>

namespace tarvo::bench {

namespace {

constexpr int never = std::numeric_limits<int>::max();
constexpr int fastCopies = 2;
constexpr double tolerance = 1e-9; // what the wire carries is exact; the rest is arithmetic

bool isNear(double a, double b)
{
    return std::abs(a - b) < tolerance;
}

double milliseconds(std::int64_t ns)
{
    return static_cast<double>(ns) / 1e6;
}

} // namespace

std::int64_t steadyNs()
{
    return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

/// One message, unpacked: a name and arguments, the first of which is mostly a callsign.
class Ledger::Message
{
public:
    explicit Message(QByteArrayView bytes)
    {
        try {
            m_handle = msgpack::unpack(bytes.data(), static_cast<std::size_t>(bytes.size()));
        } catch (const msgpack::unpack_error &) {
            return; // has no name then
        }
        const msgpack::object &whole = m_handle.get();
        if (whole.type != msgpack::type::ARRAY || whole.via.array.size != 2 ||
            whole.via.array.ptr[1].type != msgpack::type::ARRAY)
            return;
        m_name = text(whole.via.array.ptr[0]);
        m_arguments = &whole.via.array.ptr[1].via.array;
    }

    std::string_view name() const { return m_name; }
    std::string_view callsign() const { return text(0); }
    /// The argument at that place; NaN for one that is no float64.
    double number(std::uint32_t place) const
    {
        if (!m_arguments || place >= m_arguments->size || m_arguments->ptr[place].type != msgpack::type::FLOAT64)
            return std::numeric_limits<double>::quiet_NaN();
        return m_arguments->ptr[place].via.f64;
    }
    /// The argument at that place; empty for one that is no text.
    std::string_view text(std::uint32_t place) const
    {
        return m_arguments && place < m_arguments->size ? text(m_arguments->ptr[place]) : "";
    }
    std::uint32_t argumentCount() const { return m_arguments ? m_arguments->size : 0; }
    QString nameForPeople() const
    {
        return m_name.empty() ? QStringLiteral("that is none")
                              : QString::fromUtf8(m_name.data(), static_cast<qsizetype>(m_name.size()));
    }

private:
    static std::string_view text(const msgpack::object &object)
    {
        return object.type == msgpack::type::STR ? std::string_view(object.via.str.ptr, object.via.str.size) : "";
    }

    msgpack::object_handle m_handle;
    std::string_view m_name;
    const msgpack::object_array *m_arguments = nullptr;
};

Ledger::Kind::Kind(int pilots, int most)
    : reports(most),
      nextNumber(static_cast<size_t>(pilots)),
      first(static_cast<size_t>(pilots)),
      last(static_cast<size_t>(pilots)),
      sent(static_cast<size_t>(pilots) * static_cast<size_t>(most)),
      lines(sent.size()),
      copies(sent.size())
{
    for (std::atomic<int> &number : first)
        number = never;
    for (std::atomic<int> &number : last)
        number = never;
}

int Ledger::Kind::next(int pilot)
{
    return std::min(nextNumber[static_cast<size_t>(pilot)]++, reports - 1);
}

void Ledger::Kind::noteSent(int pilot, int number, std::uint32_t line)
{
    const size_t report = rowOf(pilot) + static_cast<size_t>(number);
    lines[report] = line; // first: the receiver reads it once it sees the time
    sent[report] = steadyNs();
}

bool Ledger::Kind::isMeasured(int pilot, int number) const
{
    return number >= first[static_cast<size_t>(pilot)] && number < last[static_cast<size_t>(pilot)];
}

std::int64_t Ledger::Kind::sentNs(int pilot, int number) const
{
    return number < 0 || number >= reports ? 0 : sent[rowOf(pilot) + static_cast<size_t>(number)].load();
}

Ledger::Ledger(int pilots, int reports)
    : m_pilots(pilots),
      m_fast(pilots, reports),
      m_slow(pilots, reports),
      m_newestOf(static_cast<size_t>(pilots)),
      m_looseHeartbeats(static_cast<size_t>(pilots)),
      m_complete(static_cast<size_t>(pilots)),
      m_heartbeatDue(static_cast<size_t>(pilots))
{
}

void Ledger::begin()
{
    m_measuring = true; // for good: nothing else may come while the last messages are awaited, either
    for (Kind *kind : {&m_fast, &m_slow}) {
        for (size_t pilot = 0; pilot < kind->first.size(); ++pilot)
            kind->first[pilot] = kind->nextNumber[pilot];
    }
}

void Ledger::end()
{
    for (Kind *kind : {&m_fast, &m_slow}) {
        for (size_t pilot = 0; pilot < kind->last.size(); ++pilot)
            kind->last[pilot] = kind->nextNumber[pilot];
    }
}

int Ledger::completeCount() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(std::count(m_complete.begin(), m_complete.end(), true));
}

Ledger::Lost Ledger::lostOf(const Kind &kind, int pilot, int copiesDue) const
{
    const size_t row = kind.rowOf(pilot);
    Lost lost;
    for (int number = kind.first[static_cast<size_t>(pilot)]; number < kind.last[static_cast<size_t>(pilot)];
         ++number) {
        const size_t report = row + static_cast<size_t>(number);
        const auto absent = static_cast<std::uint64_t>(std::max(0, copiesDue - kind.copies[report]));
        if (kind.lines[report] < m_newestOf[static_cast<size_t>(pilot)])
            lost.overtaken += absent;
        else
            lost.missing += absent;
    }
    return lost;
}

Ledger::Lost Ledger::lost() const
{
    Lost sum;
    for (int pilot = 0; pilot < m_pilots; ++pilot) {
        const Lost fast = lostOf(m_fast, pilot, fastCopies);
        const Lost slow = lostOf(m_slow, pilot, 1);
        const size_t row = static_cast<size_t>(pilot);
        // A heartbeat comes even where its position was overtaken.
        const std::uint64_t silent =
            slow.overtaken > m_looseHeartbeats[row] ? slow.overtaken - m_looseHeartbeats[row] : 0;
        sum.overtaken += fast.overtaken + slow.overtaken;
        sum.missing += fast.missing + slow.missing + silent + (m_heartbeatDue[row] ? 1 : 0);
    }
    return sum;
}

std::uint64_t Ledger::outstanding() const
{
    const std::lock_guard lock(m_mutex);
    return lost().missing;
}

std::uint64_t Ledger::measuredLines() const
{
    std::uint64_t lines = 0;
    for (const Kind *kind : {&m_fast, &m_slow}) {
        for (size_t pilot = 0; pilot < kind->first.size(); ++pilot)
            lines += static_cast<std::uint64_t>(kind->last[pilot] - kind->first[pilot]);
    }
    return lines;
}

Tally Ledger::tally() const
{
    const std::lock_guard lock(m_mutex);
    Tally tally = m_tally;
    const Lost gone = lost();
    tally.missing = gone.missing;
    tally.overtaken += gone.overtaken;
    const auto loose = std::accumulate(m_looseHeartbeats.begin(), m_looseHeartbeats.end(), std::uint64_t(0));
    if (tally.overtaken == 0 && m_disordered + loose > 0) {
        tally.wrong += m_disordered + loose;
        tally.firstWrong = QStringLiteral("%1 positions out of order, %2 heartbeats alone, and nothing was overtaken")
                               .arg(m_disordered)
                               .arg(loose);
    }
    if (m_latencies.empty())
        return tally;
    std::vector<std::int64_t> sorted = m_latencies;
    std::sort(sorted.begin(), sorted.end());
    tally.medianMs = milliseconds(sorted[sorted.size() / 2]);
    tally.percentile99Ms = milliseconds(sorted[sorted.size() * 99 / 100]);
    tally.maximumMs = milliseconds(sorted.back());
    return tally;
}

QString Ledger::receive(QByteArrayView bytes, std::int64_t now)
{
    const Message message(bytes);
    const std::lock_guard lock(m_mutex);
    if (message.name() == "FSTPOS")
        receiveFast(message, now);
    else if (message.name() == "POS")
        receiveSlow(message, now);
    else if (message.name() == "HB")
        receiveHeartbeat(message);
    else if (message.name() == "ADD")
        return receiveAdd(message);
    else
        receiveOther(message);
    return {};
}

int Ledger::pilotOf(const Message &message, std::uint32_t arguments)
{
    const int pilot = crowd::pilotOf(message.callsign());
    if (pilot >= 0 && pilot < m_pilots && message.argumentCount() == arguments)
        return pilot;
    blame(QStringLiteral("a message %1 of nobody").arg(message.nameForPeople()));
    return -1;
}

bool Ledger::isInOrder(int pilot, std::uint32_t line, int copy)
{
    std::uint32_t &his = m_newestOf[static_cast<size_t>(pilot)];
    const bool inOrder = copy == 0 ? line > his : line >= his;
    if (line < m_newestLine && m_measuring)
        ++m_disordered;
    his = std::max(his, line);
    m_newestLine = std::max(m_newestLine, line);
    return inOrder;
}

int Ledger::note(Kind &kind, int pilot, int number, int copy, std::int64_t now)
{
    const size_t report = kind.rowOf(pilot) + static_cast<size_t>(std::max(number, 0));
    if (number < 0 || number >= kind.reports || kind.sent[report] == 0) {
        blame(QStringLiteral("report %1 of pilot %2, which was never sent").arg(number).arg(pilot));
        return -1;
    }
    const int before = kind.copies[report]++;
    const std::uint32_t newest = m_newestOf[static_cast<size_t>(pilot)];
    if (!isInOrder(pilot, kind.lines[report], copy) || before > copy)
        blame(QStringLiteral("report %1 of pilot %2, copy %3: line %4 after line %5")
                  .arg(number)
                  .arg(pilot)
                  .arg(before + 1)
                  .arg(kind.lines[report])
                  .arg(newest));
    m_heartbeatPilot = -1;
    if (kind.isMeasured(pilot, number)) {
        if (copy > before) { // the second took the place of the first
            ++m_tally.overtaken;
            kind.copies[report]++;
        }
        ++m_tally.messages;
        m_latencies.push_back(now - kind.sent[report]);
    }
    return before;
}

void Ledger::receiveFast(const Message &message, std::int64_t now)
{
    const int pilot = pilotOf(message, 16);
    if (pilot < 0)
        return;
    const int number = crowd::fastNumberAt(pilot, message.number(1));
    const crowd::Report due = crowd::fastReport(pilot, number);
    const double speeds[] = {due.groundSpeed, crowd::slowReport(pilot, 0).groundSpeed};
    const int copy = isNear(message.number(15), speeds[0]) ? 0 : 1;
    const int before = note(m_fast, pilot, number, copy, now);
    if (before < 0)
        return;
    const bool measured = m_fast.isMeasured(pilot, number);
    m_complete[static_cast<size_t>(pilot)] = m_complete[static_cast<size_t>(pilot)] || before + 1 == fastCopies;
    const double values[] = {due.latitude,    due.longitude,   due.altitude,    due.height,        due.heading,
                             due.bank,        due.pitch,       due.velocity[0], due.velocity[1],   due.velocity[2],
                             due.rotation[0], due.rotation[1], due.rotation[2], due.noseWheelAngle};
    // An aircraft that is on one of the two ways only, at the start, gives no first and second message.
    bool right = !measured || isNear(message.number(15), speeds[copy]);
    for (std::uint32_t i = 0; i < std::size(values); ++i)
        right = right && isNear(message.number(i + 1), values[i]);
    if (!right)
        blame(QStringLiteral("values of fast report %1 of pilot %2").arg(number).arg(pilot));
}

void Ledger::receiveSlow(const Message &message, std::int64_t now)
{
    const int pilot = pilotOf(message, 9);
    if (pilot < 0)
        return;
    const int number = crowd::slowNumberAt(pilot, message.number(1));
    if (note(m_slow, pilot, number, 0, now) < 0)
        return;
    const crowd::Report due = crowd::slowReport(pilot, number);
    const double values[] = {due.latitude, due.longitude, due.altitude, due.height,
                             due.heading,  due.bank,      due.pitch,    due.groundSpeed};
    bool right = true;
    for (std::uint32_t i = 0; i < std::size(values); ++i)
        right = right && isNear(message.number(i + 1), values[i]);
    m_heartbeatPilot = pilot;
    if (m_slow.isMeasured(pilot, number)) {
        right = right && !m_heartbeatDue[static_cast<size_t>(pilot)];
        m_heartbeatDue[static_cast<size_t>(pilot)] = true;
    }
    if (!right)
        blame(QStringLiteral("slow report %1 of pilot %2").arg(number).arg(pilot));
}

void Ledger::receiveHeartbeat(const Message &message)
{
    const int pilot = pilotOf(message, 1);
    if (pilot < 0)
        return;
    // At the start there are aircraft whose positions are not told yet.
    if (m_measuring && pilot != m_heartbeatPilot) {
        if (m_heartbeatDue[static_cast<size_t>(pilot)])
            ++m_disordered;
        else
            ++m_looseHeartbeats[static_cast<size_t>(pilot)];
    }
    m_heartbeatPilot = -1;
    if (m_heartbeatDue[static_cast<size_t>(pilot)])
        ++m_tally.messages;
    m_heartbeatDue[static_cast<size_t>(pilot)] = false;
}

QString Ledger::receiveAdd(const Message &message)
{
    const int pilot = pilotOf(message, 9);
    if (pilot < 0)
        return {};
    // Each pilot has latitudes of his own.
    const double latitude = message.number(3);
    const bool his = crowd::fastNumberAt(pilot, latitude) >= 0 || crowd::slowNumberAt(pilot, latitude) >= 0;
    if (m_measuring || !his || message.text(1) != crowd::airline || message.text(2) != crowd::typeCode)
        blame(QStringLiteral("the addition of pilot %1").arg(pilot));
    return crowd::callsignOf(pilot);
}

/// All but what the reports themselves give.
void Ledger::receiveOther(const Message &message)
{
    constexpr std::string_view always[] = {"ATC", "STATION_CALLSIGN"}; // every second
    constexpr std::string_view atStart[] = {"CSL", "CONN", "ACCONF"};
    if (std::ranges::find(always, message.name()) != std::end(always))
        return;
    if (m_measuring || std::ranges::find(atStart, message.name()) == std::end(atStart))
        blame(QStringLiteral("a message %1, which may not come").arg(message.nameForPeople()));
    else if (message.name() == "ACCONF")
        pilotOf(message, 12);
}

void Ledger::blame(const QString &what)
{
    if (m_tally.wrong++ == 0)
        m_tally.firstWrong = what;
}

} // namespace tarvo::bench

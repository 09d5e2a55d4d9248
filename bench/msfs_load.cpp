// The whole client in MSFS mode under the traffic of a crowd: how long a line of the network takes to its call of
// SimConnect's library, and what the client costs. The client runs in a process of its own, with the simulator's
// stand-in in it, so that the share of a core is that of both; this one plays the FSD server with everybody behind it.
// Gives 1 when a budget is not kept.
//
// msfs_load [--pilots 500] [--rate 5] [--seconds 60]
#include "msfs/MsfsClient.h"
#include "traffic/Budgets.h"
#include "traffic/ClientArguments.h"
#include "traffic/Crowd.h"
#include "traffic/FsdEnd.h"
#include "traffic/Ledger.h"
#include "traffic/ProcessCost.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <vector>

using namespace tarvo::bench;

namespace {

constexpr double longestPercentile99Ms = 2;
constexpr double largestShare = 10; ///< percent of one core, by the client with all its threads
constexpr int longestStartMs = 120'000;
constexpr int settleMs = 6'000;
constexpr int slowIntervalMs = 5'000;
constexpr int drainMs = 2'000;
constexpr int callsOfFast = 2; ///< one by each of the two managers
constexpr int callsOfSlow = 1;

struct Result
{
    double share = 0;     ///< of one core
    double idleShare = 0; ///< the same before anybody came
    std::vector<double> latenciesMs;
    int missing = 0;
    int wrong = 0;
};

void pass(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Runs the event loop until `condition` holds; false when that takes too long.
bool waitFor(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(longestStartMs);
    while (!condition() && !deadline.hasExpired())
        pass(50);
    return condition();
}

/// The client's share of a core while `ms` pass.
double shareDuring(int ms, qint64 processId)
{
    const double before = costOf(processId).cpuSeconds;
    const std::int64_t start = steadyNs();
    pass(ms);
    return (costOf(processId).cpuSeconds - before) * 1e9 / static_cast<double>(steadyNs() - start);
}

std::vector<WrittenWaypoint> readWaypoints(const QString &folder)
{
    QFile file(waypointFile(folder));
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    std::vector<WrittenWaypoint> all(static_cast<std::size_t>(bytes.size()) / sizeof(WrittenWaypoint));
    if (!all.empty())
        std::memcpy(all.data(), bytes.constData(), all.size() * sizeof(WrittenWaypoint));
    return all;
}

/// What was sent while it was measured, and when the calls for it came.
class Calls
{
public:
    Calls(const Ledger &ledger, std::int64_t from, std::int64_t to) : m_ledger(ledger), m_from(from), m_to(to) {}

    void add(const WrittenWaypoint &waypoint, Result &result)
    {
        const int fast = waypoint.pilot < 0 ? -1 : crowd::fastNumberAt(waypoint.pilot, waypoint.latitude);
        const int slow = waypoint.pilot < 0 ? -1 : crowd::slowNumberAt(waypoint.pilot, waypoint.latitude);
        const std::int64_t sent = fast >= 0 ? m_ledger.fastSentNs(waypoint.pilot, fast)
                                            : m_ledger.slowSentNs(std::max(waypoint.pilot, 0), slow);
        if (sent == 0 || waypoint.ns < sent)
            ++result.wrong;
        if (sent < m_from || sent >= m_to)
            return;
        result.latenciesMs.push_back(static_cast<double>(waypoint.ns - sent) / 1e6);
        ++m_counts[{waypoint.pilot, fast, slow}];
    }

    void countMissing(int pilots, int reports, Result &result) const
    {
        for (int pilot = 0; pilot < pilots; ++pilot) {
            for (int number = 0; number < reports; ++number) {
                if (isMeasured(m_ledger.fastSentNs(pilot, number)))
                    result.missing += callsOfFast - count({pilot, number, -1});
                if (isMeasured(m_ledger.slowSentNs(pilot, number)))
                    result.missing += callsOfSlow - count({pilot, -1, number});
            }
        }
    }

private:
    using Key = std::array<int, 3>; ///< pilot, number of the fast report or -1, number of the slow one or -1

    bool isMeasured(std::int64_t sent) const { return sent >= m_from && sent < m_to; }
    int count(const Key &key) const
    {
        const auto found = m_counts.find(key);
        return found == m_counts.end() ? 0 : found->second;
    }

    const Ledger &m_ledger;
    const std::int64_t m_from;
    const std::int64_t m_to;
    std::map<Key, int> m_counts;
};

struct Wish
{
    int pilots = 500;
    double rate = 5;
    double seconds = 60;
};

/// Empty, or why there is no result.
QString run(const Wish &wish, Result &result)
{
    const int reports = static_cast<int>((wish.seconds + 2 * longestStartMs / 1000.0) * std::max(wish.rate, 1.0));
    const QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("client"));
    Ledger ledger(wish.pilots, reports);
    FsdEnd fsd(wish.pilots, wish.rate, ledger);
    QProcess client;
    if (!fsd.listen())
        return QStringLiteral("no free port");
    QDir().mkpath(folder + QStringLiteral("/resources"));
    QFile::copy(QStringLiteral(TARVO_SOURCE_DIR "/resources/Doc8643.txt"),
                folder + QStringLiteral("/resources/Doc8643.txt"));
    const ClientArguments arguments{.folder = folder, .fsdPort = fsd.port(), .xplanePort = 0, .pluginUrl = {}};
    client.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    client.start(QCoreApplication::applicationFilePath(),
                 QStringList{QStringLiteral("client"), QString::number(wish.pilots)} + arguments.toWords());
    if (!waitFor([&] { return fsd.isLoggedIn(); }))
        return QStringLiteral("the client does not log in");
    pass(drainMs);
    result.idleShare = shareDuring(static_cast<int>(std::min(wish.seconds, 20.0) * 1000), client.processId());
    fsd.startTraffic();
    QByteArray said;
    if (!waitFor([&] { return (said += client.readAllStandardOutput()).contains(completeWord); }))
        return QStringLiteral("not everybody flies");
    fsd.setSlowInterval(slowIntervalMs);
    pass(settleMs);
    const std::int64_t from = steadyNs();
    result.share = shareDuring(static_cast<int>(wish.seconds * 1000), client.processId());
    const std::int64_t to = steadyNs();
    fsd.stopTraffic();
    pass(drainMs);
    fsd.hangUp();
    if (!client.waitForFinished(30'000))
        client.kill();
    client.waitForFinished();
    Calls calls(ledger, from, to);
    for (const WrittenWaypoint &waypoint : readWaypoints(folder))
        calls.add(waypoint, result);
    calls.countMissing(wish.pilots, reports, result);
    return result.latenciesMs.empty() ? QStringLiteral("nothing was written") : QString();
}

double percentile(std::vector<double> &values, double part)
{
    const auto place = static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * part);
    std::nth_element(values.begin(), values.begin() + place, values.end());
    return values[static_cast<std::size_t>(place)];
}

/// False when a budget is not kept.
bool print(Result &result)
{
    const Judged figures[] = {
        {"% of one core", result.share * 100, largestShare},
        {"% of it without any traffic", result.idleShare * 100, std::nullopt},
        {"ms, 50 % of lines to calls", percentile(result.latenciesMs, 0.5), std::nullopt},
        {"ms, 99 % of lines to calls", percentile(result.latenciesMs, 0.99), longestPercentile99Ms},
        {"calls", static_cast<double>(result.latenciesMs.size()), std::nullopt},
        {"calls missing", static_cast<double>(result.missing), 0.0},
        {"calls wrong", static_cast<double>(result.wrong), 0.0},
    };
    bool good = true;
    for (const Judged &figure : figures) {
        std::printf("  %10.2f %-30s", figure.value, figure.what);
        if (figure.budget)
            std::printf("  of %.2f: ratio %.2f%s", *figure.budget, figure.share(), figure.isKept() ? "" : ", OVER");
        std::printf("\n");
        good = good && figure.isKept();
    }
    return good;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    if (words.value(1) == QLatin1StringView("client"))
        return runMsfsClient(ClientArguments::fromWords(words.mid(3)), words.value(2).toInt());

    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({QStringLiteral("pilots"), QStringLiteral("Size of the crowd."), QStringLiteral("number"),
                      QStringLiteral("500")});
    parser.addOption({QStringLiteral("rate"), QStringLiteral("Fast reports of each pilot in a second."),
                      QStringLiteral("Hz"), QStringLiteral("5")});
    parser.addOption({QStringLiteral("seconds"), QStringLiteral("How long it measures."), QStringLiteral("seconds"),
                      QStringLiteral("60")});
    parser.process(application);
    const Wish wish{.pilots = qBound(1, parser.value(QStringLiteral("pilots")).toInt(), 3500),
                    .rate = qBound(0.1, parser.value(QStringLiteral("rate")).toDouble(), 10.0),
                    .seconds = qBound(1.0, parser.value(QStringLiteral("seconds")).toDouble(), 600.0)};
    Result result;
    std::printf("%d pilots at %.1f Hz in MSFS mode\n", wish.pilots, wish.rate);
    if (const QString failure = run(wish, result); !failure.isEmpty()) {
        std::printf("  failed: %s\n", qPrintable(failure));
        return 1;
    }
    const bool good = print(result);
    std::printf("%s\n", good ? "all budgets kept" : "NOT all budgets kept");
    return good ? 0 : 1;
}

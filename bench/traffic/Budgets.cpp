#include "traffic/Budgets.h"

#include <algorithm>

namespace tarvo::bench {

namespace {

constexpr double bareRatio = 1.6;
constexpr double quietPercentile99Ms = 2;
constexpr double busyPercentile99Ms = 5;
constexpr double busyLinesPerSecond = 2500; ///< 500 pilots at 5 Hz

std::optional<double> percentile99Of(const Load &load, bool busy)
{
    if (load.ordinaryThreads)
        return std::nullopt;
    if (!busy)
        return quietPercentile99Ms;
    return load.pilots * load.rate <= busyLinesPerSecond ? std::optional(busyPercentile99Ms) : std::nullopt;
}

} // namespace

std::vector<Judged> judge(const Load &load, const LoadResult &result, bool busy)
{
    const bool isClient = !busy && !load.ordinaryThreads;
    const Tally &tally = result.tally;
    return {
        {"times the bare program", result.bareRatio(), isClient ? std::optional(bareRatio) : std::nullopt},
        {"ms, 99 % of lines to messages", tally.percentile99Ms, percentile99Of(load, busy)},
        {"positions overtaken", static_cast<double>(tally.overtaken), isClient ? std::optional(0.0) : std::nullopt},
        {"messages missing", static_cast<double>(tally.missing), 0.0},
        {"messages wrong", static_cast<double>(tally.wrong), 0.0},
    };
}

bool isGood(const LoadResult &result, const std::vector<Judged> &figures)
{
    return result.failure.isEmpty() && result.tally.messages > 0 && std::ranges::all_of(figures, &Judged::isKept);
}

} // namespace tarvo::bench

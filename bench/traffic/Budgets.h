#pragma once

#include "traffic/LoadRun.h"

#include <optional>
#include <vector>

namespace tarvo::bench {

/// A figure of a run, and the most that it may be; without a budget it is told only.
struct Judged
{
    const char *what; ///< with its unit
    double value = 0;
    std::optional<double> budget;

    bool isKept() const { return !budget || value <= *budget; }
    /// 1 is the whole budget; of a budget of 0 the value itself.
    double share() const { return budget && *budget > 0 ? value / *budget : value; }
};

/// Quiet: 1.6 times the bare program, 99 % within 2 ms, nothing lost, not even positions. With busy cores: nothing lost
/// but positions that a newer one has overtaken, and 99 % within 5 ms up to 500 pilots at 5 Hz. What nng's threads
/// would do as ordinary ones breaks no budget but that nothing is lost or wrong.
std::vector<Judged> judge(const Load &load, const LoadResult &result, bool busy);

/// False for a run that failed, measured nothing, or keeps one of its budgets not.
bool isGood(const LoadResult &result, const std::vector<Judged> &figures);

} // namespace tarvo::bench

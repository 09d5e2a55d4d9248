#pragma once

#include "traffic/Ledger.h"

#include <QString>

namespace tarvo::bench {

struct Load
{
    int pilots = 500;
    double rate = 5;              ///< fast reports of each pilot in a second
    double seconds = 120;         ///< measured, after everybody is there
    bool ordinaryThreads = false; ///< of nng's, without their batch scheduling
};

struct LoadResult
{
    QString failure;    ///< why there is no result, or none to trust; empty when all is well
    double seconds = 0; ///< really measured
    std::uint64_t lines = 0;
    Tally tally;
    double cpuShare = 0;         ///< of one core, by the client with all its threads; 1 is all of it
    double idleShare = 0;        ///< the same while connected and alone: what X-Plane and the own reports cost
    double bareShare = 0;        ///< the same by the bare program, see measureBare()
    double residentStartMiB = 0; ///< of the client, before the first pilot
    double residentCrowdMiB = 0; ///< when everybody is there
    double residentEndMiB = 0;

    double bareRatio() const { return bareShare > 0 ? cpuShare / bareShare : 0; }
    double cpuPerLineUs() const { return perLineUs(cpuShare); }
    /// Without what the client does for itself, which would flatter a large crowd.
    double trafficCpuPerLineUs() const { return perLineUs(cpuShare - idleShare); }

private:
    double perLineUs(double share) const { return lines > 0 ? share * seconds * 1e6 / static_cast<double>(lines) : 0; }
};

/// Starts a client in a process of its own, plays everybody else, and measures. Needs a QCoreApplication.
LoadResult runLoad(const Load &load);

} // namespace tarvo::bench

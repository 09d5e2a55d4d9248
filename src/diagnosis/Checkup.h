#pragma once

#include "diagnosis/Finding.h"
#include "model/SimulatorMode.h"

#include <functional>
#include <optional>

namespace tarvo {
struct ServiceEndpoints;
}

namespace tarvo::diagnosis {

struct StoredSettings;

/// What is looked at.
struct CheckupPlan
{
    QString program; ///< this one, tarvo-support
    QString dataRoot;
    const StoredSettings &settings;
    const ServiceEndpoints &endpoints;
    /// The simulator that the pilot flies; nothing: either.
    std::optional<model::SimulatorMode> simulator = {};
};

/// Does all checks, one after another, and hands each finding on as it comes. The sound system comes last: a system
/// that lacks its configuration ends the process there. Each check has its own time limit, seconds; needs the
/// application object. Waits.
Findings checkUp(const CheckupPlan &plan, const std::function<void(const Finding &)> &tell);

} // namespace tarvo::diagnosis

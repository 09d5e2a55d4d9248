#pragma once

#include "common/Worker.h"

#include <chrono>
#include <memory>
#include <optional>
#include <utility>

namespace tarvo::diagnosis {

/// What `work` gives, or nothing when that takes longer than `limit`. Then it is left behind with its thread, so it
/// owns what it uses.
template <class Work>
auto within(std::chrono::milliseconds limit, Work work)
{
    using Result = decltype(work());
    const auto result = std::make_shared<std::optional<Result>>();
    common::Worker worker("check", 1);
    worker.post([result, work = std::move(work)] { *result = work(); });
    if (worker.waitUntilIdle(limit))
        return std::move(*result);
    worker.leave();
    return std::optional<Result>();
}

} // namespace tarvo::diagnosis

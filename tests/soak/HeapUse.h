#pragma once

#include <QtGlobal>

#include <optional>

namespace tarvo::test {

/// Bytes that the process has allocated and not freed; nothing where the system doesn't tell.
std::optional<qint64> heapInUse();

} // namespace tarvo::test

#pragma once

#include <cstddef>

namespace tarvo::test {

/// How often this thread has taken memory or given it back, by new and delete, since the program's beginning.
std::size_t allocationCount();

} // namespace tarvo::test

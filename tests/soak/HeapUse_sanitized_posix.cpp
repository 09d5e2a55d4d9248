#include "soak/HeapUse.h"

#include <cstddef>

/// As <sanitizer/allocator_interface.h> declares it, which g++ comes without.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes(); // NOLINT(bugprone-reserved-identifier)

namespace tarvo::test {

/// A sanitizer has an allocator of its own, which the C library's figures leave out.
std::optional<qint64> heapInUse()
{
    return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
}

} // namespace tarvo::test

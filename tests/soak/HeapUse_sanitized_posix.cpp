#include "soak/HeapUse.h"

#include <sanitizer/allocator_interface.h>

namespace tarvo::test {

/// A sanitizer has an allocator of its own, which the C library's figures leave out.
std::optional<qint64> heapInUse()
{
    return static_cast<qint64>(__sanitizer_get_current_allocated_bytes());
}

} // namespace tarvo::test

#include "soak/HeapUse.h"

#include <malloc.h>

namespace tarvo::test {

std::optional<qint64> heapInUse()
{
    malloc_trim(0); // puts together what lies free in pieces, which would count as used
    const struct mallinfo2 use = mallinfo2();
    return static_cast<qint64>(use.uordblks + use.hblkhd); // in the arenas of all threads, and mapped on its own
}

} // namespace tarvo::test

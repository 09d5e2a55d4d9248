#pragma once

namespace tarvo::test {

/// A moment, or a span between two, in ms.
struct ThreadTime
{
    double wallMs = 0;
    double processorMs = 0; ///< what the calling thread itself has used of a processor

    static ThreadTime now();
};

} // namespace tarvo::test

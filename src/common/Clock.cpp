#include "common/Clock.h"

#include <chrono>

namespace tarvo::common {

namespace {

template <class C>
qint64 millisecondsOf()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(C::now().time_since_epoch()).count();
}

class SystemClock final : public Clock
{
public:
    qint64 wallMs() const override { return millisecondsOf<std::chrono::system_clock>(); }
    qint64 steadyMs() const override { return millisecondsOf<std::chrono::steady_clock>(); }
};

} // namespace

const Clock &systemClock()
{
    static const SystemClock clock;
    return clock;
}

} // namespace tarvo::common

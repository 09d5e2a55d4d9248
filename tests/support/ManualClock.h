#pragma once

#include "common/Clock.h"

namespace tarvo::test {

/// A clock that stands still until a test moves it.
class ManualClock : public common::Clock
{
public:
    explicit ManualClock(qint64 wallMs = 1'700'000'000'000) : m_wallMs(wallMs) {}

    qint64 wallMs() const override { return m_wallMs; }
    qint64 steadyMs() const override { return m_steadyMs; }

    /// Moves both times on by `ms`.
    void advance(qint64 ms)
    {
        m_wallMs += ms;
        m_steadyMs += ms;
    }

private:
    qint64 m_wallMs;
    qint64 m_steadyMs = 1'000'000;
};

} // namespace tarvo::test

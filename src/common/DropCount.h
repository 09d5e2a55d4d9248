#pragma once

#include <QtGlobal>

#include <optional>

namespace tarvo::common {

/// Counts what is dropped, and says which drops are worth a line: a flood of them must not become a flood of lines that
/// fills the disk. Each line tells the total, so that none is lost from sight.
class DropCount
{
public:
    /// Between two warnings.
    static constexpr qint64 warningIntervalMs = 60'000;
    /// Every drop gets its line, up to this many; then each doubling (40, 80, 160...).
    static constexpr quint64 loggedBurst = 20;

    enum class Line
    {
        None,
        Debug,
        Warning, ///< the first one, and then one a minute
    };

    /// Counts `count` more, at `nowMs` of a clock that never jumps.
    Line add(qint64 nowMs, quint64 count = 1);
    /// So many since the beginning or reset().
    quint64 total() const { return m_total; }
    /// Gives the total, and counts from 0 again. Warnings keep their distance.
    quint64 reset();

private:
    quint64 m_total = 0;
    quint64 m_nextLogged = 1;
    std::optional<qint64> m_warnedMs;
};

} // namespace tarvo::common

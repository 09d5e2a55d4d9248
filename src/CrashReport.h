#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tarvo::lastwords {

// What a crash file is made of. All of it may be called by a signal handler: it takes no memory and no lock.

/// A text of bounded length; what doesn't fit is cut.
class BoundedText
{
public:
    BoundedText &operator<<(const char *text);
    BoundedText &operator<<(std::uint64_t number) { return add(number, 10, 1); }
    /// "0x" and lower-case digits.
    BoundedText &hex(std::uint64_t number);
    /// With leading zeros up to `width` digits.
    BoundedText &padded(std::uint64_t number, unsigned width) { return add(number, 10, width); }

    const char *data() const { return m_text.data(); } ///< ends with a zero
    std::size_t size() const { return m_size; }

private:
    BoundedText &add(std::uint64_t number, unsigned base, unsigned width);

    std::array<char, 1024> m_text{};
    std::size_t m_size = 0;
};

/// "crash-<yyyy-MM-dd_hh-mm-ss>.txt" for seconds since the epoch, UTC, which are not negative. The C library's own
/// calendar may take a lock.
BoundedText fileName(std::int64_t seconds);

/// Appends to the report.
using Write = void (*)(const char *text, std::size_t size);

/// All but the calls: version, `what` happened, the exception if one was the cause, the thread, the last lines of the
/// log.
void writeHead(Write write, const BoundedText &what, const BoundedText &thread);

/// True for the first caller of the process alone: one report is enough, and a crash in it must not begin another.
bool isFirstReport();

/// Takes the system's crashes from here on. The file goes to `folder`. Each system has its own.
void catchCrashes(const char *folder);

} // namespace tarvo::lastwords

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace tarvo::voice {

/// Cuts what the control connection brings into lines.
class LineBuffer
{
public:
    /// What has no end after so many bytes is no line, and is discarded.
    static constexpr std::size_t longestUnended = 65536;
    /// As much is received at once.
    static constexpr std::size_t roomSize = 4096;

    LineBuffer() : m_bytes(8192) {}

    /// Room for roomSize more bytes. Valid until the next call; so is what next() gives.
    std::span<std::uint8_t> room();
    /// So many have been written there.
    void add(std::size_t size) { m_end += size; }
    /// The next whole line, without its end. To be called until there is none.
    std::optional<std::string_view> next();

private:
    std::vector<std::uint8_t> m_bytes;
    std::size_t m_begin = 0;   ///< of the line that is not ended yet
    std::size_t m_scanned = 0; ///< no end stands between m_begin and here
    std::size_t m_end = 0;     ///< of what has been written
};

} // namespace tarvo::voice

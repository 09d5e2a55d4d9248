#pragma once

#include <QtGlobal>

#include <cstddef>
#include <string>
#include <unordered_map>

namespace tarvo::voice {

/// Who was heard last on each frequency, and thereby who holds it: whoever was first, for as long as his packets come
/// at gaps below 100 ms.
class Speakers
{
public:
    /// A packet of `callsign` on `frequency`, in kHz. False when another holds it, which changes nothing. `nowMs`: of a
    /// clock that never jumps.
    bool take(qint32 frequency, const std::string &callsign, qint64 nowMs);

    std::size_t rememberedFrequencies() const { return m_last.size(); }

private:
    struct Speaker
    {
        std::string callsign;
        qint64 lastMs;
    };

    std::unordered_map<qint32, Speaker> m_last;
};

} // namespace tarvo::voice

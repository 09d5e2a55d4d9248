#pragma once

#include "voice/engine/Transmitter.h"

#include <map>

namespace tarvo::voice {

/// The radios of a session, by id and by frequency.
class TransmitterTable
{
public:
    /// Adds it, or takes the place of the one with its id.
    void set(const Transmitter &transmitter) { m_byId[transmitter.id] = transmitter; }
    void clear() { m_byId.clear(); }

    /// Null without one.
    const Transmitter *find(quint32 id) const;
    /// The one that is tuned to `frequency`, in kHz; of two one that is heard, and then the higher id. Null
    /// without one, and for 0.
    const Transmitter *tunedTo(qint32 frequency) const;

    auto begin() const { return m_byId.begin(); }
    auto end() const { return m_byId.end(); }

private:
    std::map<quint32, Transmitter> m_byId;
};

} // namespace tarvo::voice

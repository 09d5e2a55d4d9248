#include "voice/client/TransmitterTable.h"

namespace tarvo::voice {

const Transmitter *TransmitterTable::find(quint32 id) const
{
    const auto found = m_byId.find(id);
    return found == m_byId.end() ? nullptr : &found->second;
}

const Transmitter *TransmitterTable::tunedTo(qint32 frequency) const
{
    const Transmitter *tuned = nullptr;
    for (const auto &[id, transmitter] : m_byId) {
        const bool isTuned = frequency > 0 && transmitter.frequency == static_cast<quint32>(frequency);
        if (isTuned && (!tuned || transmitter.receive || !tuned->receive))
            tuned = &transmitter;
    }
    return tuned;
}

} // namespace tarvo::voice

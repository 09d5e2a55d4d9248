#include "manager/RadioReception.h"
#include "model/RadioStackState.h"

namespace tarvo::manager {

QList<uint> heardFrequencies(const QList<quint32> &frequencies, const model::RadioStackState &radio)
{
    QList<uint> heard; // never more than the two that are tuned
    for (const quint32 frequency : frequencies) {
        const bool onCom1 = radio.com1ReceiveEnabled && frequency == radio.com1Frequency;
        const bool onCom2 = radio.com2ReceiveEnabled && frequency == radio.com2Frequency;
        if ((onCom1 || onCom2) && !heard.contains(frequency))
            heard.append(frequency);
    }
    return heard;
}

} // namespace tarvo::manager

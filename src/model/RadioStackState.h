#pragma once

#include <QtGlobal>

namespace tarvo::model {

/// The own aircraft's radios and transponder. Frequencies in kHz, such as 118275; volumes 0 to 100.
struct RadioStackState
{
    bool avionicsPowerOn = false;
    quint32 com1Frequency = 0;
    quint32 com1StandbyFrequency = 0;
    bool com1TransmitEnabled = false;
    bool com1ReceiveEnabled = false;
    quint32 com1Volume = 0;
    quint32 com2Frequency = 0;
    quint32 com2StandbyFrequency = 0;
    bool com2TransmitEnabled = false;
    bool com2ReceiveEnabled = false;
    quint32 com2Volume = 0;
    bool squawkingModeC = false;
    bool squawkingIdent = false;
    quint16 transponderCode = 0; ///< the four digits read as a decimal number, such as 2000

    bool operator==(const RadioStackState &) const = default;
};

} // namespace tarvo::model

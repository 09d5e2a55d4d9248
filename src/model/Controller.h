#pragma once

#include <QString>

namespace tarvo::model {

/// The frequency that `kHz` names on a 25 kHz grid: one that ends in 20 or 70 stands for the one 5 above it, so that
/// 118020 and 118025 are the same channel.
constexpr quint32 normalisedFrequency(quint32 kHz)
{
    const quint32 ending = kHz % 100;
    return ending == 20 || ending == 70 ? kHz + 5 : kHz;
}

/// A controller in reach.
struct Controller
{
    /// Stands for "no frequency" on the network: such a station is known but not listed.
    static constexpr quint32 noFrequency = 199998;

    QString callsign;
    quint32 frequency = 0;                        ///< kHz, as received
    quint32 normalisedFrequency = 0;              ///< kHz; one that ends in 20 or 70 has 5 added
    quint32 frequencyHz = 0;                      ///< `frequency` * 1000
    double latitude = 0;                          ///< degrees
    double longitude = 0;                         ///< degrees
    qint64 lastUpdate = 0;                        ///< seconds since the epoch
    QString realName = QStringLiteral("Unknown"); ///< until told
    bool valid = false;                           ///< the server has confirmed the station
    bool deletePending = false;                   ///< goes with the next tick

    bool operator==(const Controller &) const = default;
};

} // namespace tarvo::model

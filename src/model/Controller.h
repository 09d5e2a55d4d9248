#pragma once

#include <QString>

namespace tarvo::model {

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

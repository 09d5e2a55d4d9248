#pragma once

#include <QString>

namespace tarvo::fsd::pdu {

// Numbers of the protocol. The client hands them through; names have only 0, which stands for a text that isn't known,
// and those that the client sends. On the wire they are decimal text without a leading zero or sign: "01" isn't known.

enum class NetworkRating : qint8
{
    Unknown = 0,
    Observer = 1
}; ///< -1, 0, 1 to 12
enum class NetworkFacility : quint8
{
    Observer = 0
}; ///< 0 to 6
enum class ProtocolRevision : quint8
{
    Unknown = 0,
    Classic = 9,
    Token = 100
}; ///< 0, 9, 10, 100, 101
enum class SimulatorType : quint8
{
    Unknown = 0
}; ///< 0 to 5

/// The value whose decimal text `text` is; 0 for any other text.
NetworkRating toNetworkRating(QStringView text);
NetworkFacility toNetworkFacility(QStringView text);
ProtocolRevision toProtocolRevision(QStringView text);
SimulatorType toSimulatorType(QStringView text);

/// Decimal text of any of the four.
template <class E>
QString toWire(E value)
{
    return QString::number(static_cast<int>(value));
}

} // namespace tarvo::fsd::pdu

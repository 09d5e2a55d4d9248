#pragma once

#include <QString>

#include <optional>

namespace tarvo::simulator {
enum class SimulatorType : quint8;
}

namespace tarvo::manager {

/// How this client names itself to the server.
namespace clientIdentity {
inline constexpr quint16 id = 0xBDC0;
inline constexpr int majorVersion = 3;
inline constexpr int minorVersion = 0;
inline const QLatin1StringView name("TarvoClient");
} // namespace clientIdentity

/// An id that is the same on this machine at every start. May be empty.
QString machineId();

/// What the client tells about itself and its pilot when it is asked.
struct ClientInformation
{
    QString cid;
    QString nameWithAirport;
    QString publicAddress;                             ///< as the server told it; may be empty
    std::optional<simulator::SimulatorType> simulator; ///< none: the text says "Observer"
    double latitude = 0;                               ///< degrees
    double longitude = 0;                              ///< degrees
    double altitudeMslM = 0;                           ///< metres

    /// One line of text; the altitude in feet.
    QString text() const;
};

} // namespace tarvo::manager

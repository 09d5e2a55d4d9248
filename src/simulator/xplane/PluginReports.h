#pragma once

#include <QByteArrayView>
#include <QString>

#include <optional>
#include <variant>

/// The messages from the X-Plane plugin, unpacked. Each is a MessagePack array of two: the name and an array of
/// arguments.
namespace tarvo::simulator::xplane {

namespace report {

/// "VER" [version]: the plugin's version, absent when it told none.
struct Version
{
    std::optional<int> version;
    bool operator==(const Version &) const = default;
};

/// "CSL" [[path...], valid]: whether the model paths are of use.
struct Csl
{
    bool valid = false;
    bool operator==(const Csl &) const = default;
};

/// "ADDED" [callsign]: the aircraft is drawn now.
struct Added
{
    QString callsign;
    bool operator==(const Added &) const = default;
};

/// "DELETED" [callsign]: the aircraft is gone.
struct Deleted
{
    QString callsign;
    bool operator==(const Deleted &) const = default;
};

/// "REQSTATION" [callsign]: the pilot asks for a station's information.
struct StationRequest
{
    QString callsign;
    bool operator==(const StationRequest &) const = default;
};

/// "RDIOSENT" [message]: the pilot typed a radio text.
struct RadioSent
{
    QString message;
    bool operator==(const RadioSent &) const = default;
};

/// "PRIVSENT" [to, message]: the pilot typed a private text.
struct PrivateSent
{
    QString to;
    QString message;
    bool operator==(const PrivateSent &) const = default;
};

/// "FORCEDISC" [reason]: the plugin wants the session ended.
struct ForceDisconnect
{
    QString reason;
    bool operator==(const ForceDisconnect &) const = default;
};

/// "SHUTDOWN" []: the simulator is closing.
struct Shutdown
{
    bool operator==(const Shutdown &) const = default;
};

/// Any other name; such a message is ignored.
struct Unknown
{
    bool operator==(const Unknown &) const = default;
};

/// Bytes that are no message, or a known message with arguments of another shape.
struct Malformed
{
    QString why; ///< English, for the log; holds nothing of the message
    bool operator==(const Malformed &) const = default;
};

} // namespace report

using PluginReport = std::variant<report::Unknown, report::Malformed, report::Version, report::Csl, report::Added,
                                  report::Deleted, report::StationRequest, report::RadioSent, report::PrivateSent,
                                  report::ForceDisconnect, report::Shutdown>;

/// Unpacks one message. Never throws: bytes that are wrong give report::Malformed. Whatever sizes the message claims,
/// the memory that this takes stays within a small multiple of its own size. Arguments beyond those above are ignored.
PluginReport unpackReport(QByteArrayView message);

} // namespace tarvo::simulator::xplane

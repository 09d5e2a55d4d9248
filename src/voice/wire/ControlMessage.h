#pragma once

#include <QtGlobal>

#include <optional>
#include <string>
#include <string_view>

namespace tarvo::voice {

/// What a control line is about; its wire word stands beside it.
enum class ControlMessageType : quint8
{
    Channel,      ///< "channel": how one transmitter is tuned
    Ping,         ///< "ping"
    Pong,         ///< "pong"
    Error,        ///< "error": a text for the pilot
    TextReceive,  ///< "text_receive"
    VoiceReceive, ///< "voice_receive"
    Message,      ///< "message": text to the server; from it, the greeting
    Disconnect    ///< "disconnect"; and every word that is none of these
};

/// One line of the control connection. Texts are UTF-8.
struct ControlMessage
{
    ControlMessageType type = ControlMessageType::Disconnect;
    qint32 cid = 0;         ///< the sender's numeric user id; 0 where unknown
    std::string callsign;   ///< the sender's; empty where unknown
    qint32 transmitter = 0; ///< 0 or 1
    std::string data;       ///< the body; its form depends on the type

    bool operator==(const ControlMessage &) const = default;
};

/// Compact JSON with all five keys, sorted, without the line's end. Throws nlohmann::json::exception for texts that
/// aren't UTF-8.
std::string serializeControlMessage(const ControlMessage &message);

/// Reads a line without its end. A key that is absent has its default, and an unknown word means Disconnect. Throws
/// nlohmann::json::exception for what isn't a JSON object, and for a key of another type.
ControlMessage parseControlMessage(std::string_view line);

/// The body of a Channel line: "118700:1" for 118.700 MHz, received. `frequency`: kHz.
std::string channelData(quint32 frequency, bool receive);

/// The callsign that the server assigns, if this body of a Message line is its greeting, such as
/// "SERVER:CCA1234:Welcome to the voice network".
std::optional<std::string> callsignOfGreeting(std::string_view data);

} // namespace tarvo::voice

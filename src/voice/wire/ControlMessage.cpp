#include "voice/wire/ControlMessage.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <string>

namespace tarvo::voice {

using Json = nlohmann::json;

namespace {

constexpr std::array<std::string_view, 8> words{"channel",      "ping",          "pong",    "error",
                                                "text_receive", "voice_receive", "message", "disconnect"};

constexpr std::string_view greetingPrefix = "SERVER:";

std::string_view wordOf(ControlMessageType type)
{
    return words[std::min<size_t>(static_cast<size_t>(type), words.size() - 1)];
}

ControlMessageType typeOf(std::string_view word)
{
    const auto known = std::min(std::find(words.begin(), words.end(), word), std::prev(words.end()));
    return static_cast<ControlMessageType>(std::distance(words.begin(), known));
}

/// By reference, because by value nlohmann-json turns true into 1, and a fraction into anything.
qint32 integerAt(const Json &object, const char *key)
{
    const auto found = object.find(key);
    if (found == object.end())
        return 0;
    const auto number = found->get_ref<const Json::number_integer_t &>();
    const bool isHuge = found->is_number_unsigned() ? static_cast<quint64>(number) > std::numeric_limits<quint32>::max()
                                                    : number < std::numeric_limits<qint32>::min();
    if (isHuge)
        throw Json::out_of_range::create(406, std::string(key) + " has more than 32 bits", &object);
    return static_cast<qint32>(number); // an id that is written as unsigned, too
}

} // namespace

std::string serializeControlMessage(const ControlMessage &message)
{
    const Json object{{"type", wordOf(message.type)},
                      {"cid", message.cid},
                      {"callsign", message.callsign},
                      {"transmitter", message.transmitter},
                      {"data", message.data}};
    return object.dump(-1, ' ', false, Json::error_handler_t::strict);
}

ControlMessage parseControlMessage(std::string_view line)
{
    const Json object = Json::parse(line);
    // Whatever isn't an object makes value() throw.
    return {.type = typeOf(object.value("type", "disconnect")),
            .cid = integerAt(object, "cid"),
            .callsign = object.value("callsign", std::string()),
            .transmitter = integerAt(object, "transmitter"),
            .data = object.value("data", std::string())};
}

std::string channelData(quint32 frequency, bool receive)
{
    return std::to_string(frequency) + (receive ? ":1" : ":0");
}

std::optional<std::string> callsignOfGreeting(std::string_view data)
{
    if (!data.starts_with(greetingPrefix) || data.find("Welcome") == std::string_view::npos)
        return std::nullopt;
    const std::string_view behind = data.substr(greetingPrefix.size());
    return std::string(behind.substr(0, behind.find(':')));
}

} // namespace tarvo::voice

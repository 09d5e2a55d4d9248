// Any bytes as a control line of the voice server, and as the text in it.
#include "voice/wire/ControlMessage.h"

#include <nlohmann/json.hpp>

using namespace tarvo::voice;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const std::string line(data, data + size);
    callsignOfGreeting(line);
    try {
        const ControlMessage message = parseControlMessage(line);
        callsignOfGreeting(message.data);
        if (parseControlMessage(serializeControlMessage(message)) != message)
            __builtin_trap(); // what was read can be written
    } catch (const nlohmann::json::exception &) {
        return 0; // not a line
    }
    return 0;
}

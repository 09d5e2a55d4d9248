// Any text as the stored key of push-to-talk.
#include "input/PttBinding.h"
#include "input/PttKey.h"
#include "input/PttService.h"

using namespace tarvo::input;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto binding = parsePttKey(text);
    if (!binding)
        return 0;
    const bool hasJoystick = binding->type == PttBinding::Type::Joystick;
    if (PttService::normalizeKey(text) != text || (!hasJoystick && binding->joystick != -1))
        __builtin_trap();
    if (parsePttKey(pttKeyOf(*binding)) != binding)
        __builtin_trap(); // what can be read is written so that it reads the same
    return 0;
}

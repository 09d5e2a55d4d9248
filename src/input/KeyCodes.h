#pragma once

#include <optional>

namespace tarvo::input {

/// Windows' virtual-key code of the key to which Linux's evdev gives this code; none for keys that Windows doesn't
/// know. Letters and signs are told by their place on a US keyboard, whatever is printed on them.
std::optional<int> virtualKeyOf(int evdevCode);

/// The way back. Of the two Enter keys, which share a code, the main one.
std::optional<int> evdevCodeOf(int virtualKey);

} // namespace tarvo::input

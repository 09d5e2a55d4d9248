#pragma once

#include <QString>

#include <optional>

namespace tarvo::input {

struct PttBinding;

/// A binding as the configuration stores it: "kb:163", "ms:8" or "js:0:3" (joystick, button). Empty: none.
using PttKey = QString;

/// The text of a binding.
PttKey pttKeyOf(const PttBinding &binding);

/// The binding of a text; none for anything else. What follows the two numbers of a joystick's is ignored.
std::optional<PttBinding> parsePttKey(const PttKey &key);

} // namespace tarvo::input

#pragma once

namespace tarvo::input {

/// The mouse buttons that can be bound, as bindings are stored.
enum MouseMask : int
{
    LeftButton = 1,
    RightButton = 2,
    MiddleButton = 4,
    FirstSideButton = 8,
    SecondSideButton = 16,
};

} // namespace tarvo::input

#pragma once

#include <QMetaType>
#include <QtGlobal>

namespace tarvo::input {

/// The one control that keys the radio.
struct PttBinding
{
    enum class Type : quint8
    {
        Keyboard = 0,
        Mouse = 1,
        Joystick = 2,
    };

    Type type = Type::Keyboard;
    /// Keyboard: Windows' virtual-key code; mouse: a mask of MouseMask.h; joystick: the button's number.
    qint32 code = 0;
    qint32 joystick = -1; ///< SDL's instance id; -1 for keyboard and mouse

    bool operator==(const PttBinding &) const = default;
};

} // namespace tarvo::input

Q_DECLARE_METATYPE(tarvo::input::PttBinding)

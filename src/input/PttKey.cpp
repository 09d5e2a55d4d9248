#include "input/PttKey.h"

#include "input/PttBinding.h"

#include <QStringList>

namespace tarvo::input {

namespace {

using Type = PttBinding::Type;

std::optional<qint32> number(const QString &text)
{
    bool isNumber = false;
    const qint32 value = text.toInt(&isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
}

std::optional<PttBinding> withoutJoystick(Type type, const QString &code)
{
    const auto value = number(code);
    return value ? std::optional(PttBinding{type, *value, -1}) : std::nullopt;
}

std::optional<PttBinding> ofJoystick(const QStringList &fields)
{
    if (fields.size() < 2)
        return std::nullopt;
    const auto joystick = number(fields[0]);
    const auto button = number(fields[1]);
    if (!joystick || !button)
        return std::nullopt;
    return PttBinding{Type::Joystick, *button, *joystick};
}

} // namespace

PttKey pttKeyOf(const PttBinding &binding)
{
    switch (binding.type) {
    case Type::Keyboard:
        return u"kb:%1"_qs.arg(binding.code);
    case Type::Mouse:
        return u"ms:%1"_qs.arg(binding.code);
    case Type::Joystick:
        return u"js:%1:%2"_qs.arg(binding.joystick).arg(binding.code);
    }
    return {};
}

std::optional<PttBinding> parsePttKey(const PttKey &key)
{
    const QString rest = key.mid(3);
    if (key.startsWith(u"kb:"))
        return withoutJoystick(Type::Keyboard, rest);
    if (key.startsWith(u"ms:"))
        return withoutJoystick(Type::Mouse, rest);
    if (key.startsWith(u"js:"))
        return ofJoystick(rest.split(u':'));
    return std::nullopt;
}

} // namespace tarvo::input

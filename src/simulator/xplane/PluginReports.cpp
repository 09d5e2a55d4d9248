#include "simulator/xplane/PluginReports.h"

#include <msgpack.hpp>

#include <algorithm>
#include <exception>
#include <string_view>

namespace tarvo::simulator::xplane {

namespace {

using msgpack::object;
using msgpack::object_array;

/// Deeper nesting than any message has: the outermost array, its arguments, a list among them.
constexpr size_t deepestNesting = 8;
constexpr size_t longestArray = 65536;

/// Claimed sizes are checked before anything is allocated: no array can have more elements than there are bytes.
msgpack::unpack_limit limitsFor(size_t messageSize)
{
    const size_t elements = std::min(messageSize, longestArray);
    return {elements, elements, messageSize, messageSize, messageSize, deepestNesting};
}

/// Strings stay in the message and are not copied: it outlives the unpacked object.
bool referInPlace(msgpack::type::object_type, size_t, void *)
{
    return true;
}

const object_array &arrayOf(const object &value)
{
    if (value.type != msgpack::type::ARRAY)
        throw msgpack::type_error();
    return value.via.array;
}

const object &element(const object_array &array, uint32_t index)
{
    if (index >= array.size)
        throw msgpack::type_error();
    return array.ptr[index];
}

std::string_view bytesOf(const object &value)
{
    if (value.type != msgpack::type::STR)
        throw msgpack::type_error();
    return {value.via.str.ptr, value.via.str.size};
}

QString textAt(const object_array &arguments, uint32_t index)
{
    const std::string_view utf8 = bytesOf(element(arguments, index));
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

report::Version version(const object_array &arguments)
{
    if (arguments.size == 0)
        return {};
    return {element(arguments, 0).as<int>()};
}

report::Csl csl(const object_array &arguments)
{
    const object_array &paths = arrayOf(element(arguments, 0));
    for (uint32_t i = 0; i < paths.size; ++i)
        bytesOf(paths.ptr[i]); // only their type matters here
    return {element(arguments, 1).as<bool>()};
}

PluginReport dispatch(std::string_view name, const object_array &arguments)
{
    if (name == "VER")
        return version(arguments);
    if (name == "CSL")
        return csl(arguments);
    if (name == "ADDED")
        return report::Added{textAt(arguments, 0)};
    if (name == "DELETED")
        return report::Deleted{textAt(arguments, 0)};
    if (name == "REQSTATION")
        return report::StationRequest{textAt(arguments, 0)};
    if (name == "RDIOSENT")
        return report::RadioSent{textAt(arguments, 0)};
    if (name == "PRIVSENT")
        return report::PrivateSent{textAt(arguments, 0), textAt(arguments, 1)};
    if (name == "FORCEDISC")
        return report::ForceDisconnect{textAt(arguments, 0)};
    if (name == "SHUTDOWN")
        return report::Shutdown{};
    return report::Unknown{};
}

} // namespace

PluginReport unpackReport(QByteArrayView message)
{
    const auto size = static_cast<size_t>(message.size());
    try {
        const msgpack::object_handle handle =
            msgpack::unpack(message.data(), size, referInPlace, nullptr, limitsFor(size));
        const object_array &parts = arrayOf(handle.get());
        if (parts.size != 2)
            return report::Malformed{QStringLiteral("not an array of two")};
        return dispatch(bytesOf(parts.ptr[0]), arrayOf(parts.ptr[1]));
    } catch (const std::exception &failure) {
        return report::Malformed{QString::fromLatin1(failure.what())};
    }
}

} // namespace tarvo::simulator::xplane

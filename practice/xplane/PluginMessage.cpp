#include "practice/xplane/PluginMessage.h"

#include <QStringList>

#include <msgpack.hpp>

namespace tarvo::practice {

namespace {
constexpr std::size_t largestPart = 1 << 20;
constexpr std::size_t mostElements = 4096;
constexpr std::size_t deepest = 8;

using Packer = msgpack::packer<msgpack::sbuffer>;

void pack(Packer &packer, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        packer.pack(value.toBool());
        break;
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
        packer.pack(value.toLongLong());
        break;
    case QMetaType::Float:
    case QMetaType::Double:
        packer.pack(value.toDouble());
        break;
    case QMetaType::QString:
        packer.pack(value.toString().toStdString());
        break;
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        packer.pack_array(static_cast<uint32_t>(list.size()));
        for (const QVariant &item : list)
            pack(packer, item);
        break;
    }
    default:
        packer.pack_nil();
    }
}

QVariant unpack(const msgpack::object &object)
{
    switch (object.type) {
    case msgpack::type::BOOLEAN:
        return object.via.boolean;
    case msgpack::type::POSITIVE_INTEGER:
    case msgpack::type::NEGATIVE_INTEGER:
        return QVariant::fromValue(static_cast<qint64>(object.via.i64));
    case msgpack::type::FLOAT32:
        return static_cast<float>(object.via.f64);
    case msgpack::type::FLOAT64:
        return object.via.f64;
    case msgpack::type::STR:
        return QString::fromUtf8(object.via.str.ptr, static_cast<qsizetype>(object.via.str.size));
    case msgpack::type::ARRAY: {
        QVariantList list;
        for (uint32_t i = 0; i < object.via.array.size; ++i)
            list.append(unpack(object.via.array.ptr[i]));
        return list;
    }
    default:
        return {};
    }
}

QString textOf(const QVariant &argument)
{
    if (!argument.isValid())
        return QStringLiteral("nil");
    if (argument.typeId() == QMetaType::Float) // in its own digits: 0.3, not the double that is nearest to it
        return QString::number(argument.toDouble(), 'g', 6);
    if (argument.typeId() != QMetaType::QVariantList && argument.typeId() != QMetaType::QStringList)
        return argument.toString();
    QStringList items;
    for (const QVariant &item : argument.toList())
        items.append(textOf(item));
    return QStringLiteral("[%1]").arg(items.join(QStringLiteral(", ")));
}
} // namespace

QByteArray PluginMessage::toBytes() const
{
    msgpack::sbuffer buffer;
    Packer packer(buffer);
    packer.pack_array(2);
    packer.pack(name.toStdString());
    pack(packer, QVariant(arguments));
    return {buffer.data(), static_cast<qsizetype>(buffer.size())};
}

std::optional<PluginMessage> PluginMessage::fromBytes(const QByteArray &bytes, QString *error)
{
    try {
        const msgpack::unpack_limit limit(mostElements, mostElements, largestPart, largestPart, largestPart, deepest);
        const msgpack::object_handle handle =
            msgpack::unpack(bytes.constData(), static_cast<std::size_t>(bytes.size()), nullptr, nullptr, limit);
        const QVariantList parts = unpack(handle.get()).toList();
        if (parts.size() == 2 && parts.at(0).typeId() == QMetaType::QString &&
            parts.at(1).typeId() == QMetaType::QVariantList)
            return PluginMessage{parts.at(0).toString(), parts.at(1).toList()};
        *error = QStringLiteral("not a name and its arguments");
    } catch (const std::exception &) { // whatever the unpacker finds wrong with the bytes
        *error = QStringLiteral("%1 bytes that are no message").arg(bytes.size());
    }
    return std::nullopt;
}

QString PluginMessage::toText() const
{
    QStringList words{name};
    for (const QVariant &argument : arguments)
        words.append(textOf(argument));
    return words.join(u' ');
}

} // namespace tarvo::practice

#include "e2e/Packed.h"

#include "practice/xplane/PluginMessage.h"

#include <QtEndian>

#include <bit>

namespace tarvo::test {

namespace {

void append(QByteArray &bytes, int tag)
{
    bytes.append(static_cast<char>(tag));
}

template <class Number>
void appendTagged(QByteArray &bytes, int tag, Number number)
{
    const Number bigEndian = qToBigEndian(number);
    append(bytes, tag);
    bytes.append(reinterpret_cast<const char *>(&bigEndian), sizeof bigEndian);
}

/// Nothing that is sent is negative.
void appendInteger(QByteArray &bytes, quint32 number)
{
    if (number < 0x80)
        append(bytes, static_cast<int>(number));
    else if (number <= 0xff)
        appendTagged(bytes, 0xcc, static_cast<quint8>(number));
    else if (number <= 0xffff)
        appendTagged(bytes, 0xcd, static_cast<quint16>(number));
    else
        appendTagged(bytes, 0xce, number);
}

void appendText(QByteArray &bytes, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    if (utf8.size() < 32)
        append(bytes, 0xa0 | static_cast<int>(utf8.size()));
    else if (utf8.size() <= 0xff)
        appendTagged(bytes, 0xd9, static_cast<quint8>(utf8.size()));
    else
        appendTagged(bytes, 0xda, static_cast<quint16>(utf8.size()));
    bytes.append(utf8);
}

void appendValue(QByteArray &bytes, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        append(bytes, value.toBool() ? 0xc3 : 0xc2);
        break;
    case QMetaType::Int:
        appendInteger(bytes, value.toUInt());
        break;
    case QMetaType::Float:
        appendTagged(bytes, 0xca, std::bit_cast<quint32>(value.toFloat()));
        break;
    case QMetaType::Double:
        appendTagged(bytes, 0xcb, std::bit_cast<quint64>(value.toDouble()));
        break;
    case QMetaType::QString:
        appendText(bytes, value.toString());
        break;
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        if (list.size() < 16)
            append(bytes, 0x90 | static_cast<int>(list.size()));
        else
            appendTagged(bytes, 0xdc, static_cast<quint16>(list.size()));
        for (const QVariant &item : list)
            appendValue(bytes, item);
        break;
    }
    default:
        append(bytes, 0xc0);
    }
}

} // namespace

QByteArray packed(const QString &name, const QVariantList &arguments)
{
    QByteArray bytes;
    appendValue(bytes, QVariantList{name, QVariant(arguments)});
    return bytes;
}

QString shown(const QByteArray &message)
{
    QString error;
    const auto read = practice::PluginMessage::fromBytes(message, &error);
    return (read ? read->toText() : error) + QStringLiteral("  ") + QString::fromLatin1(message.toHex());
}

} // namespace tarvo::test

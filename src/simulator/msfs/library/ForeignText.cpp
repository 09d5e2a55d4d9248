#include "simulator/msfs/library/ForeignText.h"

#include <QDir>
#include <QStringDecoder>

#include <optional>

namespace tarvo::simulator::msfs {

namespace {

/// The form of UTF-16 that the bytes are in; nothing when they are in none.
std::optional<QStringConverter::Encoding> utf16Of(QByteArrayView bytes)
{
    if (bytes.size() < 2)
        return std::nullopt;
    if (bytes.startsWith("\xFF\xFE") || (bytes[0] != 0 && bytes[1] == 0))
        return QStringConverter::Utf16LE;
    if (bytes.startsWith("\xFE\xFF") || (bytes[0] == 0 && bytes[1] != 0))
        return QStringConverter::Utf16BE;
    return std::nullopt;
}

} // namespace

QByteArray withAsciiSigns(const QByteArray &bytes)
{
    if (const auto encoding = utf16Of(bytes)) {
        QStringDecoder decoder(*encoding);
        return QString(decoder(bytes)).toUtf8();
    }
    constexpr QByteArrayView mark("\xEF\xBB\xBF");
    return bytes.startsWith(mark) ? bytes.sliced(mark.size()) : bytes;
}

QString textOf(QByteArrayView bytes)
{
    return bytes.isValidUtf8() ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

QByteArrayView withoutQuotes(QByteArrayView bytes)
{
    bytes = bytes.trimmed();
    const bool quoted = bytes.size() >= 2 && bytes.front() == '"' && bytes.back() == '"';
    return quoted ? bytes.sliced(1, bytes.size() - 2).trimmed() : bytes;
}

QString cleanForeignPath(QString path)
{
    path = path.trimmed();
    path.replace(u'\\', u'/');
    return QDir::cleanPath(path);
}

} // namespace tarvo::simulator::msfs

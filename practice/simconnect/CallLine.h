#pragma once

#include "simulator/msfs/simconnect/SimConnectApi.h"

#include <QByteArray>
#include <QLocale>
#include <QString>

#include <type_traits>

namespace tarvo::practice {

/// Bytes that a client writes; they stand in the line in hexadecimal.
struct WrittenBytes
{
    const void *data = nullptr;
    qsizetype size = 0;
};

template <typename Number>
requires std::is_arithmetic_v<Number> QString callWord(Number number)
{
    if constexpr (std::is_floating_point_v<Number>)
        return QString::number(static_cast<double>(number), 'g', QLocale::FloatingPointShortest);
    else
        return QString::number(number);
}

inline QString callWord(const char *text)
{
    return text ? u'"' + QString::fromUtf8(text) + u'"' : QStringLiteral("null");
}

inline QString callWord(const void *pointer)
{
    return pointer ? QStringLiteral("pointer") : QStringLiteral("null");
}

inline QString callWord(const WrittenBytes &bytes)
{
    if (!bytes.data)
        return QStringLiteral("null");
    return QString::fromLatin1(QByteArray::fromRawData(static_cast<const char *>(bytes.data), bytes.size).toHex());
}

inline QString callWord(const simulator::msfs::SIMCONNECT_DATA_INITPOSITION &p)
{
    QString line(u'{');
    for (const double number : {p.Latitude, p.Longitude, p.Altitude, p.Pitch, p.Bank, p.Heading})
        line += callWord(number) + u' ';
    return line + callWord(p.OnGround) + u' ' + callWord(p.Airspeed) + u'}';
}

/// A call as one line: `ClearDataDefinition 40000`. Texts stand in quotation marks, a null pointer is `null`, a
/// position stands in braces.
template <typename... Arguments>
QString callLine(const char *function, const Arguments &...arguments)
{
    QString line = QString::fromLatin1(function);
    ((line += u' ' + callWord(arguments)), ...);
    return line;
}

} // namespace tarvo::practice

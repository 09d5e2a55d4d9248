#include "fsd/pdu/Fields.h"

#include "fsd/pdu/PDUFormatException.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace tarvo::fsd::pdu::fields {

namespace {

/// The common case, "-123.45", without the allocations of QString::toDouble. False when the text holds anything else.
bool readPlainDouble(QStringView text, double &value)
{
    std::array<char, 32> latin1{};
    if (text.isEmpty() || text.size() > static_cast<qsizetype>(latin1.size()))
        return false;
    char *end = latin1.data();
    for (const QChar c : text) {
        const char16_t code = c.unicode();
        if ((code < u'0' || code > u'9') && code != u'.' && code != u'-')
            return false;
        *end++ = static_cast<char>(code);
    }
    const auto [read, error] = std::from_chars(latin1.data(), end, value);
    return error == std::errc() && read == end;
}

} // namespace

void fail(const QStringList &fields, const QString &error)
{
    throw PDUFormatException(error, joinFrom(fields, 0));
}

void require(const QStringList &fields, qsizetype minimum, QLatin1StringView className)
{
    if (fields.size() < minimum)
        fail(fields, QStringLiteral("Invalid field count for %1 command.").arg(className));
}

QString joinFrom(const QStringList &fields, qsizetype first)
{
    if (fields.size() == first + 1)
        return fields.constLast();
    return fields.sliced(first).join(QLatin1Char(':'));
}

double toDouble(QStringView text)
{
    double value = 0;
    if (readPlainDouble(text, value))
        return value;
    bool ok = false;
    value = text.toDouble(&ok);
    return ok && std::isfinite(value) ? value : 0.0;
}

qint32 toInt32(QStringView text)
{
    return text.toInt();
}

quint32 toUInt32(QStringView text)
{
    return text.toUInt();
}

quint32 toFrequency(QStringView text)
{
    const quint32 value = toUInt32(text);
    constexpr quint32 highest = std::numeric_limits<quint32>::max() - frequencyOffset;
    return value > highest ? frequencyOffset : value + frequencyOffset;
}

QString fixed(double value, int decimals)
{
    return QString::number(std::isfinite(value) ? value : 0, 'f', decimals);
}

qint32 wrappingSum(qint32 a, qint32 b)
{
    return static_cast<qint32>(static_cast<quint32>(a) + static_cast<quint32>(b));
}

qint32 wrappingDifference(qint32 a, qint32 b)
{
    return static_cast<qint32>(static_cast<quint32>(a) - static_cast<quint32>(b));
}

} // namespace tarvo::fsd::pdu::fields

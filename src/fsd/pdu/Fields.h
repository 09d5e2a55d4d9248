#pragma once

#include <QLatin1StringView>
#include <QString>
#include <QStringList>

/// What the parse and serialize operations of all PDUs share.
namespace tarvo::fsd::pdu::fields {

/// Throws a PDUFormatException with `error` and the fields joined again.
[[noreturn]] void fail(const QStringList &fields, const QString &error);
/// Throws "Invalid field count for X command." when there are fewer than `minimum` fields.
void require(const QStringList &fields, qsizetype minimum, QLatin1StringView className);

/// All fields from `first` on, joined with ":" as they were on the wire.
QString joinFrom(const QStringList &fields, qsizetype first);

// Numbers are written as in the C locale. A text that is no number, or is out of range, gives 0.

/// "inf" and "nan" are no numbers here either.
double toDouble(QStringView text);
qint32 toInt32(QStringView text);
quint32 toUInt32(QStringView text);

/// kHz; the wire leaves out the leading 1 of a frequency: 18500 stands for 118500.
constexpr quint32 frequencyOffset = 100000;
/// The frequency in kHz that a wire text stands for. One whose sum does not fit 32 bits is out of range, too.
quint32 toFrequency(QStringView text);

/// `value` with exactly `decimals` digits after the point; NaN and infinities are written as 0.
QString fixed(double value, int decimals);

/// Sum and difference in 32 bits; what overflows falls off.
qint32 wrappingSum(qint32 a, qint32 b);
qint32 wrappingDifference(qint32 a, qint32 b);

} // namespace tarvo::fsd::pdu::fields

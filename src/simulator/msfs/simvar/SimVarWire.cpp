#include "simulator/msfs/simvar/SimVarWire.h"

#include "simulator/msfs/simconnect/SimConnectApi.h"

#include <cmath>
#include <cstring>

namespace tarvo::simulator::msfs {

namespace {

constexpr qsizetype textSize = 256;

template <class Number>
Number numberAt(QByteArrayView field)
{
    Number number;
    std::memcpy(&number, field.data(), sizeof number);
    return number;
}

template <class Number>
QByteArray bytesOf(Number number)
{
    return {reinterpret_cast<const char *>(&number), sizeof number};
}

QVariant readField(SimVarType type, QByteArrayView field)
{
    switch (type) {
    case SimVarType::Float: {
        const auto number = numberAt<double>(field);
        return std::isfinite(number) ? QVariant(number) : QVariant();
    }
    case SimVarType::Int:
        return numberAt<qint32>(field);
    case SimVarType::Bool:
        return numberAt<qint32>(field) != 0;
    case SimVarType::String:
        break;
    }
    return wireText(field);
}

/// Zeros behind; at least one. A character that doesn't fit whole is left out.
QByteArray textField(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    qsizetype size = std::min<qsizetype>(bytes.size(), textSize - 1);
    while (size < bytes.size() && (bytes[size] & 0xC0) == 0x80)
        --size;
    bytes.truncate(size);
    bytes.resize(textSize, '\0');
    return bytes;
}

} // namespace

quint32 wireDataType(SimVarType type)
{
    switch (type) {
    case SimVarType::Float:
        return SIMCONNECT_DATATYPE_FLOAT64;
    case SimVarType::Int:
    case SimVarType::Bool:
        return SIMCONNECT_DATATYPE_INT32;
    case SimVarType::String:
        break;
    }
    return SIMCONNECT_DATATYPE_STRING256;
}

qsizetype wireSize(SimVarType type)
{
    switch (type) {
    case SimVarType::Float:
        return sizeof(double);
    case SimVarType::Int:
    case SimVarType::Bool:
        return sizeof(qint32);
    case SimVarType::String:
        break;
    }
    return textSize;
}

QString wireText(QByteArrayView field)
{
    return QString::fromUtf8(field.first(qstrnlen(field.data(), field.size())));
}

QVariantMap readSample(std::span<const SimVarBinding> bindings, QByteArrayView data)
{
    QVariantMap sample;
    for (const SimVarBinding &binding : bindings) {
        const qsizetype size = wireSize(binding.type);
        if (size > data.size())
            continue; // deliberate: a shorter field behind it takes its place
        const QVariant value = readField(binding.type, data.first(size));
        data = data.sliced(size);
        if (value.isValid())
            sample.insert(binding.dataKey, fromWire(binding.conversion, value));
    }
    return sample;
}

QByteArray writtenField(const SimVarBinding &binding, const QVariant &value)
{
    const QVariant written = toWire(binding.conversion, value);
    switch (binding.type) {
    case SimVarType::Float:
        return bytesOf(written.toDouble());
    case SimVarType::Int:
        return bytesOf<qint32>(written.toInt());
    case SimVarType::Bool:
        return bytesOf<qint32>(written.toBool() ? 1 : 0);
    case SimVarType::String:
        break;
    }
    return textField(written.toString());
}

} // namespace tarvo::simulator::msfs

#pragma once

#include "simulator/msfs/simvar/SimVarTable.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QVariantMap>

#include <span>

namespace tarvo::simulator::msfs {

/// SimConnect's number of a type.
quint32 wireDataType(SimVarType type);
/// Bytes.
qsizetype wireSize(SimVarType type);

/// The text in a field of fixed size, up to its first zero.
QString wireText(QByteArrayView field);

/// One sample out of the bytes behind a message's head. A key whose value has no room is left out, and so is a number
/// that is none (NaN, infinite).
QVariantMap readSample(std::span<const SimVarBinding> bindings, QByteArrayView data);

/// The bytes of one field for a value as samples have it.
QByteArray writtenField(const SimVarBinding &binding, const QVariant &value);

} // namespace tarvo::simulator::msfs

#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantList>

namespace tarvo::test {

/// A message to the plugin as it must stand on the socket, written by hand: numbers without a point in their shortest
/// form, a double as float64, a float as float32, an invalid variant as nil.
QByteArray packed(const QString &name, const QVariantList &arguments);

/// The bytes of a message for the eye and for comparison: as text, then hexadecimal.
QString shown(const QByteArray &message);

} // namespace tarvo::test

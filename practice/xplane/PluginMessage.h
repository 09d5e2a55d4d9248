#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantList>

#include <optional>

namespace tarvo::practice {

/// One message of the plugin's socket: a MessagePack array of the name and the array of its arguments.
struct PluginMessage
{
    QString name;
    QVariantList arguments; ///< strings, numbers, booleans, lists of them, or invalid for nil

    QByteArray toBytes() const;
    /// Nothing when the bytes are no message; then `error` says why.
    static std::optional<PluginMessage> fromBytes(const QByteArray &bytes, QString *error);
    /// The name and the arguments, a blank before each: "DEL AB1 Stale". Nil is "nil", a list stands in brackets.
    QString toText() const;
};

} // namespace tarvo::practice

#pragma once

#include <QString>
#include <QVariant>

// The record stands among the models, because pages and managers share it; its name is that of the registered type.
namespace tarvo::network {

/// A radio text that a tuned receiver heard.
struct RadioMessageReceived
{
    QString from; ///< upper-case callsign
    QString message;
    QVariant frequencies;     ///< QList<uint>, kHz: those it was heard on
    bool direct = false;      ///< it begins with the own callsign
    bool dualReceive = false; ///< both receivers are on

    bool operator==(const RadioMessageReceived &) const = default;
};

} // namespace tarvo::network

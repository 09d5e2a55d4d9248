#pragma once

#include <QString>
#include <QVariant>

namespace tarvo::simulator::msfs {

class SimConnectLink;
struct SimVarBinding;

/// Writes one variable of an object, through a definition that is made for it and cleared again. Empty, or why it could
/// not be written.
QString writeSimVar(SimConnectLink &link, const SimVarBinding &binding, quint32 object, const QVariant &value);

} // namespace tarvo::simulator::msfs

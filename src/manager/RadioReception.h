#pragma once

#include <QList>

namespace tarvo::model {
struct RadioStackState;
}

namespace tarvo::manager {

/// Those of `frequencies` (kHz) that a receiver is tuned to and switched on for; each once, in the order given.
QList<uint> heardFrequencies(const QList<quint32> &frequencies, const model::RadioStackState &radio);

} // namespace tarvo::manager

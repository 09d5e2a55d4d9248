#pragma once

#include <QList>

namespace tarvo::model {
struct RadioStackState;
}

namespace tarvo::manager {

/// Those of `frequencies` (kHz) that a receiver which is on stands on, each once and in that order.
QList<uint> heardFrequencies(const QList<quint32> &frequencies, const model::RadioStackState &radio);

} // namespace tarvo::manager

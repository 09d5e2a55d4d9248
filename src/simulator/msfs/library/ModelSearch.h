#pragma once

#include "simulator/msfs/library/ModelTables.h"
#include "simulator/msfs/library/MsfsModelMatch.h"

#include <QList>

namespace tarvo::simulator::msfs {

/// The models that fit a free text, best first, those of equal score by title; at most `limit` and at least 1.
QList<MsfsScoredModel> searchModels(const ModelTables &tables, const QString &query, int limit,
                                    MsfsRuntimeProfile profile);

} // namespace tarvo::simulator::msfs

#pragma once

#include "network/SwiftAircraftIcaoRow.h"
#include "simulator/msfs/library/ModelTables.h"
#include "simulator/msfs/library/MsfsModelMatch.h"

#include <QList>

#include <optional>

namespace tarvo::simulator::msfs {

/// What is known of another pilot's aircraft.
struct ModelQuery
{
    MsfsRuntimeProfile profile = MsfsRuntimeProfile::Unknown;
    QString type;                                    ///< canonical designator, upper-case
    QString airline;                                 ///< upper-case
    QString livery;                                  ///< upper-case
    QList<network::SwiftAircraftIcaoRow> familyRows; ///< all rows of the designator
};

/// The model with the most points; the first of equals.
MsfsModelMatch findModel(const ModelTables &tables, const ModelQuery &query);

/// Whether the entry is of the query's type or of its family; its other fields don't count.
bool isOfType(const MsfsAircraftEntry &entry, const ModelQuery &query);

/// The first model whose title has the key of `title`; none for a key without a sign.
std::optional<MsfsAircraftEntry> findTitle(const ModelTables &tables, MsfsRuntimeProfile profile, const QString &title);

} // namespace tarvo::simulator::msfs

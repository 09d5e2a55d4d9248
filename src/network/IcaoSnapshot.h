#pragma once

#include "network/SwiftAircraftIcaoRow.h"
#include "network/TypeNames.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace tarvo::network {

/// The type data in memory. Implicitly shared, so that copies are cheap; not changed after it was built.
class IcaoSnapshot
{
public:
    using Metadata = QHash<QString, QString>;

    IcaoSnapshot() = default;
    /// Cleans the rows' texts and drops rows without a designator.
    IcaoSnapshot(const QList<SwiftAircraftIcaoRow> &rows, const Metadata &metadata);

    bool isEmpty() const { return m_designators.isEmpty(); }
    qsizetype designatorCount() const { return m_designators.size(); }
    const Metadata &metadata() const { return m_metadata; }
    /// Names the data, from "latest_snapshot".
    QString label() const { return m_label; }

    /// On an empty snapshot the text passes through, trimmed and upper-cased.
    SwiftAircraftIcaoResult normalize(const QString &text) const;
    QList<SwiftAircraftIcaoRow> rowsFor(const QString &designator) const { return m_rows.value(designator); }
    QStringList suggest(const QString &query, int limit) const;
    /// As TypeNames::search(), by designator.
    QList<SwiftAircraftIcaoRow> searchByName(const QString &query, int limit) const;

private:
    QStringList m_designators; ///< ascending, each once
    QHash<QString, QList<SwiftAircraftIcaoRow>> m_rows;
    TypeNames m_names;
    Metadata m_metadata;
    QString m_label;
};

} // namespace tarvo::network

#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

namespace tarvo::test {

inline QString field(const QVariant &row, const char *key)
{
    return row.toMap().value(QLatin1String(key)).toString();
}

/// One key of every row, with a blank between two.
inline QString column(const QVariantList &rows, const char *key)
{
    QStringList values;
    for (const QVariant &row : rows)
        values << field(row, key);
    return values.join(u' ');
}

} // namespace tarvo::test

#pragma once

#include "network/IcaoDatabase.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace tarvo::test {

inline network::SwiftAircraftIcaoRow icaoRow(qint64 id, const QString &designator, const QString &model = {})
{
    network::SwiftAircraftIcaoRow row;
    row.id = id;
    row.designator = designator;
    row.model = model;
    return row;
}

/// A row with something in every field.
inline network::SwiftAircraftIcaoRow fullIcaoRow(qint64 id, bool legacy)
{
    return {.id = id,
            .designator = QStringLiteral("B738"),
            .manufacturer = QStringLiteral("Boeing"),
            .model = QStringLiteral("737-800"),
            .type = QStringLiteral("L2J"),
            .engine = QStringLiteral("J"),
            .engineCount = 2,
            .wakeTurbulenceCategory = QStringLiteral("M"),
            .rank = 3,
            .realWorld = true,
            .legacy = legacy,
            .military = true,
            .created = QStringLiteral("2020"),
            .lastUpdated = QStringLiteral("2021")};
}

/// Writes a database of these designators, with `label` as its snapshot. No designators: tables without rows.
inline bool writeIcaoDatabase(const QString &path, const QStringList &designators, const QString &label = {})
{
    network::IcaoDatabase database(QStringLiteral("test_writer"));
    if (!database.open(path, network::IcaoDatabase::Mode::Writable))
        return false;
    network::IcaoImport import;
    import.label = label;
    for (const QString &designator : designators)
        import.rows.append(icaoRow(import.rows.size() + 1, designator));
    return designators.isEmpty() || database.replaceAll(import);
}

/// Runs statements on a database file; makes the file when missing. The answer is the last statement's values, row by
/// row, each row joined by "|". "error: ..." when one fails.
inline QStringList runSql(const QString &path, const QStringList &statements)
{
    QStringList answer;
    {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("test_sql"));
        database.setDatabaseName(path);
        if (!database.open())
            return {QStringLiteral("error: open")};
        for (const QString &statement : statements) {
            answer.clear();
            QSqlQuery query(database);
            if (!query.exec(statement)) {
                answer = QStringList{QStringLiteral("error: ") + query.lastError().text()};
                break;
            }
            while (query.next()) {
                QStringList values;
                for (int i = 0; !query.value(i).isNull() && i < 20; ++i)
                    values.append(query.value(i).toString());
                answer.append(values.join(QLatin1Char('|')));
            }
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("test_sql"));
    return answer;
}

inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace tarvo::test

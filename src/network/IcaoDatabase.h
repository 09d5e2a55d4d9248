#pragma once

#include "network/IcaoSnapshot.h"

#include <QHash>
#include <QString>

#include <optional>

class QSqlDatabase;
class QSqlQuery;

namespace tarvo::network {

/// Rows to be stored, with what is known of their origin.
struct IcaoImport
{
    QList<SwiftAircraftIcaoRow> rows;
    QString label; ///< "latest_snapshot"
    QString sourceUrl;
    QString sourceLicense;
    QString importedAtUtc; ///< ISO date and time
};

/// One connection to an SQLite file of aircraft types. Every failure is a warning in the log and a false result. The
/// connection's name must be unique in the process while it is open.
class IcaoDatabase
{
public:
    enum class Mode
    {
        ReadOnly,
        Writable
    };

    explicit IcaoDatabase(QString connectionName, QString driver = QStringLiteral("QSQLITE"));
    ~IcaoDatabase();
    IcaoDatabase(const IcaoDatabase &) = delete;
    IcaoDatabase &operator=(const IcaoDatabase &) = delete;

    /// Closes what was open and opens `path`. A writable open makes folder, file and schema where they are missing.
    bool open(QString path, Mode mode);
    /// The same without the schema: the file is only opened.
    bool openFile(QString path, Mode mode);
    void close();

    bool isOpen() const;
    bool isWritable() const { return m_writable; }
    QString path() const { return m_path; }

    /// Makes tables and index where they are missing. The error is the driver's text; nothing on success.
    std::optional<QString> schemaError();
    /// Rows of the aircraft table; 0 when they can't be counted.
    qint64 countRows();
    /// Everything, or nothing after a failure.
    std::optional<IcaoSnapshot> load();
    /// Replaces everything in one transaction. Rows without a designator are left out.
    bool replaceAll(const IcaoImport &import);

private:
    QSqlDatabase connection() const;
    bool writeAll(const IcaoImport &import);
    bool insertRows(const QList<SwiftAircraftIcaoRow> &rows);
    bool insertMetadata(const IcaoImport &import);

    QString m_connectionName;
    QString m_driver;
    QString m_path;
    bool m_registered = false; ///< the toolkit knows a connection of this name
    bool m_writable = false;
};

} // namespace tarvo::network

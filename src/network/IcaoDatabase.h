#pragma once

#include "network/IcaoSnapshot.h"

#include <QString>

#include <optional>

class QSqlDatabase;

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

/// One connection to an SQLite file of aircraft types. What fails in opening, loading and replacing is a warning in the
/// log and an empty or false result. The connection's name must be unique in the process while it is open.
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
    bool isWritable() const { return m_writable; } ///< of an open one
    QString path() const { return m_path; }

    /// Whether the last open(), schemaError() or load() failed for what the file holds. A file that is locked or can't
    /// be reached isn't damaged.
    bool isDamaged() const { return m_damaged; }

    /// Makes tables and index where they are missing. The error is the driver's text, which goes into no log here;
    /// nothing on success.
    std::optional<QString> schemaError();
    /// Rows of the aircraft table; 0, and no warning, when they can't be counted.
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
    bool m_registered = false; ///< Qt knows a connection of this name
    bool m_writable = false;
    bool m_damaged = false;
};

} // namespace tarvo::network

#pragma once

#include <QString>
#include <QStringList>

namespace tarvo::diagnosis {

struct StoredSettings;

/// What goes into the archive.
struct PackContents
{
    QString dataRoot;
    const StoredSettings &settings;
    QString report;      ///< what the checks have found
    QStringList secrets; ///< as secretsOf() tells them
};

/// Packs report, settings and logs with the crash files, without anything secret, into the zip archive `path`. Of a log
/// longer than 4 MB its end. Empty, or why it failed; then `path` is as it was before.
QString packSupport(const PackContents &contents, const QString &path);

} // namespace tarvo::diagnosis

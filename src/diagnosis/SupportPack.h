#pragma once

#include <QString>

namespace tarvo::common {
class SecretMask;
}

namespace tarvo::diagnosis {

struct StoredSettings;

/// What goes into the archive.
struct PackContents
{
    QString dataRoot;
    const StoredSettings &settings;
    QString report;                 ///< what the checks have found
    const common::SecretMask &mask; ///< of what secretsOf() tells
};

/// Packs report, settings and logs with the crash files, without anything secret, into the zip archive `path`. Of a log
/// longer than 4 MB its end; of what can't be read a line that says so. Only its owner may read the archive. Empty, or
/// why it failed; then `path` is as it was before.
QString packSupport(const PackContents &contents, const QString &path);

} // namespace tarvo::diagnosis

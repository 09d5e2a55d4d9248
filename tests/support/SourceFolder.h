#pragma once

#include <QString>

namespace tarvo::test {

/// The file or folder of the source tree at `path`, which is relative to the project's root.
QString sourceFile(const QString &path);

} // namespace tarvo::test

#include "support/SourceFolder.h"

namespace tarvo::test {

QString sourceFile(const QString &path)
{
    return QStringLiteral(TARVO_SOURCE_DIR "/") + path;
}

} // namespace tarvo::test

#include "app/InstanceRights.h"

#include <QDir>
#include <QStandardPaths>

namespace tarvo::app {

QString privateServerName(const QString &name)
{
    // Qt's own choice would be /tmp, where anybody may be first.
    return QDir(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation)).filePath(name);
}

void letComeForward(qint64) {}

} // namespace tarvo::app

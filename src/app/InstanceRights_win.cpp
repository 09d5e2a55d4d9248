#include "app/InstanceRights.h"

#include <windows.h>

namespace tarvo::app {

QString privateServerName(const QString &name)
{
    return name; // the name of a pipe, which Qt lets nobody else open
}

void letComeForward(qint64 pid)
{
    AllowSetForegroundWindow(static_cast<DWORD>(pid));
}

} // namespace tarvo::app

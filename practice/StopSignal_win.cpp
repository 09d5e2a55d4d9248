#include "practice/StopSignal.h"

#include <atomic>
#include <windows.h>

namespace tarvo::practice {

namespace {
std::atomic<StopSignal *> listener = nullptr;

// Runs in a thread of the system's own.
BOOL WINAPI onConsoleEvent(DWORD)
{
    StopSignal *target = listener;
    if (!target)
        return FALSE;
    QMetaObject::invokeMethod(target, &StopSignal::raised, Qt::QueuedConnection);
    return TRUE;
}
} // namespace

StopSignal::StopSignal(QObject *parent) : QObject(parent)
{
    listener = this;
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

StopSignal::~StopSignal()
{
    SetConsoleCtrlHandler(onConsoleEvent, FALSE);
    listener = nullptr;
}

} // namespace tarvo::practice

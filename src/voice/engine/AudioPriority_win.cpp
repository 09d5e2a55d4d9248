#include "voice/engine/AudioPriority.h"

#include <windows.h>

#include <atomic>

namespace tarvo::voice {

namespace {

using SetCharacteristics = HANDLE(WINAPI *)(LPCWSTR task, LPDWORD index);

/// Of avrt.dll, which stays loaded; null where there is none.
std::atomic<SetCharacteristics> setCharacteristics = nullptr;

} // namespace

void prepareAudioPriority()
{
    const HMODULE library = setCharacteristics ? nullptr : LoadLibraryW(L"avrt.dll");
    if (!library)
        return;
    const FARPROC found = GetProcAddress(library, "AvSetMmThreadCharacteristicsW");
    setCharacteristics = reinterpret_cast<SetCharacteristics>(reinterpret_cast<void *>(found));
}

const char *raiseAudioPriority()
{
    const SetCharacteristics set = setCharacteristics;
    DWORD index = 0;
    // Windows takes it back when the thread ends.
    if (set && set(L"Pro Audio", &index))
        return "multimedia class";
    return SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_TIME_CRITICAL) ? "time critical" : "usual";
}

} // namespace tarvo::voice

#include "voice/engine/AudioPriority.h"

#include <windows.h>

namespace tarvo::voice {

namespace {

using SetCharacteristics = HANDLE(WINAPI *)(LPCWSTR task, LPDWORD index);

/// Of avrt.dll, which stays loaded; null where there is none.
SetCharacteristics setCharacteristics()
{
    const HMODULE library = LoadLibraryW(L"avrt.dll");
    const FARPROC found = library ? GetProcAddress(library, "AvSetMmThreadCharacteristicsW") : nullptr;
    return reinterpret_cast<SetCharacteristics>(reinterpret_cast<void *>(found));
}

} // namespace

const char *raiseAudioPriority()
{
    static const SetCharacteristics set = setCharacteristics();
    DWORD index = 0;
    // Windows takes it back when the thread ends.
    if (set && set(L"Pro Audio", &index))
        return "multimedia class";
    return SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_TIME_CRITICAL) ? "time critical" : "usual";
}

} // namespace tarvo::voice

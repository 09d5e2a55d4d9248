#include "CrashReport.h"

#include <windows.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstring>
#include <ctime>

namespace tarvo::lastwords {

namespace {

std::array<wchar_t, 1024> crashFolder{};
HANDLE file = INVALID_HANDLE_VALUE;
LPTOP_LEVEL_EXCEPTION_FILTER filterOfTheRuntime = nullptr;
std::atomic<DWORD> reporter{0};      ///< the thread that crashed first
constexpr DWORD longEnoughMs = 5000; ///< for a report, should its writer wait for what the waiting thread holds

/// A thread whose stack has overflown, until another one has written the report.
struct Overflow
{
    HANDLE happened = nullptr; ///< events
    HANDLE isReported = nullptr;
    const EXCEPTION_POINTERS *exception = nullptr;
    DWORD thread = 0;
};
Overflow overflow;

void write(const char *text, std::size_t size)
{
    DWORD written = 0;
    WriteFile(file, text, static_cast<DWORD>(size), &written, nullptr);
}

bool openFile()
{
    const BoundedText name = fileName(std::time(nullptr));
    std::array<wchar_t, 1100> path{};
    std::size_t size = 0;
    for (const wchar_t *c = crashFolder.data(); *c != L'\0'; ++c)
        path[size++] = *c;
    path[size++] = L'\\';
    for (const char *c = name.data(); *c != '\0'; ++c)
        path[size++] = static_cast<wchar_t>(*c);
    file = CreateFileW(path.data(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
    return file != INVALID_HANDLE_VALUE;
}

/// "program.exe(+0x1234) [0x7ff612341234]": there are no names to be had of what mingw builds.
void writeCall(DWORD64 address)
{
    HMODULE module = nullptr;
    std::array<char, 512> path{};
    BoundedText line;
    if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           reinterpret_cast<LPCSTR>(address), &module) &&
        GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size() - 1)) > 0) {
        const char *name = std::strrchr(path.data(), '\\');
        line << (name ? name + 1 : path.data()) << "(+";
        line.hex(address - reinterpret_cast<DWORD64>(module)) << ") ";
    }
    (line << "[").hex(address) << "]\n";
    write(line.data(), line.size());
}

/// Out of a function that tells nothing of its frame: a leaf, a bad address, or the probe at which stacks overflow,
/// which keeps two registers there.
bool leaveLeaf(CONTEXT &context)
{
    constexpr int mostWords = 3;
    for (int i = 0; i < mostWords; ++i) {
        DWORD64 base = 0;
        context.Rip = *reinterpret_cast<const DWORD64 *>(context.Rsp);
        context.Rsp += sizeof(DWORD64);
        if (RtlLookupFunctionEntry(context.Rip, &base, nullptr) != nullptr)
            return true;
    }
    return false;
}

void writeCalls(CONTEXT context)
{
    constexpr int mostCalls = 64;
    for (int i = 0; i < mostCalls && (i == 0 || context.Rip != 0); ++i) {
        writeCall(context.Rip);
        DWORD64 base = 0;
        PRUNTIME_FUNCTION function = RtlLookupFunctionEntry(context.Rip, &base, nullptr);
        if (function == nullptr && i == 0 && leaveLeaf(context))
            continue;
        if (function == nullptr)
            return;
        void *data = nullptr;
        DWORD64 frame = 0;
        RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, context.Rip, function, &context, &data, &frame, nullptr);
    }
}

void report(const BoundedText &what, const CONTEXT &context, DWORD threadId)
{
    if (!isFirstReport()) {
        if (threadId != reporter)
            Sleep(longEnoughMs); // this thread's end would be the program's, and cut the report short
        return;
    }
    reporter = threadId;
    if (!openFile())
        return;
    BoundedText thread;
    thread << std::uint64_t{threadId};
    writeHead(write, what, thread);
    writeCalls(context);
    CloseHandle(file);
}

void reportException(const EXCEPTION_POINTERS &exception, DWORD threadId)
{
    BoundedText what;
    (what << "Exception code: ").hex(exception.ExceptionRecord->ExceptionCode) << ", address ";
    what.hex(reinterpret_cast<DWORD64>(exception.ExceptionRecord->ExceptionAddress));
    report(what, *exception.ContextRecord, threadId);
}

DWORD WINAPI reportOverflow(void *)
{
    WaitForSingleObject(overflow.happened, INFINITE);
    reportException(*overflow.exception, overflow.thread);
    SetEvent(overflow.isReported);
    return 0;
}

/// Before all other handlers: what is left of the stack may not last for the search of those.
LONG WINAPI onOverflow(EXCEPTION_POINTERS *exception)
{
    if (exception->ExceptionRecord->ExceptionCode == EXCEPTION_STACK_OVERFLOW) {
        overflow.exception = exception;
        overflow.thread = GetCurrentThreadId();
        SetEvent(overflow.happened);
        WaitForSingleObject(overflow.isReported, longEnoughMs);
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

LONG WINAPI onException(EXCEPTION_POINTERS *exception)
{
    constexpr DWORD thrownByGcc = 0x20474343;
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    if (code == thrownByGcc && filterOfTheRuntime != nullptr)
        return filterOfTheRuntime(exception); // goes on to std::terminate
    reportException(*exception, GetCurrentThreadId());
    return EXCEPTION_CONTINUE_SEARCH; // as it would have ended
}

void onAbort(int)
{
    CONTEXT context;
    RtlCaptureContext(&context);
    BoundedText what;
    what << "Signal: SIGABRT";
    report(what, context, GetCurrentThreadId());
}

void watchForOverflows()
{
    constexpr SIZE_T stackBytes = 256 * 1024;
    overflow.happened = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    overflow.isReported = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE thread =
        CreateThread(nullptr, stackBytes, reportOverflow, nullptr, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == nullptr)
        return;
    CloseHandle(thread); // it goes on
    AddVectoredExceptionHandler(TRUE, onOverflow);
}

} // namespace

void catchCrashes(const char *folder)
{
    MultiByteToWideChar(CP_UTF8, 0, folder, -1, crashFolder.data(), static_cast<int>(crashFolder.size()) - 64);
    ULONG spareStack = 64 * 1024; // for this thread's handlers, should its stack overflow
    SetThreadStackGuarantee(&spareStack);
    watchForOverflows();
    filterOfTheRuntime = SetUnhandledExceptionFilter(onException);
    std::signal(SIGABRT, onAbort);
}

} // namespace tarvo::lastwords

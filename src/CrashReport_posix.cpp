#include "CrashReport.h"

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <ctime>

namespace tarvo::lastwords {

namespace {

struct Signal
{
    int number;
    const char *name;
};
constexpr Signal fatalSignals[] = {
    {.number = SIGSEGV, .name = "SIGSEGV"}, {.number = SIGBUS, .name = "SIGBUS"},
    {.number = SIGFPE, .name = "SIGFPE"},   {.number = SIGILL, .name = "SIGILL"},
    {.number = SIGABRT, .name = "SIGABRT"},
};

BoundedText crashFolder;
int file = -1;
std::atomic<long> reporter{0}; ///< the thread that writes; 0 in the moment before it says so
/// A stack that has overflown can't take the handler. Threads other than the main one do without.
std::array<char, 64 * 1024> spareStack;

void write(const char *text, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(file, text, size);
        if (written <= 0)
            return;
        text += written;
        size -= static_cast<std::size_t>(written);
    }
}

#if defined(__x86_64__)
void *placeOf(const ucontext_t &context)
{
    return reinterpret_cast<void *>(context.uc_mcontext.gregs[REG_RIP]);
}

void *wayBackOf(const ucontext_t &context) // of a call that has just been made
{
    return *reinterpret_cast<void *const *>(context.uc_mcontext.gregs[REG_RSP]);
}
#elif defined(__aarch64__)
void *placeOf(const ucontext_t &context)
{
    return reinterpret_cast<void *>(context.uc_mcontext.pc);
}

void *wayBackOf(const ucontext_t &context)
{
    return reinterpret_cast<void *>(context.uc_mcontext.regs[30]);
}
#else
void *placeOf(const ucontext_t &)
{
    return nullptr;
}

void *wayBackOf(const ucontext_t &)
{
    return nullptr;
}
#endif

BoundedText thisThread()
{
    const auto thread = static_cast<std::uint64_t>(syscall(SYS_gettid));
    BoundedText text;
    text << thread << (thread == static_cast<std::uint64_t>(getpid()) ? " (main)" : "");
    return text;
}

/// From a call that went to nowhere nothing leads to its caller, so that one is told apart.
void writeCalls(const ucontext_t &context)
{
    Dl_info info{};
    if (void *place = placeOf(context); dladdr(place, &info) == 0) {
        const std::array<void *, 2> lost{place, wayBackOf(context)};
        backtrace_symbols_fd(lost.data(), static_cast<int>(lost.size()), file);
    }
    std::array<void *, 64> calls{};
    // These two take no memory once libgcc, which unwinds for them, is loaded.
    backtrace_symbols_fd(calls.data(), backtrace(calls.data(), static_cast<int>(calls.size())), file);
}

void report(int number, const siginfo_t *info, const ucontext_t &context)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    BoundedText path = crashFolder;
    path << "/" << fileName(now.tv_sec).data();
    file = open(path.data(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
        return;
    BoundedText what;
    what << "Signal: ";
    for (const Signal &signal : fatalSignals)
        what << (signal.number == number ? signal.name : "");
    if (number != SIGABRT)
        (what << ", address ").hex(reinterpret_cast<std::uintptr_t>(info->si_addr));
    writeHead(write, what, thisThread());
    writeCalls(context);
    close(file);
}

void onSignal(int number, siginfo_t *info, void *context)
{
    const long thread = syscall(SYS_gettid);
    if (isFirstReport()) {
        reporter = thread;
        alarm(5); // should the loader's lock be held by the crash itself, the process still ends
        report(number, info, *static_cast<const ucontext_t *>(context));
        alarm(0);
    } else if (reporter != thread) {
        // Ending the process now would cut the report of the thread that crashed first. That one, or its alarm, does
        // it.
        for (;;)
            pause();
    }
    std::signal(number, SIG_DFL);
    raise(number); // blocked until the handler returns
}

} // namespace

void catchCrashes(const char *folder)
{
    crashFolder << folder;
    std::array<void *, 1> call{};
    backtrace(call.data(), 1); // loads what it needs
    const stack_t stack{.ss_sp = spareStack.data(), .ss_flags = 0, .ss_size = spareStack.size()};
    sigaltstack(&stack, nullptr);
    struct sigaction action = {};
    action.sa_sigaction = onSignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (const Signal &signal : fatalSignals)
        sigaction(signal.number, &action, nullptr);
}

} // namespace tarvo::lastwords

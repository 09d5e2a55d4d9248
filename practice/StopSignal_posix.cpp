#include "practice/StopSignal.h"

#include <QtGlobal>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tarvo::practice {

namespace {
// A signal handler may do next to nothing; it writes one byte, and the event loop reads it.
int wakePipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(wakePipe[1], &byte, 1);
}
} // namespace

StopSignal::StopSignal(QObject *parent) : QObject(parent)
{
    if (::pipe(wakePipe) != 0)
        qFatal("no pipe for signals");
    for (const int end : wakePipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    m_notifier = std::make_unique<QSocketNotifier>(wakePipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (::read(wakePipe[0], &byte, 1) == 1)
            emit raised();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

StopSignal::~StopSignal()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    m_notifier.reset();
    ::close(wakePipe[0]);
    ::close(wakePipe[1]);
}

} // namespace tarvo::practice

#include "pages/VirtualDisplay.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStringList>

#include <sys/prctl.h>

#include <csignal>

namespace tarvo::bench {

namespace {

constexpr int longestStartMs = 10'000;
constexpr int lookEveryMs = 20;

/// However this program ends, the other ends with it.
void startTied(QProcess &process, const QString &program, const QStringList &arguments)
{
    process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
}

} // namespace

VirtualDisplay::~VirtualDisplay()
{
    for (QProcess *process : {&m_manager, &m_server}) {
        process->kill();
        process->waitForFinished();
    }
}

bool VirtualDisplay::start()
{
    startTied(m_server, QStringLiteral("Xvfb"),
              {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"), QStringLiteral("0"),
               QStringLiteral("1400x900x24"), QStringLiteral("-nolisten"), QStringLiteral("tcp"),
               QStringLiteral("-noreset")});
    while (!m_server.canReadLine()) { // it writes its number when it is ready
        if (!m_server.waitForReadyRead(longestStartMs))
            return false;
    }
    qputenv("DISPLAY", ':' + m_server.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    qunsetenv("WAYLAND_DISPLAY");
    return startManager();
}

/// A window that is shown while it takes over is never mapped: waits until it says that it has.
bool VirtualDisplay::startManager()
{
    const QString ready = m_folder.filePath(QStringLiteral("ready"));
    startTied(m_manager, QStringLiteral("openbox"), {QStringLiteral("--startup"), QStringLiteral("touch ") + ready});
    const QDeadlineTimer deadline(longestStartMs);
    while (!QFile::exists(ready) && !deadline.hasExpired())
        m_manager.waitForFinished(lookEveryMs);
    return QFile::exists(ready);
}

} // namespace tarvo::bench

#include "simulator/msfs/LibraryWatch.h"

#include "simulator/msfs/library/MsfsAircraftLibrary.h"

#include <QDebug>

#include <system_error>
#include <utility>

namespace tarvo::simulator::msfs {

LibraryWatch::LibraryWatch(MsfsAircraftLibrary &library, QObject *parent)
    : QObject(parent), m_library(library), m_timer(this)
{
    m_timer.setObjectName(QStringLiteral("libraryPoll"));
    m_timer.setInterval(pollIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &LibraryWatch::poll);
}

void LibraryWatch::load()
{
    try {
        m_library.ensureLoaded();
    } catch (const std::system_error &error) {
        qCritical() << "Cannot scan the MSFS aircraft library:" << error.what();
    }
}

void LibraryWatch::check()
{
    if (m_library.isReady()) {
        if (m_timer.isActive())
            poll(); // whoever waited is told now: no tick comes any more
        return;
    }
    if (m_timer.isActive())
        return;
    m_timer.start();
    m_toldFiles = 0;
    emit statusChanged(tr("MSFS 机库扫描中..."));
}

void LibraryWatch::poll()
{
    if (m_library.isReady()) {
        m_timer.stop();
        emit ready();
        return;
    }
    const int files = m_library.scannedFiles();
    if (files != std::exchange(m_toldFiles, files))
        emit statusChanged(tr("MSFS 机库扫描中... 已读取 %1 个文件").arg(files));
}

} // namespace tarvo::simulator::msfs

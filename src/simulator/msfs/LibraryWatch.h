#pragma once

#include <QObject>
#include <QTimer>

namespace tarvo::simulator::msfs {

class MsfsAircraftLibrary;

/// Starts the library's scan and looks twice a second whether it is done. The timer is a child by the name
/// "libraryPoll".
class LibraryWatch : public QObject
{
    Q_OBJECT

public:
    static constexpr int pollIntervalMs = 500;

    /// The library outlives this.
    explicit LibraryWatch(MsfsAircraftLibrary &library, QObject *parent = nullptr);

    /// Starts the scan unless it runs or is done. Where no thread is to be had it stays undone, and the log says so.
    void load();
    /// Begins to look, unless the library is ready.
    void check();

signals:
    /// The scan that was waited for is done.
    void ready();
    /// How the scan stands, in words for the pilot; at most twice a second.
    void statusChanged(const QString &status);

private:
    void poll();

    MsfsAircraftLibrary &m_library;
    QTimer m_timer;
    int m_toldFiles = 0;
};

} // namespace tarvo::simulator::msfs

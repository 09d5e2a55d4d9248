#pragma once

#include <QProcess>
#include <QTemporaryDir>

namespace tarvo::bench {

/// An X server that nobody sees, with a window manager, so that windows can be minimised. Set in this program's
/// environment, and ended with it.
class VirtualDisplay
{
public:
    ~VirtualDisplay();

    /// False when one of the two doesn't come up.
    bool start();

private:
    bool startManager();

    QTemporaryDir m_folder;
    QProcess m_server;
    QProcess m_manager;
};

} // namespace tarvo::bench

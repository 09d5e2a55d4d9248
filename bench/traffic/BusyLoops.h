#pragma once

#include <QProcess>

#include <memory>
#include <vector>

namespace tarvo::bench {

/// Processes that do nothing but keep a core busy each, as a simulator beside the client does. They end with this
/// object, and with this process however it ends.
class BusyLoops
{
public:
    explicit BusyLoops(int count);
    ~BusyLoops();
    BusyLoops(const BusyLoops &) = delete;
    BusyLoops &operator=(const BusyLoops &) = delete;

private:
    std::vector<std::unique_ptr<QProcess>> m_processes;
};

/// What such a process runs: ends when its standard input does.
[[noreturn]] void runBusyLoop();

} // namespace tarvo::bench

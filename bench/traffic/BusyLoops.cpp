#include "traffic/BusyLoops.h"

#include <QCoreApplication>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace tarvo::bench {

BusyLoops::BusyLoops(int count)
{
    for (int i = 0; i < count; ++i) {
        auto process = std::make_unique<QProcess>();
        process->start(QCoreApplication::applicationFilePath(), {QStringLiteral("spin")});
        process->waitForStarted();
        m_processes.push_back(std::move(process));
    }
}

BusyLoops::~BusyLoops()
{
    for (const auto &process : m_processes) {
        process->kill();
        process->waitForFinished();
    }
}

void runBusyLoop()
{
    std::thread([] {
        while (std::getchar() != EOF) {
        }
        std::_Exit(0);
    }).detach();
    for (std::atomic<unsigned> turns = 0;; ++turns) {
    }
}

} // namespace tarvo::bench

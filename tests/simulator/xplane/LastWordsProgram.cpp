#include "simulator/xplane/PluginLink.h"
#include "simulator/xplane/PluginMessages.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdlib>
#include <memory>

using namespace tarvo::simulator::xplane;

namespace {

/// Ends the program with 4 when its exit took less time than the last words need: a closer waits for 20 ms of silence.
/// Made before anything else, and so destroyed after it.
struct ExitWatch
{
    ~ExitWatch()
    {
        if (std::chrono::steady_clock::now() - lastWordsSaid < std::chrono::milliseconds(15))
            std::_Exit(4);
    }

    std::chrono::steady_clock::time_point lastWordsSaid;
};

ExitWatch exitWatch;

} // namespace

/// Arguments: the plugin's address, a number of messages. Sends that many when the plugin first speaks, destroys the
/// link and ends with no further delay.
int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    if (argc != 3)
        return 2;
    const int messages = std::atoi(argv[2]);
    auto link = std::make_unique<PluginLink>();
    QObject::connect(link.get(), &PluginLink::reportReceived, &app, [] { QCoreApplication::quit(); });
    link->open({.url = QString::fromLocal8Bit(argv[1]), .local = true});
    const int result = QCoreApplication::exec();
    for (int i = 0; i < messages; ++i)
        link->send(message::heartbeat(QString::number(i)));
    exitWatch.lastWordsSaid = std::chrono::steady_clock::now();
    link.reset();
    return result;
}

#include "simulator/xplane/PluginLink.h"
#include "simulator/xplane/PluginMessages.h"

#include <QCoreApplication>

#include <cstdlib>
#include <memory>

using namespace tarvo::simulator::xplane;

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
    link.reset();
    return result;
}

// The client as its entry function starts it, with the practice network's Microsoft Flight Simulator inside: no library
// of the real one is looked for. TARVO_PRACTICE_MSFS says how that simulator behaves; practice/README.md has the words.
// An argument is the FSD server's host name.
#include "AppConfig.h"
#include "Application.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "practice/simconnect/MsfsOptions.h"
#include "practice/simconnect/MsfsStandIn.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"

#include <QApplication>
#include <QDebug>
#include <QQuickStyle>

int main(int argc, char **argv)
{
    QQuickStyle::setStyle(QStringLiteral("Basic")); // only before the application object
    const QApplication qt(argc, argv);
    QGuiApplication::setApplicationDisplayName(QStringLiteral("PRACTICE BUILD")); // ends the title of every window
    tarvo::Application::setUp();
    qWarning("PRACTICE BUILD: Microsoft Flight Simulator is a stand-in inside this program");
    tarvo::practice::MsfsStandIn simulator;
    tarvo::practice::MsfsOptions::fromEnvironment().apply(simulator);
    tarvo::ServiceEndpoints endpoints;
    endpoints.fsdHost = QApplication::arguments().value(1, endpoints.fsdHost);
    int code = 0;
    {
        tarvo::Application application(
            tarvo::AppConfig::instance(), tarvo::network::ApiService::instance(),
            tarvo::network::SwiftAircraftIcaoService::instance(), endpoints,
            std::make_shared<tarvo::simulator::msfs::SimConnectBinding>(simulator.wire().library()));
        code = application.run();
    }
    tarvo::Application::leave(code, tarvo::network::ApiService::instance());
    return code;
}

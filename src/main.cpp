#include "AppConfig.h"
#include "Application.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"

#include <QApplication>
#include <QQuickStyle>

int main(int argc, char **argv)
{
    QQuickStyle::setStyle(QStringLiteral("Basic")); // only before the application object
    const QApplication toolkit(argc, argv);
    tarvo::Application::setUp();
    tarvo::Application application(tarvo::AppConfig::instance(), tarvo::network::ApiService::instance(),
                                   tarvo::network::SwiftAircraftIcaoService::instance());
    return application.run();
}

// The client from its entry function to the first picture of the login window.
#include "AppConfig.h"
#include "Application.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "startup/FirstPaint.h"

#include <QApplication>
#include <QQuickStyle>

int main(int argc, char **argv)
{
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    const QApplication toolkit(argc, argv);
    tarvo::Application::setUp();
    tarvo::Application application(tarvo::AppConfig::instance(), tarvo::network::ApiService::instance(),
                                   tarvo::network::SwiftAircraftIcaoService::instance());
    const FirstPaint end(application.loginWindow());
    return application.run();
}

#include "AppConfig.h"
#include "Application.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"

#include <QApplication>
#include <QQuickStyle>

int main(int argc, char **argv)
{
    QQuickStyle::setStyle(QStringLiteral("Basic")); // only before the application object
    const QApplication qt(argc, argv);
    tarvo::Application::setUp();
    int code = 0;
    {
        tarvo::Application application(tarvo::AppConfig::instance(), tarvo::network::ApiService::instance(),
                                       tarvo::network::SwiftAircraftIcaoService::instance());
        code = application.run();
    }
    tarvo::Application::leave(code, tarvo::network::ApiService::instance());
    return code;
}

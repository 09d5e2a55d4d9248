#include "AppConfig.h"
#include "Application.h"
#include "DataFolders.h"
#include "app/OtherInstance.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"

#include <QApplication>
#include <QDebug>
#include <QQuickStyle>

int main(int argc, char **argv)
{
    QQuickStyle::setStyle(QStringLiteral("Basic")); // only before the application object
    const QApplication qt(argc, argv);
    tarvo::app::SingleInstance instance(tarvo::dataFolders().root);
    if (const auto outcome = instance.start(); outcome != tarvo::app::SingleInstance::Outcome::First)
        return tarvo::app::leaveToOther(outcome);
    tarvo::Application::setUp();
    if (const QString warning = instance.warning(); !warning.isEmpty())
        qWarning().noquote() << warning;
    int code = 0;
    {
        tarvo::Application application(tarvo::AppConfig::instance(), tarvo::network::ApiService::instance(),
                                       tarvo::network::SwiftAircraftIcaoService::instance());
        QObject::connect(&instance, &tarvo::app::SingleInstance::wanted, &application.loginWindow(),
                         [&application] { application.comeForward(); });
        code = application.run();
    }
    tarvo::Application::leave(code, tarvo::network::ApiService::instance());
    return code;
}

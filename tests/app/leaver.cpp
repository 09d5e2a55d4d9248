// Signs in to an account service of the name that its last argument is, with its settings in the folder that is its
// first, and ends while the name is looked up. Fails when it comes to Qt's own end.
#include "AppConfig.h"
#include "Application.h"
#include "network/ApiService.h"

#include <QCoreApplication>
#include <QTimer>

using namespace tarvo;

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    AppConfig config(QString::fromLocal8Bit(argv[1]));
    ServiceEndpoints endpoints;
    endpoints.apiBaseUrl = QStringLiteral("http://%1/api").arg(QString::fromLocal8Bit(argv[argc - 1]));
    network::ApiService api(config, endpoints);
    api.login(QStringLiteral("1001"), QStringLiteral("practice"), [](bool, const QString &) {});
    QTimer::singleShot(100, &api, [] { QCoreApplication::exit(); }); // the look-up is under way by then
    Application::leave(QCoreApplication::exec(), api);
    return 1;
}

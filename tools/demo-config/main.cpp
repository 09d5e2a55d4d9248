// tarvo-demo-config FOLDER [USERNAME PASSWORD]
//
// Prepares FOLDER/config.ini for a demonstration: with an account, it is stored as the program stores it and signs in
// by itself; without one, nothing is stored and the pilot types it. Other settings stay as they are.
#include "AppConfig.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 && arguments.size() != 4) {
        std::fputs("usage: tarvo-demo-config FOLDER [USERNAME PASSWORD]\n", stderr);
        return 2;
    }
    using namespace tarvo;
    const bool account = arguments.size() == 4;
    AppConfig config(arguments.at(1));
    config.reset(config::authRefreshToken);
    config.set(config::authUsername, account ? arguments.at(2) : QString());
    config.set(config::authPassword, account ? arguments.at(3) : QString());
    config.set(config::authRememberPassword, account);
    config.set(config::authAutoLogin, account);
    return 0;
}

// tarvo-demo-config FOLDER [USERNAME PASSWORD]
// tarvo-demo-config FOLDER --models MODELS
//
// Prepares FOLDER/config.ini for a demonstration: with an account, it is stored as the program stores it and signs in
// by itself; without one, nothing is stored and the pilot types it. With a folder of models, those are what both
// Microsoft Flight Simulators have. Other settings stay as they are.
#include "AppConfig.h"

#include <QCoreApplication>

#include <cstdio>

using namespace tarvo;

namespace {
void writeAccount(AppConfig &config, const QStringList &account)
{
    const bool isThere = !account.isEmpty();
    config.reset(config::authRefreshToken);
    config.set(config::authUsername, account.value(0));
    config.set(config::authPassword, account.value(1));
    config.set(config::authRememberPassword, isThere);
    config.set(config::authAutoLogin, isThere);
}
} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 && arguments.size() != 4) {
        std::fputs("usage: tarvo-demo-config FOLDER [USERNAME PASSWORD | --models MODELS]\n", stderr);
        return 2;
    }
    AppConfig config(arguments.at(1));
    if (arguments.value(2) != QLatin1StringView("--models")) {
        writeAccount(config, arguments.mid(2));
        return 0;
    }
    config.set(config::msfsCommunityPath2020, arguments.at(3));
    config.set(config::msfsCommunityPath2024, arguments.at(3));
    return 0;
}

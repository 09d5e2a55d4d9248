#include "manager/PilotName.h"

#include "AppConfig.h"
#include "network/ApiService.h"

namespace tarvo::manager {

namespace {
const QLatin1StringView unknownName("Unknown");
}

QString pilotName(const NameSources &sources)
{
    QString profile = sources.profileName.trimmed();
    if (!profile.isEmpty() && profile.compare(unknownName, Qt::CaseInsensitive) != 0)
        return profile;
    for (const QString &source : {sources.accountName, sources.username}) {
        if (QString name = source.trimmed(); !name.isEmpty())
            return name;
    }
    return unknownName;
}

QString pilotName(const AppConfig &config, const network::ApiService &api)
{
    return pilotName({.profileName = config.get(config::profileRealname),
                      .accountName = api.currentUser().username,
                      .username = signInName(config)});
}

QString signInName(const AppConfig &config)
{
    const QString typed = config.get(config::sessionUsername);
    return typed.isEmpty() ? config.get(config::authUsername) : typed;
}

QString homeAirport(const QString &setting)
{
    const QString airport = setting.trimmed().toUpper();
    const bool none = airport.isEmpty() || airport == QLatin1StringView("ZZZZ");
    return none ? QStringLiteral("ZBAA") : airport;
}

QString nameWithAirport(const QString &name, const QString &airport)
{
    return QStringLiteral("%1 %2").arg(name, airport).trimmed();
}

} // namespace tarvo::manager

#pragma once

#include <QString>

namespace tarvo {
class AppConfig;
}
namespace tarvo::network {
class ApiService;
}

namespace tarvo::manager {

/// Where a pilot's name may come from, in the order of preference.
struct NameSources
{
    QString profileName; ///< from the settings; "Unknown" in any case counts as none
    QString accountName; ///< of the signed-in account
    QString username;    ///< what the pilot signs in with
};

/// The first source that isn't blank, trimmed; "Unknown" if all are.
QString pilotName(const NameSources &sources);

/// The name that a session started now would run under.
QString pilotName(const AppConfig &config, const network::ApiService &api);

/// What the pilot signs in with: typed for this session, else stored.
QString signInName(const AppConfig &config);

/// Trimmed and upper-cased; "ZBAA" for an empty one and for "ZZZZ", which stands for no airport.
QString homeAirport(const QString &setting);

/// "name airport", as a pilot is called on the network.
QString nameWithAirport(const QString &name, const QString &airport);

} // namespace tarvo::manager

#include "simulator/msfs/ModelChoice.h"

#include "common/OneLine.h"
#include "simulator/msfs/MsfsRemoteState.h"
#include "simulator/msfs/RemoteRules.h"
#include "simulator/msfs/library/MsfsAircraftLibrary.h"

#include <QDebug>

#include <optional>

namespace tarvo::simulator::msfs {

using common::onOneLine;
using model::RemoteAircraft;

namespace {

bool isOfOtherSimulator(const MsfsModelMatch &match, MsfsRuntimeProfile profile)
{
    return !match.entry.title.isEmpty() && profile != MsfsRuntimeProfile::Unknown && match.runtime != profile;
}

/// No model, but what was asked for.
MsfsModelMatch emptied(const MsfsModelMatch &match, MsfsRuntimeProfile profile)
{
    MsfsModelMatch empty;
    empty.runtime = profile;
    empty.normalizedType = match.normalizedType;
    empty.normalizedAirline = match.normalizedAirline;
    empty.normalizedLivery = match.normalizedLivery;
    return empty;
}

void guardAgainstOtherSimulator(ModelChoice &choice, MsfsRuntimeProfile profile, const QString &callsign)
{
    MsfsModelMatch &match = choice.match;
    if (!isOfOtherSimulator(match, profile))
        return;
    qWarning().noquote() << QStringLiteral("Ignoring cross-runtime model match for %1: %2 (%3) while runtime is %4")
                                .arg(onOneLine(callsign), match.entry.title, displayName(match.runtime),
                                     displayName(profile));
    match = emptied(match, profile);
}

void preferPeerHint(ModelChoice &choice, const MsfsAircraftLibrary &library, MsfsRuntimeProfile profile,
                    const RemoteAircraft &aircraft)
{
    if (aircraft.remoteModelHint.isEmpty())
        return;
    const std::optional<MsfsAircraftEntry> entry = library.findPeerHint(profile, aircraft.remoteModelHint);
    if (!entry || !library.isTypeCompatible(*entry, aircraft.typeCode)) {
        qInfo().noquote() << onOneLine(QStringLiteral("Peer model hint unavailable or type-mismatched for %1: %2, "
                                                      "falling back to type/airline matching")
                                           .arg(aircraft.callsign, aircraft.remoteModelHint));
        return;
    }
    choice.match.runtime = entry->runtime;
    choice.match.entry = *entry;
    choice.match.fallback = false; // of the match that it replaces
    choice.strategy = QStringLiteral("peer_hint");
    choice.fromPeerHint = true;
}

} // namespace

ModelChoice chooseModel(MsfsAircraftLibrary &library, MsfsRuntimeProfile profile, const RemoteAircraft &aircraft)
{
    ModelChoice choice;
    choice.callsignAirlineHint = callsignAirline(aircraft.callsign);
    choice.airline =
        choice.callsignAirlineHint.isEmpty() ? aircraft.airline.trimmed().toUpper() : choice.callsignAirlineHint;
    choice.match = library.match(profile, aircraft.typeCode, choice.airline, aircraft.livery);
    choice.strategy =
        choice.match.fallback ? QStringLiteral("type_airline_livery_fallback") : QStringLiteral("type_airline_livery");
    guardAgainstOtherSimulator(choice, profile, aircraft.callsign);
    preferPeerHint(choice, library, profile, aircraft);
    return choice;
}

QString liveryFor(const MsfsModelMatch &match, const RemoteAircraft &aircraft)
{
    const QString livery = match.entry.uiVariation.trimmed();
    return livery.isEmpty() ? aircraft.livery : livery;
}

/// Not the livery asked for, on purpose: a new text alone doesn't make his aircraft vanish and come again.
bool isSameDecision(const MsfsRemoteState &before, const ModelChoice &choice, const RemoteAircraft &aircraft)
{
    const MsfsModelMatch &old = before.match;
    const MsfsModelMatch &now = choice.match;
    return before.decided && old.runtime == now.runtime && old.entry.title == now.entry.title &&
           old.entry.uiVariation == now.entry.uiVariation && before.remote.typeCode == aircraft.typeCode &&
           old.normalizedAirline == now.normalizedAirline;
}

} // namespace tarvo::simulator::msfs

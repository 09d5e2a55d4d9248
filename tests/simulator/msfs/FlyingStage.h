#pragma once

#include "MsfsStage.h"

#include <stdexcept>

namespace tarvo::test {

inline const QString csn1 = QStringLiteral("CSN1");
/// Begins the line about an object that comes for nobody.
inline const QString staleAssignment = QStringLiteral("Received stale remote aircraft assignment:");

/// Connected, with two liveries of an A320 and the library scanned.
class FlyingStage : public MsfsStage
{
public:
    explicit FlyingStage(practice::CreateAnswering::Mode mode = practice::CreateAnswering::Mode::AtOnce)
    {
        addModel(simulator::msfs::MsfsRuntimeProfile::Msfs2020, "A320 Red", "A320", "RED");
        addModel(simulator::msfs::MsfsRuntimeProfile::Msfs2020, "A320 Blue", "A320", "BLUE");
        scanLibrary();
        simulator.setCreateAnswering({.mode = mode});
        connectSimulator();
        statuses.clear();
    }

    /// With his object in the simulator. Its id.
    quint32 addOne(const model::RemoteAircraft &aircraft = remote("CSN1", "A320", "RED"))
    {
        adapter->addAircraft(aircraft);
        if (!waitFor([this] { return !added.isEmpty(); }))
            throw std::runtime_error("nobody was added");
        added.clear();
        const quint32 object = simulator.aircraft(aircraft.callsign.toLatin1()).id;
        wire().takeCalls();
        return object;
    }
    /// The request id of the last create.
    QString lastRequest() { return calls("AICreate").last().section(QLatin1Char(' '), -1); }
};

} // namespace tarvo::test

#include "msfs/MsfsClient.h"

#include "AppConfig.h"
#include "msfs/TimedLibrary.h"
#include "practice/simconnect/MsfsStandIn.h"
#include "simulator/msfs/MsfsAdapter.h"
#include "simulator/msfs/library/MsfsAircraftLibrary.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "traffic/ClientUnderTest.h"
#include "traffic/Crowd.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QSet>

#include <cstdio>
#include <vector>

namespace tarvo::bench {

using namespace simulator::msfs;

namespace {

constexpr char model[] = "[GENERAL]\nicao_type_designator=B738\n[FLTSIM.0]\ntitle=Load B738\n";

/// The simulator, a model for everybody, and what the client has written.
class MsfsWorld
{
public:
    MsfsWorld(const QString &folder, int pilots) : m_folder(folder), m_pilots(pilots)
    {
        m_simulator.wire().setLogging(false);
        const QString models = folder + QStringLiteral("/Community/load/SimObjects");
        QDir().mkpath(models);
        QFile file(models + QStringLiteral("/aircraft.cfg"));
        if (file.open(QIODevice::WriteOnly))
            file.write(model);
    }

    std::shared_ptr<simulator::Simulator> make(AppConfig &config, const network::SwiftAircraftIcaoService &types)
    {
        config.set(config::msfsCommunityPath2020, m_folder + QStringLiteral("/Community"));
        m_library = std::make_unique<MsfsAircraftLibrary>(config, types, m_folder + QStringLiteral("/nothing"));
        m_library->ensureLoaded();
        auto library = std::make_unique<TimedLibrary>(
            m_simulator.wire().library(),
            [this](std::uint32_t object, double latitude, std::int64_t ns) { note(object, latitude, ns); });
        auto adapter = std::make_shared<MsfsAdapter>(config, std::make_shared<SimConnectBinding>(std::move(library)),
                                                     m_library.get());
        QObject::connect(adapter.get(), &simulator::Simulator::aircraftAddedToSim, adapter.get(),
                         [this](const QString &callsign) { onAdded(callsign); });
        return adapter;
    }

    bool writeFile() const
    {
        QFile file(waypointFile(m_folder));
        const auto size = static_cast<qint64>(m_written.size()) * qint64{sizeof(WrittenWaypoint)};
        return file.open(QIODevice::WriteOnly) &&
               file.write(reinterpret_cast<const char *>(m_written.data()), size) == size;
    }

private:
    void note(std::uint32_t object, double latitude, std::int64_t ns)
    {
        if (!m_pilotOf.isEmpty())
            m_written.push_back({.latitude = latitude, .ns = ns, .pilot = m_pilotOf.value(object, -1)});
    }

    void onAdded(const QString &callsign)
    {
        m_added.insert(callsign);
        if (m_added.size() != m_pilots || !m_pilotOf.isEmpty())
            return;
        const QList<practice::AiAircraft> all = m_simulator.aircraft();
        for (const practice::AiAircraft &aircraft : all)
            m_pilotOf.insert(aircraft.id, crowd::pilotOf(aircraft.tailNumber.toStdString()));
        std::fputs(completeWord, stdout);
        std::fflush(stdout);
    }

    const QString m_folder;
    const qsizetype m_pilots;
    practice::MsfsStandIn m_simulator;
    std::unique_ptr<MsfsAircraftLibrary> m_library;
    QSet<QString> m_added;
    QHash<std::uint32_t, int> m_pilotOf; ///< by object; empty until everybody is there
    std::vector<WrittenWaypoint> m_written;
};

} // namespace

int runMsfsClient(const ClientArguments &arguments, int pilots)
{
    MsfsWorld world(arguments.folder, pilots);
    const int code =
        runClient(arguments, [&world](AppConfig &config, const auto &types) { return world.make(config, types); });
    return world.writeFile() ? code : 1;
}

} // namespace tarvo::bench

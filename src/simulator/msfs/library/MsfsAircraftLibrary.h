#pragma once

#include "common/Worker.h"
#include "simulator/msfs/library/MsfsModelMatch.h"

#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

namespace tarvo {
class AppConfig;
}
namespace tarvo::network {
class SwiftAircraftIcaoService;
}

namespace tarvo::simulator::msfs {

struct LibraryPlaces;
struct ModelQuery;

/// Knows which models are installed here for each of the two simulators, and which of them fits another pilot best.
///
/// All members are for the main thread. The scan runs on a worker and says nothing by itself: MsfsAdapter asks
/// isReady() and scannedFiles() at each tick of its 500 ms poll, which is the notice and the progress alike. Nothing
/// here waits for the scan but stop().
class MsfsAircraftLibrary
{
public:
    /// The program's own library, over the two singletons and this user's application data. Its scan stops when the
    /// application quits.
    static MsfsAircraftLibrary &instance();

    /// `dataBase`: the folder that the simulators' own UserCfg.opt is looked for in. The two references must outlive
    /// the library.
    MsfsAircraftLibrary(const AppConfig &config, const network::SwiftAircraftIcaoService &types, QString dataBase);
    /// stop().
    ~MsfsAircraftLibrary();
    MsfsAircraftLibrary(const MsfsAircraftLibrary &) = delete;
    MsfsAircraftLibrary &operator=(const MsfsAircraftLibrary &) = delete;

    /// Starts the scan unless one runs or the library is ready; whoever wants a match calls it, as often as he likes.
    /// Reads the configuration, and hands the worker copies. Throws std::system_error when no thread is to be had, and
    /// can be called again then.
    void ensureLoaded();
    /// Forgets everything and scans anew. While a scan runs it is only remembered: the worker then scans once more
    /// before the library is ready. Throws like ensureLoaded().
    void reload();
    bool isReady() const;
    /// 0 until ready; 0 for Unknown.
    qsizetype modelCount(MsfsRuntimeProfile runtime) const;
    /// How many aircraft.cfg files the scan that runs, or the last one, has read so far.
    int scannedFiles() const;
    /// Ends a scan that runs, waits for its thread, and refuses any other. What was ready stays so.
    void stop();

    /// The best model for a pilot. For Msfs2020 and Msfs2024 only that simulator's models, else all. Without a model
    /// the entry has no title. While the library isn't ready: calls ensureLoaded(), and the result is empty.
    MsfsModelMatch match(MsfsRuntimeProfile profile, const QString &typeCode, const QString &airline,
                         const QString &livery);
    /// The first model with that title, but for case and what is neither letter nor digit. Nothing until ready.
    std::optional<MsfsAircraftEntry> findPeerHint(MsfsRuntimeProfile profile, const QString &hintTitle) const;
    /// Whether the entry can stand for that type; true for every entry when the type is empty.
    bool isTypeCompatible(const MsfsAircraftEntry &entry, const QString &typeCode) const;
    /// The models that fit a free text, best first, at most `limit` (at least 1). Nothing until ready.
    QList<MsfsScoredModel> searchModels(const QString &query, int limit, MsfsRuntimeProfile profile) const;

private:
    struct Shared;

    void startScan();
    LibraryPlaces places() const;
    /// Makes the type canonical and adds its rows.
    void resolveType(ModelQuery &query) const;

    const AppConfig &m_config;
    const network::SwiftAircraftIcaoService &m_types;
    const QString m_dataBase;
    std::shared_ptr<Shared> m_shared; ///< the worker's too, so that a scan left behind still finds it
    QHash<QString, MsfsModelMatch> m_matches;
    common::Worker m_worker;
};

} // namespace tarvo::simulator::msfs

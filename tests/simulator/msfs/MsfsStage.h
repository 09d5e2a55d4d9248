#pragma once

#include "AppConfig.h"
#include "model/RemoteAircraft.h"
#include "practice/simconnect/MsfsStandIn.h"
#include "simulator/msfs/MsfsAdapter.h"
#include "simulator/msfs/library/LibraryStage.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/Patience.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <cstring>
#include <memory>

namespace tarvo::test {

/// The adapter over the real session, and the simulator's stand-in below it. The simulator's time stands still: a frame
/// comes when a test says so.
class MsfsStage
{
public:
    using Profile = simulator::msfs::MsfsRuntimeProfile;

    MsfsStage()
    {
        adapter = std::make_unique<simulator::msfs::MsfsAdapter>(
            config, std::make_shared<simulator::msfs::SimConnectBinding>(wire().library()), &library.library(), clock);
        QObject::connect(adapter.get(), &simulator::Simulator::trafficMappingStatusChanged, adapter.get(),
                         [this](const QString &status) { statuses.append(status); });
        QObject::connect(adapter.get(), &simulator::Simulator::simConnectionStateChanged, adapter.get(),
                         [this](bool up) { links.append(up); });
        QObject::connect(adapter.get(), &simulator::Simulator::simConnectionFailed, adapter.get(),
                         [this](const QString &message) { failures.append(message); });
        QObject::connect(adapter.get(), &simulator::Simulator::aircraftAddedToSim, adapter.get(),
                         [this](const QString &callsign) { added.append(callsign); });
        QObject::connect(adapter.get(), &simulator::Simulator::aircraftRemovedFromSim, adapter.get(),
                         [this](const QString &callsign) { removed.append(callsign); });
    }

    practice::SimConnectStandIn &wire() { return simulator.wire(); }

    /// Opens and waits for the first position. Forgets what was called and told on the way.
    void connectSimulator()
    {
        adapter->reconnectSimulator();
        simulator.frame();
        if (!waitFor([this] { return links.endsWith(true); }))
            throw std::runtime_error("no link");
        settle();
        wire().takeCalls();
        links.clear();
    }
    /// Lets the session hand on all that the simulator has to say.
    void settle()
    {
        wire().queue(practice::message::any(0, {})); // at the end of the queue
        if (!waitFor([this] { return wire().queuedMessages() == 0; }))
            throw std::runtime_error("nobody takes the messages");
    }
    void scanLibrary() { library.readyLibrary(); }

    /// A variant with texts that a livery and an airline can be found in.
    void addModel(Profile profile, const QByteArray &title, const QByteArray &type, const QByteArray &variation)
    {
        library.write(profile, QString::fromUtf8(title) + QStringLiteral("/SimObjects"),
                      "[GENERAL]\nicao_type_designator=" + type + "\n[FLTSIM.0]\ntitle=" + title +
                          "\nui_variation=" + variation);
    }

    /// The calls whose line begins so, since they were last forgotten.
    QStringList calls(const char *beginning)
    {
        return wire().calls().filter(QRegularExpression(QLatin1Char('^') + QLatin1String(beginning)));
    }
    QStringList takeCalls(const char *beginning)
    {
        const QStringList found = calls(beginning);
        wire().takeCalls();
        return found;
    }
    /// What the calls since then have written as waypoints. The simulator itself follows only those of the program's
    /// first session.
    QList<simulator::msfs::SIMCONNECT_DATA_WAYPOINT> waypoints(quint32 object)
    {
        QList<simulator::msfs::SIMCONNECT_DATA_WAYPOINT> found;
        const QStringList lines = calls("SetDataOnSimObject 30000 ");
        for (const QString &line : lines) {
            const QStringList words = line.split(QLatin1Char(' '));
            const QByteArray bytes = QByteArray::fromHex(words.last().toLatin1());
            if (words[2].toUInt() != object || bytes.size() != sizeof(simulator::msfs::SIMCONNECT_DATA_WAYPOINT))
                continue;
            found.emplace_back();
            std::memcpy(&found.last(), bytes.constData(), sizeof(found.last()));
        }
        return found;
    }

    static model::RemoteAircraft remote(const char *callsign, const char *type = "A320", const char *livery = "")
    {
        model::RemoteAircraft aircraft;
        aircraft.callsign = QString::fromLatin1(callsign);
        aircraft.typeCode = QString::fromLatin1(type);
        aircraft.livery = QString::fromLatin1(livery);
        aircraft.visualState = {.latitude = 40,
                                .longitude = 116,
                                .altitudeMslM = 1000,
                                .altitudeAglM = 950,
                                .pitch = 2,
                                .heading = 90,
                                .bank = -3,
                                .noseWheelAngle = 0};
        aircraft.groundSpeed = 250;
        return aircraft;
    }

    ManualClock clock;
    practice::MsfsStandIn simulator{clock};
    LibraryStage library;
    QTemporaryDir folder;
    AppConfig config{folder.path()};
    LogCapture log;
    std::unique_ptr<simulator::msfs::MsfsAdapter> adapter;
    // What the adapter has told.
    QStringList statuses;
    QList<bool> links;
    QStringList failures;
    QStringList added;
    QStringList removed;
};

} // namespace tarvo::test

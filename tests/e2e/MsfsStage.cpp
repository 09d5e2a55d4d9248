#include "e2e/MsfsStage.h"

#include "simulator/msfs/MsfsAdapter.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"

#include <QDateTime>
#include <QFile>

#include <cmath>

namespace tarvo::test {

using manager::NetworkManager;
using simulator::msfs::MsfsAdapter;
using simulator::msfs::MsfsAircraftLibrary;
using simulator::msfs::SimConnectBinding;

namespace {
constexpr StringKey communityPaths[] = {config::msfsCommunityPath2020, config::msfsCommunityPath2024};
}

MsfsStage::MsfsStage()
    : simulatorClock(QDateTime::currentMSecsSinceEpoch()),
      network(simulatorClock),
      client(network, Protocol::Classic, clock),
      simulator(simulatorClock),
      m_library(std::make_unique<MsfsAircraftLibrary>(client.config, client.icao, client.root.path())),
      m_binding(std::make_shared<SimConnectBinding>(simulator.wire().library()))
{
    for (const StringKey &key : communityPaths) {
        const QString folder = client.root.path() + u'/' + QLatin1StringView(key.key);
        QDir().mkpath(folder);
        client.config.set(key, folder);
    }
}

MsfsStage::~MsfsStage()
{
    if (client.manager)
        client.signOut();
}

void MsfsStage::install(const QString &title, const QByteArray &type, const QByteArray &airline)
{
    for (const StringKey &key : communityPaths) {
        const QString folder = client.config.get(key) + u'/' + title + QStringLiteral("/SimObjects/Airplanes/") + title;
        QDir().mkpath(folder);
        QFile file(folder + QStringLiteral("/aircraft.cfg"));
        if (file.open(QIODevice::WriteOnly))
            file.write("[GENERAL]\nicao_type_designator = \"" + type + "\"\n[FLTSIM.0]\ntitle = \"" + title.toUtf8() +
                       "\"\natc_airline = \"" + airline + "\"\n");
    }
}

bool MsfsStage::signIn()
{
    if (!network.started || !client.signIn())
        return false;
    listen();
    activate();
    return true;
}

bool MsfsStage::open(double moment)
{
    simulator.setFlightTime(moment);
    return signIn() && waitFor([this] {
               frame();
               return m_known.simConnected && std::abs(m_known.aircraft.latitude) > 0;
           });
}

bool MsfsStage::goOnline(const QStringList &pilots)
{
    for (const QString &callsign : pilots)
        network.practice.scriptedClients().join(callsign, QStringLiteral("2001"), QStringLiteral("Other Pilot"), false);
    if (!client.connectPilot() || !waitFor([this] { return network.heard.contains(identification()); }))
        return false;
    for (const char *timer : {"slowTimer", "fastTimer", "staleTimer", "controllerTimer", "configurationBudgetTimer"})
        client.stop(timer);
    return settle();
}

void MsfsStage::activate()
{
    manager().setSimulator(std::make_shared<MsfsAdapter>(client.config, m_binding, m_library.get(), clock));
}

void MsfsStage::frame()
{
    simulator.frame();
    pump();
}

void MsfsStage::pump() const
{
    if (auto *timer = client.manager->simulator()->findChild<QTimer *>(QStringLiteral("dispatch")))
        QMetaObject::invokeMethod(timer, "timeout");
}

bool MsfsStage::hear(const QStringList &lines)
{
    for (const QString &line : lines) {
        if (!network.practice.fsd().sendLine(QStringLiteral("AB1"), line))
            return false;
    }
    return settle();
}

bool MsfsStage::settle()
{
    const auto pongs = [this] { return network.linesOf(QStringLiteral("$PO")).size(); };
    for (int round = 0; round < 3; ++round) { // a question, its answer, and what follows from that
        const qsizetype before = pongs();
        network.practice.fsd().ping(QStringLiteral("AB1"));
        if (!waitFor([&] { return pongs() > before; }))
            return false;
        pump();
    }
    return true;
}

QStringList MsfsStage::linesOfTick(const char *timer)
{
    network.heard.clear();
    client.fire(timer);
    if (!settle())
        return {};
    QStringList lines = network.heard;
    lines.removeIf([](const QString &line) { return line.startsWith(QStringLiteral("$PO")); });
    return lines;
}

bool MsfsStage::flyTo(double moment)
{
    simulator.setFlightTime(moment);
    const double latitude = simulator.value("PLANE LATITUDE", "degrees");
    return waitFor([&] {
        frame();
        return std::abs(m_known.aircraft.latitude - latitude) < 1e-9;
    });
}

void MsfsStage::listen()
{
    NetworkManager *manager = client.manager.get();
    QObject::connect(manager, &NetworkManager::simulatorDataUpdated, manager,
                     [this](const manager::SimulatorData &data) { m_known = data; });
    QObject::connect(manager, &NetworkManager::radioStatesUpdate, manager,
                     [this](const model::RadioStackState &state) { radio = state; });
    QObject::connect(manager, &NetworkManager::simulatorTrafficMappingStatusUpdated, manager,
                     [this](const QString &status) { mappings << status; });
    QObject::connect(manager, &NetworkManager::simulatorConnectionStateChanged, manager,
                     [this](bool connected) { connections << connected; });
    QObject::connect(manager, &NetworkManager::simulatorConnectionFailed, manager,
                     [this](const QString &text) { failures << text; });
    QObject::connect(manager, &NetworkManager::simulatorTrafficSnapshotUpdated, manager,
                     [this](const QVariantList &now) { contacts = now; });
}

} // namespace tarvo::test

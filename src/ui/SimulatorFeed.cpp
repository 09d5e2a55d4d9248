#include "ui/SimulatorFeed.h"

#include "manager/NetworkManager.h"
#include "simulator/Simulator.h"
#include "ui/viewmodel/RadioEntry.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

#include <utility>

namespace tarvo::ui {

using manager::NetworkManager;
using simulator::Simulator;

namespace {
constexpr int trafficIntervalMs = 1000;
} // namespace

SimulatorFeed::SimulatorFeed(std::shared_ptr<NetworkManager> network, SimulatorPageViewModel &page, QObject *parent)
    : QObject(parent), m_network(std::move(network)), m_page(page), m_paceTimer(this), m_trafficTimer(this)
{
    m_trafficTimer.setObjectName(QStringLiteral("trafficTimer"));
    m_trafficTimer.setInterval(trafficIntervalMs);
    connect(&m_trafficTimer, &QTimer::timeout, this, &SimulatorFeed::showTraffic);
    m_paceTimer.setObjectName(QStringLiteral("paceTimer"));
    m_paceTimer.setSingleShot(true);
    connect(&m_paceTimer, &QTimer::timeout, this, &SimulatorFeed::showMissed);
    connectSession();
    connectRequests();
}

void SimulatorFeed::connectSession()
{
    const NetworkManager *network = m_network.get();
    connect(network, &NetworkManager::simulatorDataUpdated, this, &SimulatorFeed::takeSample);
    connect(network, &NetworkManager::radioStatesUpdate, this, &SimulatorFeed::takeRadio);
    connect(network, &NetworkManager::simulatorPluginStatusUpdated, &m_page, &SimulatorPageViewModel::setPluginValid);
    connect(network, &NetworkManager::simulatorCslStatusUpdated, &m_page, &SimulatorPageViewModel::setCslValid);
    connect(network, &NetworkManager::simulatorTrafficMappingStatusUpdated, &m_page,
            &SimulatorPageViewModel::setTrafficMappingStatus);
    connect(network, &NetworkManager::simulatorXPlaneVersionUpdated, &m_page,
            &SimulatorPageViewModel::setXPlaneVersion);
    connect(network, &NetworkManager::simulatorTrafficSnapshotUpdated, this, &SimulatorFeed::takeSnapshot);
    connect(network, &NetworkManager::simulatorChanged, this, [this] {
        m_snapshot.reset(); // the last one's
        m_page.clearPlugin();
    });
    connect(network, &NetworkManager::networkConnected, &m_trafficTimer, [this] { m_trafficTimer.start(); });
    connect(network, &NetworkManager::networkDisconnected, this, &SimulatorFeed::forgetTraffic);
}

void SimulatorFeed::connectRequests()
{
    // Each wish goes to the simulator that is there at that moment.
    const auto current = [this](auto action) {
        if (const std::shared_ptr<Simulator> simulator = m_network->simulator())
            action(*simulator);
    };
    connect(&m_page, &SimulatorPageViewModel::reconnectRequested, m_network.get(), &NetworkManager::reconnectSimulator,
            Qt::QueuedConnection); // whoever has to know of the wish hears of it before
    connect(&m_page, &SimulatorPageViewModel::setCom1FrequencyRequested, this, [current](const QString &text) {
        if (const auto frequency = comFrequencyKhz(text))
            current([&](Simulator &simulator) { simulator.setCom1Frequency(*frequency); });
    });
    connect(&m_page, &SimulatorPageViewModel::setCom2FrequencyRequested, this, [current](const QString &text) {
        if (const auto frequency = comFrequencyKhz(text))
            current([&](Simulator &simulator) { simulator.setCom2Frequency(*frequency); });
    });
    connect(&m_page, &SimulatorPageViewModel::setTransponderCodeRequested, this, [current](const QString &text) {
        if (const auto code = transponderCode(text))
            current([&](Simulator &simulator) { simulator.setTransponderCode(*code); });
    });
    connect(&m_page, &SimulatorPageViewModel::transponderIdentRequested, this,
            [current] { current([](Simulator &simulator) { simulator.transponderIdent(); }); });
    connect(&m_page, &SimulatorPageViewModel::transponderModeToggleRequested, this,
            [current] { current([](Simulator &simulator) { simulator.transponderModeToggle(); }); });
}

void SimulatorFeed::setSeen(bool seen)
{
    m_seen = seen;
    m_trafficDue = m_trafficTimer.isActive();
    showMissed();
}

void SimulatorFeed::takeSample(const manager::SimulatorData &sample)
{
    m_latest = sample;
    m_missed = true;
    if (!m_paceTimer.isActive())
        showMissed();
}

/// While nothing moves, as in a pause, no sample brings it.
void SimulatorFeed::takeRadio(const model::RadioStackState &radio)
{
    manager::SimulatorData sample = m_latest;
    sample.radio = radio;
    takeSample(sample);
}

void SimulatorFeed::takeSnapshot(const QVariantList &contacts)
{
    m_snapshot = contacts;
    if (!m_paceTimer.isActive())
        showMissed();
}

void SimulatorFeed::showMissed()
{
    if (!m_seen || !(m_missed || m_trafficDue || m_snapshot))
        return;
    if (m_paceTimer.interval() > 0)
        m_paceTimer.start();
    if (std::exchange(m_missed, false))
        showSample();
    if (std::exchange(m_trafficDue, false))
        m_page.setRemoteAircraft(m_network->remoteAircraft());
    if (const std::optional<QVariantList> snapshot = std::exchange(m_snapshot, {}))
        m_page.setTrafficContacts(*snapshot);
}

void SimulatorFeed::showSample()
{
    // A lost simulator announces the last it said once more: that is no longer so.
    const manager::SimulatorData shown = m_latest;
    if (shown.simConnected)
        m_page.setOwnAircraft(shown.aircraft, shown.config, shown.radio, shown.simPaused);
    else
        m_page.clearOwnAircraft();
    emit sampleShown(shown);
}

/// With the next sample, if one may be shown so soon: both are painted in one go.
void SimulatorFeed::showTraffic()
{
    m_trafficDue = true;
    if (!m_paceTimer.isActive())
        showMissed();
}

void SimulatorFeed::forgetTraffic()
{
    m_trafficTimer.stop();
    m_trafficDue = false;
    m_page.setRemoteAircraft({});
}

} // namespace tarvo::ui

#pragma once

#include "manager/SimulatorData.h"

#include <QObject>
#include <QTimer>
#include <QVariantList>

#include <chrono>
#include <memory>
#include <optional>

namespace tarvo::manager {
class NetworkManager;
} // namespace tarvo::manager

namespace tarvo::ui {

class SimulatorPageViewModel;

/// Brings the own aircraft and the traffic to the simulator page, and the page's wishes to the simulator.
class SimulatorFeed : public QObject
{
    Q_OBJECT

public:
    SimulatorFeed(std::shared_ptr<manager::NetworkManager> network, SimulatorPageViewModel &page,
                  QObject *parent = nullptr);

    /// While nobody can see the pages nothing that comes many times a second is brought to them; the latest follows
    /// when they are seen again. At first they are.
    void setSeen(bool seen);

    /// The least time between two samples that are shown, traffic included; what comes sooner is left out for the
    /// latest of them. None at first. Painting a page takes more than all the rest: figures that change faster can't be
    /// read anyway.
    void setPace(std::chrono::milliseconds pace) { m_paceTimer.setInterval(pace); }

signals:
    /// The own aircraft's latest state, for whoever else shows it.
    void sampleShown(const tarvo::manager::SimulatorData &sample);

private:
    void connectSession();
    void connectRequests();
    void takeSample(const manager::SimulatorData &sample);
    void takeRadio(const model::RadioStackState &radio);
    void takeSnapshot(const QVariantList &contacts);
    void showSample();
    void showMissed();
    void showTraffic();
    void forgetTraffic();

    std::shared_ptr<manager::NetworkManager> m_network;
    SimulatorPageViewModel &m_page;
    bool m_seen = true;
    manager::SimulatorData m_latest;
    bool m_missed = false; ///< `m_latest` hasn't been shown
    bool m_trafficDue = false;
    std::optional<QVariantList> m_snapshot; ///< not shown yet
    QTimer m_paceTimer;                     ///< runs while it is too early for the next change
    QTimer m_trafficTimer;                  ///< runs while connected: the table has no signal of its own
};

} // namespace tarvo::ui

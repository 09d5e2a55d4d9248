#pragma once

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

namespace tarvo::manager {
class NetworkManager;
struct SimulatorData;
} // namespace tarvo::manager

namespace tarvo::ui {

namespace viewmodel {
class SimulatorPageViewModel;
}

/// kHz of a radio frequency typed in MHz: "121.800" is 121800. Nothing for text that is no positive number below
/// 1,000 MHz.
std::optional<quint32> comFrequencyKhz(const QString &megahertz);

/// The four digits as a decimal number, of one to four octal digits; nothing for any other text.
std::optional<int> transponderCode(const QString &digits);

/// Brings the simulator's state and the traffic to the simulator page, and the page's wishes to the simulator.
class SimulatorFeed : public QObject
{
    Q_OBJECT

public:
    SimulatorFeed(std::shared_ptr<manager::NetworkManager> network, viewmodel::SimulatorPageViewModel &page,
                  QObject *parent = nullptr);

private:
    void connectSession();
    void connectRequests();
    void showSample(const manager::SimulatorData &sample);
    void showTraffic();
    void forgetTraffic();

    std::shared_ptr<manager::NetworkManager> m_network;
    viewmodel::SimulatorPageViewModel &m_page;
    QTimer m_trafficTimer; ///< runs while connected: the table has no signal of its own
};

} // namespace tarvo::ui

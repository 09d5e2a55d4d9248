#pragma once

#include "e2e/Client.h"
#include "manager/SimulatorData.h"
#include "model/RadioStackState.h"
#include "practice/simconnect/MsfsStandIn.h"
#include "simulator/msfs/library/MsfsAircraftLibrary.h"
#include "support/ManualClock.h"

#include <QStringList>

#include <functional>
#include <memory>

namespace tarvo::simulator::msfs {
class SimConnectBinding;
}

namespace tarvo::test {

/// A client beside a Microsoft Flight Simulator and a server, in a world where nothing happens by itself but the
/// client's looks for messages: the clocks stand still, a frame comes when it is asked for.
class MsfsStage
{
public:
    MsfsStage();
    ~MsfsStage();

    /// Installs a model for both simulators. To be called before open().
    void install(const QString &title, const QByteArray &type, const QByteArray &airline);

    /// Signs in and activates MSFS; does not wait for it.
    bool signIn();
    /// The same, and waits until it delivers. `moment`: seconds of its flight, where it stays.
    bool open(double moment = standing);
    /// Goes online as AB1. `pilots` are on the network already.
    bool goOnline(const QStringList &pilots = {});
    void activate();

    /// The next frame, taken by the client.
    void frame();
    /// The client looks for messages.
    void pump() const;
    /// Sends lines to the client and waits until it has answered all of them.
    bool hear(const QStringList &lines);
    /// Waits until the client has answered all that it was sent.
    bool settle();
    /// What the server hears of one turn of a timer.
    QStringList linesOfTick(const char *timer);
    /// Jumps to another moment of the flight, and waits until the client knows it.
    bool flyTo(double moment);

    manager::NetworkManager &manager() { return *client.manager; }
    const manager::SimulatorData &known() const { return m_known; }

    static constexpr double standing = 7; ///< seconds of the flight: avionics on, engines off

    ManualClock simulatorClock; ///< and the services'
    ManualClock clock;          ///< the session's
    Network network;
    Client client;
    practice::MsfsStandIn simulator;
    QStringList mappings;         ///< how the models stand, each time it is told
    QList<bool> connections;      ///< the session's word on the simulator
    QStringList failures;         ///< for the pilot
    model::RadioStackState radio; ///< as the simulator last told it
    QVariantList contacts;        ///< the last snapshot

private:
    void listen();

    manager::SimulatorData m_known;
    std::unique_ptr<simulator::msfs::MsfsAircraftLibrary> m_library;
    std::shared_ptr<simulator::msfs::SimConnectBinding> m_binding;
};

} // namespace tarvo::test

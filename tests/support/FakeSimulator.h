#pragma once

#include "model/Controller.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"
#include "simulator/Simulator.h"

#include <QStringList>

#include <functional>

namespace tarvo::test {

/// A simulator that does nothing but write down what it is told, one text for each call, such as
/// "networkConnected AB1 EF-GH pilot". Its signals are the base's: a test raises them, `emit
/// sim.userAircraftDataChanged(...)`.
class FakeSimulator : public simulator::Simulator
{
public:
    using Simulator::Simulator;

    QStringList calls;
    simulator::SimulatorType type = simulator::SimulatorType::XPlane12;
    double trueAltitude = 0;              ///< feet
    double pressureAltitude = 0;          ///< feet
    double remoteAltitudeShift = 0;       ///< feet; what other aircraft's altitudes are adjusted by
    QList<model::Controller> controllers; ///< as last set

    /// What a call about another aircraft was told; a slow position and those without one have no vectors.
    struct Told
    {
        model::RemoteAircraft aircraft;
        model::AircraftVisualState state;
        model::VelocityVector positional;
        model::VelocityVector rotational;
    };
    QList<Told> told; ///< one for each call about an aircraft, heartbeats excepted
    /// Runs within each call, after it is written down: a simulator that comes back.
    std::function<void(const QString &call)> onCall;

    /// The calls so far, which are then forgotten.
    QStringList takeCalls()
    {
        QStringList taken;
        taken.swap(calls);
        return taken;
    }

    void setTransponderCode(int code) override { note(u"setTransponderCode %1"_qs.arg(code)); }
    void setCom1Frequency(quint32 freq) override { note(u"setCom1Frequency %1"_qs.arg(freq)); }
    void setCom2Frequency(quint32 freq) override { note(u"setCom2Frequency %1"_qs.arg(freq)); }
    void transponderIdent() override { note(u"transponderIdent"_qs); }
    void transponderModeToggle() override { note(u"transponderModeToggle"_qs); }
    void addAircraft(const model::RemoteAircraft &aircraft) override
    {
        told.append({aircraft, aircraft.visualState, {}, {}});
        note(u"addAircraft %1"_qs.arg(aircraft.callsign));
    }
    void updateAircraftConfiguration(const model::RemoteAircraft &aircraft) override
    {
        told.append({aircraft, aircraft.visualState, {}, {}});
        note(u"updateAircraftConfiguration %1"_qs.arg(aircraft.callsign));
    }
    void removeAircraft(const model::RemoteAircraft &aircraft, const QString &reason) override
    {
        told.append({aircraft, aircraft.visualState, {}, {}});
        note(u"removeAircraft %1 %2"_qs.arg(aircraft.callsign, reason));
    }
    void removeAllAircraft() override { note(u"removeAllAircraft"_qs); }
    void setControllers(const QList<model::Controller> &list) override
    {
        controllers = list;
        note(u"setControllers %1"_qs.arg(list.size()));
    }
    void clearControllers() override
    {
        controllers.clear();
        note(u"clearControllers"_qs);
    }
    void positionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state) override
    {
        told.append({aircraft, state, {}, {}});
        note(u"positionUpdate %1"_qs.arg(aircraft.callsign));
    }
    void fastPositionUpdate(const model::RemoteAircraft &aircraft, const model::AircraftVisualState &state,
                            const model::VelocityVector &positional, const model::VelocityVector &rotational) override
    {
        told.append({aircraft, state, positional, rotational});
        note(u"fastPositionUpdate %1"_qs.arg(aircraft.callsign));
    }
    void aircraftHeartbeat(const QString &callsign) override { note(u"aircraftHeartbeat %1"_qs.arg(callsign)); }
    void showRadioMessageSent(const QString &message) override { note(u"showRadioMessageSent %1"_qs.arg(message)); }
    void showRadioMessageReceived(const QString &from, const QString &message, bool direct) override
    {
        note(u"showRadioMessageReceived %1 %2 %3"_qs.arg(from, message, direct ? u"direct"_qs : u"all"_qs));
    }
    void showNotification(const QString &message, int colour) override
    {
        note(u"showNotification %1 %2"_qs.arg(QString::number(colour, 16), message));
    }
    void showPrivateMessageSent(const QString &to, const QString &message) override
    {
        note(u"showPrivateMessageSent %1 %2"_qs.arg(to, message));
    }
    void showPrivateMessageReceived(const QString &from, const QString &message) override
    {
        note(u"showPrivateMessageReceived %1 %2"_qs.arg(from, message));
    }
    void networkConnected(const QString &callsign, const QString &selcal, bool observer) override
    {
        note(u"networkConnected %1 %2 %3"_qs.arg(callsign, selcal, observer ? u"observer"_qs : u"pilot"_qs));
    }
    void networkDisconnected() override { note(u"networkDisconnected"_qs); }
    void setStationCallsign(int radio, const QString &callsign) override
    {
        note(u"setStationCallsign %1 %2"_qs.arg(radio).arg(callsign));
    }
    void selcalAlert() override { note(u"selcalAlert"_qs); }
    simulator::SimulatorType simulatorType() const override { return type; }
    void reconnectSimulator() override { note(u"reconnectSimulator"_qs); }
    double pressureAltitudeFeet() const override { return pressureAltitude; }
    double trueAltitudeFeet() const override { return trueAltitude; }
    double adjustRemoteAltitude(double altitudeFeet) const override { return altitudeFeet + remoteAltitudeShift; }

private:
    void note(const QString &call)
    {
        calls.append(call);
        if (const auto callBack = onCall) // a copy: it may put another one in its place
            callBack(call);
    }
};

} // namespace tarvo::test

#pragma once

#include "common/Clock.h"
#include "practice/flight/Flight.h"
#include "practice/simconnect/AiTraffic.h"
#include "practice/simconnect/DataDefinitions.h"
#include "practice/simconnect/DataRequests.h"
#include "practice/simconnect/InputEvents.h"
#include "practice/simconnect/Messages.h"
#include "practice/simconnect/SimConnectCalls.h"
#include "practice/simconnect/SimConnectStandIn.h"
#include "practice/simconnect/SimObject.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>

namespace tarvo::practice {

/// Microsoft Flight Simulator, as far as a pilot client sees it through SimConnect. The aeroplane flies Flight in a
/// loop; radios, transponder and switches answer to writes and events; ordered aircraft get ids and stand at their last
/// waypoint. Has no timer: what is due by the clock comes when the client looks for messages. What is wrong with a call
/// is answered with an exception, as there. Everything ends with the connection but the flight and the switches.
class MsfsStandIn : private SimConnectCalls
{
public:
    static constexpr quint32 userObject = 1; ///< what replies call the own aircraft; clients may also say 0

    explicit MsfsStandIn(const common::Clock &clock = common::systemClock());
    ~MsfsStandIn() override;

    /// The library in front of it: what was called, what fails, any message.
    SimConnectStandIn &wire() { return m_wire; }
    const SimConnectStandIn &wire() const { return m_wire; }

    /// What the next connection's first message says; as the 2020 simulator by default.
    void setApplication(const message::Application &application) { m_application = application; }
    /// The own aircraft's model and tail number.
    void setUserAircraft(const QByteArray &title, const QByteArray &tailNumber);

    // --- the flight ---
    const Flight &flight() const { return m_flight; }
    /// Seconds since the start of the flight.
    double flightTime() const { return flightTimeAt(m_clock.steadyMs()); }
    /// Jumps to another moment of the flight.
    void setFlightTime(double seconds);
    /// The flight stands still while paused; "PAUSE INDICATOR" and the system event "Pause" tell it.
    void setPaused(bool paused);
    bool isPaused() const { return m_paused; }
    /// Sends nothing of its own accord, as a simulator that hangs does; what is asked for is kept.
    void setFrozen(bool frozen) { m_frozen = frozen; }
    /// Milliseconds from frame to frame; 33 by default.
    void setFrameMs(int ms) { m_frameMs = ms; }
    /// A frame now, whatever the clock says.
    void frame();

    /// The value of the own aircraft's variable, such as "LIGHT NAV" in "bool"; 0 for an unknown one.
    double value(const QByteArray &variable, const QByteArray &unit) const;
    /// Moves a switch of the own aircraft. False when there is no such variable or unit, or the number is none.
    bool setValue(const QByteArray &variable, const QByteArray &unit, double value);
    bool isIdenting() const { return m_clock.steadyMs() < m_identUntil; }
    /// The levers that clients may follow.
    InputEvents &inputEvents() { return m_inputEvents; }

    // --- other aircraft ---
    void setCreateAnswering(CreateAnswering answering) { m_traffic.setAnswering(answering); }
    /// Models that are there; orders for others fail with exception 22. Empty, as by default: all are.
    void setInstalled(const QList<QByteArray> &titles) { m_traffic.setInstalled(titles); }
    /// Orders that are not answered yet.
    qsizetype pendingCreates() const { return m_traffic.pending(); }
    /// The oldest of them gets its object now, or exception 22. False when none waits.
    bool assignPending() { return m_traffic.assign(); }
    bool failPending() { return m_traffic.fail(); }
    /// What is there, by object id.
    QList<AiAircraft> aircraft() const { return m_traffic.all(); }
    /// The one of that tail number; id 0 when it isn't there.
    AiAircraft aircraft(const QByteArray &tailNumber) const;
    /// What was written to another aircraft's variable; -1 when nothing was.
    double written(quint32 object, const QByteArray &variable, const QByteArray &unit);
    /// Cuts each reply about the traffic to so many bytes of data; -1, as by default: whole ones.
    void setTrafficBytes(int bytes) { m_trafficBytes = bytes; }

    // --- what it does of its own accord ---
    /// Exception `number`, about the last call unless `sendId` says another.
    void raise(quint32 number, quint32 sendId = 0, quint32 index = 0);
    /// Ends: tells the client, and refuses to be opened until start().
    void quit();
    void start();

private:
    void opened() override;
    void closed() override;
    void addToDataDefinition(DWORD define, const QByteArray &datum, const QByteArray &unit, DWORD datatype) override;
    void clearDataDefinition(DWORD define) override;
    void requestDataOnSimObject(DWORD request, DWORD define, DWORD object, DWORD period, DWORD flags) override;
    void requestDataOnSimObjectType(DWORD request, DWORD define, DWORD radiusMetres, DWORD type) override;
    void setDataOnSimObject(DWORD define, DWORD object, const QByteArray &data) override;
    void mapClientEventToSimEvent(DWORD event, const QByteArray &name) override;
    void transmitClientEvent(DWORD object, DWORD event, DWORD data) override;
    void subscribeToSystemEvent(DWORD event, const QByteArray &name) override;
    void createNonATCAircraft(const QByteArray &title, const QByteArray &livery, const QByteArray &tailNumber,
                              const simulator::msfs::SIMCONNECT_DATA_INITPOSITION &position, DWORD request) override;
    void removeObject(DWORD object, DWORD request) override;
    void enumerateInputEvents(DWORD request) override;
    void subscribeInputEvent(quint64 hash) override;
    void poll() override;

    double flightTimeAt(qint64 steadyMs) const;
    void frameAt(qint64 steadyMs);
    void answerCreates();
    /// Raises the exception, if it is one.
    void check(quint32 exception, quint32 index = 0);
    /// The own aircraft or another; null when there is none.
    SimObject *find(quint32 object);
    void tell(quint32 request, DataRequests::Request &asked);
    QByteArray trafficMessage(const message::DataHead &head, const SimObject &object) const;

    const common::Clock &m_clock;
    SimConnectStandIn m_wire;
    message::Application m_application = message::msfs2020();
    Flight m_flight;
    SimObject m_user;
    AiTraffic m_traffic;
    InputEvents m_inputEvents;
    DataDefinitions m_definitions;
    DataRequests m_requests;
    QHash<quint32, QByteArray> m_events; ///< what the client's numbers for events mean
    QSet<quint32> m_pauseEvents;         ///< its numbers for the system event "Pause"
    double m_flightAtMark = 0;           ///< seconds; the flight's time when the clock showed m_mark
    qint64 m_mark = 0;                   ///< ms of the steady clock, as are the next two
    qint64 m_lastFrame = 0;
    qint64 m_identUntil = 0;
    int m_frameMs = 33;
    int m_trafficBytes = -1;
    bool m_paused = false;
    bool m_frozen = false;
};

} // namespace tarvo::practice

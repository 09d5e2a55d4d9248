#pragma once

#include "manager/AircraftManager.h"
#include "manager/TrafficSession.h"

namespace tarvo::test {

inline const QString fullGearDown = uR"({"config":{"is_full_data":true,"gear_down":true}})"_qs;
inline const QString gearUp = uR"({"config":{"gear_down":false}})"_qs;

// Both paths reach the simulator: NetworkManager's call comes first, AircraftManager's behind it.
inline const QString add = u"addAircraft AB2"_qs;
inline const QString update = u"updateAircraftConfiguration AB2"_qs;
inline const QString heartbeat = u"aircraftHeartbeat AB2"_qs;
inline const QString move = u"positionUpdate AB2"_qs;
inline const QString moveFast = u"fastPositionUpdate AB2"_qs;
inline const QString stale = u"removeAircraft AB2 Stale"_qs;

/// A session with the manager under test. In its trace only what the simulator is told counts.
struct CrowdedSession : TrafficSession
{
    std::unique_ptr<tarvo::manager::AircraftManager> aircraft;

    explicit CrowdedSession(const QStringList &ignored = {})
    {
        aircraft = std::make_unique<tarvo::manager::AircraftManager>(manager, clock);
        aircraft->setIgnoreList(ignored);
        emit manager->networkConnected(QStringLiteral("AB1")); // it was not there yet when the session began
    }

    /// What both managers ask when they first hear of a callsign, and what is told it.
    static QStringList greeting(const QString &callsign)
    {
        return typeQuestions(callsign) +
               QStringList{u"$CQAB1:%1:CAPS"_qs.arg(callsign),
                           u"$CRAB1:%1:CAPS:VERSION=1:ATCINFO=1:MODELDESC=1:ACCONFIG=1:VISUPDATE=1"_qs.arg(callsign)} +
               typeQuestions(callsign);
    }
    /// AB2 appears with this ground speed, and tells its type.
    bool meetAb2(int groundSpeed)
    {
        const bool met = feed(slow(ab2, groundSpeed), greeting(ab2)) && feed(planeInfo(), {configurationQuestion(ab2)});
        sim->takeCalls();
        return met;
    }
    /// AB2 and AB3 fly, and are ready to be added by the next event.
    bool meetAb2AndAb3()
    {
        const QString ab3 = QStringLiteral("AB3");
        bool met = meetAb2(300) && feed(slow(ab3, 300), greeting(ab3)) &&
                   feed(u"#SBAB3:AB1:PI:GEN:EQUIPMENT=B738"_qs, {configurationQuestion(ab3)});
        for (const QString &callsign : {ab2, ab3})
            met = met && feed(configuration(fullGearDown, callsign)) && feed(fast(callsign));
        sim->takeCalls();
        return met;
    }
    /// Feeds a line that is not answered, and gives what the simulator was told.
    QStringList told(const QString &line)
    {
        sim->takeCalls();
        return feed(line) ? sim->takeCalls() : QStringList{QStringLiteral("answered")};
    }
    model::RemoteAircraft record() const { return aircraft->aircraft().value(0); }
    bool isRunning(const char *timer) const
    {
        return aircraft->findChild<QTimer *>(QLatin1StringView(timer))->isActive();
    }
    void fire(const char *timer) const
    {
        QMetaObject::invokeMethod(aircraft->findChild<QTimer *>(QLatin1StringView(timer)), "timeout");
    }
};

} // namespace tarvo::test

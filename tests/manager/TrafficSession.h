#pragma once

#include "manager/Session.h"

namespace tarvo::test {

inline const QString ab2 = u"AB2"_qs;

/// Somebody on the network who writes down, in one list, what the simulator is told and what is raised about the other
/// aircraft: "addAircraft AB2", "slow AB2 250", "info AB2 B738 ", ...
struct TrafficSession : Session
{
    enum class Who
    {
        Pilot,
        Observer
    };

    QStringList trace;
    bool online = false;

    explicit TrafficSession(Who who = Who::Pilot)
    {
        addSimulator();
        watch();
        online = who == Who::Pilot ? connectPilot() : connectObserver();
        finishLogin(who);
    }

    /// Sends `line` as the server; true when the client answers with exactly these.
    bool feed(const QString &line, const QStringList &answers = {})
    {
        peer.inject(line);
        for (const QString &answer : answers) {
            if (!peer.expect(answer))
                return false;
        }
        return peer.expectNothing();
    }
    QStringList takeTrace()
    {
        QStringList taken;
        taken.swap(trace);
        return taken;
    }
    /// The record of AB2.
    model::RemoteAircraft known() const { return manager->remoteAircraft(QStringLiteral("AB2")).value(); }

    /// Puts AB2 into the simulator as a B738 that moves at 250 knots, and asks for its configuration.
    bool showAb2()
    {
        const bool shown = feed(slow(QStringLiteral("AB2")), typeQuestions(QStringLiteral("AB2"))) &&
                           feed(planeInfo(), {configurationQuestion(QStringLiteral("AB2"))});
        trace.clear();
        sim->told.clear();
        return shown;
    }

    // Each at 40.5 N, 116.25 E, unless the latitude is told.
    static QString slow(const QString &callsign, int groundSpeed = 250,
                        const QString &latitude = QStringLiteral("40.5"))
    {
        return QStringLiteral("@N:%1:2000:1:%3:116.25000:3281:%2:0:0").arg(callsign).arg(groundSpeed).arg(latitude);
    }
    static QString fast(const QString &callsign, const QString &identifier = QStringLiteral("^"),
                        const QString &velocities = QStringLiteral("30:5:40"),
                        const QString &latitude = QStringLiteral("40.5"))
    {
        return QStringLiteral("%1%2:%4:116.250000:3281.00:1000.00:0:%3:0.1:0.2:0.3:7.5")
            .arg(identifier, callsign, velocities, latitude);
    }
    static QString stopped(const QString &callsign)
    {
        return QStringLiteral("#ST%1:40.500000:116.250000:3281.00:1000.00:0:7.5").arg(callsign);
    }
    static QString planeInfo(const QString &type = QStringLiteral("B738"))
    {
        return QStringLiteral("#SBAB2:AB1:PI:GEN:EQUIPMENT=") + type;
    }
    static QString flightPlan(const QString &aircraft, const QString &callsign = QStringLiteral("AB2"))
    {
        return QStringLiteral("$FP%1:*A:I:%2:440:ZBAA:0100:0105:32000:ZSSS:2:0:4:0:ZSPD:/V/:A B C")
            .arg(callsign, aircraft);
    }
    static QString configuration(const QString &json, const QString &callsign = QStringLiteral("AB2"))
    {
        return QStringLiteral("$CQ%1:@94386:ACC:%2").arg(callsign, json);
    }

    static QStringList typeQuestions(const QString &callsign)
    {
        return {QStringLiteral("#SBAB1:%1:PIR").arg(callsign), QStringLiteral("$CQAB1:SERVER:FP:%1").arg(callsign)};
    }
    static QString textQuestion(const QString &callsign)
    {
        return QStringLiteral("#TMAB1:SERVER:FP:%1:GET").arg(callsign);
    }
    static QString configurationQuestion(const QString &callsign)
    {
        return QStringLiteral("$CQAB1:%1:ACC:{\"request\":\"full\"}").arg(callsign);
    }

    /// Writes down what `simulator` is told.
    void watch(FakeSimulator &simulator)
    {
        simulator.onCall = [this](const QString &call) { trace << call; };
    }

private:
    void watch()
    {
        using manager::NetworkManager;
        NetworkManager *m = manager.get();
        watch(*sim);
        QObject::connect(m, &NetworkManager::slowPositionUpdateReceived, m,
                         [this](const QString &from, const model::AircraftVisualState &, double groundSpeed) {
                             trace << QStringLiteral("slow %1 %2").arg(from).arg(groundSpeed);
                         });
        QObject::connect(m, &NetworkManager::fastPositionUpdateReceived, m,
                         [this](const QString &from) { trace << QStringLiteral("fast ") + from; });
        QObject::connect(m, &NetworkManager::aircraftInfoReceived, m,
                         [this](const QString &from, const QString &equipment, const QString &airline) {
                             trace << QStringLiteral("info %1 %2 %3").arg(from, equipment, airline);
                         });
        QObject::connect(m, &NetworkManager::aircraftConfigurationInfoReceived, m,
                         [this](const QString &from) { trace << QStringLiteral("configuration ") + from; });
        QObject::connect(m, &NetworkManager::pilotDeleted, m,
                         [this](const QString &from) { trace << QStringLiteral("deleted ") + from; });
        QObject::connect(m, &NetworkManager::disableVoiceTransmit, m, [this] { trace << QStringLiteral("voice off"); });
        QObject::connect(m, &NetworkManager::networkDisconnected, m,
                         [this] { trace << QStringLiteral("disconnected"); });
    }

    void finishLogin(Who who)
    {
        const int lines = who == Who::Pilot ? 4 : 3;
        online = online && peer.skip(lines);
        peer.inject(QStringLiteral("$CRSERVER:AB1:IP:10.0.0.9"));
        online = online && peer.expectNothing() && takeEvents() == QStringList{QStringLiteral("connected AB1")};
        takeNotifications();
        sim->takeCalls();
        trace.clear();
    }
};

/// What is asked about AB2.
inline const QStringList askForType = TrafficSession::typeQuestions(ab2);
inline const QString askForConfiguration = TrafficSession::configurationQuestion(ab2);

} // namespace tarvo::test

#pragma once

#include "e2e/Client.h"
#include "model/RadioStackState.h"
#include "practice/xplane/PluginMessage.h"
#include "support/ManualClock.h"

#include <QStringList>

#include <functional>
#include <initializer_list>

namespace tarvo::test {

/// A client beside an X-Plane and a server in a world where nothing happens by itself: the session's clock and the
/// simulator's stand still, the session's timers don't go off. Whatever the client says is kept in order: lines to the
/// server, bytes to the plugin, signals to the program.
class Stage
{
public:
    explicit Stage(Protocol protocol = Protocol::Classic,
                   const practice::PracticeSettings &settings = Network::quietSettings());

    /// Signs in and connects X-Plane.
    bool open();
    /// Goes online as AB1, a B738 with the SELCAL EF-GH; what the login says is kept.
    bool goOnline();
    bool goOnlineAsObserver(const QString &callsign);
    /// open() and goOnline(); what was said is forgotten. `pilots` and `controllers` are on the network already.
    bool start(const QStringList &pilots = {}, const QStringList &controllers = {});
    /// Puts another X-Plane in the place of the one that is there, with the same plugin.
    bool replaceSimulator();

    /// Lets the server send lines to the client, and waits until the client and all that answers it have come to rest.
    bool hear(const QStringList &lines);
    /// Lets an aircraft appear that flies at so many knots and is a B738: in the simulator by way of the session's
    /// table, known to the list, which still waits for its configuration. What was said is forgotten, but not the
    /// signals.
    bool introduce(const QString &callsign, int knots);
    /// Keeps the session's timers from going off by themselves.
    void stopTimers();
    /// Waits until everything that is under way between server, client and plugin has arrived.
    bool settle();
    /// Waits until all that the client has said to the plugin has arrived. Needs no server.
    bool settlePlugin();

    /// What was said since it was last taken. Own positions are left out of the lines.
    QStringList takeLines();
    /// Each as shown() shows it.
    QStringList takeMessages();
    QStringList takeSignals();

    /// Sets a dataref and lets the simulator send until the client has its value.
    bool turn(const QString &dataref, float value, const std::function<bool()> &known);
    bool turnRadio(const QString &dataref, float value,
                   const std::function<bool(const model::RadioStackState &)> &known);
    bool tuneCom1(int kHz);
    bool tuneCom2(int kHz);
    bool receiveOnCom2();

    practice::FsdServer &server() { return network.practice.fsd(); }
    practice::PluginStandIn &plugin() { return network.practice.xplane().plugin(); }
    practice::XPlaneStandIn &xplane() { return network.practice.xplane(); }
    manager::NetworkManager &manager() { return *client.manager; }

    /// What the client's two records say of an aircraft; one without a callsign when there is none.
    model::RemoteAircraft inNetworkTable(const QString &callsign) const;
    model::RemoteAircraft inTrafficList(const QString &callsign) const;

    ManualClock simulatorClock; ///< and the services'
    ManualClock clock;          ///< the session's
    Network network;
    Client client;

private:
    bool activateXPlane();
    void watchPlugin();
    void watchRadio();
    void watchTextSignals();
    void watchTrafficSignals();
    void watchStationSignals();
    template <class... Arguments>
    void watch(void (manager::NetworkManager::*signal)(Arguments...), const QString &name);
    bool awaitLogin();
    bool passRound();
    QString nextMark();
    qsizetype markedMessages(const QString &mark) const;
    void forgetMark(const QString &mark);

    QList<QByteArray> m_messages;
    QStringList m_signals;
    model::RadioStackState m_radio;
    QString m_callsign = QStringLiteral("AB1");
    int m_mark = 0;
};

/// Messages as takeMessages() gives them.
QStringList told(std::initializer_list<practice::PluginMessage> messages);

} // namespace tarvo::test

#pragma once

#include "AppConfig.h"
#include "manager/AircraftManager.h"
#include "manager/ClientIdentity.h"
#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "manager/UserAircraftManager.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "simulator/xplane/XPlaneAdapter.h"
#include "support/Patience.h"
#include "voice/client/VoiceClient.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace tarvo::test {

enum class Protocol
{
    Classic,
    Token
};

/// Where a client finds its services and its simulator.
struct Place
{
    ServiceEndpoints endpoints;
    quint16 xplanePort = 0; ///< of X-Plane's UDP interface
};

/// The client as the program composes it, without its windows: one data folder, any number of login sessions.
class Client
{
public:
    /// The clock is that of the session, not of the services and the simulator.
    Client(const Place &place, Protocol protocol, const common::Clock &clock = common::systemClock())
        : m_endpoints(place.endpoints), m_clock(clock), config(root.path()), api(config, m_endpoints), icao(config)
    {
        config.set(config::authVatsim, protocol == Protocol::Token);
        config.set(config::xplaneUdpPort, place.xplanePort);
        icao.ensureLoaded();
    }

    QTemporaryDir root;

private:
    ServiceEndpoints m_endpoints;
    const common::Clock &m_clock;

public:
    AppConfig config;
    network::ApiService api;
    network::SwiftAircraftIcaoService icao;
    std::shared_ptr<manager::NetworkManager> manager;
    std::shared_ptr<manager::AircraftManager> traffic;
    std::shared_ptr<manager::UserAircraftManager> aircraft;
    std::shared_ptr<manager::ControllerManager> controllers;

    QStringList notifications; ///< texts, in order
    QStringList events;        ///< "connected AB1", "disconnected", "disconnected forced"

    /// Signs in to the account service and composes a session, as the login window and what follows it do. `password`
    /// is what the session remembers.
    bool signIn(const QString &password = QStringLiteral("practice"), const QString &cid = QStringLiteral("1001"))
    {
        bool answered = false;
        bool accepted = false;
        api.login(cid, QStringLiteral("practice"), [&](bool success, const QString &) {
            answered = true;
            accepted = success;
        });
        if (!waitFor([&] { return answered; }) || !accepted)
            return false;
        config.set(config::sessionUsername, cid);
        config.set(config::sessionPassword, password);
        manager = std::make_shared<manager::NetworkManager>(config, api, icao, m_endpoints, m_clock);
        manager->voiceClient().setCid(static_cast<quint32>(api.currentUser().id));
        traffic = std::make_shared<manager::AircraftManager>(manager, m_clock);
        aircraft = std::make_shared<manager::UserAircraftManager>(manager);
        controllers = std::make_shared<manager::ControllerManager>(manager, m_clock);
        listen();
        return true;
    }

    /// Installs X-Plane and waits until it is connected and then delivers. `meanwhile` is called while it waits, to
    /// move a simulator whose clock stands still.
    bool activateXPlane(const std::function<void()> &meanwhile = [] {})
    {
        using simulator::Simulator;
        const auto xplane = std::make_shared<simulator::xplane::XPlaneAdapter>(config, m_endpoints);
        bool connected = false;
        bool live = false;
        QObject::connect(xplane.get(), &Simulator::simConnectionStateChanged, xplane.get(),
                         [&](bool on) { connected = on; });
        QObject::connect(xplane.get(), &Simulator::userAircraftDataChanged, xplane.get(), [&] { live = connected; });
        // Where another one was before, its socket closes in the time before the dial: a plugin has room for one.
        auto *dial = xplane->findChild<QTimer *>(QStringLiteral("dial"));
        if (!manager->simulator() && dial)
            dial->setInterval(0);
        manager->setSimulator(xplane);
        auto *tick = xplane->findChild<QTimer *>(QStringLiteral("tick"));
        const auto delivers = [&] {
            meanwhile();
            if (!connected)
                QMetaObject::invokeMethod(tick, "timeout");
            return live;
        };
        const bool delivered = tick && QTest::qWaitFor(delivers, patienceMs);
        xplane->disconnect(xplane.get());
        return delivered;
    }

    bool connectPilot()
    {
        return manager->connectToNetwork(QStringLiteral("ab1"), QStringLiteral("b738"), QStringLiteral("EF-GH"), false);
    }
    bool connectObserver() { return manager->connectToNetwork(QStringLiteral("ab1"), {}, {}, true); }

    /// What a logout does, in its order.
    void signOut()
    {
        api.clearSession();
        for (const StringKey &key :
             {config::authToken, config::authRefreshToken, config::authUsername, config::authPassword})
            config.reset(key);
        manager->disconnectFromNetwork();
        controllers.reset();
        aircraft.reset();
        traffic.reset();
        manager.reset();
        config.reset(config::sessionUsername);
        config.reset(config::sessionPassword);
    }

    /// Raises the signal of one of the session's timers, such as "slowTimer", "staleTimer" or "controllerTimer".
    bool fire(const char *timer) const
    {
        QTimer *found = findTimer(timer);
        return found && QMetaObject::invokeMethod(found, "timeout");
    }
    bool isRunning(const char *timer) const
    {
        const QTimer *found = findTimer(timer);
        return found && found->isActive();
    }
    /// Keeps a timer from going off by itself.
    void stop(const char *timer) const
    {
        if (QTimer *found = findTimer(timer))
            found->stop();
    }

    /// All network logs, one after the other.
    QString networkLog() const
    {
        const QDir folder(config.logsFolder() + QStringLiteral("/network"));
        QString text;
        for (const QString &name : folder.entryList(QDir::Files, QDir::Name)) {
            QFile file(folder.filePath(name));
            if (file.open(QIODevice::ReadOnly))
                text += QString::fromUtf8(file.readAll());
        }
        return text;
    }

private:
    QTimer *findTimer(const char *name) const
    {
        for (const QObject *owner :
             std::initializer_list<const QObject *>{manager.get(), traffic.get(), aircraft.get(), controllers.get()}) {
            if (QTimer *found = owner ? owner->findChild<QTimer *>(QLatin1StringView(name)) : nullptr)
                return found;
        }
        return nullptr;
    }

    void listen()
    {
        using manager::NetworkManager;
        QObject::connect(manager.get(), &NetworkManager::notificationPosted, manager.get(),
                         [this](const QString &text) { notifications << text; });
        QObject::connect(manager.get(), &NetworkManager::networkConnected, manager.get(),
                         [this](const QString &callsign) { events << QStringLiteral("connected ") + callsign; });
        QObject::connect(manager.get(), &NetworkManager::networkDisconnected, manager.get(), [this](bool forced) {
            events << (forced ? QStringLiteral("disconnected forced") : QStringLiteral("disconnected"));
        });
    }
};

/// The line that answers every greeting.
inline QString identification()
{
    return QStringLiteral("$IDAB1:SERVER:bdc0:TarvoClient:3:0:1001:") + manager::machineId();
}

} // namespace tarvo::test

/// Waits until these and no other events have been heard since they were last taken, and takes them.
#define TRY_EVENTS(client, ...)                                                                                        \
    TRY_COMPARE((client).events, (QStringList{__VA_ARGS__}));                                                          \
    (client).events.clear()

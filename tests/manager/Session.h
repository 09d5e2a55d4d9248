#pragma once

#include "AppConfig.h"
#include "manager/ClientIdentity.h"
#include "manager/NetworkManager.h"
#include "manager/TokenPeer.h"
#include "network/ApiService.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/FakeSimulator.h"
#include "support/FsdPeer.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/VoicePeer.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace tarvo::test {

// Notifications, as Session writes them down.
inline const QString connecting = u"9 Connecting to network..."_qs;
inline const QString connected = u"9 Connected to network."_qs;
inline const QString disconnected = u"9 Disconnected from network."_qs;
inline const QString closedByServer = u"10 RemoteHostClosedError: The remote host closed the connection"_qs;

enum class Protocol
{
    Classic,
    Token
};

/// A signed-in pilot with a NetworkManager between a scripted server, a token service and a fake simulator.
struct Session
{
    QTemporaryDir root;
    ManualClock clock;
    FsdPeer peer;
    TokenPeer tokens;
    VoicePeer voice;
    AppConfig config{root.path()};
    std::unique_ptr<network::ApiService> api;
    network::SwiftAircraftIcaoService icao{config};
    std::shared_ptr<manager::NetworkManager> manager;
    std::shared_ptr<FakeSimulator> sim;

    /// What was posted, as "9 Connecting to network...".
    QStringList notifications;
    /// What was heard: "connected AB1", "disconnected forced" and the like, in order.
    QStringList events;

    explicit Session(Protocol protocol = Protocol::Classic, const QString &host = QStringLiteral("127.0.0.1"))
    {
        // Typed, not stored: to encrypt a stored one would be most of a test's work.
        config.set(config::sessionPassword, QStringLiteral("secret"));
        if (protocol == Protocol::Token)
            config.set(config::authToken, QStringLiteral("jwt"));
        config.set(config::authVatsim, protocol == Protocol::Token);
        config.set(config::authUsername, QStringLiteral("1001"));
        config.set(config::profileRealname, QStringLiteral("Li Lei"));
        api = std::make_unique<network::ApiService>(config, endpoints(host), clock);
        manager = std::make_shared<manager::NetworkManager>(config, *api, icao, endpoints(host), clock);
        listen();
    }

    /// A simulator with live data: at 40 N, 116.5 E, standing.
    void addSimulator()
    {
        sim = std::make_shared<FakeSimulator>();
        manager->setSimulator(sim);
        emit sim->simConnectionStateChanged(true);
        emit sim->userAircraftDataChanged(standing());
        TRY_COMPARE(sim->calls, QStringList{QStringLiteral("reconnectSimulator")});
        sim->calls.clear();
    }

    static model::UserAircraftData standing()
    {
        model::UserAircraftData data;
        data.latitude = 40;
        data.longitude = 116.5;
        return data;
    }

    bool connectPilot() { return manager->connectToNetwork(u"ab1"_qs, u"b738"_qs, u"EF-GH"_qs, false); }
    bool connectObserver() { return manager->connectToNetwork(u"ab1"_qs, QString(), QString(), true); }

    /// The text of "$ID" that answers every greeting.
    static QString identification()
    {
        return QStringLiteral("$IDAB1:SERVER:bdc0:TarvoClient:3:0:1001:") + manager::machineId();
    }

    QStringList takeNotifications()
    {
        QStringList taken;
        taken.swap(notifications);
        return taken;
    }
    QStringList takeEvents()
    {
        QStringList taken;
        taken.swap(events);
        return taken;
    }

    /// Raises the signal of one of the manager's timers, wherever it is.
    bool fire(const char *timer) const
    {
        auto *found = manager->findChild<QTimer *>(QLatin1StringView(timer));
        return found && QMetaObject::invokeMethod(found, "timeout");
    }
    bool isRunning(const char *timer) const
    {
        const auto *found = manager->findChild<QTimer *>(QLatin1StringView(timer));
        return found && found->isActive();
    }

private:
    ServiceEndpoints endpoints(const QString &host) const
    {
        ServiceEndpoints result = voice.endpoints();
        result.apiBaseUrl = tokens.baseUrl();
        result.fsdHost = host;
        result.fsdPort = peer.port();
        return result;
    }

    void listen()
    {
        using manager::NetworkManager;
        QObject::connect(manager.get(), &NetworkManager::notificationPosted, manager.get(),
                         [this](const QString &text, common::MessageType type) {
                             notifications << QStringLiteral("%1 %2").arg(static_cast<int>(type)).arg(text);
                         });
        QObject::connect(manager.get(), &NetworkManager::networkConnected, manager.get(),
                         [this](const QString &callsign) { events << QStringLiteral("connected ") + callsign; });
        QObject::connect(manager.get(), &NetworkManager::networkDisconnected, manager.get(), [this](bool forced) {
            events << (forced ? QStringLiteral("disconnected forced") : QStringLiteral("disconnected"));
        });
    }
};

} // namespace tarvo::test

/// Waits until these and no other events have been heard since they were last taken, and takes them.
#define TRY_EVENTS(session, ...)                                                                                       \
    TRY_COMPARE((session).events, (QStringList{__VA_ARGS__}));                                                         \
    (session).events.clear()

/// The next line that the server gets.
#define EXPECT_LINE(session, line) QVERIFY((session).peer.expect(line))
/// The next ones.
#define EXPECT_LINES(session, ...) QVERIFY((session).peer.expect(QStringList{__VA_ARGS__}))

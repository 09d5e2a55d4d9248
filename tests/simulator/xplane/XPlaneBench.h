#pragma once

#include "AppConfig.h"
#include "ServiceEndpoints.h"
#include "model/Controller.h"
#include "model/RemoteAircraft.h"
#include "simulator/xplane/DatarefLink.h"
#include "simulator/xplane/MessagePool.h"
#include "simulator/xplane/PluginLink.h"
#include "simulator/xplane/XPlaneAdapter.h"
#include "support/DatarefPeer.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/PluginPeer.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace tarvo::test {

/// Raises a timer's timeout at once; a single shot that has not been started stays silent.
inline void fire(QObject &owner, const char *timerName)
{
    auto *timer = owner.findChild<QTimer *>(QString::fromLatin1(timerName));
    QVERIFY2(timer, timerName);
    if (!timer->isActive())
        return;
    if (timer->isSingleShot())
        timer->stop();
    QMetaObject::invokeMethod(timer, "timeout", Qt::DirectConnection);
}

/// A Boeing of somebody else's, every value of which is another.
inline model::RemoteAircraft remoteAircraft()
{
    model::RemoteAircraft one;
    one.callsign = QStringLiteral("CCA1");
    one.airline = QStringLiteral("CCA");
    one.typeCode = QStringLiteral("B738");
    one.groundSpeed = 250;
    one.visualState = {.latitude = 40,
                       .longitude = -116.5,
                       .altitudeMslM = 3048,
                       .altitudeAglM = 12.5,
                       .pitch = 1.5,
                       .heading = 90,
                       .bank = -3,
                       .noseWheelAngle = -14};
    return one;
}

/// The same with its gear down, of which alone its configuration tells.
inline model::RemoteAircraft aircraftWithGearDown()
{
    model::RemoteAircraft one = remoteAircraft();
    one.configuration.gearDown = true;
    return one;
}

inline model::Controller station(const QString &callsign, quint32 frequency, bool valid = true)
{
    model::Controller one;
    one.callsign = callsign;
    one.frequency = frequency;
    one.valid = valid;
    return one;
}

/// The plugin's word that it has drawn an aircraft.
inline QByteArray addedMessage(int number)
{
    return packPluginMessage(QStringLiteral("ADDED"), {QString::number(number)});
}

/// nng's threads belong to the whole program: whoever opens the first socket, they are the client's.
inline std::unique_ptr<PluginPeer> startedPlugin(const PluginAddressDir &address)
{
    simulator::xplane::limitMessagePool();
    return std::make_unique<PluginPeer>(address.url());
}

/// Settings in a folder of their own that point at a simulator on this machine: a UDP peer and, once startPlugin() was
/// called, a plugin. Time stands still; timers are fired by hand.
struct XPlaneBench
{
    XPlaneBench() { config.set(config::xplaneUdpPort, simulator.port()); }

    void startPlugin() { plugin = startedPlugin(address); }
    ServiceEndpoints endpoints() const
    {
        ServiceEndpoints endpoints;
        endpoints.localPluginUrl = address.url();
        return endpoints;
    }

    QTemporaryDir folder;
    AppConfig config{folder.path()};
    PluginAddressDir address;
    ManualClock clock;
    DatarefPeer simulator;
    std::unique_ptr<PluginPeer> plugin;
};

/// With a UDP link that has published.
struct DatarefBench : XPlaneBench
{
    explicit DatarefBench(const QString &host = QStringLiteral("127.0.0.1"))
    {
        config.set(config::xplaneNetworkAddress, host);
        link = std::make_unique<simulator::xplane::DatarefLink>(config, clock);
        publish();
    }

    void publish() { fire(*link, "publish"); }

    /// The peer knows then where to reply to.
    bool subscribe()
    {
        link->subscribe();
        return waitFor([this] { return simulator.subscriptions().size() == 53; });
    }

    /// Waits until all that was sent before has been read: a last, harmless value is seen to arrive.
    bool settle()
    {
        const float marker = ++lastMarker;
        simulator.report(22, marker);
        return waitFor([&] { return link->sample().user.altitudePressure == static_cast<double>(marker); });
    }

    std::unique_ptr<simulator::xplane::DatarefLink> link;
    float lastMarker = 0;
};

/// An address for a plugin, and a link that dials there when it is opened.
struct PluginBench : PluginAddressDir
{
    void startPlugin() { plugin = startedPlugin(*this); }
    void open() { link->open({.url = url(), .local = true}); }
    /// Both are there, and connected.
    bool connect()
    {
        startPlugin();
        open();
        return waitFor([this] { return plugin->hasClient(); });
    }

    std::unique_ptr<PluginPeer> plugin;
    std::unique_ptr<simulator::xplane::PluginLink> link = std::make_unique<simulator::xplane::PluginLink>();
};

/// Both are there, and on the way to each other.
struct RunningBench : PluginBench
{
    RunningBench()
    {
        startPlugin();
        open();
    }
};

/// With a plugin and an adapter that has not dialled yet; all spies are set.
struct AdapterBench : XPlaneBench
{
    AdapterBench()
    {
        startPlugin();
        makeAdapter();
        using simulator::Simulator;
        const auto spy = [this](auto signal) { return std::make_unique<QSignalSpy>(adapter.get(), signal); };
        connection = spy(&Simulator::simConnectionStateChanged);
        failure = spy(&Simulator::simConnectionFailed);
        versionChecked = spy(&Simulator::pluginVersionChecked);
        invalidVersion = spy(&Simulator::invalidPluginVersion);
        cslChecked = spy(&Simulator::cslValidationChecked);
        restarted = spy(&Simulator::restarted);
        mapping = spy(&Simulator::trafficMappingStatusChanged);
        version = spy(&Simulator::xplaneVersionUpdated);
    }

    void makeAdapter() { adapter = std::make_unique<simulator::xplane::XPlaneAdapter>(config, endpoints(), clock); }
    void dial() { fire(*adapter, "dial"); }
    void tick() { fire(*adapter, "tick"); }
    void publish() { fire(*adapter, "publish"); }
    void endAttempt() { fire(*adapter, "attempt"); }
    QTimer *attemptTimer() const { return adapter->findChild<QTimer *>(QStringLiteral("attempt")); }

    /// Dials and begins an attempt; true when the plugin and the simulator have seen it.
    bool begin()
    {
        using simulator::xplane::PluginLink;
        // The plugin may read its messages before the link has heard of it, which begins an attempt when none goes on.
        const QSignalSpy connected(adapter->findChild<PluginLink *>(), &PluginLink::pluginConnected);
        dial();
        adapter->reconnectSimulator();
        return waitFor([&] {
            return plugin->count(QStringLiteral("VER")) == 1 && simulator.subscriptions().size() == 53 &&
                   !connected.isEmpty();
        });
    }

    bool answerVersion(int number = 65536)
    {
        const qsizetype before = versionChecked->size();
        plugin->send(QStringLiteral("VER"), {number});
        return waitFor([&] { return versionChecked->size() == before + 1; });
    }

    /// A good version, and the tick that takes it; true when the link is up then.
    bool goUp()
    {
        if (!answerVersion())
            return false;
        tick();
        return !connection->isEmpty() && connection->last().first().toBool();
    }

    /// Up and running, with fresh values.
    bool connect() { return begin() && goUp() && connection->size() == 1; }

    /// The plugin has gone and come again; true when the new one is asked.
    bool restartPlugin()
    {
        plugin.reset();
        startPlugin();
        return waitFor([this] { return plugin->count(QStringLiteral("VER")) > 0; });
    }

    bool report(quint32 id, float value, const std::function<bool()> &seen)
    {
        simulator.report(id, value);
        return waitFor(seen);
    }
    /// X-Plane is heard: it tells its version.
    bool hear()
    {
        return report(52, 120105, [this] { return version->size() == 1; });
    }

    std::unique_ptr<simulator::xplane::XPlaneAdapter> adapter;
    std::unique_ptr<QSignalSpy> connection, failure, versionChecked, invalidVersion, cslChecked, mapping, restarted,
        version;
};

} // namespace tarvo::test

#pragma once

#include "AppConfig.h"
#include "ServiceEndpoints.h"
#include "simulator/xplane/XPlaneAdapter.h"
#include "support/DatarefPeer.h"
#include "support/ManualClock.h"
#include "support/PluginPeer.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

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

/// Settings in a folder of their own that point at a simulator on this machine.
struct XPlaneSettings
{
    QTemporaryDir folder;
    AppConfig config{folder.path()};
    PluginAddressDir address;

    ServiceEndpoints endpoints() const
    {
        ServiceEndpoints endpoints;
        endpoints.localPluginUrl = address.url();
        return endpoints;
    }
};

/// An adapter between a UDP peer and, once startPlugin() was called, a plugin. Time stands still; timers are fired by
/// hand.
struct XPlaneBench : XPlaneSettings
{
    XPlaneBench() { config.set(config::xplaneUdpPort, simulator.port()); }

    void startPlugin() { plugin = std::make_unique<PluginPeer>(address.url()); }
    void makeAdapter() { adapter = std::make_unique<simulator::xplane::XPlaneAdapter>(config, endpoints(), clock); }
    void dial() { fire(*adapter, "dial"); }
    void tick() { fire(*adapter, "tick"); }
    void publish() { fire(*adapter, "publish"); }
    void endAttempt() { fire(*adapter, "attempt"); }

    ManualClock clock;
    DatarefPeer simulator;
    std::unique_ptr<PluginPeer> plugin;
    std::unique_ptr<simulator::xplane::XPlaneAdapter> adapter;
};

} // namespace tarvo::test

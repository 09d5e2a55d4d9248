#pragma once

#include "AdapterSupport.h"

#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <memory>

namespace tarvo::test {

/// A Boeing of somebody else's with its gear down.
inline model::RemoteAircraft remoteAircraft()
{
    model::RemoteAircraft one;
    one.callsign = QStringLiteral("CCA1");
    one.typeCode = QStringLiteral("B738");
    one.configuration.gearDown = true;
    return one;
}

/// A bench whose adapter has dialled and whose plugin is there; all spies are set.
struct AdapterBench : XPlaneBench
{
    AdapterBench()
    {
        startPlugin();
        makeAdapter();
        watch();
    }

    void watch()
    {
        connection = std::make_unique<QSignalSpy>(adapter.get(), &simulator::Simulator::simConnectionStateChanged);
        failure = std::make_unique<QSignalSpy>(adapter.get(), &simulator::Simulator::simConnectionFailed);
        versionChecked = std::make_unique<QSignalSpy>(adapter.get(), &simulator::Simulator::pluginVersionChecked);
        invalidVersion = std::make_unique<QSignalSpy>(adapter.get(), &simulator::Simulator::invalidPluginVersion);
        cslChecked = std::make_unique<QSignalSpy>(adapter.get(), &simulator::Simulator::cslValidationChecked);
        restarted = std::make_unique<QSignalSpy>(adapter.get(), &simulator::Simulator::restarted);
        mapping = std::make_unique<QSignalSpy>(adapter.get(), &simulator::Simulator::trafficMappingStatusChanged);
    }

    /// Dials and begins an attempt; true when the plugin and the simulator have seen it.
    bool begin()
    {
        dial();
        adapter->reconnectSimulator();
        return QTest::qWaitFor(
            [this] { return plugin->count(QStringLiteral("VER")) == 1 && simulator.subscriptions().size() == 53; });
    }

    bool answerVersion(int version)
    {
        const qsizetype before = versionChecked->size();
        plugin->send(QStringLiteral("VER"), {version});
        return QTest::qWaitFor([&] { return versionChecked->size() == before + 1; });
    }

    /// The plugin has gone and come again; true when the new one is asked.
    bool restartPlugin()
    {
        plugin.reset();
        startPlugin();
        return QTest::qWaitFor([this] { return plugin->count(QStringLiteral("VER")) > 0; });
    }

    bool report(quint32 id, float value, const std::function<bool()> &seen)
    {
        simulator.report(id, value);
        return QTest::qWaitFor(seen);
    }

    /// Up and running, with fresh values.
    bool connect()
    {
        if (!begin() || !answerVersion(65536))
            return false;
        tick();
        return connection->size() == 1 && connection->first().first().toBool();
    }

    std::unique_ptr<QSignalSpy> connection, failure, versionChecked, invalidVersion, cslChecked, mapping, restarted;
};

} // namespace tarvo::test

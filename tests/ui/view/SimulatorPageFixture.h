#pragma once

#include "PageHarness.h"
#include "support/OddNumbers.h"

#include <memory>

namespace tarvo::test {

inline model::RemoteAircraft remoteAircraft(const QString &callsign, double latitude, double longitude,
                                            double altitudeMslM = 1000)
{
    model::RemoteAircraft aircraft;
    aircraft.callsign = callsign;
    aircraft.visualState.latitude = latitude;
    aircraft.visualState.longitude = longitude;
    aircraft.visualState.altitudeMslM = altitudeMslM;
    return aircraft;
}

/// The own aircraft at N31 E121, 1,000 m high.
inline model::UserAircraftData ownAircraft(double heading)
{
    model::UserAircraftData aircraft;
    aircraft.latitude = 31;
    aircraft.longitude = 121;
    aircraft.altitudeMslM = 1000;
    aircraft.heading = heading;
    return aircraft;
}

/// The simulator page, open, over a climbing turn in X-Plane.
class SimulatorPageFixture
{
protected:
    void open(QSize size = {1280, 1300})
    {
        m_harness = std::make_unique<PageHarness>(u"XPLANE"_qs, size);
        m_harness->fillSimulator(u"XPLANE"_qs);
        m_harness->openSection(u"模拟器"_qs);
    }

    ui::SimulatorPageViewModel &model() { return m_harness->simulator(); }
    QQuickItem *item(const QString &name) { return m_harness->item(name); }

    std::unique_ptr<PageHarness> m_harness;
};

} // namespace tarvo::test

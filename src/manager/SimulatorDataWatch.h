#pragma once

#include <QtGlobal>

namespace tarvo::model {
struct UserAircraftData;
}

namespace tarvo::manager {

/// True for a sample of a simulator that really flies something: one at the origin of the world without any motion is
/// what a simulator delivers before a flight is loaded.
bool isLive(const model::UserAircraftData &data);

/// Decides whether the simulator's data can be trusted. Times are ms since the epoch.
class SimulatorDataWatch
{
public:
    /// Connected and delivering live samples, as far as is known.
    bool isValid() const { return m_valid; }
    /// A live sample has come, too, so that a pilot may connect.
    bool isReadyForPilot() const { return m_valid && m_lastSampleMs >= 1; }

    /// Notes a changed sample. True when the data have just become valid: the third live one does it.
    bool addSample(const model::UserAircraftData &data, qint64 nowMs);
    /// The simulator says that it is connected. Valid at once, but the age of the data is unknown until a live sample.
    void simulatorConnected();
    /// The simulator says that it is gone.
    void simulatorDisconnected() { *this = {}; }
    /// The data are as good as new: the simulator is paused, and repeats itself.
    void keepAlive(qint64 nowMs);
    /// True when the last live sample has just become too old; the data are invalid from then on.
    bool expire(qint64 nowMs);

private:
    bool m_valid = false;
    int m_sampleCount = 0;     ///< live samples, counted up to 3
    qint64 m_lastSampleMs = 0; ///< a live one; 0 for none
};

} // namespace tarvo::manager

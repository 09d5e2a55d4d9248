#pragma once

#include <QtGlobal>

namespace tarvo::simulator::xplane {

/// When the link to X-Plane counts as up: a wanted and begun attempt needs a plugin of the right version, valid model
/// paths and fresh values. Times are whole seconds of a clock that never jumps.
struct ConnectionAttempt
{
    /// Values older than this, or as old, are stale.
    static constexpr qint64 staleAfterSeconds = 16;
    /// How old an attempt takes the last values to be at its beginning.
    static constexpr qint64 assumedAgeSeconds = 15;
    /// The oldest plugin that speaks these messages.
    static constexpr int oldestPluginVersion = 65536;

    bool socketReady = false; ///< dialled, receive thread running
    bool requested = false;   ///< an attempt is wanted
    bool started = false;     ///< it has been begun
    bool connected = false;
    bool versionReceived = false;
    bool versionValid = true;
    bool cslValid = true;
    bool wanted = false;      ///< somebody has asked for a link at all; from then on it comes back by itself
    bool prolonged = false;   ///< a plugin came in the middle of it, and the attempt has got its time anew
    bool restartDue = false;  ///< the plugin knows nothing of what was sent before; to be told once the link is up
    bool failureTold = false; ///< of this outage

    /// Wants a new attempt.
    void request();
    /// Begins the wanted attempt. False when there is nothing to begin: the socket is not ready, the link is up, or the
    /// attempt has begun already.
    bool begin();
    /// True from its beginning until the link is up or the time is over.
    bool isUnderWay() const { return requested && started && !connected; }
    /// True while a link is wanted and nothing is done for it.
    bool isAwaited() const { return wanted && !requested && !connected; }
    /// True when everything that the attempt waits for is there.
    bool isComplete(qint64 now, qint64 lastDataref) const;
    /// True when the link is up but the simulator has fallen silent.
    bool isLost(qint64 now, qint64 lastDataref) const;
    void setConnected();
    void setDisconnected();
    /// The attempt's time is over. True when that is a failure to be told: it was still wanted, the link is not up, and
    /// none was told since it was up last.
    bool timeOut();
};

} // namespace tarvo::simulator::xplane

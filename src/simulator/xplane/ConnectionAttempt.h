#pragma once

#include <QtGlobal>

namespace tarvo::simulator::xplane {

/// When the link to X-Plane counts as up: a wanted and begun attempt needs a plugin of the right version, valid model
/// paths and fresh values. Times are whole seconds since the epoch.
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

    /// Wants a new attempt.
    void request();
    /// Begins the wanted attempt. False when there is nothing to begin: the socket is not ready, the link is up, or the
    /// attempt has begun already.
    bool begin();
    /// True when everything that the attempt waits for is there.
    bool isComplete(qint64 now, qint64 lastDataref) const;
    /// True when the link is up but the simulator has fallen silent.
    bool isLost(qint64 now, qint64 lastDataref) const;
    void setConnected();
    void setDisconnected();
    /// The attempt's time is over. True when that is a failure: it was still wanted and the link is not up.
    bool timeOut();
};

} // namespace tarvo::simulator::xplane

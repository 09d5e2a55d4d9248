#include "simulator/xplane/ConnectionAttempt.h"

#include <utility>

namespace tarvo::simulator::xplane {

void ConnectionAttempt::request()
{
    requested = true;
    started = false;
}

bool ConnectionAttempt::begin()
{
    if (!socketReady)
        return false;
    if (connected) {
        requested = false;
        started = false;
        return false;
    }
    if (started)
        return false;
    started = true;
    prolonged = false;
    versionReceived = false;
    versionValid = true;
    cslValid = true;
    return true;
}

bool ConnectionAttempt::isComplete(qint64 now, qint64 lastDataref) const
{
    return !connected && requested && started && versionReceived && versionValid && cslValid &&
           now - lastDataref < staleAfterSeconds;
}

bool ConnectionAttempt::isLost(qint64 now, qint64 lastDataref) const
{
    return connected && now - lastDataref >= staleAfterSeconds;
}

void ConnectionAttempt::setConnected()
{
    connected = true;
    failureTold = false;
    requested = false;
    started = false;
}

void ConnectionAttempt::setDisconnected()
{
    connected = false;
    versionReceived = false;
}

bool ConnectionAttempt::timeOut()
{
    if (!requested || connected)
        return false;
    requested = false;
    return !std::exchange(failureTold, true);
}

} // namespace tarvo::simulator::xplane

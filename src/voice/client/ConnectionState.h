#pragma once

#include <QtGlobal>

namespace tarvo::voice {

/// How far the voice session is. Between the connection and the server's greeting it is Connected.
enum class ConnectionState : quint8
{
    Disconnected,
    Connecting, ///< also when an attempt has failed, until the next
    Connected,
    Authenticating, ///< reserved: nothing enters it
    Ready           ///< voice flows
};

} // namespace tarvo::voice

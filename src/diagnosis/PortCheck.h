#pragma once

#include "diagnosis/Finding.h"

#include <QHostAddress>

namespace tarvo {
struct ServiceEndpoints;
}

namespace tarvo::diagnosis {

enum class Protocol
{
    Tcp,
    Udp
};

/// A port of this machine on which another program is to listen.
struct LocalPort
{
    QString owner;   ///< what is to listen there
    QString starter; ///< what to start for that
    Protocol protocol;
    QHostAddress address;
    quint16 port;
};

enum class PortState
{
    Taken, ///< somebody listens
    Free,
    Forbidden ///< the system lets nobody have it; its words are told
};

struct PortFacts
{
    PortState state = PortState::Free;
    QString error = {};
};

/// Those of the services, as far as they are on this machine: a build for the practice network.
QList<LocalPort> localServicePorts(const ServiceEndpoints &endpoints);

PortFacts tryPort(const LocalPort &port);
Finding judgePort(const LocalPort &port, const PortFacts &facts);

} // namespace tarvo::diagnosis

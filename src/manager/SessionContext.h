#pragma once

// Private to NetworkManager and its parts.

#include "fsd/FsdClient.h"
#include "fsd/pdu/FsdLine.h"
#include "manager/SessionMark.h"
#include "model/ConnectInfo.h"

#include <QString>

#include <memory>

namespace tarvo {
class AppConfig;
}
namespace tarvo::common {
class Clock;
}
namespace tarvo::network {
class ApiService;
}
namespace tarvo::simulator {
class Simulator;
}

namespace tarvo::manager {

/// What NetworkManager and its parts share: the line to the server, the simulator of the moment, who the pilot is, and
/// which session it is. Main thread only.
struct SessionContext
{
    /// `owner` is the client's parent, which destroys the context before itself.
    SessionContext(AppConfig &settings, network::ApiService &account, const common::Clock &time, QObject *owner)
        : config(settings), api(account), clock(time), fsd(owner)
    {
    }

    AppConfig &config;
    network::ApiService &api;
    const common::Clock &clock;
    fsd::FsdClient fsd;
    std::shared_ptr<simulator::Simulator> simulator; ///< may be empty; whoever calls it holds a copy
    model::ConnectInfo info;                         ///< under what name the current or the last connection runs
    SessionCounter sessions;                         ///< changes whenever a connection begins or ends

    SessionMark mark() const { return sessions.mark(); }
    /// Sends the PDU as it stands; dropped when not connected.
    template <class Pdu>
    void send(const Pdu &pdu)
    {
        if (fsd.isConnected())
            fsd.sendRaw(fsd::toLine(pdu));
    }

    /// Takes the aircraft and the stations out of the simulator of the moment, which may be another for each.
    void clearSimulator() const;
    /// True when the server speaks the token protocol.
    bool usesTokens() const;
    // Each on one line: they are typed, and go out among the fields of a line.
    QString username() const;
    QString realName() const;
    QString realNameWithAirport() const;
};

} // namespace tarvo::manager

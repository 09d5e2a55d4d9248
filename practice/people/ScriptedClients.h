#pragma once

#include <QString>
#include <QStringList>

#include <map>
#include <memory>

namespace tarvo::practice {

class FsdServer;

/// Clients of the FSD server that do nothing but what they are told: the clients of a script.
class ScriptedClients
{
public:
    /// The server must outlive it.
    explicit ScriptedClients(FsdServer &server);
    ScriptedClients(const ScriptedClients &) = delete;
    ScriptedClients &operator=(const ScriptedClients &) = delete;
    /// Everybody leaves.
    ~ScriptedClients();

    /// Lets a pilot or a controller in, without a position. False when the callsign is empty or taken.
    bool join(const QString &callsign, const QString &cid, const QString &realName, bool controller);
    /// False when there is no such client.
    bool leave(const QString &callsign);
    /// Sends a line, without its line end, as that client. A position is his from then on, and so is a flight plan.
    /// False when there is no such client, when it isn't the sender, when the line is malformed, or when it reaches
    /// nobody; but a flight plan needs no listener.
    bool speak(const QString &callsign, const QString &line);
    /// Callsigns, in alphabetical order.
    QStringList callsigns() const;

private:
    class Client;

    FsdServer &m_server;
    std::map<QString, std::unique_ptr<Client>> m_clients;
};

} // namespace tarvo::practice

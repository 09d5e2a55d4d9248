#pragma once

#include "practice/FsdServer.h"

#include <map>
#include <memory>

namespace tarvo::practice {

/// Clients of the FSD server that do nothing but what they are told: the actors of a scene.
class Cast
{
public:
    /// The server must outlive it.
    explicit Cast(FsdServer &server);
    Cast(const Cast &) = delete;
    Cast &operator=(const Cast &) = delete;
    /// Everybody leaves.
    ~Cast();

    /// Lets a pilot or a controller in, without a position. False when the callsign is empty or taken.
    bool join(const QString &callsign, const QString &cid, const QString &realName, bool controller);
    /// False when there is no such actor.
    bool leave(const QString &callsign);
    /// Sends a line, without its line end, as that actor. A position is his from then on, and so is a flight plan.
    /// False when there is no such actor, when it isn't the sender, when the line is malformed, or when it reaches
    /// nobody; but a flight plan needs no listener.
    bool speak(const QString &callsign, const QString &line);
    /// Callsigns, in alphabetical order.
    QStringList actors() const;

private:
    class Actor;

    FsdServer &m_server;
    std::map<QString, std::unique_ptr<Actor>> m_actors;
};

} // namespace tarvo::practice

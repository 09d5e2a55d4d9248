#pragma once

#include <QHash>
#include <QString>

#include <optional>

namespace tarvo::simulator::msfs {

class SimConnectLink;
struct InputEventsMessage;
struct InputEventValueMessage;

/// The model's own events for its speed brakes: looks for them and subscribes to them.
class InputEvents
{
public:
    explicit InputEvents(SimConnectLink &link);

    /// Asks which events there are; nothing where the library can't. A failure is logged.
    void enumerate();
    /// Subscribes to those of speed brakes that are new.
    void receive(const InputEventsMessage &message);
    /// The name of the event whose value has come; nothing for one that wasn't subscribed to.
    std::optional<QString> nameOf(const InputEventValueMessage &message) const;

    /// As in the beginning; nothing is told to the simulator.
    void reset() { m_names.clear(); }

private:
    bool subscribe(quint64 hash, const QString &name);

    SimConnectLink &m_link;
    QHash<quint64, QString> m_names; ///< of the subscribed ones, by hash
};

} // namespace tarvo::simulator::msfs

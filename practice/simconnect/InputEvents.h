#pragma once

#include "practice/simconnect/Messages.h"

#include <QByteArray>
#include <QHash>
#include <QList>

#include <optional>

namespace tarvo::practice {

/// The levers and switches of the cockpit that a client may follow by name.
class InputEvents
{
public:
    /// As the practice aeroplane has them: two for the speed brakes, one of which is a text, and two others.
    InputEvents();

    void set(const QList<message::InputEvent> &events) { m_events = events; }
    const QList<message::InputEvent> &all() const { return m_events; }
    /// Nothing when there is no such event.
    std::optional<message::InputEvent> find(quint64 hash) const;
    std::optional<message::InputEvent> find(const QByteArray &name) const;

    /// False when there is no such event. The client gets its value at once.
    bool subscribe(quint64 hash);
    /// False when there is no such event.
    bool setValue(const QByteArray &name, double value);
    /// What the subscriber is to hear by now, each once.
    QList<QByteArray> takeMessages();
    /// Nobody follows anything any more.
    void clear();

private:
    QList<message::InputEvent> m_events;
    QHash<quint64, double> m_values;
    QHash<quint64, std::optional<double>> m_told; ///< of those that are followed
};

} // namespace tarvo::practice

#include "practice/simconnect/InputEvents.h"

#include "simulator/msfs/simconnect/SimConnectApi.h"

#include <algorithm>

namespace tarvo::practice {

using namespace simulator::msfs;

InputEvents::InputEvents()
    : m_events{
          {.name = "HANDLING_SPEEDBRAKE", .hash = 0x5EED'0000'0001, .type = SIMCONNECT_INPUT_EVENT_TYPE_DOUBLE},
          {.name = "HANDLING_SPOILERS_LABEL", .hash = 0x5EED'0000'0002, .type = SIMCONNECT_INPUT_EVENT_TYPE_STRING},
          {.name = "HANDLING_FLAPS", .hash = 0x5EED'0000'0003, .type = SIMCONNECT_INPUT_EVENT_TYPE_DOUBLE},
          {.name = "LANDING_GEAR_LEVER", .hash = 0x5EED'0000'0004, .type = SIMCONNECT_INPUT_EVENT_TYPE_DOUBLE}}
{
}

std::optional<message::InputEvent> InputEvents::find(quint64 hash) const
{
    const auto found = std::find_if(m_events.begin(), m_events.end(),
                                    [&](const message::InputEvent &event) { return event.hash == hash; });
    return found == m_events.end() ? std::nullopt : std::optional(*found);
}

std::optional<message::InputEvent> InputEvents::find(const QByteArray &name) const
{
    const auto found = std::find_if(m_events.begin(), m_events.end(),
                                    [&](const message::InputEvent &event) { return event.name == name; });
    return found == m_events.end() ? std::nullopt : std::optional(*found);
}

bool InputEvents::subscribe(quint64 hash)
{
    if (!find(hash))
        return false;
    m_told[hash].reset();
    return true;
}

bool InputEvents::setValue(const QByteArray &name, double value)
{
    const auto event = find(name);
    if (event)
        m_values[event->hash] = value;
    return event.has_value();
}

QList<QByteArray> InputEvents::takeMessages()
{
    QList<QByteArray> messages;
    for (const message::InputEvent &event : m_events) {
        const auto told = m_told.find(event.hash);
        const double value = m_values.value(event.hash);
        if (told == m_told.end() || *told == value)
            continue;
        *told = value;
        messages.append(message::inputEventValue(event.hash, event.type, value));
    }
    return messages;
}

void InputEvents::clear()
{
    m_told.clear();
}

} // namespace tarvo::practice

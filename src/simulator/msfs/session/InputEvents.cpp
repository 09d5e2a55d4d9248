#include "simulator/msfs/session/InputEvents.h"

#include "common/OneLine.h"
#include "simulator/msfs/session/DispatchMessage.h"
#include "simulator/msfs/session/SimConnectLink.h"

#include <QDebug>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tarvo::simulator::msfs {

namespace {

constexpr DWORD enumerationRequest = 60000;
constexpr const char *speedbrakeWords[] = {"spoiler", "speedbrake", "speed_brake"};

bool isOfSpeedbrakes(const QString &name)
{
    return std::any_of(std::begin(speedbrakeWords), std::end(speedbrakeWords),
                       [&name](const char *word) { return name.contains(QLatin1String(word), Qt::CaseInsensitive); });
}

} // namespace

InputEvents::InputEvents(SimConnectLink &link) : m_link(link) {}

void InputEvents::enumerate()
{
    if (!m_link.isOpen() || !m_link.has<&SimConnectFunctions::EnumerateInputEvents>())
        return;
    const HRESULT result = m_link.call<&SimConnectFunctions::EnumerateInputEvents>(enumerationRequest);
    if (result < 0)
        qWarning().noquote() << withResult(QStringLiteral("Failed to enumerate SimConnect input events"), result);
}

void InputEvents::receive(const InputEventsMessage &message)
{
    if (message.request != enumerationRequest || !m_link.has<&SimConnectFunctions::SubscribeInputEvent>())
        return;
    int added = 0;
    for (const InputEventDescriptor &event : message.events) {
        if (event.type == SIMCONNECT_INPUT_EVENT_TYPE_DOUBLE && !m_names.contains(event.hash) &&
            isOfSpeedbrakes(event.name) && subscribe(event.hash, event.name))
            ++added;
    }
    if (added > 0)
        qInfo().noquote() << QStringLiteral("Subscribed %1 MSFS speedbrake/spoiler input events").arg(added);
}

std::optional<QString> InputEvents::nameOf(const InputEventValueMessage &message) const
{
    const auto found = m_names.constFind(message.hash);
    if (message.type != SIMCONNECT_INPUT_EVENT_TYPE_DOUBLE || found == m_names.cend() || !std::isfinite(message.value))
        return std::nullopt;
    return *found;
}

bool InputEvents::subscribe(quint64 hash, const QString &name)
{
    const QString shown = common::onOneLine(name);
    const HRESULT result = m_link.call<&SimConnectFunctions::SubscribeInputEvent>(hash);
    if (result < 0) {
        qWarning().noquote() << withResult(QStringLiteral("Failed to subscribe MSFS input event %1").arg(shown),
                                           result);
        return false;
    }
    m_names.insert(hash, name);
    qInfo().noquote() << "Subscribed MSFS input event:" << shown;
    return true;
}

} // namespace tarvo::simulator::msfs

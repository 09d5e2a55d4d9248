#include "simulator/msfs/session/ClientEvents.h"

#include "simulator/msfs/session/SimConnectLink.h"
#include "simulator/msfs/simvar/SimVarTable.h"

#include <QDebug>

namespace tarvo::simulator::msfs {

namespace {
constexpr DWORD firstEvent = 10000;
}

ClientEvents::ClientEvents(SimConnectLink &link) : m_link(link) {}

void ClientEvents::send(CommandKey key, quint32 data, MsfsRuntimeProfile profile)
{
    if (!m_link.isOpen()) {
        qWarning() << "Cannot send command: not connected";
        return;
    }
    const char *event = commandEvent(key, profile);
    if (*event == '\0') {
        qWarning() << "No SimConnect event binding found for command key";
        return;
    }
    const std::optional<quint32> id = map(key, event);
    if (!id)
        return;
    const HRESULT result = m_link.call<&SimConnectFunctions::TransmitClientEvent>(
        SIMCONNECT_OBJECT_ID_USER, *id, data, SIMCONNECT_GROUP_PRIORITY_HIGHEST,
        SIMCONNECT_EVENT_FLAG_GROUPID_IS_PRIORITY);
    if (result < 0)
        m_link.fail(QStringLiteral("Failed to send SimConnect event: %1").arg(QLatin1String(event)), result);
}

std::optional<quint32> ClientEvents::map(CommandKey key, const char *event)
{
    if (const auto known = m_ids.constFind(key); known != m_ids.cend())
        return *known;
    const quint32 id = firstEvent + static_cast<quint32>(m_ids.size());
    const HRESULT result = m_link.call<&SimConnectFunctions::MapClientEventToSimEvent>(id, event);
    if (result < 0) {
        m_link.fail(QStringLiteral("Failed to map SimConnect event: %1").arg(QLatin1String(event)), result);
        return std::nullopt;
    }
    m_ids.insert(key, id);
    return id;
}

} // namespace tarvo::simulator::msfs

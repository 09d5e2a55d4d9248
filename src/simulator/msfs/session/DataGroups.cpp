#include "simulator/msfs/session/DataGroups.h"

#include "simulator/msfs/session/SimConnectLink.h"
#include "simulator/msfs/simvar/SimVarWire.h"

#include <QDebug>

#include <utility>

namespace tarvo::simulator::msfs {

namespace {

/// A group's definition and request; also its place among the groups.
quint32 idOf(UpdateGroup group)
{
    return static_cast<quint32>(group);
}

} // namespace

DataGroups::DataGroups(SimConnectLink &link) : m_link(link) {}

void DataGroups::setProfile(MsfsRuntimeProfile profile)
{
    m_bindings = simVarBindings(profile);
    m_groups = {};
    for (const SimVarBinding &binding : std::as_const(m_bindings))
        m_groups.at(idOf(binding.group)).append(binding);
}

bool DataGroups::define(MsfsRuntimeProfile profile)
{
    if (!m_link.isOpen()) {
        qWarning() << "Cannot register data definitions: not connected";
        return false;
    }
    if (m_areDefined) {
        qDebug() << "Data definitions already registered";
        return false;
    }
    qInfo().noquote() << "Registering SimConnect data definitions for" << displayName(profile);
    if (m_bindings.isEmpty())
        setProfile(profile);
    for (const SimVarBinding &binding : std::as_const(m_bindings)) {
        const HRESULT result =
            m_link.addField(idOf(binding.group), binding.variable, binding.unit, wireDataType(binding.type));
        if (result < 0) {
            clearDefinitions(); // the next try starts over
            m_link.fail(QStringLiteral("Failed to register SimVar: %1").arg(QLatin1String(binding.variable)), result);
            return false;
        }
    }
    m_areDefined = true;
    return true;
}

void DataGroups::undefine()
{
    for (const UpdateGroup group : updateGroups)
        unsubscribe(group);
    clearDefinitions();
    m_areDefined = false;
}

void DataGroups::clearDefinitions() const
{
    for (const UpdateGroup group : updateGroups)
        m_link.call<&SimConnectFunctions::ClearDataDefinition>(idOf(group));
}

void DataGroups::subscribe(UpdateGroup group)
{
    if (!m_link.isOpen()) {
        qWarning() << "Cannot subscribe data group: not connected";
        return;
    }
    if (!m_areDefined) {
        qWarning() << "Cannot subscribe data group: definitions not registered";
        return;
    }
    if (isSubscribed(group)) {
        qDebug() << "Data group already subscribed:" << idOf(group);
        return;
    }
    const HRESULT result = request(group, SIMCONNECT_PERIOD_SIM_FRAME, SIMCONNECT_DATA_REQUEST_FLAG_CHANGED);
    if (result < 0) {
        m_link.fail(QStringLiteral("Failed to subscribe to data group: %1").arg(idOf(group)), result);
        return;
    }
    m_subscribed.at(idOf(group)) = true;
    qInfo() << "Subscribed to data group:" << idOf(group);
}

void DataGroups::unsubscribe(UpdateGroup group)
{
    if (!isSubscribed(group))
        return;
    const HRESULT result = request(group, SIMCONNECT_PERIOD_NEVER, 0);
    m_subscribed.at(idOf(group)) = false;
    if (result < 0)
        qCritical().noquote() << withResult(QStringLiteral("Failed to unsubscribe data group %1").arg(idOf(group)),
                                            result);
}

void DataGroups::requestOnce(UpdateGroup group)
{
    if (!isSubscribed(group)) {
        qWarning() << "Cannot request data: group not subscribed" << idOf(group);
        return;
    }
    const HRESULT result = request(group, SIMCONNECT_PERIOD_ONCE, SIMCONNECT_DATA_REQUEST_FLAG_CHANGED);
    if (result < 0)
        m_link.fail(QStringLiteral("Failed to request data for group: %1").arg(idOf(group)), result);
}

std::optional<QVariantMap> DataGroups::sample(quint32 request, QByteArrayView data) const
{
    if (request >= m_groups.size() || m_groups.at(request).isEmpty())
        return std::nullopt;
    return readSample(m_groups.at(request), data);
}

void DataGroups::reset()
{
    m_areDefined = false;
    m_bindings.clear();
    m_groups = {};
    m_subscribed = {};
}

bool DataGroups::isSubscribed(UpdateGroup group) const
{
    return idOf(group) < m_subscribed.size() && m_subscribed.at(idOf(group));
}

HRESULT DataGroups::request(UpdateGroup group, quint32 period, quint32 flags) const
{
    return m_link.call<&SimConnectFunctions::RequestDataOnSimObject>(
        idOf(group), idOf(group), SIMCONNECT_OBJECT_ID_USER, period, flags, 0U, 0U, 0U);
}

} // namespace tarvo::simulator::msfs

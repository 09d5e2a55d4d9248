#include "simulator/msfs/session/UserTitle.h"

#include "simulator/msfs/session/SimConnectLink.h"
#include "simulator/msfs/simvar/SimVarWire.h"

#include <QDebug>

namespace tarvo::simulator::msfs {

namespace {
constexpr DWORD titleDefinition = 50000;
constexpr qsizetype titleSize = 256;
} // namespace

UserTitle::UserTitle(SimConnectLink &link) : m_link(link) {}

void UserTitle::request()
{
    if (!m_isDefined) {
        const HRESULT result = m_link.addField(titleDefinition, "TITLE", nullptr, SIMCONNECT_DATATYPE_STRING256);
        if (result < 0) {
            qWarning().noquote() << withResult(QStringLiteral("Failed to register user TITLE definition"), result);
            return;
        }
        m_isDefined = true;
    }
    if (m_isRequested)
        return;
    const HRESULT result = m_link.call<&SimConnectFunctions::RequestDataOnSimObject>(
        requestId, titleDefinition, SIMCONNECT_OBJECT_ID_USER, SIMCONNECT_PERIOD_ONCE, 0U, 0U, 0U, 0U);
    m_isRequested = result >= 0;
    if (!m_isRequested)
        qWarning().noquote() << withResult(QStringLiteral("Failed to request user TITLE data"), result);
}

void UserTitle::undefine()
{
    if (m_isDefined)
        m_link.call<&SimConnectFunctions::ClearDataDefinition>(titleDefinition);
    reset();
}

void UserTitle::reset()
{
    m_isDefined = false;
    m_isRequested = false;
}

QString UserTitle::read(QByteArrayView data)
{
    return data.size() < titleSize ? QString() : wireText(data.first(titleSize)).trimmed();
}

} // namespace tarvo::simulator::msfs

#include "simulator/msfs/session/SimConnectLink.h"

#include <QDebug>

#include <utility>

namespace tarvo::simulator::msfs {

namespace {

constexpr const char *clientName = "TARVO Client";
/// In the order in which they are tried.
constexpr const char *libraryNames[] = {"SimConnect2024.dll", "SimConnect.dll"};

QString asHex(HRESULT result)
{
    return QString::number(static_cast<quint32>(result), 16);
}

} // namespace

QString withResult(const QString &text, HRESULT result)
{
    return QStringLiteral("%1 (HRESULT: 0x%2)").arg(text, asHex(result));
}

SimConnectLink::SimConnectLink(std::shared_ptr<SimConnectBinding> binding, QObject *parent)
    : QObject(parent), m_binding(std::move(binding))
{
}

SimConnectLink::~SimConnectLink()
{
    if (isOpen())
        close();
}

QStringList SimConnectLink::open()
{
    QStringList failures;
    for (const char *libraryName : libraryNames) {
        const QString name = QLatin1String(libraryName);
        if (const QString failure = m_binding->bind(name); !failure.isEmpty()) {
            failures.append(failure);
            continue;
        }
        HANDLE handle = nullptr;
        const HRESULT result =
            m_binding->functions().Open(&handle, clientName, nullptr, 0, nullptr, SIMCONNECT_OPEN_CONFIGINDEX_LOCAL);
        if (result >= 0 && handle) {
            m_handle = handle;
            m_binding->hold();
            break;
        }
        failures.append(QStringLiteral("%1 open failed with HRESULT 0x%2").arg(name, asHex(result)));
        m_binding->release();
    }
    return failures;
}

void SimConnectLink::close()
{
    call<&SimConnectFunctions::Close>();
    m_handle = nullptr;
    m_binding->letGo();
}

HRESULT SimConnectLink::addField(DWORD definition, const char *variable, const char *unit, DWORD type) const
{
    return call<&SimConnectFunctions::AddToDataDefinition>(definition, variable, unit, type, 0.0F, SIMCONNECT_UNUSED);
}

QByteArrayView SimConnectLink::nextMessage() const
{
    SIMCONNECT_RECV *message = nullptr;
    DWORD size = 0;
    if (call<&SimConnectFunctions::GetNextDispatch>(&message, &size) < 0 || !message)
        return {};
    return {reinterpret_cast<const char *>(message), static_cast<qsizetype>(size)};
}

void SimConnectLink::fail(const QString &text, HRESULT result)
{
    qCritical().noquote() << withResult(text, result);
    emit failed(text);
}

} // namespace tarvo::simulator::msfs

#include "simulator/msfs/session/SimVarWriter.h"

#include "simulator/msfs/session/SimConnectLink.h"
#include "simulator/msfs/simvar/SimVarWire.h"

namespace tarvo::simulator::msfs {

namespace {
constexpr DWORD firstWriteDefinition = 1000; ///< that of group 0
}

QString writeSimVar(SimConnectLink &link, const SimVarBinding &binding, quint32 object, const QVariant &value)
{
    const DWORD definition = firstWriteDefinition + static_cast<DWORD>(binding.group);
    const HRESULT defined = link.addField(definition, binding.variable, binding.unit, wireDataType(binding.type));
    if (defined < 0)
        return withResult(
            QStringLiteral("Failed to create write definition for %1").arg(QLatin1String(binding.variable)), defined);
    QByteArray field = writtenField(binding, value);
    const HRESULT written = link.call<&SimConnectFunctions::SetDataOnSimObject>(
        definition, object, 0U, 1U, static_cast<DWORD>(field.size()), static_cast<void *>(field.data()));
    link.call<&SimConnectFunctions::ClearDataDefinition>(definition);
    if (written < 0)
        return withResult(QStringLiteral("Failed to set data value for %1").arg(QLatin1String(binding.variable)),
                          written);
    return {};
}

} // namespace tarvo::simulator::msfs

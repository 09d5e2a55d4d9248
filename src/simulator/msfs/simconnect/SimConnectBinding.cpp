#include "simulator/msfs/simconnect/SimConnectBinding.h"

#include "simulator/msfs/simconnect/SimConnectLibrary.h"

#include <array>
#include <type_traits>
#include <utility>

namespace tarvo::simulator::msfs {

namespace {

/// Puts one entry point into the table; false when the library lacks it.
template <auto Member>
bool resolveInto(SimConnectLibrary &library, SimConnectFunctions &functions, const char *name)
{
    auto &entry = functions.*Member;
    entry = reinterpret_cast<std::remove_reference_t<decltype(entry)>>(library.entryPoint(name));
    return entry != nullptr;
}

struct EntryPoint
{
    const char *name;
    bool (*resolve)(SimConnectLibrary &, SimConnectFunctions &, const char *name);
    bool required;
};

#define ENTRY_POINT(NAME, REQUIRED)                                                                                    \
    EntryPoint                                                                                                         \
    {                                                                                                                  \
        "SimConnect_" #NAME, resolveInto<&SimConnectFunctions::NAME>, REQUIRED                                         \
    }
constexpr std::array entryPoints{
    ENTRY_POINT(Open, true),
    ENTRY_POINT(Close, true),
    ENTRY_POINT(AddToDataDefinition, true),
    ENTRY_POINT(ClearDataDefinition, true),
    ENTRY_POINT(RequestDataOnSimObject, true),
    ENTRY_POINT(RequestDataOnSimObjectType, true),
    ENTRY_POINT(SetDataOnSimObject, true),
    ENTRY_POINT(GetNextDispatch, true),
    ENTRY_POINT(MapClientEventToSimEvent, true),
    ENTRY_POINT(TransmitClientEvent, true),
    ENTRY_POINT(SubscribeToSystemEvent, true),
    ENTRY_POINT(AICreateNonATCAircraft, true),
    ENTRY_POINT(AIRemoveObject, true),
    ENTRY_POINT(AICreateNonATCAircraft_EX1, false),
    ENTRY_POINT(EnumerateInputEvents, false),
    ENTRY_POINT(SubscribeInputEvent, false),
};
#undef ENTRY_POINT

} // namespace

SimConnectBinding::SimConnectBinding(std::unique_ptr<SimConnectLibrary> library) : m_library(std::move(library)) {}

SimConnectBinding::~SimConnectBinding()
{
    release();
}

std::shared_ptr<SimConnectBinding> SimConnectBinding::shared()
{
    static const auto binding = std::make_shared<SimConnectBinding>(systemSimConnectLibrary());
    return binding;
}

QString SimConnectBinding::bind(const QString &name)
{
    if (name == m_name)
        return {};
    if (m_sessions > 0)
        return QStringLiteral("%1 is in use").arg(m_name);
    release();
    if (const quint32 error = m_library->load(name); error != 0)
        return QStringLiteral("Failed to load %1 (Win32 error %2)").arg(name).arg(error);
    m_name = name;
    for (const EntryPoint &entry : entryPoints) {
        if (!entry.resolve(*m_library, m_functions, entry.name) && entry.required) {
            release();
            return QStringLiteral("Failed to resolve %1 from %2").arg(QLatin1String(entry.name), name);
        }
    }
    return {};
}

void SimConnectBinding::release()
{
    if (m_sessions > 0)
        return;
    if (!m_name.isEmpty())
        m_library->free();
    m_name.clear();
    m_functions = {};
}

} // namespace tarvo::simulator::msfs

#pragma once

#include <QString>

#include <memory>

namespace tarvo::simulator::msfs {

/// Where SimConnect's entry points come from: on Windows a DLL of the simulator's, in tests and in the practice build a
/// stand-in. Holds one library at a time.
class SimConnectLibrary
{
public:
    virtual ~SimConnectLibrary() = default;

    /// Loads the library `name`, such as "SimConnect.dll"; 0, or the system's error code. Nothing is held before.
    virtual quint32 load(const QString &name) = 0;
    /// The address of an entry point such as "SimConnect_Open" in the library held; null when it has none.
    virtual void *entryPoint(const char *name) = 0;
    /// Lets go of the library held, if any.
    virtual void free() = 0;
};

/// LoadLibraryW on Windows; elsewhere one that answers every name with 126 (module not found).
std::unique_ptr<SimConnectLibrary> systemSimConnectLibrary();

} // namespace tarvo::simulator::msfs

#pragma once

#include "simulator/msfs/simconnect/SimConnectApi.h"

#include <QString>

#include <memory>

namespace tarvo::simulator::msfs {

class SimConnectLibrary;

/// The table of entry points, bound to one library by name and kept until another name is asked for. While a session is
/// open through it, it stays as it is: a simulator that was replaced may live on for a moment beside its successor.
class SimConnectBinding
{
public:
    explicit SimConnectBinding(std::unique_ptr<SimConnectLibrary> library);
    ~SimConnectBinding();

    /// The one of the whole program, over the system's library.
    static std::shared_ptr<SimConnectBinding> shared();

    /// Fills the table from the library `name`. Empty, or why not: "Failed to load SimConnect.dll (Win32 error 126)" or
    /// "Failed to resolve SimConnect_Open from SimConnect.dll"; then nothing is held and the table is empty. A name
    /// that is held already is kept as it is. In use it refuses another name: "SimConnect.dll is in use".
    QString bind(const QString &name);
    /// Frees the library held, if any, and empties the table. Nothing while it is in use.
    void release();
    /// Until as many letGo() a session has its handle from here.
    void hold() { ++m_sessions; }
    void letGo() { --m_sessions; }
    /// The name of the library held; empty without one.
    QString name() const { return m_name; }
    const SimConnectFunctions &functions() const { return m_functions; }

private:
    std::unique_ptr<SimConnectLibrary> m_library;
    SimConnectFunctions m_functions{};
    QString m_name;
    int m_sessions = 0; ///< that are open
};

} // namespace tarvo::simulator::msfs

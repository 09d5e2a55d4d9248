#pragma once

#include "practice/simconnect/SimConnectCalls.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace tarvo::simulator::msfs {
class SimConnectLibrary;
}

namespace tarvo::practice {

/// SimConnect's library and the wire behind it, with a simulator in it or a test's own messages: writes down what a
/// client calls, fails what it is told to fail, and hands out messages as bytes. Takes one client at a time. Main
/// thread only; must be gone after whoever calls its functions.
class SimConnectStandIn
{
public:
    using HRESULT = simulator::msfs::HRESULT;
    using HANDLE = simulator::msfs::HANDLE;

    static constexpr qsizetype mostCalls = 100'000;    ///< remembered; the first ones go
    static constexpr qsizetype mostMessages = 100'000; ///< waiting; further ones are lost

    /// From now on the program's clients open this one, until the next one is made.
    SimConnectStandIn();
    ~SimConnectStandIn();
    SimConnectStandIn(const SimConnectStandIn &) = delete;
    SimConnectStandIn &operator=(const SimConnectStandIn &) = delete;

    /// What happens behind the calls; nothing while null. Outlives this, or is taken out again.
    void setSimulator(SimConnectCalls *simulator) { m_simulator = simulator; }

    // --- SimConnect's DLL ---
    /// The sixteen entry points, as C functions; they find their stand-in through the handle.
    static simulator::msfs::SimConnectFunctions functions();
    /// A library over this one, for SimConnectBinding. May outlive it: then nothing can be loaded.
    std::unique_ptr<simulator::msfs::SimConnectLibrary> library();
    /// The names under which it can be loaded; "SimConnect.dll" by default.
    void setLibraryNames(const QStringList &names) { m_libraryNames = names; }
    /// What loading another name gives; 126 (module not found) by default.
    void setLoadError(quint32 error) { m_loadError = error; }
    /// Entry points that it lacks, such as "SimConnect_SubscribeInputEvent".
    void setMissing(const QStringList &entryPoints) { m_missing = entryPoints; }

    // --- what the client called ---
    /// One line a call with every argument but the handle, in order; the DLL's `load "SimConnect.dll"` and `free`,
    /// too. GetNextDispatch is left out.
    QStringList calls() const { return m_calls; }
    /// The same, and forgets them.
    QStringList takeCalls();
    /// Hears each line as it is written down.
    void setListener(const std::function<void(const QString &line)> &listener) { m_listener = listener; }
    /// Writes no lines while off, for load tests. On by default.
    void setLogging(bool on) { m_logging = on; }
    /// Calls since the last Open, GetNextDispatch aside: what an exception names as the guilty one.
    quint32 sendId() const { return m_sendId; }
    bool isOpen() const { return m_handle != nullptr; }

    // --- what they return ---
    /// Fails the next `times` calls of a function such as "AddToDataDefinition", behind `after` that succeed. A failed
    /// call does nothing.
    void failNext(const QString &function, int times = 1, HRESULT result = simulator::msfs::simConnectFailed,
                  int after = 0);
    /// Fails every call of it.
    void failAlways(const QString &function, HRESULT result = simulator::msfs::simConnectFailed);
    /// It succeeds again.
    void succeed(const QString &function) { m_failures.remove(function); }
    /// All succeed again.
    void failNothing() { m_failures.clear(); }

    // --- messages ---
    /// The client's next message; its true size is handed over beside it. Without a byte GetNextDispatch succeeds with
    /// no message.
    void queue(const QByteArray &message);
    qsizetype queuedMessages() const { return m_queue.size(); }
    void dropMessages() { m_queue.clear(); }

    // --- for the entry points and the DLL ---
    /// The stand-in that the handle was opened on; null for any other handle.
    static SimConnectStandIn *behind(HANDLE handle);
    /// The one that is opened next; null when there is none.
    static SimConnectStandIn *current();
    HRESULT open(HANDLE *handle, const QString &line);
    void close();
    HRESULT nextDispatch(simulator::msfs::SIMCONNECT_RECV **message, simulator::msfs::DWORD *size);
    /// Writes the call down and says what it returns.
    HRESULT enter(const char *function, const QString &line);
    /// Does nothing when there is no simulator.
    SimConnectCalls &simulator();
    bool logs() const { return m_logging; }
    void note(const QString &line);
    quint32 loadLibrary(const QString &name);
    void *entryPoint(const char *name) const;

private:
    struct Failure
    {
        int after = 0;
        int times = 0; ///< -1: always
        HRESULT result = 0;
    };

    HRESULT resultOf(const QString &function);

    SimConnectCalls *m_simulator = nullptr;
    std::shared_ptr<SimConnectStandIn *> m_alive; ///< libraries hold it weakly
    HANDLE m_handle = nullptr;
    QStringList m_libraryNames{QStringLiteral("SimConnect.dll")};
    QStringList m_missing;
    quint32 m_loadError = 126;
    QStringList m_calls;
    std::function<void(const QString &)> m_listener;
    bool m_logging = true;
    quint32 m_sendId = 0;
    QHash<QString, Failure> m_failures;
    QList<QByteArray> m_queue;
    std::unique_ptr<char[]>
        m_dispatched; ///< exactly as long as its message, so that a sanitizer sees who reads past it
};

} // namespace tarvo::practice

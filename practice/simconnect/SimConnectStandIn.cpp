#include "practice/simconnect/SimConnectStandIn.h"

#include "practice/simconnect/EntryPoints.h"
#include "practice/simconnect/StandInLibrary.h"

#include <cstring>

namespace tarvo::practice {

using namespace simulator::msfs;

namespace {
SimConnectStandIn *newest = nullptr;

/// Open handles. They are numbers that no memory has and that never come again, so that a stale one finds nobody.
QHash<HANDLE, SimConnectStandIn *> &handles()
{
    static QHash<HANDLE, SimConnectStandIn *> open;
    return open;
}

HANDLE freshHandle()
{
    static quintptr last = 0;
    return reinterpret_cast<HANDLE>(++last); // NOLINT(performance-no-int-to-ptr): never followed
}
} // namespace

SimConnectStandIn::SimConnectStandIn() : m_alive(std::make_shared<SimConnectStandIn *>(this))
{
    newest = this;
    handles(); // made before and so gone after a stand-in that lives until the program ends
}

SimConnectStandIn::~SimConnectStandIn()
{
    handles().remove(m_handle);
    if (newest == this)
        newest = nullptr;
}

SimConnectFunctions SimConnectStandIn::functions()
{
    return entryPoints();
}

std::unique_ptr<SimConnectLibrary> SimConnectStandIn::library()
{
    return std::make_unique<StandInLibrary>(m_alive);
}

QStringList SimConnectStandIn::takeCalls()
{
    QStringList calls;
    m_calls.swap(calls);
    return calls;
}

void SimConnectStandIn::failNext(const QString &function, int times, HRESULT result, int after)
{
    m_failures.insert(function, {.after = after, .times = times, .result = result});
}

void SimConnectStandIn::failAlways(const QString &function, HRESULT result)
{
    failNext(function, -1, result);
}

void SimConnectStandIn::queue(const QByteArray &message)
{
    if (m_queue.size() < mostMessages)
        m_queue.append(message);
}

SimConnectStandIn *SimConnectStandIn::behind(HANDLE handle)
{
    return handles().value(handle);
}

SimConnectStandIn *SimConnectStandIn::current()
{
    return newest;
}

HRESULT SimConnectStandIn::open(HANDLE *handle, const QString &line)
{
    m_sendId = 0;
    if (const HRESULT result = enter("Open", line); result < 0)
        return result;
    if (!handle || m_handle)
        return simConnectFailed;
    m_handle = *handle = freshHandle();
    handles().insert(m_handle, this);
    simulator().opened();
    return simConnectOk;
}

void SimConnectStandIn::close()
{
    handles().remove(m_handle);
    m_handle = nullptr;
    m_queue.clear();
    m_dispatched.reset();
    simulator().closed();
}

HRESULT SimConnectStandIn::nextDispatch(SIMCONNECT_RECV **message, DWORD *size)
{
    *message = nullptr;
    *size = 0;
    if (const HRESULT result = resultOf(QStringLiteral("GetNextDispatch")); result < 0)
        return result;
    if (m_queue.isEmpty())
        simulator().poll();
    if (m_queue.isEmpty())
        return simConnectFailed; // SimConnect's word for: nothing there
    const QByteArray bytes = m_queue.takeFirst();
    if (bytes.isEmpty())
        return simConnectOk;
    m_dispatched = std::make_unique<char[]>(static_cast<std::size_t>(bytes.size()));
    std::memcpy(m_dispatched.get(), bytes.constData(), static_cast<std::size_t>(bytes.size()));
    *message = reinterpret_cast<SIMCONNECT_RECV *>(m_dispatched.get());
    *size = static_cast<DWORD>(bytes.size());
    return simConnectOk;
}

HRESULT SimConnectStandIn::enter(const char *function, const QString &line)
{
    ++m_sendId;
    note(line);
    return resultOf(QString::fromLatin1(function));
}

SimConnectCalls &SimConnectStandIn::simulator()
{
    static SimConnectCalls nobody;
    return m_simulator ? *m_simulator : nobody;
}

void SimConnectStandIn::note(const QString &line)
{
    if (!m_logging)
        return;
    if (m_calls.size() >= mostCalls)
        m_calls.removeFirst();
    m_calls.append(line);
    if (m_listener)
        m_listener(line);
}

quint32 SimConnectStandIn::loadLibrary(const QString &name)
{
    note(QStringLiteral("load \"%1\"").arg(name));
    return m_libraryNames.contains(name, Qt::CaseInsensitive) ? 0 : m_loadError; // as Windows looks for files
}

void *SimConnectStandIn::entryPoint(const char *name) const
{
    return m_missing.contains(QLatin1StringView(name)) ? nullptr : practice::entryPoint(name);
}

HRESULT SimConnectStandIn::resultOf(const QString &function)
{
    const auto failure = m_failures.find(function);
    if (failure == m_failures.end())
        return simConnectOk;
    if (failure->after > 0) {
        --failure->after;
        return simConnectOk;
    }
    const HRESULT result = failure->result;
    if (failure->times > 0 && --failure->times == 0)
        m_failures.erase(failure);
    return result;
}

} // namespace tarvo::practice

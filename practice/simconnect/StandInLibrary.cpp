#include "practice/simconnect/StandInLibrary.h"

#include "practice/simconnect/SimConnectStandIn.h"

#include <utility>

namespace tarvo::practice {

namespace {
constexpr quint32 moduleNotFound = 126;
}

StandInLibrary::StandInLibrary(std::weak_ptr<SimConnectStandIn *> standIn) : m_standIn(std::move(standIn)) {}

quint32 StandInLibrary::load(const QString &name)
{
    const auto standIn = m_standIn.lock();
    return standIn ? (*standIn)->loadLibrary(name) : moduleNotFound;
}

void *StandInLibrary::entryPoint(const char *name)
{
    const auto standIn = m_standIn.lock();
    return standIn ? (*standIn)->entryPoint(name) : nullptr;
}

void StandInLibrary::free()
{
    if (const auto standIn = m_standIn.lock())
        (*standIn)->note(QStringLiteral("free"));
}

} // namespace tarvo::practice

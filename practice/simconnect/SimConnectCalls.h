#pragma once

#include "simulator/msfs/simconnect/SimConnectApi.h"

#include <QByteArray>

namespace tarvo::practice {

/// What a client asks of the simulator: SimConnect's entry points without the handle. As there, a call only submits:
/// what is wrong with it comes as a message. Texts and bytes are the client's and may be hostile. By itself does
/// nothing.
class SimConnectCalls
{
public:
    using DWORD = simulator::msfs::DWORD;

    virtual ~SimConnectCalls() = default;

    virtual void opened() {}
    virtual void closed() {}
    virtual void addToDataDefinition(DWORD /*define*/, const QByteArray & /*datum*/, const QByteArray & /*unit*/,
                                     DWORD /*datatype*/)
    {
    }
    virtual void clearDataDefinition(DWORD /*define*/) {}
    virtual void requestDataOnSimObject(DWORD /*request*/, DWORD /*define*/, DWORD /*object*/, DWORD /*period*/,
                                        DWORD /*flags*/)
    {
    }
    virtual void requestDataOnSimObjectType(DWORD /*request*/, DWORD /*define*/, DWORD /*radiusMetres*/, DWORD /*type*/)
    {
    }
    virtual void setDataOnSimObject(DWORD /*define*/, DWORD /*object*/, const QByteArray & /*data*/) {}
    virtual void mapClientEventToSimEvent(DWORD /*event*/, const QByteArray & /*name*/) {}
    virtual void transmitClientEvent(DWORD /*object*/, DWORD /*event*/, DWORD /*data*/) {}
    virtual void subscribeToSystemEvent(DWORD /*event*/, const QByteArray & /*name*/) {}
    virtual void createNonATCAircraft(const QByteArray & /*title*/, const QByteArray & /*livery*/,
                                      const QByteArray & /*tailNumber*/,
                                      const simulator::msfs::SIMCONNECT_DATA_INITPOSITION & /*position*/,
                                      DWORD /*request*/)
    {
    }
    virtual void removeObject(DWORD /*object*/, DWORD /*request*/) {}
    virtual void enumerateInputEvents(DWORD /*request*/) {}
    virtual void subscribeInputEvent(quint64 /*hash*/) {}
    /// The client looks for messages and there is none: time for those that are due by now.
    virtual void poll() {}
};

} // namespace tarvo::practice

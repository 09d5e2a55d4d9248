#pragma once

#include "practice/simconnect/SimConnectStandIn.h"
#include "simulator/msfs/simconnect/SimConnectApi.h"

#include <QByteArray>
#include <QList>

#include <cstring>

namespace tarvo::test {

/// A program that talks to the stand-in through its sixteen functions, bare.
struct SimClient
{
    using DWORD = simulator::msfs::DWORD;

    const simulator::msfs::SimConnectFunctions sc = practice::SimConnectStandIn::functions();
    simulator::msfs::HANDLE handle = nullptr;

    SimClient() { reopen(); }
    ~SimClient() { sc.Close(handle); }
    SimClient(const SimClient &) = delete;
    SimClient &operator=(const SimClient &) = delete;

    simulator::msfs::HRESULT reopen() { return sc.Open(&handle, "SimClient", nullptr, 0, nullptr, 0); }

    void define(DWORD define, const char *variable, const char *unit, DWORD datatype)
    {
        sc.AddToDataDefinition(handle, define, variable, unit, datatype, 0, simulator::msfs::SIMCONNECT_UNUSED);
    }

    void follow(DWORD define, DWORD object = 0)
    {
        using namespace simulator::msfs;
        sc.RequestDataOnSimObject(handle, define, define, object, SIMCONNECT_PERIOD_SIM_FRAME,
                                  SIMCONNECT_DATA_REQUEST_FLAG_CHANGED, 0, 0, 0);
    }

    void write(DWORD define, DWORD object, QByteArray data)
    {
        sc.SetDataOnSimObject(handle, define, object, 0, 1, static_cast<DWORD>(data.size()), data.data());
    }

    void create(DWORD request, const char *tailNumber, double latitude = 40.07, double longitude = 116.6)
    {
        sc.AICreateNonATCAircraft(handle, "Airbus", tailNumber, {latitude, longitude, 328.084, 1, 2, 3, 1, 0}, request);
    }

    /// All messages that wait, or those of one kind.
    QList<QByteArray> messages(DWORD kind = 0)
    {
        QList<QByteArray> all;
        simulator::msfs::SIMCONNECT_RECV *message = nullptr;
        DWORD size = 0;
        while (sc.GetNextDispatch(handle, &message, &size) >= 0 && message) {
            if (kind == 0 || message->dwID == kind)
                all.append(QByteArray(reinterpret_cast<const char *>(message), static_cast<int>(size)));
        }
        return all;
    }

    /// The numbers of the exceptions that wait; other messages are lost.
    QList<DWORD> exceptions()
    {
        QList<DWORD> numbers;
        for (const QByteArray &message : messages(simulator::msfs::SIMCONNECT_RECV_ID_EXCEPTION))
            numbers.append(at<DWORD>(message, 12));
        return numbers;
    }

    template <typename Value>
    static Value at(const QByteArray &bytes, qsizetype offset)
    {
        Value value{};
        if (offset + static_cast<qsizetype>(sizeof(value)) <= bytes.size())
            std::memcpy(&value, bytes.constData() + offset, sizeof(value));
        return value;
    }
};

} // namespace tarvo::test

#include "practice/simconnect/SimConnectStandIn.h"
#include "practice/simconnect/Messages.h"
#include "simulator/msfs/simconnect/SimConnectBinding.h"
#include "simulator/msfs/simconnect/SimConnectLibrary.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <cstring>

using namespace tarvo::practice;
using namespace tarvo::simulator::msfs;

namespace {
const SimConnectFunctions sc = SimConnectStandIn::functions();
constexpr auto otherFailure = static_cast<HRESULT>(0x80070057);

HANDLE openHandle()
{
    HANDLE handle = nullptr;
    sc.Open(&handle, "Test", nullptr, 0, nullptr, 0);
    return handle;
}

/// The next message's bytes, or "none".
QByteArray nextMessage(HANDLE handle)
{
    SIMCONNECT_RECV *message = nullptr;
    DWORD size = 0;
    if (sc.GetNextDispatch(handle, &message, &size) < 0 || !message)
        return "none";
    return {reinterpret_cast<const char *>(message), static_cast<int>(size)};
}
} // namespace

class SimConnectStandInTest : public QObject
{
    Q_OBJECT

private slots:
    void writesDownEveryCall()
    {
        SimConnectStandIn standIn;
        HANDLE h = nullptr;
        QCOMPARE(sc.Open(&h, "TARVO Client", nullptr, 0, nullptr, SIMCONNECT_OPEN_CONFIGINDEX_LOCAL), simConnectOk);
        QVERIFY(standIn.isOpen());
        SIMCONNECT_DATA_INITPOSITION p{40.5, 116.25, 1000, -1, 2, 352.5, 1, 120};
        QByteArray bytes("\x01\xff", 2);
        sc.AddToDataDefinition(h, 0, "PLANE LATITUDE", "degrees", SIMCONNECT_DATATYPE_FLOAT64, 0, SIMCONNECT_UNUSED);
        sc.AddToDataDefinition(h, 50000, "TITLE", nullptr, SIMCONNECT_DATATYPE_STRING256, 0.5F, SIMCONNECT_UNUSED);
        sc.ClearDataDefinition(h, 1);
        sc.RequestDataOnSimObject(h, 1, 2, 3, 4, 5, 6, 7, 8);
        sc.RequestDataOnSimObjectType(h, 40001, 40000, 30000, SIMCONNECT_SIMOBJECT_TYPE_AIRCRAFT);
        sc.SetDataOnSimObject(h, 1000, 0, 0, 1, 2, bytes.data());
        sc.MapClientEventToSimEvent(h, 10000, "XPNDR_IDENT_ON");
        sc.TransmitClientEvent(h, 0, 10000, 118500000, 1, 16);
        sc.SubscribeToSystemEvent(h, 20000, "Pause");
        sc.AICreateNonATCAircraft(h, "Airbus", "CCA1", p, 7);
        sc.AICreateNonATCAircraft_EX1(h, "Airbus", "CCA \"new\"", "CCA1", p, 8);
        sc.AIRemoveObject(h, 258, 9);
        sc.EnumerateInputEvents(h, 60000);
        sc.SubscribeInputEvent(h, 0xFFFFFFFFFFFFFFFF);
        QCOMPARE(standIn.sendId(), 15U);
        sc.Close(h);
        QVERIFY(!standIn.isOpen());
        QCOMPARE(standIn.calls(),
                 QStringList({QStringLiteral("Open \"TARVO Client\" null 0 null 4294967295"),
                              QStringLiteral("AddToDataDefinition 0 \"PLANE LATITUDE\" \"degrees\" 4 0 4294967295"),
                              QStringLiteral("AddToDataDefinition 50000 \"TITLE\" null 9 0.5 4294967295"),
                              QStringLiteral("ClearDataDefinition 1"),
                              QStringLiteral("RequestDataOnSimObject 1 2 3 4 5 6 7 8"),
                              QStringLiteral("RequestDataOnSimObjectType 40001 40000 30000 2"),
                              QStringLiteral("SetDataOnSimObject 1000 0 0 1 2 01ff"),
                              QStringLiteral("MapClientEventToSimEvent 10000 \"XPNDR_IDENT_ON\""),
                              QStringLiteral("TransmitClientEvent 0 10000 118500000 1 16"),
                              QStringLiteral("SubscribeToSystemEvent 20000 \"Pause\""),
                              QStringLiteral("AICreateNonATCAircraft \"Airbus\" \"CCA1\" "
                                             "{40.5 116.25 1000 -1 2 352.5 1 120} 7"),
                              QStringLiteral("AICreateNonATCAircraft_EX1 \"Airbus\" \"CCA \"new\"\" \"CCA1\" "
                                             "{40.5 116.25 1000 -1 2 352.5 1 120} 8"),
                              QStringLiteral("AIRemoveObject 258 9"), QStringLiteral("EnumerateInputEvents 60000"),
                              QStringLiteral("SubscribeInputEvent 18446744073709551615"), QStringLiteral("Close")}));
        QCOMPARE(standIn.takeCalls().size(), 16);
        QVERIFY(standIn.calls().isEmpty());
    }

    void writesNothingDownWhenTold()
    {
        SimConnectStandIn standIn;
        standIn.setLogging(false);
        const HANDLE h = openHandle();
        QCOMPARE(sc.ClearDataDefinition(h, 1), simConnectOk);
        QVERIFY(standIn.calls().isEmpty());
    }

    void failsWhatItIsTold()
    {
        SimConnectStandIn standIn;
        const HANDLE h = openHandle();
        standIn.failNext(QStringLiteral("ClearDataDefinition"), 2, otherFailure, 1);
        QCOMPARE(sc.ClearDataDefinition(h, 1), simConnectOk);
        QCOMPARE(sc.ClearDataDefinition(h, 1), otherFailure);
        QCOMPARE(sc.AIRemoveObject(h, 1, 1), simConnectOk);
        QCOMPARE(sc.ClearDataDefinition(h, 1), otherFailure);
        QCOMPARE(sc.ClearDataDefinition(h, 1), simConnectOk);
        standIn.failAlways(QStringLiteral("AIRemoveObject"));
        QCOMPARE(sc.AIRemoveObject(h, 1, 1), simConnectFailed);
        QCOMPARE(sc.AIRemoveObject(h, 1, 1), simConnectFailed);
        standIn.failNothing();
        QCOMPARE(sc.AIRemoveObject(h, 1, 1), simConnectOk);
        standIn.failNext(QStringLiteral("Close"));
        QCOMPARE(sc.Close(h), simConnectFailed);
        QVERIFY(standIn.isOpen());
        standIn.queue(message::quit());
        standIn.failNext(QStringLiteral("GetNextDispatch"));
        QCOMPARE(nextMessage(h), QByteArray("none"));
        QCOMPARE(nextMessage(h), message::quit());
    }

    void refusesToOpen()
    {
        SimConnectStandIn standIn;
        standIn.failNext(QStringLiteral("Open"));
        HANDLE h = &standIn;
        QCOMPARE(sc.Open(&h, "Test", nullptr, 0, nullptr, 0), simConnectFailed);
        QCOMPARE(h, nullptr);
        QVERIFY(openHandle());
        QVERIFY2(!openHandle(), "one client at a time");
        QCOMPARE(sc.Open(nullptr, "Test", nullptr, 0, nullptr, 0), otherFailure);
    }

    void handsOutMessages()
    {
        SimConnectStandIn standIn;
        const HANDLE h = openHandle();
        QCOMPARE(nextMessage(h), QByteArray("none"));
        standIn.queue(message::event(1, 2, 3));
        standIn.queue({});
        standIn.queue("shor");
        QCOMPARE(nextMessage(h), message::event(1, 2, 3));
        SIMCONNECT_RECV *message = nullptr;
        DWORD size = 7;
        QCOMPARE(sc.GetNextDispatch(h, &message, &size), simConnectOk);
        QCOMPARE(message, nullptr);
        QCOMPARE(size, 0U);
        QCOMPARE(nextMessage(h), QByteArray("shor"));
        standIn.queue(message::quit());
        standIn.dropMessages();
        QCOMPARE(nextMessage(h), QByteArray("none"));
    }

    void aClosedHandleIsNobodys()
    {
        SimConnectStandIn standIn;
        const HANDLE old = openHandle();
        sc.Close(old);
        const HANDLE h = openHandle();
        QVERIFY(h != old);
        QVERIFY(sc.ClearDataDefinition(old, 1) < 0);
        QVERIFY(sc.ClearDataDefinition(nullptr, 1) < 0);
        QVERIFY(sc.ClearDataDefinition(&standIn, 1) < 0);
        QVERIFY(sc.Close(old) < 0);
        QCOMPARE(nextMessage(old), QByteArray("none"));
        QCOMPARE(sc.ClearDataDefinition(h, 1), simConnectOk);
        QCOMPARE(standIn.sendId(), 2U);
    }

    void theNewestIsOpened()
    {
        HANDLE first = nullptr;
        HANDLE second = nullptr;
        {
            SimConnectStandIn one;
            first = openHandle();
            SimConnectStandIn other;
            second = openHandle();
            sc.AIRemoveObject(first, 1, 1);
            QVERIFY(one.calls().contains(QStringLiteral("AIRemoveObject 1 1")));
            QVERIFY(!other.calls().contains(QStringLiteral("AIRemoveObject 1 1")));
        }
        QVERIFY(sc.AIRemoveObject(second, 1, 1) < 0);
        QVERIFY(!openHandle());
    }

    void badArgumentsAreRefused()
    {
        SimConnectStandIn standIn;
        const HANDLE h = openHandle();
        SIMCONNECT_RECV *message = nullptr;
        DWORD size = 0;
        char byte = 0;
        QCOMPARE(sc.GetNextDispatch(h, nullptr, &size), otherFailure);
        QCOMPARE(sc.GetNextDispatch(h, &message, nullptr), otherFailure);
        QCOMPARE(sc.SetDataOnSimObject(h, 1, 0, 0, 1, 8, nullptr), otherFailure);
        QCOMPARE(sc.SetDataOnSimObject(h, 1, 0, 0, 1, 0xFFFFFFFF, &byte), otherFailure);
        QCOMPARE(sc.AddToDataDefinition(h, 1, nullptr, nullptr, 4, 0, 0), simConnectOk);
        QCOMPARE(sc.AICreateNonATCAircraft_EX1(h, nullptr, nullptr, nullptr, {}, 1), simConnectOk);
        QCOMPARE(standIn.calls().last(),
                 QStringLiteral("AICreateNonATCAircraft_EX1 null null null {0 0 0 0 0 0 0 0} 1"));
    }

    void isALibrary()
    {
        SimConnectStandIn standIn;
        SimConnectBinding binding(standIn.library());
        QCOMPARE(binding.bind(QStringLiteral("SimConnect2024.dll")),
                 QStringLiteral("Failed to load SimConnect2024.dll (Win32 error 126)"));
        QCOMPARE(binding.bind(QStringLiteral("SimConnect.dll")), QString());
        const SimConnectFunctions bound = binding.functions();
        QCOMPARE(std::memcmp(&bound, &sc, sizeof(sc)), 0);
        binding.release();
        QCOMPARE(standIn.calls(), QStringList({QStringLiteral("load \"SimConnect2024.dll\""),
                                               QStringLiteral("load \"SimConnect.dll\""), QStringLiteral("free")}));
    }

    void isAnotherLibrary()
    {
        SimConnectStandIn standIn;
        standIn.setLibraryNames({QStringLiteral("SimConnect2024.dll")});
        standIn.setLoadError(193);
        standIn.setMissing({QStringLiteral("SimConnect_SubscribeInputEvent")});
        SimConnectBinding binding(standIn.library());
        QVERIFY(binding.bind(QStringLiteral("SimConnect.dll")).endsWith(QStringLiteral("(Win32 error 193)")));
        QCOMPARE(binding.bind(QStringLiteral("simconnect2024.DLL")), QString());
        QVERIFY(!binding.functions().SubscribeInputEvent);
        QVERIFY(binding.functions().EnumerateInputEvents);
        standIn.setMissing({QStringLiteral("SimConnect_AIRemoveObject")});
        binding.release();
        QCOMPARE(binding.bind(QStringLiteral("SimConnect2024.dll")),
                 QStringLiteral("Failed to resolve SimConnect_AIRemoveObject from SimConnect2024.dll"));
    }

    void aLibraryOutlivesIt()
    {
        std::unique_ptr<SimConnectLibrary> library;
        {
            SimConnectStandIn standIn;
            library = standIn.library();
            QCOMPARE(library->load(QStringLiteral("SimConnect.dll")), 0U);
            QCOMPARE(library->entryPoint("SimConnect_Nothing"), nullptr);
            QVERIFY(library->entryPoint("SimConnect_Close"));
        }
        QCOMPARE(library->load(QStringLiteral("SimConnect.dll")), 126U);
        QCOMPARE(library->entryPoint("SimConnect_Close"), nullptr);
        library->free();
    }
};

TARVO_TEST(SimConnectStandInTest)
#include "SimConnectStandInTest.moc"

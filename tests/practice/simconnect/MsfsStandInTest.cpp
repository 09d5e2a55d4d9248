#include "SimClient.h"

#include "practice/simconnect/MsfsStandIn.h"
#include "simulator/msfs/simvar/SimVarTable.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <functional>
#include <limits>

using namespace tarvo::practice;
using namespace tarvo::simulator::msfs;
using tarvo::test::ManualClock;
using tarvo::test::SimClient;

namespace {
constexpr qsizetype dataOffset = 40;

DWORD datatypeOf(const SimVarBinding &binding)
{
    return binding.type == SimVarType::Float ? SIMCONNECT_DATATYPE_FLOAT64 : SIMCONNECT_DATATYPE_INT32;
}
} // namespace

class MsfsStandInTest : public QObject
{
    Q_OBJECT

private slots:
    void introducesItself()
    {
        MsfsStandIn simulator;
        {
            SimClient client;
            QCOMPARE(client.messages(), QList<QByteArray>{message::open(message::msfs2020())});
        }
        simulator.setApplication(message::msfs2024());
        SimClient client;
        QCOMPARE(client.messages(), QList<QByteArray>{message::open(message::msfs2024())});
    }

    void knowsTheWholeTable()
    {
        const ManualClock clock;
        MsfsStandIn simulator(clock);
        SimClient client;
        for (const SimVarDefinition &row : simVarDefinitions()) {
            const SimVarBinding binding = simVarBinding(row, MsfsRuntimeProfile::Msfs2020);
            const DWORD type =
                row.type == SimVarType::String ? DWORD{SIMCONNECT_DATATYPE_STRING256} : datatypeOf(binding);
            client.define(static_cast<DWORD>(row.group), binding.variable, binding.unit, type);
        }
        QCOMPARE(client.exceptions(), QList<DWORD>());
        for (const UpdateGroup group : updateGroups)
            client.follow(static_cast<DWORD>(group));
        simulator.frame();
        const QList<QByteArray> data = client.messages(SIMCONNECT_RECV_ID_SIMOBJECT_DATA);
        QCOMPARE(data.size(), 4);
        QCOMPARE(SimClient::at<double>(data[0], dataOffset), simulator.flight().at(0).latitude);
        QCOMPARE(SimClient::at<DWORD>(data[1], 12), 1U); // request
        QCOMPARE(SimClient::at<DWORD>(data[1], 28), 1U); // the first of one
        QCOMPARE(SimClient::at<DWORD>(data[1], 32), 1U);
        QCOMPARE(SimClient::at<double>(data[2], dataOffset), 0x1850);
    }

    void tellsWhatHasChanged()
    {
        ManualClock clock;
        MsfsStandIn simulator(clock);
        simulator.setFlightTime(simulator.flight().startOf(QStringLiteral("climb")));
        SimClient client;
        client.messages();
        client.define(0, "PLANE LATITUDE", "degrees", SIMCONNECT_DATATYPE_FLOAT64);
        client.define(2, "COM ACTIVE FREQUENCY:1", "Frequency BCD16", SIMCONNECT_DATATYPE_FLOAT64);
        client.define(2, "TRANSPONDER CODE:1", "Bco16", SIMCONNECT_DATATYPE_INT32);
        client.follow(0);
        client.follow(2);
        QCOMPARE(client.messages().size(), 0); // no frame yet
        clock.advance(33);
        QCOMPARE(client.messages().size(), 2);
        QCOMPARE(client.messages().size(), 0);
        clock.advance(99);
        const QList<QByteArray> positions = client.messages();
        QCOMPARE(positions.size(), 3); // one a frame, and nothing of the radios
        QVERIFY(positions[0] != positions[1]);
        QVERIFY(simulator.setValue("COM ACTIVE FREQUENCY:1", "kHz", 121'800));
        simulator.setPaused(true);
        clock.advance(1000);
        const QList<QByteArray> radios = client.messages();
        QCOMPARE(radios.last().size(), dataOffset + 12); // all of the definition
        QCOMPARE(SimClient::at<double>(radios.last(), dataOffset), 0x2180);
        QCOMPARE(SimClient::at<qint32>(radios.last(), dataOffset + 8), 0x2000);
        clock.advance(10'000);
        QCOMPARE(client.messages().size(), 0); // it stands still
    }

    void missedFramesAreGone()
    {
        ManualClock clock;
        MsfsStandIn simulator(clock);
        simulator.setFrameMs(10);
        SimClient client;
        client.messages();
        client.define(0, "PLANE BANK DEGREES", "degrees", SIMCONNECT_DATATYPE_FLOAT64);
        client.follow(0);
        clock.advance(60'000);
        QCOMPARE(client.messages().size(), 8);
        QCOMPARE(simulator.flightTime(), 60.0);
    }

    void obeysThePeriods()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.messages();
        client.define(1, "TITLE", nullptr, SIMCONNECT_DATATYPE_STRING256);
        client.sc.RequestDataOnSimObject(client.handle, 5, 1, 0, SIMCONNECT_PERIOD_ONCE, 0, 0, 0, 0);
        simulator.frame();
        const QList<QByteArray> once = client.messages();
        QCOMPARE(once.size(), 1);
        QCOMPARE(once[0].mid(dataOffset), message::text("Practice A320neo", 256));
        client.sc.RequestDataOnSimObject(client.handle, 6, 1, 1, SIMCONNECT_PERIOD_SIM_FRAME, 0, 0, 0, 0);
        simulator.frame();
        simulator.frame();
        QCOMPARE(client.messages().size(), 2); // changed or not
        client.sc.RequestDataOnSimObject(client.handle, 6, 1, 1, SIMCONNECT_PERIOD_NEVER, 0, 0, 0, 0);
        simulator.frame();
        QCOMPARE(client.messages().size(), 0);
        client.follow(1);
        client.sc.ClearDataDefinition(client.handle, 1);
        simulator.frame();
        QCOMPARE(client.messages().size(), 0);
    }

    void isSilentWhileFrozen()
    {
        ManualClock clock;
        MsfsStandIn simulator(clock);
        SimClient client;
        client.messages();
        client.define(0, "PLANE BANK DEGREES", "degrees", SIMCONNECT_DATATYPE_FLOAT64);
        client.follow(0);
        simulator.setFrozen(true);
        client.create(1, "CCA1");
        clock.advance(100);
        QCOMPARE(client.messages().size(), 0);
        simulator.setFrozen(false);
        QVERIFY(client.messages().size() > 1);
    }

    void takesWrites()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.define(1002, "TRANSPONDER CODE:1", "Bco16", SIMCONNECT_DATATYPE_INT32);
        client.write(1002, 0, message::int32(0x7654));
        QCOMPARE(simulator.value("TRANSPONDER CODE:1", "number"), 7654.0);
        client.define(1000, "TRANSPONDER STATE:1", "enum", SIMCONNECT_DATATYPE_INT32);
        client.write(1000, 1, message::int32(4));
        QCOMPARE(simulator.value("TRANSPONDER STATE:1", "enum"), 4.0);
        QCOMPARE(client.exceptions(), QList<DWORD>());
    }

    void takesEvents()
    {
        ManualClock clock;
        MsfsStandIn simulator(clock);
        SimClient client;
        client.sc.MapClientEventToSimEvent(client.handle, 10000, "COM_RADIO_SET_HZ");
        client.sc.MapClientEventToSimEvent(client.handle, 10001, "COM2_RADIO_SET_HZ");
        client.sc.MapClientEventToSimEvent(client.handle, 10002, "XPNDR_IDENT_ON");
        const auto send = [&](DWORD event, DWORD data) {
            client.sc.TransmitClientEvent(client.handle, 0, event, data, 1, 16);
        };
        send(10000, 118'025'000);
        send(10001, 127'600'000);
        QCOMPARE(simulator.value("COM ACTIVE FREQUENCY:1", "Frequency BCD16"), 0x1802);
        QCOMPARE(simulator.value("COM ACTIVE FREQUENCY:2", "kHz"), 127'600.0);
        send(10001, 90'000'000);
        QCOMPARE(simulator.value("COM ACTIVE FREQUENCY:2", "kHz"), 127'600.0);
        QVERIFY(!simulator.isIdenting());
        send(10002, 0);
        QVERIFY(simulator.isIdenting());
        clock.advance(18'000);
        QVERIFY(!simulator.isIdenting());
        QCOMPARE(client.exceptions(), QList<DWORD>());
    }

    void pauses()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.messages();
        client.sc.SubscribeToSystemEvent(client.handle, 20000, "Pause");
        QCOMPARE(client.messages(), QList<QByteArray>{message::event(0, 20000, 0)});
        simulator.setPaused(true);
        simulator.setPaused(true);
        QCOMPARE(simulator.value("PAUSE INDICATOR", "bool"), 1.0);
        QCOMPARE(client.messages(), QList<QByteArray>{message::event(0, 20000, 1)});
        simulator.setPaused(false);
        QCOMPARE(simulator.value("PAUSE INDICATOR", "bool"), 0.0);
    }

    void createsAircraft()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.messages();
        client.create(7, "CCA1");
        QCOMPARE(client.messages(), QList<QByteArray>{message::assignedObject(7, 258)});
        client.sc.AICreateNonATCAircraft_EX1(client.handle, "Boeing", "Air China", "CCA2", {40, 116, 0, 0, 0, 0, 0, 99},
                                             8);
        QCOMPARE(client.messages(), QList<QByteArray>{message::assignedObject(8, 259)});
        QCOMPARE(simulator.aircraft().size(), 2);
        const AiAircraft first = simulator.aircraft("CCA1");
        QCOMPARE(first.id, 258U);
        QCOMPARE(first.title, QByteArray("Airbus"));
        QCOMPARE(first.start.Bank, 2.0);
        QCOMPARE(first.state.altitudeM, 100.0);
        QVERIFY(first.livery.isEmpty() && first.state.onGround);
        QCOMPARE(simulator.aircraft("CCA2").livery, QByteArray("Air China"));
        QCOMPARE(simulator.aircraft("CCA3").id, 0U);
        client.sc.AIRemoveObject(client.handle, 258, 9);
        QCOMPARE(simulator.aircraft("CCA1").id, 0U);
        QCOMPARE(client.messages().size(), 0);
    }

    void createsLateOrNever()
    {
        ManualClock clock;
        MsfsStandIn simulator(clock);
        SimClient client;
        client.messages();
        simulator.setCreateAnswering({.mode = CreateAnswering::Mode::Late, .delayMs = 2000});
        client.create(1, "CCA1");
        clock.advance(1999);
        QCOMPARE(client.messages().size(), 0);
        QCOMPARE(simulator.pendingCreates(), 1);
        clock.advance(1);
        QCOMPARE(client.messages(), QList<QByteArray>{message::assignedObject(1, 258)});
        simulator.setCreateAnswering({.mode = CreateAnswering::Mode::Never});
        client.create(2, "CCA2");
        client.create(3, "CCA3");
        clock.advance(3'600'000);
        QCOMPARE(client.messages().size(), 0);
        QVERIFY(simulator.assignPending());
        QVERIFY(simulator.failPending());
        QVERIFY(!simulator.assignPending());
        QVERIFY(!simulator.failPending());
        QCOMPARE(client.messages(), (QList<QByteArray>{message::assignedObject(2, 259), message::exception(22, 4, 0)}));
        QCOMPARE(simulator.pendingCreates(), 0);
        QCOMPARE(simulator.aircraft("CCA3").id, 0U);
    }

    void failsToCreate_data()
    {
        QTest::addColumn<QByteArray>("title");
        QTest::addColumn<double>("latitude");
        QTest::addColumn<bool>("told");
        QTest::newRow("told to") << QByteArray("Airbus") << 40.0 << true;
        QTest::newRow("a model that isn't there") << QByteArray("Concorde") << 40.0 << false;
        QTest::newRow("no model") << QByteArray() << 40.0 << false;
        QTest::newRow("nowhere") << QByteArray("Airbus") << 91.0 << false;
        QTest::newRow("no number") << QByteArray("Airbus") << std::numeric_limits<double>::quiet_NaN() << false;
    }

    void failsToCreate()
    {
        QFETCH(QByteArray, title);
        QFETCH(double, latitude);
        QFETCH(bool, told);
        MsfsStandIn simulator;
        simulator.setInstalled({"Airbus"});
        if (told)
            simulator.setCreateAnswering({.mode = CreateAnswering::Mode::Fail});
        SimClient client;
        client.sc.AICreateNonATCAircraft(client.handle, title.constData(), "CCA1", {latitude, 116, 0, 0, 0, 0, 0, 0},
                                         1);
        QCOMPARE(client.exceptions(), QList<DWORD>{22});
        QVERIFY(simulator.aircraft().isEmpty());
    }

    void movesAircraft()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.create(1, "CCA1");
        client.messages();
        client.define(30000, "AI WAYPOINT LIST", "number", SIMCONNECT_DATATYPE_WAYPOINT);
        const SIMCONNECT_DATA_WAYPOINT waypoint{40.5, 116.5, 3280.84, SIMCONNECT_WAYPOINT_SPEED_REQUESTED, 250, 0};
        client.write(30000, 258, QByteArray(reinterpret_cast<const char *>(&waypoint), sizeof(waypoint)));
        client.define(1001, "LIGHT BEACON", "bool", SIMCONNECT_DATATYPE_INT32);
        client.write(1001, 258, message::int32(0));
        const AiAircraft moved = simulator.aircraft("CCA1");
        QCOMPARE(moved.waypoints, 1);
        QCOMPARE(moved.waypoint.ktsSpeed, 250.0);
        QCOMPARE(moved.state.latitude, 40.5);
        QCOMPARE(moved.state.altitudeM, 1000.0);
        QVERIFY(!moved.state.onGround);
        QCOMPARE(simulator.written(258, "LIGHT BEACON", "bool"), 0.0);
        QCOMPARE(simulator.written(258, "LIGHT NAV", "bool"), -1.0);
        QCOMPARE(simulator.written(259, "LIGHT BEACON", "bool"), -1.0);
        QCOMPARE(client.exceptions(), QList<DWORD>());
    }

    void listsTheTraffic()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.create(1, "CCA1");
        client.create(2, "FARAWAY", 41);
        client.create(3, "");
        client.messages();
        client.define(40000, "ATC ID", nullptr, SIMCONNECT_DATATYPE_STRING64);
        client.define(40000, "PLANE LATITUDE", "degrees", SIMCONNECT_DATATYPE_FLOAT64);
        client.define(40000, "PLANE LONGITUDE", "degrees", SIMCONNECT_DATATYPE_FLOAT64);
        client.sc.RequestDataOnSimObjectType(client.handle, 40001, 40000, 30000, SIMCONNECT_SIMOBJECT_TYPE_AIRCRAFT);
        const QList<QByteArray> rows = client.messages();
        QCOMPARE(rows.size(), 3);
        const QList<QByteArray> names{"B-1001", "CCA1", ""};
        const QList<DWORD> ids{1, 258, 260};
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(rows[i].size(), 120);
            QCOMPARE(SimClient::at<DWORD>(rows[i], 8), DWORD{SIMCONNECT_RECV_ID_SIMOBJECT_DATA_BYTYPE});
            QCOMPARE(SimClient::at<DWORD>(rows[i], 16), ids[i]);
            QCOMPARE(SimClient::at<DWORD>(rows[i], 28), static_cast<DWORD>(i));
            QCOMPARE(SimClient::at<DWORD>(rows[i], 32), 3U);
            QCOMPARE(rows[i].mid(dataOffset, 64), message::text(names[i], 64));
        }
        QCOMPARE(SimClient::at<double>(rows[1], dataOffset + 64), 40.07);
        simulator.setTrafficBytes(10);
        client.sc.RequestDataOnSimObjectType(client.handle, 40001, 40000, 0, SIMCONNECT_SIMOBJECT_TYPE_AIRCRAFT);
        const QList<QByteArray> cut = client.messages();
        QCOMPARE(cut.size(), 1);
        QCOMPARE(cut[0].size(), dataOffset + 10);
    }

    void followsInputEvents()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.messages();
        client.sc.EnumerateInputEvents(client.handle, 60000);
        QCOMPARE(client.messages(), QList<QByteArray>{message::inputEvents(60000, simulator.inputEvents().all())});
        const auto lever = simulator.inputEvents().find("HANDLING_FLAPS");
        client.sc.SubscribeInputEvent(client.handle, lever->hash);
        simulator.frame();
        QCOMPARE(client.messages(), QList<QByteArray>{message::inputEventValue(lever->hash, 0, 0)});
        QVERIFY(simulator.inputEvents().setValue("HANDLING_FLAPS", 75));
        QVERIFY(!simulator.inputEvents().setValue("HANDLING_TEA", 75));
        simulator.frame();
        simulator.frame();
        QCOMPARE(client.messages(), QList<QByteArray>{message::inputEventValue(lever->hash, 0, 75)});
        const auto brakes = simulator.inputEvents().find("HANDLING_SPEEDBRAKE");
        client.sc.SubscribeInputEvent(client.handle, brakes->hash);
        simulator.setFlightTime(simulator.flight().startOf(QStringLiteral("roll-out")) + 5);
        simulator.frame();
        const double told = SimClient::at<double>(client.messages().value(0), 24);
        QVERIFY2(told > 50, qPrintable(QString::number(told)));
    }

    void quits()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.create(1, "CCA1");
        client.messages();
        simulator.quit();
        QCOMPARE(client.messages(), QList<QByteArray>{message::quit()});
        simulator.frame();
        client.sc.Close(client.handle);
        QVERIFY(simulator.aircraft().isEmpty());
        QVERIFY(client.reopen() < 0);
        simulator.start();
        QVERIFY(client.reopen() >= 0);
        QCOMPARE(client.messages().size(), 1);
    }

    void aNewConnectionKnowsNothing()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.define(1, "TITLE", nullptr, SIMCONNECT_DATATYPE_STRING256);
        client.sc.MapClientEventToSimEvent(client.handle, 10000, "XPNDR_IDENT_ON");
        client.follow(1);
        client.sc.Close(client.handle);
        client.reopen();
        simulator.frame();
        client.follow(1);
        client.sc.TransmitClientEvent(client.handle, 0, 10000, 0, 1, 16);
        QCOMPARE(client.messages(), (QList<QByteArray>{message::open(message::msfs2020()), message::exception(3, 2, 2),
                                                       message::exception(3, 3, 2)}));
    }

    void saysWhatIsWrong_data()
    {
        QTest::addColumn<int>("call");
        QTest::addColumn<quint32>("exception");
        QTest::newRow("unknown variable") << 0 << 7U;
        QTest::newRow("no variable") << 1 << 7U;
        QTest::newRow("unit of something else") << 2 << 7U;
        QTest::newRow("text as a number") << 3 << 18U;
        QTest::newRow("number as a text") << 4 << 18U;
        QTest::newRow("unknown type") << 5 << 18U;
        QTest::newRow("definition to clear") << 6 << 3U;
        QTest::newRow("definition to read") << 7 << 3U;
        QTest::newRow("object to read") << 8 << 3U;
        QTest::newRow("period") << 9 << 27U;
        QTest::newRow("definition of the traffic") << 10 << 3U;
        QTest::newRow("type of the traffic") << 11 << 27U;
        QTest::newRow("radius") << 12 << 31U;
        QTest::newRow("definition to write") << 13 << 3U;
        QTest::newRow("object to write") << 14 << 3U;
        QTest::newRow("too few bytes") << 15 << 20U;
        QTest::newRow("too many bytes") << 16 << 20U;
        QTest::newRow("no number") << 17 << 20U;
        QTest::newRow("title written") << 18 << 24U;
        QTest::newRow("waypoint for the pilot") << 19 << 24U;
        QTest::newRow("waypoint nowhere") << 20 << 20U;
        QTest::newRow("unknown event") << 21 << 7U;
        QTest::newRow("event's number taken") << 22 << 9U;
        QTest::newRow("event that isn't mapped") << 23 << 3U;
        QTest::newRow("unknown system event") << 24 << 7U;
        QTest::newRow("object to remove") << 25 << 3U;
        QTest::newRow("the pilot to remove") << 26 << 3U;
        QTest::newRow("input event") << 27 << 3U;
        QTest::newRow("no system event") << 28 << 7U;
    }

    void saysWhatIsWrong()
    {
        QFETCH(int, call);
        QFETCH(quint32, exception);
        MsfsStandIn simulator;
        SimClient c;
        constexpr DWORD d = 1;
        constexpr DWORD number = SIMCONNECT_DATATYPE_FLOAT64;
        c.define(d, "PLANE BANK DEGREES", "degrees", number);
        c.define(2, "TITLE", nullptr, SIMCONNECT_DATATYPE_STRING64);
        c.define(3, "AI WAYPOINT LIST", "number", SIMCONNECT_DATATYPE_WAYPOINT);
        c.sc.MapClientEventToSimEvent(c.handle, 1, "XPNDR_IDENT_ON");
        c.create(1, "CCA1");
        c.messages();
        SIMCONNECT_DATA_WAYPOINT nowhere{};
        nowhere.Latitude = std::numeric_limits<double>::infinity();
        const auto request = [&](DWORD define, DWORD object, DWORD period) {
            c.sc.RequestDataOnSimObject(c.handle, 1, define, object, period, 0, 0, 0, 0);
        };
        const auto traffic = [&](DWORD define, DWORD radius, DWORD type) {
            c.sc.RequestDataOnSimObjectType(c.handle, 1, define, radius, type);
        };
        const std::function<void()> calls[] = {
            [&] { c.define(d, "PLANE SMELL", "number", number); },
            [&] { c.define(d, nullptr, nullptr, number); },
            [&] { c.define(d, "PLANE LATITUDE", "meters", number); },
            [&] { c.define(d, "TITLE", nullptr, number); },
            [&] { c.define(d, "PLANE LATITUDE", "degrees", SIMCONNECT_DATATYPE_STRING64); },
            [&] { c.define(d, "PLANE LATITUDE", "degrees", 99); },
            [&] { c.sc.ClearDataDefinition(c.handle, 9); },
            [&] { request(9, 0, SIMCONNECT_PERIOD_ONCE); },
            [&] { request(d, 9, SIMCONNECT_PERIOD_ONCE); },
            [&] { request(d, 0, 9); },
            [&] { traffic(9, 0, SIMCONNECT_SIMOBJECT_TYPE_AIRCRAFT); },
            [&] { traffic(d, 0, 9); },
            [&] { traffic(d, 200'001, SIMCONNECT_SIMOBJECT_TYPE_AIRCRAFT); },
            [&] { c.write(9, 0, message::float64(1)); },
            [&] { c.write(d, 9, message::float64(1)); },
            [&] { c.write(d, 0, message::int32(1)); },
            [&] { c.write(d, 0, message::float64(1) + "x"); },
            [&] { c.write(d, 0, message::float64(std::numeric_limits<double>::infinity())); },
            [&] { c.write(2, 0, message::text("Concorde", 64)); },
            [&] { c.write(3, 0, QByteArray(44, '\0')); },
            [&] { c.write(3, 258, QByteArray(reinterpret_cast<const char *>(&nowhere), sizeof(nowhere))); },
            [&] { c.sc.MapClientEventToSimEvent(c.handle, 2, "TEA"); },
            [&] { c.sc.MapClientEventToSimEvent(c.handle, 1, "COM_RADIO_SET_HZ"); },
            [&] { c.sc.TransmitClientEvent(c.handle, 0, 2, 0, 1, 16); },
            [&] { c.sc.SubscribeToSystemEvent(c.handle, 1, "Tea"); },
            [&] { c.sc.AIRemoveObject(c.handle, 9, 1); },
            [&] { c.sc.AIRemoveObject(c.handle, 1, 1); },
            [&] { c.sc.SubscribeInputEvent(c.handle, 1); },
            [&] { c.sc.SubscribeToSystemEvent(c.handle, 1, nullptr); },
        };
        calls[call]();
        QCOMPARE(c.exceptions(), QList<DWORD>{exception});
    }

    void raisesWhatItIsTold()
    {
        MsfsStandIn simulator;
        SimClient client;
        client.messages();
        client.sc.ClearDataDefinition(client.handle, 9);
        simulator.raise(28);
        simulator.raise(7, 99, 3);
        QCOMPARE(client.messages(), (QList<QByteArray>{message::exception(3, 2, 1), message::exception(28, 2, 0),
                                                       message::exception(7, 99, 3)}));
    }
};

TARVO_TEST(MsfsStandInTest)
#include "MsfsStandInTest.moc"

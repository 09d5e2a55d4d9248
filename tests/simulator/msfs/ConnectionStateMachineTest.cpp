#include "simulator/msfs/ConnectionStateMachine.h"
#include "support/Columns.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <functional>

using namespace tarvo::simulator::msfs;
using tarvo::test::columns;
using tarvo::test::LogCapture;

namespace {

using Machine = ConnectionStateMachine;
using Step = std::function<void(Machine &)>;
using Lines = QList<QByteArray>;

/// The words of the tables below, and what each does.
const QHash<QByteArray, Step> steps{
    {"connect", [](Machine &m) { m.requestConnect(true); }},
    {"connect again", [](Machine &m) { m.requestConnect(false); }},
    {"opened", [](Machine &m) { m.onConnected(); }},
    {"data", [](Machine &m) { m.onDataReceived(); }},
    {"timeout 0", [](Machine &m) { m.onDataGroupTimeout(UpdateGroup::Position); }},
    {"timeout 2", [](Machine &m) { m.onDataGroupTimeout(UpdateGroup::Avionics); }},
    {"recovered 0", [](Machine &m) { m.onDataGroupRecovered(UpdateGroup::Position); }},
    {"recovered 2", [](Machine &m) { m.onDataGroupRecovered(UpdateGroup::Avionics); }},
    {"closed", [](Machine &m) { m.onDisconnected(); }},
    {"error 0", [](Machine &m) { m.onError(SimConnectError(0)); }},
    {"error 1", [](Machine &m) { m.onError(SimConnectError(1)); }},
    {"error 2", [](Machine &m) { m.onError(SimConnectError(2)); }},
    {"error 3", [](Machine &m) { m.onError(SimConnectError(3)); }},
    {"error 4", [](Machine &m) { m.onError(SimConnectError(4)); }},
};

/// A machine, and what it has said since it was last asked: its signals and its log lines, in their order.
class WatchedMachine
{
public:
    WatchedMachine()
    {
        QObject::connect(&m_machine, &Machine::stateChanged, &m_machine,
                         [this](ConnectionState from, ConnectionState to) {
                             // Told with the state already changed.
                             m_signals += QByteArray::number(int(from)) + '>' + QByteArray::number(int(to)) +
                                          (m_machine.state() == to ? "" : "!");
                         });
        QObject::connect(&m_machine, &Machine::shouldReconnect, &m_machine, [this] { m_signals += "reconnect"; });
        QObject::connect(&m_machine, &Machine::maxReconnectAttemptsReached, &m_machine,
                         [this] { m_signals += "over"; });
    }

    /// Does the words of a list such as "connect, opened, data".
    void does(const QByteArray &words)
    {
        const QList<QByteArray> list = words.isEmpty() ? QList<QByteArray>() : words.split(',');
        for (const QByteArray &word : list) {
            const Step step = steps.value(word.trimmed());
            QVERIFY2(step, word.constData());
            step(m_machine);
        }
    }
    QByteArray takeSignals() { return std::exchange(m_signals, {}).join(' '); }
    Lines takeLog()
    {
        Lines lines;
        const QStringList all = m_log.texts();
        for (qsizetype i = std::exchange(m_seen, all.size()); i < all.size(); ++i)
            lines.append(all[i].toLatin1());
        return lines;
    }
    int state() const { return int(m_machine.state()); }

private:
    LogCapture m_log;
    Machine m_machine;
    Lines m_signals;
    qsizetype m_seen = 0;
};

const QByteArray toConnected = "connect, opened, data";

} // namespace

class ConnectionStateMachineTest : public QObject
{
    Q_OBJECT

private slots:
    void beginsIdle()
    {
        WatchedMachine machine;
        QCOMPARE(machine.state(), 0);
        QCOMPARE(machine.takeLog(), Lines{"ConnectionStateMachine initialized in Idle state"});
        machine.does("opened");
        QCOMPARE(machine.takeLog(), Lines{"Unexpected onConnected from state: 0"});
        QCOMPARE(machine.state(), 0);
        QCOMPARE(machine.takeSignals(), QByteArray());
    }

    void oneStep_data()
    {
        columns<QByteArray, QByteArray, int, QByteArray, Lines>("before", "step", "state", "raised", "logged");
        const QByteArray idle;
        const QByteArray connecting = "connect";
        const QByteArray connected = toConnected;
        const QByteArray degraded = toConnected + ", timeout 0";
        const QByteArray down = "connect, closed";
        const auto transition = [](int from, int to) {
            return QByteArray::number(from) + " -> " + QByteArray::number(to);
        };
        const auto moved = [&](int from, int to) { return "State transition: " + transition(from, to); };
        const auto refused = [&](int from, int to) { return "Invalid state transition: " + transition(from, to); };
        const auto attempt = [](int number) {
            return "Triggering reconnect attempt " + QByteArray::number(number) + " / 5";
        };
        const auto add = [](const char *name, const QByteArray &before, const QByteArray &step, int state,
                            const QByteArray &raised, const Lines &logged) {
            QTest::newRow(name) << before << step << state << raised << logged;
        };

        add("connect when idle", idle, "connect", 1, "0>1", Lines{moved(0, 1)});
        add("connect when connecting", connecting, "connect", 1, "", Lines{"Cannot request connect from state: 1"});
        add("connect when connected", connected, "connect", 2, "", Lines{"Cannot request connect from state: 2"});
        add("connect when degraded", degraded, "connect", 3, "", Lines{"Cannot request connect from state: 3"});
        add("connect when down", down, "connect", 1, "4>1", Lines{moved(4, 1)});

        add("opened when connecting", connecting, "opened", 1, "",
            Lines{"SimConnect connected, waiting for data validation"});
        add("opened when connected", connected, "opened", 2, "", Lines{"Unexpected onConnected from state: 2"});
        add("opened when degraded", degraded, "opened", 3, "", Lines{"Unexpected onConnected from state: 3"});
        add("opened when down", down, "opened", 4, "", Lines{"Unexpected onConnected from state: 4"});

        add("data when idle", idle, "data", 0, "", Lines{});
        add("data when connecting", connecting, "data", 2, "1>2", Lines{moved(1, 2)});
        add("data when connected", connected, "data", 2, "", Lines{});
        add("data when degraded", degraded, "data", 3, "", Lines{});
        add("data when down", down, "data", 4, "", Lines{});

        add("timeout when idle", idle, "timeout 2", 0, "", Lines{});
        add("timeout when connecting", connecting, "timeout 2", 1, "", Lines{});
        add("timeout when connected", connected, "timeout 2", 3, "2>3",
            Lines{moved(2, 3), "Data group timed out, entering Degraded state: 2"});
        add("timeout when degraded", degraded, "timeout 2", 3, "", Lines{"Additional data group timed out: 2"});
        add("timeout when down", down, "timeout 2", 4, "", Lines{});

        add("recovered when connected", connected, "recovered 0", 2, "", Lines{});
        add("recovered when degraded", degraded, "recovered 0", 2, "3>2",
            Lines{"Data group recovered: 0", moved(3, 2)});
        add("another recovered when degraded", degraded, "recovered 2", 3, "", Lines{"Data group recovered: 2"});
        add("recovered when down", down, "recovered 0", 4, "", Lines{});

        add("closed when idle: counts nevertheless", idle, "closed", 0, "reconnect", Lines{refused(0, 4), attempt(1)});
        add("closed when connecting", connecting, "closed", 4, "1>4 reconnect", Lines{moved(1, 4), attempt(1)});
        add("closed when connected", connected, "closed", 4, "2>4 reconnect", Lines{moved(2, 4), attempt(1)});
        add("closed when degraded", degraded, "closed", 4, "3>4 reconnect", Lines{moved(3, 4), attempt(1)});
        add("closed when down", down, "closed", 4, "reconnect", Lines{refused(4, 4), attempt(2)});

        for (const int error : {0, 1, 4}) {
            const QByteArray step = "error " + QByteArray::number(error);
            add(step + " when connecting", connecting, step, 4, "1>4 reconnect",
                {"SimConnect error occurred: " + QByteArray::number(error), moved(1, 4), attempt(1)});
        }
        for (const int error : {2, 3}) {
            const QByteArray step = "error " + QByteArray::number(error);
            add("fatal " + step + " when connecting", connecting, step, 4, "1>4 over",
                {"SimConnect error occurred: " + QByteArray::number(error), moved(1, 4)});
        }
        add("error when idle: counts nevertheless", idle, "error 4", 0, "reconnect",
            Lines{"SimConnect error occurred: 4", refused(0, 4), attempt(1)});
        add("fatal error when idle", idle, "error 3", 0, "over", Lines{"SimConnect error occurred: 3", refused(0, 4)});
    }

    void oneStep()
    {
        QFETCH(QByteArray, before);
        QFETCH(QByteArray, step);
        WatchedMachine machine;
        machine.does(before);
        machine.takeSignals();
        machine.takeLog();
        machine.does(step);
        QTEST(machine.state(), "state");
        QTEST(machine.takeSignals(), "raised");
        QTEST(machine.takeLog(), "logged");
    }

    void manySteps_data()
    {
        columns<QByteArray, QByteArray>("done", "raised");
        const auto add = [](const char *name, const QByteArray &done, const QByteArray &raised) {
            QTest::newRow(name) << done << raised;
        };
        add("six failures in a row", toConnected + ", closed, closed, closed, closed, closed, closed",
            "0>1 1>2 2>4 reconnect reconnect reconnect reconnect reconnect over");
        add("a seventh, too", "connect, closed, closed, closed, closed, closed, closed, closed",
            "0>1 1>4 reconnect reconnect reconnect reconnect reconnect over over");
        add("data clear the count",
            "closed, closed, closed, connect again, data, closed, closed, closed, closed, closed, closed",
            "reconnect reconnect reconnect 0>1 1>2 2>4 reconnect reconnect reconnect reconnect reconnect over");
        add("further data don't touch it", toConnected + ", error 2, connect again, closed",
            "0>1 1>2 2>4 over 4>1 1>4 over");
        add("connect again keeps the count", "closed, closed, closed, closed, closed, connect again, closed",
            "reconnect reconnect reconnect reconnect reconnect 0>1 1>4 over");
        add("connect clears it", "closed, closed, closed, closed, closed, connect, closed",
            "reconnect reconnect reconnect reconnect reconnect 0>1 1>4 reconnect");
        add("a refused connect doesn't", "closed, closed, closed, closed, closed, connect again, connect, closed",
            "reconnect reconnect reconnect reconnect reconnect 0>1 1>4 over");
        add("a fatal error ends all attempts", "connect, error 2, connect again, closed", "0>1 1>4 over 4>1 1>4 over");
        add("of two failed groups both must recover",
            toConnected + ", timeout 0, timeout 2, recovered 0, data, recovered 2, data", "0>1 1>2 2>3 3>2");
        add("a close forgets the failed groups",
            toConnected + ", timeout 0, closed, connect, data, timeout 2, recovered 2",
            "0>1 1>2 2>3 3>4 reconnect 4>1 1>2 2>3 3>2");
        add("a fatal error keeps them", toConnected + ", timeout 0, error 3, connect, data, timeout 2, recovered 2",
            "0>1 1>2 2>3 3>4 over 4>1 1>2 2>3");
        add("a timeout while connecting isn't recorded", "connect, timeout 0, data, timeout 2, recovered 2",
            "0>1 1>2 2>3 3>2");
    }

    void manySteps()
    {
        QFETCH(QByteArray, done);
        WatchedMachine machine;
        machine.does(done);
        QTEST(machine.takeSignals(), "raised");
    }

    void givesUpWithALine()
    {
        WatchedMachine machine;
        machine.does("closed, closed, closed, closed, closed");
        machine.takeLog();
        machine.does("closed");
        const Lines lines{"Invalid state transition: 0 -> 4", "Max reconnect attempts reached, giving up"};
        QCOMPARE(machine.takeLog(), lines);
    }
};

TARVO_TEST(ConnectionStateMachineTest)
#include "ConnectionStateMachineTest.moc"

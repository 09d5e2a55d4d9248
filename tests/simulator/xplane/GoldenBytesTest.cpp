#include "XPlaneBench.h"
#include "model/VelocityVector.h"
#include "simulator/xplane/PluginMessages.h"
#include "simulator/xplane/PluginReports.h"
#include "support/Columns.h"
#include "support/SourceFolder.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace tarvo;
using namespace tarvo::simulator::xplane;
using simulator::Simulator;

namespace {

struct Golden
{
    QByteArray name;
    QByteArray bytes;
};

/// Hexadecimal bytes; "00*372" is a run of zeros.
QByteArray bytesOf(const QByteArray &cell)
{
    QByteArray bytes;
    for (const QByteArray &word : cell.simplified().split(' ')) {
        if (word.startsWith("00*"))
            bytes.append(word.sliced(3).toInt(), '\0');
        else
            bytes.append(QByteArray::fromHex(word));
    }
    return bytes;
}

/// The rows `name | bytes` of a file; no rows when it cannot be read.
QList<Golden> goldenFile(const char *name)
{
    QList<Golden> rows;
    QFile file(
        tarvo::test::sourceFile(QStringLiteral("tests/simulator/xplane/golden/%1").arg(QString::fromLatin1(name))));
    if (!file.open(QIODevice::ReadOnly))
        return rows;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.trimmed().isEmpty() || line.startsWith(';'))
            continue;
        const QByteArrayList cells = line.split('|');
        rows.append({.name = cells.first().trimmed(), .bytes = bytesOf(cells.last())});
    }
    return rows;
}

model::RemoteAircraft withAllKnown()
{
    model::RemoteAircraft one = test::remoteAircraft();
    model::AircraftConfiguration &config = one.configuration;
    config.isFullData = true;
    config.engines.present = true;
    config.engines.engine[1] = {.on = true, .isReversing = false};
    config.onGround = false;
    config.flapsPct = 25;
    config.gearDown = true;
    config.lights = {
        .strobeOn = true, .landingOn = false, .taxiOn = false, .beaconOn = true, .navOn = true, .present = true};
    return one;
}

/// Every message to the plugin, in the order of the file.
QList<Golden> messagesToThePlugin()
{
    const QString own = QStringLiteral("CCA1");
    const QString other = QStringLiteral("CCA2");
    const QString tower = QStringLiteral("ZBAA_TWR");
    const QString hi = QStringLiteral("hi");
    const model::RemoteAircraft one = test::remoteAircraft();
    const model::AircraftVisualState &at = one.visualState;
    return {
        {"VER", message::version()},
        {"CSL", message::csl({QStringLiteral("/a"), QStringLiteral("/b")})},
        {"ADD", message::add(one)},
        {"ACCONF full", message::configuration(withAllKnown())},
        {"ACCONF gear alone", message::configuration(test::aircraftWithGearDown())},
        {"DEL", message::remove(own, QStringLiteral("Stale"))},
        {"DELALL", message::removeAll()},
        {"ATC",
         message::controllers({test::station(tower, 118275), test::station(QStringLiteral("ZBAA_GND"), 121800)})},
        {"ATC with nobody", message::controllers({})},
        {"POS", message::position(one, at)},
        {"FSTPOS", message::fastPosition(one, at, {8, 9, 10}, {0.25, 0.5, 0.75})},
        {"HB", message::heartbeat(own)},
        {"RDIOSENT", message::radioSent(QStringLiteral("你好"))},
        {"RDIORCVD", message::radioReceived(tower, hi, true)},
        {"NOTIF", message::notification(hi, 0xff8000)},
        {"PRIVSENT", message::privateSent(other, hi)},
        {"PRIVRCVD", message::privateReceived(other, hi)},
        {"CONN", message::networkConnected(own, QStringLiteral("AB-CD"), false)},
        {"DISCON", message::networkDisconnected()},
        {"STATION_CALLSIGN", message::stationCallsign(1, tower)},
    };
}

/// Every message from the plugin, in the order of the file.
QList<std::pair<QByteArray, PluginReport>> reportsOfThePlugin()
{
    const QString own = QStringLiteral("CCA1");
    return {
        {"from VER", report::Version{65536}},
        {"from VER without a version", report::Version{std::nullopt}},
        {"from CSL good", report::Csl{true}},
        {"from CSL bad", report::Csl{false}},
        {"from ADDED", report::Added{own}},
        {"from DELETED", report::Deleted{own}},
        {"from REQSTATION", report::StationRequest{QStringLiteral("ZBAA_TWR")}},
        {"from RDIOSENT", report::RadioSent{QStringLiteral("你好")}},
        {"from PRIVSENT", report::PrivateSent{QStringLiteral("CCA2"), QStringLiteral("hi")}},
        {"from FORCEDISC", report::ForceDisconnect{QStringLiteral("bye")}},
        {"from FORCEDISC without a reason", report::ForceDisconnect{}},
        {"from SHUTDOWN", report::Shutdown{}},
    };
}

} // namespace

/// Holds what travels between the client and X-Plane against the bytes in golden/.
class GoldenBytesTest : public QObject
{
    Q_OBJECT

private slots:
    void packets()
    {
        const QList<Golden> golden = goldenFile("packets.txt");
        QCOMPARE(golden.size(), 53 + 8);
        test::AdapterBench bench;
        QSignalSpy radio(bench.adapter.get(), &Simulator::radioStackStateChanged);
        bench.dial();
        bench.adapter->reconnectSimulator();
        bench.adapter->setTransponderCode(2000);
        bench.adapter->setCom1Frequency(118275);
        bench.adapter->setCom2Frequency(121800);
        bench.adapter->transponderIdent();
        bench.adapter->transponderModeToggle();
        TRY_COMPARE(bench.simulator.datagrams().size(), golden.size() - 2);
        QVERIFY(bench.report(10, 3, [&] { // in mode C
            bench.publish();
            return !radio.isEmpty() && radio.last().first().value<model::RadioStackState>().squawkingModeC;
        }));
        bench.adapter->transponderModeToggle();
        TRY_COMPARE(bench.simulator.datagrams().size(), golden.size());
        for (qsizetype i = 0; i < golden.size(); ++i)
            QVERIFY2(bench.simulator.datagrams().at(i) == golden.at(i).bytes, golden.at(i).name.constData());
    }

    void messages_data()
    {
        tarvo::test::columns<QByteArray, QByteArray, QByteArray, QByteArray>("name", "packed", "nameInFile", "golden");
        const QList<Golden> golden = goldenFile("messages.txt");
        const QList<Golden> messages = messagesToThePlugin();
        for (qsizetype i = 0; i < messages.size(); ++i) {
            const Golden row = golden.value(i);
            QTest::newRow(messages.at(i).name.constData())
                << messages.at(i).name << messages.at(i).bytes << row.name << row.bytes;
        }
    }

    void messages()
    {
        QFETCH(QByteArray, packed);
        QFETCH(QByteArray, golden);
        QFETCH(QByteArray, name);
        QTEST(name, "nameInFile");
        QCOMPARE(packed.toHex(' '), golden.toHex(' '));
    }

    void reports_data()
    {
        tarvo::test::columns<QByteArray, PluginReport, QByteArray, QByteArray>("name", "report", "nameInFile",
                                                                               "golden");
        const QList<Golden> golden = goldenFile("messages.txt");
        const qsizetype first = messagesToThePlugin().size();
        const auto reports = reportsOfThePlugin();
        for (qsizetype i = 0; i < reports.size(); ++i) {
            const Golden row = golden.value(first + i);
            QTest::newRow(reports.at(i).first.constData())
                << reports.at(i).first << reports.at(i).second << row.name << row.bytes;
        }
    }

    void reports()
    {
        QFETCH(PluginReport, report);
        QFETCH(QByteArray, golden);
        QFETCH(QByteArray, name);
        QTEST(name, "nameInFile");
        QVERIFY(unpackReport(golden) == report);
    }

    void everyMessageOfTheFileIsReplayed()
    {
        QCOMPARE(goldenFile("messages.txt").size(), messagesToThePlugin().size() + reportsOfThePlugin().size());
    }
};

TARVO_TEST(GoldenBytesTest)
#include "GoldenBytesTest.moc"

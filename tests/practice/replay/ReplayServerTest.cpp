#include "practice/replay/ReplayServer.h"
#include "practice/PracticeNetwork.h"
#include "practice/control/Controls.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTcpSocket>

using namespace tarvo::practice;
using tarvo::test::ManualClock;

namespace {

const RecordedConnection firstRecorded{
    u"AB1"_qs, {{0, u"$DISERVER:CLIENT:1:ab"_qs}}, {{0, u"#TMSERVER:AB1:é"_qs}, {1000, u"b"_qs}, {1000, u"c"_qs}}};
const RecordedConnection laterRecorded{{}, {}, {{500, u"d"_qs}}};

/// A client of a replay, on a clock that is moved by hand.
struct ReplayBench
{
    explicit ReplayBench(double speed = 1, bool stepwise = false)
        : server({.recording = {firstRecorded, laterRecorded}, .speed = speed, .stepwise = stepwise}, clock)
    {
        server.listen(QHostAddress::LocalHost, 0);
        client.connectToHost(QHostAddress::LocalHost, server.port());
    }
    bool hears(const QByteArray &expected)
    {
        heard.clear();
        return tarvo::test::waitFor([&] { return (heard += client.readAll()) == expected; });
    }
    /// Another one connects.
    bool isGreeted(QTcpSocket &other, const QByteArray &expected)
    {
        other.connectToHost(QHostAddress::LocalHost, server.port());
        heard.clear();
        return tarvo::test::waitFor([&] { return (heard += other.readAll()) == expected; });
    }
    bool logIn(QTcpSocket &socket, const QByteArray &line = "#APAB1:SERVER:1001:x:1:9:5:Li\r\n")
    {
        const QSignalSpy loggedIn(&server, &ReplayServer::clientLoggedIn);
        socket.write(line);
        return tarvo::test::waitFor([&] { return loggedIn.size() == 1; });
    }
    bool logIn() { return logIn(client); }

    ManualClock clock;
    ReplayServer server;
    QTcpSocket client;
    QByteArray heard;
};

} // namespace

class ReplayServerTest : public QObject
{
    Q_OBJECT

private slots:
    void saysWhatIsDue_data()
    {
        QTest::addColumn<double>("speed");
        QTest::addColumn<qint64>("ms");
        QTest::newRow("at its own pace") << 1.0 << qint64(1000);
        QTest::newRow("ten times as fast") << 10.0 << qint64(100);
        QTest::newRow("half as fast") << 0.5 << qint64(2000);
    }
    void saysWhatIsDue()
    {
        QFETCH(const double, speed);
        QFETCH(const qint64, ms);
        ReplayBench bench(speed);
        QVERIFY(bench.hears("$DISERVER:CLIENT:1:ab\r\n"));
        QCOMPARE(bench.server.linesLeft(), 0);
        QVERIFY(bench.logIn());
        QVERIFY(bench.hears("#TMSERVER:AB1:\xe9\r\n"));
        const QSignalSpy finished(&bench.server, &ReplayServer::finished);
        bench.clock.advance(ms - 1);
        bench.server.sendDue();
        QCOMPARE(bench.server.linesLeft(), 2);
        bench.clock.advance(1);
        bench.server.sendDue();
        QVERIFY(bench.hears("b\r\nc\r\n"));
        QCOMPARE(finished.size(), 1);
        QCOMPARE(bench.client.state(), QAbstractSocket::ConnectedState);
    }

    void saysNothingBeforeTheLogin()
    {
        ReplayBench bench;
        QVERIFY(bench.hears("$DISERVER:CLIENT:1:ab\r\n"));
        QVERIFY(!bench.server.step(1));
        bench.clock.advance(5000);
        bench.server.sendDue();
        QVERIFY(bench.logIn(bench.client, "$IDAB1:SERVER:x\r\n#AAAB1:SERVER:Li:1001:x:1:9\r\n"));
        QVERIFY(bench.hears("#TMSERVER:AB1:\xe9\r\n")); // its time begins with the login
    }

    void goesStepByStep()
    {
        ReplayBench bench(1, true);
        QVERIFY(bench.hears("$DISERVER:CLIENT:1:ab\r\n") &&
                bench.logIn(bench.client, "#APXY9:SERVER:1001:x:1:9:5:Li\r\n"));
        bench.clock.advance(5000);
        QCOMPARE(bench.server.nextMs(), 0);
        QVERIFY(bench.server.step(1));
        QVERIFY(bench.hears("#TMSERVER:XY9:\xe9\r\n")); // and under another callsign
        QCOMPARE(bench.server.nextMs(), 1000);
        QVERIFY(bench.server.step(100));
        QVERIFY(bench.hears("b\r\nc\r\n"));
        QVERIFY(!bench.server.step(1));
    }

    void aRecordingWithoutLinesEndsAtOnce()
    {
        ReplayServer server({.recording = {{u"AB1"_qs, {}, {}}}});
        QVERIFY(server.listen(QHostAddress::LocalHost, 0));
        const QSignalSpy finished(&server, &ReplayServer::finished);
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, server.port());
        client.write("#APAB1:SERVER\r\n");
        TRY_COMPARE(finished.size(), 1);
    }

    void anEmptyCallsignIsOne()
    {
        ReplayBench bench;
        QVERIFY(bench.hears("$DISERVER:CLIENT:1:ab\r\n") &&
                bench.logIn(bench.client, "#AP:SERVER:1001:x:1:9:5:Li\r\n"));
        QCOMPARE(bench.server.linesLeft(), 3);
        bench.clock.advance(1000);
        bench.server.sendDue();
        QVERIFY(bench.hears("#TMSERVER::\xe9\r\nb\r\nc\r\n"));
    }

    void eachClientPlaysTheNext()
    {
        ReplayBench bench;
        QVERIFY(bench.hears("$DISERVER:CLIENT:1:ab\r\n") && bench.logIn());
        QTcpSocket second;
        QVERIFY(bench.isGreeted(second, "$DISERVER:CLIENT:replay:0000000000000000\r\n"));
        QCOMPARE(bench.server.linesLeft(), 3);
        QVERIFY(bench.logIn(second)); // takes the first one's place
        TRY_COMPARE(bench.client.state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(bench.server.linesLeft(), 1);
        second.abort();
        TRY_COMPARE(bench.server.linesLeft(), 0);
        QTcpSocket third;
        QVERIFY(bench.isGreeted(third, "$DISERVER:CLIENT:1:ab\r\n"));
    }

    void whoOnlyLooksChangesNothing()
    {
        ReplayBench bench;
        QVERIFY(bench.hears("$DISERVER:CLIENT:1:ab\r\n"));
        QTcpSocket early;
        QVERIFY(bench.isGreeted(early, "$DISERVER:CLIENT:1:ab\r\n"));
        QVERIFY(bench.logIn());
        QVERIFY(bench.hears("#TMSERVER:AB1:\xe9\r\n"));
        QTcpSocket late;
        for (int look = 0; look < 3; ++look) {
            QVERIFY(bench.isGreeted(late, "$DISERVER:CLIENT:replay:0000000000000000\r\n"));
            late.abort();
        }
        early.write("GET / HTTP/1.1\r\n\r\n");
        bench.clock.advance(1000);
        bench.server.sendDue();
        QVERIFY(bench.hears("b\r\nc\r\n"));
        bench.server.close();
        TRY_COMPARE(early.state(), QAbstractSocket::UnconnectedState);
    }

    void aClientThatLeavesEndsIt()
    {
        ReplayBench bench;
        QVERIFY(bench.hears("$DISERVER:CLIENT:1:ab\r\n") && bench.logIn());
        bench.client.abort();
        TRY_COMPARE(bench.server.linesLeft(), 0);
        QVERIFY(!bench.server.step(1));
    }

    void servesInTheNetwork()
    {
        PracticeSettings settings = PracticeSettings::ephemeral();
        settings.simulator = false;
        PracticeNetwork plain(settings);
        QVERIFY(!plain.replay() && !Controls(plain).perform(u"step"_qs, {}));
        settings.replay = {.recording = {firstRecorded}, .stepwise = true};
        PracticeNetwork network(settings);
        QVERIFY(network.start());
        QCOMPARE(network.fsd().port(), 0);
        const Controls controls(network);
        QVERIFY(!controls.perform(u"step"_qs, {})); // nobody is there
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, network.replay()->port());
        client.write("#APAB1:SERVER:1001:x:1:9:5:Li\r\n");
        TRY_COMPARE(network.replay()->linesLeft(), 3);
        QVERIFY(!controls.perform(u"step"_qs, {{u"lines"_qs, u"0"_qs}}));
        QVERIFY(controls.perform(u"step"_qs, {}));
        QCOMPARE(network.replay()->linesLeft(), 2);
        QVERIFY(controls.perform(u"step"_qs, {{u"lines"_qs, u"2"_qs}}));
        QCOMPARE(network.replay()->linesLeft(), 0);
    }
};

TARVO_TEST(ReplayServerTest)
#include "ReplayServerTest.moc"

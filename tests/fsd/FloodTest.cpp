#include "fsd/FsdClient.h"
#include "fsd/pdu/Ping.h"
#include "support/FsdPeer.h"
#include "support/MainThreadWatch.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

#include <algorithm>

using tarvo::fsd::FsdClient;
using tarvo::fsd::pdu::Ping;
using tarvo::test::FsdPeer;
using tarvo::test::MainThreadWatch;
using tarvo::test::ManualClock;

namespace {

QByteArray pings(int count, int from = 0)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes += "$PIS:C:" + QByteArray::number(from + i) + "\r\n";
    return bytes;
}

QStringList numbers(int count)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts << QString::number(i);
    return texts;
}

/// A connected client to which each ping is a millisecond's work.
struct Slow
{
    ManualClock clock;
    FsdPeer peer;
    FsdClient client{nullptr, clock};
    QStringList order;
    QSignalSpy turns{client.findChild<QTimer *>(), &QTimer::timeout};

    Slow()
    {
        QObject::connect(&client, &FsdClient::raisePingReceived, &client, [this](const Ping &ping) {
            clock.advance(1);
            order << ping.timestamp;
        });
        QObject::connect(&client, &FsdClient::raiseNetworkError, &client,
                         [this](const QString &text) { order << text.section(u':', 0, 0); });
        QObject::connect(&client, &FsdClient::raiseNetworkDisconnected, &client, [this] { order << u"over"_qs; });
    }
    bool open()
    {
        return client.connectToServer(peer.address(), peer.port()) &&
               tarvo::test::waitFor([this] { return client.isConnected(); }) && peer.waitForConnection();
    }
};

constexpr int perTurn = FsdClient::longestTurnMs;

} // namespace

/// More lines than can be handled at once.
class FloodTest : public QObject
{
    Q_OBJECT

private slots:
    void linesAreHandledForAWhileAndThenTheEventLoopTurns()
    {
        Slow net;
        QVERIFY(net.open());
        net.client.receive(pings(20));
        QCOMPARE(net.order, numbers(perTurn));
        TRY_COMPARE(net.order, numbers(20));
        QCOMPARE(net.turns.count(), 2);
    }

    void whatComesMeanwhileWaitsBehind()
    {
        Slow net;
        QVERIFY(net.open());
        net.client.receive(pings(20));
        net.client.receive(pings(20, 20));
        QVERIFY(net.order.size() < 40);
        net.peer.injectBytes(pings(20, 40));
        TRY_COMPARE(net.order, numbers(60));
    }

    void aLoneCharacterIsLostAlsoWhileLinesWait()
    {
        Slow net;
        QVERIFY(net.open());
        net.client.receive(pings(20));
        net.client.receive("Z");
        net.client.receive(pings(1, 20));
        TRY_COMPARE(net.order, numbers(21));
    }

    void whatIsTooMuchStaysWithTheServer()
    {
        constexpr qint64 bound = 1 << 20;
        Slow net;
        QVERIFY(net.open());
        auto *socket = net.client.findChild<QTcpSocket *>();
        qint64 mostUnread = 0;
        connect(&net.client, &FsdClient::raisePingReceived, this,
                [&] { mostUnread = std::max(mostUnread, socket->bytesAvailable()); });
        const QByteArray line = "$PIS:C:" + QByteArray(16'000, 'x') + "\r\n";
        const int lines = int(4 * bound / line.size());
        net.client.receive(line.repeated(lines)); // so much that the socket has to wait
        net.peer.injectBytes(line.repeated(lines));
        TRY_COMPARE(net.order.size(), 2 * lines);
        QVERIFY(mostUnread > 0 && mostUnread <= bound);
    }

    void aDisconnectForgetsWhatWaits()
    {
        Slow net;
        QVERIFY(net.open());
        net.client.receive(pings(20) + "$PIS:C:ha");
        net.client.disconnectFromServer();
        QVERIFY(net.open());
        net.peer.injectBytes(pings(1, 99));
        TRY_COMPARE(net.order, numbers(perTurn) + QStringList({u"over"_qs, u"99"_qs}));
    }

    void aNewConnectionForgetsWhatWaits()
    {
        Slow net;
        QVERIFY(net.open());
        net.client.receive(pings(20) + "$PIS:C:ha");
        QVERIFY(net.client.connectToServer(net.peer.address(), net.peer.port()));
        QVERIFY(net.peer.waitForConnection(2));
        net.peer.injectBytes(pings(1, 99));
        TRY_COMPARE(net.order, numbers(perTurn) + QStringList{u"99"_qs});
    }

    void theServersCloseComesBehindTheLinesThatWait()
    {
        Slow net;
        QVERIFY(net.open());
        net.peer.injectBytes(pings(1000));
        net.peer.closeConnection();
        TRY_COMPARE(net.order.size(), 1002);
        QCOMPARE(net.order, numbers(1000) + QStringList({u"RemoteHostClosedError"_qs, u"over"_qs}));
    }

    void aKillAmongTheLinesThatWaitEndsTheConnectionOnce()
    {
        Slow net;
        QVERIFY(net.open());
        connect(&net.client, &FsdClient::raiseKillRequestReceived, &net.client, &FsdClient::disconnectFromServer);
        net.peer.injectBytes(pings(20) + "$!!S:C:bye\r\n" + pings(20));
        net.peer.closeConnection();
        TRY_COMPARE(net.order, numbers(20) + QStringList{u"over"_qs});
        QVERIFY(net.open());
        QVERIFY(net.peer.expectNothing());
        QCOMPARE(net.order.size(), 21);
    }

    /// Lines of the old server that wait come before those of the new one; its half line is forgotten.
    void aServerChangeAmongTheLinesThatWait()
    {
        Slow net;
        QVERIFY(net.open());
        FsdPeer second(u"127.0.0.2"_qs, net.peer.port());
        net.peer.injectBytes(pings(20) + "$XXS:C:127.0.0.2\r\n" + pings(2000, 20) + "$PIS:C:ha");
        net.peer.closeConnection();
        QVERIFY(second.waitForConnection());
        second.injectBytes(pings(1, 2020));
        TRY_COMPARE(net.order.size(), 2021);
        QCOMPARE(net.order, numbers(2021));
        QVERIFY(second.expectNothing()); // the client is there
    }

    /// Nobody is where it leads, and the old server has gone: what it said before that is heard all the same.
    void aServerChangeThatFailsAmongTheLinesThatWait()
    {
        Slow net;
        QVERIFY(net.open());
        net.peer.injectBytes(pings(20) + "$XXS:C:127.0.0.2\r\n" + pings(2000, 20));
        net.peer.closeConnection();
        TRY_COMPARE(net.order.size(), 2021);
        QCOMPARE(net.order, numbers(2020) << u"over"_qs);
    }

    void theEventLoopTurnsInAFlood_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("count");
        QTest::newRow("bad lines") << QByteArray("x\r\n") << 1'000'000;
        QTest::newRow("empty lines") << QByteArray("\r\n") << 1'000'000;
        QTest::newRow("flight plans") << QByteArray("$FPA:B:I:B738:450:ZBAA:1:1:F310:ZSSS:1:1:3:0:ZSPD:r:r\r\n")
                                      << 100'000;
        QTest::newRow("lines that are too long") << QByteArray(20'000, 'x') + "\r\n" << 1000;
        QTest::newRow("no line at all") << QByteArray("x") << 20'000'000;
    }
    void theEventLoopTurnsInAFlood()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, count);
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        count /= 10; // an exception for each line takes a sanitizer minutes
#endif
        FsdPeer peer;
        FsdClient client;
        QVERIFY(client.connectToServer(peer.address(), peer.port()));
        QVERIFY(peer.waitForConnection());
        QSignalSpy disconnected(&client, &FsdClient::raiseNetworkDisconnected);
        const QtMessageHandler told =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        peer.injectBytes(line.repeated(count));
        peer.closeConnection();
        MainThreadWatch watch;
        const bool over = tarvo::test::waitFor([&] { return disconnected.count() > 0; });
        qInstallMessageHandler(told);
        QVERIFY(over);
        VERIFY_NO_STANDSTILL(watch);
    }
};

TARVO_TEST(FloodTest)
#include "FloodTest.moc"

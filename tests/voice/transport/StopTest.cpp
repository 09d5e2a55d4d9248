#include "TransportStage.h"

#include "support/TestRegistry.h"

#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <functional>

using namespace tarvo;
using namespace tarvo::test;
using voice::NetworkHandler;

namespace {

/// A server whose queue of connections is full, so that another one neither succeeds nor fails.
class FullServer
{
public:
    FullServer()
    {
        m_server.setListenBacklogSize(1);
        m_server.listen(QHostAddress::LocalHost);
        m_server.pauseAccepting();
        do {
            m_waiting.push_back(std::make_unique<QTcpSocket>());
            m_waiting.back()->connectToHost(QHostAddress::LocalHost, m_server.serverPort());
        } while (m_waiting.back()->waitForConnected(500) && m_waiting.size() < 10);
    }
    bool isFull() const { return m_waiting.back()->state() != QAbstractSocket::ConnectedState; }
    /// True once somebody waits to be connected; always where the system doesn't tell.
    bool keepsSomebodyWaiting() const
    {
        QFile table(u"/proc/net/tcp"_qs);
        if (!table.open(QFile::ReadOnly))
            return true;
        const QByteArray port = QByteArray::number(m_server.serverPort(), 16).toUpper().rightJustified(4, '0');
        return table.readAll().contains("0100007F:" + port + " 02"); // to it, and SYN sent
    }
    ServiceEndpoints endpoints() const
    {
        ServiceEndpoints endpoints;
        endpoints.voiceHost = u"127.0.0.1"_qs;
        endpoints.voiceTcpPort = m_server.serverPort();
        return endpoints;
    }

private:
    QTcpServer m_server;
    std::vector<std::unique_ptr<QTcpSocket>> m_waiting;
};

using Ending = std::function<void(Listener &)>;

void addEndings()
{
    QTest::addColumn<Ending>("end");
    QTest::addColumn<QStringList>("heard");
    QTest::newRow("stop") << Ending([](Listener &client) { client.handler->stop(); }) << QStringList();
    QTest::newRow("disconnect") << Ending([](Listener &client) { client.handler->disconnectFromServer(); })
                                << QStringList{u"disconnected"_qs};
    QTest::newRow("destroy") << Ending([](Listener &client) { client.handler.reset(); }) << QStringList();
}

} // namespace

/// However far it has come, the end comes soon, and nothing is heard of it any more.
class StopTest : public QObject
{
    Q_OBJECT

private slots:
    void aHandlerThatNeverConnected_data() { addEndings(); }
    void aHandlerThatNeverConnected()
    {
        QFETCH(Ending, end);
        QFETCH(QStringList, heard);
        Listener client{ServiceEndpoints()};
        end(client);
        QCOMPARE(client.order, heard);
    }

    void duringTheConnect_data() { addEndings(); }
    void duringTheConnect()
    {
        QFETCH(Ending, end);
        QFETCH(QStringList, heard);
        FullServer server;
        QVERIFY(server.isFull());
        Listener client(server.endpoints());
        QElapsedTimer time;
        time.start();
        client.connectToServer();
        TRY_VERIFY(server.keepsSomebodyWaiting());
        end(client);
        client.waitForAttempts();
        QVERIFY(time.elapsed() < soonMs);
        QCoreApplication::processEvents();
        QCOMPARE(client.order, heard);
    }

    void withTheNewsOnItsWay_data() { addEndings(); }
    void withTheNewsOnItsWay()
    {
        QFETCH(Ending, end);
        QFETCH(QStringList, heard);
        Session session;
        session.handler().connectToServer(token); // whose signal waits for the event loop
        end(session.client);
        QVERIFY(session.peer.untilClosed().startsWith(token.toUtf8()));
        QCOMPARE(session.order(), heard);
    }

    void connected_data() { addEndings(); }
    void connected()
    {
        QFETCH(Ending, end);
        QFETCH(QStringList, heard);
        Session session;
        QVERIFY(session.open());
        QElapsedTimer time;
        time.start();
        end(session.client);
        QVERIFY(time.elapsed() < soonMs);
        QVERIFY(!session.peer.untilClosed().isNull());
        QCOMPARE(session.order(), QStringList{u"connected"_qs} + heard);
    }

    /// The thread that receives waits for room in the inbox.
    void inAFlood_data() { addEndings(); }
    void inAFlood()
    {
        QFETCH(Ending, end);
        QFETCH(QStringList, heard);
        Session session;
        QVERIFY(session.open());
        session.peer.injectBytes((messageLine("x") + "\n").repeated(10'000));
        TRY_VERIFY(session.order().size() > 1);
        const qsizetype before = session.order().size();
        end(session.client);
        QVERIFY(!session.peer.untilClosed().isNull());
        QCOMPARE(session.order().mid(before), heard);
    }

    void afterALoss_data() { addEndings(); }
    void afterALoss()
    {
        QFETCH(Ending, end);
        QFETCH(QStringList, heard);
        Session session;
        QVERIFY(session.open());
        session.peer.closeConnection();
        TRY_COMPARE(session.order().last(), u"disconnected"_qs);
        end(session.client);
        QCOMPARE(session.order().mid(2), heard);
    }

    void inASlot_data()
    {
        QTest::addColumn<QString>("when");
        QTest::addColumn<Ending>("end");
        const std::pair<const char *, Ending> endings[] = {
            {"stop", [](Listener &client) { client.handler->stop(); }},
            {"destroy", [](Listener &client) { client.handler.reset(); }}};
        for (const QString &when : {u"connected"_qs, u"line a"_qs, u"voice A"_qs, u"disconnected"_qs}) {
            for (const auto &[name, end] : endings)
                QTest::addRow("%s at \"%s\"", name, qPrintable(when)) << when << end;
        }
    }
    void inASlot()
    {
        QFETCH(QString, when);
        QFETCH(Ending, end);
        Session session;
        session.client.then = [&](const QString &what) {
            if (what == when)
                end(session.client);
        };
        session.client.connectToServer();
        QVERIFY(session.peer.expect(token.toUtf8()));
        session.peer.sendDatagram(datagramOf("A"));
        session.peer.inject(messageLine("a"));
        TRY_VERIFY(session.order().contains(when) || session.order().size() == 3); // voice and line in any order
        session.peer.closeConnection();
        TRY_VERIFY(session.order().contains(when));
        QCoreApplication::processEvents();
        QCOMPARE(session.order().last(), when);
    }

    void aPilotWhoConnectsAnewInTheSlotOfTheEndStaysConnected()
    {
        Session session;
        QVERIFY(session.open());
        session.client.then = [&](const QString &what) {
            if (what == u"disconnected"_qs)
                session.handler().connectToServer(token);
        };
        session.handler().disconnectFromServer();
        QVERIFY(session.peer.waitForConnection(2));
        session.peer.inject(messageLine("a"));
        TRY_COMPARE(session.order().mid(1), (QStringList{u"disconnected"_qs, u"connected"_qs, u"line a"_qs}));
    }

    void anAttemptThatWasCalledOffBeforeItsTaskBegan_data() { addEndings(); }
    void anAttemptThatWasCalledOffBeforeItsTaskBegan()
    {
        QFETCH(Ending, end);
        QFETCH(QStringList, heard);
        Session session;
        const std::function<void()> task = session.handler().attempt(token);
        end(session.client);
        task();
        QCoreApplication::processEvents();
        QCOMPARE(session.order(), heard);
        Listener other(session.peer.endpoints());
        other.connectToServer();
        QVERIFY(session.peer.expect(token.toUtf8()));
        QCOMPARE(session.peer.connectionCount(), 1);
    }

    void anAttemptThatWasOvertakenBeforeItsTaskBegan()
    {
        Session session;
        const std::function<void()> task = session.handler().attempt(u"old"_qs);
        session.client.connectToServer();
        task();
        QVERIFY(session.peer.expect(token.toUtf8()));
        TRY_COMPARE(session.order(), QStringList{u"connected"_qs});
        QCOMPARE(session.peer.connectionCount(), 1);
    }
};

TARVO_TEST(StopTest)
#include "StopTest.moc"

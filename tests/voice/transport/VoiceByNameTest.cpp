#include "TransportStage.h"

#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTest>

using namespace tarvo;
using namespace tarvo::test;

namespace {

ServiceEndpoints called(const QString &name, ServiceEndpoints endpoints)
{
    endpoints.voiceHost = name;
    return endpoints;
}

/// How many look-ups the name server has not answered yet.
qsizetype asked()
{
    QFile table(u"/proc/net/udp"_qs);
    return table.open(QFile::ReadOnly) ? table.readAll().count(" 0100007F:0035 01 ") : 0; // sockets connected to it
}

} // namespace

/// The server's name is looked up at a name server of the test's own, which scripts/lib/name_server.py starts.
class VoiceByNameTest : public QObject
{
    Q_OBJECT

private slots:
    void aServerIsFoundByName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("address");
        QTest::newRow("at once") << u"voice.practice.test"_qs << u"127.0.0.1"_qs;
        QTest::newRow("after a while") << u"late.practice.test"_qs << u"127.0.0.1"_qs;
        QTest::newRow("IPv6 before IPv4") << u"both.practice.test"_qs << u"::1"_qs;
    }
    void aServerIsFoundByName()
    {
        QFETCH(QString, name);
        QFETCH(QString, address);
        const LogCapture log;
        VoicePeer peer{QHostAddress(address)};
        Listener client(called(name, peer.endpoints()));
        client.connectToServer();
        TRY_COMPARE(client.order, QStringList{u"connected"_qs});
        QVERIFY(peer.expect(token.toUtf8()));
        QVERIFY(!peer.nextDatagram().isNull());
        QVERIFY(
            log.contains(u"TCP connection established with %1:%2"_qs.arg(address).arg(peer.endpoints().voiceTcpPort)));
    }

    /// Though the server is at the second.
    void onlyTheFirstAddressIsTried()
    {
        VoicePeer peer;
        const auto endpoints = called(u"both.practice.test"_qs, peer.endpoints());
        Listener client(endpoints);
        client.connectToServer();
        TRY_COMPARE(client.order.size(), 1);
        const QString start = u"error: Failed to connect to server at both.practice.test (ip=::1:%1): "_qs;
        QVERIFY(client.order.first().startsWith(start.arg(endpoints.voiceTcpPort)));
        QCOMPARE(peer.connectionCount(), 0);
    }

    void aNameThatNobodyHas()
    {
        Listener client(called(u"nobody.practice.test"_qs, {}));
        client.connectToServer();
        TRY_COMPARE(client.order, QStringList{u"error: Failed to resolve server address nobody.practice.test"_qs});
    }

    void aPilotWhoLeavesDuringTheLookUp_data()
    {
        using Ending = std::function<void(Listener &)>;
        QTest::addColumn<QString>("name");
        QTest::addColumn<Ending>("end");
        QTest::addColumn<QStringList>("heard");
        for (const QString &name : {u"late.practice.test"_qs, u"dead.practice.test"_qs}) {
            QTest::addRow("stop, %s", qPrintable(name))
                << name << Ending([](Listener &client) { client.handler->stop(); }) << QStringList();
            QTest::addRow("disconnect, %s", qPrintable(name))
                << name << Ending([](Listener &client) { client.handler->disconnectFromServer(); })
                << QStringList{u"disconnected"_qs};
            QTest::addRow("destroy, %s", qPrintable(name))
                << name << Ending([](Listener &client) { client.handler.reset(); }) << QStringList();
        }
    }
    void aPilotWhoLeavesDuringTheLookUp()
    {
        QFETCH(QString, name);
        QFETCH(std::function<void(Listener &)>, end);
        QFETCH(QStringList, heard);
        const LogCapture log;
        VoicePeer peer;
        Listener client(called(name, peer.endpoints()));
        QElapsedTimer time;
        time.start();
        const qsizetype before = asked();
        client.connectToServer();
        TRY_VERIFY(asked() > before);
        end(client);
        client.waitForAttempts();
        QVERIFY(time.elapsed() < soonMs);
        QCoreApplication::processEvents();
        QCOMPARE(client.order, heard);
        QCOMPARE(peer.connectionCount(), 0);
        QCOMPARE(log.texts(QtWarningMsg), QStringList()); // it is no fault
    }

    void anotherAttemptDoesNotWaitForTheLookUpThatWasLeft()
    {
        VoicePeer peer;
        const auto endpoints = peer.endpoints();
        Listener client(called(u"dead.practice.test"_qs, endpoints));
        const qsizetype before = asked();
        client.connectToServer();
        TRY_VERIFY(asked() > before);
        QElapsedTimer time;
        time.start();
        client.connectToServer(); // takes the place of the first
        client.attempts.front().join();
        client.attempts.erase(client.attempts.begin());
        QVERIFY(time.elapsed() < soonMs);
        TRY_VERIFY(asked() > before + 1);
        QVERIFY(client.order.isEmpty());
    }
};

TARVO_TEST(VoiceByNameTest)
#include "VoiceByNameTest.moc"

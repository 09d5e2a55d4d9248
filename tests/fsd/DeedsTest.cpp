#include "fsd/FsdClient.h"
#include "fsd/pdu/KillRequest.h"
#include "fsd/pdu/Ping.h"
#include "support/FsdPeer.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QTest>

#include <functional>

using tarvo::fsd::FsdClient;
using tarvo::test::FsdPeer;

namespace {

/// One whole connection: what is heard of it, and a deed that is done inside one of its signals.
struct Story
{
    FsdPeer peer;
    FsdPeer next; ///< where the deed connects anew
    FsdClient client;
    QStringList heard;
    QString trigger;
    std::function<void()> deed;
    qsizetype heardAtDeed = -1;

    Story()
    {
        hear(&FsdClient::raiseNetworkConnected, u"connected"_qs);
        hear(&FsdClient::raiseNetworkDisconnected, u"disconnected"_qs);
        hear(&FsdClient::raiseNetworkError, u"error"_qs);
        hear(&FsdClient::raiseRawDataReceived, u"received"_qs);
        hear(&FsdClient::raiseRawDataSent, u"sent"_qs);
        hear(&FsdClient::raisePingReceived, u"ping"_qs);
        hear(&FsdClient::raiseKillRequestReceived, u"kill"_qs);
    }
    template <class Signal>
    void hear(Signal signal, const QString &name)
    {
        QObject::connect(&client, signal, &client, [this, name] { on(name); });
    }
    void on(const QString &name)
    {
        heard << name;
        if (heardAtDeed >= 0 || !trigger.startsWith(name) || heard.count(name) != trigger.section(u' ', 1).toInt())
            return;
        heardAtDeed = heard.size();
        deed();
    }
    bool play()
    {
        return client.connectToServer(peer.address(), peer.port()) && peer.waitForConnection() &&
               tarvo::test::waitFor([this] { return heard.contains(u"connected"_qs); });
    }
    QStringList afterDeed() const { return heard.mid(heardAtDeed); }
};

const QByteArray script = "$PIS:C:1\r\n" // received 1, ping 1
                          "X:bad\r\n"    // received 2, error 1
                          "$ZCS:C:a\r\n" // received 3, sent 1
                          "$!!S:C:b\r\n" // received 4, kill 1
                          "$PIS:C:2\r\n" // received 5, ping 2
                          "$PIS:C:3";    // nothing: it has no end

} // namespace

/// A receiver that acts inside a signal: nothing of the old connection is heard or sent afterwards.
class DeedsTest : public QObject
{
    Q_OBJECT

private slots:
    void afterTheDeedTheOldConnectionIsSilent_data()
    {
        QTest::addColumn<QString>("trigger");
        QTest::addColumn<bool>("connectsAnew");
        for (const char *trigger :
             {"connected 1", "received 1", "ping 1", "received 2", "error 1", "received 3", "sent 1", "received 4",
              "kill 1", "received 5", "ping 2", "error 2", "disconnected 1"}) {
            for (const bool anew : {false, true})
                QTest::addRow("%s: %s", trigger, anew ? "connect anew" : "disconnect")
                    << QString::fromLatin1(trigger) << anew;
        }
    }
    void afterTheDeedTheOldConnectionIsSilent()
    {
        QFETCH(QString, trigger);
        QFETCH(bool, connectsAnew);
        Story story;
        story.trigger = trigger;
        story.deed = [&] {
            if (connectsAnew)
                story.client.connectToServer(story.next.address(), story.next.port());
            else
                story.client.disconnectFromServer();
        };
        QVERIFY(story.play());
        story.peer.injectBytes(script);
        story.peer.closeConnection();
        TRY_VERIFY(story.heardAtDeed >= 0);
        if (connectsAnew) {
            QVERIFY(story.next.waitForConnection());
            QVERIFY(story.next.expectNothing()); // its challenge and the answer are heard
            QCOMPARE(story.afterDeed(), (QStringList{u"connected"_qs, u"received"_qs, u"sent"_qs}));
        } else {
            QCoreApplication::processEvents();
            QCOMPARE(story.afterDeed(), QStringList{u"disconnected"_qs});
            QVERIFY(!story.client.isConnected());
        }
        if (trigger == u"sent 1"_qs)
            QCOMPARE(story.peer.receivedBytes(), QByteArray());
    }
};

TARVO_TEST(DeedsTest)
#include "DeedsTest.moc"

#include "manager/OnlineSession.h"
#include "model/RadioStackState.h"
#include "support/TestRegistry.h"
#include "voice/client/VoiceClient.h"

#include <QObject>
#include <QSignalSpy>
#include <QTest>

using tarvo::manager::NetworkManager;
using tarvo::model::RadioStackState;
using tarvo::test::OnlineSession;
using tarvo::voice::ConnectionState;
using tarvo::voice::VoiceClient;

namespace {

/// A pilot on the network, with his radios tuned.
struct VoiceSession : OnlineSession
{
    VoiceClient &client = manager->voiceClient();

    VoiceSession()
    {
        client.setCid(1001);
        tune({.com1Frequency = 118500, .com1TransmitEnabled = true, .com1ReceiveEnabled = true, .com1Volume = 50});
    }

    void tune(const RadioStackState &state) const { emit sim->radioStackStateChanged(state); }

    /// Up to the greeting.
    bool connectVoice()
    {
        client.connectToServer(u"jwt"_qs);
        return voice.expect("jwt") && !voice.nextDatagram().isNull();
    }

    bool greet()
    {
        voice.inject(R"({"type":"message","data":"SERVER:CCA1234:Welcome"})");
        return tarvo::test::waitFor([this] { return client.isReady(); });
    }

    /// What the server is told of a radio.
    static QByteArray channel(int radio, const QByteArray &data)
    {
        return R"({"callsign":"CCA1234","cid":1001,"data":")" + data + R"(","transmitter":)" +
               QByteArray::number(radio) + R"(,"type":"channel"})";
    }
};

} // namespace

/// The radios in the voice session, and its end.
class NetworkManagerVoiceTest : public QObject
{
    Q_OBJECT

private slots:
    void theRadiosAreToldWhenTheServerHasGreeted()
    {
        VoiceSession s;
        QVERIFY(s.online);
        QVERIFY(s.connectVoice());
        s.tune({.com1Frequency = 119700, .com1ReceiveEnabled = true, .com2Frequency = 121500}); // not told yet
        QVERIFY(s.greet());
        QVERIFY(s.voice.expect(VoiceSession::channel(0, "119700:1")));
        QVERIFY(s.voice.expect(VoiceSession::channel(1, "121500:0")));
    }

    void eachChangeTellsBoth()
    {
        VoiceSession s;
        QVERIFY(s.connectVoice() && s.greet());
        QVERIFY(s.voice.expect(VoiceSession::channel(0, "118500:1")));
        QVERIFY(s.voice.expect(VoiceSession::channel(1, "0:0")));
        s.tune({.com1Frequency = 118500, .com2Frequency = 127600, .com2ReceiveEnabled = true});
        QVERIFY(s.voice.expect(VoiceSession::channel(0, "118500:0")));
        QVERIFY(s.voice.expect(VoiceSession::channel(1, "127600:1")));
    }

    void oneRadioTransmits_data()
    {
        QTest::addColumn<bool>("com1");
        QTest::addColumn<bool>("com2");
        QTest::addColumn<QList<int>>("frequencies"); // that voice goes out on, as they are announced
        QTest::newRow("COM1") << true << false << QList<int>{119700};
        QTest::newRow("COM2") << false << true << QList<int>{121500};
        QTest::newRow("both") << true << true << QList<int>{119700};
        QTest::newRow("neither") << false << false << QList<int>{};
    }

    void oneRadioTransmits()
    {
        QFETCH(bool, com1);
        QFETCH(bool, com2);
        VoiceSession s;
        QVERIFY(s.connectVoice() && s.greet());
        QList<int> announced;
        connect(&s.client, &VoiceClient::currentFrequencyChanged, &s.client, [&](int kHz) { announced << kHz; });
        s.tune({.com1Frequency = 119700,
                .com1TransmitEnabled = com1,
                .com2Frequency = 121500,
                .com2TransmitEnabled = com2});
        QTEST(announced, "frequencies");
    }

    void voiceKnowsARadioBeforeThePages()
    {
        VoiceSession s;
        QVERIFY(s.connectVoice() && s.greet());
        QStringList order;
        connect(&s.client, &VoiceClient::currentFrequencyChanged, &s.client, [&] { order << u"voice"_qs; });
        connect(s.manager.get(), &NetworkManager::radioStatesUpdate, s.manager.get(), [&] { order << u"pages"_qs; });
        s.tune({.com1Frequency = 119700, .com1TransmitEnabled = true});
        QCOMPARE(order, (QStringList{u"voice"_qs, u"pages"_qs}));
    }

    void theEndOfTheNetworkSessionEndsVoice_data()
    {
        QTest::addColumn<bool>("byTheServer");
        QTest::newRow("the pilot leaves") << false;
        QTest::newRow("the server closes") << true;
    }

    void theEndOfTheNetworkSessionEndsVoice()
    {
        QFETCH(bool, byTheServer);
        VoiceSession s;
        QVERIFY(s.connectVoice() && s.greet());
        QSignalSpy states(&s.client, &VoiceClient::connectionStateChanged);
        byTheServer ? s.peer.closeConnection() : s.manager->disconnectFromNetwork();
        TRY_COMPARE(s.client.state(), ConnectionState::Disconnected);
        QCOMPARE(states.size(), 1);
        QVERIFY(
            s.voice.untilClosed().endsWith(R"({"callsign":"","cid":1001,"data":"","transmitter":0,"type":"disconnect"})"
                                           "\n"));
    }

    void aSecondSessionIsNotSilent()
    {
        VoiceSession s;
        QVERIFY(s.connectVoice() && s.greet());
        s.manager->disconnectFromNetwork();
        s.voice.untilClosed();
        QVERIFY(s.connectVoice() && s.greet());
        QVERIFY(s.voice.expect(VoiceSession::channel(0, "118500:1")));
        QVERIFY(s.voice.expect(VoiceSession::channel(1, "0:0")));
        QSignalSpy heard(&s.client, &VoiceClient::voiceDataReceived);
        s.voice.sendDatagram(QByteArray::fromHex("0700000000e4ce0100035457520a")); // 118500 kHz, "TWR"
        TRY_COMPARE(heard.size(), 1);
        QCOMPARE(heard.first().first().toString(), u"TWR"_qs);
    }

    void theNumericIdGoesWithEachLine()
    {
        VoiceSession s;
        s.client.setCid(0);
        QVERIFY(s.connectVoice());
        s.voice.inject(R"({"type":"message","data":"SERVER:CCA1234:Welcome"})");
        TRY_COMPARE(s.client.state(), ConnectionState::Ready);
        QVERIFY(!s.client.isReady()); // nobody to the server: no radio is told
        s.client.setCid(7);
        s.tune({.com1Frequency = 119700});
        QVERIFY(s.voice.expect(VoiceSession::channel(0, "119700:0").replace("1001", "7")));
    }
};

TARVO_TEST(NetworkManagerVoiceTest)
#include "NetworkManagerVoiceTest.moc"

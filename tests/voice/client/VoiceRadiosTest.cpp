#include "SessionStage.h"

#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo;
using namespace tarvo::test;
using voice::Transmitter;

namespace {

Transmitter tuned(Transmitter transmitter, quint32 frequency)
{
    transmitter.frequency = frequency;
    return transmitter;
}

QByteArray tuningLine(const QByteArray &data, int id)
{
    return R"({"callsign":"CCA1234","cid":1001,"data":")" + data + R"(","transmitter":)" + QByteArray::number(id) +
           R"(,"type":"channel"})";
}

/// A frame as the microphone gives it.
void speak(SessionStage &stage)
{
    emit stage.client->audioHandler()->encodedAudioReady({1, 2, 3});
}

} // namespace

/// What is said and heard on the radios of a session.
class VoiceRadiosTest : public QObject
{
    Q_OBJECT

private slots:
    void radiosAreToldOnceTheSessionIsReady()
    {
        SessionStage stage;
        stage.client->setCid(1001);
        stage.client->addTransmitter(com1);
        stage.client->updateTransmitter(com1);
        QVERIFY(stage.connectToServer());
        stage.client->updateTransmitter(com1);
        stage.greet();
        QVERIFY(stage.waitForState(voice::ConnectionState::Ready));
        QVERIFY(stage.hasSaidNothing());
    }

    void theServerIsToldOfTheTuning()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.client->updateTransmitter(com1);
        QVERIFY(stage.peer.expect(tuningLine("118500:1", 0)));
        Transmitter deaf = com2;
        deaf.receive = false;
        stage.client->updateTransmitter(deaf);
        QVERIFY(stage.peer.expect(tuningLine("121500:0", 1)));
        stage.client->updateTransmitter(tuned(com1, 0)); // is not tuned, and said
        QVERIFY(stage.peer.expect(tuningLine("0:1", 0)));
        stage.client->addTransmitter(com1); // tells it too
        QVERIFY(stage.peer.expect(tuningLine("118500:1", 0)));
        stage.client->addTransmitter(tuned(com1, 0));
        stage.client->sendMessage(u"a"_qs, u"b"_qs);
        QVERIFY(
            stage.peer.expect(R"({"callsign":"CCA1234","cid":1001,"data":"a:b","transmitter":0,"type":"message"})"));
    }

    void voiceGoesOutOnTheRadioThatTransmittedLast()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.client->updateTransmitter(com2); // without the flag
        speak(stage);
        QVERIFY(stage.events.isEmpty());
        stage.client->updateTransmitter(com1);
        emit stage.client->audioHandler()->inputVolumeChanged({.db = -6, .percent = 50});
        speak(stage);
        QCOMPARE(stage.events, (QStringList{u"speaks on 118500"_qs, u"sent at 50"_qs}));
        QCOMPARE(stage.peer.nextDatagram().toHex(' '),
                 QByteArray("e9 03 00 00 00 e4 ce 01 00 07 43 43 41 31 32 33 34 01 02 03 0a"));
        Transmitter silent = tuned(com1, 118700);
        silent.transmit = false;
        stage.client->updateTransmitter(silent); // a flag that goes resets nothing
        speak(stage);
        QVERIFY(stage.peer.nextDatagram().toHex(' ').contains("00 ac cf 01 00 07"));
        QCOMPARE(stage.events.mid(2), QStringList{u"sent at 50"_qs});
    }

    void noVoiceGoesOutWithoutASession()
    {
        SessionStage stage;
        stage.client->addTransmitter(com1);
        speak(stage);
        QVERIFY(stage.makeReady());
        stage.client->updateTransmitter(com1);
        stage.client->disconnectFromServer();
        stage.events.clear();
        speak(stage);
        QVERIFY(stage.events.isEmpty());
        QVERIFY(stage.makeReady());
        speak(stage); // the last session's radio is forgotten
        QVERIFY(stage.events.isEmpty());
    }

    void aFrequencyThatFitsIntoNoPacketIsNotSent()
    {
        const LogCapture log;
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.client->updateTransmitter(tuned(com1, 200'000));
        speak(stage);
        QVERIFY(log.contains(u"VoiceClient: voice not sent: Frequency too large"_qs));
        stage.client->updateTransmitter(com1);
        speak(stage);
        QVERIFY(!stage.peer.nextDatagram().isNull());
    }

    void whatIsHeard()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.client->updateTransmitter(com1);
        stage.client->updateTransmitter(com2);
        stage.events.clear();
        stage.hear("ZBAA_TWR", 118500);
        stage.hear("NOBODY", 119000); // not tuned
        stage.hear("GUARD", 121500);
        TRY_COMPARE(stage.events, (QStringList{u"ZBAA_TWR on 118500"_qs, u"GUARD on 121500"_qs}));
        stage.client->updateTransmitter(tuned(com1, 118700));
        stage.hear("ZBAA_TWR", 118500);
        stage.hear("ZBAA_GND", 118700);
        TRY_COMPARE(stage.events.last(), u"ZBAA_GND on 118700"_qs);
        QCOMPARE(stage.events.count(u"ZBAA_TWR on 118500"_qs), 1);
    }

    void theOwnVoiceIsHeardLikeAnyOther()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.client->updateTransmitter(com1);
        stage.hear("CCA1234", 118500);
        TRY_COMPARE(stage.events.last(), u"CCA1234 on 118500"_qs);
    }

    /// Before the greeting there is no engine.
    void withoutAnEngineNothingIsHeard()
    {
        SessionStage stage;
        stage.client->addTransmitter(com1);
        QVERIFY(stage.connectToServer());
        stage.hear("ZBAA_TWR", 118500);
        stage.say("error", "end");
        TRY_COMPARE(stage.events.last(), u"error: end"_qs);
        QVERIFY(!stage.events.contains(u"ZBAA_TWR on 118500"_qs));
        stage.client->setPtt(true); // nobody clicks
        stage.client->setPtt(false);
    }

    void aKeyHeldBeforeTheEngineOpensNothing()
    {
        SessionStage stage;
        stage.client->setPtt(true);
        const auto isOpen = [&stage] { return stage.client->audioHandler()->inputStream().isTransmitEnabled(); };
        QVERIFY(!isOpen());
        stage.client->setPtt(true); // the next press
        QVERIFY(isOpen());
        stage.client->setPtt(false);
        QVERIFY(!isOpen());
    }

    void twoOnOneFrequency_data()
    {
        QTest::addColumn<int>("gapMs");
        QTest::addColumn<QByteArray>("second");
        QTest::addColumn<int>("secondFrequency");
        QTest::addColumn<bool>("buzzes");
        QTest::newRow("within 100 ms") << 99 << QByteArray("TWO") << 118500 << true;
        QTest::newRow("after a pause") << 100 << QByteArray("TWO") << 118500 << false;
        QTest::newRow("the same one") << 20 << QByteArray("ONE") << 118500 << false;
        QTest::newRow("on another frequency") << 20 << QByteArray("TWO") << 121500 << false;
    }
    void twoOnOneFrequency()
    {
        QFETCH(int, gapMs);
        QFETCH(QByteArray, second);
        QFETCH(int, secondFrequency);
        QFETCH(bool, buzzes);
        SessionStage stage;
        QVERIFY(stage.makeReady());
        Headphone headphone(stage);
        stage.client->updateTransmitter(com1);
        stage.client->updateTransmitter(com2);
        stage.hear("ONE", 118500);
        TRY_COMPARE(stage.events.last(), u"ONE on 118500"_qs);
        QVERIFY(!headphone.sounds());
        stage.clock.advance(gapMs);
        stage.events.clear();
        stage.hear(second.toStdString(), secondFrequency);
        TRY_COMPARE(stage.events.size(), 1); // a conflict is told like voice
        QCOMPARE(headphone.sounds(), buzzes);
    }

    void whileTheKeyIsHeldAllIsConflict()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        Headphone headphone(stage);
        stage.client->updateTransmitter(com1);
        stage.client->setPtt(true);
        QVERIFY(headphone.sounds()); // the click
        stage.events.clear();
        stage.hear("ONE", 118500);
        TRY_COMPARE(stage.events, QStringList{u"ONE on 118500"_qs});
        QVERIFY(headphone.sounds());
        stage.client->setPtt(false);
        QVERIFY(headphone.sounds()); // the other click
        stage.hear("TWO", 118500);   // ONE has not taken the frequency
        TRY_COMPARE(stage.events.last(), u"TWO on 118500"_qs);
        QVERIFY(!headphone.sounds());
    }

    void aFrequencyIsTakenBeforeItIsTuned()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        Headphone headphone(stage);
        stage.client->updateTransmitter(com2);
        stage.hear("ONE", 118500);
        stage.hear("GUARD", 121500); // has the other been heard, too
        TRY_COMPARE(stage.events, QStringList{u"GUARD on 121500"_qs});
        stage.client->updateTransmitter(com1);
        stage.hear("TWO", 118500);
        TRY_COMPARE(stage.events.last(), u"TWO on 118500"_qs);
        QVERIFY(headphone.sounds());
    }

    void aRadioWhoseReceiverIsOffIsToldAndSilent()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        Headphone headphone(stage);
        Transmitter deaf = com1;
        deaf.receive = false;
        stage.client->updateTransmitter(deaf);
        stage.client->setPtt(true);
        QVERIFY(headphone.sounds());
        stage.hear("ONE", 118500);
        TRY_COMPARE(stage.events.last(), u"ONE on 118500"_qs);
        QVERIFY(!headphone.sounds());
    }

    void whoeverHearsOfAFrameMayEndTheSession()
    {
        SessionStage stage;
        QVERIFY(stage.makeReady());
        stage.client->updateTransmitter(com1);
        connect(stage.client.get(), &voice::VoiceClient::voiceDataSent, this,
                [&] { stage.client->disconnectFromServer(); });
        speak(stage);
        QCOMPARE(stage.client->state(), voice::ConnectionState::Disconnected);
    }
};

TARVO_TEST(VoiceRadiosTest)
#include "VoiceRadiosTest.moc"

#include "ui/viewmodel/VoiceServiceViewModel.h"
#include "AppConfig.h"
#include "input/NoInputSource.h"
#include "input/PttHandler.h"
#include "input/PttService.h"
#include "model/RadioStackState.h"
#include "support/Columns.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/AudioDevice.h"
#include "voice/engine/AudioHandler.h"
#include "voice/engine/LoudPacket.h"
#include "voice/engine/SoundThread.h"
#include "voice/engine/VoiceCapture.h"
#include "voice/engine/VoicePlayback.h"

#include <QObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

using tarvo::common::VolumeInfo;
using tarvo::model::RadioStackState;
using tarvo::test::columns;
using tarvo::ui::VoiceServiceViewModel;
using tarvo::voice::ConnectionState;

namespace {

/// The view model over a client that nobody has connected: a test raises its signals.
struct VoicePage
{
    QTemporaryDir root;
    tarvo::AppConfig config{root.path()};
    tarvo::test::ManualClock clock;
    std::shared_ptr<tarvo::voice::SoundThread> sound = std::make_shared<tarvo::voice::SoundThread>();
    tarvo::input::PttHandler handler{std::make_unique<tarvo::input::NoInputSource>()};
    tarvo::input::PttService ptt{handler};
    tarvo::voice::AudioDevice devices{config, sound};
    tarvo::voice::VoiceClient client{config, sound};
    VoiceServiceViewModel model{&client, ptt, devices, config, nullptr, clock};

    void enter(ConnectionState state) { emit client.connectionStateChanged(state); }
    QStringList events() const
    {
        QStringList texts;
        for (const QVariant &event : model.eventLog())
            texts << event.toMap().value(u"text"_qs).toString();
        return texts;
    }
    /// Lets 80 ms without voice pass.
    void expire(const char *timer) const
    {
        auto *found = model.findChild<QTimer *>(QLatin1StringView(timer));
        QVERIFY(found && found->isSingleShot() && found->isActive());
        QCOMPARE(found->interval(), 80);
        found->stop(); // as a single shot does before it tells
        QMetaObject::invokeMethod(found, "timeout");
    }
};

} // namespace

class VoiceServiceViewModelTest : public QObject
{
    Q_OBJECT

    using Signal = void (VoiceServiceViewModel::*)();

private slots:
    void eachStateHasItsText_data()
    {
        columns<ConnectionState, QString, bool>("state", "text", "connected");
        QTest::newRow("disconnected") << ConnectionState::Disconnected << u"未连接"_qs << false;
        QTest::newRow("connecting") << ConnectionState::Connecting << u"连接中..."_qs << false;
        QTest::newRow("connected") << ConnectionState::Connected << u"已连接"_qs << true;
        QTest::newRow("authenticating") << ConnectionState::Authenticating << u"认证中..."_qs << true;
        QTest::newRow("ready") << ConnectionState::Ready << u"就绪"_qs << true;
        QTest::newRow("none of these") << static_cast<ConnectionState>(7) << u"未知状态"_qs << false;
    }

    void eachStateHasItsText()
    {
        QFETCH(ConnectionState, state);
        QFETCH(QString, text);
        QFETCH(bool, connected);
        VoicePage page;
        page.enter(state);
        QCOMPARE(page.model.connectionStateText(), text);
        QCOMPARE(page.model.connected(), connected);
        QCOMPARE(page.model.canTest(), state == ConnectionState::Disconnected);
        // Only a server that has greeted has told a callsign.
        QCOMPARE(page.model.callsign(), state == ConnectionState::Ready ? QString() : u"Unknown"_qs);
    }

    void withoutAClientNothingCanBeAskedFor()
    {
        VoicePage page;
        VoiceServiceViewModel model(nullptr, page.ptt, page.devices, page.config);
        model.connectToVoiceServer();
        model.startMicTest();
        model.startPlayConflict();
        model.stopPlayConflict();
        model.setPtt(true);
        QVERIFY(!model.micTesting() && !model.conflictTesting() && model.pttActive());
    }

    void radiosAreShownAsTold_data()
    {
        columns<quint32, quint32, QString>("active", "standby", "text");
        QTest::newRow("short") << 118700U << 121500U << u"118.7 MHz / 121.5 MHz"_qs;
        QTest::newRow("8.33 kHz") << 118275U << 132005U << u"118.275 MHz / 132.005 MHz"_qs;
        QTest::newRow("whole") << 118000U << 0U << u"118 MHz / 0 MHz"_qs;
    }

    void radiosAreShownAsTold()
    {
        QFETCH(quint32, active);
        QFETCH(quint32, standby);
        VoicePage page;
        page.model.radioStackUpdate({.com1Frequency = active, .com1StandbyFrequency = standby});
        QTEST(page.model.com1Freq(), "text");
        page.model.radioStackUpdate({.com2Frequency = active, .com2StandbyFrequency = standby});
        QTEST(page.model.com2Freq(), "text");
    }

    void onlyTheChangedRadioIsAnnounced()
    {
        VoicePage page;
        QCOMPARE(page.model.com1Volume(), 1.0);
        const QSignalSpy com1(&page.model, &VoiceServiceViewModel::com1InfoChanged);
        const QSignalSpy com2(&page.model, &VoiceServiceViewModel::com2InfoChanged);
        RadioStackState state{
            .com1TransmitEnabled = true, .com1ReceiveEnabled = true, .com1Volume = 40, .com2Volume = 100};
        page.model.radioStackUpdate(state);
        QCOMPARE(com1.size(), 1);
        QCOMPARE(com2.size(), 0);
        QVERIFY(page.model.com1TX() && page.model.com1RX() && !page.model.com2TX() && !page.model.com2RX());
        QCOMPARE(page.model.com1Volume(), 0.4);
        page.model.radioStackUpdate(state);
        state.com2ReceiveEnabled = true;
        page.model.radioStackUpdate(state);
        QCOMPARE(com1.size(), 1);
        QCOMPARE(com2.size(), 1);
    }

    void anEqualVolumeIsNoChange()
    {
        VoicePage page;
        const QSignalSpy com1(&page.model, &VoiceServiceViewModel::com1InfoChanged);
        const QSignalSpy com2(&page.model, &VoiceServiceViewModel::com2InfoChanged);
        page.model.setCom1Volume(1);
        page.model.setCom2Volume(1);
        QCOMPARE(com1.size() + com2.size(), 0);
        page.model.setCom1Volume(0.5);
        page.model.setCom2Volume(0.25);
        QCOMPARE(page.model.com1Volume(), 0.5);
        QCOMPARE(page.model.com2Volume(), 0.25);
        QCOMPARE(com1.size(), 1);
        QCOMPARE(com2.size(), 1);
    }

    void errorsAreEvents()
    {
        VoicePage page;
        emit page.client.errorOccurred(u"no\nroute"_qs);
        emit page.client.errorOccurred(QString(1000, u'x'));
        QCOMPARE(page.events().size(), 2);
        QCOMPARE(page.events().at(1), u"ERROR: no route"_qs);
        QCOMPARE(page.events().at(0).size(), 300);
        const QString time = page.model.eventLog().first().toMap().value(u"time"_qs).toString();
        QCOMPARE(QTime::fromString(time, u"HH:mm:ss"_qs).toString(u"HH:mm:ss"_qs), time);
    }

    void aFailedAttemptIsOverWithTheNextState()
    {
        VoicePage page;
        page.enter(ConnectionState::Connecting);
        emit page.client.errorOccurred(u"no route"_qs);
        QVERIFY(page.model.attemptFailed() && !page.model.isConnecting());
        page.enter(ConnectionState::Connecting);
        QVERIFY(!page.model.attemptFailed() && page.model.isConnecting());
    }

    void theLogKeepsAHundred()
    {
        VoicePage page;
        const QSignalSpy changed(&page.model, &VoiceServiceViewModel::eventLogChanged);
        for (int i = 0; i < 101; ++i)
            page.model.addEvent(QString::number(i));
        QCOMPARE(changed.size(), 101);
        QCOMPARE(page.events().size(), 100);
        QCOMPARE(page.events().first(), u"100"_qs);
        QCOMPARE(page.events().last(), u"1"_qs);
    }

    void thePageIgnoresRepeatsAndTheKeyDoesNot()
    {
        VoicePage page;
        const QSignalSpy changed(&page.model, &VoiceServiceViewModel::pttActiveChanged);
        page.model.setPtt(false);
        QCOMPARE(changed.size(), 0);
        page.model.setPtt(true);
        page.model.setPtt(true);
        QCOMPARE(changed.size(), 1);
        // The engine came into being while the key was held: its gate opens with the key's next word, not the page's.
        auto &gate = page.client.audioHandler()->inputStream();
        page.model.setPtt(true);
        QVERIFY(!gate.isTransmitEnabled());
        emit page.ptt.activeChanged(true);
        QVERIFY(gate.isTransmitEnabled());
        QCOMPARE(changed.size(), 1);
        page.model.setPtt(false);
        emit page.ptt.activeChanged(false);
        QVERIFY(!gate.isTransmitEnabled());
        QVERIFY(!page.model.pttActive());
    }

    void keyAndButtonHoldTogether_data()
    {
        QTest::addColumn<bool>("keyFirst"); // let go
        QTest::newRow("the key is let go first") << true;
        QTest::newRow("the button is let go first") << false;
    }

    void keyAndButtonHoldTogether()
    {
        QFETCH(bool, keyFirst);
        VoicePage page;
        emit page.ptt.activeChanged(true);
        page.model.setPtt(true);
        keyFirst ? emit page.ptt.activeChanged(false) : page.model.setPtt(false);
        QVERIFY(page.model.pttActive());
        keyFirst ? page.model.setPtt(false) : emit page.ptt.activeChanged(false);
        QVERIFY(!page.model.pttActive());
    }

    void theSmallWindowTakesItsButtonAlong()
    {
        VoicePage page;
        page.model.setMiniMode(true);
        page.model.setPtt(true);
        page.model.setMiniMode(false);
        QVERIFY(!page.model.pttActive());
    }

    void theServerCanSilenceTheKey()
    {
        VoicePage page;
        emit page.ptt.activeChanged(true);
        page.model.disableTransmit();
        QVERIFY(!page.model.pttActive());
        QCOMPARE(page.events().size(), 1);
        emit page.ptt.activeChanged(true);
        QVERIFY(page.model.pttActive());
    }

    void sendingLastsEightyMilliseconds()
    {
        VoicePage page;
        const QSignalSpy sending(&page.model, &VoiceServiceViewModel::sendingChanged);
        emit page.client.voiceDataSent({-20, 79});
        QVERIFY(page.model.sending() && !page.model.receiving());
        QCOMPARE(page.model.inputDb(), -20.0);
        QCOMPARE(page.model.inputLevel(), 79.0);
        page.expire("sendTimer");
        QVERIFY(!page.model.sending());
        QCOMPARE(page.model.inputDb(), -96.0);
        QCOMPARE(page.model.inputLevel(), 0.0);
        QCOMPARE(sending.size(), 2);
    }

    void receivingTellsWhoAndWhere()
    {
        VoicePage page;
        const QSignalSpy receiving(&page.model, &VoiceServiceViewModel::receivingChanged);
        emit page.client.voiceDataReceived(u"ZBAA_TWR"_qs, 118505, {-10, 89});
        QVERIFY(page.model.receiving() && !page.model.sending());
        QCOMPARE(page.model.outputDb(), -10.0);
        QCOMPARE(page.model.outputLevel(), 89.0);
        page.expire("receiveTimer");
        QVERIFY(!page.model.receiving());
        QCOMPARE(page.model.outputDb(), -96.0);
        QCOMPARE(page.model.outputLevel(), 0.0);
        QCOMPARE(receiving.size(), 2);
        // Who it was stays.
        QCOMPARE(page.model.lastReceiveFreq(), 118.505);
        QCOMPARE(page.model.lastReceiveCallsign(), u"ZBAA_TWR"_qs);
    }

    void testsNeedAFreeLine_data()
    {
        QTest::addColumn<ConnectionState>("state");
        for (const ConnectionState state : {ConnectionState::Connecting, ConnectionState::Connected,
                                            ConnectionState::Authenticating, ConnectionState::Ready})
            QTest::addRow("%d", static_cast<int>(state)) << state;
    }

    void testsNeedAFreeLine()
    {
        QFETCH(ConnectionState, state);
        VoicePage page;
        page.model.startMicTest();
        QVERIFY(page.model.micTesting());
        page.model.startPlayConflict(); // they share the devices: one at a time
        QVERIFY(!page.model.micTesting() && page.model.conflictTesting());
        const QSignalSpy again(&page.model, &VoiceServiceViewModel::voiceTestingChanged);
        page.model.startPlayConflict(); // it runs
        QCOMPARE(again.size(), 0);
        page.model.startMicTest();
        QVERIFY(page.model.micTesting() && !page.model.conflictTesting());
        page.model.stopPlayConflict(); // none runs
        QVERIFY(page.model.micTesting());
        page.enter(state);
        QVERIFY(!page.model.micTesting() && !page.model.conflictTesting());
        page.model.startMicTest();
        page.model.startPlayConflict();
        QVERIFY(!page.model.micTesting() && !page.model.conflictTesting());
        const QSignalSpy testing(&page.model, &VoiceServiceViewModel::voiceTestingChanged);
        page.model.stopPlayConflict();
        page.model.stopMicTest();
        QCOMPARE(testing.size(), 0);
    }

    void aSessionEndsTheEnginesMicTest()
    {
        VoicePage page;
        page.model.startMicTest();
        auto *audio = page.client.audioHandler();
        const auto playback = std::make_shared<tarvo::voice::VoicePlayback>(tarvo::voice::AudioStreamConfig{});
        audio->headphoneStream().setPlayback(playback);
        const auto heard = [&] {
            audio->inputStream().deliver({.volume = {}, .opus = tarvo::test::loudPacket()});
            std::vector<float> buffer(static_cast<std::size_t>(playback->config().framesPerBuffer));
            playback->mix(buffer);
            return *std::max_element(buffer.begin(), buffer.end());
        };
        QVERIFY(heard() > 0.1F);
        page.enter(ConnectionState::Connecting);
        QCOMPARE(heard(), 0.0F);
    }

    void aSessionEndsTheEnginesConflictTest()
    {
        VoicePage page;
        page.model.startPlayConflict();
        const auto *buzz = page.client.audioHandler()->findChild<QTimer *>(u"conflict"_qs);
        QVERIFY(buzz && buzz->isActive());
        page.enter(ConnectionState::Connecting);
        QVERIFY(!buzz->isActive());
    }

    void theMetersShowTheEngineDuringAMicTestOnly()
    {
        VoicePage page;
        page.model.startMicTest();
        auto *audio = page.client.audioHandler();
        emit audio->inputVolumeChanged({-30, 68});
        emit audio->outputVolumeChanged({-33, 65});
        QCOMPARE(page.model.inputDb(), -30.0);
        QCOMPARE(page.model.outputLevel(), 65.0);
        page.model.stopMicTest();
        QCOMPARE(page.model.inputDb(), -96.0);
        QCOMPARE(page.model.outputLevel(), 0.0);
        emit audio->inputVolumeChanged({-30, 68});
        emit audio->outputVolumeChanged({-33, 65});
        QCOMPARE(page.model.inputDb(), -96.0);
        QCOMPARE(page.model.outputLevel(), 0.0);
    }

    void theTargetOfTheMicTest()
    {
        VoicePage page;
        const QSignalSpy testing(&page.model, &VoiceServiceViewModel::voiceTestingChanged);
        page.model.setLoopbackTarget(false);
        QCOMPARE(testing.size(), 0);
        page.model.setLoopbackTarget(true);
        QVERIFY(page.model.loopbackTarget());
        QCOMPARE(testing.size(), 1);
    }

    void aTestWithoutDevicesSaysSo_data()
    {
        QTest::addColumn<bool>("microphone"); // else the conflict tone
        columns<int, int, bool>("inputs", "outputs", "told");
        QTest::newRow("microphone, nothing there") << true << 0 << 0 << true;
        QTest::newRow("microphone, output alone") << true << 0 << 1 << true;
        QTest::newRow("microphone, input alone") << true << 1 << 0 << true;
        QTest::newRow("microphone, both") << true << 1 << 1 << false;
        QTest::newRow("conflict, output alone") << false << 0 << 1 << false;
        QTest::newRow("conflict, nothing there") << false << 0 << 0 << true;
    }

    void aTestWithoutDevicesSaysSo()
    {
        QFETCH(bool, microphone);
        QFETCH(int, inputs);
        QFETCH(int, outputs);
        QFETCH(bool, told);
        QList<tarvo::voice::DeviceInfo> devices;
        if (inputs + outputs > 0)
            devices << tarvo::voice::DeviceInfo{.index = 0,
                                                .name = "it",
                                                .hostApi = 0,
                                                .maxInputChannels = inputs,
                                                .maxOutputChannels = outputs,
                                                .defaultSampleRate = 48000};
        for (const bool isFirstClick : {false, true}) { // which loads the devices
            VoicePage page;
            const auto test = [&] { microphone ? page.model.startMicTest() : page.model.startPlayConflict(); };
            if (isFirstClick)
                test();
            page.devices.onRead({{.index = 0, .type = 8, .name = "ALSA"}}, devices);
            if (!isFirstClick) {
                QCOMPARE(page.events(), QStringList()); // nobody tests
                test();
            }
            QCOMPARE(page.events(), told ? QStringList{u"未找到音频设备"_qs} : QStringList());
        }
    }

    void devicesThatFailAreToldOf_data()
    {
        using enum tarvo::voice::DeviceEvent;
        using enum tarvo::voice::StreamRole;
        columns<tarvo::voice::DeviceEvent, std::vector<tarvo::voice::StreamRole>, QString>("event", "roles", "text");
        QTest::newRow("ended") << Ended << std::vector{Input, Headphone, Speaker}
                               << u"音频设备已断开：麦克风、耳机、扬声器"_qs;
        QTest::newRow("failed") << Failed << std::vector{Speaker} << u"无法打开音频设备：扬声器"_qs;
        QTest::newRow("back") << Back << std::vector{Headphone} << u"音频设备已恢复：耳机"_qs;
        QTest::newRow("replaced") << Replaced << std::vector{Headphone} << u"已改用其他音频设备：耳机"_qs;
    }

    void devicesThatFailAreToldOf()
    {
        QFETCH(tarvo::voice::DeviceEvent, event);
        QFETCH(std::vector<tarvo::voice::StreamRole>, roles);
        QFETCH(QString, text);
        VoicePage page;
        emit page.client.audioHandler()->deviceEvent(event, roles);
        QCOMPARE(page.events(), QStringList{text});
    }

    void whoSpokeIsOnTheTimeline()
    {
        VoicePage page;
        page.model.radioStackUpdate({.com1Frequency = 118500, .com2Frequency = 121500, .com2TransmitEnabled = true});
        page.clock.advance(5000);
        emit page.client.voiceDataReceived(u"TWR"_qs, 118500, {});
        QCOMPARE(page.model.timelineNow(), static_cast<double>(page.clock.steadyMs()));
        emit page.client.voiceDataReceived(u"GUARD"_qs, 121500, {});
        emit page.client.voiceDataSent({});
        const auto &rows = page.model.speechRows()->rows();
        QCOMPARE(rows.size(), 3);
        QCOMPARE(rows.at(2).radio, 0);
        QCOMPARE(rows.at(1).radio, 1);
        QCOMPARE(rows.at(0).radio, 0); // until a radio has transmitted
        QVERIFY(rows.at(0).own && !rows.at(1).own);
    }

    void voiceIsInTheRowOfTheRadioThatHearsIt_data()
    {
        columns<bool, bool, int>("com1", "com2", "radio");
        QTest::newRow("COM1 alone is heard") << true << false << 0;
        QTest::newRow("COM2 alone is heard") << false << true << 1;
        QTest::newRow("both are") << true << true << 1;
    }

    void voiceIsInTheRowOfTheRadioThatHearsIt()
    {
        QFETCH(bool, com1);
        QFETCH(bool, com2);
        VoicePage page;
        page.model.radioStackUpdate(
            {.com1Frequency = 118500, .com1ReceiveEnabled = com1, .com2Frequency = 118500, .com2ReceiveEnabled = com2});
        emit page.client.voiceDataReceived(u"TWR"_qs, 118500, {});
        QTEST(page.model.speechRows()->rows().at(0).radio, "radio");
    }

    void whatIsNotSeenIsNotShown_data()
    {
        QTest::addColumn<Signal>("signal");
        QTest::newRow("sending") << Signal(&VoiceServiceViewModel::sendingChanged);
        QTest::newRow("receiving") << Signal(&VoiceServiceViewModel::receivingChanged);
        QTest::newRow("input level") << Signal(&VoiceServiceViewModel::inputLevelChanged);
        QTest::newRow("output level") << Signal(&VoiceServiceViewModel::outputLevelChanged);
        QTest::newRow("time line") << Signal(&VoiceServiceViewModel::timelineMoved);
    }

    void whatIsNotSeenIsNotShown()
    {
        QFETCH(Signal, signal);
        VoicePage page;
        const auto speak = [&page] {
            emit page.client.voiceDataReceived(u"TWR"_qs, 118500, {-10, 89});
            emit page.client.voiceDataSent({-20, 79});
        };
        speak();
        page.model.setSeen(false);
        QCOMPARE(page.model.outputLevel(), 0.0); // no bar goes on being painted
        const QSignalSpy told(&page.model, signal);
        speak();
        page.expire("sendTimer");
        page.expire("receiveTimer");
        page.clock.advance(5000);
        speak();
        QCOMPARE(told.size(), 0);
        page.model.setSeen(true);
        QCOMPARE(told.size(), 1);
        QVERIFY(page.model.receiving() && page.model.sending());
        QCOMPARE(page.model.outputLevel(), 89.0);
        QCOMPARE(page.model.timelineNow(), static_cast<double>(page.clock.steadyMs()));
        page.model.setSeen(true);
        QCOMPARE(told.size(), 1);
        speak();
        page.expire("sendTimer");
        page.expire("receiveTimer");
        QVERIFY(told.size() > 1 || signal == &VoiceServiceViewModel::timelineMoved);
    }

    void theSmallWindow()
    {
        VoicePage page;
        const QSignalSpy changed(&page.model, &VoiceServiceViewModel::miniModeChanged);
        page.model.setMiniMode(false);
        QCOMPARE(changed.size(), 0);
        page.model.setMiniMode(true);
        QVERIFY(page.model.miniMode());
        QCOMPARE(changed.size(), 1);
    }
};

TARVO_TEST(VoiceServiceViewModelTest)
#include "VoiceServiceViewModelTest.moc"

#include "ui/viewmodel/VoiceSettingsViewModel.h"

#include "AppConfig.h"
#include "input/PttHandler.h"
#include "input/PttService.h"
#include "support/Columns.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/ScriptedInput.h"
#include "support/TestRegistry.h"
#include "voice/engine/AudioDevice.h"
#include "voice/engine/SoundThread.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <future>
#include <limits>
#include <memory>

using namespace tarvo;
using tarvo::test::columns;
using tarvo::ui::viewmodel::VoiceSettingsViewModel;

namespace {

constexpr qint8 typeAlsa = 8;
constexpr qint8 typeJack = 12;

const QList<voice::HostApiInfo> twoDrivers{{.index = 0, .type = typeAlsa, .name = "ALSA"},
                                           {.index = 1, .type = typeJack, .name = "JACK"}};
const QList<voice::DeviceInfo> fourDevices{
    {.index = 0, .name = "Mic", .hostApi = 0, .maxInputChannels = 1},
    {.index = 1, .name = "Headset", .hostApi = 0, .maxInputChannels = 1, .maxOutputChannels = 2},
    {.index = 2, .name = "Speaker", .hostApi = 0, .maxOutputChannels = 2},
    {.index = 3, .name = "Studio", .hostApi = 1, .maxInputChannels = 2, .maxOutputChannels = 2},
};

struct VoiceSettingsStage
{
    VoiceSettingsStage() { config.set(config::voiceDriver, typeAlsa); }
    ~VoiceSettingsStage() { released.set_value(); }

    /// As the sound system would.
    void read() { devices.onRead(twoDrivers, fourDevices); }
    /// The system's own devices can't be asked for: there is no room for a task.
    void fillSoundThread()
    {
        const auto begun = std::make_shared<std::promise<void>>();
        sound->post([begun, wait = std::make_shared<std::future<void>>(released.get_future())] {
            begun->set_value();
            wait->wait();
        });
        begun->get_future().wait();
        while (sound->post([] {})) {
        }
    }
    QStringList storedDevices() const
    {
        return {config.get(config::voiceInputDevice), config.get(config::voiceOutputHeadphoneDevice),
                config.get(config::voiceOutputSpeakerDevice)};
    }

    QTemporaryDir folder;
    AppConfig config{folder.path()};
    std::promise<void> released;
    std::shared_ptr<voice::SoundThread> sound = std::make_shared<voice::SoundThread>();
    voice::AudioDevice devices{config, sound};
    test::ScriptedInput input;
    input::PttHandler handler{input.source()};
    input::PttService ptt{handler};
    VoiceSettingsViewModel model{config, devices, ptt};
};

using Setter = void (VoiceSettingsViewModel::*)(int);

} // namespace

Q_DECLARE_METATYPE(Setter)
Q_DECLARE_METATYPE(RealKey)

class VoiceSettingsViewModelTest : public QObject
{
    Q_OBJECT

private slots:
    void showsTheDevices()
    {
        VoiceSettingsStage stage;
        const QSignalSpy lists(&stage.model, &VoiceSettingsViewModel::deviceListChanged);
        const QSignalSpy chosen(&stage.model, &VoiceSettingsViewModel::deviceChanged);
        stage.config.set(config::voiceOutputSpeakerDevice, u"Speaker"_qs);
        stage.read();
        QCOMPARE(lists.size(), 1);
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(stage.model.driverNames(), (QStringList{u"ALSA"_qs, u"JACK"_qs}));
        QCOMPARE(stage.model.inputDeviceNames(), (QStringList{u"Default"_qs, u"Mic"_qs, u"Headset"_qs}));
        QCOMPARE(stage.model.outputDeviceNames(), (QStringList{u"Default"_qs, u"Headset"_qs, u"Speaker"_qs}));
        QCOMPARE(stage.model.driverIndex(), 0);
        QCOMPARE(stage.model.inputIndex(), 0);
        QCOMPARE(stage.model.outputHeadphoneIndex(), 0);
        QCOMPARE(stage.model.outputSpeakerIndex(), 2);
    }

    void choosesADevice_data()
    {
        columns<Setter, int, QStringList>("setter", "index", "stored");
        const QString none = u"Default"_qs;
        QTest::newRow("input") << Setter(&VoiceSettingsViewModel::setInput) << 2
                               << QStringList{u"Headset"_qs, none, none};
        QTest::newRow("headphone") << Setter(&VoiceSettingsViewModel::setOutputHeadphone) << 1
                                   << QStringList{none, u"Headset"_qs, none};
        QTest::newRow("speaker") << Setter(&VoiceSettingsViewModel::setOutputSpeaker) << 2
                                 << QStringList{none, none, u"Speaker"_qs};
    }
    void choosesADevice()
    {
        QFETCH(Setter, setter);
        QFETCH(int, index);
        QFETCH(QStringList, stored);
        const QStringList defaults{u"Default"_qs, u"Default"_qs, u"Default"_qs};
        VoiceSettingsStage stage;
        stage.read();
        const auto sum = [&] {
            return stage.devices.inputIndex() + stage.devices.headphoneIndex() + stage.devices.speakerIndex();
        };
        for (const int unknown : {-1, 3}) {
            (stage.model.*setter)(unknown);
            QCOMPARE(stage.storedDevices(), defaults);
        }
        (stage.model.*setter)(index);
        QCOMPARE(stage.storedDevices(), stored);
        QCOMPARE(sum(), index);
        const QSignalSpy chosen(&stage.model, &VoiceSettingsViewModel::deviceChanged);
        (stage.model.*setter)(0);
        QCOMPARE(stage.storedDevices(), defaults);
        QCOMPARE(sum(), 0);
        QCOMPARE(chosen.size(), 1); // the page follows, although AudioDevice is silent
    }

    void aDriverBringsItsDefaults()
    {
        VoiceSettingsStage stage;
        stage.read();
        stage.model.setInput(1);
        stage.model.setOutputHeadphone(1);
        stage.model.setOutputSpeaker(2);
        stage.model.setDriver(1);
        QCOMPARE(stage.config.get(config::voiceDriver), int(typeJack));
        QCOMPARE(stage.storedDevices(), (QStringList{u"Default"_qs, u"Default"_qs, u"Default"_qs}));
        QCOMPARE(stage.model.driverIndex(), 1);
        QCOMPARE(stage.model.inputDeviceNames(), (QStringList{u"Default"_qs, u"Studio"_qs}));
        stage.model.setInput(1);
        stage.model.setDriver(2); // there is none
        stage.model.setDriver(-1);
        QCOMPARE(stage.config.get(config::voiceDriver), int(typeJack));
        QCOMPARE(stage.config.get(config::voiceInputDevice), u"Studio"_qs);
    }

    void whatIsChosenBeforeTheDevicesAreReadWaits()
    {
        VoiceSettingsStage stage;
        const test::LogCapture log; // tells that there is no room
        stage.fillSoundThread();
        stage.model.ensureDeviceListLoaded();
        stage.model.setInput(2);
        stage.model.setOutputSpeaker(1);
        QCOMPARE(stage.model.inputIndex(), -1);
        QCOMPARE(stage.storedDevices(), (QStringList{u"Default"_qs, u"Default"_qs, u"Default"_qs}));
        stage.read();
        TRY_COMPARE(stage.model.inputIndex(), 2);
        QCOMPARE(stage.storedDevices(), (QStringList{u"Headset"_qs, u"Default"_qs, u"Headset"_qs}));
    }

    void aDeviceThatIsGoneIsNamed()
    {
        VoiceSettingsStage stage;
        stage.config.set(config::voiceInputDevice, u"Old mic"_qs);
        stage.config.set(config::voiceOutputHeadphoneDevice, u"Headset"_qs);
        QCOMPARE(stage.model.inputHint(), QString()); // nothing is known as yet
        stage.read();
        QCOMPARE(stage.model.inputHint(), u"找不到设备“Old mic”，使用默认设备"_qs);
        QCOMPARE(stage.model.outputHeadphoneHint(), QString());
        QCOMPARE(stage.model.outputSpeakerHint(), QString());
        QCOMPARE(stage.config.get(config::voiceInputDevice), u"Old mic"_qs); // it may come back
        stage.model.setInput(0);
        QCOMPARE(stage.model.inputHint(), QString());
    }

    void withoutAnyDevice()
    {
        VoiceSettingsStage stage;
        stage.devices.onRead({}, {});
        QCOMPARE(stage.model.inputHint(), u"未找到音频设备"_qs);
        QCOMPARE(stage.model.outputHeadphoneHint(), u"未找到音频设备"_qs);
        QCOMPARE(stage.model.outputSpeakerHint(), u"未找到音频设备"_qs);
        QCOMPARE(stage.model.inputDeviceNames(), QStringList{u"Default"_qs});
    }

    void numbers_data()
    {
        columns<QByteArray, RealKey, double, double>("property", "key", "lowest", "highest");
        QTest::newRow("gain") << QByteArray("micGain") << config::voiceMicGain << -20.0 << 20.0;
        QTest::newRow("tone volume") << QByteArray("pttVolume") << config::voicePttVolume << 0.0 << 1.0;
        QTest::newRow("press") << QByteArray("pttPressFreq") << config::voicePttPressFreq << 100.0 << 4000.0;
        QTest::newRow("release") << QByteArray("pttReleaseFreq") << config::voicePttReleaseFreq << 100.0 << 4000.0;
        QTest::newRow("conflict volume") << QByteArray("conflictVolume") << config::voiceConflictVolume << 0.0 << 1.0;
    }
    void numbers()
    {
        QFETCH(QByteArray, property);
        QFETCH(RealKey, key);
        QFETCH(double, lowest);
        QFETCH(double, highest);
        VoiceSettingsStage stage;
        const auto shown = [&] { return stage.model.property(property).toDouble(); };
        const QSignalSpy changed(&stage.model, &VoiceSettingsViewModel::settingsChanged);
        const QSignalSpy written(&stage.config, &AppConfig::configChanged);
        QCOMPARE(shown(), key.defaultValue);
        stage.model.setProperty(property, key.defaultValue);
        QCOMPARE(written.size(), 0); // equal
        stage.model.setProperty(property, lowest);
        QCOMPARE(stage.config.get(key), lowest);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(written.size(), 1);
        stage.model.setProperty(property, highest + 1);
        QCOMPARE(stage.config.get(key), highest);
        stage.model.setProperty(property, std::numeric_limits<double>::quiet_NaN());
        QCOMPARE(stage.config.get(key), highest);
        QCOMPARE(changed.size(), 2);

        stage.config.set(key, highest * 10); // by hand
        QCOMPARE(shown(), highest);
        stage.model.setProperty(property, highest);
        QCOMPARE(stage.config.get(key), highest * 10);
        stage.config.set(key, lowest - 1);
        QCOMPARE(shown(), lowest);
    }

    void outputs_data()
    {
        columns<QByteArray, QString>("property", "name");
        QTest::newRow("tone") << QByteArray("pttDevice") << u"Voice/PttPlayDevice"_qs;
        QTest::newRow("conflict") << QByteArray("conflictDevice") << u"Voice/ConflictPlayDevice"_qs;
    }
    void outputs()
    {
        QFETCH(QByteArray, property);
        QFETCH(QString, name);
        const QByteArray text = name.toLatin1();
        const IntKey stored{text.constData(), 0};
        VoiceSettingsStage stage;
        QSignalSpy changed(&stage.model, &VoiceSettingsViewModel::settingsChanged);
        QSignalSpy written(&stage.config, &AppConfig::configChanged);
        QCOMPARE(stage.model.property(property), false);
        stage.model.setProperty(property, true);
        QCOMPARE(stage.config.get(stored), 1);
        stage.model.setProperty(property, true); // written all the same
        QCOMPARE(written.size(), 2);
        QCOMPARE(changed.size(), 2);
        stage.config.set(stored, -3); // anything but 0
        QCOMPARE(stage.model.property(property), true);
        stage.model.setProperty(property, false);
        QCOMPARE(stage.config.get(stored), 0);
    }

    void theKeysName()
    {
        VoiceSettingsStage stage;
        stage.input.names.insert(163, u"Right Ctrl"_qs);
        const QSignalSpy told(&stage.model, &VoiceSettingsViewModel::pttDisplayNameChanged);
        QCOMPARE(stage.model.pttKey(), u"未设置"_qs);
        stage.ptt.setBoundKey(u"kb:163"_qs);
        QCOMPARE(stage.model.pttKey(), u"Right Ctrl"_qs);
        QCOMPARE(told.size(), 1);
        stage.ptt.setBoundKey(u"ms:abc"_qs);
        QCOMPARE(stage.model.pttKey(), u"未设置"_qs);
        QCOMPARE(told.size(), 2);
    }

    void aCapturedKeyIsStored()
    {
        VoiceSettingsStage stage;
        const QSignalSpy listening(&stage.model, &VoiceSettingsViewModel::pttListeningChanged);
        const QSignalSpy named(&stage.model, &VoiceSettingsViewModel::pttDisplayNameChanged);
        stage.model.startPttListening();
        QVERIFY(stage.model.pttListening());
        stage.input.buttonDown(8);
        QVERIFY(!stage.model.pttListening());
        QCOMPARE(listening.size(), 2);
        QVERIFY(!named.isEmpty());
        QCOMPARE(stage.config.get(config::voicePttKey), u"ms:8"_qs);
        QCOMPARE(stage.model.pttKey(), u"鼠标侧键1"_qs);
    }

    void listeningCanBeLeft()
    {
        VoiceSettingsStage stage;
        stage.model.startPttListening();
        stage.model.stopPttListening();
        QVERIFY(!stage.model.pttListening());
        stage.input.keyDown(65);
        stage.model.startPttListening();
        stage.input.keyDown(0x1B); // Escape
        QVERIFY(!stage.model.pttListening());
        QCOMPARE(stage.config.get(config::voicePttKey), u"kb:163"_qs);
    }
};

TARVO_TEST(VoiceSettingsViewModelTest)
#include "VoiceSettingsViewModelTest.moc"

#include "voice/engine/AudioDevice.h"

#include "AppConfig.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "voice/engine/SoundThread.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <future>
#include <memory>

using namespace tarvo;
using namespace tarvo::voice;

namespace {

// PortAudio left out the driver 1.
const QList<HostApiInfo> someDrivers{
    {.index = 0, .type = 8, .name = "ALSA", .defaultInputDevice = 2, .defaultOutputDevice = 0},
    {.index = 2, .type = 13, .name = "WASAPI", .defaultInputDevice = -1, .defaultOutputDevice = 5}};

const QList<DeviceInfo> someDevices{
    {.index = 0,
     .name = "out",
     .hostApi = 0,
     .maxInputChannels = 0,
     .maxOutputChannels = 2,
     .defaultSampleRate = 48000},
    {.index = 2, .name = "in", .hostApi = 0, .maxInputChannels = 1, .maxOutputChannels = 0, .defaultSampleRate = 48000},
    {.index = 3,
     .name = "both",
     .hostApi = 0,
     .maxInputChannels = 1,
     .maxOutputChannels = 1,
     .defaultSampleRate = 48000},
    {.index = 4,
     .name = "of none",
     .hostApi = 1,
     .maxInputChannels = 1,
     .maxOutputChannels = 1,
     .defaultSampleRate = 48000},
    {.index = 5,
     .name = "lautsprecher \xc3\xa4",
     .hostApi = 2,
     .maxInputChannels = 0,
     .maxOutputChannels = 8,
     .defaultSampleRate = 48000}};

QStringList listed(std::initializer_list<const char *> names)
{
    QStringList result;
    for (const char *name : names)
        result.append(QString::fromUtf8(name));
    return result;
}

/// The devices, and what they said.
struct DeviceStage
{
    DeviceStage()
    {
        const auto note = [this](const char *name) {
            return
                [this, name](int index) { said.append(QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(index)); };
        };
        QObject::connect(&device, &AudioDevice::deviceListChanged, &device,
                         [this] { said.append(QStringLiteral("list")); });
        QObject::connect(&device, &AudioDevice::deviceChanged, &device,
                         [this] { said.append(QStringLiteral("device")); });
        QObject::connect(&device, &AudioDevice::inputDeviceChanged, &device, note("input"));
        QObject::connect(&device, &AudioDevice::outputHeadphoneDeviceChanged, &device, note("headphone"));
        QObject::connect(&device, &AudioDevice::outputSpeakerDeviceChanged, &device, note("speaker"));
    }

    QTemporaryDir folder;
    AppConfig config{folder.path()};
    std::shared_ptr<SoundThread> sound = std::make_shared<SoundThread>();
    AudioDevice device{config, sound};
    QStringList said;
};

} // namespace

class AudioDeviceTest : public QObject
{
    Q_OBJECT

private slots:
    void beforeTheLoad()
    {
        const DeviceStage stage;
        QVERIFY(!stage.device.isLoaded());
        QCOMPARE(stage.device.driverIndex(), -1);
        QCOMPARE(stage.device.driverType(), -1);
        QCOMPARE(stage.device.inputIndex(), -1);
        QCOMPARE(stage.device.inputDeviceId(), -1);
        QCOMPARE(stage.device.inputNames(), listed({"Default"}));
        QVERIFY(stage.device.driverNames().isEmpty());
    }

    void driver_data()
    {
        QTest::addColumn<int>("stored");
        QTest::addColumn<int>("index");
        QTest::addColumn<QStringList>("inputs");
        QTest::addColumn<QStringList>("outputs");
        QTest::addColumn<QStringList>("said");
        const QStringList alsa = listed({"list", "device", "input 2", "headphone 0", "speaker 0"});
        QTest::newRow("first") << 8 << 0 << listed({"Default", "in", "both"}) << listed({"Default", "out", "both"})
                               << alsa;
        QTest::newRow("last") << 13 << 1 << listed({"Default"}) << listed({"Default", "lautsprecher \xc3\xa4"})
                              << listed({"list", "device", "input -1", "headphone 5", "speaker 5"});
        QTest::newRow("of another system")
            << 2 << 0 << listed({"Default", "in", "both"}) << listed({"Default", "out", "both"}) << alsa;
    }

    void driver()
    {
        QFETCH(int, stored);
        DeviceStage stage;
        stage.config.set(config::voiceDriver, stored);
        stage.device.onRead(someDrivers, someDevices);
        QVERIFY(stage.device.isLoaded());
        QTEST(stage.device.driverIndex(), "index");
        QCOMPARE(stage.device.driverType(), stored);
        QCOMPARE(stage.device.driverNames(), listed({"ALSA", "WASAPI"}));
        QTEST(stage.device.inputNames(), "inputs");
        QTEST(stage.device.headphoneNames(), "outputs");
        QTEST(stage.device.speakerNames(), "outputs");
        QTEST(stage.said, "said");
        QCOMPARE(stage.device.inputDeviceId(), -1);
    }

    void storedNames()
    {
        DeviceStage stage;
        stage.config.set(config::voiceDriver, 8);
        stage.config.set(config::voiceInputDevice, QStringLiteral("both"));
        stage.config.set(config::voiceOutputHeadphoneDevice, QStringLiteral("gone"));
        stage.config.set(config::voiceOutputSpeakerDevice, QStringLiteral("out"));
        stage.device.onRead(someDrivers, someDevices);
        QCOMPARE(stage.said, listed({"list", "device", "input 3", "headphone 0", "speaker 0"}));
        QCOMPARE(stage.device.inputIndex(), 2);
        QCOMPARE(stage.device.inputName(), QStringLiteral("both"));
        QCOMPARE(stage.device.inputDeviceId(), 3);
        QCOMPARE(stage.device.headphoneIndex(), 0);
        QCOMPARE(stage.device.headphoneName(), QStringLiteral("Default"));
        QCOMPARE(stage.device.headphoneDeviceId(), -1);
        QCOMPARE(stage.device.speakerIndex(), 1);
        QCOMPARE(stage.device.speakerDeviceId(), 0);
        QCOMPARE(stage.config.get(config::voiceOutputHeadphoneDevice), QStringLiteral("gone")); // never written here
    }

    void noDevices()
    {
        DeviceStage stage;
        stage.device.onRead({}, {});
        QVERIFY(stage.device.isLoaded());
        QCOMPARE(stage.device.driverIndex(), 0);
        QCOMPARE(stage.said, listed({"list", "device", "input -1", "headphone -1", "speaker -1"}));
        stage.device.setDriver(0);
        stage.device.setInput(1);
        QCOMPARE(stage.said.size(), 5);
    }

    void loadIsOverWhenAllIsAnnounced()
    {
        DeviceStage stage;
        bool isLoaded = true;
        QObject::connect(&stage.device, &AudioDevice::outputSpeakerDeviceChanged, &stage.device,
                         [&] { isLoaded = stage.device.isLoaded(); });
        stage.device.onRead(someDrivers, someDevices);
        QVERIFY(!isLoaded);
    }

    void setDriver()
    {
        DeviceStage stage;
        stage.config.set(config::voiceDriver, 8);
        stage.config.set(config::voiceInputDevice, QStringLiteral("both"));
        stage.device.onRead(someDrivers, someDevices);
        stage.said.clear();
        stage.device.setDriver(-1);
        stage.device.setDriver(2);
        QVERIFY(stage.said.isEmpty());
        stage.device.setDriver(1);
        QCOMPARE(stage.said, listed({"list", "device", "input -1", "headphone 5", "speaker 5"}));
        QCOMPARE(stage.device.driverIndex(), 1);
        QCOMPARE(stage.device.driverType(), 13);
        QCOMPARE(stage.device.inputName(), QStringLiteral("Default"));
        QCOMPARE(stage.device.inputIndex(), 0);
        QCOMPARE(stage.device.headphoneName(), QStringLiteral("Default"));
        QCOMPARE(stage.device.speakerName(), QStringLiteral("Default"));
        QCOMPARE(stage.config.get(config::voiceDriver), 8); // never written here
    }

    void choose_data()
    {
        QTest::addColumn<int>("direction");
        QTest::addColumn<int>("index");
        QTest::addColumn<QStringList>("said");
        QTest::newRow("input") << 0 << 2 << listed({"device", "input 3"});
        QTest::newRow("headphone") << 1 << 1 << listed({"device", "headphone 0"});
        QTest::newRow("speaker") << 2 << 2 << listed({"device", "speaker 3"});
        QTest::newRow("input, negative") << 0 << -1 << QStringList();
        QTest::newRow("input, too high") << 0 << 3 << QStringList();
        QTest::newRow("input, default says nothing") << 0 << 0 << QStringList();
        QTest::newRow("headphone, default says nothing") << 1 << 0 << QStringList();
        QTest::newRow("speaker, default says nothing") << 2 << 0 << QStringList();
    }

    void choose()
    {
        QFETCH(int, direction);
        QFETCH(int, index);
        using Setter = void (AudioDevice::*)(int);
        constexpr Setter setters[] = {&AudioDevice::setInput, &AudioDevice::setOutputHeadphone,
                                      &AudioDevice::setOutputSpeaker};
        DeviceStage stage;
        stage.config.set(config::voiceDriver, 8);
        stage.device.onRead(someDrivers, someDevices);
        stage.said.clear();
        (stage.device.*setters[direction])(index);
        QTEST(stage.said, "said");
    }

    void defaultIsStoredWithoutAWord()
    {
        DeviceStage stage;
        stage.config.set(config::voiceDriver, 8);
        stage.device.onRead(someDrivers, someDevices);
        stage.device.setInput(1);
        QCOMPARE(stage.device.inputDeviceId(), 2);
        QCOMPARE(stage.device.inputName(), QStringLiteral("in"));
        stage.device.setInput(0);
        QCOMPARE(stage.device.inputDeviceId(), -1);
        QCOMPARE(stage.device.inputIndex(), 0);
        QCOMPARE(stage.device.inputName(), QStringLiteral("Default"));
    }

    void aSoundThreadWithoutRoomIsAskedAgain()
    {
        DeviceStage stage;
        std::promise<void> release;
        stage.sound->post([hang = release.get_future().share()] { hang.wait(); });
        while (stage.sound->post([] {})) {
        }
        stage.device.load();
        auto *again = stage.device.findChild<QTimer *>(QStringLiteral("again"));
        QVERIFY(again && again->isActive());
        release.set_value();
        QVERIFY(stage.sound->waitUntilIdle(std::chrono::milliseconds(tarvo::test::patienceMs)));
        again->start(0);
        TRY_VERIFY(stage.device.isLoaded());
    }

    void newDevicesLeaveTheChoice_data()
    {
        QTest::addColumn<bool>("hasChosen");
        QTest::newRow("as stored") << false;
        QTest::newRow("as chosen since") << true;
    }

    void newDevicesLeaveTheChoice()
    {
        QFETCH(bool, hasChosen);
        DeviceStage stage;
        stage.config.set(config::voiceDriver, 8);
        stage.config.set(config::voiceInputDevice, QStringLiteral("both"));
        int loads = 0;
        QObject::connect(&stage.device, &AudioDevice::loaded, &stage.device, [&loads] { ++loads; });
        stage.device.onRead(someDrivers, hasChosen ? someDevices : QList<DeviceInfo>());
        if (hasChosen)
            stage.device.setInput(1);
        stage.device.onRead(someDrivers, {}); // a sound server that goes, and comes back
        QCOMPARE(stage.device.inputName(), QStringLiteral("Default"));
        stage.said.clear();
        stage.device.onRead(someDrivers, someDevices);
        const QString said = hasChosen ? QStringLiteral("input 2") : QStringLiteral("input 3");
        QCOMPARE(stage.said, (QStringList{QStringLiteral("list"), QStringLiteral("device"), said,
                                          QStringLiteral("headphone 0"), QStringLiteral("speaker 0")}));
        QCOMPARE(stage.device.inputName(), hasChosen ? QStringLiteral("in") : QStringLiteral("both"));
        QCOMPARE(loads, 1);
    }

    void newDevicesAreNotReadBeforeTheLoad()
    {
        DeviceStage stage;
        stage.device.reload();
        QVERIFY(stage.sound->waitUntilIdle(std::chrono::milliseconds(0)));
        stage.device.onRead(someDrivers, {});
        stage.said.clear();
        stage.device.reload();
        TRY_VERIFY(!stage.said.isEmpty());
    }
};

TARVO_TEST(AudioDeviceTest)
#include "AudioDeviceTest.moc"

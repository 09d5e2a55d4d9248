#include "voice/sound/SoundStage.h"

#include "support/Patience.h"
#include "support/TestRegistry.h"
#include "voice/engine/AudioDevice.h"

#include <QSignalSpy>
#include <QTest>

#include <stdexcept>

using namespace tarvo::voice;
using tarvo::test::SoundStage;

class DevicesTest : public QObject
{
    Q_OBJECT

private slots:
    void listsWhatThereIs()
    {
        SoundStage stage;
        AudioDevice device(stage.config, stage.sound);
        QSignalSpy inputs(&device, &AudioDevice::inputDeviceChanged);
        device.load();
        QVERIFY(!device.isLoaded());
        TRY_VERIFY(device.isLoaded());
        QVERIFY(device.driverNames().contains(QStringLiteral("ALSA")));
        QCOMPARE(device.inputNames(),
                 (QStringList{QStringLiteral("Default"), QStringLiteral("mic_a"), QStringLiteral("default")}));
        const QStringList outputs{QStringLiteral("Default"), QStringLiteral("spk_a"), QStringLiteral("spk_b"),
                                  QStringLiteral("default")};
        QCOMPARE(device.headphoneNames(), outputs);
        QCOMPARE(device.speakerNames(), outputs);
        QCOMPARE(inputs.size(), 1);
        QCOMPARE(inputs[0][0].toInt(), stage.device("default"));
        device.setOutputSpeaker(2);
        QCOMPARE(device.speakerDeviceId(), stage.device("spk_b"));
    }

    void oneDevice()
    {
        SoundStage stage;
        const int microphone = stage.device("mic_a");
        DeviceInfo found;
        bool isRefused = false;
        stage.sound->post([&] {
            found = getVoiceDeviceInfo(microphone);
            try {
                getVoiceDeviceInfo(1000);
            } catch (const std::runtime_error &error) {
                isRefused = QByteArray(error.what()) == "Failed to get device info";
            }
        });
        QVERIFY(stage.sound->waitUntilIdle(std::chrono::milliseconds(tarvo::test::patienceMs)));
        QCOMPARE(found.name, QByteArray("mic_a"));
        QVERIFY(found.maxInputChannels > 0);
        QCOMPARE(found.maxOutputChannels, 0);
        QVERIFY(isRefused);
    }

    void directions()
    {
        SoundStage stage;
        QList<DeviceInfo> inputs;
        QList<DeviceInfo> outputs;
        qsizetype ofNoDriver = -1;
        qsizetype both = 0;
        stage.sound->post([&] {
            inputs = getVoiceInputDevices(0);
            outputs = getVoiceOutputDevices(0);
            ofNoDriver = getVoiceInputDevices(99).size() + getVoiceOutputDevices(99).size();
            both = getVoiceInputDevices().size() + getVoiceOutputDevices().size();
        });
        QVERIFY(stage.sound->waitUntilIdle(std::chrono::milliseconds(tarvo::test::patienceMs)));
        QCOMPARE(inputs.size(), 2);  // "mic_a", "default"
        QCOMPARE(outputs.size(), 3); // "spk_a", "spk_b", "default"
        QCOMPARE(ofNoDriver, 0);
        QCOMPARE(both, 5);
    }
};

TARVO_TEST(DevicesTest)
#include "DevicesTest.moc"

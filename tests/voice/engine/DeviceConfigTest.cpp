#include "voice/engine/DeviceStreams.h"
#include "voice/engine/SoundSystem.h"

#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::voice;

class DeviceConfigTest : public QObject
{
    Q_OBJECT

private slots:
    void config_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("offered");
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("samples");
        QTest::newRow("48000 Hz mono") << 48000.0 << 1 << 1 << 960;
        QTest::newRow("44100 Hz mono") << 44100.0 << 1 << 1 << 882;
        QTest::newRow("44100 Hz stereo") << 44100.0 << 2 << 2 << 1764;
        QTest::newRow("more than two channels") << 48000.0 << 3 << 2 << 1920;
        QTest::newRow("32 channels") << 48000.0 << 32 << 2 << 1920;
        QTest::newRow("none reported") << 48000.0 << 0 << 1 << 960;
        QTest::newRow("rate that is cut") << 44100.9 << 1 << 1 << 882;
        QTest::newRow("no whole number of samples") << 11025.0 << 2 << 2 << 440;
    }

    void config()
    {
        QFETCH(double, rate);
        QFETCH(int, offered);
        DeviceInfo device{.index = 7,
                          .name = "x",
                          .hostApi = 0,
                          .maxInputChannels = offered,
                          .maxOutputChannels = 1,
                          .defaultSampleRate = rate};
        const AudioStreamConfig input = configFor(device, StreamRole::Input);
        QTEST(int(input.channels), "channels");
        QTEST(int(input.framesPerBuffer), "samples");
        QCOMPARE(input.sampleRate, static_cast<int>(rate));
        QCOMPARE(input.device, 7);
        std::swap(device.maxInputChannels, device.maxOutputChannels);
        QCOMPARE(configFor(device, StreamRole::Headphone), input);
        QCOMPARE(configFor(device, StreamRole::Speaker), input);
    }

    void beforeADeviceIsChosen()
    {
        QCOMPARE(AudioStreamConfig{},
                 (AudioStreamConfig{.sampleRate = 44100, .channels = 1, .framesPerBuffer = 882, .device = {}}));
    }
};

TARVO_TEST(DeviceConfigTest)
#include "DeviceConfigTest.moc"

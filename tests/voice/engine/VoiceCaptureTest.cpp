#include "voice/engine/VoiceCapture.h"

#include "support/TestRegistry.h"
#include "voice/codec/AudioStreamConfig.h"
#include "voice/codec/OpusDecoder.h"
#include "voice/engine/Samples.h"

#include <QTest>

#include <cmath>

using namespace tarvo::voice;
using tarvo::common::VolumeInfo;

namespace {

AudioStreamConfig device(int sampleRate, int channels)
{
    return {
        .sampleRate = sampleRate, .channels = channels, .framesPerBuffer = sampleRate / 50 * channels, .device = {}};
}

/// A buffer of a microphone whose gate is open, and what becomes of it.
std::optional<CapturedFrame> captured(const std::vector<std::int16_t> &samples, const AudioStreamConfig &config,
                                      int gainDb = 0)
{
    const auto controls = std::make_shared<CaptureControls>();
    controls->transmitEnabled = true;
    controls->micGainDb = gainDb;
    VoiceCapture capture(config, controls);
    return capture.process(samples);
}

} // namespace

class VoiceCaptureTest : public QObject
{
    Q_OBJECT

private slots:
    void gate()
    {
        const auto controls = std::make_shared<CaptureControls>();
        VoiceCapture capture(device(48000, 1), controls);
        const std::vector<std::int16_t> samples(960, 1000);
        QVERIFY(!capture.process(samples)); // closed at first
        controls->transmitEnabled = true;
        QVERIFY(capture.process(samples));
        controls->transmitEnabled = false;
        QVERIFY(!capture.process(samples));
    }

    void becomesPacketsOfTwentyMs_data()
    {
        QTest::addColumn<int>("sampleRate");
        QTest::addColumn<int>("channels");
        QTest::newRow("48000 Hz mono") << 48000 << 1;
        QTest::newRow("48000 Hz stereo") << 48000 << 2;
        QTest::newRow("44100 Hz mono") << 44100 << 1;
        QTest::newRow("44100 Hz stereo") << 44100 << 2;
        QTest::newRow("11025 Hz, not quite 20 ms") << 11025 << 1;
        QTest::newRow("192000 Hz") << 192000 << 2;
    }

    void becomesPacketsOfTwentyMs()
    {
        QFETCH(int, sampleRate);
        QFETCH(int, channels);
        const AudioStreamConfig config = device(sampleRate, channels);
        VoiceCapture capture(config, [] {
            auto open = std::make_shared<CaptureControls>();
            open->transmitEnabled = true;
            return open;
        }());
        tarvo::voice::OpusDecoder decoder(config);
        std::vector<std::int16_t> buffer(static_cast<std::size_t>(config.framesPerBuffer));
        std::vector<float> heard;
        for (int frame = 0, time = 0; frame < 10; ++frame) {
            for (std::size_t i = 0; i < buffer.size(); ++i) {
                const double phase = 2 * M_PI * 400 * time / sampleRate;
                buffer[i] = static_cast<std::int16_t>(16000 * std::sin(phase));
                time += i % static_cast<std::size_t>(channels) + 1 == static_cast<std::size_t>(channels);
            }
            const std::optional<CapturedFrame> made = capture.process(buffer);
            QVERIFY(made);
            heard = decoder.decode(made->opus.data(), static_cast<int>(made->opus.size()));
            QCOMPARE(heard.size(), std::size_t(960 * channels));
        }
        // A sine of 16000 has an rms of 11314 and thus -9.2 dB, as long as nothing is padded.
        QVERIFY2(std::abs(levelOf(heard).db + 9.2F) < 1, qPrintable(QString::number(levelOf(heard).db)));
    }

    void levelIsTheGainedBuffers_data()
    {
        QTest::addColumn<int>("sample");
        QTest::addColumn<int>("gainDb");
        QTest::addColumn<float>("db");
        QTest::addColumn<int>("percent");
        QTest::newRow("silence") << 0 << 0 << -96.0F << 0;
        QTest::newRow("full scale") << -32768 << 0 << 0.0F << 100;
        QTest::newRow("one step below") << 32767 << 0 << -0.000265F << 99;
        QTest::newRow("clipped") << 32767 << 6 << -0.000265F << 99;
        QTest::newRow("clipped below") << -32768 << 6 << 0.0F << 100;
        QTest::newRow("damped") << -32768 << -6 << -6.0003F << 93; // -16422
        QTest::newRow("raised") << 1000 << 20 << -10.3090F << 89;  // 10000
        QTest::newRow("cut away") << 9 << -20 << -96.0F << 0;      // 0.9
    }

    void levelIsTheGainedBuffers()
    {
        QFETCH(int, sample);
        QFETCH(int, gainDb);
        QFETCH(float, db);
        for (const int rate : {44100, 48000}) { // resampling changes nothing
            const AudioStreamConfig config = device(rate, 1);
            const std::vector<std::int16_t> samples(static_cast<std::size_t>(config.framesPerBuffer),
                                                    static_cast<std::int16_t>(sample));
            const std::optional<CapturedFrame> made = captured(samples, config, gainDb);
            QVERIFY(made);
            QVERIFY2(std::abs(made->volume.db - db) < 0.0005F, qPrintable(QString::number(made->volume.db)));
            QTEST(made->volume.percent, "percent");
        }
    }

    void silenceTakesAFewBytes()
    {
        const std::optional<CapturedFrame> made = captured(std::vector<std::int16_t>(960), device(48000, 1));
        QVERIFY(made);
        QVERIFY(made->opus.size() < 30);
        QCOMPARE(made->volume, (VolumeInfo{-96, 0}));
    }

    void emptyBufferIsNothing() { QVERIFY(!captured({}, device(48000, 1))); }
};

TARVO_TEST(VoiceCaptureTest)
#include "VoiceCaptureTest.moc"

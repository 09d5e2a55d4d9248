#include "support/LogCapture.h"
#include "support/TestRegistry.h"
#include "voice/codec/AudioStreamConfig.h"
#include "voice/codec/CodecFormat.h"
#include "voice/codec/OpusDecoder.h"
#include "voice/codec/OpusEncoder.h"
#include "voice/codec/Resampler.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace voice = tarvo::voice;
using namespace tarvo::voice;
using tarvo::test::LogCapture;

namespace {

AudioStreamConfig withChannels(int channels)
{
    AudioStreamConfig config;
    config.channels = channels;
    return config;
}

/// `count` samples of a tone at half of full scale.
std::vector<float> tone(double frequency, int rate, std::size_t count)
{
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float>(
            0.5 * std::sin(2 * std::numbers::pi * frequency * static_cast<double>(i) / static_cast<double>(rate)));
    return samples;
}

double rms(std::span<const float> samples)
{
    double sum = 0;
    for (const double sample : samples)
        sum += sample * sample;
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

} // namespace

class CodecTest : public QObject
{
    Q_OBJECT

private slots:
    void silence()
    {
        voice::OpusEncoder encoder(withChannels(1));
        voice::OpusDecoder decoder(withChannels(1));
        const std::vector<std::int16_t> frame(codecFrameSize);
        const auto packet = encoder.encode(frame.data(), codecFrameSize);
        QVERIFY2(!packet.empty() && packet.size() < 30, qPrintable(QString::number(packet.size())));
        const std::vector<float> heard = decoder.decode(packet.data(), static_cast<int>(packet.size()));
        QCOMPARE(heard.size(), std::size_t{codecFrameSize});
        QVERIFY(rms(heard) < 1e-3);
    }

    /// 24,000 bit/s, give or take what libopus thinks a sound is worth.
    void noiseTakesTheBitrate()
    {
        voice::OpusEncoder encoder(withChannels(1));
        std::minstd_rand dice;
        std::vector<std::int16_t> frame(codecFrameSize);
        std::size_t bytes = 0;
        constexpr int frames = 50; // a second
        for (int i = 0; i < frames; ++i) {
            std::generate(frame.begin(), frame.end(), [&dice] { return static_cast<std::int16_t>(dice() % 20'000); });
            bytes += encoder.encode(frame.data(), codecFrameSize).size();
        }
        QVERIFY2(bytes > 2400 && bytes < 3900, qPrintable(QString::number(bytes)));
    }

    void toneSurvives_data()
    {
        QTest::addColumn<int>("channels");
        QTest::newRow("mono") << 1;
        QTest::newRow("stereo") << 2;
    }

    void toneSurvives()
    {
        QFETCH(int, channels);
        voice::OpusEncoder encoder(withChannels(channels));
        voice::OpusDecoder decoder(withChannels(channels));
        QCOMPARE(encoder.samplesPerFrame(), channels * 960);
        QCOMPARE(decoder.samplesPerFrame(), channels * 960);
        std::vector<std::int16_t> frame(static_cast<std::size_t>(encoder.samplesPerFrame()));
        for (std::size_t i = 0; i < frame.size(); ++i) {
            const double time = static_cast<double>(i / static_cast<std::size_t>(channels)) / codecSampleRate;
            frame[i] = static_cast<std::int16_t>(16384 * std::sin(2 * std::numbers::pi * 500 * time));
        }
        std::vector<float> heard;
        std::size_t bytes = 0;
        for (int i = 0; i < 10; ++i) { // 500 Hz: each frame holds ten whole periods
            const auto packet = encoder.encode(frame.data(), codecFrameSize);
            bytes += packet.size();
            heard = decoder.decode(packet.data(), static_cast<int>(packet.size()));
            QCOMPARE(heard.size(), frame.size());
        }
        QVERIFY2(std::abs(rms(heard) - 0.3536) < 0.05, qPrintable(QString::number(rms(heard))));
        // 24 kbit/s are 600 bytes in 200 ms; the first packets of a variable bitrate may take more.
        QVERIFY2(bytes > 200 && bytes < 1200, qPrintable(QString::number(bytes)));
    }

    void nothingComesOfNothing()
    {
        voice::OpusEncoder encoder(withChannels(1));
        voice::OpusDecoder decoder(withChannels(1));
        const std::uint8_t byte = 0x78;
        QVERIFY(encoder.encode(nullptr, codecFrameSize).empty());
        QVERIFY(decoder.decode(nullptr, 1).empty());
        QVERIFY(decoder.decode(&byte, 0).empty());
        QVERIFY(decoder.decode(&byte, -1).empty());
    }

    void whatTheLibraryRefusesIsLogged()
    {
        LogCapture log;
        voice::OpusEncoder encoder(withChannels(3));
        voice::OpusDecoder decoder(withChannels(3));
        const std::vector<std::int16_t> frame(codecFrameSize);
        const std::uint8_t packet[]{0x78, 0x9a};
        QVERIFY(encoder.encode(frame.data(), codecFrameSize).empty());
        QVERIFY(decoder.decode(packet, 2).empty());
        encoder.reset(withChannels(1)); // makes both whole again
        decoder.reset(withChannels(1));
        QVERIFY(encoder.encode(frame.data(), 961).empty()); // no frame of Opus has that size
        const std::uint8_t forty[]{0x40 | 0x10, 0};         // a packet of 40 ms
        QVERIFY(decoder.decode(forty, 2).empty());
        QCOMPARE(log.texts(), (QStringList{u"OpusEncoder: failed to create encoder: invalid argument"_qs,
                                           u"OpusDecoder: failed to create decoder: invalid argument"_qs,
                                           u"OpusEncoder: encode error: invalid argument"_qs,
                                           u"OpusDecoder: decode error: buffer too small"_qs}));
        QVERIFY(!encoder.encode(frame.data(), codecFrameSize).empty());
    }

    void resampled_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<int>("count");
        QTest::newRow("device to codec") << 44100 << 48000 << 882;
        QTest::newRow("codec to device") << 48000 << 44100 << 960;
        QTest::newRow("telephone to codec") << 8000 << 48000 << 160;
        QTest::newRow("same rate") << 48000 << 48000 << 960;
    }

    void resampled()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(int, count);
        const std::vector<float> result = resampleFloat(tone(500, from, static_cast<std::size_t>(count)), from, to);
        const auto expected = static_cast<std::size_t>(qint64{count} * to / from);
        QVERIFY2(result.size() >= expected && result.size() <= expected + 1,
                 qPrintable(QString::number(result.size())));
        const std::vector<float> sine = tone(500, to, result.size());
        double worst = 0; // the edges ring
        for (std::size_t i = 50; i + 50 < result.size(); ++i)
            worst = std::max(worst, static_cast<double>(std::abs(result[i] - sine[i])));
        QVERIFY2(worst < 0.02, qPrintable(QString::number(worst)));
    }

    void sameRateChangesNothing()
    {
        const std::vector<float> samples = tone(500, 48000, 960);
        QCOMPARE(resampleFloat(samples, 48000, 48000), samples);
    }

    void nothingIsResampled()
    {
        QVERIFY(resampleFloat({}, 44100, 48000).empty());
        const float sample = 1;
        QVERIFY(resampleFloat({&sample, 1}, 0, 48000).empty());
        QVERIFY(resampleFloat({&sample, 1}, 48000, -1).empty());
    }
};

TARVO_TEST(CodecTest)
#include "CodecTest.moc"

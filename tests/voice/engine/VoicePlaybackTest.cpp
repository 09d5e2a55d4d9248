#include "voice/engine/VoicePlayback.h"

#include "support/LogCapture.h"
#include "support/TestRegistry.h"
#include "voice/codec/OpusEncoder.h"
#include "voice/engine/AllocationCount.h"
#include "voice/engine/Samples.h"

#include <QTest>

#include <cmath>

using namespace tarvo::voice;
using tarvo::common::VolumeInfo;

namespace {

constexpr AudioStreamConfig codecRate{.sampleRate = 48000, .channels = 1, .framesPerBuffer = 960, .device = {}};
constexpr AudioStreamConfig cdRate{.sampleRate = 44100, .channels = 1, .framesPerBuffer = 882, .device = {}};
constexpr AudioStreamConfig cdStereo{.sampleRate = 44100, .channels = 2, .framesPerBuffer = 1764, .device = {}};

std::vector<float> nextBuffer(VoicePlayback &playback)
{
    std::vector<float> out(static_cast<std::size_t>(playback.config().framesPerBuffer), 99.0F);
    playback.mix(out);
    return out;
}

bool isSilent(const std::vector<float> &samples)
{
    return samples == std::vector<float>(samples.size());
}

/// A packet of 20 ms of a sine with a peak of 16000, somewhere behind its beginning.
std::vector<std::uint8_t> sinePacket()
{
    tarvo::voice::OpusEncoder encoder(codecRate);
    std::vector<std::uint8_t> packet;
    std::vector<std::int16_t> pcm(960);
    for (int frame = 0; frame < 3; ++frame) {
        for (std::size_t i = 0; i < pcm.size(); ++i)
            pcm[i] = static_cast<std::int16_t>(16000 * std::sin(2 * M_PI * 400 * static_cast<double>(i) / 48000));
        packet = encoder.encode(pcm.data(), 960);
    }
    return packet;
}

} // namespace

class VoicePlaybackTest : public QObject
{
    Q_OBJECT

private slots:
    void packetIsHeardAtOnceAndOnce_data()
    {
        QTest::addColumn<int>("sampleRate");
        QTest::addColumn<int>("channels");
        QTest::newRow("48000 Hz") << 48000 << 1;
        QTest::newRow("44100 Hz") << 44100 << 1;
        QTest::newRow("44100 Hz stereo") << 44100 << 2;
        QTest::newRow("8000 Hz") << 8000 << 1;
    }

    void packetIsHeardAtOnceAndOnce()
    {
        QFETCH(int, sampleRate);
        QFETCH(int, channels);
        VoicePlayback playback({.sampleRate = sampleRate,
                                .channels = channels,
                                .framesPerBuffer = sampleRate / 50 * channels,
                                .device = {}});
        playback.addChannel(1);
        QVERIFY(playback.playPacket(1, sinePacket(), false, 1));
        QVERIFY(!isSilent(nextBuffer(playback)));
        QVERIFY(isSilent(nextBuffer(playback)));
    }

    void levelIsThePacketsWhateverTheVolume()
    {
        VoicePlayback playback(codecRate);
        playback.addChannel(0);
        tarvo::voice::OpusDecoder decoder(codecRate);
        const std::vector<std::uint8_t> packet = sinePacket();
        const std::vector<float> decoded = decoder.decode(packet.data(), static_cast<int>(packet.size()));
        const std::optional<VolumeInfo> level = playback.playPacket(0, packet, false, 0.5F);
        QVERIFY(level.has_value());
        QCOMPARE(*level, levelOf(decoded));
        const std::vector<float> heard = nextBuffer(playback);
        for (std::size_t i = 0; i < heard.size(); ++i)
            QCOMPARE(heard[i], std::tanh(decoded[i] * 0.5F));
    }

    void withoutItsChannelAPacketIsMeteredOnly()
    {
        VoicePlayback playback(codecRate);
        QVERIFY(playback.playPacket(0, sinePacket(), false, 1));
        playback.addChannel(0);
        QVERIFY(isSilent(nextBuffer(playback)));
        playback.playPacket(0, sinePacket(), false, 1);
        playback.removeChannel(0);
        playback.addChannel(0);
        QVERIFY(isSilent(nextBuffer(playback)));
    }

    void whatIsNoPacketIsNothing()
    {
        VoicePlayback playback(codecRate);
        playback.addChannel(0);
        const tarvo::test::LogCapture log;
        QVERIFY(!playback.playPacket(0, {}, false, 1));
        QVERIFY(log.lines().isEmpty());
        QVERIFY(!playback.playPacket(0, std::vector<std::uint8_t>{0xff, 0xff, 0xff}, false, 1));
        QVERIFY(log.contains(QStringLiteral("OpusDecoder: decode error:")));
        QVERIFY(isSilent(nextBuffer(playback)));
    }

    void conflictBuzzesInsteadOfThePacket()
    {
        VoicePlayback playback(cdRate);
        playback.addChannel(0);
        QVERIFY(!playback.playPacket(0, sinePacket(), true, 0.5F));
        QVERIFY(!playback.playPacket(7, {}, true, 0.5F)); // nothing of it matters
        for (int frame = 0; frame < 2; ++frame) {
            const std::vector<float> heard = nextBuffer(playback);
            for (std::size_t i = 0; i < heard.size(); ++i) {
                const auto phase = static_cast<float>((882 * static_cast<std::size_t>(frame) + i) % 150);
                const float expected = 0.15F * std::sin(phase * 6.2831855F * 293.66F / 44100);
                QVERIFY2(std::abs(heard[i] - expected) < 1e-6F, qPrintable(QString::number(i)));
            }
        }
        QVERIFY(isSilent(nextBuffer(playback)));
    }

    void conflictTakesTheDevicesRate()
    {
        VoicePlayback playback(codecRate);
        playback.playPacket(0, {}, true, 1);
        const std::vector<float> heard = nextBuffer(playback);
        QCOMPARE(heard[163], heard[0]); // its period
        QCOMPARE(heard[163 + 40], heard[40]);
        QVERIFY(heard[40] > 0.29F); // a quarter
    }

    void silentConflictDelaysVoice()
    {
        VoicePlayback playback(codecRate);
        playback.addChannel(0);
        playback.playPacket(0, sinePacket(), false, 1);
        playback.playPacket(0, {}, true, 0);
        QVERIFY(isSilent(nextBuffer(playback)));
        QVERIFY(!isSilent(nextBuffer(playback)));
    }

    void toneIsTheSameInBothEars()
    {
        VoicePlayback mono(cdRate);
        VoicePlayback stereo(cdStereo);
        SineTone tone(44100, 1000, 0.3F);
        mono.playTone(tone, 1);
        tone.setFrequency(1000); // from its beginning
        stereo.playTone(tone, 1);
        const std::vector<float> once = nextBuffer(mono);
        const std::vector<float> twice = nextBuffer(stereo);
        for (std::size_t i = 0; i < once.size(); ++i) {
            QCOMPARE(twice[2 * i], once[i]);
            QCOMPARE(twice[2 * i + 1], once[i]);
        }
    }

    void absurdToneIsClipped()
    {
        VoicePlayback playback(cdRate);
        SineTone tone(44100, 1000, 0.3F);
        playback.playTone(tone, 1e30F);
        for (const float sample : nextBuffer(playback))
            QVERIFY(std::abs(sample) <= 1);
    }

    void audioThreadTakesNoMemory()
    {
        VoicePlayback playback(cdStereo);
        for (int id = 0; id < 8; ++id) {
            playback.addChannel(id);
            playback.playPacket(id, sinePacket(), false, 1);
        }
        SineTone tone(44100, 1000, 0.3F);
        playback.playTone(tone, 1);
        std::vector<float> out(1764);
        const std::size_t before = tarvo::test::allocationCount();
        for (int i = 0; i < 4; ++i)
            playback.mix(out);
        QCOMPARE(tarvo::test::allocationCount(), before);
        const std::vector<int> one(1); // the count counts
        QVERIFY(tarvo::test::allocationCount() > before);
        QVERIFY(one.size() == 1);
    }
};

TARVO_TEST(VoicePlaybackTest)
#include "VoicePlaybackTest.moc"

#include "voice/engine/OutputMixer.h"

#include "support/TestRegistry.h"

#include <QTest>

#include <cmath>
#include <vector>

using namespace tarvo::voice;
using Frame = std::vector<float>;

namespace {

Frame mixed(OutputMixer &mixer, std::size_t size = 2)
{
    Frame out(size, 99.0F); // what was in the device's buffer
    mixer.mix(out);
    return out;
}

Frame soft(const Frame &samples)
{
    Frame clipped;
    for (const float sample : samples)
        clipped.push_back(std::tanh(sample));
    return clipped;
}

const Frame quiet{0, 0};

} // namespace

class OutputMixerTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsSilence()
    {
        OutputMixer mixer(2);
        QCOMPARE(mixed(mixer), quiet);
        mixer.addChannel(0);
        QCOMPARE(mixed(mixer), quiet);
    }

    void channelsAreSummedAndSoftlyClipped()
    {
        OutputMixer mixer(2);
        mixer.addChannel(0);
        mixer.addChannel(1);
        mixer.pushVoice(0, Frame{1, 0.25F});
        QCOMPARE(mixed(mixer), (Frame{0.761594176F, std::tanh(0.25F)}));
        mixer.pushVoice(0, Frame{1, 0.25F});
        mixer.pushVoice(1, Frame{0.5F, -1});
        QCOMPARE(mixed(mixer), soft({1.5F, -0.75F}));
        QCOMPARE(mixed(mixer), quiet);
    }

    void soundIsCutIntoFramesThatEndWithSilence()
    {
        OutputMixer mixer(2);
        mixer.addChannel(0);
        mixer.pushVoice(0, Frame{1, 2, 3});
        mixer.pushVoice(0, Frame{4});
        QCOMPARE(mixed(mixer), soft({1, 2}));
        QCOMPARE(mixed(mixer), soft({3, 0}));
        QCOMPARE(mixed(mixer), soft({4, 0}));
        QCOMPARE(mixed(mixer), quiet);
    }

    void localSoundComesFirstAsItIs()
    {
        OutputMixer mixer(2);
        mixer.addChannel(0);
        mixer.pushVoice(0, Frame{0.5F, 0.5F});
        mixer.pushLocal(Frame{1, -1});
        mixer.pushLocal(Frame{0.25F});
        QCOMPARE(mixed(mixer), (Frame{1, -1}));
        QCOMPARE(mixed(mixer), (Frame{0.25F, 0}));
        QCOMPARE(mixed(mixer), soft({0.5F, 0.5F})); // delayed, not lost
    }

    void emptyLocalSoundIsNone()
    {
        OutputMixer mixer(2);
        mixer.addChannel(0);
        mixer.pushLocal({});
        mixer.pushVoice(0, Frame{0.5F, 0.5F});
        QCOMPARE(mixed(mixer), soft({0.5F, 0.5F}));
    }

    void fullQueuesDropWhatIsNew_data()
    {
        QTest::addColumn<bool>("local");
        QTest::addColumn<int>("limit");
        QTest::newRow("local") << true << 16;
        QTest::newRow("voice") << false << 32;
    }

    void fullQueuesDropWhatIsNew()
    {
        QFETCH(bool, local);
        QFETCH(int, limit);
        OutputMixer mixer(1);
        mixer.addChannel(7);
        const auto push = [&](float sample) {
            local ? mixer.pushLocal(Frame{sample}) : mixer.pushVoice(7, Frame{sample});
        };
        // Twice, so that the queue's place in its memory goes round.
        for (int round = 0; round < 2; ++round) {
            for (int i = 0; i <= limit; ++i)
                push(static_cast<float>(i) / 100);
            for (int i = 0; i < limit; ++i) {
                const float sample = static_cast<float>(i) / 100;
                QCOMPARE(mixed(mixer, 1).front(), local ? sample : std::tanh(sample));
            }
            QCOMPARE(mixed(mixer, 1).front(), 0.0F);
            push(0.5F);
            QVERIFY(mixed(mixer, 1).front() > 0);
        }
    }

    void longSoundFillsTheQueueOnce()
    {
        OutputMixer mixer(2);
        mixer.addChannel(0);
        mixer.pushVoice(0, Frame(2 * 33, 0.5F));
        for (int i = 0; i < 32; ++i)
            QCOMPARE(mixed(mixer), soft({0.5F, 0.5F}));
        QCOMPARE(mixed(mixer), quiet);
    }

    /// A sound device that misses its turn, and frames that come late together, make what follows late; no more than
    /// the queue is long, and no longer than until the speaker takes breath.
    void delayGrowsToTheQueueAndEndsWithThePause_data()
    {
        QTest::addColumn<int>("late"); // frames of 20 ms
        QTest::addColumn<bool>("device");
        QTest::addColumn<int>("delayMs");
        QTest::newRow("never late") << 0 << false << 0;
        QTest::newRow("one frame") << 1 << false << 20;
        QTest::newRow("ten frames together") << 10 << false << 200;
        QTest::newRow("two seconds together") << 100 << false << 620;
        QTest::newRow("device, one buffer") << 1 << true << 20;
        QTest::newRow("device, two seconds") << 100 << true << 620;
    }

    void delayGrowsToTheQueueAndEndsWithThePause()
    {
        QFETCH(int, late);
        QFETCH(bool, device);
        constexpr int trouble = 10; // frames after the beginning
        OutputMixer mixer(1);
        mixer.addChannel(0);
        int sent = 0;
        int heard = 0; // the number of the frame that was heard last
        // 20 ms: what has been said by then comes in, and the device takes its next buffer.
        const auto pass = [&](int now, bool arrives, bool plays) {
            while (arrives && sent <= now)
                mixer.pushVoice(0, Frame{static_cast<float>(sent++ + 1) / 1000});
            if (plays)
                heard = static_cast<int>(std::lround(std::atanh(mixed(mixer, 1).front()) * 1000)) - 1;
        };
        int now = 0;
        for (; now < 300; ++now) {
            const bool isWell = now < trouble || now >= trouble + late;
            pass(now, isWell || device, isWell || !device);
        }
        QTEST((now - 1 - heard) * 20, "delayMs");
        for (int pause = 0; pause < 32; ++pause)
            pass(now, false, true);
        pass(now, true, true);
        QCOMPARE(heard, now);
    }

    void removedChannelIsSilentAndForgets()
    {
        OutputMixer mixer(2);
        mixer.pushVoice(0, Frame{1, 1});
        mixer.addChannel(0);
        QCOMPARE(mixed(mixer), quiet); // what came before the channel is lost
        mixer.pushVoice(0, Frame{1, 1});
        mixer.addChannel(0); // again: keeps what it holds
        QCOMPARE(mixed(mixer), soft({1, 1}));
        mixer.pushVoice(0, Frame{1, 1});
        mixer.removeChannel(0);
        mixer.removeChannel(1); // none
        QCOMPARE(mixed(mixer), quiet);
        mixer.addChannel(0);
        QCOMPARE(mixed(mixer), quiet);
    }

    void bufferOfAnotherSizeIsCutOrFilledUp()
    {
        OutputMixer mixer(2);
        mixer.addChannel(0);
        mixer.pushLocal(Frame{1, 2});
        mixer.pushLocal(Frame{3, 4});
        QCOMPARE(mixed(mixer, 1), Frame{1});
        QCOMPARE(mixed(mixer, 3), (Frame{3, 4, 0}));
        mixer.pushVoice(0, Frame{1, 2, 3, 4});
        QCOMPARE(mixed(mixer, 1), soft({1}));
        QCOMPARE(mixed(mixer, 3), soft({3, 4, 0}));
        QCOMPARE(mixed(mixer, 0), Frame{});
    }
};

TARVO_TEST(OutputMixerTest)
#include "OutputMixerTest.moc"

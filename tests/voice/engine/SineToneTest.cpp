#include "voice/engine/SineTone.h"

#include "support/TestRegistry.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace tarvo::voice;

namespace {

std::vector<float> taken(SineTone &tone, std::size_t count, float volume = 1)
{
    std::vector<float> samples(count);
    tone.take(samples, volume);
    return samples;
}

} // namespace

class SineToneTest : public QObject
{
    Q_OBJECT

private slots:
    void period_data()
    {
        QTest::addColumn<int>("sampleRate");
        QTest::addColumn<float>("frequency");
        QTest::addColumn<int>("period");
        const float nan = std::numeric_limits<float>::quiet_NaN();
        QTest::newRow("conflict") << 44100 << 293.66F << 150;
        QTest::newRow("conflict at the codec's rate") << 48000 << 293.66F << 163;
        QTest::newRow("as many samples as there are") << 48000 << 48000.0F << 1;
        QTest::newRow("higher than the rate") << 48000 << 96000.0F << 1;
        QTest::newRow("a second") << 48000 << 1.0F << 48000;
        QTest::newRow("no more than a second") << 48000 << 0.001F << 48000;
        QTest::newRow("no frequency") << 48000 << 0.0F << 1;
        QTest::newRow("negative") << 48000 << -440.0F << 1;
        QTest::newRow("NaN") << 48000 << nan << 1;
        QTest::newRow("no rate") << 0 << 440.0F << 1;
    }

    void period()
    {
        QFETCH(int, sampleRate);
        QFETCH(float, frequency);
        QTEST(SineTone(sampleRate, frequency, 0.3F).period(), "period");
        SineTone changed(44100, 440, 0.3F);
        changed.setSampleRate(sampleRate);
        changed.setFrequency(frequency);
        QTEST(changed.period(), "period");
    }

    void samplesAreASine()
    {
        SineTone tone(8, 1, 0.3F);
        const std::vector<float> samples = taken(tone, 9);
        const float slope = 0.3F * std::sqrt(0.5F);
        const std::vector<float> expected{0, slope, 0.3F, slope, 0, -slope, -0.3F, -slope, 0};
        for (std::size_t i = 0; i < samples.size(); ++i)
            QVERIFY2(std::abs(samples[i] - expected[i]) < 1e-6F, qPrintable(QString::number(i)));
    }

    void channelsHaveTheSameTone()
    {
        SineTone mono(44100, 440, 0.3F);
        SineTone stereo(44100, 440, 0.3F);
        const std::vector<float> once = taken(mono, 3);
        std::vector<float> twice(6);
        stereo.take(twice, 1, 2);
        QCOMPARE(twice, (std::vector<float>{once[0], once[0], once[1], once[1], once[2], once[2]}));
    }

    void toneWithoutAFrequencyIsSilent()
    {
        for (const float frequency : {0.0F, -440.0F, std::numeric_limits<float>::quiet_NaN()}) {
            SineTone tone(48000, frequency, 0.3F);
            QCOMPARE(taken(tone, 3), std::vector<float>(3));
        }
    }

    void goesOnWhereItStopped()
    {
        SineTone whole(44100, 293.66F, 0.3F);
        SineTone pieces(44100, 293.66F, 0.3F);
        std::vector<float> together = taken(pieces, 100);
        const std::vector<float> second = taken(pieces, 100);
        together.insert(together.end(), second.begin(), second.end());
        QCOMPARE(together, taken(whole, 200));
    }

    void anotherPitchBeginsAnew()
    {
        SineTone tone(44100, 440, 0.3F);
        taken(tone, 10);
        tone.setFrequency(440);
        QCOMPARE(taken(tone, 1).front(), 0.0F);
        taken(tone, 10);
        tone.setSampleRate(44100);
        QCOMPARE(taken(tone, 1).front(), 0.0F);
    }

    void volumeMultiplies()
    {
        SineTone tone(4, 1, 0.3F);
        QCOMPARE(taken(tone, 2, 0.5F)[1], 0.15F);
        QCOMPARE(taken(tone, 2, 0)[1], -0.0F);
    }
};

TARVO_TEST(SineToneTest)
#include "SineToneTest.moc"

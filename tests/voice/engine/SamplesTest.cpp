#include "voice/engine/Samples.h"

#include "support/TestRegistry.h"

#include <QTest>

#include <cmath>
#include <vector>

using namespace tarvo::voice;
using Samples16 = std::vector<std::int16_t>;
using Samples = std::vector<float>;

class SamplesTest : public QObject
{
    Q_OBJECT

private slots:
    void level_data()
    {
        QTest::addColumn<Samples16>("samples");
        QTest::addColumn<float>("db");
        QTest::addColumn<int>("percent");
        QTest::newRow("none") << Samples16{} << -96.0F << 0;
        QTest::newRow("silence") << Samples16(960) << -96.0F << 0;
        QTest::newRow("full scale, square") << Samples16{-32768, -32768} << 0.0F << 100;
        QTest::newRow("one step below") << Samples16{32767, -32767} << -0.000265F << 99;
        QTest::newRow("half") << Samples16{16384, -16384} << -6.0206F << 93;
        QTest::newRow("quietest") << Samples16{1, -1} << -90.309F << 5;
        QTest::newRow("quieter than the meter") << [] {
            Samples16 rare(960);
            rare[0] = 1;
            return rare;
        }() << -96.0F << 0;
    }

    void level()
    {
        QFETCH(Samples16, samples);
        QFETCH(float, db);
        QFETCH(int, percent);
        Samples floats(samples.size());
        toFloat(samples, floats);
        for (const tarvo::common::VolumeInfo volume : {levelOf(samples), levelOf(floats)}) {
            QVERIFY2(std::abs(volume.db - db) < 0.0005F, qPrintable(QString::number(volume.db)));
            QCOMPARE(volume.percent, percent);
        }
    }

    void levelNeverLeavesTheMeter() { QCOMPARE(levelOf(Samples{8, -8}), (tarvo::common::VolumeInfo{0, 100})); }

    void amplified_data()
    {
        QTest::addColumn<int>("sample");
        QTest::addColumn<int>("db");
        QTest::addColumn<int>("expected");
        QTest::newRow("0 dB changes nothing") << -12345 << 0 << -12345;
        QTest::newRow("6 dB") << 1000 << 6 << 1995;
        QTest::newRow("-6 dB, cut towards 0") << -1000 << -6 << -501;
        QTest::newRow("clipped above") << 32767 << 6 << 32767;
        QTest::newRow("clipped below") << -32768 << 6 << -32768;
        QTest::newRow("absurd gain") << 1 << 2000 << 32767;
        QTest::newRow("absurd damping") << 32767 << -2000 << 0;
    }

    void amplified()
    {
        QFETCH(int, sample);
        QFETCH(int, db);
        Samples16 buffer{static_cast<std::int16_t>(sample)};
        amplify(buffer, gainFactor(db), buffer);
        QTEST(int(buffer[0]), "expected");
    }

    void silenceStaysSilentUnderAnyGain()
    {
        Samples16 buffer{0};
        amplify(buffer, gainFactor(2000), buffer);
        QCOMPARE(buffer, Samples16{0});
    }

    void sixteenBits()
    {
        Samples16 converted(4, 99);
        toInt16(Samples{1, -1, 0.5F, 2}, converted);
        QCOMPARE(converted, (Samples16{32767, -32767, 16383, 32767}));
        toInt16(Samples{-2}, converted);
        QCOMPARE(converted, (Samples16{-32768, 0, 0, 0}));
        toInt16(Samples(5, 1.0F), converted);
        QCOMPARE(converted, Samples16(4, 32767));
    }

    void floats()
    {
        Samples converted(3);
        toFloat(Samples16{-32768, 1, 32767}, converted);
        QCOMPARE(converted, (Samples{-1, 1.0F / 32768, 32767.0F / 32768}));
    }

    void volume()
    {
        Samples samples{0.5F, 0.9F, -0.9F};
        setVolume(samples, 2);
        QCOMPARE(samples, (Samples{1, 1, -1}));
        setVolume(samples, 0.25F);
        QCOMPARE(samples, (Samples{0.25F, 0.25F, -0.25F}));
    }
};

TARVO_TEST(SamplesTest)
#include "SamplesTest.moc"

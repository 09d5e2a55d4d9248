#include "voice/client/Speakers.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

using tarvo::voice::Speakers;

/// Who holds a frequency.
class SpeakersTest : public QObject
{
    Q_OBJECT

private slots:
    void theFirstHoldsWhileHisGapsAreShort_data()
    {
        QTest::addColumn<qint64>("gapMs");
        QTest::addColumn<bool>("taken");
        QTest::newRow("at once") << qint64(0) << false;
        QTest::newRow("the last moment") << qint64(99) << false;
        QTest::newRow("a pause") << qint64(100) << true;
    }

    void theFirstHoldsWhileHisGapsAreShort()
    {
        QFETCH(qint64, gapMs);
        QFETCH(bool, taken);
        Speakers speakers;
        QVERIFY(speakers.take(118500, "ONE", 1000));
        QVERIFY(speakers.take(118500, "ONE", 1060));
        QCOMPARE(speakers.take(118500, "TWO", 1060 + gapMs), taken);
    }

    void whoIsRefusedDoesNotProlongTheHold()
    {
        Speakers speakers;
        QVERIFY(speakers.take(118500, "ONE", 1000));
        QVERIFY(!speakers.take(118500, "TWO", 1099));
        QVERIFY(speakers.take(118500, "TWO", 1100));
        QVERIFY(!speakers.take(118500, "ONE", 1101));
    }

    void eachFrequencyIsHeldByItself()
    {
        Speakers speakers;
        QVERIFY(speakers.take(118500, "ONE", 1000));
        QVERIFY(speakers.take(121500, "TWO", 1000));
        QVERIFY(!speakers.take(121500, "ONE", 1001));
    }

    void anyNumberOfFrequenciesFitsIntoTheMemory()
    {
        Speakers speakers;
        for (int kHz = 0; kHz < 100'000; ++kHz)
            QVERIFY(speakers.take(kHz, "ONE", 1000));
        QVERIFY(speakers.rememberedFrequencies() <= 4096);
        QVERIFY(!speakers.take(99'999, "TWO", 1001));
    }
};

TARVO_TEST(SpeakersTest)
#include "SpeakersTest.moc"

#include "voice/client/TransmitterTable.h"
#include "support/TestRegistry.h"

#include <QObject>
#include <QTest>

using tarvo::voice::TransmitterTable;

class TransmitterTableTest : public QObject
{
    Q_OBJECT

private slots:
    void aFrequencyFindsItsRadio_data()
    {
        QTest::addColumn<quint32>("com1");
        QTest::addColumn<quint32>("com2");
        QTest::addColumn<int>("kHz");
        QTest::addColumn<int>("id"); // -1: none
        QTest::newRow("COM1") << 118500U << 121500U << 118500 << 0;
        QTest::newRow("COM2") << 118500U << 121500U << 121500 << 1;
        QTest::newRow("both") << 118500U << 118500U << 118500 << 1;
        QTest::newRow("none") << 118500U << 121500U << 118505 << -1;
        QTest::newRow("not tuned") << 0U << 0U << 0 << -1;
        QTest::newRow("negative") << 118500U << 4294967295U << -1 << -1;
    }

    void aFrequencyFindsItsRadio()
    {
        QFETCH(quint32, com1);
        QFETCH(quint32, com2);
        QFETCH(int, kHz);
        QFETCH(int, id);
        TransmitterTable table;
        table.set({.id = 0, .frequency = com1});
        table.set({.id = 1, .frequency = com2});
        const auto *found = table.tunedTo(kHz);
        QCOMPARE(found ? static_cast<int>(found->id) : -1, id);
    }

    void ofTwoOnOneFrequencyOneThatIsHeard_data()
    {
        QTest::addColumn<bool>("com1");
        QTest::addColumn<bool>("com2");
        QTest::addColumn<quint32>("id");
        QTest::newRow("COM1 alone is heard") << true << false << 0U;
        QTest::newRow("COM2 alone is heard") << false << true << 1U;
        QTest::newRow("both are") << true << true << 1U;
        QTest::newRow("none is") << false << false << 1U;
    }

    void ofTwoOnOneFrequencyOneThatIsHeard()
    {
        QFETCH(bool, com1);
        QFETCH(bool, com2);
        TransmitterTable table;
        table.set({.id = 0, .frequency = 118500, .receive = com1});
        table.set({.id = 1, .frequency = 118500, .receive = com2});
        QTEST(table.tunedTo(118500)->id, "id");
    }

    void theSameRadioIsRetuned()
    {
        TransmitterTable table;
        table.set({.id = 0, .frequency = 118500});
        table.set({.id = 0, .frequency = 121500});
        QVERIFY(!table.tunedTo(118500));
        QCOMPARE(table.find(0)->frequency, 121500U);
        QVERIFY(!table.find(1));
        table.clear();
        QVERIFY(!table.find(0));
    }
};

TARVO_TEST(TransmitterTableTest)
#include "TransmitterTableTest.moc"

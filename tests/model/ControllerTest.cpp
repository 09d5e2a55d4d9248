#include "model/Controller.h"
#include "support/TestRegistry.h"

#include <QTest>

using tarvo::model::normalisedFrequency;

class ControllerTest : public QObject
{
    Q_OBJECT

private slots:
    void normalised_data()
    {
        QTest::addColumn<quint32>("frequency");
        QTest::addColumn<quint32>("expected");
        QTest::newRow("ends in 20") << 118020U << 118025U;
        QTest::newRow("ends in 70") << 121970U << 121975U;
        QTest::newRow("ends in 25") << 118025U << 118025U;
        QTest::newRow("ends in 75") << 118275U << 118275U;
        QTest::newRow("ends in 00") << 118200U << 118200U;
        QTest::newRow("ends in 50") << 118250U << 118250U;
        QTest::newRow("20 in front of the last two digits") << 112001U << 112001U;
        QTest::newRow("no frequency") << 199998U << 199998U;
        QTest::newRow("nothing") << 0U << 0U;
        QTest::newRow("20 alone") << 20U << 25U;
        QTest::newRow("the largest that changes") << 4294967270U << 4294967275U;
        QTest::newRow("the largest") << 4294967295U << 4294967295U;
    }

    void normalised()
    {
        QFETCH(quint32, frequency);
        QFETCH(quint32, expected);
        QCOMPARE(normalisedFrequency(frequency), expected);
        QCOMPARE(normalisedFrequency(expected), expected); // once is enough
    }
};

TARVO_TEST(ControllerTest)
#include "ControllerTest.moc"

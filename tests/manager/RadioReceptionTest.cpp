#include "manager/RadioReception.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::manager;
using tarvo::model::RadioStackState;

class RadioReceptionTest : public QObject
{
    Q_OBJECT

private slots:
    void heard_data()
    {
        QTest::addColumn<QString>("on"); // which receivers
        QTest::addColumn<uint>("com1");
        QTest::addColumn<uint>("com2");
        QTest::addColumn<QList<uint>>("sent");
        QTest::addColumn<QList<uint>>("expected");
        using Kilohertz = QList<uint>;
        QTest::newRow("on COM1") << u"12"_qs << 118500U << 121700U << Kilohertz{118500} << Kilohertz{118500};
        QTest::newRow("on COM2") << u"12"_qs << 118500U << 121700U << Kilohertz{121700} << Kilohertz{121700};
        QTest::newRow("on both radios once")
            << u"12"_qs << 118500U << 118500U << Kilohertz{118500} << Kilohertz{118500};
        QTest::newRow("in the text's order")
            << u"12"_qs << 118500U << 121700U << Kilohertz{121700, 122800, 118500} << Kilohertz{121700, 118500};
        QTest::newRow("named twice") << u"12"_qs << 118500U << 121700U << Kilohertz{118500, 118500}
                                     << Kilohertz{118500};
        QTest::newRow("COM1 off") << u"2"_qs << 118500U << 121700U << Kilohertz{118500, 121700} << Kilohertz{121700};
        QTest::newRow("COM2 off") << u"1"_qs << 118500U << 121700U << Kilohertz{118500, 121700} << Kilohertz{118500};
        QTest::newRow("COM1 off, COM2 on the same")
            << u"2"_qs << 118500U << 118500U << Kilohertz{118500} << Kilohertz{118500};
        QTest::newRow("both off") << QString() << 118500U << 121700U << Kilohertz{118500, 121700} << Kilohertz{};
        QTest::newRow("on neither") << u"12"_qs << 118500U << 121700U << Kilohertz{122800} << Kilohertz{};
        QTest::newRow("5 kHz away") << u"12"_qs << 118020U << 121700U << Kilohertz{118025} << Kilohertz{};
        QTest::newRow("no frequency") << u"12"_qs << 118500U << 121700U << Kilohertz{} << Kilohertz{};
    }

    void heard()
    {
        QFETCH(QString, on);
        QFETCH(uint, com1);
        QFETCH(uint, com2);
        QFETCH(QList<uint>, sent);
        QFETCH(QList<uint>, expected);
        RadioStackState radio;
        radio.com1Frequency = com1;
        radio.com2Frequency = com2;
        radio.com1ReceiveEnabled = on.contains(u'1');
        radio.com2ReceiveEnabled = on.contains(u'2');
        QCOMPARE(heardFrequencies(sent, radio), expected);
    }
};

TARVO_TEST(RadioReceptionTest)
#include "RadioReceptionTest.moc"

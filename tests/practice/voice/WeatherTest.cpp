#include "practice/voice/Weather.h"

#include "support/TestRegistry.h"

#include <QTest>

#include <algorithm>

using namespace tarvo::practice;

class WeatherTest : public QObject
{
    Q_OBJECT

    static QList<QByteArray> bytesOf(const QList<VoiceDatagram> &datagrams)
    {
        QList<QByteArray> list;
        for (const VoiceDatagram &datagram : datagrams)
            list.append(datagram.bytes);
        return list;
    }
    static void putNumbers(Weather &weather, int count)
    {
        for (int i = 0; i < count; ++i)
            weather.put({QByteArray::number(i), {}}, 1000);
    }

private slots:
    void fairWeatherChangesNothing()
    {
        Weather weather({});
        putNumbers(weather, 3);
        QCOMPARE(bytesOf(weather.takeDue(1000)), (QList<QByteArray>{"0", "1", "2"}));
        QVERIFY(weather.isEmpty());
    }

    void losesAndDoubles_data()
    {
        QTest::addColumn<double>("loss");
        QTest::addColumn<double>("duplicate");
        QTest::addColumn<int>("least");
        QTest::addColumn<int>("most");
        QTest::newRow("loses all") << 100.0 << 0.0 << 0 << 0;
        QTest::newRow("loses a fifth") << 20.0 << 0.0 << 700 << 900;
        QTest::newRow("doubles all") << 0.0 << 100.0 << 2000 << 2000;
        QTest::newRow("doubles a fifth") << 0.0 << 20.0 << 1100 << 1300;
        QTest::newRow("both") << 50.0 << 100.0 << 800 << 1200;
    }

    void losesAndDoubles()
    {
        QFETCH(double, loss);
        QFETCH(double, duplicate);
        QFETCH(int, least);
        QFETCH(int, most);
        Weather weather({.lossPercent = loss, .duplicatePercent = duplicate});
        putNumbers(weather, 1000);
        const qsizetype left = weather.takeDue(1000).size();
        QVERIFY2(left >= least && left <= most, qPrintable(QString::number(left)));
    }

    void jitterDelaysAndOvertakes()
    {
        Weather weather({.jitterMs = 50});
        putNumbers(weather, 100);
        QList<QByteArray> arrived;
        for (qint64 now = 1000; now <= 1050; ++now)
            arrived += bytesOf(weather.takeDue(now));
        QVERIFY(weather.isEmpty());
        QList<QByteArray> all;
        for (int i = 0; i < 100; ++i)
            all.append(QByteArray::number(i));
        QVERIFY(arrived != all);
        QVERIFY(std::is_permutation(arrived.begin(), arrived.end(), all.begin(), all.end()));
    }

    void jitterHoldsABoundedNumber()
    {
        Weather weather({.jitterMs = 10'000});
        putNumbers(weather, static_cast<int>(Weather::mostDelayed) + 500);
        QVERIFY(weather.takeDue(0).size() == 500);
    }
};

TARVO_TEST(WeatherTest)
#include "WeatherTest.moc"

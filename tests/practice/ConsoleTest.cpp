#include "practice/Console.h"

#include "practice/PracticeNetwork.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::practice;

class ConsoleTest : public QObject
{
    Q_OBJECT

private slots:
    void aBurstOfSubscriptionsIsOneLine_data()
    {
        QTest::addColumn<int>("datarefs");
        QTest::addColumn<int>("rate");
        QTest::addColumn<QString>("line");
        QTest::newRow("one") << 1 << 5 << QStringLiteral(" xplane  127.0.0.1:49607 subscribes 1 dataref\n");
        QTest::newRow("all") << 53 << 5 << QStringLiteral(" xplane  127.0.0.1:49607 subscribes 53 datarefs\n");
        QTest::newRow("ended") << 53 << 0 << QStringLiteral(" xplane  127.0.0.1:49607 unsubscribes 53 datarefs\n");
    }

    void aBurstOfSubscriptionsIsOneLine()
    {
        QFETCH(int, datarefs);
        QFETCH(int, rate);
        QFETCH(QString, line);
        PracticeNetwork network(PracticeSettings::ephemeral());
        QString text;
        QTextStream out(&text);
        Console console(out);
        console.follow(network);
        for (int round = 1; round <= 2; ++round) { // the second burst counts from nothing
            for (int i = 0; i < datarefs; ++i)
                emit network.xplane().subscribed(QStringLiteral("127.0.0.1:49607"), QStringLiteral("sim/x"), rate);
            TRY_COMPARE(text.count(line), round);
        }
        QCOMPARE(text.count(QLatin1Char('\n')), 2);
    }

    void tellsOfVoice()
    {
        PracticeNetwork network(PracticeSettings::ephemeral());
        QString text;
        QTextStream out(&text);
        Console console(out);
        console.follow(network);
        emit network.voice().lineReceived(QStringLiteral("CCA1"), QStringLiteral("{\"type\":\"ping\"}"));
        emit network.voicePeople().began(QStringLiteral("ZBAA_TWR"), 118'500);
        emit network.voicePeople().ended(QStringLiteral("ZBAA_TWR"), 118'500);
        QVERIFY(text.contains(QStringLiteral(" voice   CCA1 <<< {\"type\":\"ping\"}\n")));
        QVERIFY(text.contains(QStringLiteral(" voice   ZBAA_TWR speaks on 118.500\n")));
        QVERIFY(text.contains(QStringLiteral(" voice   ZBAA_TWR has spoken on 118.500\n")));
    }

    void everyClientHasItsLine()
    {
        PracticeNetwork network(PracticeSettings::ephemeral());
        QString text;
        QTextStream out(&text);
        Console console(out);
        console.follow(network);
        for (int i = 0; i < 3; ++i) {
            emit network.xplane().subscribed(QStringLiteral("127.0.0.1:1"), QStringLiteral("sim/x"), 5);
            emit network.xplane().subscribed(QStringLiteral("127.0.0.1:2"), QStringLiteral("sim/x"), 1);
        }
        TRY_VERIFY(text.contains(QStringLiteral("127.0.0.1:1 subscribes 3 datarefs\n")));
        QVERIFY(text.contains(QStringLiteral("127.0.0.1:2 subscribes 3 datarefs\n")));
        QCOMPARE(text.count(QLatin1Char('\n')), 2);
    }
};

TARVO_TEST(ConsoleTest)
#include "ConsoleTest.moc"

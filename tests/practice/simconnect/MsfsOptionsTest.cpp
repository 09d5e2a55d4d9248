#include "SimClient.h"

#include "practice/simconnect/MsfsOptions.h"
#include "practice/simconnect/MsfsStandIn.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace tarvo::practice;
using tarvo::test::SimClient;
using Mode = CreateAnswering::Mode;

class MsfsOptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void readsWords()
    {
        const auto all = MsfsOptions::parse(QStringLiteral(" 2024 refuse  flight-time=300.5 create=2000 log=a.txt"));
        QVERIFY(all);
        QVERIFY(all->is2024 && all->refuse);
        QCOMPARE(all->flightTime, 300.5);
        QVERIFY(all->creating.mode == Mode::Late);
        QCOMPARE(all->creating.delayMs, 2000);
        QCOMPARE(all->log, QStringLiteral("a.txt"));
        QVERIFY(MsfsOptions::parse(QStringLiteral("create=never"))->creating.mode == Mode::Never);
        QVERIFY(MsfsOptions::parse(QStringLiteral("create=fail"))->creating.mode == Mode::Fail);
        const auto none = MsfsOptions::parse(QString());
        QVERIFY(none && !none->is2024 && !none->refuse && none->creating.mode == Mode::AtOnce && none->log.isEmpty());
        QVERIFY(!MsfsOptions::parse(QStringLiteral("2024 2020"))->is2024);
    }

    void refusesOthers_data()
    {
        QTest::addColumn<QString>("words");
        for (const char *words : {"2022", "refuse=1", "flight-time=", "flight-time=soon", "flight-time=inf",
                                  "create=soon", "create=-1", "log=", "create", "2020,2024"})
            QTest::newRow(words) << QString::fromLatin1(words);
    }

    void refusesOthers()
    {
        QFETCH(QString, words);
        QVERIFY(!MsfsOptions::parse(words));
    }

    void areApplied()
    {
        const QTemporaryDir folder;
        const QString log = folder.filePath(QStringLiteral("calls.txt"));
        {
            MsfsStandIn simulator;
            MsfsOptions::parse(QStringLiteral("2024 flight-time=300 create=fail log=") + log)->apply(simulator);
            SimClient client;
            QVERIFY(simulator.flightTime() >= 300);
            QCOMPARE(client.messages(), QList<QByteArray>{message::open(message::msfs2024())});
            client.create(1, "CCA1");
            client.write(30000, 258, QByteArray(44, '\0'));
            client.sc.RequestDataOnSimObjectType(client.handle, 1, 2, 3, 2);
            QCOMPARE(client.exceptions(), (QList<quint32>{3, 3, 22}));
        }
        QFile file(log);
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        QCOMPARE(file.readAll(), QByteArray("SimConnect <<< Open \"SimClient\" null 0 null 0\n"
                                            "SimConnect <<< AICreateNonATCAircraft \"Airbus\" \"CCA1\" "
                                            "{40.07 116.6 328.084 1 2 3 1 0} 1\n"
                                            "SimConnect <<< Close\n"));
        MsfsStandIn refusing;
        MsfsOptions::parse(QStringLiteral("refuse log=/no/such/folder/x"))->apply(refusing);
        SimClient client;
        QCOMPARE(client.handle, nullptr);
    }

    void comeFromTheEnvironment()
    {
        qputenv("TARVO_PRACTICE_MSFS", "2024");
        QVERIFY(MsfsOptions::fromEnvironment().is2024);
        qputenv("TARVO_PRACTICE_MSFS", "2024 nonsense");
        QVERIFY(!MsfsOptions::fromEnvironment().is2024);
        qunsetenv("TARVO_PRACTICE_MSFS");
        QVERIFY(!MsfsOptions::fromEnvironment().is2024);
    }
};

TARVO_TEST(MsfsOptionsTest)
#include "MsfsOptionsTest.moc"

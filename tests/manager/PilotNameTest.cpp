#include "manager/PilotName.h"
#include "manager/ClientIdentity.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::manager;

class PilotNameTest : public QObject
{
    Q_OBJECT

private slots:
    void name_data()
    {
        QTest::addColumn<QString>("profile");
        QTest::addColumn<QString>("account");
        QTest::addColumn<QString>("username");
        QTest::addColumn<QString>("expected");
        QTest::newRow("profile") << u" Li Lei "_qs << u"lilei"_qs << u"1001"_qs << u"Li Lei"_qs;
        QTest::newRow("unknown in any case") << u"uNKNOWN"_qs << u"lilei"_qs << u"1001"_qs << u"lilei"_qs;
        QTest::newRow("unknown with blanks") << u" Unknown "_qs << u"lilei"_qs << u"1001"_qs << u"lilei"_qs;
        QTest::newRow("unknown within a name") << u"Unknown Pilot"_qs << u""_qs << u""_qs << u"Unknown Pilot"_qs;
        QTest::newRow("account, trimmed") << u"  "_qs << u" lilei "_qs << u"1001"_qs << u"lilei"_qs;
        QTest::newRow("user name, trimmed") << u""_qs << u" "_qs << u" 1001 "_qs << u"1001"_qs;
        QTest::newRow("nothing") << u""_qs << u""_qs << u" "_qs << u"Unknown"_qs;
    }

    void name()
    {
        QFETCH(QString, profile);
        QFETCH(QString, account);
        QFETCH(QString, username);
        QTEST(pilotName({profile, account, username}), "expected");
    }

    void airport_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QString>("expected");
        QTest::newRow("as set") << u"ZSPD"_qs << u"ZSPD"_qs;
        QTest::newRow("trimmed and raised") << u" zspd "_qs << u"ZSPD"_qs;
        QTest::newRow("empty") << u"  "_qs << u"ZBAA"_qs;
        QTest::newRow("no airport") << u"zzzz"_qs << u"ZBAA"_qs;
    }

    void airport()
    {
        QFETCH(QString, setting);
        QTEST(homeAirport(setting), "expected");
    }

    void nameAndAirport()
    {
        QCOMPARE(nameWithAirport(u"Li Lei"_qs, u"ZSPD"_qs), u"Li Lei ZSPD"_qs);
        QCOMPARE(nameWithAirport(u"%2"_qs, u"ZSPD"_qs), u"%2 ZSPD"_qs);
    }

    void clientInformation()
    {
        const ClientInformation information{.cid = u"1001"_qs,
                                            .nameWithAirport = u"%1 Li ZBAA"_qs,
                                            .publicAddress = u"10.0.0.1"_qs,
                                            .simulator = tarvo::simulator::SimulatorType::XPlane11,
                                            .latitude = 40.0801234,
                                            .longitude = -116.5,
                                            .altitudeMslM = 10000};
        QCOMPARE(information.text(), u"TARVO Client 3.0 PID=1001 (%1 Li ZBAA) IP=10.0.0.1 SYS_UID="_qs + machineId() +
                                         u" FS_VER=XPlane11 LT=40.0801 LO=-116.5 AL=32808.4"_qs);
    }

    void clientInformationLabel_data()
    {
        using tarvo::simulator::SimulatorType;
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("label");
        QTest::newRow("no simulator") << -1 << u"Observer"_qs;
        QTest::newRow("unknown") << 0 << u"Unknown"_qs;
        QTest::newRow("out of range") << 77 << u"Unknown"_qs;
        QTest::newRow("2024") << 2 << u"MFS2024"_qs;
    }

    void clientInformationLabel()
    {
        QFETCH(int, type);
        QFETCH(QString, label);
        ClientInformation information;
        if (type >= 0)
            information.simulator = static_cast<tarvo::simulator::SimulatorType>(type);
        QVERIFY(information.text().contains(u" FS_VER=%1 LT=0 LO=0 AL=0"_qs.arg(label)));
    }
};

TARVO_TEST(PilotNameTest)
#include "PilotNameTest.moc"

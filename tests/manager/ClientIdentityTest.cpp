#include "manager/ClientIdentity.h"
#include "simulator/Simulator.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::manager;

class ClientIdentityTest : public QObject
{
    Q_OBJECT

private slots:
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

TARVO_TEST(ClientIdentityTest)
#include "ClientIdentityTest.moc"

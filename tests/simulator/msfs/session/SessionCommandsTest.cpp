#include "SessionBench.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::test;
using namespace tarvo::simulator::msfs;

/// Events that the client sends.
class SessionCommandsTest : public QObject
{
    Q_OBJECT

private slots:
    void eachIsMappedBeforeItsFirstUse()
    {
        OpenBench bench;
        bench.session.sendCommand(CommandKey::Com2Frequency, 118500000);
        bench.session.sendCommand(CommandKey::TransponderIdent, 0);
        bench.session.sendCommand(CommandKey::Com2Frequency, 121500000);
        bench.session.sendCommand(CommandKey::Com1Frequency, 4294967295);
        QCOMPARE(bench.standIn.calls(), lines("MapClientEventToSimEvent 10000 \"COM2_RADIO_SET_HZ\"\n"
                                              "TransmitClientEvent 0 10000 118500000 1 16\n"
                                              "MapClientEventToSimEvent 10001 \"XPNDR_IDENT_ON\"\n"
                                              "TransmitClientEvent 0 10001 0 1 16\n"
                                              "TransmitClientEvent 0 10000 121500000 1 16\n"
                                              "MapClientEventToSimEvent 10002 \"COM_RADIO_SET_HZ\"\n"
                                              "TransmitClientEvent 0 10002 4294967295 1 16"));
        QCOMPARE(bench.errors.size(), 0);
    }

    void nextSessionMapsAnew()
    {
        OpenBench bench;
        bench.session.sendCommand(CommandKey::Com2Frequency, 1);
        bench.session.close();
        bench.open();
        bench.session.sendCommand(CommandKey::TransponderIdent, 0);
        QCOMPARE(bench.standIn.calls().first(), line("MapClientEventToSimEvent 10000 \"XPNDR_IDENT_ON\""));
    }

    void unknownKey()
    {
        OpenBench bench;
        bench.session.sendCommand(static_cast<CommandKey>(3), 0);
        QCOMPARE(bench.standIn.calls(), QStringList());
        QCOMPARE(bench.log.texts(QtWarningMsg), QStringList(line("No SimConnect event binding found for command key")));
        QCOMPARE(bench.errors.size(), 0);
    }

    void refusedMappingIsTriedAgain()
    {
        OpenBench bench;
        bench.standIn.failNext(line("MapClientEventToSimEvent"));
        bench.session.sendCommand(CommandKey::TransponderIdent, 0);
        QCOMPARE(bench.standIn.takeCalls(), QStringList(line("MapClientEventToSimEvent 10000 \"XPNDR_IDENT_ON\"")));
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to map SimConnect event: XPNDR_IDENT_ON (HRESULT: 0x80004005)")));
        QCOMPARE(bench.error(), line("Failed to map SimConnect event: XPNDR_IDENT_ON"));
        bench.session.sendCommand(CommandKey::TransponderIdent, 0);
        QCOMPARE(bench.standIn.calls(), lines("MapClientEventToSimEvent 10000 \"XPNDR_IDENT_ON\"\n"
                                              "TransmitClientEvent 0 10000 0 1 16"));
    }

    void refusedEvent()
    {
        OpenBench bench;
        bench.standIn.failNext(line("TransmitClientEvent"));
        bench.session.sendCommand(CommandKey::Com1Frequency, 1);
        QCOMPARE(bench.log.texts(QtCriticalMsg),
                 QStringList(line("Failed to send SimConnect event: COM_RADIO_SET_HZ (HRESULT: 0x80004005)")));
        QCOMPARE(bench.error(), line("Failed to send SimConnect event: COM_RADIO_SET_HZ"));
        QVERIFY(bench.session.isOpen());
    }
};

TARVO_TEST(SessionCommandsTest)
#include "SessionCommandsTest.moc"

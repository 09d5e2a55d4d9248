#include "fsd/FsdClient.h"
#include "fsd/pdu/Ping.h"
#include "manager/OnlineSession.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QRegularExpression>

using namespace tarvo;
using tarvo::manager::NetworkManager;
using tarvo::test::OnlineSession;
using tarvo::test::Session;

class NetworkManagerEventsTest : public QObject
{
    Q_OBJECT

private slots:
    void queries_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("answer");
        QTest::newRow("capabilities of a client")
            << u"$CQab2:AB1:CAPS"_qs << u"$CRAB1:ab2:CAPS:VERSION=1:ATCINFO=1:MODELDESC=1:ACCONFIG=1:VISUPDATE=1"_qs;
        QTest::newRow("capabilities of the server")
            << u"$CQSERVER:AB1:CAPS"_qs
            << u"$CRAB1:SERVER:CAPS:VERSION=1:ATCINFO=1:MODELDESC=1:ACCONFIG=1:VISUPDATE=1"_qs;
        QTest::newRow("COM1") << u"$CQAB2:AB1:C?"_qs << u"$CRAB1:AB2:C?:118.275"_qs;
        QTest::newRow("real name") << u"$CQAB2:AB1:RN"_qs << u"$CRAB1:AB2:RN:Li Lei ZBAA:1"_qs;
        QTest::newRow("client information")
            << u"$CQAB2:AB1:INF"_qs
            << u"#TMAB1:AB2:TARVO Client 3.0 PID=1001 (Li Lei ZBAA) IP=10.0.0.9 SYS_UID=%1 FS_VER=XPlane12 LT=40 "
               "LO=116.5 AL=0"_qs.arg(manager::machineId());
    }

    void queries()
    {
        QFETCH(QString, query);
        QFETCH(QString, answer);
        OnlineSession s;
        QVERIFY(s.online);
        model::RadioStackState radio;
        radio.com1Frequency = 118275;
        emit s.sim->radioStackStateChanged(radio);
        s.peer.inject(query);
        EXPECT_LINE(s, answer);
        QVERIFY(s.peer.expectNothing());
    }

    void ofALostSimulatorTheLastFrequencyIsTold()
    {
        OnlineSession s;
        QVERIFY(s.online);
        emit s.sim->radioStackStateChanged({.com1Frequency = 118275});
        emit s.sim->simConnectionStateChanged(false);
        emit s.sim->radioStackStateChanged({});
        s.peer.inject(u"$CQAB2:AB1:C?"_qs);
        EXPECT_LINE(s, u"$CRAB1:AB2:C?:118.275"_qs);
    }

    void unansweredQueries_data()
    {
        QTest::addColumn<QString>("query");
        for (const char *token : {"", "ATC", "SV", "ATIS", "IP", "FP", "IPC", "BY", "HI", "HLP", "WH", "VT", "NEWINFO",
                                  "NEWATIS", "EST", "GD", "nonsense"})
            QTest::addRow("%s", *token ? token : "empty") << u"$CQAB2:AB1:%1:x"_qs.arg(QLatin1StringView(token));
    }

    void unansweredQueries()
    {
        QFETCH(QString, query);
        OnlineSession s;
        QVERIFY(s.online);
        s.peer.inject(query);
        QVERIFY(s.peer.expectNothing());
    }

    void onlyClientsAskingForCapabilitiesAreTold()
    {
        OnlineSession s;
        QVERIFY(s.online);
        QSignalSpy asked(s.manager.get(), &NetworkManager::capabilitiesRequestReceived);
        s.peer.inject(u"$CQserver:AB1:CAPS"_qs);
        QVERIFY(!s.peer.nextLine().isNull());
        QCOMPARE(asked.size(), 0);
        s.peer.inject(u"$CQab2:AB1:CAPS"_qs);
        QVERIFY(!s.peer.nextLine().isNull());
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked.at(0).at(0).toString(), u"ab2"_qs);
    }

    void configurationTextIsPutTogether_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("request") << uR"({"request":"full"})"_qs;
        QTest::newRow("nested") << uR"({"config":{"engines":{"1":{"on":true}}}})"_qs;
        QTest::newRow("no JSON") << u"a::b:"_qs;
        QTest::newRow("empty") << QString();
    }

    void configurationTextIsPutTogether()
    {
        QFETCH(QString, text);
        OnlineSession s;
        QVERIFY(s.online);
        QSignalSpy received(s.manager.get(), &NetworkManager::aircraftConfigurationInfoReceived);
        s.peer.inject(u"$CQab2:@94386:ACC:"_qs + text);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(received.size(), 1);
        QCOMPARE(received.at(0).at(0).toString(), u"ab2"_qs);
        QCOMPARE(received.at(0).at(1).toString(), text);
    }

    void anAddressThatIsNotToldIsEmpty()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.peer.inject(u"$CRSERVER:AB1:IP"_qs); // in place of the address told before
        s.peer.inject(u"$CQAB2:AB1:INF"_qs);
        QVERIFY(s.peer.nextLine().contains(u" IP= SYS_UID="_qs));
    }

    void ping()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.peer.inject(u"$PISERVER:AB1:1234567"_qs);
        EXPECT_LINE(s, u"$POAB1:SERVER:1234567"_qs);
        s.peer.inject(u"$PISERVER:AB1:12\r34 \n"_qs); // as it is
        EXPECT_LINE(s, u"$POAB1:SERVER:12\r34 \n"_qs);
    }

    void protocolErrors()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.peer.inject(u"$ERSERVER:AB1:4:x:Syntax error"_qs);
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(u"^No flight plan available for AB2$"_qs));
        s.peer.inject(u"$ERSERVER:AB1:8: ab2 :No flightplan"_qs);
        s.peer.inject(u"$ERSERVER:AB1:8::No flightplan"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeNotifications(), QStringList{u"10 Network Error: Syntax error"_qs});
        QCOMPARE(s.takeEvents(), QStringList()); // the session goes on
    }

    void malformedLinesOnlyPostTheirError()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.peer.inject(u"X:abc"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeNotifications(), QStringList{u"10 Invalid PDU type. (Raw packet: X:abc)"_qs});
        QCOMPARE(s.takeEvents(), QStringList());
    }

    void anEchoedSecretIsNotShown()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.peer.inject(u"#APAB1:SERVER:1001:secret"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeNotifications(), QStringList{u"10 Invalid field count for AddPilot command. "
                                                    "(Raw packet: AB1:SERVER:1001:******)"_qs});
    }

    void whatTheServerSaysIsLoggedOnOneLine()
    {
        OnlineSession s;
        QVERIFY(s.online);
        test::LogCapture log;
        s.peer.inject(u"$DISERVER:CLIENT:FSD\n3\rx:abc"_qs);
        s.peer.inject(u"$ERSERVER:AB1:8:ab\n2:No flightplan"_qs);
        EXPECT_LINE(s, Session::identification());
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(log.texts(QtInfoMsg),
                 (QStringList{u"Server version: FSD 3 x"_qs, u"No flight plan available for AB 2"_qs}));
    }

    void sendFast()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.peer.inject(u"$SFSERVER:AB2:1"_qs); // for somebody else
        QVERIFY(s.peer.expectNothing());
        QVERIFY(!s.isRunning("fastTimer"));
        s.peer.inject(u"$SFSERVER:ab1:1"_qs);
        const QString stopped = u"#STAB1:40.000000:116.500000:0.00:0.00:0:0.00"_qs;
        EXPECT_LINE(s, stopped); // of the first tick
        QVERIFY(s.isRunning("fastTimer"));
        s.peer.inject(u"$SFSERVER:AB1:0"_qs);
        TRY_VERIFY(!s.isRunning("fastTimer"));
        EXPECT_LINE(s, stopped);
    }

    void fastReportsFollowTheSimulator()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.sim->trueAltitude = 1000.5;
        s.sim->pressureAltitude = 990.25;
        model::UserAircraftData data = Session::standing();
        data.longitudeVelocity = 1;
        data.altitudeVelocity = 2;
        data.latitudeVelocity = 3;
        emit s.sim->userAircraftDataChanged(data);
        const QString position = u"AB1:40.000000:116.500000:1000.50:990.25:0:"_qs;
        const QString moving = u"1.0000:2.0000:3.0000:0.0000:0.0000:0.0000:0.00"_qs;
        QVERIFY(s.fire("fastTimer"));
        EXPECT_LINE(s, u"^"_qs + position + moving);
        QVERIFY(s.fire("slowTimer"));
        EXPECT_LINES(s, u"#SL"_qs + position + moving, u"@S:AB1:0:1:40.000000:116.500000:1000:0:0:-10"_qs);
        emit s.sim->simPausedStateChanged(true);
        QVERIFY(s.fire("slowTimer"));
        EXPECT_LINES(s, u"^"_qs + position + u"0.0000:0.0000:0.0000:0.0000:0.0000:0.0000:0.00"_qs,
                     u"@S:AB1:0:1:40.000000:116.500000:1000:0:0:-10"_qs);
        QVERIFY(s.peer.expectNothing());
    }

    void theOnGroundFlagComesFromTheConfiguration()
    {
        OnlineSession s;
        QVERIFY(s.online);
        model::UserAircraftConfigData configuration;
        configuration.onGround = true;
        emit s.sim->userAircraftConfigDataChanged(configuration);
        QVERIFY(s.fire("slowTimer"));
        EXPECT_LINE(s, u"@S:AB1:0:1:40.000000:116.500000:0:0:2:0"_qs);
    }

    void radioMessages()
    {
        OnlineSession s;
        QVERIFY(s.online);
        QSignalSpy sent(s.manager.get(), &NetworkManager::radioMessageSent);
        s.manager->sendRadioMessage(u"nobody hears"_qs);
        QCOMPARE(sent.size(), 0);
        QCOMPARE(s.sim->takeCalls(), QStringList());

        model::RadioStackState radio;
        radio.com1Frequency = 118500;
        radio.com2Frequency = 121700;
        radio.com1TransmitEnabled = radio.com2TransmitEnabled = true;
        emit s.sim->radioStackStateChanged(radio);
        s.manager->sendRadioMessage(u"hello: all"_qs);
        emit s.sim->radioMessageSent(u"from the cockpit"_qs);
        EXPECT_LINES(s, u"#TMAB1:@18500&@21700:hello: all"_qs, u"#TMAB1:@18500&@21700:from the cockpit"_qs);
        QCOMPARE(s.sim->takeCalls(),
                 (QStringList{u"showRadioMessageSent hello: all"_qs, u"showRadioMessageSent from the cockpit"_qs}));
        QCOMPARE(sent.size(), 2);
        QCOMPARE(sent.at(0).at(0).toString(), u"hello: all"_qs);
        QCOMPARE(sent.at(0).at(1).value<QList<uint>>(), (QList<uint>{118500, 121700}));
    }

    void privateMessages()
    {
        OnlineSession s;
        QVERIFY(s.online);
        QSignalSpy sent(s.manager.get(), &NetworkManager::privateMessageSent);
        emit s.sim->privateMessageSent(u"ab2"_qs, u"hi"_qs);
        EXPECT_LINE(s, u"#TMAB1:AB2:hi"_qs);
        QCOMPARE(s.sim->takeCalls(), QStringList{u"showPrivateMessageSent ab2 hi"_qs});
        QCOMPARE(sent.value(0).value(0).toString(), u"ab2"_qs);
    }

    void wallops()
    {
        OnlineSession s;
        QVERIFY(s.online);
        QSignalSpy sent(s.manager.get(), &NetworkManager::wallopSent);
        s.manager->sendWallop(u"help %1"_qs);
        EXPECT_LINE(s, u"#TMAB1:*S:help %1"_qs);
        QCOMPARE(s.sim->takeCalls(), QStringList{u"showNotification eb2f06 [WALLOP] help %1"_qs});
        QCOMPARE(sent.size(), 1);
    }

    void realNameRequest()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.manager->requestRealName(u"ZBAA_TWR"_qs);
        EXPECT_LINE(s, u"$CQAB1:ZBAA_TWR:RN"_qs);
    }

    void aTextCannotWriteALineOfItsOwn()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.manager->sendPrivateMessage(u"AB2"_qs, u"hi\r\n#DPAB1:1001\nmore"_qs);
        EXPECT_LINE(s, u"#TMAB1:AB2:hi  #DPAB1:1001 more"_qs);
        s.manager->sendPrivateMessage(u"AB2\r\n#DPAB1"_qs, u"hi"_qs);
        EXPECT_LINE(s, u"#TMAB1:AB2  #DPAB1:hi"_qs);
        s.manager->sendWallop(u"help\r\n#DPAB1:1001"_qs);
        EXPECT_LINE(s, u"#TMAB1:*S:help  #DPAB1:1001"_qs);
        emit s.sim->radioStackStateChanged({.com1Frequency = 118500, .com1TransmitEnabled = true});
        s.manager->sendRadioMessage(u"hi\r\n#DPAB1:1001"_qs);
        EXPECT_LINE(s, u"#TMAB1:@18500:hi  #DPAB1:1001"_qs);
        s.manager->requestRealName(u"AB2\r\n#DPAB1"_qs);
        EXPECT_LINE(s, u"$CQAB1:AB2  #DPAB1:RN"_qs);
        s.manager->requestControllerAtis(u"AB2\r\n#DPAB1"_qs);
        EXPECT_LINE(s, u"$CQAB1:AB2  #DPAB1:ATIS"_qs);
        QVERIFY(s.peer.expectNothing());
    }

    void whatIsTypedToSignInCannotWriteALineOfItsOwn()
    {
        Session s;
        s.config.set(config::authUsername, u"10\r\n01"_qs);
        s.config.set(config::sessionPassword, u"sec\r\nret"_qs);
        s.config.set(config::profileRealname, u"Li\nLei"_qs);
        s.config.set(config::profileHomeAirport, u"Z\rB"_qs);
        s.addSimulator();
        QVERIFY(s.manager->connectToNetwork(u"ab1"_qs, u"b7\r\n38"_qs, QString(), false));
        EXPECT_LINE(s, u"#APAB1:SERVER:10  01:sec  ret:1:9:5:Li Lei Z B"_qs);
        QVERIFY(s.peer.skip(3));
        s.peer.inject(u"#SBAB2:AB1:PIR"_qs);
        EXPECT_LINE(s, u"#SBAB1:AB2:PI:GEN:EQUIPMENT=B7  38"_qs);
    }

    void withoutAConnectionNothingIsSent()
    {
        Session s;
        s.manager->sendPrivateMessage(u"AB2"_qs, u"hi"_qs);
        s.manager->sendWallop(u"help"_qs);
        s.manager->requestRealName(u"AB2"_qs);
        s.manager->sendConfigurationToAll({});
        emit s.manager->findChild<fsd::FsdClient *>()->raisePingReceived({u"SERVER"_qs, u"AB1"_qs, u"1"_qs});
        QVERIFY(s.connectObserver());
        EXPECT_LINE(s, u"#AAAB1:SERVER:Li Lei:1001:secret:1:9"_qs);
    }

    void observerLabelMeansNoSimulator()
    {
        Session s;
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.skip(3));
        s.peer.inject(u"$CQAB2:AB1:INF"_qs);
        QVERIFY(s.peer.nextLine().contains(u" FS_VER=Observer "_qs));
        s.addSimulator(); // still an observer on the network
        s.peer.inject(u"$CQAB2:AB1:INF"_qs);
        QVERIFY(s.peer.nextLine().contains(u" FS_VER=XPlane12 "_qs));
    }
};

TARVO_TEST(NetworkManagerEventsTest)
#include "NetworkManagerEventsTest.moc"

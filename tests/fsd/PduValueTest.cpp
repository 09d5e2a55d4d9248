#include "fsd/pdu/AnyPdu.h"
#include "fsd/pdu/AuthResponse.h"
#include "fsd/pdu/Fields.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/MetarRequest.h"
#include "fsd/pdu/PDUFormatException.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::fsd;
using namespace tarvo::fsd::pdu;

namespace {

template <class Pdu>
Pdu read(const QString &line)
{
    return std::get<Pdu>(parseLine(line));
}

/// A fast report with a different value in each field.
FastPilotPosition sampleFast(FastPilotPositionType type)
{
    return {{u"A"_qs, {}}, type, 1.5, -2.5, 3000.25, 4.75, 10, 90, -25, true, 1, 2, 3, 4, 5, 6, 7};
}

QList<QString> tokens()
{
    return QString::fromLatin1(",ATC,CAPS,C?,RN,SV,ATIS,IP,INF,FP,IPC,BY,HI,HLP,NOHLP,WH,IT,HT,DR,FA,TA,BC,SC,VT,ACC,"
                               "NEWINFO,NEWATIS,EST,GD")
        .split(u',');
}

} // namespace

class PduValueTest : public QObject
{
    Q_OBJECT

private slots:
    void pilotPositionFields()
    {
        const auto position = read<PilotPosition>(u"@Y:CES2301:1200:3:40.25:-116.5:35000:480:4261561312:-120"_qs);
        const PilotPosition expected{{u"CES2301"_qs, {}},
                                     1200,
                                     true,
                                     true,
                                     static_cast<NetworkRating>(3),
                                     40.25,
                                     -116.5,
                                     35000,
                                     34880,
                                     480,
                                     2,
                                     87.1875,
                                     -13,
                                     false};
        QCOMPARE(position, expected);
        QCOMPARE(toLine(position), u"@Y:CES2301:1200:3:40.250000:-116.500000:35000:480:4269949920:-120\r\n"_qs);
    }

    void transponderModes_data()
    {
        tarvo::test::columns<QString, bool, bool>("mode", "modeC", "identing");
        QTest::newRow("S") << u"S"_qs << false << false;
        QTest::newRow("N") << u"N"_qs << true << false;
        QTest::newRow("Y") << u"Y"_qs << true << true;
        QTest::newRow("empty") << QString() << false << false;
        QTest::newRow("two letters") << u"NN"_qs << false << false;
    }
    void transponderModes()
    {
        QFETCH(QString, mode);
        QFETCH(bool, modeC);
        QFETCH(bool, identing);
        const auto position = read<PilotPosition>(u"@%1:A:0:1:0:0:0:0:0:0"_qs.arg(mode));
        QCOMPARE(position.squawkingModeC, modeC);
        QCOMPARE(position.identing, identing);
    }

    void identingWinsOverModeCWhenWritten()
    {
        PilotPosition position;
        position.identing = true;
        position.squawkingModeC = false;
        QCOMPARE(position.serialize().constFirst(), u"Y"_qs);
    }

    void fastPositionFields_data()
    {
        tarvo::test::columns<FastPilotPositionType, QString>("type", "line");
        QTest::newRow("fast") << FastPilotPositionType::Fast
                              << u"^A:1.500000:-2.500000:3000.25:4.75:4173624322:1.0000:2.0000:3.0000:4.0000:5.0000:"
                                 u"6.0000:7.00\r\n"_qs;
        QTest::newRow("slow") << FastPilotPositionType::Slow
                              << u"#SLA:1.500000:-2.500000:3000.25:4.75:4173624322:1.0000:2.0000:3.0000:4.0000:5.0000:"
                                 u"6.0000:7.00\r\n"_qs;
        QTest::newRow("stopped") << FastPilotPositionType::Stopped
                                 << u"#STA:1.500000:-2.500000:3000.25:4.75:4173624322:7.00\r\n"_qs;
    }
    void fastPositionFields()
    {
        QFETCH(FastPilotPositionType, type);
        QFETCH(QString, line);
        FastPilotPosition position = sampleFast(type);
        QCOMPARE(toLine(position), line);
        if (type == FastPilotPositionType::Stopped) {
            position.velocity1 = position.velocity2 = position.velocity3 = 0;
            position.pitchVelocity = position.headingVelocity = position.bankVelocity = 0;
        }
        QCOMPARE(read<FastPilotPosition>(line.chopped(2)), position);
    }

    void atcPositionFields()
    {
        const auto position = read<ATCPosition>(u"%ZBAA_TWR:18500&21700:4:50:3:40.08:-116.5:99"_qs);
        const ATCPosition expected{{u"ZBAA_TWR"_qs, {}},
                                   {118500, 121700},
                                   static_cast<NetworkFacility>(4),
                                   50,
                                   static_cast<NetworkRating>(3),
                                   40.08,
                                   -116.5};
        QCOMPARE(position, expected);
    }

    void atcPositionIsWrittenInTheShortForm()
    {
        const ATCPosition position{
            {u"A"_qs, {}}, {99998}, NetworkFacility::Observer, 20, NetworkRating::Observer, 1, 2};
        QCOMPARE(toLine(position), u"%A:99998:0:20:1:1.00000:2.00000:0\r\n"_qs);
    }

    void loginsArriveAtTheServer()
    {
        const auto pilot = read<AddPilot>(u"#APA:X:1001:secret:1:100:2:Li ZBAA"_qs);
        const AddPilot expected{
            {u"A"_qs, u"SERVER"_qs},       u"1001"_qs,   u"secret"_qs, NetworkRating::Observer, ProtocolRevision::Token,
            static_cast<SimulatorType>(2), u"Li ZBAA"_qs};
        QCOMPARE(pilot, expected);
        const auto controller = read<AddATC>(u"#AAA:X:Li:1001:secret:1:9"_qs);
        QCOMPARE(controller, AddATC(u"A"_qs, u"Li"_qs, u"1001"_qs, u"secret"_qs, NetworkRating::Observer,
                                    ProtocolRevision::Classic));
        QCOMPARE(controller.To, u"SERVER"_qs);
    }

    void clientIdentificationFields()
    {
        const auto client = read<ClientIdentification>(u"$IDA:SERVER:bdc0:TarvoClient:3:1:1001:sys:abc"_qs);
        const ClientIdentification expected{
            {u"A"_qs, u"SERVER"_qs}, 48576, u"TarvoClient"_qs, 3, 1, u"1001"_qs, u"sys"_qs, u"abc"_qs};
        QCOMPARE(client, expected);
    }

    void messagesTakeTheirReceiver()
    {
        QCOMPARE(read<TextMessage>(u"#TMA:B:x:y"_qs), TextMessage(u"A"_qs, u"B"_qs, u"x:y"_qs));
        QCOMPARE(read<BroadcastMessage>(u"#TMA:*:hi"_qs), BroadcastMessage(u"A"_qs, u"hi"_qs));
        QCOMPARE(read<BroadcastMessage>(u"#TMA:*P:hi"_qs).To, u"*P"_qs);
        QCOMPARE(read<Wallop>(u"#TMA:*S:hi"_qs), Wallop(u"A"_qs, u"hi"_qs));
        const auto radio = read<RadioMessage>(u"#TMA:@18500&@21700:hi"_qs);
        QCOMPARE(radio, RadioMessage(u"A"_qs, {118500, 121700}, u"hi"_qs));
        QVERIFY(radio.To.isEmpty());
    }

    void muteSwapsItsEndsBetweenReadingAndWriting()
    {
        const auto mute = read<Mute>(u"#MUSERVER:CES1:1"_qs);
        QCOMPARE(mute, Mute(u"SERVER"_qs, u"CES1"_qs, true));
        QCOMPARE(toLine(mute), u"#MUCES1:SERVER:1\r\n"_qs);
    }

    void metarTakesTheServerAsSender()
    {
        QCOMPARE(read<MetarResponse>(u"$ARX:CES1:METAR:text"_qs), MetarResponse(u"CES1"_qs, u"text"_qs));
        QCOMPARE(MetarResponse(u"CES1"_qs, u"text"_qs).From, u"SERVER"_qs);
        QCOMPARE(MetarRequest(u"CES1"_qs, u"ZBAA"_qs).serialize().join(u':'), u"CES1:SERVER:METAR:ZBAA"_qs);
    }

    void flightPlanFields()
    {
        const auto plan = read<FlightPlan>(u"$FPA:B:2:3:4:5:6:7:8:9:10:11:12:13:14:15:16:17"_qs);
        const FlightPlan expected{
            {u"A"_qs, u"B"_qs}, u"2"_qs,  u"3"_qs,  u"4"_qs,  u"5"_qs,  u"6"_qs,  u"7"_qs,    u"8"_qs, u"9"_qs,
            u"10"_qs,           u"11"_qs, u"12"_qs, u"13"_qs, u"14"_qs, u"15"_qs, u"16:17"_qs};
        QCOMPARE(plan, expected);
    }

    void planeInfoFields()
    {
        const auto info = read<PlaneInfoResponse>(u"#SBA:B:PI:GEN:CSL=4:LIVERY=3:AIRLINE=2:EQUIPMENT=1"_qs);
        QCOMPARE(info, PlaneInfoResponse(u"A"_qs, u"B"_qs, u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs));
        QCOMPARE(read<PlaneInfoRequest>(u"#SBA:B:PIR"_qs), PlaneInfoRequest(u"A"_qs, u"B"_qs));
    }

    void everyQueryTokenReadsAndWritesItsValue()
    {
        const QStringList all = tokens();
        QCOMPARE(all.size(), 29);
        for (int value = 0; value < all.size(); ++value) {
            QCOMPARE(static_cast<int>(toClientQueryType(all[value])), value);
            QCOMPARE(QString(tokenOf(static_cast<ClientQueryType>(value))), all[value]);
        }
        QVERIFY(tokenOf(static_cast<ClientQueryType>(29)).isEmpty());
        QVERIFY(tokenOf(static_cast<ClientQueryType>(255)).isEmpty());
    }

    void anUnknownQueryTokenKeepsItsPayload()
    {
        const auto query = read<ClientQuery>(u"$CQA:B:ZZ:x:y"_qs);
        QCOMPARE(query, ClientQuery(u"A"_qs, u"B"_qs, ClientQueryType::Unknown, {u"x"_qs, u"y"_qs}));
        QCOMPARE(query.serialize(), (QStringList{u"A"_qs, u"B"_qs, QString(), u"x"_qs, u"y"_qs}));
        const auto response = read<ClientQueryResponse>(u"$CRA:B:RN:Li"_qs);
        QCOMPARE(response, ClientQueryResponse(u"A"_qs, u"B"_qs, ClientQueryType::RealName, {u"Li"_qs}));
    }

    void fatalErrorTypes()
    {
        const QList<int> fatal{1, 2, 3, 6, 10, 11, 12, 13, 15, 16};
        for (int type = -2; type < 40; ++type)
            QCOMPARE(ProtocolError({}, {}, type, {}, {}).isFatal(), fatal.contains(type));
        QVERIFY(read<ProtocolError>(u"$ERSERVER:A:2:p:m"_qs).isFatal());
        QVERIFY(!read<ProtocolError>(u"$ERSERVER:A:4:p:m"_qs).isFatal());
    }

    void whatIsNoFiniteNumberIsWrittenAsZero()
    {
        for (const double value : {qQNaN(), qInf(), -qInf()})
            QCOMPARE(fields::fixed(value, 2), u"0.00"_qs);
        QCOMPARE(fields::fixed(-1.5, 1), u"-1.5"_qs);
    }

    void enumerationsAreLookedUpAsText()
    {
        for (int value = -3; value < 300; ++value) {
            const QString text = QString::number(value);
            QCOMPARE(static_cast<int>(toNetworkRating(text)), value >= -1 && value <= 12 ? value : 0);
            QCOMPARE(static_cast<int>(toNetworkFacility(text)), value >= 0 && value <= 6 ? value : 0);
            QCOMPARE(static_cast<int>(toSimulatorType(text)), value >= 0 && value <= 5 ? value : 0);
            const bool revision = value == 9 || value == 10 || value == 100 || value == 101;
            QCOMPARE(static_cast<int>(toProtocolRevision(text)), revision ? value : 0);
        }
        for (const QString &text : {QString(), u"01"_qs, u" 1"_qs, u"1 "_qs, u"+1"_qs, u"one"_qs})
            QCOMPARE(static_cast<int>(toNetworkRating(text)), 0);
        QCOMPARE(toWire(static_cast<NetworkRating>(-1)), u"-1"_qs);
        QCOMPARE(toWire(ProtocolRevision::Token), u"100"_qs);
    }

    void numbers_data()
    {
        tarvo::test::columns<QString, double>("text", "number");
        QTest::newRow("integer") << u"42"_qs << 42.0;
        QTest::newRow("negative") << u"-0.25"_qs << -0.25;
        QTest::newRow("plus") << u"+0.25"_qs << 0.25;
        QTest::newRow("exponent") << u"2.5e3"_qs << 2500.0;
        QTest::newRow("no digit before the point") << u".5"_qs << 0.5;
        QTest::newRow("no digit after the point") << u"5."_qs << 5.0;
        QTest::newRow("more digits than a double holds")
            << u"0.1000000000000000055511151231257827021181583404541015625"_qs << 0.1;
        QTest::newRow("a little too long for the short way") << u"1."_qs + QString(35, u'0') << 1.0;
        QTest::newRow("empty") << QString() << 0.0;
        QTest::newRow("word") << u"abc"_qs << 0.0;
        QTest::newRow("two points") << u"1.2.3"_qs << 0.0;
        QTest::newRow("a minus inside") << u"1-2"_qs << 0.0;
        QTest::newRow("nothing but a minus") << u"-"_qs << 0.0;
        QTest::newRow("comma") << u"1,5"_qs << 0.0;
        QTest::newRow("letters behind") << u"1.5x"_qs << 0.0;
        QTest::newRow("hexadecimal") << u"0x10"_qs << 0.0;
        QTest::newRow("nan") << u"nan"_qs << 0.0;
        QTest::newRow("infinity") << u"inf"_qs << 0.0;
        QTest::newRow("too large") << u"1e999"_qs << 0.0;
        QTest::newRow("beyond Latin-1") << u"\u0661\u0662"_qs << 0.0;
    }
    void numbers()
    {
        QFETCH(QString, text);
        QFETCH(double, number);
        QCOMPARE(fields::toDouble(text), number);
    }

    void aMissingFieldListIsReported()
    {
        QVERIFY_EXCEPTION_THROWN(DeletePilot::parse({}), PDUFormatException);
        QVERIFY_EXCEPTION_THROWN(DeleteATC::parse({}), PDUFormatException);
        try {
            DeletePilot::parse({});
        } catch (const PDUFormatException &exception) {
            QCOMPARE(exception.error(), u"Invalid field count."_qs); // names no class
        }
        try {
            DeleteATC::parse({});
        } catch (const PDUFormatException &exception) {
            QCOMPARE(exception.error(), u"Invalid field count for DeleteATC command."_qs);
        }
        try {
            RadioMessage::parse({u"A"_qs, u"@1"_qs});
            QFAIL("two fields are too few");
        } catch (const PDUFormatException &exception) {
            QCOMPARE(exception.error(), u"Invalid field count for RadioMessage message."_qs);
            QCOMPARE(exception.rawMessage(), u"A:@1"_qs);
        }
    }

    void noIdentifierIsNoPdu_data()
    {
        QTest::addColumn<QString>("line");
        for (const char *line : {"#", "$", "#A", "$Z:", "#:AA", ":abc", "X:abc", " @N", "$ZRA:B:c", "$ZZA:B", "#a"})
            QTest::newRow(line) << QString::fromLatin1(line);
    }
    void noIdentifierIsNoPdu()
    {
        QFETCH(QString, line);
        try {
            parseLine(line);
            QFAIL("was read");
        } catch (const PDUFormatException &exception) {
            QCOMPARE(exception.error(), u"Invalid PDU type."_qs);
            QCOMPARE(exception.rawMessage(), line);
        }
    }
};

TARVO_TEST(PduValueTest)
#include "PduValueTest.moc"

#include "e2e/Stage.h"
#include "e2e/TrafficLines.h"
#include "support/TestRegistry.h"

using namespace tarvo;
using namespace tarvo::test;

namespace {

/// What the client makes of some lines. Whatever isn't named must not happen.
struct Reaction
{
    QStringList lines;         ///< to the server
    QStringList messages;      ///< to the plugin
    QStringList announced;     ///< signals
    QStringList notifications; ///< posted to the user

    bool operator==(const Reaction &) const = default;
};

/// A configuration of which nothing is known.
practice::PluginMessage acconfNothing(const QString &callsign)
{
    return acconf(callsign, QVariantList(11));
}

/// How the client takes the news of a filed type of somebody whose place it doesn't know: the simulator hears nothing.
Reaction appears(const QString &type)
{
    return {.lines = {}, .messages = {}, .announced = {u"aircraft CCA123 %1 CCA"_qs.arg(type)}, .notifications = {}};
}

QString flightPlan(const QString &aircraft)
{
    return u"$FPCCA123:*A:I:%1:450:ZBAA:1000:1000:35000:ZSPD:2:0:4:0:ZSNJ:RMK:ROUTE:MORE"_qs.arg(aircraft);
}

/// Tokens that no query, or no answer, of this client's is about, and one that doesn't exist.
QStringList tokensBut(const QStringList &handled)
{
    QStringList tokens{u""_qs,    u"ATC"_qs, u"CAPS"_qs, u"C?"_qs, u"RN"_qs,  u"SV"_qs,      u"ATIS"_qs,   u"IP"_qs,
                       u"INF"_qs, u"FP"_qs,  u"IPC"_qs,  u"BY"_qs, u"HI"_qs,  u"HLP"_qs,     u"NOHLP"_qs,  u"WH"_qs,
                       u"IT"_qs,  u"HT"_qs,  u"DR"_qs,   u"FA"_qs, u"TA"_qs,  u"BC"_qs,      u"SC"_qs,     u"VT"_qs,
                       u"ACC"_qs, u"ZZ"_qs,  u"EST"_qs,  u"GD"_qs, u"acc"_qs, u"NEWINFO"_qs, u"NEWATIS"_qs};
    tokens.removeIf([&](const QString &token) { return handled.contains(token); });
    return tokens;
}

void row(const char *name, const QStringList &lines, const Reaction &reaction = {})
{
    QTest::newRow(name) << lines << reaction;
}

void columns()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<Reaction>("reaction");
}

} // namespace

Q_DECLARE_METATYPE(Reaction)

/// What one line from the network brings about, all kinds of them, in one session.
class QueriesTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<Stage> m_stage;

    Reaction react(const QStringList &lines)
    {
        if (!m_stage->hear(lines))
            return {
                .lines = {u"the client has not come to rest"_qs}, .messages = {}, .announced = {}, .notifications = {}};
        Reaction reaction{m_stage->takeLines(), m_stage->takeMessages(), m_stage->takeSignals(), {}};
        reaction.notifications.swap(m_stage->client.notifications);
        return reaction;
    }

    void check()
    {
        QFETCH(QStringList, lines);
        QFETCH(Reaction, reaction);
        const Reaction actual = react(lines);
        QCOMPARE(actual.lines, reaction.lines);
        QCOMPARE(actual.messages, reaction.messages);
        QCOMPARE(actual.announced, reaction.announced);
        QCOMPARE(actual.notifications, reaction.notifications);
        QCOMPARE(m_stage->client.events, QStringList{u"connected AB1"_qs});
    }

private slots:
    void initTestCase()
    {
        m_stage = std::make_unique<Stage>();
        QVERIFY(m_stage->start({cca}));
    }

    void cleanup()
    {
        react({deletion(cca)});
        QCOMPARE(m_stage->manager().remoteAircraft().size(), 0);
    }

    void cleanupTestCase() { m_stage.reset(); }

    void queries_data()
    {
        columns();
        row("capabilities", {u"$CQCCA123:AB1:CAPS"_qs},
            {.lines = {ownCapabilities(cca)},
             .messages = {},
             .announced = {u"capabilities asked CCA123"_qs},
             .notifications = {}});
        row("capabilities, by the server", {u"$CQSERVER:AB1:CAPS"_qs},
            {.lines = {ownCapabilities(u"SERVER"_qs)}, .messages = {}, .announced = {}, .notifications = {}});
        row("capabilities, by a server in lower case", {u"$CQserver:AB1:CAPS"_qs}, // the real one knows none
            {.lines = {ownCapabilities(u"server"_qs)},
             .messages = {},
             .announced = {},
             .notifications = {u"Network Error: No such callsign"_qs}});
        row("COM1 frequency", {u"$CQCCA123:AB1:C?"_qs},
            {.lines = {u"$CRAB1:CCA123:C?:118.500"_qs}, .messages = {}, .announced = {}, .notifications = {}});
        row("real name", {u"$CQCCA123:AB1:RN"_qs},
            {.lines = {u"$CRAB1:CCA123:RN:Lin Xiaozhou ZBAA:1"_qs},
             .messages = {},
             .announced = {},
             .notifications = {}});
        row("configuration without a word", {u"$CQCCA123:AB1:ACC"_qs},
            {.lines = {}, .messages = {}, .announced = {u"configuration CCA123 "_qs}, .notifications = {}});
        row("configuration of somebody unseen", {configuration(cca, u"\"gear_down\":true"_qs)},
            {.lines = {},
             .messages = {},
             .announced = {u"configuration CCA123 {\"config\":{\"gear_down\":true}}"_qs},
             .notifications = {}});
        for (const QString &token : tokensBut({u"CAPS"_qs, u"C?"_qs, u"RN"_qs, u"INF"_qs, u"ACC"_qs}))
            row(qPrintable(u"ignored "_qs + token), {u"$CQCCA123:AB1:%1:CCA123:B738"_qs.arg(token)});
        row("ignored without a type", {u"$CQCCA123:AB1"_qs},
            {.lines = {},
             .messages = {},
             .announced = {},
             .notifications = {u"Invalid field count for ClientQuery command. (Raw packet: CCA123:AB1)"_qs}});
    }

    void queries() { check(); }

    void capabilitiesOfAnAircraftThatIsKnown()
    {
        QVERIFY(m_stage->hear({slowPosition(cca, 0)}));
        m_stage->takeLines();
        // The list asks for type and plan anew before the answer goes out.
        const Reaction reaction = react({u"$CQCCA123:AB1:CAPS"_qs});
        QCOMPARE(reaction.lines, typeQuestions(cca) << ownCapabilities(cca));
    }

    void clientInformation()
    {
        const auto general = [this](const char *dataref, double factor = 1) {
            return QString::number(m_stage->xplane().value(QLatin1StringView(dataref)) * factor, 'g', 6);
        };
        const auto expected = [&](const QString &address) {
            return u"#TMAB1:CCA123:TARVO Client 3.0 PID=1001 (Lin Xiaozhou ZBAA) IP=%1 SYS_UID=%2 FS_VER=XPlane12 "
                   "LT=%3 LO=%4 AL=%5"_qs.arg(address, manager::machineId(),
                                              general("sim/flightmodel/position/latitude"),
                                              general("sim/flightmodel/position/longitude"),
                                              general("sim/flightmodel/position/elevation", 3.28084));
        };
        QCOMPARE(react({u"$CQCCA123:AB1:INF"_qs}).lines, QStringList{expected(u"127.0.0.1"_qs)});
        QCOMPARE(react({u"$CRSERVER:AB1:IP:10.1.2.3"_qs, u"$CQCCA123:AB1:INF"_qs}).lines,
                 QStringList{expected(u"10.1.2.3"_qs)});
        QCOMPARE(react({u"$CRSERVER:AB1:IP"_qs, u"$CQCCA123:AB1:INF"_qs}).lines, QStringList{expected({})});
    }

    void answers_data()
    {
        columns();
        const auto announced = [](const QString &text) {
            return Reaction{.lines = {}, .messages = {}, .announced = {text}, .notifications = {}};
        };
        row("a station is valid", {u"$CRSERVER:AB1:ATC:y:zbaa_twr"_qs}, announced(u"valid ZBAA_TWR"_qs));
        row("a station is not", {u"$CRSERVER:AB1:ATC:N:ZBAA_TWR"_qs});
        row("a station, without a word", {u"$CRSERVER:AB1:ATC"_qs});
        row("capabilities", {u"$CRCCA123:AB1:CAPS:VERSION=1:ACCONFIG=0"_qs},
            announced(u"capabilities CCA123 VERSION=1:ACCONFIG=0"_qs));
        row("capabilities with configurations", {u"$CRCCA123:AB1:CAPS:VERSION=1:ACCONFIG=1"_qs},
            {.lines = {configurationQuestion(cca)},
             .messages = {},
             .announced = {u"capabilities CCA123 VERSION=1:ACCONFIG=1"_qs},
             .notifications = {}});
        row("real name", {u"$CRCCA123:AB1:RN:Zhang San ZSPD:2"_qs}, announced(u"name CCA123 Zhang San ZSPD"_qs));
        row("real name, without a word", {u"$CRCCA123:AB1:RN"_qs}, announced(u"name CCA123 "_qs));
        row("ATIS that nobody asked for", {u"$CRCCA123:AB1:ATIS:T:hi"_qs, u"$CRCCA123:AB1:ATIS:E:1"_qs});
        row("public address", {u"$CRSERVER:AB1:IP:127.0.0.1"_qs});
        for (const QString &token : tokensBut({u"CAPS"_qs, u"ATC"_qs, u"RN"_qs, u"ATIS"_qs, u"IP"_qs, u"FP"_qs}))
            row(qPrintable(u"ignored "_qs + token), {u"$CRCCA123:AB1:%1:CCA123:B738"_qs.arg(token)});
    }

    void answers() { check(); }

    void flightPlanAnswers_data()
    {
        columns();
        row("callsign and type", {u"$CRSERVER:AB1:FP:cca123:H/B744/L"_qs}, appears(u"B744"_qs));
        row("by keys", {u"$CRSERVER:AB1:FP:route=x:acft = B738/M:callsign= cca123"_qs}, appears(u"B738"_qs));
        row("callsign by the keys' priority", {u"$CRSERVER:AB1:FP:FROM=XX1:PILOT=CCA123:TYPE=A320"_qs},
            appears(u"A320"_qs));
        row("type by the fields' order", {u"$CRSERVER:AB1:FP:CID=CCA123:ACFT=A320:AIRCRAFT=B738"_qs},
            appears(u"A320"_qs));
        row("by the pilot himself", {u"$CRCCA123:AB1:FP:XX1:A333"_qs}, appears(u"A333"_qs));
        row("no callsign", {u"$CRSERVER:AB1:FP:a callsign?:B738"_qs});
        row("no type", {u"$CRSERVER:AB1:FP:CCA123"_qs});
        row("nothing", {u"$CRSERVER:AB1:FP"_qs});
    }

    void flightPlanAnswers() { check(); }

    void flightPlans_data()
    {
        columns();
        row("a plan", {flightPlan(u"H/B744/L"_qs)}, appears(u"B744"_qs));
        row("without a type", {flightPlan({})});
        row("without a sender", {flightPlan(u"B738"_qs).replace(u"CCA123"_qs, QString())});
        row("too short", {u"$FPCCA123:*A:I:B738"_qs},
            {.lines = {},
             .messages = {},
             .announced = {},
             .notifications = {u"Invalid field count for FlightPlan command. (Raw packet: CCA123:*A:I:B738)"_qs}});
    }

    void flightPlans() { check(); }

    void onlyAFiledTypeThatDiffersUpdatesTheConfiguration()
    {
        QVERIFY(m_stage->hear({slowPosition(cca, 0)}));
        m_stage->takeMessages();
        // A type that is the first to be known differs from what was known before.
        QCOMPARE(react({flightPlan(u"B738"_qs)}).messages, told({add(cca), acconfNothing(cca)}));
        m_stage->takeLines();
        QCOMPARE(react({flightPlan(u"b738"_qs)}).messages, QStringList());
        QCOMPARE(react({flightPlan(u"A320"_qs)}).messages, told({acconfNothing(cca)}));
        QCOMPARE(react({u"$CRSERVER:AB1:FP:CCA123:A333"_qs}).messages, told({acconfNothing(cca)}));
        QCOMPARE(react({planeInfo(cca, u"EQUIPMENT=B744"_qs)}).messages, QStringList());
        QCOMPARE(m_stage->inNetworkTable(cca).typeCode, u"B744"_qs);
    }

    void aTokenClientAsksByTextForAPlanOnceInAWhile()
    {
        Stage stage(Protocol::Token);
        QVERIFY(stage.start({cca}));
        QVERIFY(stage.hear({flightPlan(u"B738"_qs)}));
        QCOMPARE(stage.takeLines(), QStringList{u"#TMAB1:SERVER:FP:CCA123:GET"_qs});
        stage.clock.advance(4999);
        QVERIFY(stage.hear({flightPlan(u"B738"_qs)}));
        QCOMPARE(stage.takeLines(), QStringList());
        stage.clock.advance(1);
        QVERIFY(stage.hear({flightPlan(u"B738"_qs)}));
        QCOMPARE(stage.takeLines(), QStringList{u"#TMAB1:SERVER:FP:CCA123:GET"_qs});
    }

    void aPlanThatIsNotThereIsAskedForAgain()
    {
        // The server knows none, and says so.
        QVERIFY(m_stage->hear({slowPosition(cca, 0)}));
        m_stage->takeLines();
        QCOMPARE(react({slowPosition(cca, 0)}).lines, QStringList()); // not with every position
        m_stage->clock.advance(10'000);
        QCOMPARE(react({slowPosition(cca, 0)}).lines, typeQuestions(cca));
        QCOMPARE(react({}).notifications, QStringList());
    }

    void planeInformation_data()
    {
        columns();
        row("asked", {u"#SBCCA123:AB1:PIR"_qs},
            {.lines = {u"#SBAB1:CCA123:PI:GEN:EQUIPMENT=B738"_qs},
             .messages = {},
             .announced = {},
             .notifications = {}});
        row("told", {planeInfo(cca, u"equipment=B738:AIRLINE=CES"_qs)}, appears(u"B738"_qs));
        row("told without a type", {planeInfo(cca, u"EQUIPMENT="_qs)},
            {.lines = {}, .messages = {}, .announced = {u"aircraft CCA123  CCA"_qs}, .notifications = {}});
        row("another kind", {u"#SBCCA123:AB1:PI:X:0:1:2"_qs},
            {.lines = {},
             .messages = {},
             .announced = {},
             .notifications = {u"Invalid PDU type. (Raw packet: #SBCCA123:AB1:PI:X:0:1:2)"_qs}});
    }

    void planeInformation() { check(); }

    void theRest_data()
    {
        columns();
        const auto notified = [](const QString &text) {
            return Reaction{.lines = {}, .messages = {}, .announced = {}, .notifications = {text}};
        };
        const auto announced = [](const QStringList &texts) {
            return Reaction{.lines = {}, .messages = {}, .announced = texts, .notifications = {}};
        };
        row("ping", {u"$PICCA123:AB1:12345"_qs},
            {.lines = {u"$POAB1:CCA123:12345"_qs}, .messages = {}, .announced = {}, .notifications = {}});
        row("pong", {u"$POSERVER:AB1:12345"_qs});
        row("another pilot's login", {u"#APCCA9:SERVER:2002::1:9:1:Somebody"_qs});
        row("a controller's login", {u"#AAZBAA_GND:SERVER:Somebody:2003::1:9"_qs});
        row("the own login again", {u"#APAB1:SERVER:1001::1:9:5:Lin Xiaozhou"_qs});
        row("somebody's identification", {u"$IDCCA123:AB1:0001:Client:1:0:2001:77"_qs});
        row("weather", {u"$ARSERVER:AB1:METAR:ZBAA 210600Z"_qs});
        row("muted", {u"#MUSERVER:AB1:1"_qs, u"#MUSERVER:AB1:0"_qs}, announced({u"mute yes"_qs, u"mute no"_qs}));
        row("the own deletion", {u"#DPab1:1001"_qs}, announced({u"voice off"_qs, u"pilot deleted AB1"_qs}));
        row("a deletion of somebody unseen", {u"#DPcca9"_qs}, announced({u"pilot deleted CCA9"_qs}));
        row("an error that the server calls fatal", {u"$ERSERVER:AB1:2:AB1:Callsign in use"_qs},
            notified(u"Network Error: Callsign in use"_qs));
        row("no flight plan", {u"$ERSERVER:AB1:8:cca123:No flight plan"_qs});
        row("no flight plan of nobody", {u"$ERSERVER:AB1:8: :No flight plan"_qs});
        row("no such line", {u"$YYSERVER:AB1:hi"_qs}, notified(u"Invalid PDU type. (Raw packet: $YYSERVER:AB1:hi)"_qs));
        row("no line at all", {u"X:abc"_qs}, notified(u"Invalid PDU type. (Raw packet: X:abc)"_qs));
        row("two characters", {u"#A"_qs}, notified(u"Invalid PDU type. (Raw packet: #A)"_qs));
    }

    void theRest() { check(); }
};

TARVO_TEST(QueriesTest)
#include "QueriesTest.moc"

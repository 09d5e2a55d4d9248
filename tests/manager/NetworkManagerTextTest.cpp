#include "fsd/FsdClient.h"
#include "manager/OnlineSession.h"
#include "support/TestRegistry.h"

#include <QRegularExpression>

#include <functional>

using namespace tarvo;
using tarvo::manager::NetworkManager;
using tarvo::test::FakeSimulator;
using tarvo::test::OnlineSession;
using tarvo::test::Session;

namespace {

QString listed(const QList<uint> &frequencies)
{
    QStringList items;
    for (const uint frequency : frequencies)
        items.append(QString::number(frequency));
    return items.join(u'+');
}

/// Writes down what the manager tells about text and stations, as "private ab2|hello".
struct Ear : QObject
{
    QStringList &heard;

    Ear(const NetworkManager &manager, QStringList &list) : heard(list)
    {
        using NM = NetworkManager;
        connect(&manager, &NM::serverMessageReceived, this,
                [this](const QString &text) { note(u"server"_qs, {text}); });
        connect(&manager, &NM::privateMessageReceived, this, [this](const QString &from, const QString &text) {
            note(u"private"_qs, {from, text});
        });
        connect(&manager, &NM::broadcastMessageReceived, this, [this](const QString &from, const QString &text) {
            note(u"broadcast"_qs, {from, text});
        });
        connect(&manager, &NM::radioMessageReceived, this, [this](const network::RadioMessageReceived &args) {
            note(u"radio"_qs, {args.from, args.message, listed(args.frequencies.value<QList<uint>>()),
                               args.direct ? u"direct"_qs : u"all"_qs, args.dualReceive ? u"dual"_qs : u"single"_qs});
        });
        connect(&manager, &NM::selcalAlertReceived, this, [this](const QString &from, const QList<uint> &frequencies) {
            note(u"selcal"_qs, {from, listed(frequencies)});
        });
        connect(&manager, &NM::controllerUpdateReceived, this,
                [this](const QString &from, quint32 frequency, double lat, double lon) {
                    note(u"station"_qs, {from, QString::number(frequency), QString::number(lat), QString::number(lon)});
                });
        connect(&manager, &NM::controllerDeleted, this, [this](const QString &from) { note(u"gone"_qs, {from}); });
        connect(&manager, &NM::muteReceived, this,
                [this](bool mute) { note(u"mute"_qs, {mute ? u"on"_qs : u"off"_qs}); });
        connect(&manager, &NM::isValidAtcReceived, this, [this](const QString &from) { note(u"valid"_qs, {from}); });
        connect(&manager, &NM::realNameReceived, this, [this](const QString &from, const QString &name) {
            note(u"name"_qs, {from, name});
        });
        connect(&manager, &NM::capabilitiesResponseReceived, this, [this](const QString &from, const QString &data) {
            note(u"capabilities"_qs, {from, data});
        });
        connect(&manager, &NM::controllerAtisReceived, this,
                [this](const QString &from, const QStringList &atis) { note(u"atis"_qs, QStringList{from} + atis); });
    }

private:
    void note(const QString &what, const QStringList &values) { heard << what + u' ' + values.join(u'|'); }
};

/// An online pilot; what the manager tells stands among the simulator's calls, in order.
struct TextSession : OnlineSession
{
    Ear ear{*manager, sim->calls};

    using OnlineSession::OnlineSession;

    /// Injects the lines and gives all that came of them, the simulator's calls included.
    QStringList hear(const QStringList &lines)
    {
        for (const QString &line : lines)
            peer.inject(line);
        return peer.expectNothing() ? sim->takeCalls() : QStringList{u"the client sent a line"_qs};
    }

    void tune(uint com1, bool receive1, uint com2, bool receive2) const
    {
        model::RadioStackState radio;
        radio.com1Frequency = com1;
        radio.com1ReceiveEnabled = receive1;
        radio.com2Frequency = com2;
        radio.com2ReceiveEnabled = receive2;
        emit sim->radioStackStateChanged(radio);
    }
};

/// One list of what sending does: "line #TM...", the simulator's calls, "sent ab2|hi".
struct SentTrace : QObject
{
    SentTrace(NetworkManager &manager, QStringList &list)
    {
        using NM = NetworkManager;
        connect(manager.findChild<fsd::FsdClient *>(), &fsd::FsdClient::raiseRawDataSent, this,
                [&list](const QString &line) { list << u"line "_qs + line.trimmed(); });
        connect(&manager, &NM::privateMessageSent, this,
                [&list](const QString &to, const QString &text) { list << u"sent %1|%2"_qs.arg(to, text); });
        connect(&manager, &NM::radioMessageSent, this, [&list](const QString &text, const QList<uint> &frequencies) {
            list << u"sent %1|%2"_qs.arg(listed(frequencies), text);
        });
        connect(&manager, &NM::wallopSent, this, [&list](const QString &text) { list << u"sent "_qs + text; });
    }
};

/// A simulator that is replaced, once, by what it is shown.
struct LeavingSimulator : FakeSimulator
{
    std::function<void()> leave;

    void showNotification(const QString &message, int colour) override
    {
        FakeSimulator::showNotification(message, colour);
        if (const auto once = std::exchange(leave, {}))
            once();
    }
};

} // namespace

class NetworkManagerTextTest : public QObject
{
    Q_OBJECT

private slots:
    void lines_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char *name, const QStringList &lines, const QStringList &expected) {
            QTest::newRow(name) << lines << expected;
        };
        row("text of the server", {u"#TMSERVER:AB1:Welcome: enjoy"_qs},
            {u"server Welcome: enjoy"_qs, u"showNotification 85a664 Welcome: enjoy"_qs});
        row("text of the server in lower case", {u"#TMserver:AB1:hi"_qs},
            {u"server hi"_qs, u"showNotification 85a664 hi"_qs});
        row("empty text of the server", {u"#TMSERVER:AB1:"_qs}, {u"server "_qs, u"showNotification 85a664 "_qs});
        row("private text", {u"#TMab2:AB1:hello: you"_qs},
            {u"private ab2|hello: you"_qs, u"showPrivateMessageReceived AB2 hello: you"_qs});
        row("private text with a mark", {u"#TMAB2:AB1:%1 %2"_qs},
            {u"private AB2|%1 %2"_qs, u"showPrivateMessageReceived AB2 %1 %2"_qs});
        row("private text of almost the server", {u"#TMSERVER2:AB1:hi"_qs},
            {u"private SERVER2|hi"_qs, u"showPrivateMessageReceived SERVER2 hi"_qs});
        row("broadcast", {u"#TMab2:*:all: hear"_qs},
            {u"broadcast AB2|all: hear"_qs, u"showNotification ffa500 [BROADCAST] AB2: all: hear"_qs});
        row("broadcast to stations", {u"#TMAB2:*A:hi"_qs},
            {u"broadcast AB2|hi"_qs, u"showNotification ffa500 [BROADCAST] AB2: hi"_qs});
        row("broadcast to pilots", {u"#TMAB2:*P:hi"_qs},
            {u"broadcast AB2|hi"_qs, u"showNotification ffa500 [BROADCAST] AB2: hi"_qs});
        row("broadcast of the server", {u"#TMserver:*:hi"_qs},
            {u"broadcast SERVER|hi"_qs, u"showNotification ffa500 [BROADCAST] SERVER: hi"_qs});
        row("broadcast with a mark", {u"#TM%2:*:%1 %2"_qs},
            {u"broadcast %2|%1 %2"_qs, u"showNotification ffa500 [BROADCAST] %2: %1 %2"_qs});
        row("wallop of another", {u"#TMAB2:*S:help"_qs}, {});
        row("station", {u"%zbaa_twr:18500:4:100:3:40.07250:116.59750:0"_qs},
            {u"station zbaa_twr|118500|40.0725|116.597"_qs});
        row("station with two frequencies", {u"%ZBAA_TWR:18500&21700:4:100:3:1:2:0"_qs},
            {u"station ZBAA_TWR|118500|1|2"_qs});
        row("station without a frequency", {u"%ZBAA_TWR::4:100:3:1:2:0"_qs}, {u"station ZBAA_TWR|199998|1|2"_qs});
        row("station with empty frequencies", {u"%ZBAA_TWR:&&:4:100:3:1:2:0"_qs}, {u"station ZBAA_TWR|199998|1|2"_qs});
        row("observer", {u"%AB2:99998:0:40:1:1:2:0"_qs}, {u"station AB2|199998|1|2"_qs});
        row("own echo", {u"%AB1:99998:0:40:1:1:2:0"_qs, u"%ab1:99998:0:40:1:1:2:0"_qs}, {});
        row("station leaves", {u"#DAzbaa_twr:1002"_qs}, {u"gone ZBAA_TWR"_qs});
        row("station leaves without an id", {u"#DAZBAA_TWR"_qs}, {u"gone ZBAA_TWR"_qs});
        row("muted", {u"#MUSERVER:AB1:1"_qs}, {u"mute on"_qs});
        row("not muted", {u"#MUSERVER:AB1:0"_qs}, {u"mute off"_qs});
        row("muted with another word", {u"#MUSERVER:AB1:yes"_qs}, {u"mute off"_qs});
        row("metar, pong and identification",
            {u"$ARSERVER:AB1:METAR:ZBAA"_qs, u"$POSERVER:AB1:1"_qs, u"$IDAB2:AB1:bdc0:Other:3:0:1:2"_qs}, {});
    }

    void lines()
    {
        QFETCH(QStringList, lines);
        QFETCH(QStringList, expected);
        TextSession s;
        QVERIFY(s.online);
        QCOMPARE(s.hear(lines), expected);
        QCOMPARE(s.takeNotifications(), QStringList());
    }

    void answers_data()
    {
        QTest::addColumn<QString>("answer"); // behind the receiver
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char *name, const QString &answer, const QStringList &expected) {
            QTest::newRow(name) << answer << expected;
        };
        row("valid station", u"ATC:Y:zbaa_twr"_qs, {u"valid ZBAA_TWR"_qs});
        row("valid station in lower case", u"ATC:y:ZBAA_TWR"_qs, {u"valid ZBAA_TWR"_qs});
        row("valid station without a name", u"ATC:Y"_qs, {u"valid "_qs});
        row("no valid station", u"ATC:N:ZBAA_TWR"_qs, {});
        row("station with a longer word", u"ATC:YES:ZBAA_TWR"_qs, {});
        row("station without payload", u"ATC"_qs, {});
        row("capabilities", u"CAPS:VERSION=1:ACCONFIG=1"_qs, {u"capabilities ab2|VERSION=1:ACCONFIG=1"_qs});
        row("one capability", u"CAPS:VERSION=1"_qs, {u"capabilities ab2|VERSION=1"_qs});
        row("no capabilities", u"CAPS"_qs, {u"capabilities ab2|"_qs});
        row("real name", u"RN:Han Mei ZBAA:1:x"_qs, {u"name ab2|Han Mei ZBAA"_qs});
        row("empty real name", u"RN:"_qs, {u"name ab2|"_qs});
        row("no real name", u"RN"_qs, {u"name ab2|"_qs});
        row("unasked ATIS", u"ATIS:E:1"_qs, {});
        row("second address", u"IP:10.0.0.10"_qs, {});
        for (const char *token :
             {"",   "C?", "SV", "INF", "IPC", "BY",  "HI",      "HLP",     "NOHLP", "WH", "IT",       "HT",  "DR",
              "FA", "TA", "BC", "SC",  "VT",  "ACC", "NEWINFO", "NEWATIS", "EST",   "GD", "nonsense", "caps"})
            QTest::addRow("type '%s'", token) << QLatin1StringView(token) + u":Y:AB2"_qs << QStringList();
    }

    void answers()
    {
        QFETCH(QString, answer);
        QFETCH(QStringList, expected);
        TextSession s;
        QVERIFY(s.online);
        QCOMPARE(s.hear({u"$CRab2:AB1:"_qs + answer}), expected);
        QCOMPARE(s.takeEvents(), QStringList()); // the login is not told again
    }

    void radio_data()
    {
        QTest::addColumn<QString>("receivers"); // 1: COM1 on 118500, 2: COM2 on 121700
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char *name, const QString &receivers, const QString &line,
                            const QStringList &expected) { QTest::newRow(name) << receivers << line << expected; };
        row("on COM1", u"12"_qs, u"ab2:@18500:hello: all"_qs,
            {u"radio AB2|hello: all|118500|all|dual"_qs, u"showRadioMessageReceived AB2 hello: all all"_qs});
        row("on both, in the sender's order", u"12"_qs, u"AB2:@21700&@22800&@18500&@21700:hi"_qs,
            {u"radio AB2|hi|121700+118500|all|dual"_qs, u"showRadioMessageReceived AB2 hi all"_qs});
        row("one receiver", u"1"_qs, u"AB2:@18500&@21700:hi"_qs,
            {u"radio AB2|hi|118500|all|single"_qs, u"showRadioMessageReceived AB2 hi all"_qs});
        row("the other receiver", u"2"_qs, u"AB2:@18500&@21700:hi"_qs,
            {u"radio AB2|hi|121700|all|single"_qs, u"showRadioMessageReceived AB2 hi all"_qs});
        row("not tuned", u"12"_qs, u"AB2:@22800:hi"_qs, {});
        row("receivers off", QString(), u"AB2:@18500:hi"_qs, {});
        row("no frequency", u"12"_qs, u"AB2:@:hi"_qs, {});
        row("direct", u"12"_qs, u"AB2:@18500:AB1, hello"_qs,
            {u"radio AB2|AB1, hello|118500|direct|dual"_qs, u"showRadioMessageReceived AB2 AB1, hello direct"_qs});
        row("direct in lower case", u"1"_qs, u"AB2:@18500:ab1 hello"_qs,
            {u"radio AB2|ab1 hello|118500|direct|single"_qs, u"showRadioMessageReceived AB2 ab1 hello direct"_qs});
        row("a longer callsign", u"1"_qs, u"AB2:@18500:AB12 hello"_qs,
            {u"radio AB2|AB12 hello|118500|direct|single"_qs, u"showRadioMessageReceived AB2 AB12 hello direct"_qs});
        row("callsign within the text", u"1"_qs, u"AB2:@18500:hello AB1"_qs,
            {u"radio AB2|hello AB1|118500|all|single"_qs, u"showRadioMessageReceived AB2 hello AB1 all"_qs});
        row("empty text", u"1"_qs, u"AB2:@18500:"_qs,
            {u"radio AB2||118500|all|single"_qs, u"showRadioMessageReceived AB2  all"_qs});
        row("own SELCAL", u"12"_qs, u"zbaa_twr:@18500:SELCAL EF-GH"_qs,
            {u"selcal ZBAA_TWR|118500"_qs, u"selcalAlert"_qs});
        row("own SELCAL on the second radio", u"12"_qs, u"ZBAA_TWR:@21700:SELCAL efgh"_qs,
            {u"selcal ZBAA_TWR|121700"_qs, u"selcalAlert"_qs});
        row("own SELCAL on both", u"12"_qs, u"ZBAA_TWR:@18500&@21700:SELCAL EF-gh"_qs,
            {u"selcal ZBAA_TWR|118500+121700"_qs, u"selcalAlert"_qs});
        row("own SELCAL, not tuned", u"12"_qs, u"ZBAA_TWR:@22800:SELCAL EF-GH"_qs, {});
        row("another's SELCAL", u"12"_qs, u"ZBAA_TWR:@18500:SELCAL EF-GJ"_qs, {});
        row("lower-case word", u"12"_qs, u"ZBAA_TWR:@18500:selcal EF-GH"_qs,
            {u"radio ZBAA_TWR|selcal EF-GH|118500|all|dual"_qs,
             u"showRadioMessageReceived ZBAA_TWR selcal EF-GH all"_qs});
        row("more than a code", u"1"_qs, u"ZBAA_TWR:@18500:SELCAL EF-GH please"_qs,
            {u"radio ZBAA_TWR|SELCAL EF-GH please|118500|all|single"_qs,
             u"showRadioMessageReceived ZBAA_TWR SELCAL EF-GH please all"_qs});
    }

    void radio()
    {
        QFETCH(QString, receivers);
        QFETCH(QString, line);
        QFETCH(QStringList, expected);
        TextSession s;
        QVERIFY(s.online);
        s.tune(118500, receivers.contains(u'1'), 121700, receivers.contains(u'2'));
        QCOMPARE(s.hear({u"#TM"_qs + line}), expected);
    }

    void oneFrequencyOnBothRadiosIsHeardOnce()
    {
        TextSession s;
        QVERIFY(s.online);
        s.tune(118500, true, 118500, true);
        QCOMPARE(s.hear({u"#TMAB2:@18500:hi"_qs}),
                 (QStringList{u"radio AB2|hi|118500|all|dual"_qs, u"showRadioMessageReceived AB2 hi all"_qs}));
    }

    void ownSelcalAsTyped_data()
    {
        QTest::addColumn<QString>("own");
        QTest::addColumn<QStringList>("expected");
        const QStringList alert{u"selcal ZBAA_TWR|118500"_qs, u"selcalAlert"_qs};
        QTest::newRow("lower case") << u"ef-gh"_qs << alert;
        QTest::newRow("without hyphen") << u"EFGH"_qs << alert;
        QTest::newRow("none") << QString() << QStringList();
        QTest::newRow("another") << u"AB-CD"_qs << QStringList();
    }

    void ownSelcalAsTyped()
    {
        QFETCH(QString, own);
        QFETCH(QStringList, expected);
        TextSession s(own);
        QVERIFY(s.online);
        s.tune(118500, true, 0, false);
        QCOMPARE(s.hear({u"#TMZBAA_TWR:@18500:SELCAL EF-GH"_qs}), expected);
    }

    void atis_data()
    {
        QTest::addColumn<QStringList>("asked");
        QTest::addColumn<QStringList>("lines"); // behind "$CR"
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char *name, const QStringList &asked, const QStringList &lines,
                            const QStringList &expected) { QTest::newRow(name) << asked << lines << expected; };
        const QString twr = u"ZBAA_TWR"_qs;
        row("whole", {twr},
            {u"ZBAA_TWR:AB1:ATIS:V:voice"_qs, u"ZBAA_TWR:AB1:ATIS:T:Beijing Tower"_qs, u"ZBAA_TWR:AB1:ATIS:T:"_qs,
             u"ZBAA_TWR:AB1:ATIS:Z:1230z"_qs, u"ZBAA_TWR:AB1:ATIS:E:4"_qs},
            {u"atis ZBAA_TWR|Beijing Tower||Estimated logoff time: 1230z"_qs,
             u"showNotification ffa500 ZBAA_TWR ATIS:"_qs, u"showNotification ffa500 Beijing Tower"_qs,
             u"showNotification ffa500 "_qs, u"showNotification ffa500 Estimated logoff time: 1230z"_qs});
        row("any case", {u" zbaa_Twr "_qs}, {u"zBAA_TWR:AB1:ATIS:T:one"_qs, u"zbaa_twr:AB1:ATIS:E:1"_qs},
            {u"atis ZBAA_TWR|one"_qs, u"showNotification ffa500 ZBAA_TWR ATIS:"_qs, u"showNotification ffa500 one"_qs});
        row("without a line", {twr}, {u"ZBAA_TWR:AB1:ATIS:E"_qs},
            {u"atis ZBAA_TWR"_qs, u"showNotification ffa500 ZBAA_TWR ATIS:"_qs});
        row("text with a colon ends there", {twr}, {u"ZBAA_TWR:AB1:ATIS:T:one:two"_qs, u"ZBAA_TWR:AB1:ATIS:E"_qs},
            {u"atis ZBAA_TWR|one"_qs, u"showNotification ffa500 ZBAA_TWR ATIS:"_qs, u"showNotification ffa500 one"_qs});
        row("text with a mark", {twr},
            {u"ZBAA_TWR:AB1:ATIS:T:%1"_qs, u"ZBAA_TWR:AB1:ATIS:Z:%1"_qs, u"ZBAA_TWR:AB1:ATIS:E"_qs},
            {u"atis ZBAA_TWR|%1|Estimated logoff time: %1"_qs, u"showNotification ffa500 ZBAA_TWR ATIS:"_qs,
             u"showNotification ffa500 %1"_qs, u"showNotification ffa500 Estimated logoff time: %1"_qs});
        row("without text", {twr},
            {u"ZBAA_TWR:AB1:ATIS:T"_qs, u"ZBAA_TWR:AB1:ATIS:Z"_qs, u"ZBAA_TWR:AB1:ATIS"_qs, u"ZBAA_TWR:AB1:ATIS:E"_qs},
            {u"atis ZBAA_TWR||Estimated logoff time: "_qs, u"showNotification ffa500 ZBAA_TWR ATIS:"_qs,
             u"showNotification ffa500 "_qs, u"showNotification ffa500 Estimated logoff time: "_qs});
        row("kinds count in upper case only", {twr}, {u"ZBAA_TWR:AB1:ATIS:t:one"_qs, u"ZBAA_TWR:AB1:ATIS:e"_qs}, {});
        row("unasked", {}, {u"ZBAA_TWR:AB1:ATIS:T:one"_qs, u"ZBAA_TWR:AB1:ATIS:E"_qs}, {});
        row("of another", {twr}, {u"ZSSS_TWR:AB1:ATIS:T:one"_qs, u"ZSSS_TWR:AB1:ATIS:E"_qs}, {});
        row("lines before it was asked are lost", {}, {u"ZBAA_TWR:AB1:ATIS:T:one"_qs}, {});
        row("late lines", {twr}, {u"ZBAA_TWR:AB1:ATIS:E"_qs, u"ZBAA_TWR:AB1:ATIS:T:late"_qs, u"ZBAA_TWR:AB1:ATIS:E"_qs},
            {u"atis ZBAA_TWR"_qs, u"showNotification ffa500 ZBAA_TWR ATIS:"_qs});
        row("two at once", {twr, u"ZSSS_TWR"_qs},
            {u"ZBAA_TWR:AB1:ATIS:T:one"_qs, u"ZSSS_TWR:AB1:ATIS:T:two"_qs, u"ZBAA_TWR:AB1:ATIS:E"_qs,
             u"ZSSS_TWR:AB1:ATIS:E"_qs},
            {u"atis ZBAA_TWR|one"_qs, u"showNotification ffa500 ZBAA_TWR ATIS:"_qs, u"showNotification ffa500 one"_qs,
             u"atis ZSSS_TWR|two"_qs, u"showNotification ffa500 ZSSS_TWR ATIS:"_qs, u"showNotification ffa500 two"_qs});
    }

    void atis()
    {
        QFETCH(QStringList, asked);
        QFETCH(QStringList, lines);
        QFETCH(QStringList, expected);
        TextSession s;
        QVERIFY(s.online);
        for (const QString &callsign : asked) {
            s.manager->requestControllerAtis(callsign);
            EXPECT_LINE(s, u"$CQAB1:%1:ATIS"_qs.arg(callsign.trimmed().toUpper()));
        }
        lines.replaceInStrings(QRegularExpression(u"^"_qs), u"$CR"_qs);
        QCOMPARE(s.hear(lines), expected);
    }

    void askingAgainBeginsAnew()
    {
        TextSession s;
        QVERIFY(s.online);
        s.manager->requestControllerAtis(u"ZBAA_TWR"_qs);
        EXPECT_LINE(s, u"$CQAB1:ZBAA_TWR:ATIS"_qs);
        QCOMPARE(s.hear({u"$CRZBAA_TWR:AB1:ATIS:T:old"_qs}), QStringList());
        emit s.sim->requestStationInfo(u"zbaa_twr"_qs); // from the cockpit
        EXPECT_LINE(s, u"$CQAB1:ZBAA_TWR:ATIS"_qs);
        QCOMPARE(s.hear({u"$CRZBAA_TWR:AB1:ATIS:T:new"_qs, u"$CRZBAA_TWR:AB1:ATIS:E"_qs}),
                 (QStringList{u"atis ZBAA_TWR|new"_qs, u"showNotification ffa500 ZBAA_TWR ATIS:"_qs,
                              u"showNotification ffa500 new"_qs}));
    }

    void aListenerMayAskForTheAtisAgain()
    {
        TextSession s;
        QVERIFY(s.online);
        s.manager->requestControllerAtis(u"ZBAA_TWR"_qs);
        EXPECT_LINE(s, u"$CQAB1:ZBAA_TWR:ATIS"_qs);
        const auto again = connect(s.manager.get(), &NetworkManager::controllerAtisReceived, s.manager.get(),
                                   &NetworkManager::requestControllerAtis);
        s.peer.inject(u"$CRZBAA_TWR:AB1:ATIS:E"_qs);
        EXPECT_LINE(s, u"$CQAB1:ZBAA_TWR:ATIS"_qs);
        disconnect(again);
        s.sim->takeCalls();
        QCOMPARE(s.hear({u"$CRZBAA_TWR:AB1:ATIS:T:new"_qs, u"$CRZBAA_TWR:AB1:ATIS:E"_qs}).value(0),
                 u"atis ZBAA_TWR|new"_qs);
    }

    void questions()
    {
        OnlineSession s;
        QVERIFY(s.online);
        s.manager->requestCapabilities(u"AB2"_qs);
        EXPECT_LINE(s, u"$CQAB1:AB2:CAPS"_qs);
        s.manager->requestValidAtc(u"ZBAA_TWR"_qs);
        EXPECT_LINE(s, u"$CQAB1:SERVER:ATC:ZBAA_TWR"_qs);
        s.manager->requestRealName(u"ZBAA_TWR"_qs);
        EXPECT_LINE(s, u"$CQAB1:ZBAA_TWR:RN"_qs);
        s.manager->sendOwnCapabilities(u"AB2"_qs);
        EXPECT_LINE(s, u"$CRAB1:AB2:CAPS:VERSION=1:ATCINFO=1:MODELDESC=1:ACCONFIG=1:VISUPDATE=1"_qs);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.sim->takeCalls(), QStringList());
    }

    void withoutAConnectionNothingIsAsked()
    {
        Session s;
        s.manager->requestCapabilities(u"AB2"_qs);
        s.manager->requestValidAtc(u"ZBAA_TWR"_qs);
        s.manager->requestControllerAtis(u"ZBAA_TWR"_qs);
        s.manager->sendOwnCapabilities(u"AB2"_qs);
        QVERIFY(s.connectObserver());
        EXPECT_LINE(s, u"#AAAB1:SERVER:Li Lei:1001:secret:1:9"_qs);
    }

    void sendingInOrder_data()
    {
        QTest::addColumn<bool>("online");
        for (const bool online : {true, false})
            QTest::newRow(online ? "online" : "offline") << online;
    }

    void sendingInOrder()
    {
        QFETCH(bool, online);
        Session offline;
        OnlineSession onlineSession;
        QVERIFY(onlineSession.online);
        Session &s = online ? onlineSession : offline;
        if (!online)
            s.addSimulator();
        emit s.sim->radioStackStateChanged({.com1Frequency = 118500, .com1TransmitEnabled = true});
        s.sim->takeCalls();
        const SentTrace trace(*s.manager, s.sim->calls);
        const auto expected = [online](const QString &line, const QStringList &rest) {
            return (online ? QStringList{u"line "_qs + line} : QStringList()) + rest;
        };
        s.manager->sendRadioMessage(u"hi"_qs);
        QCOMPARE(s.sim->takeCalls(),
                 expected(u"#TMAB1:@18500:hi"_qs, {u"showRadioMessageSent hi"_qs, u"sent 118500|hi"_qs}));
        s.manager->sendPrivateMessage(u"ab2"_qs, u"hi"_qs);
        QCOMPARE(s.sim->takeCalls(),
                 expected(u"#TMAB1:AB2:hi"_qs, {u"showPrivateMessageSent ab2 hi"_qs, u"sent ab2|hi"_qs}));
        s.manager->sendWallop(u"hi"_qs);
        QCOMPARE(s.sim->takeCalls(),
                 expected(u"#TMAB1:*S:hi"_qs, {u"sent hi"_qs, u"showNotification eb2f06 [WALLOP] hi"_qs}));
    }

    void textSentOffline()
    {
        Session s;
        s.addSimulator();
        QSignalSpy privateSent(s.manager.get(), &NetworkManager::privateMessageSent);
        QSignalSpy radioSent(s.manager.get(), &NetworkManager::radioMessageSent);
        QSignalSpy wallopSent(s.manager.get(), &NetworkManager::wallopSent);
        s.manager->sendPrivateMessage(u"ab2"_qs, u"hi"_qs);
        s.manager->sendRadioMessage(u"nobody hears"_qs);
        s.manager->sendWallop(u"help"_qs);
        QCOMPARE(s.sim->takeCalls(),
                 (QStringList{u"showPrivateMessageSent ab2 hi"_qs, u"showNotification eb2f06 [WALLOP] help"_qs}));
        QCOMPARE(radioSent.size(), 0);
        emit s.sim->radioStackStateChanged({.com1Frequency = 118500, .com1TransmitEnabled = true});
        s.manager->sendRadioMessage(u"hello"_qs);
        QCOMPARE(s.sim->takeCalls(), QStringList{u"showRadioMessageSent hello"_qs});
        QCOMPARE(privateSent.size(), 1);
        QCOMPARE(radioSent.size(), 1);
        QCOMPARE(wallopSent.size(), 1);
    }

    void withoutASimulatorTheSignalsAreAll()
    {
        Session s;
        const Ear ear(*s.manager, s.events);
        QVERIFY(s.connectObserver());
        QVERIFY(s.peer.skip(3));
        s.manager->requestControllerAtis(u"ZBAA_TWR"_qs);
        EXPECT_LINE(s, u"$CQAB1:ZBAA_TWR:ATIS"_qs);
        for (const QString &line : {u"#TMSERVER:AB1:one"_qs, u"#TMAB2:AB1:two"_qs, u"#TMAB2:*:three"_qs,
                                    u"#TMAB2:@18500:four"_qs, u"$CRZBAA_TWR:AB1:ATIS:E"_qs})
            s.peer.inject(line);
        QVERIFY(s.peer.expectNothing());
        QCOMPARE(s.takeEvents(), (QStringList{u"server one"_qs, u"private AB2|two"_qs, u"broadcast AB2|three"_qs,
                                              u"atis ZBAA_TWR"_qs}));
    }

    void aListenerMayEndTheSession_data()
    {
        QTest::addColumn<QString>("line");
        for (const char *line : {"#TMSERVER:AB1:x", "#TMAB2:AB1:x", "#TMAB2:*:x", "#TMAB2:@18500:x",
                                 "#TMAB2:@18500:SELCAL EF-GH", "$CRZBAA_TWR:AB1:ATIS:E"})
            QTest::newRow(line) << QString::fromLatin1(line);
    }

    void aListenerMayEndTheSession()
    {
        QFETCH(QString, line);
        OnlineSession s;
        QVERIFY(s.online);
        emit s.sim->radioStackStateChanged({.com1Frequency = 118500, .com1ReceiveEnabled = true});
        s.manager->requestControllerAtis(u"ZBAA_TWR"_qs);
        const auto leave = [&s] { s.manager->disconnectFromNetwork(); };
        connect(s.manager.get(), &NetworkManager::serverMessageReceived, this, leave);
        connect(s.manager.get(), &NetworkManager::privateMessageReceived, this, leave);
        connect(s.manager.get(), &NetworkManager::broadcastMessageReceived, this, leave);
        connect(s.manager.get(), &NetworkManager::radioMessageReceived, this, leave);
        connect(s.manager.get(), &NetworkManager::selcalAlertReceived, this, leave);
        connect(s.manager.get(), &NetworkManager::controllerAtisReceived, this, leave);
        s.peer.inject(line);
        s.peer.inject(line); // heard by nobody any more
        TRY_EVENTS(s, u"disconnected"_qs);
    }

    void aSimulatorThatIsReplacedWithinACall_data()
    {
        QTest::addColumn<QString>("call");
        QTest::newRow("reconnect") << u"reconnectSimulator"_qs;
        QTest::newRow("radio text") << u"showRadioMessageSent hi"_qs;
        QTest::newRow("private text") << u"showPrivateMessageSent ab2 hi"_qs;
        QTest::newRow("wallop") << u"showNotification eb2f06 [WALLOP] hi"_qs;
        QTest::newRow("end of the session") << u"networkDisconnected"_qs;
        QTest::newRow("removal at the end") << u"removeAllAircraft"_qs;
        QTest::newRow("stations at the end") << u"clearControllers"_qs;
    }

    void aSimulatorThatIsReplacedWithinACall()
    {
        QFETCH(QString, call);
        OnlineSession s;
        QVERIFY(s.online);
        auto leaving = std::make_shared<FakeSimulator>();
        const auto next = std::make_shared<FakeSimulator>();
        const std::weak_ptr<FakeSimulator> watched = leaving;
        bool alive = false;
        leaving->onCall = [&](const QString &called) {
            if (called != call || s.manager->simulator() == next)
                return;
            watched.lock()->onCall = {};
            s.manager->setSimulator(next);
            alive = !watched.expired(); // until it has returned from the call
        };
        s.manager->setSimulator(std::move(leaving)); // held by the manager alone
        emit watched.lock()->radioStackStateChanged({.com1Frequency = 118500, .com1TransmitEnabled = true});
        s.manager->reconnectSimulator();
        s.manager->sendRadioMessage(u"hi"_qs);
        s.manager->sendPrivateMessage(u"ab2"_qs, u"hi"_qs);
        s.manager->sendWallop(u"hi"_qs);
        s.manager->disconnectFromNetwork();
        QVERIFY(alive);
        TRY_VERIFY(watched.expired());
        QCOMPARE(s.manager->simulator(), next);
        // Whichever it is by then, it is left empty.
        QVERIFY(next->calls.contains(u"clearControllers"_qs) || call == u"clearControllers"_qs);
    }

    void aSimulatorReplacedWhileItIsShownAnAtis()
    {
        OnlineSession s;
        QVERIFY(s.online);
        auto leaving = std::make_shared<LeavingSimulator>();
        const auto next = std::make_shared<FakeSimulator>();
        const std::weak_ptr<LeavingSimulator> watched = leaving;
        leaving->leave = [&] { s.manager->setSimulator(next); };
        s.manager->setSimulator(std::move(leaving)); // held by the manager alone
        s.manager->requestControllerAtis(u"ZBAA_TWR"_qs);
        EXPECT_LINE(s, u"$CQAB1:ZBAA_TWR:ATIS"_qs);
        s.peer.inject(u"$CRZBAA_TWR:AB1:ATIS:T:one"_qs);
        s.peer.inject(u"$CRZBAA_TWR:AB1:ATIS:E"_qs);
        TRY_VERIFY(watched.expired());
        TRY_COMPARE(next->calls, (QStringList{u"showNotification ffa500 one"_qs, u"reconnectSimulator"_qs}));
    }

    void whatWasBegunBeforeASessionIsNotHeardInIt()
    {
        Session s;
        s.addSimulator();
        const QSignalSpy sent(s.manager.get(), &NetworkManager::privateMessageSent);
        s.manager->sendPrivateMessage(u"AB2"_qs, u"hello"_qs);
        QCOMPARE(sent.size(), 1);
        s.sim->onCall = [&s](const QString &call) {
            if (call.startsWith(u"showPrivateMessageSent"_qs))
                s.connectPilot();
        };
        s.manager->sendPrivateMessage(u"AB2"_qs, u"hello"_qs);
        QCOMPARE(sent.size(), 1);
    }
};

TARVO_TEST(NetworkManagerTextTest)
#include "NetworkManagerTextTest.moc"

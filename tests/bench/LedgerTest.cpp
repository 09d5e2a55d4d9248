#include "traffic/Ledger.h"
#include "model/RemoteAircraft.h"
#include "model/VelocityVector.h"
#include "simulator/xplane/PluginMessages.h"
#include "support/TestRegistry.h"
#include "traffic/Budgets.h"
#include "traffic/Crowd.h"

#include <QTest>

using namespace tarvo::bench;
namespace model = tarvo::model;
namespace message = tarvo::simulator::xplane::message;

namespace {

constexpr int pilots = 10;
constexpr int highPilot = 1;
constexpr int lowPilot = 9;
constexpr std::int64_t latencyNs = 3'000'000;

/// A ledger that is told of lines and messages by words. "F0" and "S0": pilot 0 sends his next fast or slow report.
/// "f0.1" and "g0.1": the plugin gets the first and the second message of his fast report 1, counted from 0; "s0.1" of
/// his slow report 1; "h0": his heartbeat; "w0.1" and "l0.1": a fast message with another height, and
/// with a latitude that is a little off. "begin" and "end": of the measured
/// time. Any other word is the name of a message without arguments.
struct SpokenLedger
{
    Ledger ledger{pilots, 10};

    void say(const QString &words)
    {
        for (const QString &word : words.split(u' ', Qt::SkipEmptyParts)) {
            if (word == QStringLiteral("begin"))
                ledger.begin();
            else if (word == QStringLiteral("end"))
                ledger.end();
            else if (word.size() > 1 && word.at(1).isDigit())
                sendOrReceive(word.at(0).toLatin1(), word.at(1).digitValue(), word.mid(3).toInt());
            else
                receive(packed(word));
        }
    }
    QString receive(const QByteArray &bytes) { return ledger.receive(bytes, steadyNs() + latencyNs); }

private:
    void sendOrReceive(char what, int pilot, int number)
    {
        if (what == 'F')
            ledger.noteFast(pilot, ledger.nextFast(pilot));
        else if (what == 'S')
            ledger.noteSlow(pilot, ledger.nextSlow(pilot));
        else if (what == 'h')
            receive(message::heartbeat(crowd::callsignOf(pilot)));
        else
            receive(positionOf(what, pilot, number));
    }

    static QByteArray positionOf(char what, int pilot, int number)
    {
        const crowd::Report said = what == 's' ? crowd::slowReport(pilot, number) : crowd::fastReport(pilot, number);
        model::RemoteAircraft aircraft;
        aircraft.callsign = crowd::callsignOf(pilot);
        aircraft.groundSpeed = what == 'g' ? crowd::slowReport(pilot, 0).groundSpeed : said.groundSpeed;
        const model::AircraftVisualState at{.latitude = said.latitude + (what == 'l' ? 1e-8 : 0),
                                            .longitude = said.longitude,
                                            .altitudeMslM = said.altitude,
                                            .altitudeAglM = said.height + (what == 'w' ? 1 : 0),
                                            .pitch = said.pitch,
                                            .heading = said.heading,
                                            .bank = said.bank,
                                            .noseWheelAngle = said.noseWheelAngle};
        if (what == 's')
            return message::position(aircraft, at);
        return message::fastPosition(aircraft, at, {said.velocity[0], said.velocity[1], said.velocity[2]},
                                     {said.rotation[0], said.rotation[1], said.rotation[2]});
    }

    static QByteArray packed(const QString &name)
    {
        return "\x92" + QByteArray(1, static_cast<char>(0xa0 + name.size())) + name.toLatin1() + "\x90";
    }
};

/// `placeOf`: the pilot at whose place it is.
QByteArray additionOf(int pilot, int placeOf)
{
    model::RemoteAircraft aircraft;
    aircraft.callsign = crowd::callsignOf(pilot);
    aircraft.airline = QString::fromLatin1(crowd::airline.data());
    aircraft.typeCode = QString::fromLatin1(crowd::typeCode.data());
    aircraft.visualState.latitude = crowd::fastReport(placeOf, 0).latitude;
    return message::add(aircraft);
}

} // namespace

class LedgerTest : public QObject
{
    Q_OBJECT

private slots:
    void counts_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("counted"); // messages, overtaken, missing, wrong
        const auto add = [](const char *name, const char *words, const char *counted) {
            QTest::newRow(name) << QString::fromLatin1(words) << QString::fromLatin1(counted);
        };
        add("nothing", "begin end", "0 0 0 0");
        add("all that is due, in order", "begin F0 f0.0 g0.0 S1 s1.0 h1 end", "4 0 0 0");
        add("near the own aircraft", "begin F9 f9.0 g9.0 S9 s9.0 h9 end", "4 0 0 0");
        add("what comes late", "begin F0 F0 S0 end f0.0 g0.0 f0.1 g0.1 s0.0 h0", "6 0 0 0");
        add("nothing of before", "F0 S0 begin f0.0 g0.0 s0.0 h0 end", "0 0 0 0");
        add("nothing of afterwards", "begin F0 f0.0 g0.0 end F0 S0", "2 0 0 0");

        add("a report that is lost", "begin F0 end", "0 0 2 0");
        add("one of its messages", "begin F0 f0.0 end", "1 0 1 0");
        add("a slow report that is lost", "begin S0 end", "0 0 1 0");
        add("its heartbeat", "begin S0 s0.0 end", "1 0 1 0");

        add("overtaken by one's own", "begin F0 F0 f0.1 g0.1 end", "2 2 0 0");
        add("by the second message of the same", "begin F0 g0.0 end", "1 1 0 0");
        add("a slow one by a fast one", "begin S0 F0 h0 f0.0 g0.0 end", "2 1 0 0");
        add("a slow one, and its heartbeat is lost", "begin S0 F0 f0.0 g0.0 end", "2 1 1 0");
        add("in the place of one's own, before another's", "begin F0 F1 F0 g0.1 g1.0 end", "2 4 0 0");
        add("another's may not be lost for it", "begin F0 F1 F0 g0.1 end", "1 3 2 0");
        add("a slow one before another's heartbeat", "begin S0 S1 S0 s0.1 h0 s1.0 h1 h0 end", "4 1 0 0");

        add("another's before, and nothing was overtaken", "begin F0 F1 f1.0 g1.0 f0.0 g0.0 end", "4 0 0 2");
        add("one's own before", "begin F0 F0 f0.1 g0.1 f0.0 g0.0 end", "4 0 0 4"); // which is disorder, too
        add("the second message before the first", "begin F0 g0.0 f0.0 end", "2 1 0 1");
        add("the second message behind another's line", "begin F0 F1 f0.0 f1.0 g1.0 g0.0 end", "4 0 0 1");
        add("a message too many", "begin F0 f0.0 g0.0 g0.0 end", "3 0 0 1");
        add("a heartbeat alone", "begin S0 h0 s0.0 h0 end", "2 0 0 1");
        add("a heartbeat behind another's position", "begin S0 S1 s0.0 s1.0 h0 h1 end", "4 0 0 2");
        add("a report that was never sent", "begin F0 f0.0 g0.0 f0.1 end", "2 0 0 1");
        add("other values", "begin F0 w0.0 g0.0 end", "2 0 0 1");
        add("a latitude that is a little off", "begin F0 l0.0 g0.0 end", "2 0 0 1");
        add("of nobody", "begin F0 f0.0 g0.0 HB end", "2 0 0 1");
        add("what tells of stations", "ATC begin ATC STATION_CALLSIGN end ATC", "0 0 0 0");
        add("what belongs to the start", "CSL CONN begin CONN CSL end", "0 0 0 2");
        add("configurations of nobody, and late ones", "ACCONF begin ACCONF end", "0 0 0 2");
        add("what may never come", "DELALL DEL NEW begin DISCON NOTIF end", "0 0 0 5");
    }

    void counts()
    {
        QFETCH(QString, words);
        SpokenLedger spoken;
        spoken.say(words);
        const Tally tally = spoken.ledger.tally();
        QTEST(
            QStringLiteral("%1 %2 %3 %4").arg(tally.messages).arg(tally.overtaken).arg(tally.missing).arg(tally.wrong),
            "counted");
        QCOMPARE(spoken.ledger.outstanding(), tally.missing);
        QCOMPARE(tally.firstWrong.isEmpty(), tally.wrong == 0);
    }

    void additionsAreAnsweredAtTheStart()
    {
        SpokenLedger spoken;
        QCOMPARE(spoken.receive(additionOf(1, 1)), crowd::callsignOf(1));
        QCOMPARE(spoken.ledger.tally().wrong, 0);
        spoken.receive(additionOf(1, 2)); // another's place
        QCOMPARE(spoken.ledger.tally().wrong, 1);
        QCOMPARE(spoken.receive(additionOf(pilots, pilots)), QString());
        QCOMPARE(spoken.ledger.tally().wrong, 2);
        spoken.say(QStringLiteral("begin end"));
        QCOMPARE(spoken.receive(additionOf(1, 1)), crowd::callsignOf(1));
        QCOMPARE(spoken.ledger.tally().wrong, 3);
        QCOMPARE(spoken.receive(QByteArray()), QString());
        QCOMPARE(spoken.ledger.tally().wrong, 4);
    }

    /// Near the own aircraft the altimeter's error counts.
    void drawnAltitudes()
    {
        QCOMPARE(crowd::slowReport(lowPilot, 0).altitude, (2000 - crowd::temperatureErrorFeet) / 3.28084);
        QCOMPARE(crowd::slowReport(highPilot, 0).altitude, 30000 / 3.28084);
    }

    void everybodyIsThereWithBothMessages()
    {
        SpokenLedger spoken;
        spoken.say(QStringLiteral("F0 g0.0 F1 f1.0"));
        QCOMPARE(spoken.ledger.completeCount(), 0);
        spoken.say(QStringLiteral("g1.0 F0 f0.1 g0.1"));
        QCOMPARE(spoken.ledger.completeCount(), 2);
    }

    void linesAndTimesAreMeasured()
    {
        SpokenLedger spoken;
        spoken.say(QStringLiteral("F0 f0.0 g0.0 begin F0 f0.1 g0.1 S0 s0.0 h0 end F0"));
        QCOMPARE(spoken.ledger.measuredLines(), 2);
        const Tally tally = spoken.ledger.tally();
        QVERIFY(tally.medianMs >= 3 && tally.medianMs <= tally.percentile99Ms);
        QVERIFY(tally.percentile99Ms <= tally.maximumMs);
    }

    void budgets_data()
    {
        QTest::addColumn<Load>("load");
        QTest::addColumn<bool>("busy");
        QTest::addColumn<QString>("exceeded"); // the figure that the run exceeds, if any
        QTest::addColumn<LoadResult>("result");
        const Load small{.pilots = 500, .rate = 5};
        const Load large{.pilots = 501, .rate = 5};
        const Load ordinary{.pilots = 500, .rate = 5, .ordinaryThreads = true};
        const auto result = [](double bareRatio, double percentile, std::uint64_t overtaken, std::uint64_t missing) {
            LoadResult one;
            one.tally.messages = 1;
            one.tally.overtaken = overtaken;
            one.tally.missing = missing;
            one.tally.percentile99Ms = percentile;
            one.cpuShare = bareRatio;
            one.bareShare = 1;
            return one;
        };
        const auto add = [](const char *name, const Load &load, bool busy, const LoadResult &is, const char *exceeded) {
            QTest::newRow(name) << load << busy << QString::fromLatin1(exceeded) << is;
        };
        const char *const time = "ms, 99 % of lines to messages";
        add("quiet", large, false, result(1.6, 2, 0, 0), "");
        add("too dear", small, false, result(1.61, 2, 0, 0), "times the bare program");
        add("too late", large, false, result(1, 2.1, 0, 0), time);
        add("overtaken", small, false, result(1, 1, 1, 0), "positions overtaken");
        add("missing", small, false, result(1, 1, 0, 1), "messages missing");
        add("busy", small, true, result(9, 5, 9, 0), "");
        add("busy and too late", small, true, result(1, 5.1, 0, 0), time);
        add("busy with a large crowd", large, true, result(1, 99, 0, 0), "");
        add("busy and missing", large, true, result(1, 1, 0, 1), "messages missing");
        add("ordinary threads", ordinary, false, result(9, 99, 9, 0), "");
        add("ordinary threads and missing", ordinary, true, result(1, 1, 0, 1), "messages missing");
    }

    void budgets()
    {
        QFETCH(Load, load);
        QFETCH(bool, busy);
        QFETCH(LoadResult, result);
        const std::vector<Judged> figures = judge(load, result, busy);
        QStringList exceeded;
        for (const Judged &figure : figures) {
            if (!figure.isKept())
                exceeded << QString::fromLatin1(figure.what);
        }
        QTEST(exceeded.join(u' '), "exceeded");
        QCOMPARE(isGood(result, figures), exceeded.isEmpty());
        result.failure = QStringLiteral("no free port");
        QVERIFY(!isGood(result, figures));
        result.failure.clear();
        result.tally.messages = 0;
        QVERIFY(!isGood(result, figures));
        QCOMPARE((Judged{"", 3, 2.0}).share(), 1.5);
        QCOMPARE((Judged{"", 3, 0.0}).share(), 3.0);
    }
};

TARVO_TEST(LedgerTest)
#include "LedgerTest.moc"

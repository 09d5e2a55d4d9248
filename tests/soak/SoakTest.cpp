#include "soak/HeapUse.h"
#include "soak/Hour.h"
#include "support/TestRegistry.h"

#include "Logging.h"

#include <QTextStream>

#include <algorithm>

using namespace tarvo;
using tarvo::test::Footprint;
using tarvo::test::heapInUse;
using tarvo::test::Hour;

namespace {

/// The rounds of one login session after the other. What a session must not pile up shows among the rounds of the
/// second, what sessions leave behind in the last.
constexpr int roundsOfSessions[] = {1, 3, 1};
/// A round invents thousands of callsigns: whoever keeps a few bytes of each is found out. What a round leaves by
/// chance, in the spare room of lists and of libraries, is a small part of it.
constexpr qint64 mostGrowth = 256 * 1024;

/// The program's own log, as long as it lives, instead of the test's output.
class ProgramLog
{
public:
    explicit ProgramLog(const QString &path) : m_previous(qInstallMessageHandler(nullptr))
    {
        logging::installHandler();
        logging::openLogFile(path);
    }
    ~ProgramLog() { qInstallMessageHandler(m_previous); }
    ProgramLog(const ProgramLog &) = delete;
    ProgramLog &operator=(const ProgramLog &) = delete;

private:
    QtMessageHandler m_previous;
};

struct Scenario
{
    const char *name;
    bool (Hour::*play)();
};

constexpr Scenario scenarios[] = {
    {"logins and how they end", &Hour::logins},
    {"bad lines", &Hour::badLines},
    {"floods", &Hour::floods},
    {"a crowd", &Hour::crowd},
    {"texts", &Hour::talks},
    {"the plugin dies and returns", &Hour::pluginDies},
    {"simulators are replaced in traffic", &Hour::simulatorsAreReplaced},
    {"servers change", &Hour::serversChange},
};

/// What is there after one round.
struct Remains
{
    Footprint footprint;
    std::optional<qint64> heap;
};

QString heapsOf(const QList<Remains> &rounds)
{
    QStringList heaps;
    for (const Remains &round : rounds)
        heaps << QString::number(round.heap.value_or(0));
    return u"bytes in use after each round: "_qs + heaps.join(u", ");
}

} // namespace

class SoakTest : public QObject
{
    Q_OBJECT

private slots:
    /// What one round leaves behind, all rounds leave behind.
    void anHour()
    {
        const QTemporaryDir logs;
        const ProgramLog log(logs.filePath(u"soak.log"_qs));
        Hour hour;
        const Footprint before = Hour::steady(&Footprint::ofProcess);
        QList<Remains> rounds;
        for (const int count : roundsOfSessions) {
            QVERIFY2(hour.signIn(), qPrintable(hour.where));
            for (int i = 0; i < count; ++i) {
                playRound(hour);
                if (QTest::currentTestFailed())
                    return;
                rounds << Remains{hour.steadyFootprint(), heapInUse()};
                compareRounds(rounds);
            }
            hour.signOut();
        }
        verifyNoStandstill(hour.longestStandstill());
        hour.end();
        TRY_COMPARE(hour.connections(), 0);
        const Footprint after = Hour::steady(&Footprint::ofProcess);
        QVERIFY2(after.descriptors <= before.descriptors, qPrintable(after.excessOver(before)));
    }

private:
    static void playRound(Hour &hour)
    {
        for (const Scenario &scenario : scenarios)
            QVERIFY2((hour.*scenario.play)(), qPrintable(QLatin1StringView(scenario.name) + u": "_qs + hour.where));
    }

    static void verifyNoStandstill(const test::ThreadTime &longest)
    {
        // Not by way of the log, which is the program's here.
        QTextStream(stdout) << "The main thread stood still for " << longest.processorMs << " ms at most ("
                            << longest.wallMs << " by the wall clock)" << Qt::endl;
        QVERIFY(longest.processorMs < test::MainThreadWatch::mostMs);
    }

    static void compareRounds(const QList<Remains> &rounds)
    {
        const Footprint &last = rounds.last().footprint;
        const QString excess = last.excessOver(rounds.first().footprint);
        QVERIFY2(excess.isEmpty(), qPrintable(excess));
        QCOMPARE(last.aircraft, 0);
        QCOMPARE(last.records, 0);
        QCOMPARE(last.controllers, 0);
        // All of these have been filled beyond what they hold.
        const Footprint bounds = Footprint::bounds();
        QCOMPARE(last.sessions, bounds.sessions);
        QCOMPARE(last.messages, bounds.messages);
        QCOMPARE(last.events, bounds.events);
        QCOMPARE(last.logLines, bounds.logLines);
        // Round by round some 200 KB more or fewer lie in caches. What grows is above both of the first two.
        if (rounds.size() > 2 && rounds.last().heap)
            QVERIFY2(*rounds.last().heap - std::max(*rounds.at(0).heap, *rounds.at(1).heap) < mostGrowth,
                     qPrintable(heapsOf(rounds)));
    }
};

TARVO_TEST(SoakTest)
#include "SoakTest.moc"

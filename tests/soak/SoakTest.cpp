#include "soak/Hour.h"
#include "support/TestRegistry.h"

#include "Logging.h"

using namespace tarvo;
using tarvo::test::Footprint;
using tarvo::test::Hour;

namespace {

constexpr int rounds = 3;
constexpr qsizetype mostRows = 2000;
constexpr qsizetype mostMessages = 300;

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

struct Scene
{
    const char *name;
    bool (Hour::*play)();
};

constexpr Scene scenes[] = {
    {"logins and how they end", &Hour::logins},
    {"bad lines", &Hour::badLines},
    {"a crowd", &Hour::crowd},
    {"the plugin dies and returns", &Hour::pluginDies},
    {"simulators are replaced in traffic", &Hour::simulatorsAreReplaced},
    {"servers change", &Hour::serversChange},
};

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
        const Footprint before = Footprint::ofProcess();
        QVERIFY2(hour.begin(), qPrintable(hour.where));
        playRound(hour);
        const Footprint first = hour.footprint();
        for (int round = 2; round <= rounds && !QTest::currentTestFailed(); ++round)
            playRound(hour);
        if (QTest::currentTestFailed())
            return;
        QTRY_VERIFY2_WITH_TIMEOUT(hour.footprint() == first,
                                  qPrintable(first.text() + u" became "_qs + hour.footprint().text()), 10'000);
        QCOMPARE(first.aircraft, 0);
        QCOMPARE(first.controllers, 0);

        // All of them have been filled beyond what they hold.
        QCOMPARE(hour.pages().server.recentEvents().size(), mostRows);
        QCOMPARE(hour.pages().logLines(), mostRows);
        QCOMPARE(hour.pages().messages.messages().size(), mostMessages);

        hour.end();
        QTRY_COMPARE(hour.connections(), 0);
        QTRY_VERIFY2_WITH_TIMEOUT(Footprint::ofProcess().descriptors <= before.descriptors,
                                  qPrintable(before.text() + u" became "_qs + Footprint::ofProcess().text()), 10'000);
    }

private:
    static void playRound(Hour &hour)
    {
        for (const Scene &scene : scenes)
            QVERIFY2((hour.*scene.play)(), qPrintable(QLatin1StringView(scene.name) + u": "_qs + hour.where));
    }
};

TARVO_TEST(SoakTest)
#include "SoakTest.moc"

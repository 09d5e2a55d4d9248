#include "LibraryStage.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSemaphore>
#include <QTest>

#include <utility>

using namespace tarvo;
using namespace tarvo::simulator::msfs;
using namespace tarvo::test;

namespace {

constexpr auto theOld = MsfsRuntimeProfile::Msfs2020;
constexpr auto theNew = MsfsRuntimeProfile::Msfs2024;
const QString airline = QStringLiteral("CCA");

/// Holds a scan where it has done with the first root: its worker waits in the log.
class ScanHold
{
public:
    ScanHold()
    {
        s_current = this;
        m_outer = qInstallMessageHandler(&ScanHold::handle);
    }
    ~ScanHold()
    {
        qInstallMessageHandler(m_outer);
        s_current = nullptr;
    }
    ScanHold(const ScanHold &) = delete;
    ScanHold &operator=(const ScanHold &) = delete;

    void waitUntilHeld() { m_held.acquire(); }
    void release() { m_goOn.release(); }

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &line)
    {
        ScanHold &hold = *s_current;
        if (line.startsWith(QLatin1String("Scanned")) && !std::exchange(hold.m_hasHeld, true)) {
            hold.m_held.release();
            hold.m_goOn.acquire();
        }
        hold.m_outer(type, context, line);
    }

    static inline ScanHold *s_current = nullptr;

    QtMessageHandler m_outer;
    bool m_hasHeld = false; ///< the worker's own
    QSemaphore m_held;
    QSemaphore m_goOn;
};

} // namespace

class MsfsAircraftLibraryTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_log = std::make_unique<LogCapture>();
        m_stage = std::make_unique<LibraryStage>();
    }
    void cleanup()
    {
        m_stage.reset();
        m_log.reset();
    }

    void nothingIsKnownBeforeAScan()
    {
        MsfsAircraftLibrary &library = m_stage->library();
        QVERIFY(!library.isReady());
        QCOMPARE(library.modelCount(theOld), 0);
        QCOMPARE(library.scannedFiles(), 0);
        QVERIFY(!library.findPeerHint(theOld, QStringLiteral("A")));
        QVERIFY(library.searchModels(QStringLiteral("A"), 5, theOld).isEmpty());
    }

    void aScanMakesItReady()
    {
        m_stage->addModel(theOld, QStringLiteral("A"), "A320");
        m_stage->addModel(theNew, QStringLiteral("B"), "B738");
        m_stage->addModel(theNew, QStringLiteral("C"), "B738");
        MsfsAircraftLibrary &library = m_stage->library();
        library.ensureLoaded();
        TRY_VERIFY(library.isReady());
        QCOMPARE(library.modelCount(theOld), 1);
        QCOMPARE(library.modelCount(theNew), 2);
        QCOMPARE(library.modelCount(MsfsRuntimeProfile::Unknown), 0);
        QCOMPARE(library.scannedFiles(), 3);
        QCOMPARE(library.findPeerHint(theNew, QStringLiteral("c"))->title, QStringLiteral("C"));
        QCOMPARE(library.searchModels(QStringLiteral("B738"), 1, theNew).size(), 1);
    }

    void itIsScannedOnce()
    {
        MsfsAircraftLibrary &library = m_stage->library();
        library.ensureLoaded();
        library.ensureLoaded();
        TRY_VERIFY(library.isReady());
        library.ensureLoaded();
        library.stop();
        QCOMPARE(scansOf(), 1);
    }

    void anEmptyLibraryIsReady()
    {
        MsfsAircraftLibrary &library = m_stage->library();
        library.ensureLoaded();
        TRY_VERIFY(library.isReady());
        QCOMPARE(library.modelCount(theOld), 0);
        QCOMPARE(library.match(theOld, QStringLiteral("A320"), airline, {}).entry.title, QString());
    }

    void aMatchBeforeItIsReadyStartsTheScan()
    {
        m_stage->addModel(theOld, QStringLiteral("A"), "A320");
        MsfsAircraftLibrary &library = m_stage->library();
        const MsfsModelMatch expected{.runtime = theOld,
                                      .entry = {},
                                      .normalizedType = QStringLiteral("A320"),
                                      .normalizedAirline = airline,
                                      .normalizedLivery = QStringLiteral("RETRO"),
                                      .score = MsfsModelMatch::noScore,
                                      .fallback = false};
        QCOMPARE(library.match(theOld, QStringLiteral(" a320 "), QStringLiteral("cca\t"), QStringLiteral(" retro")),
                 expected);
        TRY_VERIFY(library.isReady());
        // And was not kept.
        QCOMPARE(library.match(theOld, QStringLiteral("A320"), airline, QStringLiteral("RETRO")).entry.title,
                 QStringLiteral("A"));
    }

    void theTypeIsMadeCanonical()
    {
        m_stage->addModel(theOld, QStringLiteral("A"), "B738");
        MsfsAircraftLibrary &library = m_stage->readyLibrary();
        const MsfsModelMatch match = library.match(theOld, QStringLiteral("b738/m"), {}, {});
        QCOMPARE(match.normalizedType, QStringLiteral("B738"));
        QCOMPARE(match.entry.title, QStringLiteral("A"));
        QVERIFY(library.isTypeCompatible(match.entry, QStringLiteral(" b738/m ")));
        QVERIFY(library.isTypeCompatible(match.entry, QString()));
        QVERIFY(!library.isTypeCompatible(match.entry, QStringLiteral("C172")));
    }

    void theFamilyComesFromTheTypeData()
    {
        m_stage->write(theOld, QStringLiteral("p/SimObjects/a"),
                       "[FLTSIM.0]\ntitle=A\nui_manufacturer=Boeing\nui_type=737-800");
        MsfsAircraftLibrary &library = m_stage->readyLibrary();
        const MsfsModelMatch match = library.match(theOld, QStringLiteral("B738"), {}, {});
        QCOMPARE(match.entry.title, QStringLiteral("A"));
        QCOMPARE(match.score, 1500 + 80 + 70);
        QVERIFY(library.isTypeCompatible(match.entry, QStringLiteral("B738")));
        QVERIFY(!library.isTypeCompatible(match.entry, QStringLiteral("A320")));
    }

    void aTypeThatNobodyKnowsMatchesItsOwnDesignator()
    {
        m_stage->addModel(theOld, QStringLiteral("A"), "ZZZ9");
        MsfsAircraftLibrary &library = m_stage->readyLibrary();
        QCOMPARE(library.match(theOld, QStringLiteral("zzz9"), {}, {}).entry.title, QStringLiteral("A"));
    }

    /// One entry of the cache for what is the same: its texts are the very same ones.
    void matchesAreKept()
    {
        m_stage->addModel(theOld, QStringLiteral("A"), "A320");
        m_stage->addModel(theNew, QStringLiteral("B"), "A320");
        MsfsAircraftLibrary &library = m_stage->readyLibrary();
        const MsfsModelMatch first = library.match(theOld, QStringLiteral("A320"), QStringLiteral("cca"), {});
        const MsfsModelMatch again = library.match(theOld, QStringLiteral(" a320"), QStringLiteral("CCa "), {});
        QCOMPARE(again, first);
        QVERIFY(again.normalizedAirline.isSharedWith(first.normalizedAirline));
        const MsfsModelMatch other = library.match(theNew, QStringLiteral("A320"), airline, {});
        QCOMPARE(other.entry.title, QStringLiteral("B"));
        const MsfsModelMatch nothing = library.match(theOld, QStringLiteral("C172"), QStringLiteral("cca"), {});
        QVERIFY(nothing.fallback);
        QVERIFY(library.match(theOld, QStringLiteral("C172"), QStringLiteral("cca"), {})
                    .normalizedAirline.isSharedWith(nothing.normalizedAirline));
    }

    /// Other pilots choose the texts.
    void aBarInATextIsNoBarOfTheCache()
    {
        MsfsAircraftLibrary &library = m_stage->readyLibrary();
        library.match(theOld, QStringLiteral("A320"), QStringLiteral("CCA"), QStringLiteral("X|"));
        QCOMPARE(library.match(theOld, QStringLiteral("A320"), QStringLiteral("CCA|X"), {}).normalizedAirline,
                 QStringLiteral("CCA|X"));
    }

    void theCacheDoesNotGrowWithoutEnd()
    {
        m_stage->addModel(theOld, QStringLiteral("A"), "A320");
        MsfsAircraftLibrary &library = m_stage->readyLibrary();
        const MsfsModelMatch first = library.match(theOld, QStringLiteral("A320"), QStringLiteral("cca"), {});
        for (int i = 0; i < 5000; ++i)
            library.match(theOld, QStringLiteral("A320"), airline, QString::number(i));
        const MsfsModelMatch again = library.match(theOld, QStringLiteral("A320"), QStringLiteral("cca"), {});
        QCOMPARE(again, first);
        QVERIFY(!again.normalizedAirline.isSharedWith(first.normalizedAirline)); // forgotten meanwhile
    }

    void aReloadScansAnew()
    {
        m_stage->addModel(theOld, QStringLiteral("A"), "A320");
        MsfsAircraftLibrary &library = m_stage->readyLibrary();
        QCOMPARE(library.match(theOld, QStringLiteral("B738"), {}, {}).entry.title, QString());
        m_stage->addModel(theOld, QStringLiteral("B"), "B738");
        library.reload();
        QVERIFY(!library.isReady() || library.modelCount(theOld) == 2);
        TRY_VERIFY(library.isReady());
        QCOMPARE(library.modelCount(theOld), 2);
        QCOMPARE(library.match(theOld, QStringLiteral("B738"), {}, {}).entry.title, QStringLiteral("B"));
        QCOMPARE(scansOf(), 2);
    }

    void aReloadBeforeTheFirstScanIsTheScan()
    {
        MsfsAircraftLibrary &library = m_stage->library();
        library.reload();
        TRY_VERIFY(library.isReady());
        library.stop();
        QCOMPARE(scansOf(), 1);
    }

    void reloadsDuringAScanAreOne()
    {
        m_stage->addMany(theOld, 3);
        MsfsAircraftLibrary &library = m_stage->library();
        {
            ScanHold hold;
            library.ensureLoaded();
            hold.waitUntilHeld();
            QCOMPARE(library.scannedFiles(), 3); // the progress, while it runs
            QVERIFY(!library.isReady());
            QCOMPARE(library.modelCount(theOld), 0);
            m_stage->useFolderInstead(theOld, QStringLiteral("another"));
            m_stage->addModel(theOld, QStringLiteral("A"), "A320");
            library.reload();
            library.reload();
            QVERIFY(!library.isReady());
            hold.release();
            TRY_VERIFY(library.isReady());
        }
        QCOMPARE(library.modelCount(theOld), 1); // the configuration of now
        library.stop();
        QCOMPARE(scansOf(), 2);
    }

    /// For ThreadSanitizer: what the poll does, with a reload in each state.
    void pollsAndReloads()
    {
        m_stage->addMany(theOld, 20);
        MsfsAircraftLibrary &library = m_stage->library();
        for (int round = 0; round < 60; ++round) {
            library.reload();
            for (int poll = 0; poll < 50 && (round % 3 > 0 || !library.isReady()); ++poll) {
                library.match(theOld, QStringLiteral("A320"), QString::number(poll), {});
                library.scannedFiles();
                if (library.isReady())
                    QCOMPARE(library.modelCount(theOld), 20);
            }
        }
        TRY_VERIFY(library.isReady());
    }

    /// Wherever the scan is: how it ends early is LibraryScanTest's matter.
    void noThreadIsLeftBehind_data()
    {
        QTest::addColumn<bool>("byStop");
        QTest::newRow("stopped") << true;
        QTest::newRow("destroyed") << false;
    }
    void noThreadIsLeftBehind()
    {
        QFETCH(bool, byStop);
        m_stage->addMany(theOld, 500);
        MsfsAircraftLibrary &library = m_stage->library();
        library.ensureLoaded();
        if (!byStop) {
            m_stage->forgetLibrary();
            QCOMPARE(m_log->texts(QtWarningMsg), QStringList());
            return;
        }
        library.stop();
        QCOMPARE(m_log->texts(QtWarningMsg), QStringList());
        const bool wasReady = library.isReady();
        library.ensureLoaded(); // nothing begins any more
        library.reload();
        QCOMPARE(library.isReady(), wasReady);
        QVERIFY(scansOf() <= 1);
    }

    void whatIsReadyStaysSoAfterAStop()
    {
        m_stage->addModel(theOld, QStringLiteral("A"), "A320");
        MsfsAircraftLibrary &library = m_stage->readyLibrary();
        library.stop();
        QVERIFY(library.isReady());
        QCOMPARE(library.match(theOld, QStringLiteral("A320"), {}, {}).entry.title, QStringLiteral("A"));
    }

private:
    /// How many scans came to their end.
    qsizetype scansOf() const { return m_log->startingWith(QStringLiteral("MSFS aircraft library ready:")).size(); }

    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<LibraryStage> m_stage;
};

TARVO_TEST(MsfsAircraftLibraryTest)
#include "MsfsAircraftLibraryTest.moc"

#include "LibraryStage.h"
#include "support/LogCapture.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo;
using namespace tarvo::simulator::msfs;
using namespace tarvo::test;

namespace {

constexpr auto theOld = MsfsRuntimeProfile::Msfs2020;
constexpr auto theNew = MsfsRuntimeProfile::Msfs2024;
const QString airline = QStringLiteral("CCA");

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
        m_stage->addMany(theOld, 300);
        MsfsAircraftLibrary &library = m_stage->library();
        library.ensureLoaded();
        while (library.scannedFiles() == 0 && !library.isReady()) {
        }
        QVERIFY(!library.isReady());
        m_stage->useFolderInstead(theOld, QStringLiteral("another"));
        m_stage->addModel(theOld, QStringLiteral("A"), "A320");
        library.reload();
        library.reload();
        QVERIFY(!library.isReady());
        TRY_VERIFY(library.isReady());
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

    void stopInTheMiddle()
    {
        m_stage->addMany(theOld, 500);
        MsfsAircraftLibrary &library = m_stage->library();
        library.ensureLoaded();
        while (library.scannedFiles() == 0 && !library.isReady()) {
        }
        library.stop();
        QVERIFY(library.scannedFiles() < 500);
        QVERIFY(!library.isReady());
        QCOMPARE(scansOf(), 0);
        library.ensureLoaded();
        library.reload();
        QVERIFY(!library.isReady());
        QCOMPARE(m_log->texts(QtWarningMsg), QStringList()); // no thread left behind
    }

    void itGoesInTheMiddle()
    {
        m_stage->addMany(theOld, 500);
        m_stage->library().ensureLoaded();
        m_stage->forgetLibrary();
        QCOMPARE(scansOf(), 0);
        QCOMPARE(m_log->texts(QtWarningMsg), QStringList());
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

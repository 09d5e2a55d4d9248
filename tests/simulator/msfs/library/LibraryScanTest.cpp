#include "PackageTree.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;
using namespace tarvo::test;

namespace {

const QByteArray airbus =
    "[GENERAL]\nicao_type_designator=A320\nicao_manufacturer=Airbus\nicao_model=\"A320 Neo\"\n"
    "icao_engine_type=Jet\nicao_wtc=M\nCategory=airplane\nicao_engine_count=2\n"
    "[FLTSIM.0]\ntitle=\"Airbus  A320 Air China\"\nui_manufacturer=\" Airbus \"\nui_type=A320neo\n"
    "ui_variation=\"Air China\"\natc_airline=CCA\nisAirTraffic=1\n";

/// One simulator's folders; the other has none.
LibraryPlaces placesOf(MsfsRuntimeProfile runtime, const QString &packages, const QString &community = {},
                       const QStringList &mappings = {})
{
    return {.configured = {{runtime, packages, community, mappings}}, .dataBase = QStringLiteral("/gone")};
}

LibraryPlaces communityOf(const PackageTree &tree)
{
    return placesOf(MsfsRuntimeProfile::Msfs2024, {}, tree.path());
}

QList<MsfsAircraftEntry> scanned(const LibraryPlaces &places)
{
    ScanWatch watch;
    return entriesOf(scanLibrary(places, watch), MsfsRuntimeProfile::Unknown);
}

QStringList titles(const LibraryPlaces &places)
{
    QStringList found;
    for (const MsfsAircraftEntry &entry : scanned(places))
        found.append(entry.title);
    return found;
}

} // namespace

class LibraryScanTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_log = std::make_unique<LogCapture>(); }
    void cleanup() { m_log.reset(); }

    void anEntryHasEverything()
    {
        const PackageTree tree;
        const QString file =
            tree.write(QStringLiteral("Community/cca-a320/SimObjects/Airplanes/a320/aircraft.cfg"), airbus);
        const MsfsAircraftEntry expected{.runtime = MsfsRuntimeProfile::Msfs2020,
                                         .title = QStringLiteral("Airbus A320 Air China"),
                                         .configPath = file,
                                         .rootLabel = QStringLiteral("Community"),
                                         .package = QStringLiteral("cca-a320"),
                                         .uiManufacturer = QStringLiteral("Airbus"),
                                         .uiType = QStringLiteral("A320neo"),
                                         .uiVariation = QStringLiteral("Air China"),
                                         .airline = QStringLiteral("CCA"),
                                         .metadata = {.icaoTypeDesignator = QStringLiteral("A320"),
                                                      .icaoManufacturer = QStringLiteral("Airbus"),
                                                      .icaoModel = QStringLiteral("A320 Neo"),
                                                      .icaoEngineType = QStringLiteral("Jet"),
                                                      .icaoWakeCategory = QStringLiteral("M"),
                                                      .category = QStringLiteral("airplane"),
                                                      .icaoEngineCount = QStringLiteral("2")},
                                         .isAirTraffic = true,
                                         .isUserSelectable = true,
                                         .isCommunity = true};
        QCOMPARE(scanned(placesOf(MsfsRuntimeProfile::Msfs2020, tree.path())), QList{expected});
    }

    void officialIsNotCommunity()
    {
        const PackageTree tree;
        tree.addAircraft(QStringLiteral("Official/Steam/asobo/SimObjects/a"), QStringLiteral("A"));
        const QList<MsfsAircraftEntry> entries = scanned(placesOf(MsfsRuntimeProfile::Msfs2020, tree.path()));
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries.first().rootLabel, QStringLiteral("Official/Steam"));
        QCOMPARE(entries.first().package, QStringLiteral("asobo"));
        QVERIFY(!entries.first().isCommunity);
    }

    void selectableIs_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<bool>("traffic");
        QTest::addColumn<bool>("selectable");
        QTest::newRow("nothing told") << QByteArray() << false << false;
        QTest::newRow("traffic alone") << QByteArray("isairtraffic=1") << true << true;
        QTest::newRow("traffic that isn't") << QByteArray("isairtraffic=1\nisuserselectable=0") << true << false;
        QTest::newRow("traffic, and empty") << QByteArray("isairtraffic=1\nisuserselectable=") << true << false;
        QTest::newRow("selectable alone") << QByteArray("isuserselectable=1") << false << true;
    }
    void selectableIs()
    {
        QFETCH(QByteArray, lines);
        const PackageTree tree;
        tree.write(QStringLiteral("p/SimObjects/aircraft.cfg"), "[FLTSIM.0]\ntitle=A\n" + lines);
        const QList<MsfsAircraftEntry> entries = scanned(communityOf(tree));
        QCOMPARE(entries.size(), 1);
        QTEST(entries.first().isAirTraffic, "traffic");
        QTEST(entries.first().isUserSelectable, "selectable");
    }

    void variantsWithoutTitleAreNone()
    {
        const PackageTree tree;
        tree.write(QStringLiteral("p/SimObjects/aircraft.cfg"),
                   "[FLTSIM.2]\nui_type=x\n[fltsim.0]\ntitle=B\n[FLTSIM.1]\ntitle=\" \"\n[FLTSIM.3]\ntitle=A\n"
                   "[GENERAL]\ntitle=C\n[VARIATION]\ntitle=D");
        QCOMPARE(titles(communityOf(tree)), QStringList({QStringLiteral("B"), QStringLiteral("A")}));
    }

    void whatIsTheSame_data()
    {
        QTest::addColumn<QStringList>("files"); // "folder:title"
        QTest::addColumn<QStringList>("mappings");
        QTest::addColumn<QStringList>("titles");
        const auto row = [](const char *name, QStringView files, QStringView mappings, QStringView titles) {
            QTest::newRow(name) << files.toString().split(u' ') << mappings.toString().split(u' ', Qt::SkipEmptyParts)
                                << titles.toString().split(u' ');
        };
        row("two packages with a title", u"c/p/SimObjects/a:T c/q/SimObjects/a:T", u"c", u"T T");
        row("a package with a title twice", u"c/p/SimObjects/a:T c/p/SimObjects/b:t", u"c", u"T");
        row("a package through two roots", u"c/p/SimObjects/a:T d/p/SimObjects/a:T", u"c d", u"T");
        row("a package and what holds it", u"c/p/SimObjects/a:T", u"c c/p", u"T");
        row("two packages that are roots", u"p/SimObjects/a:T q/SimObjects/a:T", u"p q", u"T T");
        row("packages in a group", u"c/g/p/SimObjects/a:T c/g/q/SimObjects/a:T", u"c", u"T T");
        row("roots below their SimObjects", u"p/SimObjects/a/x:T p/SimObjects/a/y:T", u"p/SimObjects/a", u"T T");
    }
    void whatIsTheSame()
    {
        QFETCH(QStringList, files);
        QFETCH(QStringList, mappings);
        const PackageTree tree;
        for (const QString &file : files)
            tree.addAircraft(file.section(u':', 0, 0), file.section(u':', 1));
        for (QString &mapping : mappings)
            mapping = tree.path(mapping);
        QTEST(titles(placesOf(MsfsRuntimeProfile::Msfs2024, {}, {}, mappings)), "titles");
    }

    void bothSimulatorsMayHaveATitle()
    {
        const PackageTree tree;
        tree.addAircraft(QStringLiteral("old/p/SimObjects"), QStringLiteral("T"));
        tree.addAircraft(QStringLiteral("new/p/SimObjects"), QStringLiteral("T"));
        LibraryPlaces places = placesOf(MsfsRuntimeProfile::Msfs2020, {}, tree.path(QStringLiteral("old")));
        places.configured += placesOf(MsfsRuntimeProfile::Msfs2024, {}, tree.path(QStringLiteral("new"))).configured;
        ScanWatch watch;
        const ModelTables tables = scanLibrary(places, watch);
        QCOMPARE(titlesOf(tables, MsfsRuntimeProfile::Msfs2020), QStringList{QStringLiteral("T")});
        QCOMPARE(titlesOf(tables, MsfsRuntimeProfile::Msfs2024), QStringList{QStringLiteral("T")});
        QCOMPARE(tables.count(MsfsRuntimeProfile::Unknown), 0);
        QCOMPARE(watch.files, 2);
        QCOMPARE(m_log->texts(QtInfoMsg),
                 QStringList({QStringLiteral("Scanned 1 MSFS aircraft variants for MSFS 2020 from ") +
                                  tree.path(QStringLiteral("old")),
                              QStringLiteral("Scanned 1 MSFS aircraft variants for MSFS 2024 from ") +
                                  tree.path(QStringLiteral("new")),
                              QStringLiteral("MSFS aircraft library ready: profiles=2 fs2020=1 fs2024=1")}));
    }

    void aVariationHasItsBaseData()
    {
        const PackageTree tree;
        tree.write(QStringLiteral("base/SimObjects/Airplanes/a320/aircraft.cfg"), airbus);
        tree.write(QStringLiteral("livery/SimObjects/Airplanes/a320-ces/aircraft.cfg"),
                   "[VARIATION]\nbase_container = \"..\\..\\..\\..\\base\\SimObjects\\Airplanes\\a320\"\n"
                   "[GENERAL]\nicao_model=A320ceo\n[FLTSIM.0]\ntitle=CES");
        const QList<MsfsAircraftEntry> entries = scanned(communityOf(tree));
        QCOMPARE(entries.size(), 2);
        QCOMPARE(entries.last().title, QStringLiteral("CES"));
        QCOMPARE(entries.last().metadata.icaoTypeDesignator, QStringLiteral("A320"));
        QCOMPARE(entries.last().metadata.icaoModel, QStringLiteral("A320ceo"));
        QCOMPARE(entries.last().airline, QString()); // only the metadata come from there
    }

    void garbageOfAHundredMegabytes()
    {
        const PackageTree tree;
        const QString path = tree.write(QStringLiteral("a/SimObjects/aircraft.cfg"), QByteArray(100'000, '\xA5'));
        QVERIFY(QFile::resize(path, 100'000'000));
        tree.addAircraft(QStringLiteral("b/SimObjects"), QStringLiteral("B"));
        QCOMPARE(titles(communityOf(tree)), QStringList{QStringLiteral("B")});
    }

    void aFileThatCannotBeReadCostsNothingElse()
    {
        const PackageTree tree;
        tree.makeFolder(QStringLiteral("a/SimObjects"));
        QVERIFY(QFile::link(QStringLiteral("/gone"), tree.path(QStringLiteral("a/SimObjects/aircraft.cfg"))));
        tree.addAircraft(QStringLiteral("b/SimObjects"), QStringLiteral("B"));
        QCOMPARE(titles(communityOf(tree)), QStringList{QStringLiteral("B")});
    }

    void nothingToScan()
    {
        ScanWatch watch;
        watch.files = 7;
        const ModelTables tables = scanLibrary({.configured = {}, .dataBase = {}}, watch);
        QCOMPARE(tables.count(MsfsRuntimeProfile::Msfs2020), 0);
        QCOMPARE(watch.files, 0);
        QCOMPARE(m_log->texts(QtWarningMsg),
                 QStringList{QStringLiteral("No MSFS aircraft library roots were discovered; traffic model matching "
                                            "will be unavailable")});
        QCOMPARE(m_log->texts(QtInfoMsg),
                 QStringList{QStringLiteral("MSFS aircraft library ready: profiles=0 fs2020=0 fs2024=0")});
    }

    void aFolderThatIsAwayIsConfiguredAllTheSame()
    {
        ScanWatch watch;
        scanLibrary(placesOf(MsfsRuntimeProfile::Msfs2020, QStringLiteral("/gone")), watch);
        QCOMPARE(m_log->texts(),
                 QStringList{QStringLiteral("MSFS aircraft library ready: profiles=1 fs2020=0 fs2024=0")});
    }

    void aStoppedScanSaysAndHoldsNothing()
    {
        const PackageTree tree;
        tree.addAircraft(QStringLiteral("a/SimObjects"), QStringLiteral("A"));
        ScanWatch watch;
        watch.isStopped = true;
        QCOMPARE(titlesOf(scanLibrary(communityOf(tree), watch), MsfsRuntimeProfile::Unknown), QStringList());
        QCOMPARE(m_log->texts(), QStringList());
    }

    void aScanStopsBetweenRoots()
    {
        const PackageTree tree;
        tree.addAircraft(QStringLiteral("old/p/SimObjects"), QStringLiteral("A"));
        tree.addAircraft(QStringLiteral("new/p/SimObjects"), QStringLiteral("B"));
        LibraryPlaces places = placesOf(MsfsRuntimeProfile::Msfs2020, {}, tree.path(QStringLiteral("old")));
        places.configured += placesOf(MsfsRuntimeProfile::Msfs2024, {}, tree.path(QStringLiteral("new"))).configured;
        ScanWatch watch;
        static ScanWatch *stopping = nullptr;
        stopping = &watch;
        const QtMessageHandler outer = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &) { stopping->isStopped = true; });
        const ModelTables tables = scanLibrary(places, watch);
        qInstallMessageHandler(outer);
        QCOMPARE(watch.files, 1);
        QCOMPARE(titlesOf(tables, MsfsRuntimeProfile::Unknown), QStringList());
    }

private:
    std::unique_ptr<LogCapture> m_log;
};

TARVO_TEST(LibraryScanTest)
#include "LibraryScanTest.moc"

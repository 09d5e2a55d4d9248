#include "simulator/msfs/library/InstallDiscovery.h"
#include "PackageTree.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;
using namespace tarvo::test;

namespace {

constexpr auto p2020 = MsfsRuntimeProfile::Msfs2020;
constexpr auto p2024 = MsfsRuntimeProfile::Msfs2024;

LibraryPlaces emptyPlaces(const QString &dataBase)
{
    return {.configured = {{.runtime = p2020, .packagesPath = {}, .communityPath = {}, .mappingPaths = {}},
                           {.runtime = p2024, .packagesPath = {}, .communityPath = {}, .mappingPaths = {}}},
            .dataBase = dataBase};
}

QStringList summaryOf(const QList<MsfsInstallConfig> &configs)
{
    QStringList lines;
    for (const MsfsInstallConfig &config : configs) {
        lines.append(QStringLiteral("%1 %2: %3, %4, %5")
                         .arg(displayName(config.runtime), config.label, config.packagesPath, config.communityPath,
                              config.extraMappingPaths.join(u'+')));
    }
    return lines;
}

QStringList labelsOf(const QList<MsfsPackageRoot> &roots)
{
    QStringList labels;
    for (const MsfsPackageRoot &root : roots)
        labels.append(root.label + (root.isCommunity ? QStringLiteral(" c") : QString()));
    return labels;
}

} // namespace

class InstallDiscoveryTest : public QObject
{
    Q_OBJECT

private slots:
    void userCfgTells_data()
    {
        columns<QByteArray, QStringList>("bytes", "paths");
        const auto row = [](const char *name, const QByteArray &bytes, const QStringList &paths) {
            QTest::newRow(name) << bytes << paths;
        };
        const QString packages = QStringLiteral("D:/My Sim/Packages");
        row("quoted", "{Video\n}\nInstalledPackagesPath \"D:\\My Sim\\Packages\"\n", {packages});
        row("in front of other lines", "InstalledPackagesPath \"D:\\My Sim\\Packages\"\r\nVersion 66\r\n", {packages});
        row("bare", "InstalledPackagesPath D:\\My Sim\\Packages", {packages});
        row("indented", "  \tInstalledPackagesPath   \"D:\\My Sim\\Packages\\\"  \n", {packages});
        row("behind a tab", "InstalledPackagesPath\tD:\\My Sim\\Packages", {packages});
        row("twice", "InstalledPackagesPath A\nInstalledPackagesPath B", {QStringLiteral("A"), QStringLiteral("B")});
        row("without value", "InstalledPackagesPath\nInstalledPackagesPath \nInstalledPackagesPath \"\"", {});
        row("in lower case", "installedpackagespath A", {});
        row("within a line", "x InstalledPackagesPath A", {});
        row("another key that begins so", "InstalledPackagesPathOld A", {QStringLiteral("A")});
        row("with mark", "\xEF\xBB\xBFInstalledPackagesPath A", {QStringLiteral("A")});
        row("Chinese", "InstalledPackagesPath \"D:\\\xe6\xa8\xa1\xe6\x8b\x9f\"", {QStringLiteral("D:/模拟")});
        row("UTF-16", QByteArray("\xff\xfeI\0n\0s\0t\0a\0l\0l\0e\0d\0P\0a\0c\0k\0a\0g\0e\0s\0P\0a\0t\0h\0 \0A\0", 48),
            {QStringLiteral("A")});
        row("garbage", QByteArray("\0\xff\n\n\"\"\0", 7), {});
        row("nothing", "", {});
    }
    void userCfgTells()
    {
        QFETCH(QByteArray, bytes);
        QTEST(packagesPathsIn(bytes), "paths");
    }

    void nothingAnywhere()
    {
        const PackageTree tree;
        QCOMPARE(discoverInstallConfigs(emptyPlaces(tree.path())), QList<MsfsInstallConfig>());
    }

    void userCfgIsFound_data()
    {
        columns<QString, QString>("file", "runtimes");
        const QString in2020 = QStringLiteral("MSFS 2020");
        const QString in2024 = QStringLiteral("MSFS 2024");
        const auto row = [](const QString &file, const QString &runtimes) {
            QTest::newRow(qPrintable(file)) << file << runtimes;
        };
        row(QStringLiteral("Microsoft Flight Simulator"), in2020);
        row(QStringLiteral("Microsoft Flight Simulator 2020"), in2020);
        row(QStringLiteral("Microsoft Flight Simulator 2024"), in2024);
        row(QStringLiteral("Packages/Microsoft.Limitless_8wekyb3d8bbwe/LocalCache"), in2024);
        row(QStringLiteral("Packages/Microsoft.FlightSimulator2024_8wekyb3d8bbwe/LocalCache"), in2024);
        row(QStringLiteral("Packages/Microsoft.FlightSimulator_8wekyb3d8bbwe/LocalCache"), in2020 + u'|' + in2024);
        row(QStringLiteral("Packages/Microsoft.Another_8wekyb3d8bbwe/LocalCache"), QString());
    }
    void userCfgIsFound()
    {
        QFETCH(QString, file);
        QFETCH(QString, runtimes);
        const PackageTree tree;
        tree.write(file + QStringLiteral("/UserCfg.opt"), "InstalledPackagesPath \"E:\\P\"");
        QStringList expected;
        for (const QString &runtime : runtimes.split(u'|', Qt::SkipEmptyParts))
            expected.append(runtime + QStringLiteral(" auto-detected UserCfg.opt: E:/P, , "));
        QCOMPARE(summaryOf(discoverInstallConfigs(emptyPlaces(tree.path()))), expected);
    }

    void severalFilesInTheirOrder()
    {
        const PackageTree tree;
        tree.write(QStringLiteral("Microsoft Flight Simulator 2020/UserCfg.opt"), "InstalledPackagesPath C");
        tree.write(QStringLiteral("Microsoft Flight Simulator/UserCfg.opt"),
                   "InstalledPackagesPath A\nInstalledPackagesPath A\nInstalledPackagesPath B");
        QCOMPARE(summaryOf(discoverInstallConfigs(emptyPlaces(tree.path()))),
                 QStringList({QStringLiteral("MSFS 2020 auto-detected UserCfg.opt: A, , "),
                              QStringLiteral("MSFS 2020 auto-detected UserCfg.opt: B, , "),
                              QStringLiteral("MSFS 2020 auto-detected UserCfg.opt: C, , ")}));
    }

    void aFolderOfThatNameIsNone()
    {
        const PackageTree tree;
        tree.makeFolder(QStringLiteral("Microsoft Flight Simulator/UserCfg.opt"));
        QCOMPARE(discoverInstallConfigs(emptyPlaces(tree.path())), QList<MsfsInstallConfig>());
    }

    void theConfiguredOneHoldsForItsSimulatorAlone()
    {
        const PackageTree tree;
        tree.write(QStringLiteral("Microsoft Flight Simulator/UserCfg.opt"), "InstalledPackagesPath A");
        tree.write(QStringLiteral("Microsoft Flight Simulator 2024/UserCfg.opt"), "InstalledPackagesPath B");
        LibraryPlaces places = emptyPlaces(tree.path());
        places.configured[1].communityPath = QStringLiteral(" D:\\Community\\ ");
        QCOMPARE(summaryOf(discoverInstallConfigs(places)),
                 QStringList({QStringLiteral("MSFS 2024 config override: , D:/Community, "),
                              QStringLiteral("MSFS 2020 auto-detected UserCfg.opt: A, , ")}));
    }

    void eachKeyOverrides_data()
    {
        columns<int, bool>("key", "overrides");
        QTest::newRow("packages") << 0 << true;
        QTest::newRow("community") << 1 << true;
        QTest::newRow("mapping that is there") << 2 << true;
        QTest::newRow("mapping that is away") << 3 << false;
        QTest::newRow("blanks") << 4 << false;
        QTest::newRow("mapping with Windows' separators") << 5 << true;
    }
    void eachKeyOverrides()
    {
        QFETCH(int, key);
        QFETCH(bool, overrides);
        const PackageTree tree;
        tree.write(QStringLiteral("Microsoft Flight Simulator/UserCfg.opt"), "InstalledPackagesPath A");
        LibraryPlaces places = emptyPlaces(tree.path());
        ConfiguredFolders &folders = places.configured[0];
        if (key == 0)
            folders.packagesPath = QStringLiteral("/gone");
        else if (key == 1)
            folders.communityPath = QStringLiteral("/gone");
        else if (key == 4)
            folders.packagesPath = folders.communityPath = QStringLiteral("  ");
        else if (key == 5)
            folders.mappingPaths = {tree.path().replace(u'/', u'\\')};
        else
            folders.mappingPaths = {key == 2 ? tree.path() : QStringLiteral("/gone")};
        const QList<MsfsInstallConfig> configs = discoverInstallConfigs(places);
        QCOMPARE(configs.size(), 1);
        QCOMPARE(configs.first().label == QLatin1String("config override"), overrides);
    }

    void rootsComeInTheirOrder()
    {
        const PackageTree tree;
        for (const char *folder : {"own", "map1", "map2", "P/Community", "P/Community2024", "P/Official/OneStore",
                                   "P/Official/Steam", "P/Official2020/Steam", "P/Official2024", "P/StreamedPackages"})
            tree.makeFolder(QLatin1String(folder));
        const MsfsInstallConfig config{
            .runtime = p2024,
            .label = {},
            .packagesPath = tree.path(QStringLiteral("P")),
            .communityPath = tree.path(QStringLiteral("own")),
            .extraMappingPaths = {tree.path(QStringLiteral("map1")), tree.path(QStringLiteral("map2"))}};
        QSet<QString> seen;
        const QList<MsfsPackageRoot> roots = packageRootsOf(config, seen);
        QCOMPARE(labelsOf(roots),
                 QStringList({QStringLiteral("ConfiguredCommunity c"), QStringLiteral("ImportedLibrary c"),
                              QStringLiteral("ImportedLibrary c"), QStringLiteral("Community c"),
                              QStringLiteral("Community2024 c"), QStringLiteral("Official/OneStore"),
                              QStringLiteral("Official/Steam"), QStringLiteral("Official2020/Steam"),
                              QStringLiteral("Official2024"), QStringLiteral("StreamedPackages")}));
        QCOMPARE(roots.at(1).path, tree.path(QStringLiteral("map1")));
        QCOMPARE(roots.at(5).path, tree.path(QStringLiteral("P/Official/OneStore")));
    }

    void officialIs_data()
    {
        columns<QStringList, QStringList>("folders", "labels");
        const QString official = QStringLiteral("Official");
        const QString steam = QStringLiteral("Official/Steam");
        const QString oneStore = QStringLiteral("Official/OneStore");
        QTest::newRow("only Steam") << QStringList{steam} << QStringList{steam};
        QTest::newRow("only OneStore") << QStringList{oneStore} << QStringList{oneStore};
        QTest::newRow("both") << QStringList{steam, oneStore} << QStringList{oneStore, steam};
        QTest::newRow("neither") << QStringList{official} << QStringList{official};
        QTest::newRow("none") << QStringList() << QStringList();
    }
    void officialIs()
    {
        QFETCH(QStringList, folders);
        const PackageTree tree;
        for (const QString &folder : folders)
            tree.makeFolder(folder);
        QSet<QString> seen;
        const MsfsInstallConfig config{
            .runtime = p2020, .label = {}, .packagesPath = tree.path(), .communityPath = {}, .extraMappingPaths = {}};
        QTEST(labelsOf(packageRootsOf(config, seen)), "labels");
    }

    void aCommunityFolderAloneIsTheOnlyRoot()
    {
        const PackageTree tree;
        tree.makeFolder(QStringLiteral("Official"));
        QSet<QString> seen;
        const MsfsInstallConfig config{
            .runtime = p2024, .label = {}, .packagesPath = {}, .communityPath = tree.path(), .extraMappingPaths = {}};
        QCOMPARE(labelsOf(packageRootsOf(config, seen)), QStringList{QStringLiteral("ConfiguredCommunity c")});
    }

    void aRootIsScannedOnce()
    {
        const PackageTree tree;
        tree.makeFolder(QStringLiteral("Community"));
        QSet<QString> seen;
        MsfsInstallConfig config{.runtime = p2020,
                                 .label = {},
                                 .packagesPath = tree.path(),
                                 .communityPath = tree.path(QStringLiteral("Community")),
                                 .extraMappingPaths = {tree.path(QStringLiteral("x/../Community/"))}};
        QCOMPARE(labelsOf(packageRootsOf(config, seen)), QStringList{QStringLiteral("ConfiguredCommunity c")});
        config.runtime = p2024; // nor by the other simulator
        QCOMPARE(packageRootsOf(config, seen), QList<MsfsPackageRoot>());
    }
};

TARVO_TEST(InstallDiscoveryTest)
#include "InstallDiscoveryTest.moc"

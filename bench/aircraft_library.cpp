// The library of MSFS aircraft: a scan of 20,000 aircraft.cfg files against finding and reading the same files without
// looking at them; and a match among 20,000 models against one pass over their texts, and against one that is known.
#include "AppConfig.h"
#include "network/SwiftAircraftIcaoService.h"
#include "simulator/msfs/library/LibraryScan.h"
#include "simulator/msfs/library/ModelMatcher.h"
#include "simulator/msfs/library/MsfsAircraftLibrary.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <limits>
#include <thread>

using namespace tarvo;
using namespace tarvo::simulator::msfs;
using namespace std::chrono_literals;

namespace {

int aircraft = 20'000; ///< another number as argument
constexpr int perPackage = 200;
constexpr auto profile = MsfsRuntimeProfile::Msfs2024;

struct Type
{
    const char *designator;
    const char *manufacturer;
    const char *model;
};
constexpr Type types[] = {
    {"B738", "Boeing", "737-800"},     {"A320", "Airbus", "A320-200"}, {"A20N", "Airbus", "A320neo"},
    {"B77W", "Boeing", "777-300"},     {"E190", "Embraer", "ERJ 190"}, {"CRJ9", "Bombardier", "CRJ-900"},
    {"AT76", "ATR", "72-600"},         {"B748", "Boeing", "747-8"},    {"DH8D", "De Havilland", "Dash 8 Q400"},
    {"C172", "Cessna", "172 Skyhawk"},
};
constexpr const char *airlines[] = {"CCA", "CES", "CSN", "DLH", "BAW", "AFR", "UAE", "SIA", "QFA", "ANA", "JAL", "KAL"};

/// Processor time, which is what the files cost once they are in memory, whatever else the machine does.
template <typename Work>
double milliseconds(Work work)
{
    const std::clock_t start = std::clock();
    work();
    return 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// The shortest of some runs.
template <typename Work>
double shortest(int runs, Work work)
{
    double best = std::numeric_limits<double>::max();
    for (int run = 0; run < runs; ++run)
        best = std::min(best, milliseconds(work));
    return best;
}

/// As long as a model of the air traffic has it.
QByteArray aircraftText(int number)
{
    const Type &type = types[number % std::size(types)];
    const QByteArray airline = airlines[number / 7 % std::size(airlines)];
    QByteArray text = "[VERSION]\r\nmajor = 1\r\nminor = 0\r\n\r\n[GENERAL]\r\natc_type = \"" +
                      QByteArray(type.manufacturer) + "\" ; what the tower says\r\natc_model = \"" + type.model +
                      "\"\r\nicao_type_designator = \"" + type.designator + "\"\r\nicao_manufacturer = \"" +
                      type.manufacturer + "\"\r\nicao_model = \"" + type.model +
                      "\"\r\nicao_engine_type = \"Jet\"\r\nicao_engine_count = 2\r\nicao_WTC = \"M\"\r\n" +
                      "Category = \"airplane\"\r\nperformance = \"Range 3000nm\"\r\n\r\n";
    for (const char *section : {"SERVICES", "PILOT", "WEIGHT_AND_BALANCE", "CONTACT_POINTS"}) {
        text += QByteArray("[") + section + "]\r\n";
        for (int line = 0; line < 10; ++line)
            text += "point." + QByteArray::number(line) +
                    " = 1, 36.5, 0, -9.6, 1500, 0, 0.9, 55, 0.25, 2.5, 0.9 ; feet\r\n";
    }
    return text + "[FLTSIM.0]\r\ntitle = \"" + type.manufacturer + ' ' + type.model + ' ' + airline + ' ' +
           QByteArray::number(number) + "\"\r\nmodel = \"\"\r\npanel = \"\"\r\nsound = \"\"\r\ntexture = \"" + airline +
           "\"\r\nui_manufacturer = \"" + type.manufacturer + "\"\r\nui_type = \"" + type.model +
           "\"\r\nui_variation = \"" + airline + " livery " + QByteArray::number(number) + "\"\r\natc_airline = \"" +
           airline + "\"\r\nisAirTraffic = 1\r\nisUserSelectable = 0\r\n";
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("no room for the files");
}

/// `withFolders`: each aircraft has folders for its model and its texture, as most have.
void writeAircraft(const QString &root, bool withFolders)
{
    for (int number = 0; number < aircraft; ++number) {
        const QString folder = QStringLiteral("%1/package-%2/SimObjects/Airplanes/aircraft-%3")
                                   .arg(root)
                                   .arg(number / perPackage)
                                   .arg(number);
        QDir().mkpath(folder);
        write(folder + QStringLiteral("/aircraft.cfg"), aircraftText(number));
        if (!withFolders)
            continue;
        for (const char *name : {"model", "texture"}) {
            QDir().mkpath(folder + u'/' + QLatin1String(name));
            write(folder + u'/' + QLatin1String(name) + u'/' + QLatin1String(name) + QStringLiteral(".cfg"),
                  "[fltsim]");
        }
    }
}

QStringList found(const QString &root)
{
    QStringList files;
    QDirIterator walk(root, {QStringLiteral("aircraft.cfg")}, QDir::Files, QDirIterator::Subdirectories);
    while (walk.hasNext())
        files.append(walk.next());
    return files;
}

void readAndDiscard(const QStringList &files)
{
    for (const QString &path : files) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly) || file.readAll().isEmpty())
            qFatal("a file is gone");
    }
}

void measureScan(const char *name, const QString &root)
{
    const LibraryPlaces places{
        .configured = {{.runtime = profile, .packagesPath = {}, .communityPath = root, .mappingPaths = {}}},
        .dataBase = root};
    const QStringList files = found(root); // which also warms the cache of the disk
    double reading = std::numeric_limits<double>::max();
    double finding = reading;
    double scanning = reading;
    for (int round = 0; round < 5; ++round) { // by turns, so that what else the machine does hits all alike
        reading = std::min(reading, milliseconds([&] { readAndDiscard(files); }));
        finding = std::min(finding, milliseconds([&] { readAndDiscard(found(root)); }));
        scanning = std::min(scanning, milliseconds([&] {
                                ScanWatch watch;
                                if (scanLibrary(places, watch).count(profile) != aircraft)
                                    qFatal("models are missing");
                            }));
    }
    std::printf("%d %s: reading %.0f ms, finding and reading %.0f ms, scan %.0f ms\n", aircraft, name, reading, finding,
                scanning);
    std::printf("  scan against finding and reading: ratio %.2f (budget 2)\n", scanning / finding);
    std::printf("  scan against reading alone, the files known: ratio %.2f\n", scanning / reading);
}

/// One search for a word through all texts, as they lie.
int onePass(const ModelTables &tables)
{
    int hits = 0;
    tables.forEachCandidate(profile, [&hits](const SearchableModel &model, const ModelOutline &) {
        for (const SearchText *text :
             {&model.typeDesignator, &model.icaoManufacturer, &model.icaoModel, &model.uiManufacturer, &model.uiType,
              &model.uiVariation, &model.airline, &model.title})
            hits += text->framed().find("NOWHERE") != std::string_view::npos;
    });
    return hits;
}

/// As many rows as the type data have for one that many have built.
QList<network::SwiftAircraftIcaoRow> manyRows(const char *manufacturer)
{
    QList<network::SwiftAircraftIcaoRow> rows;
    for (int number = 0; number < 30; ++number) {
        network::SwiftAircraftIcaoRow row;
        row.manufacturer = QLatin1String(number % 3 == 0 ? manufacturer : number % 3 == 1 ? "REIMS" : "AVCORP");
        row.model = QStringLiteral("%1 Variant").arg(900 + number);
        rows.append(row);
    }
    return rows;
}

void measureMatch(const QString &root)
{
    ScanWatch watch;
    const ModelTables tables = scanLibrary(
        {.configured = {{.runtime = profile, .packagesPath = {}, .communityPath = root, .mappingPaths = {}}},
         .dataBase = root},
        watch);
    int hits = 0;
    const double pass = shortest(20, [&] { hits += onePass(tables); });
    struct Case
    {
        const char *name;
        ModelQuery query;
    };
    const auto query = [](const char *type, const char *airline, const char *livery) {
        return ModelQuery{.profile = profile,
                          .type = QLatin1String(type),
                          .airline = QLatin1String(airline),
                          .livery = QLatin1String(livery),
                          .familyRows = manyRows("BOEING")};
    };
    const Case cases[] = {
        {"an exact type", query("B738", "CES", "LIVERY 77")},
        {"a type of 30 rows that nobody has", query("B733", "CES", "RETRO")},
        {"an empty type", query("", "CES", "LIVERY 77")},
        {"an empty type, a livery that nobody has", query("", "XYZ", "RETRO SPECIAL")},
    };
    std::printf("%d models, one pass over their texts: %.2f ms (%d hits)\n", aircraft, pass, hits);
    for (const Case &one : cases) {
        qint32 score = 0;
        const double time = shortest(20, [&] { score = findModel(tables, one.query).score; });
        std::printf("  %s: %.2f ms (budget 5), ratio to one pass %.2f, score %d\n", one.name, time, time / pass, score);
    }
}

void measureCache(const QString &root, const QString &dataRoot)
{
    AppConfig config(dataRoot);
    config.set(config::msfsCommunityPath2024, root);
    const network::SwiftAircraftIcaoService typeData(config);
    MsfsAircraftLibrary library(config, typeData, root);
    library.ensureLoaded();
    while (!library.isReady())
        std::this_thread::sleep_for(1ms);
    const auto matchOne = [&library] {
        library.match(profile, QStringLiteral("B738"), QStringLiteral("CES"), QStringLiteral("LIVERY 77"));
    };
    const double first = milliseconds(matchOne);
    constexpr int times = 10'000;
    const double again = milliseconds([&] {
                             for (int i = 0; i < times; ++i)
                                 matchOne();
                         }) /
                         times;
    std::printf("the same again: %.2f us, %.4f of the first\n", again * 1000, again / first);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (argc > 1)
        aircraft = QByteArray(argv[1]).toInt();
    const QTemporaryDir folder;
    const QString plain = folder.filePath(QStringLiteral("plain"));
    const QString usual = folder.filePath(QStringLiteral("usual"));
    writeAircraft(plain, false);
    writeAircraft(usual, true);
    measureScan("aircraft.cfg files in a folder each", plain);
    measureScan("the same with two more folders each", usual);
    measureMatch(plain);
    measureCache(plain, folder.path());
    return 0;
}

#include "simulator/msfs/library/ModelMatcher.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

using namespace tarvo::simulator::msfs;
using tarvo::network::SwiftAircraftIcaoRow;
using tarvo::test::columns;

namespace {

constexpr auto of2020 = MsfsRuntimeProfile::Msfs2020;
constexpr auto of2024 = MsfsRuntimeProfile::Msfs2024;
constexpr auto ofBoth = MsfsRuntimeProfile::Unknown;

SwiftAircraftIcaoRow familyRow(const QString &manufacturer, const QString &model)
{
    SwiftAircraftIcaoRow row;
    row.manufacturer = manufacturer;
    row.model = model;
    return row;
}

QString text(const char *ascii)
{
    return QString::fromLatin1(ascii);
}

/// A model of the air traffic that came with the simulator.
MsfsAircraftEntry trafficModel()
{
    MsfsAircraftEntry entry;
    entry.runtime = of2020;
    entry.title = QStringLiteral("Generic Jet");
    entry.metadata.icaoTypeDesignator = QStringLiteral("A320");
    entry.isAirTraffic = true;
    return entry;
}

/// The points, told plainly and slowly.
namespace plain {

QString key(const QString &text)
{
    static const QRegularExpression others(QStringLiteral("[^A-Z0-9]"));
    return text.trimmed().toUpper().remove(others);
}

QStringList tokens(const QString &text)
{
    static const QRegularExpression others(QStringLiteral("[^A-Z0-9]+"));
    QStringList all = text.trimmed().toUpper().split(others, Qt::SkipEmptyParts);
    if (!key(text).isEmpty() && !all.contains(key(text)))
        all.append(key(text));
    all.removeDuplicates();
    return all;
}

bool matches(const QString &query, const QStringList &fields)
{
    if (query.trimmed().isEmpty())
        return false;
    for (const QString &field : fields) {
        if (!key(field).isEmpty() && key(field).contains(key(query), Qt::CaseInsensitive))
            return true;
        for (const QString &token : tokens(query)) {
            if (token.size() >= 2 && tokens(field).contains(token))
                return true;
        }
    }
    return false;
}

bool namesAny(const QString &text, const QStringList &names)
{
    return std::any_of(names.begin(), names.end(), [&](const QString &name) { return key(text).contains(name); });
}

qint32 score(const MsfsAircraftEntry &entry, const ModelQuery &query)
{
    static const QStringList makers{QStringLiteral("FENIX"), QStringLiteral("FLYBYWIRE"), QStringLiteral("FBW"),
                                    QStringLiteral("A32NX"), QStringLiteral("PMDG"),      QStringLiteral("INIBUILDS")};
    const MsfsAircraftMetadata &data = entry.metadata;
    const bool any = key(query.type).isEmpty();
    const bool exact = !any && key(data.icaoTypeDesignator) == key(query.type);
    bool family = false;
    for (const SwiftAircraftIcaoRow &row : query.familyRows) {
        family =
            family || (matches(row.manufacturer, {data.icaoManufacturer, entry.uiType, entry.uiManufacturer}) &&
                       matches(row.model, {data.icaoModel, entry.uiType, entry.uiVariation, entry.uiManufacturer}));
    }
    if (!any && !exact && !family)
        return MsfsModelMatch::noScore;
    const bool asked = namesAny(query.airline + u' ' + query.livery, makers + QStringList{QStringLiteral("INI")});
    const QString own = QStringList{entry.title,           entry.uiManufacturer, entry.uiType, entry.uiVariation,
                                    data.icaoManufacturer, data.icaoModel,       entry.package}
                            .join(u' ');
    return (exact ? 2000 : 1500) + (query.profile != ofBoth ? 80 : 0) + (entry.isAirTraffic ? 140 : 0) +
           (entry.isUserSelectable ? 0 : 70) + (entry.isCommunity ? 0 : 25) +
           (namesAny(own, makers) && !asked ? -350 : 0) +
           (matches(query.airline, {entry.airline, entry.uiVariation, entry.uiType, entry.uiManufacturer, entry.title})
                ? 90
                : 0) +
           (matches(query.livery, {entry.uiVariation, entry.uiType, entry.uiManufacturer, entry.title}) ? 100 : 0);
}

} // namespace plain

/// What makes a row differ from trafficModel() under the query for an A320 of "CCA" in 2020.
struct ScoreRow
{
    const char *name;
    void (*change)(ModelQuery &query, MsfsAircraftEntry &entry);
    int score;
};

const ScoreRow scoreRows[] = {
    {"native traffic with its airline", [](auto &, auto &entry) { entry.airline = text("CCA"); }, 2405},
    {"the same from the community, to be flown",
     [](auto &, auto &entry) {
         entry.airline = text("CCA");
         entry.isAirTraffic = false;
         entry.isUserSelectable = entry.isCommunity = true;
     },
     2170},
    {"another airline", [](auto &, auto &) {}, 2315},
    {"no simulator asked", [](auto &query, auto &) { query.profile = ofBoth; }, 2235},
    {"no airline asked", [](auto &query, auto &) { query.airline.clear(); }, 2315},
    {"its livery",
     [](auto &query, auto &entry) {
         query.livery = text("RETRO");
         entry.uiVariation = text("Air China Retro");
     },
     2415},
    {"its livery and its airline",
     [](auto &query, auto &entry) {
         query.livery = text("RETRO");
         query.airline = text("AIR CHINA");
         entry.uiVariation = text("Air China Retro");
     },
     2505},
    {"the airline in the ui type", [](auto &, auto &entry) { entry.uiType = text("CCA"); }, 2405},
    {"the airline in the ui manufacturer", [](auto &, auto &entry) { entry.uiManufacturer = text("CCA"); }, 2405},
    {"the airline in the title", [](auto &, auto &entry) { entry.title = text("a cca b"); }, 2405},
    {"the airline in the package is no hit", [](auto &, auto &entry) { entry.package = text("CCA"); }, 2315},
    {"the livery in the airline is no hit",
     [](auto &query, auto &entry) {
         query.livery = text("CES");
         entry.airline = text("CES");
     },
     2315},
    {"a designator told otherwise", [](auto &, auto &entry) { entry.metadata.icaoTypeDesignator = text(" a-320 "); },
     2315},
    {"a maker in the title", [](auto &, auto &entry) { entry.title = text("x-Fenix-x"); }, 1965},
    {"a maker in the ui manufacturer", [](auto &, auto &entry) { entry.uiManufacturer = text("P-M D_G"); }, 1965},
    {"a maker in the ui type", [](auto &, auto &entry) { entry.uiType = text("FlyByWire"); }, 1965},
    {"a maker in the ui variation", [](auto &, auto &entry) { entry.uiVariation = text("FBW"); }, 1965},
    {"a maker in the ICAO manufacturer", [](auto &, auto &entry) { entry.metadata.icaoManufacturer = text("A32NX"); },
     1965},
    {"a maker in the ICAO model", [](auto &, auto &entry) { entry.metadata.icaoModel = text("iniBuilds"); }, 1965},
    {"a maker in the package", [](auto &, auto &entry) { entry.package = text("pmdg-aircraft-737"); }, 1965},
    {"a maker in the airline doesn't count", [](auto &, auto &entry) { entry.airline = text("PMDG"); }, 2315},
    {"a maker that is asked for by livery",
     [](auto &query, auto &entry) {
         query.livery = text("PMDG");
         entry.title = text("PMDG");
     },
     2415},
    {"a maker that is asked for by airline",
     [](auto &query, auto &entry) {
         query.airline = text("FENIX");
         entry.title = text("Fenix");
     },
     2405},
    {"another maker is asked for",
     [](auto &query, auto &entry) {
         query.livery = text("PMDG");
         entry.title = text("Fenix");
     },
     2315},
    {"INI alone is no maker of a model", [](auto &, auto &entry) { entry.title = text("INI"); }, 2315},
    {"INI alone asks for one",
     [](auto &query, auto &entry) {
         query.livery = text("INI");
         entry.title = text("PMDG");
     },
     2315},
    {"of the family",
     [](auto &query, auto &entry) {
         query.familyRows = {familyRow(text("CESSNA"), text("172")), familyRow(text("AIRBUS"), text("A-320"))};
         entry.metadata = {};
         entry.uiManufacturer = text("Airbus");
         entry.uiType = text("A320 neo");
     },
     1815},
    {"exact comes before the family",
     [](auto &query, auto &entry) {
         query.familyRows = {familyRow(text("AIRBUS"), text("A-320"))};
         entry.uiType = text("Airbus A320");
     },
     2315},
    {"an empty type is everything",
     [](auto &query, auto &entry) {
         query.type.clear();
         entry.metadata = {};
     },
     1815},
    {"a type of signs is empty", [](auto &query, auto &) { query.type = text("-"); }, 1815},
};

} // namespace

class ModelMatcherTest : public QObject
{
    Q_OBJECT

private slots:
    void oneModelScores_data()
    {
        QTest::addColumn<int>("row");
        for (int row = 0; row < int(std::size(scoreRows)); ++row)
            QTest::newRow(scoreRows[row].name) << row;
    }
    void oneModelScores()
    {
        QFETCH(int, row);
        ModelQuery query = queryOf("A320", "CCA");
        MsfsAircraftEntry entry = trafficModel();
        scoreRows[row].change(query, entry);
        const MsfsModelMatch expected{.runtime = of2020,
                                      .entry = entry,
                                      .normalizedType = query.type,
                                      .normalizedAirline = query.airline,
                                      .normalizedLivery = query.livery,
                                      .score = scoreRows[row].score,
                                      .fallback = false};
        QCOMPARE(findModel(tablesOf({entry}), query), expected);
        QCOMPARE(plain::score(entry, query), expected.score);
        QVERIFY(isOfType(entry, query));
    }

    void familyNeedsBoth_data()
    {
        columns<QString, QString, bool>("manufacturer", "model", "fits");
        const auto row = [](const char *name, QStringView manufacturer, QStringView model, bool fits) {
            QTest::newRow(name) << manufacturer.toString() << model.toString() << fits;
        };
        row("both", u"BOEING", u"737-800", true);
        row("another manufacturer", u"AIRBUS", u"737-800", false);
        row("another model", u"BOEING", u"747-400", false);
        row("no manufacturer", u"", u"737-800", false);
        row("no model", u"BOEING", u"", false);
        row("one word of the model", u"BOEING", u"737 BBJ2", true);
        row("the model of another row", u"AIRBUS", u"A320", false);
    }
    void familyNeedsBoth()
    {
        QFETCH(QString, manufacturer);
        QFETCH(QString, model);
        QFETCH(bool, fits);
        MsfsAircraftEntry entry = trafficModel();
        entry.metadata = {};
        entry.uiManufacturer = text("Boeing");
        entry.uiVariation = text("737 800 a320");
        ModelQuery query = queryOf("B738", "");
        query.familyRows = {familyRow(manufacturer, model), familyRow(text("CESSNA"), text("737"))};
        QCOMPARE(isOfType(entry, query), fits);
        const MsfsModelMatch match = findModel(tablesOf({entry}), query);
        QCOMPARE(match.entry.title, fits ? entry.title : QString());
    }

    void nothingFits_data()
    {
        QTest::addColumn<MsfsRuntimeProfile>("profile");
        QTest::newRow("2020") << of2020;
        QTest::newRow("2024") << of2024;
        QTest::newRow("both") << ofBoth;
    }
    void nothingFits()
    {
        QFETCH(MsfsRuntimeProfile, profile);
        ModelQuery query = queryOf("C172", "CCA");
        query.profile = profile;
        query.livery = text("RETRO");
        const MsfsModelMatch expected{.runtime = profile,
                                      .entry = {},
                                      .normalizedType = text("C172"),
                                      .normalizedAirline = text("CCA"),
                                      .normalizedLivery = text("RETRO"),
                                      .score = std::numeric_limits<qint32>::min(),
                                      .fallback = true};
        QCOMPARE(findModel(tablesOf({trafficModel()}), query), expected);
        QCOMPARE(findModel({}, query), expected);
    }

    void onlyTheAskedSimulatorServes()
    {
        MsfsAircraftEntry newer = titled("newer", of2024);
        const ModelTables tables = tablesOf({newer, titled("older", of2020)});
        ModelQuery query = queryOf("A320", "");
        QCOMPARE(findModel(tables, query).entry.title, text("older"));
        query.profile = of2024;
        QCOMPARE(findModel(tables, query).entry.title, text("newer"));
        QCOMPARE(findModel(tables, query).runtime, of2024);
        query.profile = ofBoth; // 2020's come first, whatever was found first
        QCOMPARE(findModel(tables, query).entry.title, text("older"));
        QCOMPARE(findModel(tables, query).runtime, of2020);
        newer.isAirTraffic = true;
        QCOMPARE(findModel(tablesOf({newer, titled("older", of2020)}), query).entry.title, text("newer"));
    }

    void theFirstOfEqualsStays()
    {
        const ModelTables tables = tablesOf({titled("first", of2020), titled("second", of2020)});
        QCOMPARE(findModel(tables, queryOf("A320", "")).entry.title, text("first"));
        MsfsAircraftEntry better = titled("better", of2020);
        better.isAirTraffic = true;
        QCOMPARE(findModel(tablesOf({titled("first", of2020), better}), queryOf("A320", "")).entry.title,
                 text("better"));
    }

    void aTitleIsFound_data()
    {
        columns<MsfsRuntimeProfile, QString, QString>("profile", "hint", "title");
        const auto row = [](const char *name, MsfsRuntimeProfile profile, const char *hint, const char *title) {
            QTest::newRow(name) << profile << text(hint) << text(title);
        };
        row("told alike", of2020, "Airbus A320", "Airbus A320");
        row("told otherwise", of2020, " airbus_a-320 ", "Airbus A320");
        row("the first of equals", of2020, "CESSNA", "Cessna");
        row("only a part", of2020, "Airbus", "");
        row("of the other simulator", of2024, "Airbus A320", "");
        row("of any simulator", ofBoth, "newer", "newer");
        row("without a sign", of2020, " - ", "");
        row("in Chinese alone", of2020, "波音", "");
    }
    void aTitleIsFound()
    {
        QFETCH(MsfsRuntimeProfile, profile);
        QFETCH(QString, hint);
        QFETCH(QString, title);
        const ModelTables tables =
            tablesOf({titled("Airbus A320", of2020), titled("Cessna", of2020), titled("CES SNA", of2020),
                      titled("空客", of2020), titled("newer", of2024)});
        const std::optional<MsfsAircraftEntry> found = findTitle(tables, profile, hint);
        QCOMPARE(found ? found->title : QString(), title);
    }

    /// Words of few kinds, so that much fits and ties are many.
    void everyScoreIsThePlainOne()
    {
        QRandomGenerator random(7);
        const QStringList words{
            text("Boeing"), text("737"),   text("800"),  text("A-320"), text("Airbus"),         text("A"),
            text("CCA"),    text("China"), text("PMDG"), text("ini"),   QStringLiteral("空客"), text("AIRCHINA"),
            text("B738"),   text("x")};
        const auto words3 = [&] {
            QStringList some;
            for (int count = random.bounded(4); count > 0; --count)
                some.append(words.at(random.bounded(int(words.size()))));
            return some.join(random.bounded(2) ? u' ' : u'-');
        };
        for (int round = 0; round < 300; ++round) {
            QList<MsfsAircraftEntry> entries;
            for (int count = random.bounded(8); count > 0; --count) {
                MsfsAircraftEntry entry;
                entry.runtime = of2020;
                for (QString MsfsAircraftEntry::*field :
                     {&MsfsAircraftEntry::title, &MsfsAircraftEntry::package, &MsfsAircraftEntry::uiManufacturer,
                      &MsfsAircraftEntry::uiType, &MsfsAircraftEntry::uiVariation, &MsfsAircraftEntry::airline})
                    entry.*field = words3();
                entry.metadata = {words3(), words3(), words3(), {}, {}, {}, {}};
                entry.isAirTraffic = random.bounded(2);
                entry.isUserSelectable = random.bounded(2);
                entry.isCommunity = random.bounded(2);
                entries.append(entry);
            }
            const ModelQuery query{.profile = of2020,
                                   .type = words3().toUpper(),
                                   .airline = words3().toUpper(),
                                   .livery = words3().toUpper(),
                                   .familyRows = {familyRow(words3(), words3()), familyRow(words3(), words3())}};
            qint32 bestScore = MsfsModelMatch::noScore;
            qsizetype best = -1;
            for (qsizetype i = 0; i < entries.size(); ++i) {
                if (const qint32 score = plain::score(entries.at(i), query); score > bestScore) {
                    bestScore = score;
                    best = i;
                }
            }
            const MsfsModelMatch match = findModel(tablesOf(entries), query);
            QCOMPARE(match.score, bestScore);
            QCOMPARE(match.entry, best < 0 ? MsfsAircraftEntry() : entries.at(best));
        }
    }

private:
    static ModelQuery queryOf(const char *type, const char *airline)
    {
        return {.profile = of2020, .type = text(type), .airline = text(airline), .livery = {}, .familyRows = {}};
    }

    /// An A320 of no airline.
    static MsfsAircraftEntry titled(const char *title, MsfsRuntimeProfile runtime)
    {
        MsfsAircraftEntry entry = trafficModel();
        entry.title = text(title);
        entry.runtime = runtime;
        entry.isAirTraffic = false;
        return entry;
    }

    static ModelTables tablesOf(const QList<MsfsAircraftEntry> &entries)
    {
        ModelTables tables;
        for (const MsfsAircraftEntry &entry : entries)
            tables.append(entry);
        return tables;
    }
};

TARVO_TEST(ModelMatcherTest)
#include "ModelMatcherTest.moc"

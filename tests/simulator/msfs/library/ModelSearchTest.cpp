#include "simulator/msfs/library/ModelSearch.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;

namespace {

constexpr auto anyProfile = MsfsRuntimeProfile::Unknown;

MsfsAircraftEntry namedModel(QStringView title, MsfsRuntimeProfile runtime = MsfsRuntimeProfile::Msfs2020)
{
    MsfsAircraftEntry entry;
    entry.runtime = runtime;
    entry.title = title.toString();
    return entry;
}

QString found(const ModelTables &tables, const QString &query, int limit, MsfsRuntimeProfile profile = anyProfile)
{
    QStringList results;
    for (const MsfsScoredModel &model : searchModels(tables, query, limit, profile))
        results.append(model.entry.title + u' ' + QString::number(model.score));
    return results.join(u',');
}

} // namespace

class ModelSearchTest : public QObject
{
    Q_OBJECT

private slots:
    void fieldsScore_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QList<int>>("scores"); // exact, prefix, contains, one token, two tokens
        const auto row = [](const char *field, const QList<int> &scores) {
            QTest::newRow(field) << QByteArray(field) << scores;
        };
        row("type designator", {1400, 1100, 850, 270, 280});
        row("ICAO model", {680, 420, 260, 160, 170});
        row("ui type", {620, 380, 240, 150, 160});
        row("ui manufacturer", {520, 340, 220, 140, 150});
        row("ui variation", {320, 180, 120, 80, 90});
        row("title", {240, 150, 100, 60, 70});
        row("ICAO manufacturer", {220, 140, 90, 50, 60});
    }
    void fieldsScore()
    {
        QFETCH(QByteArray, field);
        QFETCH(QList<int>, scores);
        const QStringList texts{QStringLiteral("ab cd ef"), QStringLiteral("abcdef gh"), QStringLiteral("x abcdef"),
                                QStringLiteral("xx cd x"), QStringLiteral("ef cd")};
        for (qsizetype i = 0; i < texts.size(); ++i) {
            MsfsAircraftEntry entry = namedModel(u"");
            QString &text = field == "type designator"   ? entry.metadata.icaoTypeDesignator
                            : field == "ICAO model"      ? entry.metadata.icaoModel
                            : field == "ui type"         ? entry.uiType
                            : field == "ui manufacturer" ? entry.uiManufacturer
                            : field == "ui variation"    ? entry.uiVariation
                            : field == "title"           ? entry.title
                                                         : entry.metadata.icaoManufacturer;
            text = texts.at(i);
            ModelTables tables;
            tables.append(entry);
            const QList<MsfsScoredModel> results =
                searchModels(tables, QStringLiteral("Ab-Cd Ef"), 10, MsfsRuntimeProfile::Unknown);
            QCOMPARE(results.size(), 1);
            QCOMPARE(results.first().score, scores.at(i));
        }
    }

    void extrasCount()
    {
        ModelTables tables;
        MsfsAircraftEntry entry = namedModel(u"AB");
        tables.append(entry);
        entry.isAirTraffic = true;
        tables.append(entry);
        entry.isUserSelectable = true;
        tables.append(entry);
        entry.isCommunity = true;
        tables.append(entry);
        const QString query = QStringLiteral("ab");
        QCOMPARE(found(tables, query, 9), QStringLiteral("AB 270,AB 265,AB 255,AB 240"));
        QCOMPARE(found(tables, query, 9, MsfsRuntimeProfile::Msfs2020), QStringLiteral("AB 310,AB 305,AB 295,AB 280"));
        QCOMPARE(found(tables, query, 9, MsfsRuntimeProfile::Msfs2024), QString());
    }

    void equalScoresGoByTitle()
    {
        ModelTables tables;
        for (const QStringView title : {u"b ab", u"a ab", u"ab", u"c ab"})
            tables.append(namedModel(title));
        QCOMPARE(found(tables, QStringLiteral("AB"), 9), QStringLiteral("ab 240,a ab 100,b ab 100,c ab 100"));
    }

    void atMost_data()
    {
        QTest::addColumn<int>("limit");
        QTest::addColumn<int>("count");
        QTest::newRow("two") << 2 << 2;
        QTest::newRow("more than there are") << 9 << 3;
        QTest::newRow("none is one") << 0 << 1;
        QTest::newRow("fewer is one") << -5 << 1;
    }
    void atMost()
    {
        QFETCH(int, limit);
        ModelTables tables;
        for (const QStringView title : {u"ab 1", u"ab 2", u"ab 3"})
            tables.append(namedModel(title));
        QTEST(int(searchModels(tables, QStringLiteral("ab"), limit, anyProfile).size()), "count");
    }

    void whatDoesNotFitIsLeftOut()
    {
        ModelTables tables;
        MsfsAircraftEntry entry = namedModel(u"Cessna");
        entry.isAirTraffic = entry.isUserSelectable = entry.isCommunity = true; // which alone is nothing
        tables.append(entry);
        QCOMPARE(found(tables, QStringLiteral("airbus"), 9), QString());
    }
};

TARVO_TEST(ModelSearchTest)
#include "ModelSearchTest.moc"

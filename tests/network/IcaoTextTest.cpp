#include "network/IcaoText.h"
#include "network/IcaoSnapshot.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::network;

namespace {

IcaoSnapshot snapshotOf(const QStringList &designators)
{
    QList<SwiftAircraftIcaoRow> rows;
    for (const QString &designator : designators) {
        SwiftAircraftIcaoRow row;
        row.designator = designator;
        rows.append(row);
    }
    return {rows, {}};
}

} // namespace

/// The rules on texts: cleaning, normalising, suggesting.
class IcaoTextTest : public QObject
{
    Q_OBJECT

private:
    const IcaoSnapshot m_snapshot =
        snapshotOf({QStringLiteral("B738"), QStringLiteral("B739"), QStringLiteral("A20N"), QStringLiteral("DC3"),
                    QStringLiteral("AN2"), QStringLiteral("C5"), QStringLiteral("P8"), QStringLiteral("B7X")});

private slots:
    void cleaner_data()
    {
        tarvo::test::columns<QString, QString>("text", "cleaned");
        QTest::newRow("plain") << QStringLiteral("Boeing") << QStringLiteral("Boeing");
        QTest::newRow("trimmed") << QStringLiteral(" \t737-800 \n") << QStringLiteral("737-800");
        QTest::newRow("Chinese") << QStringLiteral("\u6ce2\u97f3 Boeing \u4e2d") << QStringLiteral("Boeing");
        QTest::newRow("all Chinese") << QStringLiteral("\u6ce2\u97f3") << QString();
        QTest::newRow("range edges") << QStringLiteral("a\u3400b\u4dbfc\u4e00d\u9fffe\uf900f\ufaffg")
                                     << QStringLiteral("abcdefg");
        QTest::newRow("beside the ranges") << QStringLiteral("\u33ff\u4dc0\u4dff\ua000\uf8ff\ufb00\u3042")
                                           << QStringLiteral("\u33ff\u4dc0\u4dff\ua000\uf8ff\ufb00\u3042");
        QTest::newRow("empty") << QString() << QString();
    }

    void cleaner()
    {
        QFETCH(QString, text);
        QTEST(sanitizeText(text), "cleaned");
    }

    void candidates_data()
    {
        tarvo::test::columns<QString, QStringList>("text", "expected");
        const auto list = [](const char *texts) { return QString::fromLatin1(texts).split(QLatin1Char(' ')); };
        QTest::newRow("a designator") << QStringLiteral("B738") << list("B738");
        QTest::newRow("with a suffix") << QStringLiteral("B738/M") << list("B738");
        QTest::newRow("two parts") << QStringLiteral("B738/L2J") << list("B738 L2J");
        QTest::newRow("runs of a long word") << QStringLiteral("BOEING738") << list("BOEI NG73");
        QTest::newRow("put together") << QStringLiteral("B-73") << list("B-73 73 B73");
        QTest::newRow("one character") << QStringLiteral("B") << QStringList();
        QTest::newRow("five characters, no run left over") << QStringLiteral("ABCDE") << list("ABCD");
        QTest::newRow("other characters only") << QStringLiteral("-----") << QStringList();
    }

    void candidates()
    {
        QFETCH(QString, text);
        QTEST(designatorCandidates(text), "expected");
    }

    void normalize_data()
    {
        tarvo::test::columns<QString, QString, bool, bool>("text", "canonical", "exact", "found");
        const auto row = [](const char *name, const char *text, const char *canonical, bool exact, bool found) {
            QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(canonical) << exact << found;
        };
        row("bare code", "B738", "B738", true, true);
        row("lower case and blanks", "  b738 ", "B738", true, true);
        row("slash and letter", "B738/M", "B738", false, true);
        row("number, slash, code", "1/B738/L", "B738", false, true);
        row("code inside a word", "XB738", "XB738", false, false); // the runs are XB73 and 8
        row("words around", "the a20n, please", "A20N", false, true);
        row("split by a hyphen", "A2-0N", "A20N", false, true);
        row("two characters", "p8", "P8", true, true);
        row("one character", "B", "B", false, false);
        row("the first candidate wins", "DC3 B738", "DC3", false, true);
        row("unknown word", "cessna", "CESSNA", false, false);
        row("empty", "", "", false, false);
        row("blanks", "   ", "", false, false);
        row("Chinese", "\u6ce2\u97f3b738", "B738", false, true);
    }

    void normalize()
    {
        QFETCH(QString, text);
        const SwiftAircraftIcaoResult result = m_snapshot.normalize(text);
        QCOMPARE(result.text, text);
        QTEST(result.canonical, "canonical");
        QTEST(result.exact, "exact");
        QTEST(result.found, "found");
    }

    void withoutDataTheTextPassesThrough()
    {
        const SwiftAircraftIcaoResult expected{QStringLiteral(" b738/m "), QStringLiteral("B738/M"), false, false};
        QCOMPARE(IcaoSnapshot().normalize(QStringLiteral(" b738/m ")), expected);
        QVERIFY(IcaoSnapshot().suggest(QStringLiteral("B"), 10).isEmpty());
    }

    void score_data()
    {
        tarvo::test::columns<QString, QString, int>("query", "designator", "expected");
        const auto row = [](const char *query, const char *designator, int expected) {
            QTest::addRow("%s for %s", designator, query)
                << QString::fromUtf8(query) << QString::fromUtf8(designator) << expected;
        };
        row("DC3", "DC3", 1200);
        row("B738", "B738", 1240);
        row(" b738 ", "B738", 1240);
        row("B-738", "B738", 1240);
        row("B73", "B738", 940);
        row("DC", "DC3", 900);
        row("D.C", "DC3", 900);
        row(" c-1 ", "C-17", 940);
        row("73", "B738", 640);
        row("C3", "DC3", 600);
        row("X", "B738", 0);
        row("C5", "C5", 0);
        row("B7388", "B738", 0);
        row("B738 and more", "B738", 0);
        row("B738", "B738X", 0);
        row("-", "B738", 0);
    }

    void score()
    {
        QFETCH(QString, query);
        QFETCH(QString, designator);
        QTEST(DesignatorQuery(query).score(designator), "expected");
    }

    void suggestions_data()
    {
        tarvo::test::columns<QString, int, QStringList>("query", "limit", "expected");
        const auto list = [](const char *texts) { return QString::fromLatin1(texts).split(QLatin1Char(' ')); };
        QTest::newRow("four letters before three") << QStringLiteral("B7") << 10 << list("B738 B739 B7X");
        QTest::newRow("prefix of two") << QStringLiteral("b73") << 10 << list("B738 B739");
        QTest::newRow("equal first") << QStringLiteral("B7X") << 10 << list("B7X");
        QTest::newRow("by score, then by name") << QStringLiteral("A") << 10 << list("A20N AN2");
        QTest::newRow("within") << QStringLiteral("3") << 10 << list("B738 B739 DC3");
        QTest::newRow("two-letter codes never") << QStringLiteral("C5") << 10 << QStringList();
        QTest::newRow("at most the limit") << QStringLiteral("B7") << 2 << list("B738 B739");
        QTest::newRow("limit 0") << QStringLiteral("B7") << 0 << QStringList();
        QTest::newRow("negative limit") << QStringLiteral("B7") << -1 << QStringList();
        QTest::newRow("empty") << QString() << 10 << QStringList();
        QTest::newRow("blanks") << QStringLiteral("  ") << 10 << QStringList();
        QTest::newRow("punctuation") << QStringLiteral("/") << 10 << QStringList();
    }

    void suggestions()
    {
        QFETCH(QString, query);
        QFETCH(int, limit);
        QTEST(m_snapshot.suggest(query, limit), "expected");
    }

    void everyScoreIsWalked()
    {
        // A score that the list of scores lacks would lose its designators.
        for (const char *query : {"B738", "DC3", "B", "D", "8", "3"}) {
            const DesignatorQuery typed(QString::fromLatin1(query));
            qsizetype fitting = 0;
            for (const char *designator : {"B738", "B739", "A20N", "DC3", "AN2", "C5", "P8", "B7X"})
                fitting += typed.score(QString::fromLatin1(designator)) > 0 ? 1 : 0;
            QCOMPARE(m_snapshot.suggest(QString::fromLatin1(query), 100).size(), fitting);
        }
    }

    void rowsAreCleanedAndGrouped()
    {
        SwiftAircraftIcaoRow first;
        first.id = 1;
        first.designator = QStringLiteral(" B738\u6ce2");
        first.manufacturer = QStringLiteral("\u6ce2\u97f3Boeing");
        first.model = QStringLiteral("737-800 ");
        SwiftAircraftIcaoRow second;
        second.id = 2;
        second.designator = QStringLiteral("B738");
        SwiftAircraftIcaoRow nameless;
        nameless.designator = QStringLiteral("\u6ce2\u97f3");
        const IcaoSnapshot snapshot({first, second, nameless},
                                    {{QStringLiteral("latest_snapshot"), QStringLiteral("L")}});
        QCOMPARE(snapshot.designatorCount(), 1);
        QCOMPARE(snapshot.label(), QStringLiteral("L"));
        const QList<SwiftAircraftIcaoRow> rows = snapshot.rowsFor(QStringLiteral("B738"));
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(0).manufacturer, QStringLiteral("Boeing"));
        QCOMPARE(rows.at(0).model, QStringLiteral("737-800"));
        QCOMPARE(rows.at(1).id, 2);
        QVERIFY(snapshot.rowsFor(QStringLiteral("b738")).isEmpty());
    }
};

TARVO_TEST(IcaoTextTest)
#include "IcaoTextTest.moc"

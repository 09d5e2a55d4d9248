#include "simulator/msfs/library/SearchText.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::msfs;

class SearchTextTest : public QObject
{
    Q_OBJECT

private slots:
    void textsAre_data()
    {
        tarvo::test::columns<QString, QString, QString>("text", "key", "tokens");
        const auto row = [](const char *name, QStringView text, QStringView key, QStringView tokens) {
            QTest::newRow(name) << text.toString() << key.toString() << tokens.toString();
        };
        row("empty", u"", u"", u"");
        row("blank", u" \t", u"", u"");
        row("a word", u"Boeing", u"BOEING", u"BOEING");
        row("words", u" Boeing 737-800 ", u"BOEING737800", u"BOEING,737,800,BOEING737800");
        row("a word twice", u"A A", u"AA", u"A,AA");
        row("a word that is the key of others", u"A-A AA", u"AAAA", u"A,AA,AAAA");
        row("signs alone", u"- / !", u"", u"");
        row("Chinese", u"空客", u"", u"");
        row("Chinese between", u"A空客320", u"A320", u"A,320,A320");
        row("letters of others", u"Straße é ﬁ", u"STRASSEFI", u"STRASSE,FI,STRASSEFI");
        row("an underline", u"a_b", u"AB", u"A,B,AB");
    }
    void textsAre()
    {
        QFETCH(QString, text);
        QFETCH(QString, key);
        QCOMPARE(QString::fromStdString(normalizeKey(text)), key);
        QCOMPARE(QString::fromStdString(std::string(SearchText(text).key())), key);
        QStringList tokens;
        for (const std::string &token : tokenize(text))
            tokens.append(QString::fromStdString(token));
        QTEST(tokens.join(u','), "tokens");
    }

    void aTermHits_data()
    {
        tarvo::test::columns<QString, QString, bool>("query", "field", "hit");
        const auto row = [](const char *name, QStringView query, QStringView field, bool hit) {
            QTest::newRow(name) << query.toString() << field.toString() << hit;
        };
        row("equal", u"CCA", u"CCA", true);
        row("in another case", u"cca", u"Cca", true);
        row("within", u"CHINA", u"Air China Cargo", true);
        row("within a word", u"INA", u"Air China", true);
        row("across words", u"A320", u"Airbus A-320", true);
        row("across words of the field", u"RCH", u"Air China", true);
        row("a common word", u"China Eastern", u"Air China", true);
        row("a common word of two", u"X7 A3", u"B A3", true);
        row("a common word of one", u"X A", u"B A", false);
        row("a single letter within", u"A", u"BAB", true);
        row("part of a word of the query", u"Eastern", u"East", false);
        row("a word that only begins so", u"CHIN AIRX", u"CHINA", false);
        row("the whole field is a word of the query", u"Boeing 737", u"737", true);
        row("the field's key is a word of the query", u"x AIRCHINA", u"air china", true);
        row("nothing common", u"Lufthansa", u"Air China", false);
        row("an empty query", u"", u"CCA", false);
        row("a blank query", u"  ", u"CCA", false);
        row("an empty field", u"CCA", u"", false);
        row("a field of signs", u"CCA", u"-", false);
        row("signs are in every field", u"空客", u"CCA", true);
        row("but not in an empty one", u"空客", u"空客", false);
    }
    void aTermHits()
    {
        QFETCH(QString, query);
        QFETCH(QString, field);
        QTEST(SearchTerm(query).hits(SearchText(field)), "hit");
    }

    void commonTokensAreCounted()
    {
        const SearchTerm term(u"Airbus A 320 neo neo");
        QCOMPARE(term.commonTokens(SearchText(u"neo Airbus A x320")), 2);
        QCOMPARE(term.commonTokens(SearchText(u"A")), 0);
        QCOMPARE(term.commonTokens(SearchText(u"airbus a 320 neo neo")), 4); // with the key
    }
};

TARVO_TEST(SearchTextTest)
#include "SearchTextTest.moc"

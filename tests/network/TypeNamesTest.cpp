#include "network/TypeNames.h"

#include "support/TestRegistry.h"

#include <QObject>
#include <QStringList>
#include <QTest>

using namespace tarvo::network;

/// Which types a maker's or a model's name finds.
class TypeNamesTest : public QObject
{
    Q_OBJECT

private slots:
    void search_data()
    {
        QTest::addColumn<QString>("query");
        QTest::addColumn<QString>("found"); // designators, each with its row
        QTest::newRow("maker") << u"cessna"_qs << u"C172/0 C182/0"_qs;
        QTest::newRow("maker, begun") << u"Cess"_qs << u"C172/0 C182/0"_qs;
        QTest::newRow("model") << u"skyhawk"_qs << u"C172/0"_qs;
        QTest::newRow("maker and model") << u"boeing 737"_qs << u"B738/0"_qs;
        QTest::newRow("in any order") << u"737 boeing"_qs << u"B738/0"_qs;
        QTest::newRow("without the hyphen") << u"a320"_qs << u"A20N/0 A320/0"_qs;
        QTest::newRow("with another mark") << u"a/320 NEO"_qs << u"A20N/0"_qs;
        QTest::newRow("each designator once, by the row that fits") << u"BBJ"_qs << u"B738/1"_qs;
        QTest::newRow("begun with the query first") << u"72"_qs << u"AT76/0 C172/0"_qs;
        QTest::newRow("a code of two letters") << u"galaxy"_qs << u"C5/0"_qs;
        QTest::newRow("one word that fits nothing") << u"boeing 747"_qs << QString();
        QTest::newRow("a single letter") << u"B"_qs << QString();
        QTest::newRow("marks alone") << u" -/ "_qs << QString();
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("letters beyond Latin") << u"туполев"_qs << u"T154/0"_qs;
    }

    void search()
    {
        QFETCH(QString, query);
        QStringList found;
        const QList<TypeNames::Place> places = m_names.search(query, 10);
        for (const TypeNames::Place &place : places)
            found += u"%1/%2"_qs.arg(place.designator).arg(place.row);
        QTEST(found.join(u' '), "found");
    }

    void atMostTheLimit()
    {
        QCOMPARE(m_names.search(u"cessna"_qs, 1), (QList<TypeNames::Place>{{u"C172"_qs, 0}}));
        QVERIFY(m_names.search(u"cessna"_qs, 0).isEmpty());
        QVERIFY(m_names.search(u"cessna"_qs, -1).isEmpty());
        QVERIFY(TypeNames().search(u"cessna"_qs, 10).isEmpty());
    }

private:
    static TypeNames someNames()
    {
        TypeNames names;
        names.add({u"A20N"_qs, 0}, u"AIRBUS"_qs, u"A-320neo"_qs);
        names.add({u"A320"_qs, 0}, u"AIRBUS"_qs, u"A-320"_qs);
        names.add({u"AT76"_qs, 0}, u"ATR"_qs, u"72-600"_qs);
        names.add({u"B738"_qs, 0}, u"BOEING"_qs, u"737-800"_qs);
        names.add({u"B738"_qs, 1}, u"BOEING"_qs, u"737-800 BBJ2"_qs);
        names.add({u"B738"_qs, 2}, u"BOEING"_qs, u"BBJ"_qs);
        names.add({u"C172"_qs, 0}, u"CESSNA"_qs, u"172 Skyhawk"_qs);
        names.add({u"C182"_qs, 0}, u"CESSNA"_qs, u"182 Skylane"_qs);
        names.add({u"C5"_qs, 0}, u"LOCKHEED"_qs, u"C-5 Galaxy"_qs);
        names.add({u"T154"_qs, 0}, u"Туполев"_qs, u"Ту-154"_qs);
        return names;
    }

    const TypeNames m_names = someNames();
};

TARVO_TEST(TypeNamesTest)
#include "TypeNamesTest.moc"

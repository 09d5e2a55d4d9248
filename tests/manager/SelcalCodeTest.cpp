#include "manager/SelcalCode.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::manager;

class SelcalCodeTest : public QObject
{
    Q_OBJECT

private slots:
    void calls_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("called"); // null: no call
        QTest::newRow("with hyphen") << u"SELCAL EF-GH"_qs << u"EFGH"_qs;
        QTest::newRow("without hyphen") << u"SELCAL EFGH"_qs << u"EFGH"_qs;
        QTest::newRow("lower-case code") << u"SELCAL ef-Gh"_qs << u"EFGH"_qs;
        QTest::newRow("lower-case word") << u"selcal EF-GH"_qs << QString();
        QTest::newRow("mixed-case word") << u"Selcal EF-GH"_qs << QString();
        QTest::newRow("too short") << u"SELCAL EF-G"_qs << QString();
        QTest::newRow("too long") << u"SELCAL EF-GHJ"_qs << QString();
        QTest::newRow("a digit") << u"SELCAL E1-GH"_qs << QString();
        QTest::newRow("two hyphens") << u"SELCAL EF--GH"_qs << QString();
        QTest::newRow("hyphen elsewhere") << u"SELCAL E-FGH"_qs << QString();
        QTest::newRow("two blanks") << u"SELCAL  EF-GH"_qs << QString();
        QTest::newRow("blank behind") << u"SELCAL EF-GH "_qs << QString();
        QTest::newRow("within a text") << u"try SELCAL EF-GH"_qs << QString();
        QTest::newRow("other letters") << u"SELCAL ÄF-GH"_qs << QString();
        QTest::newRow("word alone") << u"SELCAL "_qs << QString();
        QTest::newRow("empty") << QString(u""_qs) << QString();
    }

    void calls()
    {
        QFETCH(QString, text);
        QFETCH(QString, called);
        const std::optional<QString> code = calledSelcal(text);
        QCOMPARE(code.has_value(), !called.isNull());
        QCOMPARE(code.value_or(QString()), called);
    }

    void ownCode_data()
    {
        QTest::addColumn<QString>("own");
        QTest::addColumn<bool>("isOwn");
        QTest::newRow("same") << u"EF-GH"_qs << true;
        QTest::newRow("without hyphen") << u"EFGH"_qs << true;
        QTest::newRow("lower case") << u"ef-gh"_qs << true;
        QTest::newRow("another") << u"EF-GJ"_qs << false;
        QTest::newRow("longer") << u"EF-GHJ"_qs << false;
        QTest::newRow("none") << QString() << false;
        QTest::newRow("a hyphen alone") << u"-"_qs << false;
    }

    void ownCode()
    {
        QFETCH(QString, own);
        QFETCH(bool, isOwn);
        QCOMPARE(isOwnSelcal(u"EFGH"_qs, own), isOwn);
    }
};

TARVO_TEST(SelcalCodeTest)
#include "SelcalCodeTest.moc"

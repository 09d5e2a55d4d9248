#include "manager/AircraftTypeRules.h"

#include "AppConfig.h"
#include "network/SwiftAircraftIcaoService.h"
#include "support/TestRegistry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace tarvo;
using namespace tarvo::manager;

namespace {

/// Type data of four designators, which are there once they are loaded.
struct TypeData
{
    QTemporaryDir root;
    AppConfig config{root.path()};
    network::SwiftAircraftIcaoService icao{config};

    bool load()
    {
        QFile file(root.filePath(QStringLiteral("resources/Doc8643.txt")));
        if (!QDir(root.path()).mkpath(QStringLiteral("resources")) || !file.open(QIODevice::WriteOnly))
            return false;
        file.write("BOEING\t737-800\tB738\tL2J\tM\nDOUGLAS\tDC-3\tDC3\tL2P\tM\nAIRBUS\tA-320neo\tA20N\tL2J\tM\n");
        file.close();
        icao.ensureLoaded();
        return icao.isReady();
    }
};

} // namespace

/// The rules that make a type code out of what other pilots and flight plans say, and an airline out of a callsign.
class AircraftTypeRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void flightPlanField_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("type");
        QTest::newRow("type and equipment") << u"B738/L"_qs << u"B738"_qs;
        QTest::newRow("wake category, type, equipment") << u"H/B744/L"_qs << u"B744"_qs;
        QTest::newRow("slash first") << u"/H/B744/L"_qs << u"B744"_qs;
        QTest::newRow("blanks after the category") << u"H  /B744"_qs << u"B744"_qs;
        QTest::newRow("one category is removed") << u"H/J/B744"_qs << u"B744"_qs;
        QTest::newRow("a digit is no category") << u"1/B744"_qs << u"B744"_qs;
        QTest::newRow("two letters are no category") << u"AB/B744"_qs << u"AB"_qs;
        QTest::newRow("lower case and blanks") << u"  b738/l "_qs << u"B738"_qs;
        QTest::newRow("alone") << u"C172"_qs << u"C172"_qs;
        QTest::newRow("two characters") << u"B7"_qs << u"B7"_qs;
        QTest::newRow("one character") << u"B"_qs << u"B"_qs;
        QTest::newRow("hyphen") << u"A320-SDE2E3"_qs << u"A320"_qs;
        QTest::newRow("underscore") << u"A320_X"_qs << u"A320"_qs;
        QTest::newRow("run of separators") << u"A320/-_/L"_qs << u"A320"_qs;
        QTest::newRow("ICAO equipment") << u"B77W/H-SDE1E2/LB1"_qs << u"B77W"_qs;
        QTest::newRow("later word fits") << u"BOEING 738"_qs << u"738"_qs;
        QTest::newRow("no word fits") << u"BOEING737"_qs << u"BOEI"_qs;
        QTest::newRow("five characters") << u"B7378"_qs << u"B737"_qs;
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("blanks") << u"   "_qs << QString();
        QTest::newRow("category alone") << u"H/"_qs << QString();
        QTest::newRow("separators alone") << u"//"_qs << u" "_qs;
        QTest::newRow("other letters") << u"\u00e9\u00e8"_qs << u"\u00c9\u00c8"_qs;
    }

    void flightPlanField()
    {
        QFETCH(QString, field);
        QTEST(typeFromFlightPlan(field), "type");
    }

    void freeText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("code");
        QTest::newRow("code") << u"B738"_qs << u"B738"_qs;
        QTest::newRow("lower case and blanks") << u" b738 "_qs << u"B738"_qs;
        QTest::newRow("longer text") << u"BOEING 737"_qs << u"BOEI"_qs;
        QTest::newRow("first run") << u"?A-B738"_qs << u"B738"_qs;
        QTest::newRow("no run, short") << u"A-B"_qs << u"A-B"_qs;
        QTest::newRow("no run, four") << u"A-B-"_qs << u"A-B-"_qs;
        QTest::newRow("no run, long") << u"A-B-C"_qs << u"A-B-"_qs;
        QTest::newRow("one letter") << u"a"_qs << u"A"_qs;
        QTest::newRow("empty") << QString() << u"ZZZZ"_qs;
        QTest::newRow("blanks") << u"  "_qs << u"ZZZZ"_qs;
    }

    void freeText()
    {
        QFETCH(QString, text);
        QTEST(typeCodeFromText(text), "code");
    }

    void airline_data()
    {
        QTest::addColumn<QString>("callsign");
        QTest::addColumn<QString>("airline");
        QTest::newRow("flight") << u"CCA1234"_qs << u"CCA"_qs;
        QTest::newRow("one digit and a letter") << u"CCA1A"_qs << u"CCA"_qs;
        QTest::newRow("letters only") << u"BABCD"_qs << QString();
        QTest::newRow("three letters only") << u"CCA"_qs << QString();
        QTest::newRow("two letters") << u"CA123"_qs << QString();
        QTest::newRow("four letters") << u"CCAA1"_qs << QString();
        QTest::newRow("lower case") << u"cca123"_qs << QString();
        QTest::newRow("a digit among them") << u"C1A123"_qs << QString();
        QTest::newRow("underscore") << u"CCA_1"_qs << QString();
        QTest::newRow("foreign digit") << u"CCA\u0661"_qs << QString();
        QTest::newRow("empty") << QString() << QString();
    }

    void airline()
    {
        QFETCH(QString, callsign);
        QTEST(airlineOfCallsign(callsign), "airline");
    }

    void withoutTypeDataTheTextDecides()
    {
        const TypeData data;
        TypeNormalizer types(data.icao);
        QCOMPARE(knownDesignator(data.icao, u"B738"_qs), QString());
        QCOMPARE(types.normalized(u"boeing 737"_qs), u"BOEI"_qs);
        QCOMPARE(types.normalized(u" "_qs), u"ZZZZ"_qs);
    }

    void typeDataDecideFirst()
    {
        TypeData data;
        QVERIFY(data.load());
        TypeNormalizer types(data.icao);
        QCOMPARE(knownDesignator(data.icao, u"l2j b738"_qs), u"B738"_qs);
        QCOMPARE(knownDesignator(data.icao, QString(252, u'-') + u"B738"_qs), u"B738"_qs);
        QCOMPARE(knownDesignator(data.icao, QString(256, u'-') + u"B738"_qs), QString()); // longer texts are cut
        QCOMPARE(types.normalized(u"TYPE B738 W"_qs), u"B738"_qs);
        QCOMPARE(types.normalized(u"dc-3"_qs), u"DC3"_qs);
        QCOMPARE(types.normalized(u"XY99 or so"_qs), u"XY99"_qs); // not in the data
    }

    void typeDataThatComeLateAreAsked()
    {
        TypeData data;
        TypeNormalizer types(data.icao);
        QCOMPARE(types.normalized(u"DC-3"_qs), u"DC"_qs);
        QCOMPARE(types.normalized(u"DC-3"_qs), u"DC"_qs); // as remembered
        QVERIFY(data.load());
        QCOMPARE(types.normalized(u"DC-3"_qs), u"DC3"_qs);
    }

    void moreTextsThanAreRemembered()
    {
        const TypeData data;
        TypeNormalizer types(data.icao);
        for (qsizetype i = 0; i < 3 * TypeNormalizer::maximumRemembered; ++i)
            QCOMPARE(types.normalized(u"-%1-"_qs.arg(i, 4, 10, QLatin1Char('0'))),
                     u"%1"_qs.arg(i, 4, 10, QLatin1Char('0')));
    }

    void aLongTextIsCut()
    {
        TypeData data;
        QVERIFY(data.load());
        TypeNormalizer types(data.icao);
        const QString blanks(TypeNormalizer::longestText - 3, QLatin1Char('-'));
        QCOMPARE(types.normalized(blanks + u"ABCD"_qs), u"ABC"_qs);
        // Every four characters another code: a search of the whole text would take minutes.
        QString codes;
        for (int i = 0; i < 400'000; ++i)
            codes += QString::number(i, 36).rightJustified(4, QLatin1Char('0'));
        QCOMPARE(types.normalized(codes), u"0000"_qs);
    }
};

TARVO_TEST(AircraftTypeRulesTest)
#include "AircraftTypeRulesTest.moc"

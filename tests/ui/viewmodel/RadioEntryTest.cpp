#include "ui/viewmodel/RadioEntry.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::ui;

/// What may be typed for a radio and the transponder, and what the fields say to it.
class RadioEntryTest : public QObject
{
    Q_OBJECT

private slots:
    void readsMegahertz_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<quint32>("kilohertz"); // 0: refused
        QTest::newRow("as the page hints") << u"121.800"_qs << 121800U;
        QTest::newRow("blanks around it") << u" 118.275 "_qs << 118275U;
        QTest::newRow("one decimal") << u"124.5"_qs << 124500U;
        QTest::newRow("exact, not cut") << u"128.010"_qs << 128010U; // a double is 128009.99999999999 kHz
        QTest::newRow("the lowest") << u"118.000"_qs << 118000U;
        QTest::newRow("too low") << u"117.995"_qs << 0U;
        QTest::newRow("the highest") << u"136.990"_qs << 136990U;
        QTest::newRow("too high") << u"136.995"_qs << 0U;
        QTest::newRow("no step of 5 kHz") << u"121.803"_qs << 0U;
        QTest::newRow("four decimals") << u"118.0250"_qs << 0U;
        QTest::newRow("no decimals") << u"122"_qs << 0U;
        QTest::newRow("a bare point") << u"122."_qs << 0U;
        QTest::newRow("empty") << QString() << 0U;
        QTest::newRow("letters") << u"tower"_qs << 0U;
        QTest::newRow("a comma") << u"121,800"_qs << 0U;
        QTest::newRow("negative") << u"-121.8"_qs << 0U;
        QTest::newRow("kHz instead") << u"121800"_qs << 0U;
        QTest::newRow("not a number") << u"nan"_qs << 0U;
        QTest::newRow("foreign digits") << u"１２１.8"_qs << 0U;
        QTest::newRow("a line feed behind it") << u"121.8\n5"_qs << 0U;
    }
    void readsMegahertz()
    {
        QFETCH(QString, text);
        QFETCH(quint32, kilohertz);
        QCOMPARE(comFrequencyKhz(text).value_or(0), kilohertz);
    }

    void readsTransponderCodes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("code"); // -1: refused
        QTest::newRow("emergency") << u"7700"_qs << 7700;
        QTest::newRow("blanks around it") << u" 2000\n"_qs << 2000;
        QTest::newRow("two digits") << u"07"_qs << 7;
        QTest::newRow("zeros") << u"0000"_qs << 0;
        QTest::newRow("an eight") << u"8000"_qs << -1;
        QTest::newRow("five digits") << u"12345"_qs << -1;
        QTest::newRow("a letter") << u"77a"_qs << -1;
        QTest::newRow("a sign") << u"-1"_qs << -1;
        QTest::newRow("empty") << QString() << -1;
    }
    void readsTransponderCodes()
    {
        QFETCH(QString, text);
        QFETCH(int, code);
        QCOMPARE(transponderCode(text).value_or(-1), code);
    }

    void theFieldSaysTheSame_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("hint");
        QTest::addColumn<bool>("unfinished");
        QTest::newRow("right") << u"121.8"_qs << u"121.800"_qs << QString() << false;
        QTest::newRow("empty") << QString() << QString() << u"格式如 121.800"_qs << true;
        QTest::newRow("begun") << u"13"_qs << QString() << u"格式如 121.800"_qs << true;
        QTest::newRow("up to the point") << u"136."_qs << QString() << u"格式如 121.800"_qs << true;
        QTest::newRow("begun wrongly") << u"137"_qs << QString() << u"格式如 121.800"_qs << false;
        QTest::newRow("out of range") << u"137.000"_qs << QString() << u"范围 118.000 至 136.990"_qs << false;
        QTest::newRow("off the steps") << u"121.803"_qs << QString() << u"末位只能是 0 或 5"_qs << false;
    }
    void theFieldSaysTheSame()
    {
        QFETCH(QString, typed);
        const QVariantMap verdict = frequencyVerdict(typed, u"121.800"_qs);
        QTEST(verdict.value(u"value"_qs).toString(), "value");
        QTEST(verdict.value(u"hint"_qs).toString(), "hint");
        QTEST(verdict.value(u"unfinished"_qs).toBool(), "unfinished");
    }

    void soDoesTheTranspondersField()
    {
        QCOMPARE(transponderVerdict(u"2000"_qs).value(u"value"_qs).toString(), u"2000"_qs);
        QCOMPARE(transponderVerdict(u"28"_qs).value(u"hint"_qs).toString(), u"只能用数字 0 至 7"_qs);
        QCOMPARE(transponderVerdict(u"20000"_qs).value(u"hint"_qs).toString(), u"最多四位数字"_qs);
    }
};

TARVO_TEST(RadioEntryTest)
#include "RadioEntryTest.moc"

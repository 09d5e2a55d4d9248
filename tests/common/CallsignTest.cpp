#include "common/Callsign.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::common;

class CallsignTest : public QObject
{
    Q_OBJECT

private slots:
    void normalised_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("as it is") << u"CES1_A"_qs << u"CES1_A"_qs;
        QTest::newRow("lower case") << u"ces1a"_qs << u"CES1A"_qs;
        QTest::newRow("blanks around") << u" \tCES1\r\n"_qs << u"CES1"_qs;
        QTest::newRow("blanks within stay") << u" ces 1 "_qs << u"CES 1"_qs;
        QTest::newRow("blanks alone") << u"  "_qs << QString();
        QTest::newRow("empty") << QString() << QString();
    }

    void normalised()
    {
        QFETCH(QString, text);
        QTEST(normalisedCallsign(text), "expected");
    }

    void valid_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("expected");
        QTest::newRow("letters and digits") << u"CES123"_qs << true;
        QTest::newRow("underscore") << u"ZBAA_TWR"_qs << true;
        QTest::newRow("every end of the ranges") << u"AZ09_"_qs << true;
        QTest::newRow("shortest") << u"A1"_qs << true;
        QTest::newRow("too short") << u"A"_qs << false;
        QTest::newRow("longest") << QString(12, u'A') << true;
        QTest::newRow("too long") << QString(13, u'A') << false;
        QTest::newRow("lower case") << u"ces1"_qs << false;
        QTest::newRow("hyphen") << u"CES-1"_qs << false;
        QTest::newRow("blank") << u"CES 1"_qs << false;
        QTest::newRow("line end behind") << u"CES1\n"_qs << false;
        QTest::newRow("just before A") << u"CES@"_qs << false;
        QTest::newRow("just behind Z") << u"CES["_qs << false;
        QTest::newRow("just before 0") << u"CES/"_qs << false;
        QTest::newRow("just behind 9") << u"CES:"_qs << false;
        QTest::newRow("other letters") << u"国航1"_qs << false;
        QTest::newRow("other digits") << u"CES\u0661"_qs << false;
        QTest::newRow("empty") << QString() << false;
    }

    void valid()
    {
        QFETCH(QString, text);
        QTEST(isCallsign(text), "expected");
    }
};

TARVO_TEST(CallsignTest)
#include "CallsignTest.moc"

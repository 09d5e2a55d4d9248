#include "manager/FlightPlanAnswer.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo;
using tarvo::manager::FlightPlanAnswer;

/// What servers answer to a flight plan query, in their several ways.
class FlightPlanAnswerTest : public QObject
{
    Q_OBJECT

private slots:
    void callsign_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("payload");
        QTest::addColumn<QString>("callsign");
        QTest::newRow("sender") << u"AB2"_qs << u"CALLSIGN=AB3:TYPE=B738"_qs << u"AB2"_qs;
        QTest::newRow("sender in lower case") << u" ab2 "_qs << u"B738"_qs << u"AB2"_qs;
        QTest::newRow("sender is any client") << u"ZBAA_TWR"_qs << u"AB3:B738"_qs << u"ZBAA_TWR"_qs;
        QTest::newRow("server") << u"SERVER"_qs << u"CALLSIGN=AB3"_qs << u"AB3"_qs;
        QTest::newRow("server in any case") << u" server "_qs << u"CALLSIGN=AB3"_qs << u"AB3"_qs;
        QTest::newRow("nobody") << u"  "_qs << u"CALLSIGN=AB3"_qs << u"AB3"_qs;
        QTest::newRow("CID") << u"SERVER"_qs << u"CID=ab3"_qs << u"AB3"_qs;
        QTest::newRow("PILOT") << u"SERVER"_qs << u"PILOT=AB3"_qs << u"AB3"_qs;
        QTest::newRow("FROM") << u"SERVER"_qs << u"FROM=AB3"_qs << u"AB3"_qs;
        QTest::newRow("key in any case, blanks") << u"SERVER"_qs << u" callSign = ab3 "_qs << u"AB3"_qs;
        QTest::newRow("priority goes by the key") << u"SERVER"_qs << u"FROM=AB4:PILOT=AB5:CID=AB6"_qs << u"AB6"_qs;
        QTest::newRow("callsign before all") << u"SERVER"_qs << u"CID=AB6:CALLSIGN=AB3"_qs << u"AB3"_qs;
        QTest::newRow("first of the same key") << u"SERVER"_qs << u"CID=AB6:CID=AB7"_qs << u"AB6"_qs;
        QTest::newRow("a key without a value") << u"SERVER"_qs << u"CALLSIGN=:CID=AB6"_qs << u"AB6"_qs;
        QTest::newRow("split at the first sign") << u"SERVER"_qs << u"CALLSIGN=A=B"_qs << u"A=B"_qs;
        QTest::newRow("unknown key") << u"SERVER"_qs << u"NAME=AB3"_qs << QString();
        QTest::newRow("first field") << u"SERVER"_qs << u" ab3 :B738"_qs << u"AB3"_qs;
        QTest::newRow("a key goes before the first field") << u"SERVER"_qs << u"AB3:FROM=AB4"_qs << u"AB4"_qs;
        QTest::newRow("first field of one letter") << u"SERVER"_qs << u"A:B738"_qs << QString();
        QTest::newRow("first field of twelve") << u"SERVER"_qs << u"ABCDEFGHIJ_1"_qs << u"ABCDEFGHIJ_1"_qs;
        QTest::newRow("first field of thirteen") << u"SERVER"_qs << u"ABCDEFGHIJ_12"_qs << QString();
        QTest::newRow("first field with a hyphen") << u"SERVER"_qs << u"AB-3:B738"_qs << QString();
    }

    void callsign()
    {
        QFETCH(QString, from);
        QFETCH(QString, payload);
        QTEST(FlightPlanAnswer::read(from, payload.split(u':')).callsign, "callsign");
    }

    void type_data()
    {
        QTest::addColumn<QString>("payload");
        QTest::addColumn<QString>("type");
        for (const char *key : {"AIRCRAFT", "EQUIPMENT", "AIRCRAFTTYPE", "AIRCRAFT_TYPE", "TYPE", "ACFT", "type"})
            QTest::addRow("%s", key) << u"%1=H/B744/L"_qs.arg(QLatin1StringView(key)) << u"B744"_qs;
        QTest::newRow("order goes by the field") << u"ACFT=B738:AIRCRAFT=B744"_qs << u"B738"_qs;
        QTest::newRow("a field that gives nothing") << u"AIRCRAFT= :ACFT=B738"_qs << u"B738"_qs;
        QTest::newRow("second field") << u"AB3:B738/L"_qs << u"B738"_qs;
        QTest::newRow("second field after keys that give nothing") << u"AIRCRAFT=:B738"_qs << u"B738"_qs;
        QTest::newRow("keys go first") << u"AB3:B738:TYPE=A320"_qs << u"A320"_qs;
        QTest::newRow("one field") << u"B738"_qs << QString();
        QTest::newRow("second field empty") << u"AB3:"_qs << QString();
        QTest::newRow("third field is nobody's type") << u"AB3::B738"_qs << QString();
        QTest::newRow("any second field") << u"CALLSIGN=AB3:NAME=AB"_qs << u"NAME"_qs;
    }

    void type()
    {
        QFETCH(QString, payload);
        QTEST(FlightPlanAnswer::read(u"AB2"_qs, payload.split(u':')).type, "type");
    }

    void completeness()
    {
        QVERIFY((FlightPlanAnswer{u"AB2"_qs, u"B738"_qs}.isComplete()));
        QVERIFY((!FlightPlanAnswer{u"AB2"_qs, QString()}.isComplete()));
        QVERIFY((!FlightPlanAnswer{QString(), u"B738"_qs}.isComplete()));
        QCOMPARE(FlightPlanAnswer::read(u"SERVER"_qs, {}), FlightPlanAnswer());
    }

    void onlyTheFirstFieldsAreLookedAt_data()
    {
        QTest::addColumn<int>("before"); // fields in front of the type
        QTest::addColumn<QString>("type");
        const int last = int(FlightPlanAnswer::maximumFields) - 1;
        QTest::newRow("the last that counts") << last << u"B738"_qs;
        QTest::newRow("one too many") << last + 1 << u"X"_qs; // the second field's
        QTest::newRow("half a million") << 500'000 << u"X"_qs;
    }

    void onlyTheFirstFieldsAreLookedAt()
    {
        QFETCH(int, before);
        QStringList payload(before, u"X"_qs);
        payload << u"TYPE=B738"_qs;
        QTEST(FlightPlanAnswer::read(u"AB2"_qs, payload).type, "type");
    }

    void onlyTheBeginningOfAFieldIsLookedAt()
    {
        const QString blanks(FlightPlanAnswer::longestField, u' ');
        QCOMPARE(FlightPlanAnswer::read(u"AB2"_qs, {u"TYPE="_qs + blanks + u"B738"_qs}).type, QString());
    }
};

TARVO_TEST(FlightPlanAnswerTest)
#include "FlightPlanAnswerTest.moc"

#include "manager/PilotName.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::manager;

class PilotNameTest : public QObject
{
    Q_OBJECT

private slots:
    void name_data()
    {
        tarvo::test::columns<QString, QString, QString, QString>("profile", "account", "username", "expected");
        QTest::newRow("profile") << u" Li Lei "_qs << u"lilei"_qs << u"1001"_qs << u"Li Lei"_qs;
        QTest::newRow("unknown in any case") << u"uNKNOWN"_qs << u"lilei"_qs << u"1001"_qs << u"lilei"_qs;
        QTest::newRow("unknown with blanks") << u" Unknown "_qs << u"lilei"_qs << u"1001"_qs << u"lilei"_qs;
        QTest::newRow("unknown within a name") << u"Unknown Pilot"_qs << u""_qs << u""_qs << u"Unknown Pilot"_qs;
        QTest::newRow("account, trimmed") << u"  "_qs << u" lilei "_qs << u"1001"_qs << u"lilei"_qs;
        QTest::newRow("user name, trimmed") << u""_qs << u" "_qs << u" 1001 "_qs << u"1001"_qs;
        QTest::newRow("nothing") << u""_qs << u""_qs << u" "_qs << u"Unknown"_qs;
    }

    void name()
    {
        QFETCH(QString, profile);
        QFETCH(QString, account);
        QFETCH(QString, username);
        QTEST(pilotName({profile, account, username}), "expected");
    }

    void airport_data()
    {
        tarvo::test::columns<QString, QString>("setting", "expected");
        QTest::newRow("as set") << u"ZSPD"_qs << u"ZSPD"_qs;
        QTest::newRow("trimmed and raised") << u" zspd "_qs << u"ZSPD"_qs;
        QTest::newRow("empty") << u"  "_qs << u"ZBAA"_qs;
        QTest::newRow("no airport") << u"zzzz"_qs << u"ZBAA"_qs;
    }

    void airport()
    {
        QFETCH(QString, setting);
        QTEST(homeAirport(setting), "expected");
    }

    void nameAndAirport()
    {
        QCOMPARE(nameWithAirport(u"Li Lei"_qs, u"ZSPD"_qs), u"Li Lei ZSPD"_qs);
        QCOMPARE(nameWithAirport(u"%2"_qs, u"ZSPD"_qs), u"%2 ZSPD"_qs);
    }
};

TARVO_TEST(PilotNameTest)
#include "PilotNameTest.moc"

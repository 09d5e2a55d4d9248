#include "IniGuard.h"
#include "support/TestRegistry.h"

#include <QTest>

class IniGuardTest : public QObject
{
    Q_OBJECT

private slots:
    void serializedObjects_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("found");
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("plain values") << QByteArray("[A]\nb=1\nc=\"x, y\"\nd=@Invalid()\n") << false;
        QTest::newRow("variant") << QByteArray("[A]\nb=@Variant(\\0\\0)\n") << true;
        QTest::newRow("date") << QByteArray("[A]\nb=@DateTime(\\0\\0)\n") << true;
        QTest::newRow("in a list") << QByteArray("b=a, @Variant(x)") << true;
        QTest::newRow("in quotes") << QByteArray("b=\"@Variant(x)\"") << true;
        QTest::newRow("quotes inside the word") << QByteArray("b=@Var\"ian\"t(x)") << true;
        QTest::newRow("hexadecimal escape") << QByteArray("b=\\x40Variant(x)") << true;
        QTest::newRow("hexadecimal escape that wraps") << QByteArray("b=\\x10040Variant(x)") << true;
        QTest::newRow("octal escape") << QByteArray("b=\\100Variant(x)") << true;
        QTest::newRow("escaped letter") << QByteArray("b=@\\x56\\141riant\\x28x)") << true;
        QTest::newRow("continued line") << QByteArray("b=@Var\\\niant(x)") << true;
        QTest::newRow("escape that vanishes") << QByteArray("b=@V\\zariant(x)") << true;
        QTest::newRow("escape that stays") << QByteArray("b=@V\\nariant(x)") << false;
        QTest::newRow("text that begins with the word") << QByteArray("b=@@Variant(x)") << false;
        QTest::newRow("after such a text") << QByteArray("b=@@Variant(x)\nc=@Variant(x)") << true;
        QTest::newRow("a single backslash at the end") << QByteArray("b=\\") << false;
        QTest::newRow("an unfinished number at the end") << QByteArray("b=\\x") << false;
    }

    void serializedObjects()
    {
        QFETCH(const QByteArray, text);
        QFETCH(const bool, found);
        QCOMPARE(tarvo::holdsSerializedObject(text), found);
    }
};

TARVO_TEST(IniGuardTest)
#include "IniGuardTest.moc"

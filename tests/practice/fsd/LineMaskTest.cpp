#include "practice/fsd/LineMask.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::practice;

class LineMaskTest : public QObject
{
    Q_OBJECT

private slots:
    void masksSecrets_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("printed");
        const auto row = [](const char *name, const char16_t *line, const char16_t *printed) {
            QTest::newRow(name) << QString::fromUtf16(line) << QString::fromUtf16(printed);
        };
        row("pilot", u"#APAB1:SERVER:1001:secret:1:9:5:Lin ZBAA", u"#APAB1:SERVER:1001:******:1:9:5:Lin ZBAA");
        row("observer", u"#AAAB1:SERVER:Lin:1001:secret:1:9", u"#AAAB1:SERVER:Lin:1001:******:1:9");
        row("colon in it", u"#APAB1:SERVER:1001:se:cret:1:9:5:Lin", u"#APAB1:SERVER:1001:******:******:1:9:5:Lin");
        row("wrong case", u"#apAB1:SERVER:1001:secret:1:9:5:L", u"#apAB1:SERVER:1001:******:1:9:5:L");
        row("blank in front", u" #APAB1:SERVER:1001:secret:1:9:5:L", u" #APAB1:SERVER:1001:******:1:9:5:L");
        row("short", u"#APAB1:SERVER:1001:secret", u"#APAB1:SERVER:1001:******");
        row("too short", u"#APAB1:SERVER", u"#APAB1:SERVER");
        row("announcement", u"#APAB1:SERVER:1001::1:9:5:Lin", u"#APAB1:SERVER:1001::1:9:5:Lin");
        row("other line", u"#TMAB1:XY2:secret:practice", u"#TMAB1:XY2:secret:practice");
        row("empty", u"", u"");
    }

    void masksSecrets()
    {
        QFETCH(QString, line);
        QFETCH(QString, printed);
        QCOMPARE(maskSecrets(line), printed);
    }
};

TARVO_TEST(LineMaskTest)
#include "LineMaskTest.moc"

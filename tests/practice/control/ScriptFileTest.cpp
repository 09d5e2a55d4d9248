#include "practice/control/ScriptFile.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::practice;

Q_DECLARE_METATYPE(ScriptEvent)

class ScriptFileTest : public QObject
{
    Q_OBJECT

    using Arguments = QMap<QString, QString>;

private slots:
    void readsAnEvent_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<ScriptEvent>("event");
        const auto row = [](const char *name, const char *line, qint64 ms, const Arguments &arguments) {
            QTest::newRow(name) << QString::fromUtf8(line) << ScriptEvent{1, ms, QStringLiteral("do"), arguments};
        };
        const QString a = QStringLiteral("a");
        row("verb alone", "0 do", 0, {});
        row("fraction", "1.25 do", 1250, {});
        row("a millisecond", "0.001 do", 1, {});
        row("the longest time", "1000000 do", 1'000'000'000, {});
        row("relative at the start", "+2 do", 2000, {});
        row("argument", "0 do a=b", 0, {{a, QStringLiteral("b")}});
        row("two arguments", "0 do a=b c=d", 0, {{a, QStringLiteral("b")}, {QStringLiteral("c"), QStringLiteral("d")}});
        row("empty value", "0 do a=", 0, {{a, QStringLiteral("")}});
        row("value with =", "0 do a=b=c", 0, {{a, QStringLiteral("b=c")}});
        row("double quotes", "0 do a=\"b c\"", 0, {{a, QStringLiteral("b c")}});
        row("empty quotes", "0 do a=\"\"", 0, {{a, QStringLiteral("")}});
        row("escaped quote", "0 do a=\"b \\\"c\\\"\"", 0, {{a, QStringLiteral("b \"c\"")}});
        row("escaped backslash", "0 do a=\"b\\\\\"", 0, {{a, QStringLiteral("b\\")}});
        row("single quotes", "0 do a='{\"b\":1} \\'", 0, {{a, QStringLiteral("{\"b\":1} \\")}});
        row("other quote inside", "0 do a=\"it's\"", 0, {{a, QStringLiteral("it's")}});
        row("hash inside a value", "0 do a=#TM", 0, {{a, QStringLiteral("#TM")}});
        row("hash inside quotes", "0 do a=\"x # y\"", 0, {{a, QStringLiteral("x # y")}});
        row("comment after it", "0 do a=b # why", 0, {{a, QStringLiteral("b")}});
        row("blanks and tabs", "  0\t do \t a=b  ", 0, {{a, QStringLiteral("b")}});
        row("carriage return", "0 do a=b\r", 0, {{a, QStringLiteral("b")}});
        row("Chinese", "0 do a=你好", 0, {{a, QStringLiteral("你好")}});
    }

    void readsAnEvent()
    {
        QFETCH(QString, line);
        QFETCH(ScriptEvent, event);
        QString error;
        const auto file = ScriptFile::parse(line, QStringLiteral("x.script"), &error);
        QVERIFY2(file, qPrintable(error));
        QCOMPARE(file->events.size(), 1);
        QVERIFY(file->events.constFirst() == event);
    }

    void readsAWholeFile()
    {
        QString error;
        const auto file =
            ScriptFile::parse(QStringLiteral("# a script\n\nstart now # at once\n0.5 a\n   # b\n+1 c\n+0 d\n"
                                             "1.5 e\n"),
                              QStringLiteral("x.script"), &error);
        QVERIFY2(file, qPrintable(error));
        QCOMPARE(file->start, ScriptFile::Start::Now);
        QCOMPARE(file->events.size(), 4);
        const QList<ScriptEvent> expected{{4, 500, QStringLiteral("a"), {}},
                                          {6, 1500, QStringLiteral("c"), {}},
                                          {7, 1500, QStringLiteral("d"), {}},
                                          {8, 1500, QStringLiteral("e"), {}}};
        QVERIFY(file->events == expected);
    }

    void startsAtTheLoginUnlessItSaysOtherwise_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("atLogin");
        QTest::newRow("empty") << QString() << true;
        QTest::newRow("nothing said") << QStringLiteral("0 do") << true;
        QTest::newRow("login") << QStringLiteral("start login") << true;
        QTest::newRow("now") << QStringLiteral("start now") << false;
        QTest::newRow("the last holds") << QStringLiteral("start now\nstart login") << true;
    }

    void startsAtTheLoginUnlessItSaysOtherwise()
    {
        QFETCH(QString, text);
        QFETCH(bool, atLogin);
        QString error;
        const auto file = ScriptFile::parse(text, QStringLiteral("x.script"), &error);
        QVERIFY2(file, qPrintable(error));
        QCOMPARE(file->start == ScriptFile::Start::Login, atLogin);
    }

    void namesWhatIsWrongAndWhere_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        const auto row = [](const char *name, const char *text, const char *error) {
            QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(error);
        };
        row("no time", "do a=b", "x.script:1: \"do\" is no time in seconds");
        row("negative", "-1 do", "x.script:1: \"-1\" is no time in seconds");
        row("not a number", "nan do", "x.script:1: \"nan\" is no time in seconds");
        row("endless", "inf do", "x.script:1: \"inf\" is no time in seconds");
        row("too long", "1000001 do", "x.script:1: \"1000001\" is no time in seconds");
        row("plus alone", "+ do", "x.script:1: \"+\" is no time in seconds");
        row("two pluses", "++1 do", "x.script:1: \"++1\" is no time in seconds");
        row("plus and minus", "+-1 do", "x.script:1: \"+-1\" is no time in seconds");
        row("key first", "a=b do", "x.script:1: no time before a=");
        row("back in time", "2 do\n\n1 do", "x.script:3: 1 s is earlier than the event before");
        row("no verb", "0 do\n1", "x.script:2: no verb after the time");
        row("comment for a verb", "1 # do", "x.script:1: no verb after the time");
        row("argument for a verb", "1 a=b", "x.script:1: no verb after the time");
        row("word for an argument", "1 do what", "x.script:1: \"what\" is no key=value");
        row("no key", "1 do =b", "x.script:1: \"=\" without a name before it");
        row("key twice", "1 do a=b a=c", "x.script:1: a is given twice");
        row("quote not closed", "1 do a=\"b", "x.script:1: the quote \" isn't closed");
        row("quote escaped away", "1 do a=\"b\\\"", "x.script:1: the quote \" isn't closed");
        row("ends in a backslash", "1 do a=\"b\\", "x.script:1: the quote \" isn't closed");
        row("single quote not closed", "1 do a='b\"", "x.script:1: the quote ' isn't closed");
        row("text after a quote", "1 do a=\"b\"c", "x.script:1: no blank after the closing quote \"");
        row("quote inside", "1 do a=b\"c\"", "x.script:1: a quote inside of b\"");
        row("quote in a verb", "1 \"do\"", "x.script:1: a quote inside of \"");
        row("start when", "start", "x.script:1: start is \"login\" or \"now\"");
        row("start then", "start soon", "x.script:1: start is \"login\" or \"now\"");
        row("start now what", "start now do", "x.script:1: start is \"login\" or \"now\"");
        row("start late", "0 do\nstart now", "x.script:2: start comes before the first event");
    }

    void namesWhatIsWrongAndWhere()
    {
        QFETCH(QString, text);
        QFETCH(QString, error);
        QString found;
        QVERIFY(!ScriptFile::parse(text, QStringLiteral("x.script"), &found));
        QCOMPARE(found, error);
    }
};

TARVO_TEST(ScriptFileTest)
#include "ScriptFileTest.moc"

#include "IniFormat.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QOperatingSystemVersion>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <utility>

namespace ini = tarvo::ini;

namespace {

using Values = QSettings::SettingsMap;

QString text(const char16_t *utf16)
{
    return QString::fromUtf16(utf16);
}

/// On Windows QSettings takes the keys of an INI file for alike however they are cased.
constexpr bool keysAreFolded = QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows;

/// True when sections or keys differ only in case.
bool hasTwins(const Values &values)
{
    QSet<QString> names;
    QSet<QString> folded;
    const QStringList keys = values.keys();
    for (const QString &key : keys)
        names << key << key.section(u'/', 0, 0) + u'/';
    for (const QString &name : std::as_const(names))
        folded << name.toCaseFolded();
    return folded.size() < names.size();
}

} // namespace

/// The form of config.ini, held against QSettings' own reader and writer where those can be trusted.
class IniFormatTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString newPath() const
    {
        static int count = 0;
        return m_folder.filePath(QString::number(++count));
    }

    /// What QSettings itself reads in `bytes`.
    Values asQtReads(const QByteArray &bytes) const
    {
        QFile file(newPath());
        Values values;
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            return values;
        file.close();
        const QSettings settings(file.fileName(), QSettings::IniFormat);
        const QStringList keys = settings.allKeys();
        for (const QString &key : keys)
            values.insert(key, settings.value(key));
        return values;
    }

    QByteArray asQtWrites(const Values &values) const
    {
        QFile file(newPath());
        {
            QSettings settings(file.fileName(), QSettings::IniFormat);
            for (auto it = values.begin(); it != values.end(); ++it)
                settings.setValue(it.key(), it.value());
        }
        return file.open(QIODevice::ReadOnly | QIODevice::Text) ? file.readAll() : QByteArray();
    }

private slots:
    void isReadAsQtReadsIt_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const auto row = [](const char *tag, const QByteArray &bytes) { QTest::newRow(tag) << bytes; };
        row("empty", "");
        row("sections", "a=1\n[S]\nb=2\n\n[T]\nc=3");
        row("general is no section", "[General]\na=1\n[GENERAL]\nb=2");
        row("a section of that name", "[%General]\na=1\n[%general]\nb=2");
        row("section with text behind it", "[S] x\na=1");
        row("section that isn't closed", "[S\na=1");
        row("blanks around all", "  [ S ]  \n  a  =  1  \n\tb\t=\t2\t\n");
        row("two keys of one name", "a=1\na=2");
        row("a line without a value", "a\nb=1");
        row("comments", "; x=1\na=1 ; y=2\n[S];\n;\nb=\"1;2\"");
        row("a hash is no comment", "# x\n#a=1");
        row("DOS line ends", "[S]\r\na=1\r\nb=2\r\n");
        row("old line ends", "[S]\ra=1\rb=2\r");
        row("byte order mark", "\xEF\xBB\xBF[S]\na=1");
        row("UTF-8", "[\xE5\xAF\x86]\n\xE5\xAF\x86=\xE5\xAF\x86, \xF0\x9F\x9B\xAB");
        row("keys", "a%20b=1\n%U5BC6=2\na%zz=3\na%2=4\nc\\d=5\ne/f=6\n%u5bc6=7\n%=8\n%U=9\na,b=10");
        row("equal signs", "a==b=c\n\"x=y\"=z");
        row("lists", "a=1, 2,3 ,\nb=,\nc=\"1, 2\"\nd=\"1\" , 2 3 ");
        row("quotes", "a=x\"y z\"  w \nb=\" x \"\nc=\"x\ny\"\nd=\"\"\ne=\"open");
        row("letters that are escaped", "a=\\a\\b\\f\\n\\r\\t\\v\\\"\\?\\'\\\\");
        row("numbers", "a=\\x41\\x5BC6g\\101\\60\\0\\400\nb=\\x12345z\nc=\\777777");
        row("escapes that mean nothing", "a=\\qx\\8\nb=\\x\nc=\\xg");
        row("escaped blanks stay", "a=x\\x20  \nb=\\x20 x\nc=\\x20\\x20, x  ");
        row("a line that goes on", "a=x\\\n  y\nb=x\\\r\ny\nc=x\\\n\ry\nd=x\\\ry\ne=x\\\n\ny");
        row("backslash at the end", "a=x\\");
        row("special values",
            "a=@Invalid()\nb=@@x\nc=@String(a\\0b)\nd=@ByteArray(\\xff\\0)\ne=@x\nf=@\ng=@String(x\nh=@ByteArray(x");
        row("special values in a list", "a=@Invalid(), @@b\nb=@@a, @@b");
        row("NUL", QByteArray("a=x\0y\nb\0c=1", 11));
    }

    void isReadAsQtReadsIt()
    {
        QFETCH(const QByteArray, bytes);
        const Values values = ini::parse(bytes);
        if (keysAreFolded && hasTwins(values))
            QSKIP("keys that differ only in case are one for QSettings here");
        QCOMPARE(values.keys(), asQtReads(bytes).keys());
        QCOMPARE(values, asQtReads(bytes));
    }

    void isWrittenAsQtWritesIt_data()
    {
        QTest::addColumn<Values>("values");
        const auto row = [](const char *tag, const QVariant &value) {
            QTest::newRow(tag) << Values{{QStringLiteral("S/a"), value}};
        };
        row("text", QStringLiteral("x"));
        row("empty text", QString());
        row("number", -7);
        row("fraction", 0.1);
        row("large", 1e300);
        row("true", true);
        row("nothing", QVariant());
        row("bytes", QByteArray("a\xff\0b", 4));
        row("marks that need quotes", QStringList{text(u"a,b"), text(u"a;b"), text(u"a=b"), text(u" a"), text(u"a ")});
        row("marks that don't", text(u"#[x]:'?%20"));
        row("escapes", text(u"\a\b\f\n\r\t\v\"\\\x01\x1f\x7f"));
        row("digits behind a number", text(u"\x01\x31g\x01g\n1"));
        row("a NUL", QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b,"));
        row("at sign", text(u"@x"));
        row("an object's name", text(u"@Variant(x)"));
        row("UTF-8", text(u"\u0085\u00a0\u5bc6\U0001F6EB"));
        row("empty list", QStringList());
        row("one item", QStringList{text(u"a")});
        row("empty items", QStringList{QString(), QString()});
        row("items with at signs", QStringList{text(u"@a"), text(u"b")});
        row("list with nothing in it", QVariantList{QVariant(), text(u"a")});
        QTest::newRow("sections") << Values{
            {text(u"a"), 1},     {text(u"General/x"), 2},     {text(u"S b/x"), 4},        {text(u"S/x"), 5},
            {text(u"S/x/y"), 6}, {text(u"\u5bc6/\u00fc"), 7}, {text(u"S/a_b-c.d e=f"), 8}};
        QTest::newRow("the nameless section's name") << Values{{text(u"general/x"), 2}};
        QTest::newRow("nothing at all") << Values();
    }

    void isWrittenAsQtWritesIt()
    {
        QFETCH(const Values, values);
        if (keysAreFolded) // and sorted by that
            QCOMPARE(ini::parse(ini::print(values)), ini::parse(asQtWrites(values)));
        else
            QCOMPARE(ini::print(values), asQtWrites(values));
        QCOMPARE(ini::print(ini::parse(ini::print(values))), ini::print(values));
    }

    /// What QSettings' own reader would build, or lose.
    void objectsAreText_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QVariant>("value");
        const QString plain = QStringLiteral("@Variant(x)");
        QTest::newRow("object") << QByteArray("@Variant(x)") << QVariant(plain);
        QTest::newRow("date") << QByteArray("@DateTime(x)") << QVariant(QStringLiteral("@DateTime(x)"));
        QTest::newRow("rectangle") << QByteArray("@Rect(1 2 3 4)") << QVariant(QStringLiteral("@Rect(1 2 3 4)"));
        QTest::newRow("in a list") << QByteArray("a, @Variant(x)") << QVariant(QStringList{QStringLiteral("a"), plain});
        QTest::newRow("escaped") << QByteArray("\\x40Var\"iant\"(\\x78)") << QVariant(plain);
        QTest::newRow("behind an escaped DOS line end") << QByteArray("@Var\\\r\niant(x)") << QVariant(plain);
        QTest::newRow("behind the other one") << QByteArray("@Var\\\n\riant(x)") << QVariant(plain);
        QTest::newRow("behind a number without digits") << QByteArray("@Var\\xiant(x)") << QVariant(plain);
        QTest::newRow("octal") << QByteArray("\\0100Variant(x)") << QVariant(plain);
        QTest::newRow("a byte order mark behind an escape")
            << QByteArray("@Var\\\n\xEF\xBB\xBFiant(x)") << QVariant(QStringLiteral(u"@Var\uFEFFiant(x)"));
        QTest::newRow("a mark at the beginning")
            << QByteArray("\xEF\xBB\xBF@Variant(x)") << QVariant(QStringLiteral(u"\uFEFF@Variant(x)"));
    }

    void objectsAreText()
    {
        QFETCH(const QByteArray, stored);
        QFETCH(const QVariant, value);
        const Values values = ini::parse("a=" + stored);
        QCOMPARE(values.value(QStringLiteral("a")), value);
        QCOMPARE(ini::parse(ini::print(values)), values);
    }

    void nothingBehindTheTextIsRead() { QCOMPARE(ini::parse(QByteArrayView("a=x\\n").first(4)), ini::parse("a=x\\")); }

    void halfCharactersStay()
    {
        for (const QChar half : {QChar(0xd800), QChar(0xdc00)}) {
            const Values values{{QStringLiteral("a"), QString(half) + QStringLiteral("1 x") + half}};
            QCOMPARE(ini::parse(ini::print(values)), values);
        }
    }

    void settingsUseTheForm()
    {
        QFile file(newPath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[S]\na=@Variant(x)\n");
        file.close();
        QSettings settings(file.fileName(), ini::format());
        QCOMPARE(settings.value(QStringLiteral("S/a")), QVariant(QStringLiteral("@Variant(x)")));
        settings.setValue(QStringLiteral("S/b"), 2);
        settings.sync();
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        QCOMPARE(file.readAll(), QByteArray("[S]\na=@@Variant(x)\nb=2\n"));
    }
};

TARVO_TEST(IniFormatTest)
#include "IniFormatTest.moc"

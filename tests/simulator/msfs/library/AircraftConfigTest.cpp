#include "simulator/msfs/library/AircraftConfig.h"
#include "simulator/msfs/library/ForeignText.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QStringEncoder>
#include <QTest>

using namespace tarvo::simulator::msfs;

namespace {

/// "SECTION title|SECTION title", one for each section; "-" for one without.
QString titlesIn(const AircraftConfig &config)
{
    QStringList all;
    for (const AircraftSection &section : config.sections) {
        const QString title = section.value(AircraftKey::Title);
        all.append(section.name() + u' ' + (title.isEmpty() ? QStringLiteral("-") : title));
    }
    return all.join(u'|');
}

QByteArray encoded(const QString &text, QStringConverter::Encoding encoding, bool withMark)
{
    QStringEncoder encoder(encoding, withMark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
    return encoder(text);
}

} // namespace

class AircraftConfigTest : public QObject
{
    Q_OBJECT

private slots:
    void linesAre_data()
    {
        tarvo::test::columns<QByteArray, QString>("text", "titles");
        const auto row = [](const char *name, const QByteArray &text, QStringView titles) {
            QTest::newRow(name) << text << titles.toString();
        };
        row("plain", "[FLTSIM.0]\ntitle=A", u"FLTSIM.0 A");
        row("nothing", "", u"");
        row("lines of Windows", "[FLTSIM.0]\r\ntitle=A\r\n", u"FLTSIM.0 A");
        row("blanks all over", "  [ fltsim.0 ]\t\n \t title \t=  A  \n", u"FLTSIM.0 A");
        row("a section in lower case", "[fltsim.0]\ntitle=A", u"FLTSIM.0 A");
        row("a section in mixed case", "[FltSim.12]\ntitle=A", u"FLTSIM.12 A");
        row("a key in upper case", "[FLTSIM.0]\nTITLE=A", u"FLTSIM.0 A");
        row("quotes", "[FLTSIM.0]\ntitle = \"A B\"", u"FLTSIM.0 A B");
        row("one quote stays", "[FLTSIM.0]\ntitle=\"A", u"FLTSIM.0 \"A");
        row("a quote alone stays", "[FLTSIM.0]\ntitle=\"", u"FLTSIM.0 \"");
        row("empty quotes", "[FLTSIM.0]\ntitle=\"\"", u"FLTSIM.0 -");
        row("one pair goes", "[FLTSIM.0]\ntitle=\"\"A\"\"", u"FLTSIM.0 \"A\"");
        row("white space is one blank", "[FLTSIM.0]\ntitle=\" A \t\v B\"", u"FLTSIM.0 A B");
        row("a remark", "[FLTSIM.0]\ntitle=A ; remark", u"FLTSIM.0 A");
        row("a remark of the whole line", "[FLTSIM.0]\n;title=A", u"FLTSIM.0 -");
        row("a semicolon between quotes", "[FLTSIM.0]\ntitle=\"A;B\" ; remark", u"FLTSIM.0 A;B");
        row("a semicolon behind an open quote", "[FLTSIM.0]\ntitle=\"A;B", u"FLTSIM.0 \"A;B");
        row("a remark behind a section", "[FLTSIM.0] ; remark ]\ntitle=A", u"FLTSIM.0 A");
        row("what is behind a section", "[FLTSIM.0] more\ntitle=A", u"FLTSIM.0 A");
        row("the last bracket ends a section", "[FLTSIM.0]x] more\ntitle=A", u"FLTSIM.0]X A");
        row("a section in a remark", "[FLTSIM.0]\n;[FLTSIM.1]\ntitle=A", u"FLTSIM.0 A");
        row("a bracket that stays open", "[FLTSIM.0]\n[FLTSIM.1\ntitle=A", u"FLTSIM.0 A");
        row("a bracket within a value", "[FLTSIM.0]\ntitle=[A]", u"FLTSIM.0 [A]");
        row("the value has the other signs", "[FLTSIM.0]\ntitle=A=B", u"FLTSIM.0 A=B");
        row("a line without sign", "[FLTSIM.0]\ntitle A\ntitle", u"FLTSIM.0 -");
        row("the last value holds", "[FLTSIM.0]\ntitle=A\ntitle=B", u"FLTSIM.0 B");
        row("an empty last value holds", "[FLTSIM.0]\ntitle=A\ntitle=", u"FLTSIM.0 -");
        row("the same section again", "[FLTSIM.0]\ntitle=A\n[FLTSIM.1]\n[fltsim.0]\ntitle=B", u"FLTSIM.0 B|FLTSIM.1 -");
        row("sections in the file's order", "[FLTSIM.10]\n[FLTSIM.2]", u"FLTSIM.10 -|FLTSIM.2 -");
        row("sections that nobody reads", "[VERSION]\ntitle=A\n[FLTSIM]\ntitle=B\n[PILOT]\n[XFLTSIM.0]", u"");
        row("another section ends one", "[FLTSIM.0]\n[EFFECTS]\ntitle=A", u"FLTSIM.0 -");
        row("an empty name ends one", "[FLTSIM.0]\n[]\ntitle=A", u"FLTSIM.0 -");
        row("a key before all sections", "title=A\n[FLTSIM.0]", u"FLTSIM.0 -");
        row("a key that only ends alike", "[FLTSIM.0]\nsubtitle=A", u"FLTSIM.0 -");
        row("the two others", "[GENERAL]\n[VARIATION]", u"GENERAL -|VARIATION -");
        row("a zero byte", QByteArray("[FLTSIM.0]\ntitle=A\0B\n", 22), u"FLTSIM.0 A\0B");
        row("garbage", "\xff\xfe\xfd[[[]]]===\"\"\"\n;;;\x80", u"");
    }
    void linesAre()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, titles);
        if (qstrcmp(QTest::currentDataTag(), "a zero byte") == 0)
            titles = QStringLiteral("FLTSIM.0 A") + QChar(u'\0') + u'B';
        QCOMPARE(titlesIn(parseAircraftConfig(text)), titles);
    }

    void encodings_data()
    {
        tarvo::test::columns<QByteArray, QString>("bytes", "title");
        const QString chinese = QStringLiteral("[FLTSIM.0]\r\ntitle=\"空客 é\"\r\n");
        const QString title = QStringLiteral("空客 é");
        QTest::newRow("UTF-8") << chinese.toUtf8() << title;
        QTest::newRow("UTF-8 with mark") << encoded(chinese, QStringConverter::Utf8, true) << title;
        QTest::newRow("UTF-16 LE with mark") << encoded(chinese, QStringConverter::Utf16LE, true) << title;
        QTest::newRow("UTF-16 BE with mark") << encoded(chinese, QStringConverter::Utf16BE, true) << title;
        QTest::newRow("UTF-16 LE") << encoded(chinese, QStringConverter::Utf16LE, false) << title;
        QTest::newRow("UTF-16 BE") << encoded(chinese, QStringConverter::Utf16BE, false) << title;
        QTest::newRow("UTF-16 cut in a character")
            << encoded(chinese, QStringConverter::Utf16LE, true).chopped(1) << title;
        QTest::newRow("Latin-1") << QByteArray("[FLTSIM.0]\ntitle=Caf\xe9") << QStringLiteral("Café");
        QTest::newRow("Latin-1 beside UTF-8")
            << QByteArray("[FLTSIM.0]\nui_type=\xe9\ntitle=Caf\xc3\xa9") << QStringLiteral("Café");
    }
    void encodings()
    {
        QFETCH(QByteArray, bytes);
        const AircraftConfig config = parseAircraftConfig(bytes);
        QCOMPARE(config.sections.size(), std::size_t(1));
        QTEST(config.sections.front().value(AircraftKey::Title), "title");
    }

    void everyKeyIsRead_data()
    {
        tarvo::test::columns<QByteArray, int>("text", "key");
        const auto row = [](const char *text, AircraftKey key) {
            QTest::newRow(text) << QByteArray(text) << static_cast<int>(key);
        };
        row("title", AircraftKey::Title);
        row("ui_manufacturer", AircraftKey::UiManufacturer);
        row("ui_type", AircraftKey::UiType);
        row("ui_variation", AircraftKey::UiVariation);
        row("atc_airline", AircraftKey::AtcAirline);
        row("isAirTraffic", AircraftKey::IsAirTraffic);
        row("isUserSelectable", AircraftKey::IsUserSelectable);
        row("icao_type_designator", AircraftKey::IcaoTypeDesignator);
        row("icao_manufacturer", AircraftKey::IcaoManufacturer);
        row("icao_model", AircraftKey::IcaoModel);
        row("icao_engine_type", AircraftKey::IcaoEngineType);
        row("icao_WTC", AircraftKey::IcaoWakeCategory);
        row("Category", AircraftKey::Category);
        row("icao_engine_count", AircraftKey::IcaoEngineCount);
        row("base_container", AircraftKey::BaseContainer);
    }
    void everyKeyIsRead()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, key);
        const AircraftConfig config = parseAircraftConfig("[GENERAL]\n" + text + "=\"x\"");
        const AircraftSection *general = config.find(u"GENERAL");
        QVERIFY(general);
        for (int other = 0; other <= static_cast<int>(AircraftKey::BaseContainer); ++other)
            QCOMPARE(general->value(static_cast<AircraftKey>(other)), other == key ? QStringLiteral("x") : QString());
    }

    void flags_data()
    {
        tarvo::test::columns<QByteArray, bool, bool>("line", "byDefaultFalse", "byDefaultTrue");
        const auto row = [](const char *line, bool byDefaultFalse, bool byDefaultTrue) {
            QTest::newRow(line) << QByteArray(line) << byDefaultFalse << byDefaultTrue;
        };
        for (const char *line :
             {"=1", "=Y", "=y", "=TRUE", "=true", "=True", "=YES", "= yes ", "=\"1\"", "=1 ; remark"})
            row(line, true, true);
        for (const char *line : {"=0", "=N", "=FALSE", "=2", "=on", "=", "=\"\"", "=11", "=;1"})
            row(line, false, false);
        row("", false, true);
        row("  of no value", false, true);
    }
    void flags()
    {
        QFETCH(QByteArray, line);
        const AircraftConfig config = parseAircraftConfig("[FLTSIM.0]\nisairtraffic" + line);
        QTEST(config.sections.front().flag(AircraftKey::IsAirTraffic, false), "byDefaultFalse");
        QTEST(config.sections.front().flag(AircraftKey::IsAirTraffic, true), "byDefaultTrue");
    }

    void manySectionsTakeNoTime()
    {
        QByteArray text;
        for (int i = 0; i < 200'000; ++i)
            text += "[FLTSIM." + QByteArray::number(i) + "]\n";
        QCOMPARE(parseAircraftConfig(text).sections.size(), std::size_t(200'000));
    }

    void cleanPaths_data()
    {
        tarvo::test::columns<QString, QString>("text", "path");
        QTest::newRow("of Windows") << QStringLiteral(" C:\\Packages\\\\Official\\ ")
                                    << QStringLiteral("C:/Packages/Official");
        QTest::newRow("up and down") << QStringLiteral("/a/./b/../c") << QStringLiteral("/a/c");
        QTest::newRow("nothing") << QStringLiteral("  ") << QString();
    }
    void cleanPaths()
    {
        QFETCH(QString, text);
        QTEST(cleanForeignPath(text), "path");
    }
};

TARVO_TEST(AircraftConfigTest)
#include "AircraftConfigTest.moc"

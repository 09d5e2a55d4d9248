#include "network/IcaoSources.h"
#include "support/Columns.h"
#include "support/TestRegistry.h"

#include <QBuffer>
#include <QTest>

#include <algorithm>

using namespace tarvo::network;

namespace {

/// A file on a medium that gives up after its first bytes: it says that there is more, but no read succeeds.
class BrokenDevice : public QIODevice
{
public:
    explicit BrokenDevice(const QByteArray &readable) : m_readable(readable) { open(ReadOnly | Unbuffered); }
    qint64 size() const override { return 1000; }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        if (m_readable.isEmpty())
            return -1;
        const QByteArray part = m_readable.left(maxSize);
        std::copy(part.begin(), part.end(), data);
        m_readable.remove(0, part.size());
        return part.size();
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_readable;
};

} // namespace

/// Reading the legacy JSON and the text table.
class IcaoSourcesTest : public QObject
{
    Q_OBJECT

private:
    static QList<SwiftAircraftIcaoRow> table(QByteArray text)
    {
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        return parseDoc8643(buffer);
    }

private slots:
    void aTableLine()
    {
        const QList<SwiftAircraftIcaoRow> rows = table("BOEING\t737-800\tB738\tL2J\tM\n");
        SwiftAircraftIcaoRow expected;
        expected.id = 1;
        expected.designator = QStringLiteral("B738");
        expected.manufacturer = QStringLiteral("BOEING");
        expected.model = QStringLiteral("737-800");
        expected.type = QStringLiteral("L2J");
        expected.engine = QStringLiteral("J");
        expected.engineCount = 2;
        expected.wakeTurbulenceCategory = QStringLiteral("M");
        expected.rank = 1;
        expected.realWorld = true;
        QCOMPARE(rows, QList<SwiftAircraftIcaoRow>{expected});
    }

    void linesThatAreKept_data()
    {
        tarvo::test::columns<QByteArray, QStringList>("text", "designators");
        const auto list = [](const char *texts) { return QString::fromLatin1(texts).split(QLatin1Char(' ')); };
        QTest::newRow("four columns") << QByteArray("A\tB\tB738\tL2J\n") << QStringList();
        QTest::newRow("six columns") << QByteArray("A\tB\tB738\tL2J\tM\tmore\n") << list("B738");
        QTest::newRow("one character") << QByteArray("A\tB\tB\tL2J\tM\n") << QStringList();
        QTest::newRow("two characters") << QByteArray("A\tB\tP8\tL2J\tM\n") << list("P8");
        QTest::newRow("five characters") << QByteArray("A\tB\tB738X\tL2J\tM\n") << QStringList();
        QTest::newRow("trimmed and upper-cased") << QByteArray("A\tB\t b738 \t l2j \t m \r\n") << list("B738");
        QTest::newRow("no line end") << QByteArray("A\tB\tB738\tL2J\tM") << list("B738");
        QTest::newRow("blank lines between")
            << QByteArray("\n\nA\tB\tB738\tL2J\tM\n\nA\tB\tDC3\tL2P\tM\n") << list("B738 DC3");
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf\x41\tB\tB738\tL2J\tM\n") << list("B738");
        QTest::newRow("bytes that are no text") << QByteArray("\xff\xfe\t\x80\tB738\tL2J\tM\n") << list("B738");
        QTest::newRow("zero bytes") << QByteArray("A\0\t\0\tB738\tL2J\tM\n", 17) << list("B738");
        QTest::newRow("empty") << QByteArray() << QStringList();
        QTest::newRow("one endless line") << QByteArray(1000000, 'x') << QStringList();
    }

    void linesThatAreKept()
    {
        QFETCH(QByteArray, text);
        QStringList designators;
        const QList<SwiftAircraftIcaoRow> rows = table(text);
        for (const SwiftAircraftIcaoRow &row : rows)
            designators.append(row.designator);
        QTEST(designators, "designators");
    }

    void idsCountTheRowsThatAreKept()
    {
        const QList<SwiftAircraftIcaoRow> rows =
            table("too short\nA\tB\tB738\tL2J\tM\nA\tB\tB738X\tL2J\tM\nA\tB\tDC3\tL2P\tM\n");
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.at(0).id, 1);
        QCOMPARE(rows.at(1).id, 2);
        QCOMPARE(rows.at(1).rank, 2);
    }

    void aReadErrorEndsTheTable()
    {
        BrokenDevice broken{QByteArray()};
        QVERIFY(parseDoc8643(broken).isEmpty());
        BrokenDevice breaking("A\tB\tB738\tL2J\tM\n");
        QCOMPARE(parseDoc8643(breaking).size(), 1);
    }

    void makerAndModelAreCleaned()
    {
        const QList<SwiftAircraftIcaoRow> rows =
            table(QStringLiteral("\u6ce2\u97f3 Boeing \t 737\u5ba2\u673a-800\tB738\tL2J\tM\n").toUtf8());
        QCOMPARE(rows.at(0).manufacturer, QStringLiteral("Boeing"));
        QCOMPARE(rows.at(0).model, QStringLiteral("737-800"));
    }

    void descriptions_data()
    {
        tarvo::test::columns<QString, int, QString>("description", "count", "engine");
        QTest::newRow("L2J") << QStringLiteral("L2J") << 2 << QStringLiteral("J");
        QTest::newRow("glider") << QStringLiteral("L0-") << 0 << QStringLiteral("-");
        QTest::newRow("longer") << QStringLiteral("H1TX") << 1 << QStringLiteral("T");
        QTest::newRow("no digit") << QStringLiteral("LCJ") << 0 << QString();
        QTest::newRow("digit of another script") << QStringLiteral("L\u0662J") << 0 << QString();
        QTest::newRow("two characters") << QStringLiteral("L2") << 0 << QString();
        QTest::newRow("a hyphen") << QStringLiteral("-") << 0 << QString();
        QTest::newRow("empty") << QString() << 0 << QString();
    }

    void descriptions()
    {
        QFETCH(QString, description);
        const QList<SwiftAircraftIcaoRow> rows = table("A\tB\tB738\t" + description.toUtf8() + "\tM\n");
        QCOMPARE(rows.size(), 1);
        QCOMPARE(rows.at(0).type, description);
        QTEST(rows.at(0).engineCount, "count");
        QTEST(rows.at(0).engine, "engine");
    }

    void jsonErrors_data()
    {
        tarvo::test::columns<QByteArray, QString>("json", "error");
        QTest::newRow("not JSON") << QByteArray("{") << QStringLiteral("swift aircraft ICAO JSON parse error: ");
        QTest::newRow("empty") << QByteArray() << QStringLiteral("swift aircraft ICAO JSON parse error: ");
        QTest::newRow("nested beyond reason")
            << QByteArray(100000, '[') << QStringLiteral("swift aircraft ICAO JSON parse error: ");
        const QString missing = QStringLiteral("swift aircraft ICAO JSON is missing data array");
        QTest::newRow("no data") << QByteArray("{}") << missing;
        QTest::newRow("data is an object") << QByteArray(R"({"data":{}})") << missing;
        QTest::newRow("an array at the top") << QByteArray("[]") << missing;
        QTest::newRow("empty data is none") << QByteArray(R"({"data":[]})") << QString();
    }

    void jsonErrors()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, error);
        const LegacyIcaoJson read = parseLegacyIcaoJson(json);
        QVERIFY2(error.isEmpty() ? read.error.isEmpty() : read.error.startsWith(error), qPrintable(read.error));
        QVERIFY(read.rows.isEmpty());
    }

    void jsonRows()
    {
        const LegacyIcaoJson read = parseLegacyIcaoJson(R"({"latest":"2024-01-01","data":[
            {"id":7,"designator":"B738","manufacturer":"Boeing","model":"737-800","type":"L2J","engine":"J",
             "enginecount":2,"wtc":"M","rank":3,"realworld":true,"legacy":false,"military":true,
             "created":"2020","lastupdated":"2021"}, 5, null, {"id":"8","designator":"DC3","enginecount":"2",
             "realworld":"Y","legacy":"N","military":1,"rank":4294967296}]})");
        QCOMPARE(read.label, QStringLiteral("2024-01-01"));
        QCOMPARE(read.rows.size(), 2);
        QCOMPARE(read.rows.at(0), fullIcaoRow(7, false));
        QCOMPARE(read.rows.at(1).id, 8);
        QCOMPARE(read.rows.at(1).engineCount, 2);
        QVERIFY(read.rows.at(1).realWorld);
        QVERIFY(!read.rows.at(1).legacy);
        QVERIFY(read.rows.at(1).military);
        QCOMPARE(read.rows.at(1).rank, 0);
    }

    void jsonTextsAreTakenAsTheyAre()
    {
        const LegacyIcaoJson read = parseLegacyIcaoJson(
            QStringLiteral("{\"data\":[{\"designator\":\"B738\",\"model\":\" \u6ce2 \"}]}").toUtf8());
        QCOMPARE(read.rows.at(0).model, QStringLiteral(" \u6ce2 "));
    }
};

TARVO_TEST(IcaoSourcesTest)
#include "IcaoSourcesTest.moc"

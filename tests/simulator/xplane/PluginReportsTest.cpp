#include "simulator/xplane/PluginReports.h"
#include "support/PluginPeer.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::xplane;
using tarvo::test::packPluginMessage;

class PluginReportsTest : public QObject
{
    Q_OBJECT

private slots:
    /// What the golden file leaves open.
    void reportIs_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<PluginReport>("expected");
        const auto add = [](const char *name, const QByteArray &bytes, const PluginReport &expected) {
            QTest::newRow(name) << bytes << expected;
        };
        add("VER small", QByteArray::fromHex("92a35645529107"), report::Version{7});
        add("VER negative", QByteArray::fromHex("92a356455291ff"), report::Version{-1});
        add("VER with more", QByteArray::fromHex("92a3564552920708"), report::Version{7});
        add("CSL false", QByteArray::fromHex("92a343534c9290c2"), report::Csl{false});
        add("ADDED empty", QByteArray::fromHex("92a5414444454491a0"), report::Added{});
        add("unknown name", packPluginMessage(QStringLiteral("PING"), {1, true, QVariant(), 2.5}), report::Unknown{});
        add("empty name", packPluginMessage(QString()), report::Unknown{});
        add("name in lower case", packPluginMessage(QStringLiteral("ver"), {65536}), report::Unknown{});
        add("invalid UTF-8", QByteArray::fromHex("92a5414444454491a1ff"), report::Added{QString(QChar(0xfffd))});
    }

    void reportIs()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(PluginReport, expected);
        QVERIFY(unpackReport(bytes) == expected);
    }

    void malformed_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const auto add = [](const char *name, const char *hex) { QTest::newRow(name) << QByteArray::fromHex(hex); };
        add("nothing", "");
        add("nil", "c0");
        add("never used byte", "c1");
        add("a number", "07");
        add("a string", "a3564552");
        add("a map", "80");
        add("empty array", "90");
        add("array of one", "91a3564552");
        add("array of three", "93a35645529090");
        add("name is a number", "920790");
        add("name is bytes", "92c40356455290");
        add("name is nil", "92c090");
        add("arguments are no array", "92a3564552c0");
        add("arguments are a map", "92a356455280");
        add("cut in the name", "92a35645");
        add("cut before the arguments", "92a3564552");
        add("cut in the arguments", "92a356455292ce0001");
        add("VER with a text", "92a356455291a131");
        add("VER with a real number", "92a356455291cb40f0000000000000");
        add("VER with nil", "92a356455291c0");
        add("VER beyond int", "92a356455291cf0000000100000000");
        add("VER beyond everything", "92a356455291cfffffffffffffffff");
        add("CSL without arguments", "92a343534c90");
        add("CSL without the verdict", "92a343534c9190");
        add("CSL with a number as verdict", "92a343534c929001");
        add("CSL with paths that are none", "92a343534c929107c3");
        add("CSL with a text for the paths", "92a343534c92a161c3");
        add("ADDED without a callsign", "92a5414444454490");
        add("ADDED with nil", "92a5414444454491c0");
        add("PRIVSENT with one text", "92a85052495653454e5491a142");
        add("claims 4 G elements", "ddffffffff");
        add("claims 4 G arguments", "92a3564552ddffffffff");
        add("claims 4 G map entries", "92a3564552dfffffffff");
        add("claims a 4 G text", "92dbffffffff");
        add("claims 4 G bytes", "92c6ffffffff");
        add("claims a 4 G extension", "92c9ffffffff01");
        QTest::newRow("nested without end") << QByteArray(100'000, '\x91');
        QTest::newRow("each level claims 65535 elements") << QByteArray("\xdc\xff\xff").repeated(30'000);
    }

    void malformed()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(std::holds_alternative<report::Malformed>(unpackReport(bytes)));
    }

    void everyTruncationIsHarmless()
    {
        const QByteArray whole =
            packPluginMessage(QStringLiteral("CSL"), {QVariantList{QStringLiteral("/a"), QStringLiteral("/b")}, true});
        for (qsizetype length = 0; length < whole.size(); ++length)
            QVERIFY(std::holds_alternative<report::Malformed>(unpackReport(whole.first(length))));
        QVERIFY(unpackReport(whole) == PluginReport(report::Csl{true}));
    }

    void theReasonHoldsNothingOfTheMessage()
    {
        const PluginReport report = unpackReport(packPluginMessage(QStringLiteral("VER"), {QStringLiteral("secret")}));
        const auto *malformed = std::get_if<report::Malformed>(&report);
        QVERIFY(malformed);
        QVERIFY(!malformed->why.contains(QStringLiteral("secret")));
    }
};

TARVO_TEST(PluginReportsTest)
#include "PluginReportsTest.moc"

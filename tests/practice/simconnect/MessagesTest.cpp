#include "practice/simconnect/Messages.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::practice;

class MessagesTest : public QObject
{
    Q_OBJECT

private slots:
    void hasTheBytes_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<int>("size");
        const auto row = [](const char *name, const QByteArray &message, const char *start, int size) {
            QTest::newRow(name) << message << QByteArray::fromHex(start) << size;
        };
        const message::DataHead head{.request = 1, .object = 2, .define = 3, .entry = 4, .outOf = 5, .count = 6};
        row("exception", message::exception(22, 7, 1), "180000000600000001000000160000000700000001000000", 24);
        row("open", message::open({.name = "MSFS", .version = {11}}), "3401000006000000020000004d53465300", 308);
        row("quit", message::quit(), "0c0000000600000003000000", 12);
        row("event", message::event(1, 20000, 1), "18000000060000000400000001000000204e000001000000", 24);
        row("data", message::objectData(head, "ab"),
            "2a00000006000000080000000100000002000000030000000000000004000000050000000600000061"
            "62",
            42);
        row("data by type", message::objectDataByType(head, {}), "280000000600000009000000010000000200000003", 40);
        row("assigned object", message::assignedObject(9, 258), "14000000060000000c0000000900000002010000", 20);
        row("no input events", message::inputEvents(60000, {}),
            "1c000000060000002200000060ea0000000000000000000001000000", 28);
        row("input event value", message::inputEventValue(0x0102030405060708, 1, 0.5),
            "200000000600000024000000080706050403020101000000000000000000e03f", 32);
        row("any", message::any(77, "x"), "0d000000060000004d00000078", 13);
        row("int32", message::int32(-2), "feffffff", 4);
        row("float64", message::float64(1), "000000000000f03f", 8);
        row("text", message::text("ab", 4), "61620000", 4);
        row("text too long", message::text("abcdef", 4), "61626364", 4);
    }

    void hasTheBytes()
    {
        QFETCH(QByteArray, message);
        QFETCH(QByteArray, start);
        QFETCH(int, size);
        QCOMPARE(message.left(start.size()).toHex(), start.toHex());
        QCOMPARE(message.size(), size);
    }

    void anApplicationHasTwoVersions()
    {
        const QByteArray bytes =
            message::open({.name = "x", .version = {1, 2, 3, 4}, .simConnectVersion = {5, 6, 7, 8}});
        QCOMPARE(bytes.mid(12 + 256).toHex(), QByteArray("01000000020000000300000004000000050000000600000007000000"
                                                         "080000000000000000000000"));
        QCOMPARE(message::open({.name = QByteArray(300, 'n')}).size(), 308);
    }

    void descriptorsHaveAStride_data()
    {
        QTest::addColumn<int>("stride");
        QTest::newRow("today's") << 76;
        QTest::newRow("a later one's") << 128;
    }

    void descriptorsHaveAStride()
    {
        QFETCH(int, stride);
        const QByteArray bytes = message::inputEvents(
            1, {{.name = "SPOILERS", .hash = 5}, {.name = QByteArray(90, 'n'), .hash = 6, .type = 1}}, stride, 2, 3);
        QCOMPARE(bytes.size(), 28 + 2 * stride);
        QCOMPARE(bytes.mid(12, 16).toHex(), QByteArray("01000000020000000200000003000000"));
        QCOMPARE(bytes.mid(28, 64), message::text("SPOILERS", 64));
        QCOMPARE(bytes.mid(28 + 64, 12).toHex(), QByteArray("050000000000000000000000"));
        QCOMPARE(bytes.mid(28 + stride, 64), QByteArray(64, 'n'));
        QCOMPARE(bytes.mid(28 + stride + 64, 12).toHex(), QByteArray("060000000000000001000000"));
    }
};

TARVO_TEST(MessagesTest)
#include "MessagesTest.moc"

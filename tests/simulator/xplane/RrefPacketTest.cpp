#include "simulator/xplane/RrefPacket.h"
#include "support/TestRegistry.h"

#include <QTest>

using namespace tarvo::simulator::xplane;

class RrefPacketTest : public QObject
{
    Q_OBJECT

private slots:
    void subscribe()
    {
        const QByteArray packet = subscribePacket(15, 49, "sim/a/b[0]");
        QCOMPARE(packet.size(), 413);
        QCOMPARE(packet.first(13), QByteArray("RREF\0\x0f\0\0\0\x31\0\0\0", 13));
        QCOMPARE(packet.mid(13), QByteArray("sim/a/b[0]") + QByteArray(390, '\0'));
    }

    void subscribeWithLargeNumbers()
    {
        const QByteArray packet = subscribePacket(0x01020304, 0x0a0b0c0d, "x");
        QCOMPARE(packet.mid(5, 8), QByteArray("\x04\x03\x02\x01\x0d\x0c\x0b\x0a"));
    }

    void writeValue()
    {
        const QByteArray packet = writePacket("sim/cockpit/radios/transponder_code", 2000);
        QCOMPARE(packet.size(), 509);
        QCOMPARE(packet.first(9), QByteArray("DREF\0\0\0\xfa\x44", 9)); // 2000.0F is 0x44fa0000
        QCOMPARE(packet.mid(9), QByteArray("sim/cockpit/radios/transponder_code") + QByteArray(465, '\0'));
    }

    void command()
    {
        const QByteArray packet = commandPacket("sim/transponder/transponder_ident");
        QCOMPARE(packet, QByteArray("CMND\0sim/transponder/transponder_ident\0", 39));
        QCOMPARE(packet.size(), 33 + 6);
    }

    void nameThatIsTooLongIsCutBeforeItsLastZero_data()
    {
        QTest::addColumn<QByteArray>("packet");
        QTest::addColumn<int>("size");
        const QByteArray name(600, 'n');
        QTest::newRow("subscribe") << subscribePacket(1, 1, name) << 413;
        QTest::newRow("write") << writePacket(name, 1) << 509;
    }

    void nameThatIsTooLongIsCutBeforeItsLastZero()
    {
        QFETCH(QByteArray, packet);
        QTEST(static_cast<int>(packet.size()), "size");
        QVERIFY(packet.endsWith(QByteArray("n\0", 2)));
    }

    void replyHolds_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<int>("count");
        const QByteArray record("\x12\0\0\0\0\0\x20\x42", 8);
        QTest::newRow("empty") << QByteArray() << false << 0;
        QTest::newRow("3 bytes") << QByteArray("RRE") << false << 0;
        QTest::newRow("4 bytes") << QByteArray("RREF") << true << 0;
        QTest::newRow("5 bytes") << QByteArray("RREF,") << true << 0;
        QTest::newRow("12 bytes") << QByteArray("RREF,") + record.first(7) << true << 0;
        QTest::newRow("13 bytes") << QByteArray("RREF,") + record << true << 1;
        QTest::newRow("20 bytes") << QByteArray("RREF,") + record + record.first(7) << true << 1;
        QTest::newRow("53 records") << QByteArray("RREF,") + record.repeated(53) << true << 53;
        QTest::newRow("any fifth byte") << QByteArray("RREF\xff") + record << true << 1;
        QTest::newRow("lower case") << QByteArray("rref,") + record << false << 1;
        QTest::newRow("another tag") << QByteArray("BECN,") + record << false << 1;
    }

    void replyHolds()
    {
        QFETCH(QByteArray, bytes);
        const RrefReply reply(bytes);
        QTEST(reply.isValid(), "valid");
        QTEST(static_cast<int>(reply.count()), "count");
    }

    void recordsAreReadInOrder()
    {
        const QByteArray bytes("RREF,\x12\0\0\0\0\0\x20\x42\xff\xff\xff\xff\0\0\x80\xbf", 21);
        const RrefReply reply(bytes);
        QCOMPARE(reply.count(), 2);
        QCOMPARE(reply.record(0).id, 18U);
        QCOMPARE(reply.record(0).value, 40.0F);
        QCOMPARE(reply.record(1).id, 0xffffffffU);
        QCOMPARE(reply.record(1).value, -1.0F);
    }
};

TARVO_TEST(RrefPacketTest)
#include "RrefPacketTest.moc"

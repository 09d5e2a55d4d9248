#include "voice/wire/VoicePacket.h"

#include "support/TestRegistry.h"

#include <QTest>

#include <stdexcept>

using namespace tarvo::voice;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// The packet that these bytes, in hexadecimal with blanks, make.
std::optional<VoicePacket> parsed(const char *hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    // A copy of just that size, so that AddressSanitizer sees a read behind its end.
    const Bytes exact(bytes.begin(), bytes.end());
    return parseVoicePacket(exact.data(), exact.size());
}

std::optional<VoicePacket> parsed(const Bytes &bytes)
{
    return parseVoicePacket(bytes.data(), bytes.size());
}

QByteArray hexOf(const Bytes &bytes)
{
    return QByteArray(reinterpret_cast<const char *>(bytes.data()), static_cast<qsizetype>(bytes.size())).toHex(' ');
}

} // namespace

class VoicePacketTest : public QObject
{
    Q_OBJECT

private slots:
    void golden_data()
    {
        QTest::addColumn<quint32>("cid");
        QTest::addColumn<int>("transmitter");
        QTest::addColumn<int>("frequency");
        QTest::addColumn<QByteArray>("callsign");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QByteArray>("wire");
        QTest::newRow("nothing in it") << 0U << 0 << 0 << QByteArray() << QByteArray()
                                       << QByteArray("00 00 00 00 00 00 00 00 00 00 0a");
        QTest::newRow("keep-alive") << 1001U << 0 << 0 << QByteArray("CCA1234") << QByteArray()
                                    << QByteArray("e9 03 00 00 00 00 00 00 00 07 43 43 41 31 32 33 34 0a");
        QTest::newRow("voice") << 0x01020304U << 1 << 118700 << QByteArray("AB") << QByteArray("\x78\x9a")
                               << QByteArray("04 03 02 01 01 ac cf 01 00 02 41 42 78 9a 0a");
        QTest::newRow("line ends need no escape") << 10U << 10 << 10 << QByteArray("\n\n") << QByteArray("\n")
                                                  << QByteArray("0a 00 00 00 0a 0a 00 00 00 02 0a 0a 0a 0a");
        QTest::newRow("the highest frequency and transmitter")
            << 0xFFFFFFFFU << 254 << 199999 << QByteArray() << QByteArray()
            << QByteArray("ff ff ff ff fe 3f 0d 03 00 00 0a");
    }

    void golden()
    {
        QFETCH(quint32, cid);
        QFETCH(int, transmitter);
        QFETCH(int, frequency);
        QFETCH(QByteArray, callsign);
        QFETCH(QByteArray, payload);
        QFETCH(QByteArray, wire);
        const VoicePacket packet{cid, static_cast<quint32>(transmitter), frequency, callsign.toStdString(),
                                 Bytes(payload.begin(), payload.end())};
        QCOMPARE(hexOf(serializeVoicePacket(cid, transmitter, frequency, packet.callsign, packet.payload)), wire);
        QVERIFY(parsed(wire) == packet);
    }

    void negativeNumbersAreCutToTheirSize()
    {
        const std::optional<VoicePacket> packet = parsed(serializeVoicePacket(1, -2, -3, {}, {}));
        QVERIFY(packet);
        QCOMPARE(packet->transmitter, 254U);
        QCOMPARE(packet->frequency, -3);
    }

    void limits_data()
    {
        QTest::addColumn<int>("callsignSize");
        QTest::addColumn<int>("frequency");
        QTest::addColumn<int>("transmitter");
        QTest::addColumn<QByteArray>("refusal");
        QTest::newRow("all at their limits") << 254 << 199999 << 254 << QByteArray();
        QTest::newRow("callsign first") << 255 << 200000 << 255 << QByteArray("Callsign too long");
        QTest::newRow("then the frequency") << 254 << 200000 << 255 << QByteArray("Frequency too large");
        QTest::newRow("then the transmitter") << 254 << 199999 << 255 << QByteArray("Transmitter ID too large");
    }

    void limits()
    {
        QFETCH(int, callsignSize);
        QFETCH(int, frequency);
        QFETCH(int, transmitter);
        QByteArray refusal;
        std::optional<VoicePacket> read;
        const std::string callsign(static_cast<size_t>(callsignSize), 'A');
        try {
            read = parsed(serializeVoicePacket(1, transmitter, frequency, callsign, {0x78}));
        } catch (const std::invalid_argument &error) {
            refusal = error.what();
        }
        QTEST(refusal, "refusal");
        QCOMPARE(read.has_value(), refusal.isEmpty());
        if (read)
            QCOMPARE(read->callsign, callsign);
    }

    void aCallsignIsCutToFit_data()
    {
        QTest::addColumn<std::string>("callsign");
        QTest::addColumn<size_t>("kept");
        const auto a = [](size_t count) { return std::string(count, 'A'); };
        QTest::newRow("empty") << std::string() << size_t(0);
        QTest::newRow("short") << a(7) << size_t(7);
        QTest::newRow("254 bytes") << a(254) << size_t(254);
        QTest::newRow("255 bytes") << a(255) << size_t(254);
        QTest::newRow("very long") << a(60'000) << size_t(254);
        QTest::newRow("a character ends there") << a(251) + "国" + "国" << size_t(254);
        QTest::newRow("a character begins there") << a(254) + "国" << size_t(254);
        QTest::newRow("one byte of it is inside") << a(253) + "国" << size_t(253);
        QTest::newRow("two bytes of it are inside") << a(252) + "国" << size_t(252);
        QTest::newRow("three of four") << a(251) + "\xf0\x9f\x9b\xab" << size_t(251);
        QTest::newRow("no characters at all") << std::string(300, '\x80') << size_t(251);
    }

    void aCallsignIsCutToFit()
    {
        QFETCH(std::string, callsign);
        QFETCH(size_t, kept);
        const std::string fitting = fittingCallsign(callsign);
        QCOMPARE(fitting, callsign.substr(0, kept));
        QVERIFY(parsed(serializeVoicePacket(1, 0, 0, fitting, {}))); // doesn't throw
    }

    void longestClaimedCallsignIsRead()
    {
        const QByteArray wire = QByteArray(9, '\0') + '\xff' + QByteArray(255, 'A') + '\n';
        const std::optional<VoicePacket> packet = parsed(Bytes(wire.begin(), wire.end()));
        QVERIFY(packet);
        QCOMPARE(packet->callsign, std::string(255, 'A'));
        QVERIFY(packet->payload.empty());
    }

    void refused_data()
    {
        QTest::addColumn<QByteArray>("wire");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("line end alone") << QByteArray("0a");
        QTest::newRow("nine bytes") << QByteArray("00 00 00 00 00 00 00 00 0a");
        QTest::newRow("ten bytes, the length is the end") << QByteArray("00 00 00 00 00 00 00 00 00 0a");
        QTest::newRow("other end") << QByteArray("00 00 00 00 00 00 00 00 00 00 0b");
        QTest::newRow("callsign one byte short") << QByteArray("00 00 00 00 00 00 00 00 00 02 41 0a");
        QTest::newRow("callsign far beyond") << QByteArray("00 00 00 00 00 00 00 00 00 ff 41 0a");
    }

    void refused()
    {
        QFETCH(QByteArray, wire);
        QVERIFY(!parsed(wire.constData()));
    }
};

TARVO_TEST(VoicePacketTest)
#include "VoicePacketTest.moc"

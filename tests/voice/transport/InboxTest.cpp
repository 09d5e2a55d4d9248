#include "voice/transport/Inbox.h"

#include "support/TestRegistry.h"

#include <QTest>

#include <atomic>
#include <thread>

using namespace tarvo::voice;

namespace {

VoicePacket packetOf(quint32 cid)
{
    VoicePacket packet;
    packet.cid = cid;
    return packet;
}

ControlMessage messageOf(qint32 cid)
{
    ControlMessage message;
    message.cid = cid;
    return message;
}

/// The numbers in the reports that are left; 0 for one without.
QList<quint32> rest(Inbox &inbox)
{
    QList<quint32> numbers;
    while (const std::optional<Report> report = inbox.take()) {
        if (const auto *packet = std::get_if<VoicePacket>(&*report))
            numbers.append(packet->cid);
        else if (const auto *message = std::get_if<ControlMessage>(&*report))
            numbers.append(static_cast<quint32>(message->cid));
        else
            numbers.append(0);
    }
    return numbers;
}

} // namespace

class InboxTest : public QObject
{
    Q_OBJECT

private slots:
    void keepsTheOrder()
    {
        Inbox inbox;
        inbox.putPacket(packetOf(1));
        inbox.putLine(messageOf(2));
        inbox.say(report::Lost{});
        inbox.putPacket(packetOf(3));
        QCOMPARE(rest(inbox), (QList<quint32>{1, 2, 0, 3}));
    }

    void theOwnerIsToldOnceUntilItHasSeenAll()
    {
        Inbox inbox;
        QVERIFY(inbox.putPacket(packetOf(1)));
        QVERIFY(!inbox.putLine(messageOf(2)));
        QVERIFY(!inbox.say(report::Lost{}));
        inbox.take();
        QVERIFY(!inbox.putPacket(packetOf(3)));
        rest(inbox);
        QVERIFY(inbox.putLine(messageOf(4)));
    }

    void packetsBeyondTheBoundAreDroppedAndCounted()
    {
        Inbox inbox;
        for (quint32 i = 0; i < Inbox::mostPackets + 3; ++i)
            inbox.putPacket(packetOf(i));
        QCOMPARE(inbox.takeDropped(), 3U);
        QCOMPARE(inbox.takeDropped(), 0U);
        inbox.take();
        inbox.putPacket(packetOf(999)); // there is room again
        const QList<quint32> left = rest(inbox);
        QCOMPARE(left.size(), qsizetype(Inbox::mostPackets));
        QCOMPARE(left.first(), 1U);
        QCOMPARE(left.last(), 999U);
    }

    void packetsTakeNoRoomOfLines()
    {
        Inbox inbox;
        for (quint32 i = 0; i < Inbox::mostPackets; ++i)
            inbox.putPacket(packetOf(i));
        for (qint32 i = 0; i < qint32(Inbox::mostLines); ++i)
            inbox.putLine(messageOf(i));
        inbox.say(report::Lost{});
        QCOMPARE(rest(inbox).size(), qsizetype(Inbox::mostPackets + Inbox::mostLines + 1));
    }

    void aLineTooManyWaitsForRoom_data()
    {
        QTest::addColumn<bool>("bad");
        QTest::newRow("messages") << false;
        QTest::newRow("bad lines") << true;
    }
    void aLineTooManyWaitsForRoom()
    {
        QFETCH(bool, bad);
        Inbox inbox;
        const auto line = [bad](size_t i) -> Report {
            return bad ? Report(report::BadLine{}) : messageOf(static_cast<qint32>(i));
        };
        constexpr size_t count = 10 * Inbox::mostLines;
        std::atomic<size_t> written = 0;
        std::thread writer([&] {
            for (size_t i = 0; i < count; ++i) {
                inbox.putLine(line(i));
                ++written;
            }
        });
        while (written < Inbox::mostLines)
            std::this_thread::yield();
        size_t taken = 0;
        bool waits = true;
        while (taken < count) {
            waits = waits && written <= taken + Inbox::mostLines;
            if (inbox.take())
                ++taken;
            std::this_thread::yield();
        }
        writer.join();
        QVERIFY(waits);
        QVERIFY(!inbox.take());
    }

    void aCloseLetsNobodyWait()
    {
        Inbox inbox;
        for (size_t i = 0; i < Inbox::mostLines; ++i)
            inbox.putLine(messageOf(1));
        std::thread writer([&] { inbox.putLine(messageOf(2)); });
        inbox.close();
        writer.join();
        QCOMPARE(rest(inbox).size(), qsizetype(Inbox::mostLines));
    }
};

TARVO_TEST(InboxTest)
#include "InboxTest.moc"

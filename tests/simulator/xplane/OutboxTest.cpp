#include "simulator/xplane/Outbox.h"
#include "support/TestRegistry.h"

#include <QStringList>
#include <QTest>

using tarvo::simulator::xplane::Outbox;
using tarvo::simulator::xplane::OutgoingMessage;
using Kind = OutgoingMessage::Kind;

namespace {

/// A message out of a word: "pA1" is a position of A's, "xA1" adds or removes A, "z1" removes all; anything else is
/// some other message.
OutgoingMessage messageOf(const QString &word)
{
    OutgoingMessage message(word.toLatin1());
    if (word.startsWith(u'p'))
        message.kind = Kind::Position;
    else if (word.startsWith(u'x'))
        message.kind = Kind::Existence;
    else if (word.startsWith(u'z'))
        message.kind = Kind::ExistenceOfAll;
    if (message.kind == Kind::Position || message.kind == Kind::Existence)
        message.callsign = word.mid(1, 1);
    return message;
}

/// Puts the words; a "-" among them takes the next message.
QStringList takenAfter(Outbox &outbox, const QString &words)
{
    QStringList taken;
    const auto take = [&] {
        const auto next = outbox.next();
        taken << (next ? QString::fromLatin1(*next) : QStringLiteral("none"));
    };
    for (const QString &word : words.split(u' ', Qt::SkipEmptyParts)) {
        if (word == u'-')
            take();
        else
            outbox.put(messageOf(word));
    }
    while (!outbox.isEmpty())
        take();
    return taken;
}

} // namespace

class OutboxTest : public QObject
{
    Q_OBJECT

private slots:
    void gives_data()
    {
        QTest::addColumn<QString>("put");
        QTest::addColumn<QString>("taken");
        const auto add = [](const char *name, const char *put, const char *taken) {
            QTest::newRow(name) << QString::fromLatin1(put) << QString::fromLatin1(taken);
        };
        add("nothing", "-", "none");
        add("the rest, in order", "a b a c", "a b a c");
        add("the newest position, in the first one's place", "pA1 b pA2 c pA3", "pA3 b c");
        add("one position of each aircraft", "pA1 pB1 pA2 pB2 pC1", "pA2 pB2 pC1");
        add("a position behind one that has left", "pA1 - pA2", "pA1 pA2");
        add("positions around an addition", "a xA1 pA1 pA2", "a xA1 pA2");
        add("no position from before an addition", "pA1 xA1 pA2", "xA1 pA2");
        add("no position of a removed aircraft", "pA1 pB1 b xA1", "pB1 b xA1");
        add("removed, added, moved", "xA1 pA1 xA2 xA3 pA2 pA3", "xA1 xA2 xA3 pA3");
        add("no position of any removed aircraft", "pA1 a pB1 xC1 z1 pB2", "a xC1 z1 pB2");
        add("a removal while nothing waits", "xA1 z1", "xA1 z1");
        add("the same after the removal of all", "pA1 z1 pA2 pA3 xA1", "z1 xA1");
    }

    void gives()
    {
        QFETCH(QString, put);
        Outbox outbox;
        QCOMPARE(outbox.bytes(), 0);
        QTEST(takenAfter(outbox, put).join(u' '), "taken");
        QCOMPARE(outbox.bytes(), 0);
        QVERIFY(!outbox.next());
        QVERIFY(!outbox.takeLoss());
    }

    void countsBytes()
    {
        Outbox outbox;
        outbox.put(messageOf(QStringLiteral("pA1")));
        outbox.put(messageOf(QStringLiteral("abcdefg")));
        QCOMPARE(outbox.bytes(), 10);
        outbox.put(messageOf(QStringLiteral("pA12345")));
        QCOMPARE(outbox.bytes(), 14);
        outbox.put(messageOf(QStringLiteral("xA1")));
        QCOMPARE(outbox.bytes(), 10);
    }

    void givesUpWhoDoesNotRead()
    {
        const OutgoingMessage large(QByteArray(Outbox::mostBytes / 2 - Outbox::perMessage, 'x'));
        Outbox outbox;
        outbox.put(large);
        outbox.put(large);
        QVERIFY(!outbox.hasLost()); // filled to the brim
        outbox.put(OutgoingMessage(QByteArray()));
        QVERIFY(outbox.hasLost());
        QVERIFY(outbox.isEmpty());
        QCOMPARE(outbox.bytes(), 0);
        outbox.put(messageOf(QStringLiteral("pA2"))); // of no use without those before it
        outbox.put(messageOf(QStringLiteral("b")));
        QVERIFY(outbox.isEmpty());
        QVERIFY(outbox.takeLoss());
        QVERIFY(!outbox.takeLoss());
        QCOMPARE(takenAfter(outbox, QStringLiteral("pA3 c")).join(u' '), QStringLiteral("pA3 c"));
    }

    void positionsAloneNeverFillIt()
    {
        Outbox outbox;
        const OutgoingMessage position(QByteArray(200, 'x'), Kind::Position, QStringLiteral("A"));
        for (int i = 0; i < 100'000; ++i)
            outbox.put(position);
        QCOMPARE(outbox.bytes(), 200);
        QVERIFY(!outbox.hasLost());
    }
};

TARVO_TEST(OutboxTest)
#include "OutboxTest.moc"

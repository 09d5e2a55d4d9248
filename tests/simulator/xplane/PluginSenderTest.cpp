#include "simulator/xplane/PluginSender.h"
#include "support/LogCapture.h"
#include "support/ManualClock.h"
#include "support/TestRegistry.h"

#include <nng/protocol/pair1/pair.h>

#include <QTest>

using namespace tarvo::simulator::xplane;
using Kind = OutgoingMessage::Kind;

namespace {

/// A sender at a socket to which nobody is connected.
struct SenderBench
{
    explicit SenderBench(int bufferSize)
    {
        nng_pair1_open(&socket);
        nng_socket_set_int(socket, NNG_OPT_SENDBUF, bufferSize);
    }
    ~SenderBench() { nng_close(socket); }
    SenderBench(const SenderBench &) = delete;
    SenderBench &operator=(const SenderBench &) = delete;

    void send(int count)
    {
        for (int i = 0; i < count; ++i)
            sender.send(QByteArray::number(sent++));
    }

    QList<int> end()
    {
        QList<int> numbers;
        for (nng_msg *message : sender.end()) {
            numbers.append(QByteArray(static_cast<const char *>(nng_msg_body(message)),
                                      static_cast<qsizetype>(nng_msg_len(message)))
                               .toInt());
            nng_msg_free(message);
        }
        return numbers;
    }

    nng_socket socket = NNG_SOCKET_INITIALIZER;
    tarvo::test::ManualClock clock;
    PluginSender sender{clock};
    int sent = 0;
};

} // namespace

class PluginSenderTest : public QObject
{
    Q_OBJECT

private slots:
    void theEndGivesWhatHasNotLeft()
    {
        SenderBench bench(2);
        bench.send(1);
        bench.sender.start(bench.socket);
        bench.send(4);
        QCOMPARE(bench.end(), (QList<int>{2, 3, 4}));
        QCOMPARE(bench.end(), QList<int>());
        bench.send(1); // nobody takes it
        QCOMPARE(bench.end(), QList<int>{5});
    }

    void theEndBeforeTheStartGivesAll()
    {
        SenderBench bench(2);
        bench.send(3);
        QCOMPARE(bench.end(), (QList<int>{0, 1, 2}));
    }

    void aLongOutboxLetsOtherEventsIn()
    {
        SenderBench bench(8192);
        bench.send(2500);
        bench.sender.start(bench.socket);
        for (int i = 0; i < 2; ++i) {
            bench.send(10); // stays behind the others
            if (i == 0)
                QCoreApplication::processEvents();
        }
        const QList<int> left = bench.end();
        QCOMPARE(left.size(), 520);
        QCOMPARE(left.first(), 2000);
        QCOMPARE(left.last(), 2519);
        QCoreApplication::processEvents(); // the turn that was to go on
        bench.send(1);
        QCOMPARE(bench.end(), QList<int>{2520});
    }

    void whatIsDroppedIsTold()
    {
        const OutgoingMessage half(QByteArray(60'000, 'x'));
        const qsizetype most = Outbox::mostBytes / half.bytes.size();
        const tarvo::test::LogCapture log;
        SenderBench bench(2);
        bench.sender.send({QByteArray(65'536, 'x'), Kind::Existence, QStringLiteral("AB2")});
        for (qsizetype i = 0; i < most + 1; ++i)
            bench.sender.send(half);
        bench.sender.send({"p", Kind::Position, QStringLiteral("AB2")});
        bench.clock.advance(60'000);
        for (int i = 0; i < 2; ++i)
            bench.sender.send({"z", Kind::ExistenceOfAll});
        bench.sender.start(bench.socket);
        const auto line = [](const QString &what, const QString &why, qsizetype total) {
            return QStringLiteral("Traffic: dropped %1 by the plugin link, %2, total %3").arg(what, why).arg(total);
        };
        const QString full = QStringLiteral("the buffer is full");
        QCOMPARE(
            log.texts(QtWarningMsg),
            (QStringList{line(QStringLiteral("an addition or removal of AB2"), QStringLiteral("it is too long"), 1),
                         QStringLiteral("X-Plane plugin does not read: messages are lost until it does"),
                         line(QStringLiteral("a message"), full, most + 2),
                         line(QStringLiteral("the removal of all"), full, most + 4),
                         QStringLiteral("Traffic: X-Plane plugin reads again; %1 messages are lost").arg(most + 5)}));
        QCOMPARE(log.ofCategory("tarvo.traffic").size(), 4);
    }
};

TARVO_TEST(PluginSenderTest)
#include "PluginSenderTest.moc"

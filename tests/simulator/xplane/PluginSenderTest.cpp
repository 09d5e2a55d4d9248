#include "simulator/xplane/PluginSender.h"
#include "support/TestRegistry.h"

#include <nng/protocol/pair1/pair.h>

#include <QTest>

using tarvo::simulator::xplane::PluginSender;

namespace {

/// A sender at a socket to which nobody is connected.
struct Bench
{
    explicit Bench(int socketHolds)
    {
        nng_pair1_open(&socket);
        nng_socket_set_int(socket, NNG_OPT_SENDBUF, socketHolds);
    }
    ~Bench() { nng_close(socket); }
    Bench(const Bench &) = delete;
    Bench &operator=(const Bench &) = delete;

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
    PluginSender sender;
    int sent = 0;
};

} // namespace

class PluginSenderTest : public QObject
{
    Q_OBJECT

private slots:
    void theEndGivesWhatHasNotLeft()
    {
        Bench bench(2);
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
        Bench bench(2);
        bench.send(3);
        QCOMPARE(bench.end(), (QList<int>{0, 1, 2}));
    }

    void aLongOutboxLetsOtherEventsIn()
    {
        Bench bench(8192);
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
    }
};

TARVO_TEST(PluginSenderTest)
#include "PluginSenderTest.moc"

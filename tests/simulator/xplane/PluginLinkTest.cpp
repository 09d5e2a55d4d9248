#include "XPlaneBench.h"
#include "simulator/xplane/PluginMessages.h"
#include "simulator/xplane/ReportInbox.h"
#include "support/LogCapture.h"
#include "support/PluginPeer.h"
#include "support/TestRegistry.h"

#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

using namespace tarvo::simulator::xplane;
using tarvo::test::addedMessage;
using tarvo::test::LogCapture;
using tarvo::test::packPluginMessage;
using tarvo::test::PluginBench;
using tarvo::test::PluginPeer;
using tarvo::test::RunningBench;
using Kind = OutgoingMessage::Kind;

namespace {

/// Counts, while it lives, the messages that the link says it has dropped.
class DropCounter
{
public:
    DropCounter() : m_previous(qInstallMessageHandler(&DropCounter::handle)) { s_count = 0; }
    ~DropCounter() { qInstallMessageHandler(m_previous); }
    DropCounter(const DropCounter &) = delete;
    DropCounter &operator=(const DropCounter &) = delete;

    /// Runs no events meanwhile.
    static void waitFor(int count)
    {
        const QDeadlineTimer deadline(tarvo::test::patienceMs);
        while (s_count < count && !deadline.hasExpired())
            std::this_thread::yield();
        QVERIFY(s_count >= count);
    }

private:
    static void handle(QtMsgType, const QMessageLogContext &, const QString &text)
    {
        if (text.startsWith(QLatin1String("X-Plane plugin message dropped")))
            ++s_count;
    }

    static inline std::atomic<int> s_count = 0;
    QtMessageHandler m_previous;
};

/// Messages for nobody that stay in the socket itself.
constexpr qsizetype socketHolds = 8192;

} // namespace

class PluginLinkTest : public QObject
{
    Q_OBJECT

private slots:
    void messagesBeforeOpeningAreKeptInOrder()
    {
        PluginBench bench;
        bench.startPlugin();
        QVERIFY(!bench.link->isReady());
        bench.link->send(message::heartbeat(QStringLiteral("A")));
        bench.link->send(message::removeAll());
        bench.open();
        QVERIFY(bench.link->isReady());
        bench.link->send(message::version());
        const QList<QByteArray> expected{message::heartbeat(QStringLiteral("A")), message::removeAll(),
                                         message::version()};
        TRY_COMPARE(bench.plugin->messages(), expected);
    }

    void pluginThatComesLaterGetsEverything()
    {
        PluginBench bench;
        QSignalSpy errors(bench.link.get(), &PluginLink::socketError);
        bench.open();
        bench.link->send(message::version());
        bench.link->send(message::removeAll());
        bench.startPlugin();
        const QList<QByteArray> expected{message::version(), message::removeAll()};
        TRY_COMPARE(bench.plugin->messages(), expected);
        QCOMPARE(errors.size(), 0);
    }

    void pluginThatVanishesIsFoundAgain()
    {
        PluginBench bench;
        QVERIFY(bench.connect());
        bench.plugin.reset();
        bench.link->send(message::version());
        bench.startPlugin();
        TRY_VERIFY(bench.plugin->hasClient());
        QSignalSpy reports(bench.link.get(), &PluginLink::reportReceived);
        bench.plugin->sendRaw(addedMessage(1));
        TRY_COMPARE(reports.size(), 1);
    }

    void saysWhenAPluginComesAndGoes()
    {
        PluginBench bench;
        QSignalSpy connected(bench.link.get(), &PluginLink::pluginConnected);
        bench.open();
        QVERIFY(!bench.link->isConnected());
        for (const bool first : {true, false, false}) {
            bench.startPlugin();
            TRY_COMPARE(connected.size(), 1);
            QCOMPARE(connected.takeFirst().first().toBool(), first);
            QVERIFY(bench.link->isConnected());
            const tarvo::test::LogCapture log;
            bench.plugin.reset();
            TRY_VERIFY(!log.texts().isEmpty());
            QCOMPARE(log.texts(QtWarningMsg),
                     QStringList{QStringLiteral("X-Plane plugin connection has ended: the plugin went, or it sent "
                                                "more than 131072 bytes at once")});
            QVERIFY(!bench.link->isConnected());
        }
    }

    /// nng's own dialling stops for good when the connection ends just before the handshake: one time in three here.
    void diallingCanBeginAnew()
    {
        std::array<PluginBench, 8> benches;
        for (PluginBench &bench : benches) {
            QLocalServer rude;
            connect(&rude, &QLocalServer::newConnection, &rude, [&rude] { delete rude.nextPendingConnection(); });
            bench.useIpc();
            QVERIFY(rude.listen(bench.url().mid(6)));
            QSignalSpy rejected(&rude, &QLocalServer::newConnection);
            bench.open();
            TRY_VERIFY(!rejected.isEmpty());
        }
        std::vector<std::unique_ptr<QSignalSpy>> connections;
        for (PluginBench &bench : benches) {
            connections.push_back(std::make_unique<QSignalSpy>(bench.link.get(), &PluginLink::pluginConnected));
            bench.startPlugin();
            bench.link->dialAnew();
        }
        auto connected = connections.begin();
        for (PluginBench &bench : benches) {
            const auto arrives = [&bench] { // sent again and again: nng's own dialling may just have made a connection
                bench.link->send(message::version());
                return !bench.plugin->messages().isEmpty();
            };
            QTimer again; // the dialling may have stopped for good once more, while the plugin came
            connect(&again, &QTimer::timeout, bench.link.get(), &PluginLink::dialAnew);
            again.start(1000);
            TRY_VERIFY(arrives());
            again.stop();
            QSignalSpy &told = **connected++;
            TRY_VERIFY(!told.isEmpty()); // it may come behind the first message
            told.clear();
            bench.link->dialAnew(); // does nothing to a connection
            bench.link->send(message::removeAll());
            TRY_COMPARE(bench.plugin->messages().last(), message::removeAll());
            QCOMPARE(told.size(), 0);
        }
    }

    void diallingAnewNeedsASocket()
    {
        PluginLink link;
        link.dialAnew();
        QVERIFY(!link.isConnected());
    }

    void size_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("sent");
        QTest::newRow("1") << 1 << 1;
        QTest::newRow("65535") << 65535 << 65535;
        QTest::newRow("65536") << 65536 << 0;
        QTest::newRow("a million") << 1'000'000 << 0;
    }

    void size()
    {
        QFETCH(int, size);
        QFETCH(int, sent);
        RunningBench bench;
        bench.link->send(QByteArray(size, 'x'));
        TRY_COMPARE(bench.plugin->messages(), QList<QByteArray>{QByteArray(sent, 'x')});
    }

    void whatIsNoPositionIsNeverLost_data()
    {
        QTest::addColumn<bool>("opensFirst");
        QTest::newRow("before the opening") << false;
        QTest::newRow("while nobody reads") << true;
    }

    void whatIsNoPositionIsNeverLost()
    {
        QFETCH(bool, opensFirst);
        PluginBench bench;
        if (opensFirst)
            bench.open();
        QList<QByteArray> expected;
        for (int i = 0; i < 20'000; ++i) { // far more than the socket holds
            expected.append(addedMessage(i));
            bench.link->send(expected.last());
        }
        if (!opensFirst)
            bench.open();
        bench.startPlugin();
        TRY_COMPARE(bench.plugin->messages().size(), expected.size());
        QCOMPARE(bench.plugin->messages(), expected);
        bench.link->send(message::version()); // and on it goes
        TRY_COMPARE(bench.plugin->messages().last(), message::version());
    }

    void onlyTheNewestPositionWaits()
    {
        PluginBench bench;
        bench.open();
        QList<QByteArray> expected;
        for (int i = 0; i < socketHolds + 1; ++i) { // the last one waits for room in the socket
            expected.append(addedMessage(i));
            bench.link->send(expected.last());
        }
        const QString callsign = QStringLiteral("A");
        for (int i = 0; i < 1000; ++i) {
            bench.link->send({"position " + QByteArray::number(i), Kind::Position, callsign});
            bench.link->send({"other " + QByteArray::number(i)});
        }
        bench.link->send({"gone", Kind::Existence, QStringLiteral("B")});
        expected.append("position 999");
        for (int i = 0; i < 1000; ++i)
            expected.append("other " + QByteArray::number(i));
        expected.append("gone");
        bench.startPlugin();
        TRY_COMPARE(bench.plugin->messages().size(), expected.size());
        QCOMPARE(bench.plugin->messages(), expected);
    }

    void aPluginThatNeverReadsIsTold()
    {
        PluginBench bench;
        bench.open();
        QSignalSpy lost(bench.link.get(), &PluginLink::messagesLost);
        QTest::ignoreMessage(QtWarningMsg, "X-Plane plugin does not read: messages are lost until it does");
        const QByteArray large(60'000, 'x');
        const qsizetype tooMany = socketHolds + 1 + Outbox::mostBytes / large.size() + 1;
        for (qsizetype i = 0; i < socketHolds + 1; ++i)
            bench.link->send(addedMessage(0));
        for (qsizetype i = socketHolds + 1; i < tooMany + 10; ++i)
            bench.link->send(large);
        QCOMPARE(lost.size(), 0);
        bench.startPlugin();
        TRY_COMPARE(lost.size(), 1);
        bench.link->send(message::version());
        TRY_COMPARE(bench.plugin->messages().size(), socketHolds + 2);
        QCOMPARE(bench.plugin->messages().last(), message::version());
        QCOMPARE(lost.size(), 1);
    }

    void dialFailureIsTold_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("local");
        QTest::addColumn<QString>("error");
        QTest::newRow("here") << QStringLiteral("nonsense") << true
                              << QStringLiteral("Error dialing socket: Invalid argument");
        QTest::newRow("elsewhere") << QStringLiteral("tcp://::1:::1") << false
                                   << QStringLiteral("Error dialing socket (tcp://::1:::1): Address invalid");
        QTest::newRow("elsewhere, with signs") << QStringLiteral("tcp://%1/%2:%1/%2") << false
                                               << QStringLiteral("Error dialing socket (tcp://%1/%2:%1/%2): "
                                                                 "Invalid argument");
    }

    void dialFailureIsTold()
    {
        QFETCH(QString, url);
        QFETCH(bool, local);
        PluginLink link;
        QSignalSpy errors(&link, &PluginLink::socketError);
        link.open({.url = url, .local = local});
        QCOMPARE(errors.size(), 1);
        QTEST(errors.first().first().toString(), "error");
        QVERIFY(link.isReady()); // attempts go on and end in their time-out
        link.send(message::version());
    }

    void badMessagesAreDroppedAndTheNextOneCounts()
    {
        const LogCapture log;
        RunningBench bench;
        QSignalSpy reports(bench.link.get(), &PluginLink::reportReceived);
        TRY_VERIFY(bench.plugin->hasClient());
        bench.plugin->sendRaw(QByteArray());
        bench.plugin->sendRaw(QByteArrayLiteral("\xc1"));
        bench.plugin->sendRaw(QByteArrayLiteral("\x07"));
        bench.plugin->send(QStringLiteral("PING")); // unknown: neither dropped with a warning nor handed on
        bench.plugin->send(QStringLiteral("VER"), {QStringLiteral("text")});
        bench.plugin->sendRaw(addedMessage(1));
        TRY_COMPARE(reports.size(), 1);
        QVERIFY(reports.first().first().value<PluginReport>() == PluginReport(report::Added{QStringLiteral("1")}));
        QCOMPARE(droppedTotals(log), (QList<int>{1, 2, 3, 4}));
    }

    void malformedMessagesAreAllLoggedUntilThereAreTooMany()
    {
        const LogCapture log;
        RunningBench bench;
        QSignalSpy reports(bench.link.get(), &PluginLink::reportReceived);
        TRY_VERIFY(bench.plugin->hasClient());
        for (int i = 0; i < 100; ++i)
            bench.plugin->sendRaw(QByteArrayLiteral("\xc1"));
        bench.plugin->sendRaw(addedMessage(1));
        TRY_COMPARE(reports.size(), 1); // and the loop goes on
        QList<int> expected(20);
        std::iota(expected.begin(), expected.end(), 1);
        QCOMPARE(droppedTotals(log), expected << 40 << 80);
    }

    void floodArrivesWholeAndInOrder()
    {
        RunningBench bench;
        QStringList callsigns;
        connect(bench.link.get(), &PluginLink::reportReceived, this,
                [&](const PluginReport &one) { callsigns.append(std::get<report::Added>(one).callsign); });
        TRY_VERIFY(bench.plugin->hasClient());
        QStringList expected;
        for (int i = 0; i < 3000; ++i) { // far more than the inbox holds while this thread is busy here
            bench.plugin->sendRaw(addedMessage(i));
            expected.append(QString::number(i));
        }
        TRY_COMPARE(callsigns.size(), 3000);
        QCOMPARE(callsigns, expected);
    }

    void otherEventsGetTheirTurnInAFlood()
    {
        const DropCounter drops;
        RunningBench bench;
        int batches = 0;
        const auto sendBatch = [&](int size) {
            for (int i = 0; i < size; ++i)
                bench.plugin->sendRaw(addedMessage(i));
            bench.plugin->sendRaw(QByteArrayLiteral("\xc1")); // its line tells that those before it are in the inbox
            DropCounter::waitFor(++batches);
        };
        int seen = 0;
        int sinceTurn = 0;
        int mostSinceTurn = 0;
        QTimer other;
        connect(&other, &QTimer::timeout, this, [&] { sinceTurn = 0; });
        other.start(0);
        // The inbox is found empty a few times, and then never again until the end.
        connect(bench.link.get(), &PluginLink::reportReceived, this, [&] {
            mostSinceTurn = std::max(mostSinceTurn, ++sinceTurn);
            if (++seen < 5)
                sendBatch(1);
            else if (seen % 200 == 5 && seen < 1500)
                sendBatch(200);
        });
        TRY_VERIFY(bench.plugin->hasClient());
        sendBatch(1);
        TRY_COMPARE(seen, 1605);
        QVERIFY2(mostSinceTurn <= 256, qPrintable(QString::number(mostSinceTurn)));
    }

    /// As long as the main thread stands still.
    void whatTheInboxCantHoldIsDropped()
    {
        const DropCounter drops;
        RunningBench bench;
        QSignalSpy reports(bench.link.get(), &PluginLink::reportReceived);
        TRY_VERIFY(bench.plugin->hasClient());
        const QByteArray large = packPluginMessage(QStringLiteral("ADDED"), {QString(60'000, u'x')});
        const auto most = static_cast<qsizetype>(ReportInbox::mostBytes) / large.size();
        for (qsizetype i = 0; i < most + 5; ++i)
            bench.plugin->sendRaw(large);
        DropCounter::waitFor(5);
        TRY_COMPARE(reports.size(), most);
        bench.plugin->sendRaw(addedMessage(1));
        TRY_COMPARE(reports.size(), most + 1);
    }

    void aMessageThatIsTooLargeIsRefused()
    {
        const auto addedOfLength = [](int length) {
            return packPluginMessage(QStringLiteral("ADDED"), {QString(length, u'x')});
        };
        RunningBench bench;
        QList<qsizetype> lengths;
        connect(bench.link.get(), &PluginLink::reportReceived, this,
                [&](const PluginReport &one) { lengths.append(std::get<report::Added>(one).callsign.size()); });
        TRY_VERIFY(bench.plugin->hasClient());
        bench.plugin->sendRaw(addedOfLength(130'000));
        TRY_COMPARE(lengths, QList<qsizetype>{130'000});
        bench.plugin->sendRaw(addedOfLength(132'000));
        const auto theNextIsHere = [&] { // again and again: what goes into the connection that ends is lost
            bench.plugin->sendRaw(addedOfLength(1));
            return lengths.size() > 1;
        };
        TRY_VERIFY(theNextIsHere());
        QCOMPARE(lengths.at(1), 1);
    }

    void mayBeDestroyedBeforeOpening()
    {
        PluginBench bench;
        bench.startPlugin();
        bench.link->send(message::version());
        bench.link.reset();
        bench.link = std::make_unique<PluginLink>();
        bench.link->send(message::removeAll());
        bench.open();
        TRY_COMPARE(bench.plugin->messages(), QList<QByteArray>{message::removeAll()}); // nothing of the first one
    }

    void mayBeDestroyedWhileTheThreadWaits()
    {
        for (int i = 0; i < 30; ++i) {
            PluginBench bench;
            if (i % 2 == 0)
                bench.startPlugin();
            bench.open();
            if (i % 3 == 0)
                bench.link->send(message::version());
            if (i % 6 == 0)
                TRY_VERIFY(bench.plugin->hasClient());
            bench.link.reset(); // would hang if the thread did not leave
        }
    }

    void mayBeDestroyedInAFlood()
    {
        for (int i = 0; i < 20; ++i) {
            RunningBench bench;
            int seen = 0;
            connect(bench.link.get(), &PluginLink::reportReceived, this, [&seen] { ++seen; });
            TRY_VERIFY(bench.plugin->hasClient());
            for (int j = 0; j < 1000; ++j)
                bench.plugin->sendRaw(addedMessage(j));
            TRY_VERIFY(seen > i * 10);
            bench.link.reset(); // now the inbox is full or being filled
            TRY_VERIFY(!bench.plugin->hasClient());
        }
    }

    void mayBeDestroyedByAReceiver()
    {
        RunningBench bench;
        int seen = 0;
        connect(bench.link.get(), &PluginLink::reportReceived, this, [&] {
            ++seen;
            bench.link.reset(); // in the middle of its own signal, with further reports in the inbox
        });
        TRY_VERIFY(bench.plugin->hasClient());
        for (int i = 0; i < 10; ++i)
            bench.plugin->sendRaw(addedMessage(i));
        TRY_VERIFY(!bench.link);
        TRY_VERIFY(!bench.plugin->hasClient());
        QCOMPARE(seen, 1);
    }

private:
    /// The total that each line about a dropped message tells.
    static QList<int> droppedTotals(const LogCapture &log)
    {
        QList<int> totals;
        for (const QString &line : log.startingWith(QStringLiteral("X-Plane plugin message dropped: ")))
            totals << line.section(QStringLiteral(" total "), 1).toInt();
        return totals;
    }
};

TARVO_TEST(PluginLinkTest)
#include "PluginLinkTest.moc"

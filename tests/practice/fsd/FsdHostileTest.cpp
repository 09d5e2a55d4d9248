#include "Peers.h"
#include "support/ManualClock.h"
#include "support/Patience.h"
#include "support/TestRegistry.h"

#include <QSignalSpy>

#include <memory>
#include <random>
#include <vector>

using namespace tarvo::practice;
using namespace tarvo::test;

/// Whatever one client does, GOOD1 goes on being served.
class FsdHostileTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<FsdLineClient> m_good;

    FsdServer &fsd() { return m_network->fsd(); }
    void start(const PracticeSettings &settings)
    {
        m_good.reset();
        m_network = std::make_unique<PracticeNetwork>(settings, m_clock);
        QVERIFY(m_network->start());
        m_good = std::make_unique<FsdLineClient>(fsd());
        m_good->logIn("GOOD1", "1002");
        TRY_COMPARE(fsd().callsigns().size(), 1);
    }

private slots:
    void init() { start(quietSettings()); }

    void cleanup()
    {
        m_good->forget();
        m_good->send("$PIGOOD1:SERVER:still here");
        TRY_VERIFY(m_good->got("$POSERVER:GOOD1:still here\r\n"));
        m_good.reset();
        m_network.reset();
    }

    void aLongLineCostsTheLine()
    {
        FsdLineClient peer(fsd());
        peer.logIn("BAD1");
        peer.send("#TMBAD1:GOOD1:" + QByteArray(10'000, 'x'));
        peer.send("$CQBAD1:SERVER:IP");
        TRY_VERIFY(peer.got("$CRSERVER:BAD1:IP:"));
        QVERIFY(peer.got("$ERSERVER:BAD1:4::Line too long"));
        QVERIFY(!m_good->got("#TMBAD1"));
    }

    void aControlCharacterCostsTheLine()
    {
        FsdLineClient peer(fsd());
        peer.logIn("BAD1");
        peer.send(QByteArray("#TMBAD1:GOOD1:a\0b", 17));
        peer.send("#TMBAD1:GOOD1:a\nb");
        peer.send("#TMBAD1:GOOD1:last");
        TRY_VERIFY(m_good->got("#TMBAD1:GOOD1:last"));
        QCOMPARE(m_good->count("#TMBAD1"), 1);
        TRY_COMPARE(peer.count("$ERSERVER:BAD1:4::Control character"), 2);
        peer.socket.write("#DPBAD1:1001\r\n#TMBAD1:GOOD1:too late\r\n");
        TRY_VERIFY(peer.closed());
        settle(*m_good, "GOOD1");
        QVERIFY(!m_good->got("#TMBAD1:GOOD1:too late"));
    }

    void manyBadLinesCostTheConnection()
    {
        FsdLineClient peer(fsd());
        for (int i = 0; i < 60; ++i)
            peer.send("nonsense");
        TRY_VERIFY(peer.closed());
        QVERIFY(peer.got("$ERSERVER:unknown:4::Too many errors"));
        QCOMPARE(peer.count("$ER"), quietSettings().fsd.maxBadLines);
    }

    void aFloodCostsTheConnection_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("good lines") << QByteArray("$PIBAD1:SERVER:1\r\n").repeated(20'000);
        QTest::newRow("empty lines and a byte") << QByteArray("\r\nx\r\n").repeated(100'000);
        QTest::newRow("no line end") << QByteArray(8 << 20, 'x');
        QTest::newRow("zeros") << QByteArray(8 << 20, '\0');
    }

    void aFloodCostsTheConnection()
    {
        QFETCH(QByteArray, bytes);
        FsdLineClient peer(fsd());
        peer.logIn("BAD1");
        TRY_VERIFY(peer.got("#TM"));
        m_clock.advance(110'000); // a long silence saves nothing up
        peer.socket.write(bytes);
        TRY_VERIFY(peer.closed());
        TRY_COMPARE(fsd().connectionCount(), 1);
    }

    void whatComesBehindAGoodbyeIsNotHeard()
    {
        FsdLineClient peer(fsd());
        peer.logIn("BAD1");
        const QSignalSpy heard(&fsd(), &FsdServer::lineReceived);
        peer.send("#DPBAD1:1001\r\n$PIBAD1:SERVER:late");
        TRY_VERIFY(peer.closed());
        QCOMPARE(heard.last().at(1).toString(), u"#DPBAD1:1001"_qs);
    }

    void aClientThatNeverReadsIsCutOff_data()
    {
        QTest::addColumn<int>("maxQueuedBytes");
        QTest::addColumn<QString>("reason");
        QTest::newRow("too much piles up") << 64 * 1024 << u"doesn't read what is sent"_qs;
        QTest::newRow("sent away") << 64 * 1024 * 1024 << QString();
    }

    void aClientThatNeverReadsIsCutOff()
    {
        QFETCH(int, maxQueuedBytes);
        QFETCH(QString, reason);
        PracticeSettings settings = quietSettings();
        settings.fsd.maxQueuedBytes = maxQueuedBytes;
        settings.fsd.finishWithinMs = 0;
        start(settings);
        FsdLineClient deaf(fsd());
        deaf.logIn("BAD1");
        TRY_VERIFY(deaf.got("#TM"));
        QSignalSpy refused(&fsd(), &FsdServer::clientRefused);
        deaf.socket.setReadBufferSize(1);
        const QString text(3000, QLatin1Char('x'));
        // The system's own buffers take some megabytes before the queue grows.
        for (int i = 0; i < 6'000 && fsd().sendText(QStringLiteral("BAD1"), text); ++i)
            QCoreApplication::processEvents();
        if (reason.isEmpty())
            QVERIFY(fsd().kill(u"BAD1"_qs, {}));
        else
            TRY_COMPARE(refused.value(0).value(1).toString(), reason);
        TRY_COMPARE(fsd().connectionCount(), 1);
    }

    void tooManyClientsAreSentAway()
    {
        PracticeSettings settings = quietSettings();
        settings.fsd.maxClients = 4;
        start(settings);
        std::vector<std::unique_ptr<FsdLineClient>> peers;
        for (int i = 0; i < 30; ++i)
            peers.push_back(std::make_unique<FsdLineClient>(fsd()));
        const auto closed = [&] {
            return std::count_if(peers.begin(), peers.end(), [](const auto &peer) { return peer->closed(); });
        };
        TRY_COMPARE(closed(), 27);
        QVERIFY(std::any_of(peers.begin(), peers.end(),
                            [](const auto &peer) { return peer->got("$ERSERVER:unknown:12::Server full"); }));
    }

    void garbageIsHarmless()
    {
        std::mt19937 random(4711); // NOLINT: the same garbage every time
        const QByteArray alphabet = "#$@^%APDITMCQSBZR!:0123456789.-SERVERBAD1\x01\xff\r\n";
        for (int client = 0; client < 20; ++client) {
            FsdLineClient peer(fsd());
            peer.logIn("BAD1");
            QByteArray bytes;
            for (int i = 0; i < 3000; ++i)
                bytes += alphabet.at(static_cast<qsizetype>(random() % static_cast<unsigned>(alphabet.size())));
            peer.socket.write(bytes + "\r\n");
            TRY_VERIFY(peer.socket.bytesToWrite() == 0 || peer.closed());
            peer.socket.abort();
            TRY_COMPARE(fsd().connectionCount(), 1);
        }
    }

    void malformedLinesAreHarmless()
    {
        FsdLineClient peer(fsd());
        peer.logIn("BAD1");
        const QByteArrayList identifiers{"$ID", "#AP", "#AA", "^",   "#SL", "#ST", "%", "#TM", "#SB",
                                         "$CQ", "$CR", "$PI", "$PO", "$FP", "$",   "#", "@"};
        for (const QByteArray &identifier : identifiers) {
            peer.send(identifier + "BAD1");
            peer.send(identifier + "BAD1:");
        }
        TRY_COMPARE(peer.count("$ERSERVER:BAD1:"), 34);
        QVERIFY(!peer.closed());
    }
};

TARVO_TEST(FsdHostileTest)
#include "FsdHostileTest.moc"

#include "support/TestRegistry.h"
#include "voice/VoicePeer.h"

#include <QSignalSpy>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

using namespace tarvo::practice;
using namespace tarvo::test;

/// Whatever one client does, the user 1002 goes on being served.
class VoiceHostileTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<VoicePeer> m_good;

    VoiceServer &voice() { return m_network->voice(); }
    bool start(const VoiceSettings &settings)
    {
        m_good.reset();
        PracticeSettings all = quietSettings();
        all.voice = settings;
        m_network = std::make_unique<PracticeNetwork>(all);
        if (!m_network->start())
            return false;
        m_good = std::make_unique<VoicePeer>(voice());
        return m_good->join(m_network->tokens(), 1002) && m_good->tune(0, 118'500, true);
    }

private slots:
    void init() { QVERIFY(start({})); }

    void cleanup()
    {
        QVERIFY(m_good->settle());
        m_good.reset();
        m_network.reset();
    }

    void aBadLineCostsTheLine_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("no JSON") << QByteArray("hello");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("an array") << QByteArray("[]");
        QTest::newRow("a word for a number") << QByteArray(R"({"type":"ping","cid":"1"})");
        QTest::newRow("a number for a word") << QByteArray(R"({"type":1})");
        QTest::newRow("no UTF-8") << QByteArray("{\"type\":\"ping\",\"data\":\"\xff\"}");
        QTest::newRow("too long") << QByteArray(4097, 'x');
        QTest::newRow("no channel") << QByteArray(R"({"type":"channel","data":""})");
        QTest::newRow("channel without flag") << QByteArray(R"({"type":"channel","data":"118500"})");
        QTest::newRow("channel with another flag") << QByteArray(R"({"type":"channel","data":"118500:2"})");
        QTest::newRow("channel with more") << QByteArray(R"({"type":"channel","data":"118500:1:1"})");
        QTest::newRow("channel with a blank") << QByteArray(R"({"type":"channel","data":" 118500:1"})");
        QTest::newRow("negative channel") << QByteArray(R"({"type":"channel","data":"-1:1"})");
        QTest::newRow("channel beyond all") << QByteArray(R"({"type":"channel","data":"200000:1"})");
        QTest::newRow("channel beyond numbers") << QByteArray(R"({"type":"channel","data":"99999999999:1"})");
        QTest::newRow("nobody's transmitter") << QByteArray(R"({"type":"channel","transmitter":8,"data":"118500:1"})");
        QTest::newRow("negative transmitter") << QByteArray(R"({"type":"channel","transmitter":-1,"data":"118500:1"})");
    }

    void aBadLineCostsTheLine()
    {
        QFETCH(QByteArray, line);
        VoicePeer bad(voice());
        QVERIFY(bad.join(m_network->tokens(), 1001));
        for (int i = 1; i < VoiceSettings().maxBadLines; ++i)
            bad.send(line);
        QVERIFY(bad.settle());
        QCOMPARE(voice().receivers(118'500).size(), 1);
        bad.send(line);
        TRY_VERIFY(bad.closed());
        QVERIFY(bad.got("Too many errors"));
    }

    void theLongestLineIsRead()
    {
        VoicePeer pilot(voice());
        QVERIFY(pilot.join(m_network->tokens(), 1001));
        QByteArray line = "{\"type\":\"ping\",\"data\":\"";
        line += QByteArray(VoiceSettings().maxLineBytes - line.size() - 2, 'x') + "\"}";
        pilot.send(line);
        TRY_VERIFY(pilot.got("xxxx"));
    }

    void aFloodCostsTheConnection_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("good lines") << QByteArray("{\"type\":\"ping\"}\n").repeated(20'000);
        QTest::newRow("one line of 10 MB") << QByteArray(10 << 20, 'x');
        QTest::newRow("zeros") << QByteArray(8 << 20, '\0');
    }

    void aFloodCostsTheConnection()
    {
        QFETCH(QByteArray, bytes);
        VoicePeer bad(voice());
        QVERIFY(bad.join(m_network->tokens(), 1001));
        bad.write(bytes);
        TRY_VERIFY(bad.closed());
        TRY_COMPARE(voice().connectionCount(), 1);
    }

    void aClientThatNeverReadsIsCutOff()
    {
        VoicePeer deaf(voice());
        QVERIFY(deaf.join(m_network->tokens(), 1001));
        QSignalSpy refused(&voice(), &VoiceServer::clientRefused);
        deaf.tcp.setReadBufferSize(1);
        const QString text(3000, QLatin1Char('x'));
        // The system's own buffers take some megabytes before the queue grows.
        for (int i = 0; i < 20'000 && voice().sendError(QStringLiteral("U1001"), text); ++i)
            QCoreApplication::processEvents();
        TRY_COMPARE(refused.size(), 1);
        QCOMPARE(refused.at(0).at(1).toString(), QStringLiteral("doesn't read what is sent"));
        TRY_COMPARE(voice().connectionCount(), 1);
    }

    void tooManyClientsAreSentAway()
    {
        VoiceSettings settings;
        settings.maxClients = 4;
        QVERIFY(start(settings));
        std::vector<std::unique_ptr<VoicePeer>> peers;
        for (int i = 0; i < 30; ++i)
            peers.push_back(std::make_unique<VoicePeer>(voice()));
        const auto closed = [&] {
            return std::count_if(peers.begin(), peers.end(), [](const auto &peer) { return peer->closed(); });
        };
        TRY_COMPARE(closed(), 27);
        QVERIFY(std::any_of(peers.begin(), peers.end(), [](const auto &peer) { return peer->got("Server full"); }));
    }

    void garbageIsHarmless()
    {
        std::mt19937 random(4711); // NOLINT: the same garbage every time
        VoicePeer bad(voice());
        QVERIFY(bad.join(m_network->tokens(), 1001));
        for (int i = 0; i < 2000; ++i) {
            QByteArray bytes(static_cast<qsizetype>(random() % 64), Qt::Uninitialized);
            for (char &byte : bytes)
                byte = static_cast<char>(random() % 256);
            bad.sendDatagram(bytes);
        }
        QVERIFY(bad.settle());
        QVERIFY(m_good->datagrams.isEmpty());
    }

    void tooManyDatagramsAreDropped()
    {
        VoicePeer bad(voice());
        QVERIFY(bad.join(m_network->tokens(), 1001));
        QVERIFY(bad.tune(0, 118'500, true));
        QSignalSpy heard(&voice(), &VoiceServer::voiceReceived);
        for (int i = 0; i < 5'000; ++i)
            bad.speak(118'500, "x");
        QVERIFY(bad.settle());
        QVERIFY(!heard.isEmpty());
        QVERIFY2(heard.size() < 2'000, qPrintable(QString::number(heard.size())));
    }

    void anothersNumberFromElsewhereIsNotHim()
    {
        VoicePeer bad(voice());
        QVERIFY(bad.join(m_network->tokens(), 1001));
        QVERIFY(bad.tune(0, 118'500, true));
        QUdpSocket stranger;
        QVERIFY(stranger.bind(QHostAddress(QStringLiteral("127.0.0.2")), 0));
        stranger.writeDatagram(VoicePeer::datagram(2, 118'500, "FORGED", "x"), voice().address(), voice().udpPort());
        QVERIFY(bad.settle());
        bad.speak(118'500, "to the good one still");
        TRY_COMPARE(m_good->datagrams.size(), 1);
        QVERIFY(bad.datagrams.isEmpty());
    }
};

TARVO_TEST(VoiceHostileTest)
#include "VoiceHostileTest.moc"

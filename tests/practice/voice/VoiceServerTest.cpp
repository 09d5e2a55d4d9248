#include "practice/voice/VoiceServer.h"

#include "support/ManualClock.h"
#include "support/TestRegistry.h"
#include "voice/VoicePeer.h"

#include <QSignalSpy>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

/// What the server says and does for clients that keep to the protocol.
class VoiceServerTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;

    VoiceServer &voice() { return m_network->voice(); }
    TokenAuthority &tokens() { return m_network->tokens(); }
    std::unique_ptr<VoicePeer> peer(qint64 cid)
    {
        auto made = std::make_unique<VoicePeer>(voice());
        return made->join(tokens(), cid) ? std::move(made) : nullptr;
    }

private slots:
    void init()
    {
        m_network = std::make_unique<PracticeNetwork>(quietSettings(), m_clock);
        QVERIFY2(m_network->start(), qPrintable(m_network->errorString()));
    }

    void greetsAGoodToken()
    {
        VoicePeer pilot(voice());
        pilot.send(tokens().issue(TokenUse::Access, 1001));
        TRY_VERIFY(pilot.got("\n"));
        QCOMPARE(pilot.all(), QByteArray(R"({"callsign":"U1001","cid":1,"data":"SERVER:U1001:Welcome to the practice )"
                                         R"(network","transmitter":0,"type":"message"})"
                                         "\n"));
        QCOMPARE(voice().callsigns(), QStringList{QStringLiteral("U1001")});
    }

    void greetsUnderTheCallsignThatIsFlown()
    {
        FsdLineClient fsd(m_network->fsd());
        fsd.logIn("CCA1331", "1002");
        TRY_COMPARE(m_network->fsd().callsigns().size(), 1);
        const auto flies = peer(1002);
        const auto doesNot = peer(1001);
        QVERIFY(flies && doesNot);
        QVERIFY(flies->got("\"SERVER:CCA1331:Welcome"));
        QVERIFY(doesNot->got("\"SERVER:U1001:Welcome"));
    }

    void greetsWhoFliesOnTheSecondServer()
    {
        PracticeSettings settings = quietSettings();
        settings.secondAddress = QHostAddress(QStringLiteral("127.0.0.2"));
        m_network = std::make_unique<PracticeNetwork>(settings, m_clock);
        QVERIFY2(m_network->start(), qPrintable(m_network->errorString()));
        FsdLineClient fsd(*m_network->secondFsd());
        fsd.logIn("CCA1331", "1002");
        TRY_COMPARE(m_network->secondFsd()->callsigns().size(), 1);
        const auto flies = peer(1002);
        QVERIFY(flies && flies->got("\"SERVER:CCA1331:Welcome"));
    }

    void refusesBadTokens_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("no token") << u"words"_qs << QByteArray("Invalid token");
        QTest::newRow("an empty line") << u"empty"_qs << QByteArray("Invalid token");
        QTest::newRow("JSON at once") << u"json"_qs << QByteArray("Invalid token");
        QTest::newRow("of the FSD server") << u"fsd"_qs << QByteArray("Invalid token");
        QTest::newRow("a refresh token") << u"refresh"_qs << QByteArray("Invalid token");
        QTest::newRow("of another network") << u"foreign"_qs << QByteArray("Invalid token");
        QTest::newRow("of nobody") << u"nobody"_qs << QByteArray("Invalid token");
        QTest::newRow("with a carriage return") << u"cr"_qs << QByteArray("Invalid token");
        QTest::newRow("expired") << u"expired"_qs << QByteArray("Token expired");
        QTest::newRow("too long") << u"long"_qs << QByteArray("Not a token");
    }

    void refusesBadTokens()
    {
        QFETCH(QString, kind);
        QFETCH(QByteArray, text);
        TokenAuthority foreign(m_clock);
        const QByteArray good = tokens().issue(TokenUse::Access, 1001);
        const QByteArray ofNobody = tokens().issue(TokenUse::Access, 4711);
        tokens().setLife(TokenUse::Access, -1);
        const QHash<QString, QByteArray> lines{{u"words"_qs, "let me in"},
                                               {u"empty"_qs, ""},
                                               {u"json"_qs, R"({"type":"ping"})"},
                                               {u"fsd"_qs, tokens().issue(TokenUse::Fsd, 1001)},
                                               {u"refresh"_qs, tokens().issue(TokenUse::Refresh, 1001)},
                                               {u"foreign"_qs, foreign.issue(TokenUse::Access, 1001)},
                                               {u"nobody"_qs, ofNobody},
                                               {u"cr"_qs, good + '\r'},
                                               {u"expired"_qs, tokens().issue(TokenUse::Access, 1001)},
                                               {u"long"_qs, QByteArray(10'000, 'x')}};
        VoicePeer bad(voice());
        QSignalSpy heard(&voice(), &VoiceServer::lineReceived);
        bad.send(lines.value(kind));
        TRY_VERIFY(bad.closed());
        QCOMPARE(bad.all(), R"({"callsign":"","cid":0,"data":")" + text + R"(","transmitter":0,"type":"error"})" +
                                '\n' + R"({"callsign":"","cid":0,"data":"","transmitter":0,"type":"disconnect"})" +
                                '\n');
        TRY_COMPARE(voice().connectionCount(), 0);
        if (!heard.isEmpty())
            QCOMPARE(heard.at(0).at(1).toString(), QStringLiteral("******"));
    }

    void answersPings()
    {
        const auto pilot = peer(1001);
        QVERIFY(pilot);
        pilot->send(R"({"callsign":"U1001","cid":1,"data":"1700000000","transmitter":0,"type":"ping"})");
        TRY_VERIFY(pilot->got(R"({"callsign":"U1001","cid":1,"data":"1700000000","transmitter":0,"type":"pong"})"
                              "\n"));
    }

    void readsLinesHoweverTheyAreCut()
    {
        const auto pilot = peer(1001);
        QVERIFY(pilot);
        pilot->write("{\"type\":\"ping\",\"data\":\"on");
        QVERIFY(pilot->tcp.waitForBytesWritten());
        QCoreApplication::processEvents();
        pilot->write("e\"}\n{\"type\":\"ping\",\"data\":\"two\"}\n");
        TRY_VERIFY(pilot->got(R"("two")"));
        QVERIFY(pilot->all().indexOf(R"("one")") < pilot->all().indexOf(R"("two")"));
        QVERIFY(pilot->got(R"("one")"));
    }

    void relaysToThoseWhoReceive()
    {
        const auto speaker = peer(1001);
        const auto listener = peer(1002);
        const auto elsewhere = peer(1003);
        QVERIFY(speaker && listener && elsewhere);
        QVERIFY(speaker->tune(0, 118'500, true));
        QVERIFY(listener->tune(1, 118'500, true));
        QVERIFY(elsewhere->tune(0, 118'525, true));
        QVERIFY(elsewhere->tune(1, 118'500, false));
        QSignalSpy heard(&voice(), &VoiceServer::voiceReceived);
        speaker->speak(118'500, QByteArray::fromHex("0a0b0c"), "SOMEBODY");
        TRY_COMPARE(listener->datagrams.size(), 1);
        QCOMPARE(listener->datagrams.at(0).toHex(' '), // the callsign is the one that he was greeted by
                 QByteArray("01 00 00 00 00 e4 ce 01 00 05 55 31 30 30 31 0a 0b 0c 0a"));
        QCOMPARE(heard.size(), 1);
        QVERIFY(speaker->settle() && elsewhere->settle());
        QVERIFY(speaker->datagrams.isEmpty());
        QVERIFY(elsewhere->datagrams.isEmpty());
    }

    void relaysNothing_data()
    {
        QTest::addColumn<int>("tuned");
        QTest::addColumn<int>("spoken");
        QTest::addColumn<QByteArray>("payload");
        QTest::newRow("on a frequency that he hasn't tuned") << 118'500 << 121'900 << QByteArray("x");
        QTest::newRow("without voice") << 121'900 << 121'900 << QByteArray();
        QTest::newRow("longer than an Opus frame") << 121'900 << 121'900 << QByteArray(1'276, 'x');
    }

    void relaysNothing()
    {
        QFETCH(int, tuned);
        QFETCH(int, spoken);
        QFETCH(QByteArray, payload);
        const auto speaker = peer(1001);
        const auto listener = peer(1002);
        QVERIFY(speaker && listener);
        QVERIFY(speaker->tune(0, tuned, true));
        QVERIFY(speaker->tune(1, 122'800, false)); // not received, but spoken on
        QVERIFY(listener->tune(0, 121'900, true));
        QVERIFY(listener->tune(1, 122'800, true));
        speaker->speak(spoken, payload);
        speaker->speak(122'800, "last");
        TRY_COMPARE(listener->datagrams.size(), 1);
        QVERIFY(listener->datagrams.at(0).endsWith("last\n"));
    }

    void anotherTuningReplacesTheFirst()
    {
        const auto speaker = peer(1001);
        const auto listener = peer(1002);
        QVERIFY(speaker && listener);
        QVERIFY(speaker->tune(0, 118'500, true) && speaker->tune(1, 119'000, true));
        QVERIFY(listener->tune(0, 118'500, true));
        QVERIFY(listener->tune(0, 119'000, true));
        QCOMPARE(voice().receivers(118'500), QStringList{QStringLiteral("U1001")});
        speaker->speak(118'500, "gone");
        speaker->speak(119'000, "heard");
        TRY_COMPARE(listener->datagrams.size(), 1);
        QVERIFY(listener->datagrams.at(0).endsWith("heard\n"));
    }

    void aKeepAliveMayOvertakeItsToken()
    {
        const auto speaker = peer(1002);
        QVERIFY(speaker && speaker->tune(0, 118'500, true));
        VoicePeer pilot(voice());
        pilot.sendDatagram(VoicePeer::datagram(1, 0, {}, {}));
        QVERIFY(speaker->settle()); // the datagram has been read
        pilot.send(tokens().issue(TokenUse::Access, 1001));
        QVERIFY(pilot.tune(0, 118'500, true));
        speaker->speak(118'500, "x");
        TRY_COMPARE(pilot.datagrams.size(), 1);
    }

    void theSameUserAgainEndsTheFirst()
    {
        const auto first = peer(1001);
        QVERIFY(first);
        const auto second = peer(1001);
        QVERIFY(second);
        TRY_VERIFY(first->closed());
        QVERIFY(first->got("Connected from elsewhere"));
        QCOMPARE(voice().callsigns().size(), 1);
    }

    void theSameUserAgainIsHeardAtHisNewPlace()
    {
        const auto speaker = peer(1002);
        QVERIFY(speaker && speaker->tune(0, 118'500, true));
        const auto first = peer(1001);
        QVERIFY(first && first->tune(0, 118'500, true));
        VoicePeer second(voice());
        second.sendDatagram(VoicePeer::datagram(1, 0, {}, {}));
        QVERIFY(speaker->settle()); // the datagram has been read
        second.send(tokens().issue(TokenUse::Access, 1001));
        QVERIFY(second.tune(0, 118'500, true));
        speaker->speak(118'500, "x");
        TRY_COMPARE(second.datagrams.size(), 1);
        QVERIFY(first->datagrams.isEmpty());
    }

    void aDisconnectLineEndsTheSession()
    {
        const auto pilot = peer(1001);
        QVERIFY(pilot);
        pilot->send(R"({"callsign":"","cid":1,"data":"","transmitter":0,"type":"disconnect"})");
        TRY_VERIFY(pilot->closed());
        TRY_COMPARE(voice().connectionCount(), 0);
        QVERIFY(!pilot->got(R"("error")"));
    }

    void sendsAwayWhoTellsNoToken()
    {
        VoicePeer silent(voice());
        TRY_COMPARE(voice().connectionCount(), 1);
        m_clock.advance(VoiceSettings().tokenMs);
        voice().keepAlive();
        QCOMPARE(silent.all(), QByteArray());
        m_clock.advance(1);
        voice().keepAlive();
        TRY_VERIFY(silent.closed());
        QVERIFY(silent.got("No token"));
    }

    void sendsAwayWhoIsSilent()
    {
        const auto pilot = peer(1001);
        QVERIFY(pilot);
        m_clock.advance(VoiceSettings().silenceMs);
        voice().keepAlive();
        QVERIFY(pilot->settle()); // which is heard
        m_clock.advance(VoiceSettings().silenceMs + 1);
        voice().keepAlive();
        TRY_VERIFY(pilot->closed());
        QVERIFY(pilot->got("Not heard of for too long"));
    }
};

TARVO_TEST(VoiceServerTest)
#include "VoiceServerTest.moc"

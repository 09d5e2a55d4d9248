#include "e2e/Client.h"
#include "practice/voice/VoicePeople.h"
#include "support/LogCapture.h"
#include "support/TestRegistry.h"
#include "voice/engine/AudioHandler.h"

#include <memory>
#include <vector>

using namespace tarvo;
using namespace tarvo::test;
using voice::ConnectionState;
using voice::VoiceClient;

/// Somebody who can be heard: his client, and what he has heard.
class Talker
{
public:
    explicit Talker(Network &network) : client(network, Protocol::Classic) {}

    bool signIn(const QString &cid)
    {
        if (!client.signIn(QStringLiteral("practice"), cid))
            return false;
        QObject::connect(&voice(), &VoiceClient::voiceDataReceived, &voice(), [this](const QString &callsign, int kHz) {
            heard << QStringLiteral("%1 on %2").arg(callsign).arg(kHz);
        });
        QObject::connect(&voice(), &VoiceClient::errorOccurred, &voice(),
                         [this](const QString &error) { errors << error; });
        return true;
    }
    /// Who has no simulator observes.
    bool goOnline(const QString &callsign)
    {
        const bool observes = !client.manager->simulator();
        return client.manager->connectToNetwork(callsign, QStringLiteral("B738"), {}, observes) &&
               waitFor([this] { return !client.events.isEmpty(); });
    }
    bool connectVoice()
    {
        voice().connectToServer(token());
        return waitFor([this] { return voice().isReady(); });
    }
    void tune(quint32 kHz)
    {
        voice().updateTransmitter({.id = 0, .frequency = kHz, .transmit = true, .receive = true});
    }
    /// One frame, as the microphone's encoder gives it while the key is held.
    void say(const std::vector<std::uint8_t> &frame) { emit voice().audioHandler()->encodedAudioReady(frame); }

    QString token() const { return client.config.get(config::authToken); }
    VoiceClient &voice() { return client.manager->voiceClient(); }

    Client client;
    QStringList heard;
    QStringList errors;
};

/// The client's voice against the practice network's server, without sound devices: frames are put in where the
/// microphone's encoder gives them, and counted where they go to be played.
class VoiceTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<Network> m_network;
    std::unique_ptr<Talker> m_pilot;
    const std::vector<std::uint8_t> m_frame{0xF8, 0xFF, 0xFE}; ///< 20 ms of silence

    practice::VoiceServer &server() { return m_network->practice.voice(); }
    std::unique_ptr<Talker> join(const QString &cid, const QString &callsign)
    {
        auto talker = std::make_unique<Talker>(*m_network);
        const bool joined = talker->signIn(cid) && talker->goOnline(callsign) && talker->connectVoice();
        return joined ? std::move(talker) : nullptr;
    }
    void start(const practice::VoicePeopleSettings &people)
    {
        m_pilot.reset();
        practice::PracticeSettings settings = Network::quietSettings();
        settings.voicePeople = people;
        m_network = std::make_unique<Network>(common::systemClock(), settings);
        QVERIFY(m_network->started);
    }

private slots:
    void init() { start({.present = false}); }

    void cleanup()
    {
        m_pilot.reset();
        m_network.reset();
    }

    void isGreetedUnderTheCallsignThatFlies()
    {
        m_pilot = join(QStringLiteral("1001"), QStringLiteral("AB1"));
        QVERIFY(m_pilot);
        QCOMPARE(m_pilot->voice().callsign(), std::string("AB1"));
        QCOMPARE(server().callsigns(), QStringList{QStringLiteral("AB1")});
    }

    void tellsTheRadiosOnceReady()
    {
        m_pilot = std::make_unique<Talker>(*m_network);
        QVERIFY(m_pilot->signIn(QStringLiteral("1001")));
        QVERIFY(m_pilot->client.activateXPlane());
        QVERIFY(m_pilot->goOnline(QStringLiteral("AB1")));
        QVERIFY(m_pilot->connectVoice());
        TRY_COMPARE(server().receivers(118'500), QStringList{QStringLiteral("AB1")}); // COM1 of X-Plane's flight
        QVERIFY(m_network->practice.xplane().setValue(
            QStringLiteral("sim/cockpit2/radios/actuators/com1_frequency_hz_833"), 122'800.0F));
        TRY_COMPARE(server().receivers(122'800), QStringList{QStringLiteral("AB1")});
        QVERIFY(server().receivers(118'500).isEmpty());
    }

    void twoHearEachOther()
    {
        m_pilot = join(QStringLiteral("1001"), QStringLiteral("AB1"));
        const auto other = join(QStringLiteral("1002"), QStringLiteral("AB2"));
        QVERIFY(m_pilot && other);
        m_pilot->tune(121'900);
        other->tune(121'900);
        TRY_COMPARE(server().receivers(121'900).size(), 2);
        m_pilot->say(m_frame);
        TRY_COMPARE(other->heard, QStringList{QStringLiteral("AB1 on 121900")});
        other->say(m_frame);
        other->say(m_frame);
        TRY_COMPARE(m_pilot->heard.size(), 2);
        QCOMPARE(m_pilot->heard.at(1), QStringLiteral("AB2 on 121900"));
        QCOMPARE(other->heard.size(), 1); // nobody hears himself
        other->tune(118'500);
        TRY_COMPARE(server().receivers(121'900).size(), 1);
        m_pilot->say(m_frame);
        m_pilot->tune(118'500);
        TRY_COMPARE(server().receivers(118'500).size(), 2);
        m_pilot->say(m_frame);
        TRY_COMPARE(other->heard.size(), 2);
        QCOMPARE(other->heard.at(1), QStringLiteral("AB1 on 118500"));
    }

    void theTowerGreetsAndTheRadioCheckComesBack()
    {
        start({.greetingMs = 0, .answerMs = 300});
        m_pilot = join(QStringLiteral("1001"), QStringLiteral("AB1"));
        QVERIFY(m_pilot);
        m_pilot->tune(118'500);
        TRY_VERIFY(m_pilot->heard.size() > 50);
        QVERIFY(m_pilot->heard.contains(QStringLiteral("ZBAA_TWR on 118500")));
        m_pilot->tune(122'800);
        TRY_COMPARE(server().receivers(122'800).size(), 1);
        m_pilot->heard.clear();
        for (int i = 0; i < 7; ++i)
            m_pilot->say(m_frame);
        TRY_COMPARE(m_pilot->heard.count(QStringLiteral("RADIO_CHECK on 122800")), 7);
    }

    void theEndOfTheFlightEndsVoice()
    {
        m_pilot = join(QStringLiteral("1001"), QStringLiteral("AB1"));
        QVERIFY(m_pilot);
        m_pilot->client.manager->disconnectFromNetwork();
        TRY_COMPARE(m_pilot->voice().state(), ConnectionState::Disconnected);
        TRY_COMPARE(server().connectionCount(), 0);
        m_pilot->client.events.clear();
        QVERIFY(m_pilot->goOnline(QStringLiteral("AB7"))); // and a second session isn't silent
        QVERIFY(m_pilot->connectVoice());
        QCOMPARE(m_pilot->voice().callsign(), std::string("AB7"));
        m_pilot->tune(121'900);
        TRY_COMPARE(server().receivers(121'900), QStringList{QStringLiteral("AB7")});
        QVERIFY(server().say({.frequency = 121'900, .callsign = "CCA1", .payload = m_frame}));
        TRY_COMPARE(m_pilot->heard, QStringList{QStringLiteral("CCA1 on 121900")});
    }

    void aBadTokenIsTold()
    {
        m_pilot = std::make_unique<Talker>(*m_network);
        QVERIFY(m_pilot->signIn(QStringLiteral("1001")));
        m_network->practice.tokens().revokeAll();
        m_pilot->voice().connectToServer(m_pilot->token());
        TRY_COMPARE(m_pilot->errors, QStringList{QStringLiteral("Invalid token")});
        TRY_COMPARE(m_pilot->voice().state(), ConnectionState::Disconnected);
    }

    void theServerEndsTheSession_data()
    {
        QTest::addColumn<bool>("byLine");
        QTest::newRow("with a line") << true;
        QTest::newRow("without a word") << false;
    }

    void theServerEndsTheSession()
    {
        QFETCH(bool, byLine);
        m_pilot = join(QStringLiteral("1001"), QStringLiteral("AB1"));
        QVERIFY(m_pilot);
        QVERIFY(byLine ? server().sendDisconnect(QStringLiteral("AB1")) : server().drop(QStringLiteral("AB1")));
        TRY_COMPARE(m_pilot->voice().state(), ConnectionState::Disconnected);
        QVERIFY(m_pilot->connectVoice());
        m_pilot->tune(121'900);
        TRY_COMPARE(server().receivers(121'900).size(), 1);
    }

    void brokenBytesAreHarmless()
    {
        m_pilot = join(QStringLiteral("1001"), QStringLiteral("AB1"));
        QVERIFY(m_pilot);
        m_pilot->tune(121'900);
        TRY_COMPARE(server().receivers(121'900).size(), 1);
        QVERIFY(server().sendGarbage(QStringLiteral("AB1"), 500));
        QVERIFY(server().sendLine(QStringLiteral("AB1"), QStringLiteral("not json")));
        QVERIFY(server().sendBytes(QStringLiteral("AB1"), "{\"type\":\"er"));
        QVERIFY(server().sendBytes(QStringLiteral("AB1"), "ror\",\"data\":\"after all\"}\n"));
        TRY_COMPARE(m_pilot->errors, QStringList{QStringLiteral("after all")});
        const auto arrives = [this] {
            server().say({.frequency = 121'900, .callsign = "CCA1", .payload = m_frame});
            return !m_pilot->heard.isEmpty();
        };
        TRY_VERIFY(arrives());
        QVERIFY(m_pilot->voice().isReady());
    }

    void theTokenIsInNoLog()
    {
        const LogCapture log;
        m_pilot = join(QStringLiteral("1001"), QStringLiteral("AB1"));
        QVERIFY(m_pilot);
        m_pilot->client.manager->disconnectFromNetwork();
        TRY_COMPARE(m_pilot->voice().state(), ConnectionState::Disconnected);
        QVERIFY(!m_pilot->token().isEmpty());
        QVERIFY(log.contains(QStringLiteral("NetworkHandler: ")));
        QVERIFY(!log.contains(m_pilot->token()));
        QVERIFY(!m_pilot->client.networkLog().isEmpty());
        QVERIFY(!m_pilot->client.networkLog().contains(m_pilot->token()));
    }
};

TARVO_TEST(VoiceTest)
#include "VoiceTest.moc"

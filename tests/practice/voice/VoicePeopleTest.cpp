#include "practice/voice/VoicePeople.h"

#include "support/ManualClock.h"
#include "support/TestRegistry.h"
#include "voice/VoicePeer.h"
#include "voice/wire/VoicePacket.h"

#include <memory>
#include <string_view>

using namespace tarvo::practice;
using namespace tarvo::test;

/// Who speaks, when and to whom; the time is the test's.
class VoicePeopleTest : public QObject
{
    Q_OBJECT

    ManualClock m_clock;
    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<VoicePeer> m_pilot;

    VoicePeople &people() { return m_network->voicePeople(); }
    SpeechFrames phrase(const QString &name) { return *people().phrases().find(name); }
    bool start(const VoicePeopleSettings &settings)
    {
        m_pilot.reset();
        PracticeSettings all = quietSettings();
        all.voicePeople = settings;
        m_network = std::make_unique<PracticeNetwork>(all, m_clock);
        m_network->fsd().close(); // nobody is there who would be sent away while hours pass
        if (!m_network->start())
            return false;
        m_pilot = std::make_unique<VoicePeer>(m_network->voice());
        return m_pilot->join(m_network->tokens(), 1001);
    }
    /// Lets so much time pass, a millisecond at a time.
    void pass(int ms)
    {
        for (int i = 0; i < ms; ++i) {
            m_clock.advance(1);
            people().step();
            if (i % 100 == 0)
                m_pilot->readDatagrams();
        }
    }
    /// What has come to the pilot by now, once it has all arrived: a last frame tells.
    QList<tarvo::voice::VoicePacket> heard(int frequency)
    {
        const tarvo::voice::VoicePacket last{.frequency = frequency, .callsign = "LAST", .payload = {1}};
        m_network->voice().say(last);
        [&] { TRY_VERIFY(!m_pilot->datagrams.isEmpty() && m_pilot->datagrams.constLast().contains("LAST")); }();
        QList<tarvo::voice::VoicePacket> packets;
        for (const QByteArray &bytes : m_pilot->takeDatagrams())
            packets.append(*tarvo::voice::parseVoicePacket(reinterpret_cast<const std::uint8_t *>(bytes.constData()),
                                                           static_cast<std::size_t>(bytes.size())));
        if (!packets.isEmpty())
            packets.removeLast();
        return packets;
    }
    static SpeechFrames framesOf(const QList<tarvo::voice::VoicePacket> &packets)
    {
        SpeechFrames frames;
        for (const auto &packet : packets)
            frames.push_back(packet.payload);
        return frames;
    }
    /// Keys and says so many frames, 20 ms apart.
    void call(int frequency, int frames)
    {
        for (int i = 0; i < frames; ++i) {
            m_pilot->speak(frequency, "frame " + QByteArray::number(i));
            QVERIFY(m_pilot->settle());
            if (i + 1 < frames)
                pass(20);
        }
    }

private slots:
    void init() { QVERIFY(start({})); }

    void theTowerGreetsOnce()
    {
        QVERIFY(m_pilot->tune(0, 118'500, true));
        pass(1'499);
        QVERIFY(heard(118'500).isEmpty());
        const auto size = static_cast<int>(phrase(u"tower-greeting"_qs).size());
        pass(1 + 20 * (size - 1));
        const auto packets = heard(118'500);
        QCOMPARE(framesOf(packets), phrase(u"tower-greeting"_qs));
        QCOMPARE(packets.at(0).callsign, std::string("ZBAA_TWR"));
        QCOMPARE(packets.at(0).frequency, 118'500);
        QVERIFY(m_pilot->tune(0, 121'900, true));
        QVERIFY(m_pilot->tune(0, 118'500, true));
        pass(3'000);
        QVERIFY(heard(118'500).isEmpty());
    }

    void theTowerGreetsWhoComesAgain()
    {
        QVERIFY(m_pilot->tune(0, 118'500, true));
        pass(20'000);
        m_pilot = std::make_unique<VoicePeer>(m_network->voice());
        QVERIFY(m_pilot->join(m_network->tokens(), 1001));
        QVERIFY(m_pilot->tune(0, 118'500, true));
        pass(1'500);
        QCOMPARE(heard(118'500).size(), 1);
    }

    void theTowerGreetsNobody_data()
    {
        QTest::addColumn<int>("frequency");
        QTest::addColumn<bool>("receive");
        QTest::newRow("who doesn't listen") << 118'500 << false;
        QTest::newRow("on another frequency") << 118'525 << true;
    }

    void theTowerGreetsNobody()
    {
        QFETCH(int, frequency);
        QFETCH(bool, receive);
        QVERIFY(m_pilot->tune(0, frequency, receive));
        QVERIFY(m_pilot->tune(1, 119'000, true));
        pass(5'000);
        QVERIFY(heard(119'000).isEmpty());
    }

    void theTowerAnswersInTurn()
    {
        QVERIFY(start({.greetingMs = 0}));
        QVERIFY(m_pilot->tune(0, 118'500, true));
        pass(20'000);
        heard(118'500);
        for (const QString &answer :
             {u"tower-answer-1"_qs, u"tower-answer-2"_qs, u"tower-answer-3"_qs, u"tower-answer-1"_qs}) {
            call(118'500, 10);
            pass(999);
            QVERIFY(heard(118'500).isEmpty());
            pass(10'000);
            QCOMPARE(framesOf(heard(118'500)), phrase(answer));
        }
    }

    void aTouchOfTheKeyIsNoCall()
    {
        QVERIFY(start({.greetingMs = 0}));
        QVERIFY(m_pilot->tune(0, 118'500, true));
        pass(20'000);
        heard(118'500);
        call(118'500, 9);
        pass(5'000);
        QVERIFY(heard(118'500).isEmpty());
    }

    void theTowerWaitsUntilTheFrequencyIsFree()
    {
        QVERIFY(m_pilot->tune(0, 118'500, true));
        pass(1'400);
        call(118'500, 10); // over the moment at which he would greet
        pass(199);
        QVERIFY(heard(118'500).isEmpty());
        pass(1);
        QCOMPARE(heard(118'500).size(), 1);
    }

    void theAtisRunsWhileSomebodyListens()
    {
        QVERIFY(m_pilot->tune(0, 127'600, true));
        const SpeechFrames atis = phrase(u"atis"_qs);
        const int turn = 20 * static_cast<int>(atis.size() - 1);
        people().step();
        pass(1'000 + turn);
        QCOMPARE(framesOf(heard(127'600)), atis);
        people().step();
        pass(999);
        QVERIFY(heard(127'600).isEmpty());
        pass(1'001);
        QCOMPARE(heard(127'600).at(0).payload, atis.front());
        QVERIFY(m_pilot->tune(0, 127'600, false));
        QVERIFY(m_pilot->tune(1, 119'000, true));
        pass(5'000);
        QVERIFY(m_pilot->tune(0, 127'600, true)); // from the beginning
        people().step();
        pass(1'000);
        QCOMPARE(framesOf(heard(127'600)), SpeechFrames{atis.front()});
    }

    void theRadioCheckComesBack()
    {
        QVERIFY(m_pilot->tune(1, 122'800, true));
        call(122'800, 5);
        pass(999);
        QVERIFY(heard(122'800).isEmpty());
        pass(1);
        QCOMPARE(heard(122'800).size(), 1);
        pass(80);
        const auto rest = heard(122'800);
        QCOMPARE(rest.size(), 4);
        QCOMPARE(rest.at(0).callsign, std::string("RADIO_CHECK"));
        QCOMPARE(rest.at(0).frequency, 122'800);
        const std::string_view last = "frame 4";
        QCOMPARE(rest.at(3).payload, std::vector<std::uint8_t>(last.begin(), last.end()));
        pass(2'000);
        QVERIFY(heard(122'800).isEmpty());
    }

    void tellsWhoSpeaks()
    {
        QStringList told;
        connect(&people(), &VoicePeople::began, this, [&told](const QString &callsign, int frequency) {
            told << u"%1 on %2"_qs.arg(callsign).arg(frequency);
        });
        connect(&people(), &VoicePeople::ended, this, [&told](const QString &callsign, int frequency) {
            told << u"%1 off %2"_qs.arg(callsign).arg(frequency);
        });
        QVERIFY(m_pilot->tune(0, 122'800, true));
        call(122'800, 3);
        pass(1'100);
        QCOMPARE(told, (QStringList{u"U1001 on 122800"_qs, u"U1001 off 122800"_qs, u"RADIO_CHECK on 122800"_qs,
                                    u"RADIO_CHECK off 122800"_qs}));
        told.clear();
        QVERIFY(m_pilot->tune(0, 127'600, true));
        pass(2'000);
        QVERIFY(m_pilot->tune(0, 127'600, false));
        pass(1);
        QCOMPARE(told, (QStringList{u"ZBAA_ATIS on 127600"_qs, u"ZBAA_ATIS off 127600"_qs}));
    }

    void theRadioCheckKeepsHalfAMinute()
    {
        QVERIFY(m_pilot->tune(0, 122'800, true));
        for (int i = 0; i < 1'600; ++i) {
            m_pilot->speak(122'800, "x");
            if (i % 10 == 9)
                QVERIFY(m_pilot->settle());
            pass(20);
        }
        QVERIFY(m_pilot->settle());
        pass(1'000);
        heard(122'800);
        pass(60'000);
        const qsizetype rest = heard(122'800).size();
        QVERIFY2(rest >= 1'490 && rest < 1'500, qPrintable(QString::number(rest)));
    }

    void anybodySpeaks()
    {
        QVERIFY(m_pilot->tune(0, 121'500, true));
        QVERIFY(people().speak({u"CCA1"_qs, u"某人"_qs}, 121'500, u"radio-check"_qs));
        people().step();
        const auto packets = heard(121'500);
        QCOMPARE(packets.size(), 2);
        QCOMPARE(packets.at(0).callsign, std::string("CCA1"));
        QCOMPARE(packets.at(1).callsign, std::string("某人"));
        QVERIFY(!people().speak({u"CCA1"_qs}, 121'500, u"nothing"_qs));
        QVERIFY(!people().speak({u"CCA1"_qs}, 200'000, u"atis"_qs));
        QVERIFY(!people().speak({}, 121'500, u"atis"_qs));
        QVERIFY(!people().speak({QString()}, 121'500, u"atis"_qs));
        QVERIFY(!people().speak({QString(255, u'x')}, 121'500, u"atis"_qs));
    }

    void aCrowdSpeaksWithoutEnd()
    {
        QVERIFY(start({.present = false, .speakers = 40, .frequencies = 5}));
        QVERIFY(m_pilot->tune(0, 124'000, true));
        people().step();
        heard(124'000);
        pass(1'000);
        const auto packets = heard(124'000);
        QHash<QByteArray, int> byCallsign;
        for (const auto &packet : packets)
            ++byCallsign[QByteArray::fromStdString(packet.callsign)];
        QCOMPARE(byCallsign.size(), 8);
        for (const int count : byCallsign)
            QCOMPARE(count, 50);
        pass(60'000);
        QCOMPARE(heard(124'000).size(), 60 * 50 * 8);
    }

    void nobodySpeaksWhoIsNotThere()
    {
        QVERIFY(start({.present = false}));
        QVERIFY(m_pilot->tune(0, 118'500, true));
        QVERIFY(m_pilot->tune(1, 127'600, true));
        pass(5'000);
        QVERIFY(heard(118'500).isEmpty());
    }
};

TARVO_TEST(VoicePeopleTest)
#include "VoicePeopleTest.moc"

#include "practice/control/ControlService.h"
#include "support/TestRegistry.h"
#include "voice/VoicePeer.h"

#include <QJsonArray>

#include <memory>

using namespace tarvo::practice;
using namespace tarvo::test;

class VoiceVerbsTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<PracticeNetwork> m_network;
    std::unique_ptr<ControlService> m_control;
    std::unique_ptr<VoicePeer> m_pilot;

    bool perform(const QString &verb, const QString &arguments = {})
    {
        return m_control->perform(verb, QUrlQuery(arguments));
    }

private slots:
    void init()
    {
        m_pilot.reset();
        m_network = std::make_unique<PracticeNetwork>(quietSettings());
        m_control = std::make_unique<ControlService>(*m_network);
        QVERIFY2(m_network->start(), qPrintable(m_network->errorString()));
        m_pilot = std::make_unique<VoicePeer>(m_network->voice());
        QVERIFY(m_pilot->join(m_network->tokens(), 1001));
        QVERIFY(m_pilot->tune(0, 118'500, true));
    }

    void tellsWhoIsThere()
    {
        QCOMPARE(m_control->state().value(QLatin1String("voice")).toArray(), QJsonArray{QStringLiteral("U1001")});
        QVERIFY(m_control->state().value(QLatin1String("phrases")).toArray().contains(QStringLiteral("atis")));
    }

    void sendsLines_data()
    {
        QTest::addColumn<QString>("verb");
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("error") << u"voice-error"_qs << u"callsign=u1001&text=too loud"_qs
                               << QByteArray(
                                      "{\"callsign\":\"U1001\",\"cid\":1,\"data\":\"too loud\",\"transmitter\":0,"
                                      "\"type\":\"error\"}\n");
        QTest::newRow("disconnect") << u"voice-disconnect"_qs << u"callsign=U1001"_qs
                                    << QByteArray("{\"callsign\":\"U1001\",\"cid\":1,\"data\":\"\",\"transmitter\":0,"
                                                  "\"type\":\"disconnect\"}\n");
        QTest::newRow("any line") << u"voice-line"_qs << u"callsign=U1001&line=not json"_qs << QByteArray("not json\n");
        QTest::newRow("half a line") << u"voice-half"_qs << u"callsign=U1001&line={\"type\":\"po"_qs
                                     << QByteArray("{\"type\":\"po");
    }

    void sendsLines()
    {
        QFETCH(QString, verb);
        QFETCH(QString, arguments);
        QFETCH(QByteArray, bytes);
        const qsizetype before = m_pilot->all().size();
        QVERIFY(perform(verb, arguments));
        TRY_COMPARE(m_pilot->all().mid(before), bytes);
        QVERIFY(!m_pilot->closed());
    }

    void dropsTheConnection()
    {
        QVERIFY(perform(u"voice-drop"_qs, u"callsign=U1001"_qs));
        TRY_VERIFY(m_pilot->closed());
        QVERIFY(!m_pilot->got("disconnect"));
    }

    void stopsAnsweringAndGoesOn()
    {
        QVERIFY(perform(u"voice-mute"_qs));
        VoicePeer other(m_network->voice());
        other.number = 2;
        other.send(m_network->tokens().issue(TokenUse::Access, 1002));
        other.sendDatagram(VoicePeer::datagram(2, 0, {}, {}));
        other.send(R"({"type":"channel","data":"118500:1"})");
        other.send(R"({"type":"ping","data":"unanswered"})");
        TRY_COMPARE(m_network->voice().receivers(118'500).size(), 2);
        QVERIFY(!m_network->voice().say({.frequency = 118'500, .callsign = "A", .payload = {1}}));
        QVERIFY(perform(u"voice-mute"_qs, u"on=0"_qs));
        QVERIFY(m_pilot->settle() && other.settle());
        QVERIFY(!other.got("unanswered"));
        QVERIFY(!other.got("Welcome"));
        other.speak(118'500, "x");
        TRY_COMPARE(m_pilot->datagrams.size(), 1);
    }

    void sendsGarbage()
    {
        QVERIFY(perform(u"voice-garbage"_qs, u"callsign=U1001&count=20"_qs));
        TRY_COMPARE(m_pilot->datagrams.size(), 20);
    }

    void letsTwoSpeakAtOnce()
    {
        QVERIFY(perform(u"voice-speak"_qs, u"as=CCA1&and=CES2&frequency=118500&phrase=tower-answer-1"_qs));
        TRY_VERIFY(m_pilot->datagrams.size() >= 4);
        QVERIFY(m_pilot->datagrams.at(0).contains("CCA1"));
        QVERIFY(m_pilot->datagrams.at(1).contains("CES2"));
    }

    void changesTheWeather()
    {
        QVERIFY(perform(u"voice-weather"_qs, u"loss=1.5&jitter=30&duplicate=100"_qs));
        QCOMPARE(m_network->voice().weather().lossPercent, 1.5);
        QCOMPARE(m_network->voice().weather().jitterMs, 30);
        QVERIFY(perform(u"voice-weather"_qs, u"duplicate=100"_qs));
        QCOMPARE(m_network->voice().weather().jitterMs, 0);
        m_network->voice().say({.frequency = 118'500, .callsign = "A", .payload = {1}});
        TRY_COMPARE(m_pilot->datagrams.size(), 2);
        QCOMPARE(m_pilot->datagrams.at(0), m_pilot->datagrams.at(1));
        QVERIFY(perform(u"voice-weather"_qs));
        QCOMPARE(m_network->voice().weather().duplicatePercent, 0.0);
    }

    void refusesVoice_data()
    {
        QTest::addColumn<QString>("verb");
        QTest::addColumn<QString>("arguments");
        QTest::newRow("error to nobody") << u"voice-error"_qs << u"callsign=XY1"_qs;
        QTest::newRow("drop nobody") << u"voice-drop"_qs << QString();
        QTest::newRow("garbage to nobody") << u"voice-garbage"_qs << u"callsign=XY1&count=1"_qs;
        QTest::newRow("no garbage") << u"voice-garbage"_qs << u"callsign=U1001&count=0"_qs;
        QTest::newRow("too much garbage") << u"voice-garbage"_qs << u"callsign=U1001&count=10001"_qs;
        QTest::newRow("nobody speaks") << u"voice-speak"_qs << u"frequency=118500"_qs;
        QTest::newRow("nobody else speaks") << u"voice-speak"_qs << u"as=A&and=&frequency=118500"_qs;
        QTest::newRow("speaks nowhere") << u"voice-speak"_qs << u"as=A"_qs;
        QTest::newRow("speaks too high") << u"voice-speak"_qs << u"as=A&frequency=200000"_qs;
        QTest::newRow("says nothing known") << u"voice-speak"_qs << u"as=A&frequency=118500&phrase=x"_qs;
        QTest::newRow("loss of letters") << u"voice-weather"_qs << u"loss=x"_qs;
        QTest::newRow("loss of more than all") << u"voice-weather"_qs << u"loss=101"_qs;
        QTest::newRow("duplicates that are no number") << u"voice-weather"_qs << u"duplicate=nan"_qs;
        QTest::newRow("jitter below nothing") << u"voice-weather"_qs << u"jitter=-1"_qs;
    }

    void refusesVoice()
    {
        QFETCH(QString, verb);
        QFETCH(QString, arguments);
        QVERIFY(!perform(verb, arguments));
    }
};

TARVO_TEST(VoiceVerbsTest)
#include "VoiceVerbsTest.moc"

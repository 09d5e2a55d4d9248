#include "e2e/ComposedClient.h"
#include "support/NoSound.h"
#include "support/TestRegistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrlQuery>

using namespace tarvo;
using namespace tarvo::test;
using manager::NetworkManager;
using Arguments = QList<QPair<QString, QString>>;

namespace {

/// A practice network that runs as a program of its own, maybe of another system. scripts/lib/practice_apart.py starts
/// it, and tells by the environment where it is.
class ApartNetwork
{
public:
    static bool isThere() { return qEnvironmentVariableIsSet("TARVO_APART_HTTP_PORT"); }

    Place place() const
    {
        Place place;
        place.endpoints.apiBaseUrl = m_http + u"/api"_qs;
        place.endpoints.fsdHost = u"127.0.0.1"_qs;
        place.endpoints.fsdPort = port("FSD");
        place.endpoints.voiceHost = u"127.0.0.1"_qs;
        place.endpoints.voiceTcpPort = port("VOICE");
        place.endpoints.voiceUdpPort = port("VOICE_UDP");
        place.endpoints.localPluginUrl = u"tcp://127.0.0.1:%1"_qs.arg(port("PLUGIN"));
        place.xplanePort = port("XPLANE");
        return place;
    }

    /// Does one of the things that can be asked of it.
    bool perform(const QString &verb, const Arguments &arguments = {})
    {
        QUrl url(m_http + u"/practice/"_qs + verb);
        QUrlQuery query;
        for (const auto &[name, value] : arguments)
            query.addQueryItem(name, QString::fromLatin1(QUrl::toPercentEncoding(value)));
        url.setQuery(query);
        return answer(m_http_client.post(QNetworkRequest(url), QByteArray())).value(u"done"_qs).toBool();
    }

    QJsonObject state() { return answer(m_http_client.get(QNetworkRequest(QUrl(m_http + u"/practice"_qs)))); }
    bool tells(const QString &list, const QString &entry) { return state().value(list).toArray().contains(entry); }

    /// The drawn aircraft of that callsign; empty when there is none.
    QJsonObject drawn(const QString &callsign)
    {
        const QJsonArray all = state().value(u"aircraft"_qs).toArray();
        for (const QJsonValue &aircraft : all) {
            if (aircraft[u"callsign"].toString() == callsign)
                return aircraft.toObject();
        }
        return {};
    }

private:
    static quint16 port(const char *name)
    {
        return static_cast<quint16>(qEnvironmentVariableIntValue(QByteArray("TARVO_APART_") + name + "_PORT"));
    }

    static QJsonObject answer(QNetworkReply *reply)
    {
        waitFor([reply] { return reply->isFinished(); });
        const QJsonObject object = QJsonDocument::fromJson(reply->readAll()).object();
        reply->deleteLater();
        return object;
    }

    QString m_http = u"http://127.0.0.1:%1"_qs.arg(port("HTTP"));
    QNetworkAccessManager m_http_client;
};

/// A client on that network.
struct Pilot
{
    ApartNetwork &network;
    Client client{network.place(), Protocol::Classic};

    explicit Pilot(ApartNetwork &apart) : network(apart) {}

    bool fly()
    {
        return client.signIn() && client.activateXPlane() && client.connectPilot() &&
               waitFor([this] { return client.events == QStringList{u"connected AB1"_qs}; }) &&
               waitFor([this] { return network.tells(u"callsigns"_qs, u"AB1"_qs); });
    }
    ~Pilot()
    {
        if (client.manager)
            client.signOut();
        waitFor([this] { return !network.tells(u"callsigns"_qs, u"AB1"_qs); });
    }
};

} // namespace

/// The composed client, all but the windows, and the practice network as two programs that share nothing but loopback:
/// a client for Windows meets one of Linux here.
class ApartTest : public QObject
{
    Q_OBJECT

    ApartNetwork m_network;

    bool join(const QString &callsign, const QString &as)
    {
        return m_network.perform(u"join"_qs, {{u"callsign"_qs, callsign}, {u"as"_qs, as}, {u"cid"_qs, u"2001"_qs}});
    }
    bool speak(const QString &callsign, const QString &line)
    {
        return m_network.perform(u"speak"_qs, {{u"callsign"_qs, callsign}, {u"line"_qs, line}});
    }

private slots:
    void initTestCase()
    {
        if (!ApartNetwork::isThere())
            QSKIP("scripts/lib/practice_apart.py starts it with a network");
        leaveSoundAlone();
    }

    void thePasswordIsChecked()
    {
        Pilot pilot(m_network);
        bool answered = false;
        bool accepted = true;
        pilot.client.api.login(u"1001"_qs, u"wrong"_qs, [&](bool success, const QString &) {
            answered = true;
            accepted = success;
        });
        TRY_VERIFY(answered);
        QVERIFY(!accepted);
    }

    void othersAreToldOfTheFlight()
    {
        Pilot pilot(m_network);
        QVERIFY(pilot.fly());
        pilot.client.fire("slowTimer");
        QVERIFY(m_network.perform(u"fast"_qs, {{u"callsign"_qs, u"AB1"_qs}}));
        TRY_VERIFY(pilot.client.isRunning("fastTimer"));
        TRY_VERIFY(pilot.client.networkLog().contains(QRegularExpression(u"[\\^]AB1:40\\.\\d+:116\\."_qs)));
        TRY_VERIFY(pilot.client.networkLog().contains(QRegularExpression(u"@[SN]:AB1:2000:1:40\\.\\d+:116\\."_qs)));
    }

    void anotherAircraftIsDrawn()
    {
        Pilot pilot(m_network);
        QVERIFY(pilot.fly() && join(u"CCA981"_qs, u"pilot"_qs));
        const QString place = u":40.066667:116.600000:"_qs;
        QVERIFY(speak(u"CCA981"_qs, u"@N:CCA981:2000:1"_qs + place + u"3000:180:4173390848:100"_qs));
        QVERIFY(speak(u"CCA981"_qs, u"#SBCCA981:AB1:PI:GEN:EQUIPMENT=B738"_qs));
        TRY_COMPARE(m_network.drawn(u"CCA981"_qs).value(u"type"_qs).toString(), u"B738"_qs);
        QVERIFY(speak(u"CCA981"_qs, u"^CCA981"_qs + place +
                                        u"3000.00:0.00:4173390848:3.0000:0.0000:4.0000:0.0000:0.0000:0.0000:0.00"_qs));
        TRY_VERIFY(m_network.drawn(u"CCA981"_qs).value(u"positions"_qs).toInt() > 0);
        QVERIFY(m_network.perform(u"leave"_qs, {{u"callsign"_qs, u"CCA981"_qs}}));
        TRY_VERIFY(m_network.drawn(u"CCA981"_qs).isEmpty());
    }

    void textGoesBothWays()
    {
        Pilot pilot(m_network);
        QVERIFY(pilot.fly());
        QSignalSpy told(pilot.client.manager.get(), &NetworkManager::serverMessageReceived);
        QVERIFY(m_network.perform(u"text"_qs, {{u"callsign"_qs, u"AB1"_qs}, {u"text"_qs, u"Good evening"_qs}}));
        TRY_VERIFY(!told.isEmpty() && told.last().first().toString().contains(u"Good evening"_qs));
        QVERIFY(m_network.perform(u"say-private"_qs, {{u"to"_qs, u"SERVER"_qs}, {u"text"_qs, u"the same to you"_qs}}));
        TRY_VERIFY(pilot.client.networkLog().contains(u"#TMAB1:SERVER:the same to you"_qs));
    }

    void voiceIsHeard()
    {
        Pilot pilot(m_network);
        QVERIFY(pilot.fly());
        voice::VoiceClient &voice = pilot.client.manager->voiceClient();
        QStringList heard;
        connect(&voice, &voice::VoiceClient::voiceDataReceived, this,
                [&heard](const QString &callsign, int kHz) { heard << u"%1 on %2"_qs.arg(callsign).arg(kHz); });
        voice.connectToServer(pilot.client.config.get(config::authToken));
        TRY_VERIFY(voice.isReady());
        TRY_VERIFY(m_network.tells(u"voice"_qs, u"AB1"_qs));
        voice.updateTransmitter({.id = 0, .frequency = 123450, .transmit = true, .receive = true});
        const auto speaks = [this] {
            return m_network.perform(u"voice-speak"_qs, {{u"as"_qs, u"CCA981"_qs}, {u"frequency"_qs, u"123450"_qs}});
        };
        QVERIFY(speaks());
        TRY_VERIFY(heard.contains(u"CCA981 on 123450"_qs));
    }

    void aKillEndsTheSession()
    {
        Pilot pilot(m_network);
        QVERIFY(pilot.fly());
        pilot.client.events.clear();
        QVERIFY(m_network.perform(u"kill"_qs, {{u"callsign"_qs, u"AB1"_qs}, {u"reason"_qs, u"Inactive"_qs}}));
        TRY_EVENTS(pilot.client, u"disconnected forced"_qs);
        QVERIFY(pilot.client.notifications.join(u' ').contains(u"Inactive"_qs));
    }
};

TARVO_TEST(ApartTest)
#include "ApartTest.moc"

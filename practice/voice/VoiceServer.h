#pragma once

#include "common/Clock.h"
#include "practice/voice/VoiceSettings.h"
#include "practice/voice/Weather.h"
#include "voice/wire/VoicePacket.h"

#include <QHostAddress>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QUdpSocket>

#include <functional>
#include <memory>
#include <random>

class QTcpServer;

namespace tarvo::voice {
struct ControlMessage;
}

namespace tarvo::practice {

class AccountBook;
class TokenAuthority;
class VoiceSession;

/// The voice server: tokens, greeting, channel lines and pings over TCP, voice over UDP to everybody else who receives
/// the frequency. Any number of clients up to the limit; what one of them sends can cost itself its line, its datagram
/// or its connection and nothing else. Who tells a user's number in a datagram is believed to be that user, if he sends
/// from the address of that user's connection.
class VoiceServer : public QObject
{
    Q_OBJECT

public:
    /// The callsign under which the user of a CID flies now; empty when he doesn't.
    using CallsignOf = std::function<QString(qint64 cid)>;

    VoiceServer(const AccountBook &accounts, const TokenAuthority &tokens, CallsignOf callsignOf,
                VoiceSettings settings = {}, const common::Clock &clock = common::systemClock(),
                QObject *parent = nullptr);
    ~VoiceServer() override;

    /// Starts to serve; port 0 takes a free one. Returns false when a port can't be had; see errorString().
    bool listen(const QHostAddress &address, quint16 tcpPort, quint16 udpPort);
    /// Ends every session and stops listening.
    void close();
    quint16 tcpPort() const;
    quint16 udpPort() const;
    QHostAddress address() const;
    /// Names the port.
    QString errorString() const { return m_error; }

    /// Those greeted, in the order of their connections.
    QStringList callsigns() const;
    /// Those of callsigns() that receive a frequency, in kHz.
    QStringList receivers(int frequency) const;
    /// Connections, greeted or not.
    int connectionCount() const { return static_cast<int>(m_sessions.size()); }

    /// Sends away who is past a time limit. Called by a timer; a test with a clock of its own may call it.
    void keepAlive();
    /// Sends the datagrams whose delay is over; likewise.
    void sendDue();

    /// Sends voice that is nobody's here to everybody who receives its frequency. False when nobody does.
    bool say(const voice::VoicePacket &packet);

    // What a developer breaks things with. All take the callsign of a client that was greeted, in upper case, and
    // return false when there is none.

    bool sendError(const QString &callsign, const QString &text);
    /// A disconnect line; the connection stays.
    bool sendDisconnect(const QString &callsign);
    /// Any line, without its line end.
    bool sendLine(const QString &callsign, const QString &line);
    /// Any bytes as they stand, such as half a line.
    bool sendBytes(const QString &callsign, const QByteArray &bytes);
    /// The control connection is cut without a word.
    bool drop(const QString &callsign);
    /// So many datagrams of random bytes; false also when none has come from the client yet.
    bool sendGarbage(const QString &callsign, int count);
    /// Listens and says nothing: no greeting, no pong, no voice.
    void setMute(bool mute) { m_mute = mute; }
    void setWeather(const WeatherSettings &weather) { m_weather.change(weather); }
    const WeatherSettings &weather() const { return m_weather.settings(); }

signals:
    /// A line came or went, without its line end; a token stands as "******". `client` is the callsign, or address and
    /// port before the greeting.
    void lineReceived(const QString &client, const QString &line);
    void lineSent(const QString &client, const QString &line);
    void clientConnected(const QString &client);
    void clientGreeted(const QString &callsign);
    /// A session was refused or cut off, and why.
    void clientRefused(const QString &client, const QString &reason);
    void clientLeft(const QString &client);
    /// A client told what a transmitter is tuned to, which may be what it was.
    void tuned(const QString &callsign, int frequency, bool receive);
    /// A client speaks on a frequency that he has tuned.
    void voiceReceived(const QString &callsign, const tarvo::voice::VoicePacket &packet);

private:
    /// Where a datagram came from whose number nobody had yet: it may overtake its client's token. Or somebody who is
    /// gone had it: then it may have overtaken his end, too.
    struct EarlyDatagram
    {
        quint32 number;
        VoiceEndpoint from;
    };

    void acceptConnections();
    void attach(VoiceSession *session);
    void remove(VoiceSession *session);
    void hear(VoiceSession &session, const QByteArray &line);
    void checkToken(VoiceSession &session, const QByteArray &token);
    void greet(VoiceSession &session);
    void obey(VoiceSession &session, const voice::ControlMessage &message);
    void readDatagrams();
    void hearDatagram(const voice::VoicePacket &packet, const VoiceEndpoint &from);
    void rememberPlace(const EarlyDatagram &datagram);
    bool relay(const voice::VoicePacket &packet, const VoiceSession *sender);
    void send(const VoiceDatagram &datagram);
    VoiceSession *find(const QString &callsign) const;
    bool with(const QString &callsign, const std::function<void(VoiceSession &)> &action);

    const AccountBook &m_accounts;
    const TokenAuthority &m_tokens;
    CallsignOf m_callsignOf;
    VoiceSettings m_settings;
    const common::Clock &m_clock;
    std::unique_ptr<QTcpServer> m_server;
    QUdpSocket m_udp;
    QList<VoiceSession *> m_sessions; ///< children
    QList<EarlyDatagram> m_early;
    Weather m_weather;
    std::mt19937 m_garbage{4711}; // NOLINT: the same garbage every time
    QTimer m_keepAlive;
    QTimer m_delays;
    QString m_error;
    bool m_mute = false;
};

} // namespace tarvo::practice

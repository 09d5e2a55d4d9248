#pragma once

#include "common/Clock.h"
#include "practice/LineReader.h"
#include "practice/voice/Allowance.h"
#include "practice/voice/TunedRadios.h"
#include "practice/voice/VoiceSettings.h"
#include "practice/voice/Weather.h"
#include "voice/wire/ControlMessage.h"

#include <QObject>
#include <QString>
#include <QTcpSocket>

namespace tarvo::practice {

/// One control connection to the voice server, and what is known of the client behind it.
class VoiceSession : public QObject
{
    Q_OBJECT

public:
    /// Takes the socket over. Settings and clock must outlive it.
    VoiceSession(QTcpSocket *socket, const VoiceSettings &settings, const common::Clock &clock, QObject *parent);
    ~VoiceSession() override;

    /// The callsign, or address and port before the greeting.
    QString name() const;
    QHostAddress peerAddress() const;
    /// False from the moment on at which the session is to end.
    bool isOpen() const { return !m_ending; }
    /// True once its token was found good.
    bool isKnown() const { return cid != 0; }

    /// Sends one line under the client's number and callsign.
    void send(voice::ControlMessageType type, const QString &data);
    /// Sends bytes as they stand. A client that doesn't read is cut off.
    void sendBytes(const QByteArray &bytes);
    /// Counts a line that was of no use, and ends the session when it is one too many.
    void complain();
    /// An error line and a disconnect line, then the end.
    void refuse(const QString &text);
    /// Ends the session once everything is written.
    void finish();
    /// Ends the session at once.
    void cutOff(const QString &reason);
    /// Ends the session at once without giving a reason.
    void drop();

    qint64 cid = 0;     ///< of the token
    quint32 number = 0; ///< the account's, with which the client's datagrams begin
    QString callsign;
    TunedRadios radios;
    VoiceEndpoint endpoint; ///< port 0 until a datagram has come
    Allowance datagrams;
    qint64 connectedMs = 0; ///< steady time, as is the other
    qint64 heardMs = 0;

signals:
    void lineReceived(const QByteArray &line);
    void lineSent(const QString &line);
    void refused(const QString &reason);
    void ended();

private:
    void read();

    const VoiceSettings &m_settings;
    const common::Clock &m_clock;
    QTcpSocket *m_socket; ///< a child
    LineReader m_reader;
    QString m_peer;
    Allowance m_lines;
    int m_badLines = 0;
    bool m_ending = false;
};

} // namespace tarvo::practice

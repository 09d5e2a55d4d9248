#include "practice/voice/VoiceSession.h"

#include <QHostAddress>
#include <QTimer>

namespace tarvo::practice {

using voice::ControlMessage;
using voice::ControlMessageType;

namespace {
constexpr qsizetype readBufferBytes = 64 * 1024;
constexpr qsizetype bytesThatCostALine = 1024; // so that endless bytes without a line end count, too
constexpr int finishWithinMs = 2000;
} // namespace

VoiceSession::VoiceSession(QTcpSocket *socket, const VoiceSettings &settings, const common::Clock &clock,
                           QObject *parent)
    : QObject(parent),
      datagrams(settings.maxDatagramsPerSecond, clock.steadyMs()),
      connectedMs(clock.steadyMs()),
      heardMs(connectedMs),
      m_settings(settings),
      m_clock(clock),
      m_socket(socket),
      m_reader(QByteArrayLiteral("\n"), settings.maxLineBytes),
      m_peer(QStringLiteral("%1:%2").arg(socket->peerAddress().toString()).arg(socket->peerPort())),
      m_lines(settings.maxLinesPerSecond, connectedMs)
{
    m_socket->setParent(this);
    m_socket->setReadBufferSize(readBufferBytes);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this, &VoiceSession::read);
    connect(m_socket, &QTcpSocket::disconnected, this, [this] {
        m_ending = true;
        emit ended();
    });
}

VoiceSession::~VoiceSession()
{
    m_socket->disconnect(this);
}

QString VoiceSession::name() const
{
    return callsign.isEmpty() ? m_peer : callsign;
}

QHostAddress VoiceSession::peerAddress() const
{
    return m_socket->peerAddress();
}

void VoiceSession::read()
{
    const QByteArray chunk = m_socket->readAll();
    heardMs = m_clock.steadyMs();
    const QList<QByteArray> lines = m_reader.feed(chunk);
    if (m_ending)
        return;
    const qsizetype cost = lines.size() + chunk.size() / bytesThatCostALine;
    if (!m_lines.take(static_cast<double>(cost), heardMs)) {
        cutOff(QStringLiteral("too many lines"));
        return;
    }
    for (const QByteArray &line : lines) {
        if (isOpen())
            emit lineReceived(line);
    }
    for (int overlong = m_reader.takeOverlong(); overlong > 0; --overlong)
        complain();
}

void VoiceSession::send(ControlMessageType type, const QString &data)
{
    if (!isOpen())
        return;
    const ControlMessage message{.type = type,
                                 .cid = static_cast<qint32>(number),
                                 .callsign = callsign.toStdString(),
                                 .transmitter = 0,
                                 .data = data.toStdString()};
    const QByteArray line = QByteArray::fromStdString(voice::serializeControlMessage(message));
    sendBytes(line + '\n');
    if (isOpen())
        emit lineSent(QString::fromUtf8(line));
}

void VoiceSession::sendBytes(const QByteArray &bytes)
{
    if (!isOpen())
        return;
    if (m_socket->bytesToWrite() + bytes.size() > m_settings.maxQueuedBytes)
        cutOff(QStringLiteral("doesn't read what is sent"));
    else
        m_socket->write(bytes);
}

void VoiceSession::complain()
{
    if (!isKnown())
        refuse(QStringLiteral("Not a token"));
    else if (++m_badLines >= m_settings.maxBadLines)
        refuse(QStringLiteral("Too many errors"));
}

void VoiceSession::refuse(const QString &text)
{
    if (!isOpen())
        return;
    send(ControlMessageType::Error, text);
    send(ControlMessageType::Disconnect, {});
    if (!isOpen())
        return;
    finish();
    emit refused(text);
}

void VoiceSession::finish()
{
    if (m_ending)
        return;
    m_ending = true;
    m_socket->disconnectFromHost();
    QTimer::singleShot(finishWithinMs, m_socket, &QTcpSocket::abort); // for a peer that never reads
}

void VoiceSession::cutOff(const QString &reason)
{
    if (m_ending)
        return;
    drop();
    emit refused(reason);
}

void VoiceSession::drop()
{
    m_ending = true;
    // Queued, because the caller may be in the middle of a walk over all sessions.
    QMetaObject::invokeMethod(m_socket, &QTcpSocket::abort, Qt::QueuedConnection);
}

} // namespace tarvo::practice

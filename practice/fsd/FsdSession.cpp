#include "practice/fsd/FsdSession.h"

#include "common/Callsign.h"
#include "fsd/pdu/FsdLine.h"
#include "fsd/pdu/ProtocolError.h"

#include <QHostAddress>
#include <QTimer>

#include <algorithm>

namespace tarvo::practice {

namespace {
constexpr qsizetype readBufferBytes = 64 * 1024;
constexpr qsizetype bytesThatCostALine = 1024; // so that endless bytes without a line end count, too
const QLatin1StringView lineEnd("\r\n");

bool hasControlCharacter(const QByteArray &line)
{
    return std::any_of(line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; });
}
} // namespace

FsdSession::FsdSession(QTcpSocket *socket, const FsdSettings &settings, const common::Clock &clock, QObject *parent)
    : QObject(parent),
      m_settings(settings),
      m_clock(clock),
      m_socket(socket),
      m_reader(QByteArray(lineEnd.data(), lineEnd.size()), settings.maxLineBytes),
      m_peer(QStringLiteral("%1:%2").arg(socket->peerAddress().toString()).arg(socket->peerPort())),
      m_budget(2.0 * settings.maxLinesPerSecond),
      m_budgetMs(m_clock.steadyMs())
{
    connectedMs = heardMs = m_budgetMs;
    m_socket->setParent(this);
    m_socket->setReadBufferSize(readBufferBytes);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    connect(m_socket, &QTcpSocket::readyRead, this, &FsdSession::read);
    connect(m_socket, &QTcpSocket::disconnected, this, [this] {
        m_ending = true;
        emit ended();
    });
}

FsdSession::~FsdSession()
{
    m_socket->disconnect(this);
}

QString FsdSession::name() const
{
    return identity ? identity->callsign : m_peer;
}

QString FsdSession::peerAddress() const
{
    return m_socket->peerAddress().toString();
}

void FsdSession::read()
{
    const QByteArray chunk = m_socket->readAll();
    heardMs = m_clock.steadyMs();
    const QList<QByteArray> lines = m_reader.feed(chunk);
    const qsizetype fullChunks = chunk.size() / bytesThatCostALine;
    const auto cost = static_cast<double>(lines.size() + fullChunks);
    if (m_ending || !withinBudget(cost))
        return;
    for (const QByteArray &line : lines) {
        if (!isOpen())
            return;
        if (line.isEmpty())
            continue;
        if (hasControlCharacter(line))
            complain(FsdError::SyntaxError, {}, QStringLiteral("Control character"));
        else
            emit lineReceived(QString::fromLatin1(line));
    }
    for (int overlong = m_reader.takeOverlong(); overlong > 0; --overlong)
        complain(FsdError::SyntaxError, {}, QStringLiteral("Line too long"));
}

bool FsdSession::withinBudget(double cost)
{
    const double perSecond = m_settings.maxLinesPerSecond;
    const double refill = perSecond * static_cast<double>(heardMs - m_budgetMs) / 1000.0;
    m_budget = std::min(2.0 * perSecond, m_budget + refill) - cost;
    m_budgetMs = heardMs;
    if (m_budget < 0)
        cutOff(QStringLiteral("too many lines"));
    return m_budget >= 0;
}

void FsdSession::send(const QString &line)
{
    if (!isOpen())
        return;
    sendQuietly(line.toLatin1());
    if (isOpen())
        emit lineSent(line.endsWith(lineEnd) ? line.chopped(lineEnd.size()) : line);
}

void FsdSession::sendQuietly(const QByteArray &lines)
{
    if (!isOpen())
        return;
    if (m_socket->bytesToWrite() + lines.size() > m_settings.maxQueuedBytes)
        cutOff(QStringLiteral("doesn't read what is sent"));
    else
        m_socket->write(lines);
}

void FsdSession::sendError(FsdError error, const QString &parameter, const QString &message)
{
    const QString to = identity ? identity->callsign : QStringLiteral("unknown");
    send(fsd::toLine(
        fsd::pdu::ProtocolError(common::serverCallsign, to, static_cast<qint32>(error), parameter, message)));
}

void FsdSession::complain(FsdError error, const QString &parameter, const QString &message)
{
    if (++m_badLines >= m_settings.maxBadLines)
        refuse(FsdError::SyntaxError, {}, QStringLiteral("Too many errors"));
    else
        sendError(error, parameter, message);
}

void FsdSession::refuse(FsdError error, const QString &parameter, const QString &message)
{
    sendError(error, parameter, message);
    if (!isOpen())
        return;
    finish();
    emit refused(message);
}

void FsdSession::finish()
{
    if (m_ending)
        return;
    m_ending = true;
    m_socket->disconnectFromHost();
    QTimer::singleShot(m_settings.finishWithinMs, m_socket, &QTcpSocket::abort);
}

void FsdSession::cutOff(const QString &reason)
{
    if (m_ending)
        return;
    drop();
    emit refused(reason);
}

void FsdSession::drop()
{
    m_ending = true;
    // Queued, because the caller may be in the middle of a walk over all sessions.
    QMetaObject::invokeMethod(m_socket, &QTcpSocket::abort, Qt::QueuedConnection);
}

} // namespace tarvo::practice

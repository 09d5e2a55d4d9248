#include "practice/replay/ReplayServer.h"

#include <utility>

namespace tarvo::practice {

namespace {

const QByteArray lineEnd("\r\n");
constexpr qsizetype longestLine = 65536;
constexpr int tickMs = 10;
constexpr qint64 mostWaiting = 1'000'000; ///< bytes

} // namespace

ReplayServer::ReplayServer(ReplaySettings settings, const common::Clock &clock, QObject *parent)
    : QObject(parent), m_settings(std::move(settings)), m_clock(clock), m_reader(lineEnd, longestLine)
{
    connect(&m_server, &QTcpServer::newConnection, this, &ReplayServer::accept);
    connect(&m_timer, &QTimer::timeout, this, &ReplayServer::sendDue);
}

bool ReplayServer::listen(const QHostAddress &address, quint16 port)
{
    return m_server.listen(address, port);
}

void ReplayServer::close()
{
    leave();
    m_server.close();
}

void ReplayServer::leave()
{
    m_timer.stop();
    m_callsign.reset();
    if (QTcpSocket *socket = std::exchange(m_socket, nullptr)) {
        socket->disconnect(); // nobody else listens to it
        socket->abort();
        socket->deleteLater();
    }
}

void ReplayServer::accept()
{
    QTcpSocket *socket = m_server.nextPendingConnection();
    if (!socket)
        return;
    leave();
    m_socket = socket;
    connect(socket, &QTcpSocket::readyRead, this, &ReplayServer::read);
    // As long as there is the timer: at the end the socket goes with the server, after all the rest.
    connect(socket, &QTcpSocket::disconnected, &m_timer, [this] { leave(); });
    m_reader = LineReader(lineEnd, longestLine);
    m_playing = m_settings.recording.at(m_nextConnection);
    m_nextConnection = (m_nextConnection + 1) % m_settings.recording.size();
    m_nextLine = 0;
    emit clientConnected(socket->peerAddress().toString());
    if (m_playing.greeting.isEmpty()) // the recording begins later, but a client logs in behind a greeting
        m_playing.greeting.append({0, QStringLiteral("$DISERVER:CLIENT:replay:0000000000000000")});
    for (const RecordedLine &line : std::as_const(m_playing.greeting))
        send(line);
}

void ReplayServer::read()
{
    const QList<QByteArray> lines = m_reader.feed(m_socket->readAll());
    for (const QByteArray &line : lines) {
        if (!m_callsign && (line.startsWith("#AP") || line.startsWith("#AA")))
            begin(QString::fromLatin1(line));
    }
}

void ReplayServer::begin(const QString &login)
{
    m_callsign = login.section(QLatin1Char(':'), 0, 0).mid(3);
    m_loginMs = m_clock.steadyMs();
    emit clientLoggedIn(QString(*m_callsign));
    if (linesLeft() == 0)
        emit finished(QString(*m_callsign));
    else if (!m_settings.stepwise)
        m_timer.start(tickMs);
}

void ReplayServer::send(const RecordedLine &line)
{
    const QString text = readdressed(line.text, m_playing.callsign, m_callsign.value_or(m_playing.callsign));
    m_socket->write(text.toLatin1() + lineEnd);
    emit lineSent(m_callsign.value_or(m_socket->peerAddress().toString()), text);
}

qsizetype ReplayServer::linesLeft() const
{
    return !m_callsign ? 0 : m_playing.lines.size() - m_nextLine;
}

qint64 ReplayServer::nextMs() const
{
    const QList<RecordedLine> &lines = m_playing.lines;
    return lines.isEmpty() ? 0 : lines.at(qMin(m_nextLine, lines.size() - 1)).ms;
}

void ReplayServer::sendNext()
{
    send(m_playing.lines.at(m_nextLine++));
    if (linesLeft() == 0) {
        m_timer.stop();
        emit finished(QString(*m_callsign));
    }
}

bool ReplayServer::step(int lines)
{
    if (!m_socket || linesLeft() == 0)
        return false;
    while (lines-- > 0 && linesLeft() > 0)
        sendNext();
    return true;
}

void ReplayServer::sendDue()
{
    const double now = static_cast<double>(m_clock.steadyMs() - m_loginMs) * m_settings.speed;
    // A client that reads nothing gets no more.
    while (m_socket && m_socket->bytesToWrite() < mostWaiting && linesLeft() > 0 &&
           static_cast<double>(nextMs()) <= now)
        sendNext();
}

} // namespace tarvo::practice

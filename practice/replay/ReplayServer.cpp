#include "practice/replay/ReplayServer.h"

#include <QStringList>

#include <memory>
#include <utility>

namespace tarvo::practice {

namespace {

const QByteArray lineEnd("\r\n");
constexpr qsizetype longestLine = 65536;
constexpr int tickMs = 10;
constexpr qint64 mostWaiting = 1'000'000; ///< bytes

} // namespace

ReplayServer::ReplayServer(ReplaySettings settings, const common::Clock &clock, QObject *parent)
    : QObject(parent), m_settings(std::move(settings)), m_clock(clock)
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
    for (QTcpSocket *guest : m_server.findChildren<QTcpSocket *>())
        dismiss(guest);
}

void ReplayServer::dismiss(QTcpSocket *socket)
{
    socket->disconnect(); // nobody else listens to it
    socket->abort();
    socket->deleteLater();
}

void ReplayServer::leave()
{
    m_timer.stop();
    m_callsign.reset();
    if (m_socket)
        dismiss(std::exchange(m_socket, nullptr));
}

void ReplayServer::accept()
{
    QTcpSocket *socket = m_server.nextPendingConnection();
    if (!socket)
        return;
    const auto reader = std::make_shared<LineReader>(lineEnd, longestLine);
    const qsizetype place = m_nextConnection;
    // As long as there is the timer: at the end the socket goes with the server, after all the rest.
    connect(socket, &QTcpSocket::readyRead, &m_timer, [this, socket, reader, place] { read(socket, *reader, place); });
    connect(socket, &QTcpSocket::disconnected, &m_timer, [this, socket] {
        if (socket == m_socket)
            leave();
        else
            dismiss(socket);
    });
    greet(*socket, m_settings.recording.at(place));
}

void ReplayServer::greet(QTcpSocket &socket, const RecordedConnection &connection)
{
    const QString guest = socket.peerAddress().toString();
    emit clientConnected(guest);
    QStringList lines;
    for (const RecordedLine &line : connection.greeting)
        lines.append(line.text);
    if (lines.isEmpty()) // the recording begins later, but a client logs in behind a greeting
        lines.append(QStringLiteral("$DISERVER:CLIENT:replay:0000000000000000"));
    for (const QString &line : std::as_const(lines)) {
        socket.write(line.toLatin1() + lineEnd);
        emit lineSent(guest, line);
    }
}

void ReplayServer::read(QTcpSocket *socket, LineReader &reader, qsizetype place)
{
    const QList<QByteArray> lines = reader.feed(socket->readAll());
    for (const QByteArray &line : lines) {
        if (socket != m_socket && (line.startsWith("#AP") || line.startsWith("#AA")))
            begin(socket, place, QString::fromLatin1(line));
    }
}

void ReplayServer::begin(QTcpSocket *socket, qsizetype place, const QString &login)
{
    leave();
    m_socket = socket;
    m_playing = m_settings.recording.at(place);
    m_nextConnection = (place + 1) % m_settings.recording.size();
    m_nextLine = 0;
    m_callsign = login.section(QLatin1Char(':'), 0, 0).mid(3);
    m_loginMs = m_clock.steadyMs();
    emit clientLoggedIn(QString(*m_callsign));
    if (linesLeft() == 0)
        emit finished(QString(*m_callsign));
    else if (!m_settings.stepwise)
        m_timer.start(tickMs);
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
    const QString text = readdressed(m_playing.lines.at(m_nextLine++).text, m_playing.callsign, *m_callsign);
    m_socket->write(text.toLatin1() + lineEnd);
    emit lineSent(QString(*m_callsign), text);
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

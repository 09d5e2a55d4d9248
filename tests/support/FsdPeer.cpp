#include "support/FsdPeer.h"

#include <QCoreApplication>
#include <QDebug>
#include <QEventLoop>
#include <QTcpSocket>

#include <QTimer>
#include <algorithm>

namespace tarvo::test {

FsdPeer::FsdPeer(const QString &address, quint16 port) : m_address(address)
{
    connect(&m_server, &QTcpServer::newConnection, this, &FsdPeer::onNewConnection);
    if (m_server.listen(QHostAddress(address), port))
        m_port = m_server.serverPort();
    else
        qWarning() << "FsdPeer cannot listen on" << address << port << m_server.errorString();
}

FsdPeer::~FsdPeer()
{
    if (m_socket)
        m_socket->disconnect(this);
}

void FsdPeer::onNewConnection()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        if (m_socket)
            m_socket->disconnect(this);
        m_socket = socket;
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        ++m_connections;
        m_received.clear();
        m_lines.clear();
        m_lineStart = 0;
        connect(socket, &QTcpSocket::readyRead, this, &FsdPeer::onReadyRead);
        connect(socket, &QTcpSocket::disconnected, this, &FsdPeer::changed);
    }
    emit changed();
}

void FsdPeer::onReadyRead()
{
    m_received += m_socket->readAll();
    for (qsizetype end = m_received.indexOf("\r\n", m_lineStart); end >= 0;
         end = m_received.indexOf("\r\n", m_lineStart)) {
        m_lines.enqueue(QString::fromLatin1(m_received.sliced(m_lineStart, end - m_lineStart)));
        m_lineStart = end + 2;
    }
    emit changed();
}

bool FsdPeer::waitUntil(const std::function<bool()> &condition)
{
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(this, &FsdPeer::changed, &loop, [&] {
        if (condition())
            loop.quit();
    });
    deadline.start(deadlineMs);
    if (!condition())
        loop.exec();
    return condition();
}

bool FsdPeer::waitForConnection(int count)
{
    return waitUntil([&] { return m_connections >= count; });
}

bool FsdPeer::isClientConnected() const
{
    return m_socket && m_socket->state() == QAbstractSocket::ConnectedState;
}

bool FsdPeer::waitForClose()
{
    return waitUntil([this] { return !isClientConnected(); });
}

void FsdPeer::inject(const QString &line)
{
    injectBytes(line.toLatin1() + "\r\n");
}

void FsdPeer::injectBytes(const QByteArray &bytes)
{
    if (!waitForConnection()) {
        qWarning() << "No client to send to:" << bytes;
        return;
    }
    m_socket->write(bytes);
    m_socket->flush();
}

QString FsdPeer::nextLine()
{
    if (!waitUntil([this] { return !m_lines.isEmpty(); }))
        return {};
    return m_lines.dequeue();
}

bool FsdPeer::expect(const QString &line)
{
    const QString got = nextLine();
    if (got == line && !got.isNull())
        return true;
    qWarning().noquote() << "expected line:" << line << "\n  received line:" << (got.isNull() ? u"none"_qs : got);
    return false;
}

bool FsdPeer::expect(const QStringList &lines)
{
    return std::all_of(lines.begin(), lines.end(), [this](const QString &line) { return expect(line); });
}

bool FsdPeer::skip(int lines)
{
    while (lines > 0 && !nextLine().isNull())
        --lines;
    return lines == 0;
}

bool FsdPeer::expectNothing()
{
    QCoreApplication::processEvents(); // a close by the client may have come in
    if (isClientConnected()) {
        const QString name = QStringLiteral("barrier%1").arg(++m_challenges);
        inject(QStringLiteral("$ZCSERVER:%1:quiet").arg(name));
        return expect(QStringLiteral("$ZR%1:SERVER:quiet").arg(name));
    }
    if (m_lines.isEmpty())
        return true;
    qWarning().noquote() << "expected nothing, received line:" << m_lines.dequeue();
    return false;
}

void FsdPeer::closeConnection()
{
    if (m_socket)
        m_socket->disconnectFromHost();
}

void FsdPeer::abortConnection()
{
    if (m_socket)
        m_socket->abort();
}

} // namespace tarvo::test

#include "support/HttpPeer.h"

#include <QHostAddress>
#include <QUrl>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace tarvo::test {

namespace {

/// The first request of `bytes`, taken out of them; nothing when more of it has to come.
std::optional<HttpPeer::Request> takeRequest(QByteArray &bytes)
{
    const qsizetype head = bytes.indexOf("\r\n\r\n");
    QList<QByteArray> lines = bytes.left(std::max<qsizetype>(head, 0)).split('\n');
    const QList<QByteArray> words = lines.takeFirst().split(' ');
    const QUrl url = QUrl::fromEncoded(words.value(1));
    HttpPeer::Request request{words.first(), url.path(), url.query(), {}, {}};
    for (const QByteArray &line : std::as_const(lines)) {
        const qsizetype colon = line.indexOf(':');
        request.headers.append({line.left(colon).trimmed(), line.mid(colon + 1).trimmed()});
    }
    const qsizetype body = head + 4;
    const qsizetype size = request.header("Content-Length").toLongLong();
    if (head < 0 || bytes.size() < body + size)
        return std::nullopt;
    request.body = bytes.mid(body, size);
    bytes.remove(0, body + size);
    return request;
}

QByteArray keyOf(const QByteArray &method, const QString &path)
{
    return method + ' ' + path.toUtf8();
}

} // namespace

QByteArray HttpPeer::Request::header(const QByteArray &name) const
{
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

HttpPeer::HttpPeer()
{
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { accept(); });
    m_server.listen(QHostAddress::LocalHost);
}

QString HttpPeer::baseUrl() const
{
    return QStringLiteral("http://127.0.0.1:%1/api").arg(port());
}

void HttpPeer::answer(const QByteArray &method, const QString &path, const Answer &answer)
{
    m_lasting.insert(keyOf(method, path), answer);
}

void HttpPeer::answerOnce(const QByteArray &method, const QString &path, const Answer &answer)
{
    m_once[keyOf(method, path)].enqueue(answer);
}

int HttpPeer::release()
{
    const QList<Pending> held = std::exchange(m_held, {});
    for (const Pending &pending : held)
        send(pending);
    return static_cast<int>(held.size());
}

QList<HttpPeer::Request> HttpPeer::requestsFor(const QByteArray &method, const QString &path) const
{
    QList<Request> result;
    for (const Request &request : m_requests) {
        if (request.method == method && request.path == path)
            result.append(request);
    }
    return result;
}

void HttpPeer::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QTcpSocket::deleteLater);
        QObject::connect(socket, &QTcpSocket::readyRead, socket,
                         [this, socket, bytes = std::make_shared<QByteArray>()] {
                             *bytes += socket->readAll();
                             while (const std::optional<Request> request = takeRequest(*bytes))
                                 handle(*request, *socket);
                         });
    }
}

void HttpPeer::handle(const Request &request, QTcpSocket &socket)
{
    m_requests.append(request);
    const Pending pending{&socket, nextAnswer(keyOf(request.method, request.path))};
    if (pending.answer.delivery == Delivery::Held)
        m_held.append(pending);
    else
        send(pending);
}

HttpPeer::Answer HttpPeer::nextAnswer(const QByteArray &key)
{
    const auto once = m_once.find(key);
    if (once != m_once.end() && !once->isEmpty())
        return once->dequeue();
    return m_lasting.value(key, {.status = 404});
}

void HttpPeer::send(const Pending &pending)
{
    if (!pending.socket)
        return;
    const Answer &answer = pending.answer;
    if (answer.delivery == Delivery::CloseWithoutAnswer) {
        pending.socket->disconnectFromHost();
        return;
    }
    QByteArray head =
        "HTTP/1.1 " + QByteArray::number(answer.status) +
        " Said\r\nContent-Type: application/json\r\nContent-Length: " + QByteArray::number(answer.body.size()) + "\r\n";
    if (!answer.setCookie.isEmpty())
        head += "Set-Cookie: " + answer.setCookie + "\r\n";
    if (!answer.location.isEmpty())
        head += "Location: " + answer.location + "\r\n";
    pending.socket->write(head + "\r\n" + answer.body);
}

} // namespace tarvo::test

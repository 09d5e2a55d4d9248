#include "support/HttpPeer.h"

#include <QHostAddress>
#include <QHttpServerRequest>
#include <QMetaEnum>
#include <QUrl>

namespace tarvo::test {

namespace {

QByteArray methodName(QHttpServerRequest::Method method)
{
    return QByteArray(QMetaEnum::fromType<QHttpServerRequest::Method>().valueToKey(static_cast<int>(method))).toUpper();
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
    m_server.setMissingHandler([this](const QHttpServerRequest &request, QHttpServerResponder &&responder) {
        handle(request, std::move(responder));
    });
    m_port = m_server.listen(QHostAddress::LocalHost);
}

QString HttpPeer::baseUrl() const
{
    return QStringLiteral("http://127.0.0.1:%1/api").arg(m_port);
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
    std::list<Pending> held = std::exchange(m_held, {});
    for (Pending &pending : held)
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

void HttpPeer::handle(const QHttpServerRequest &request, QHttpServerResponder &&responder)
{
    const Request record{methodName(request.method()), request.url().path(), request.url().query(), request.headers(),
                         request.body()};
    m_requests.append(record);
    QTcpSocket *socket = responder.socket();
    Pending pending{std::move(responder), socket, nextAnswer(keyOf(record.method, record.path))};
    if (pending.answer.delivery == Delivery::Held)
        m_held.push_back(std::move(pending));
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

void HttpPeer::send(Pending &pending)
{
    if (!pending.socket)
        return;
    if (pending.answer.delivery == Delivery::CloseWithoutAnswer) {
        pending.socket->disconnectFromHost();
        return;
    }
    const auto status = static_cast<QHttpServerResponder::StatusCode>(pending.answer.status);
    if (!pending.answer.setCookie.isEmpty())
        pending.responder.write(pending.answer.body, {{"Set-Cookie", pending.answer.setCookie}}, status);
    else if (pending.answer.location.isEmpty())
        pending.responder.write(pending.answer.body, "application/json", status);
    else
        pending.responder.write(pending.answer.body, {{"Location", pending.answer.location}}, status);
}

} // namespace tarvo::test

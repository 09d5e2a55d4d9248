#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPair>
#include <QPointer>
#include <QQueue>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>

namespace tarvo::test {

/// A web service on loopback, scripted by a test: it answers by method and path and keeps what was asked. Of its own
/// making, because Qt's HTTP server isn't to be had everywhere where the tests run.
class HttpPeer
{
public:
    struct Request
    {
        QByteArray method; ///< such as "GET"
        QString path;
        QString query; ///< without the question mark
        QList<QPair<QByteArray, QByteArray>> headers;
        QByteArray body;

        /// A header's value, whatever the case of its name; null when absent.
        QByteArray header(const QByteArray &name) const;
    };

    enum class Delivery
    {
        AtOnce,
        Held,              ///< waits for release()
        CloseWithoutAnswer ///< closes the connection instead
    };

    struct Answer
    {
        int status = 200;
        QByteArray body = {};
        Delivery delivery = Delivery::AtOnce;
        QByteArray location = {};  ///< header "Location", when not empty
        QByteArray setCookie = {}; ///< header "Set-Cookie", when not empty
    };

    /// Listens on 127.0.0.1, on any free port.
    HttpPeer();

    quint16 port() const { return m_server.serverPort(); }
    /// "http://127.0.0.1:<port>/api"
    QString baseUrl() const;

    /// Answers all requests of `method` ("GET") for `path` ("/api/users") like this from now on; without any answer a
    /// request gets 404 and no body.
    void answer(const QByteArray &method, const QString &path, const Answer &answer);
    /// Answers one request like this, before the lasting answer. Several are used in turn.
    void answerOnce(const QByteArray &method, const QString &path, const Answer &answer);
    /// Sends the held answers in the order of their requests. Gives their number.
    int release();
    int heldCount() const { return static_cast<int>(m_held.size()); }

    const QList<Request> &requests() const { return m_requests; }
    QList<Request> requestsFor(const QByteArray &method, const QString &path) const;

private:
    struct Pending
    {
        QPointer<QTcpSocket> socket; ///< null when the client has gone
        Answer answer;
    };

    void accept();
    void handle(const Request &request, QTcpSocket &socket);
    Answer nextAnswer(const QByteArray &key);
    static void send(const Pending &pending);

    QHash<QByteArray, Answer> m_lasting;
    QHash<QByteArray, QQueue<Answer>> m_once;
    QList<Request> m_requests;
    QList<Pending> m_held;
    QTcpServer m_server; ///< goes first, so that no request meets a half-destroyed peer
};

} // namespace tarvo::test

#pragma once

#include "practice/PracticeNetwork.h"
#include "support/Patience.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpSocket>
#include <QTest>

namespace tarvo::test {

/// A client of the FSD server that writes bytes and keeps the lines that come.
class FsdLineClient
{
public:
    explicit FsdLineClient(const practice::FsdServer &server)
    {
        QObject::connect(&socket, &QTcpSocket::readyRead, &socket, [this] { m_received += socket.readAll(); });
        QObject::connect(&socket, &QTcpSocket::connected, &socket,
                         [this] { socket.setSocketOption(QAbstractSocket::LowDelayOption, 1); });
        socket.connectToHost(server.address(), server.port());
    }

    void send(const QByteArray &line) { socket.write(line + "\r\n"); }
    /// A whole classic login with identification.
    void logIn(const QByteArray &callsign, const QByteArray &cid = "1001")
    {
        send("#AP" + callsign + ":SERVER:" + cid + ":practice:1:9:5:Lin Xiaozhou ZBAA");
        send("$ID" + callsign + ":SERVER:bdc0:TarvoClient:3:0:" + cid + ":machine");
    }
    void logInAsAtc(const QByteArray &callsign)
    {
        send("#AA" + callsign + ":SERVER:Lin Xiaozhou:1001:practice:1:9");
        send("$ID" + callsign + ":SERVER:bdc0:TarvoClient:3:0:1001:machine");
    }
    /// A slow position on the ground there.
    void report(const QByteArray &callsign, double latitude, double longitude)
    {
        send("@N:" + callsign + ":2000:1:" + QByteArray::number(latitude, 'f', 6) + ':' +
             QByteArray::number(longitude, 'f', 6) + ":115:0:2:-118");
    }
    /// True once a line came that is this one, or begins with it.
    bool got(const QByteArray &start) const
    {
        return m_received.startsWith(start) || m_received.contains("\r\n" + start);
    }
    int count(const QByteArray &start) const
    {
        int found = m_received.startsWith(start) ? 1 : 0;
        return found + static_cast<int>(m_received.count("\r\n" + start));
    }
    const QByteArray &all() const { return m_received; }
    void forget() { m_received = "\r\n"; }
    bool closed() const { return socket.state() == QAbstractSocket::UnconnectedState; }

    QTcpSocket socket;

private:
    QByteArray m_received;
};

/// Waits until the server has handled everything that `peer`, logged in under that callsign, has sent.
inline void settle(FsdLineClient &peer, const QByteArray &callsign)
{
    static int serial = 0;
    const QByteArray mark = QByteArray::number(++serial);
    peer.send("$PI" + callsign + ":SERVER:" + mark);
    TRY_VERIFY(peer.got("$POSERVER:" + callsign + ':' + mark + "\r\n"));
}

/// What a web service answered.
struct Answer
{
    int status = 0;
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QByteArray body;
    QJsonObject json;
    QJsonObject data() const { return json.value(QLatin1String("data")).toObject(); }
    QString code() const { return json.value(QLatin1String("code")).toString(); }
};

/// A client of the account service.
class WebPeer
{
public:
    explicit WebPeer(const practice::AccountService &service)
        : m_root(QStringLiteral("http://127.0.0.1:%1").arg(service.port()))
    {
    }

    Answer get(const QString &path, const QString &bearer = {}) { return wait(m_manager.get(request(path, bearer))); }
    Answer post(const QString &path, const QByteArray &body, const QByteArray &origin = {})
    {
        QNetworkRequest r = request(path, {});
        if (!origin.isEmpty())
            r.setRawHeader("Origin", origin);
        return wait(m_manager.post(r, body));
    }
    Answer logIn(const QString &name = QStringLiteral("1001"), const QString &password = QStringLiteral("practice"))
    {
        const QJsonObject body{{QStringLiteral("username"), name}, {QStringLiteral("password"), password}};
        return post(QStringLiteral("/api/users/sessions"), QJsonDocument(body).toJson());
    }
    QString token() { return logIn().data().value(QLatin1String("token")).toString(); }

private:
    QNetworkRequest request(const QString &path, const QString &bearer) const
    {
        QNetworkRequest r{QUrl(m_root + path)};
        r.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        if (!bearer.isEmpty())
            r.setRawHeader("Authorization", "Bearer " + bearer.toLatin1());
        return r;
    }
    static Answer wait(QNetworkReply *reply)
    {
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        Answer answer;
        answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        answer.error = reply->error();
        answer.body = reply->readAll();
        answer.json = QJsonDocument::fromJson(answer.body).object();
        reply->deleteLater();
        return answer;
    }

    QString m_root;
    QNetworkAccessManager m_manager;
};

/// Settings of an FSD server for tests: no simulator, nothing by itself.
inline practice::PracticeSettings quietSettings()
{
    practice::PracticeSettings settings = practice::PracticeSettings::ephemeral();
    settings.simulator = false;
    settings.fsd.pingIntervalMs = 0;
    settings.fsd.challengeIntervalMs = 0;
    return settings;
}

} // namespace tarvo::test

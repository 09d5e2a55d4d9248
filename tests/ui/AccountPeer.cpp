#include "ui/AccountPeer.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QJsonDocument>
#include <QMetaEnum>
#include <QUrl>

#include <algorithm>

namespace tarvo::test {

namespace {

QJsonObject authData()
{
    return {{QStringLiteral("token"), QStringLiteral("jwt")},
            {QStringLiteral("flush_token"), QStringLiteral("fresh")},
            {QStringLiteral("user"), QJsonObject{{QStringLiteral("id"), 7},
                                                 {QStringLiteral("cid"), 1001},
                                                 {QStringLiteral("username"), QStringLiteral("王小明")}}}};
}

QByteArray lineOf(const QHttpServerRequest &request)
{
    const bool post = request.method() == QHttpServerRequest::Method::Post;
    const QUrl url = request.url();
    return (post ? "POST " : "GET ") + url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority);
}

} // namespace

AccountPeer::AccountPeer()
{
    m_server.setMissingHandler([this](const QHttpServerRequest &request, QHttpServerResponder &&responder) {
        handle(request, std::move(responder));
    });
    m_port = m_server.listen(QHostAddress::LocalHost, 0);
}

ServiceEndpoints AccountPeer::endpoints() const
{
    ServiceEndpoints endpoints;
    endpoints.apiBaseUrl = QStringLiteral("http://127.0.0.1:%1/api").arg(m_port);
    return endpoints;
}

void AccountPeer::answer(const QByteArray &line, const QJsonObject &body)
{
    m_answers[line] = body;
}

void AccountPeer::acceptLogin()
{
    const QJsonObject accepted{{QStringLiteral("code"), QStringLiteral("LOGIN_SUCCESS")},
                               {QStringLiteral("data"), authData()}};
    answer(loginLine, accepted);
    answer(refreshLine, accepted);
}

void AccountPeer::refuseLogin(const QString &code)
{
    const QJsonObject refused{{QStringLiteral("code"), code}, {QStringLiteral("message"), QStringLiteral("stale")}};
    answer(loginLine, refused);
    answer(refreshLine, refused);
}

qsizetype AccountPeer::count(const QByteArray &line) const
{
    return std::count_if(m_requests.begin(), m_requests.end(),
                         [&line](const Request &request) { return request.line == line; });
}

void AccountPeer::handle(const QHttpServerRequest &request, QHttpServerResponder &&responder)
{
    const QByteArray line = lineOf(request);
    m_requests.append({line, request.value("Authorization"), QJsonDocument::fromJson(request.body()).object()});
    const auto status =
        m_answers.contains(line) ? QHttpServerResponder::StatusCode::Ok : QHttpServerResponder::StatusCode::NotFound;
    responder.write(QJsonDocument(m_answers.value(line)), status);
}

} // namespace tarvo::test

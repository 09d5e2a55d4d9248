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
    return {{u"token"_qs, u"jwt"_qs},
            {u"flush_token"_qs, u"fresh"_qs},
            {u"user"_qs, QJsonObject{{u"id"_qs, 7}, {u"cid"_qs, 1001}, {u"username"_qs, u"王小明"_qs}}}};
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
    endpoints.apiBaseUrl = u"http://127.0.0.1:%1/api"_qs.arg(m_port);
    return endpoints;
}

void AccountPeer::answer(const QByteArray &line, const QJsonObject &body)
{
    m_answers[line] = body;
}

void AccountPeer::acceptLogin()
{
    const QJsonObject accepted{{u"code"_qs, u"LOGIN_SUCCESS"_qs}, {u"data"_qs, authData()}};
    answer(loginLine, accepted);
    answer(refreshLine, accepted);
}

void AccountPeer::refuseLogin(const QString &code)
{
    const QJsonObject refused{{u"code"_qs, code}, {u"message"_qs, u"stale"_qs}};
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

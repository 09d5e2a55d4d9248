#include "support/AccountPeer.h"

#include <QJsonDocument>
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

QByteArray lineOf(const HttpPeer::Request &request)
{
    const QByteArray query = request.query.isEmpty() ? QByteArray() : '?' + request.query.toUtf8();
    return request.method + ' ' + request.path.toUtf8() + query;
}

} // namespace

ServiceEndpoints AccountPeer::endpoints() const
{
    ServiceEndpoints endpoints;
    endpoints.apiBaseUrl = m_server.baseUrl();
    return endpoints;
}

void AccountPeer::answer(const QByteArray &line, const QJsonObject &body)
{
    const QList<QByteArray> words = line.split(' ');
    m_server.answer(words.first(), QUrl::fromEncoded(words.last()).path(), {.body = QJsonDocument(body).toJson()});
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

QList<AccountPeer::Request> AccountPeer::requests() const
{
    QList<Request> result;
    for (const HttpPeer::Request &request : m_server.requests())
        result.append(
            {lineOf(request), request.header("Authorization"), QJsonDocument::fromJson(request.body).object()});
    return result;
}

qsizetype AccountPeer::count(const QByteArray &line) const
{
    const QList<HttpPeer::Request> &all = m_server.requests();
    return std::count_if(all.begin(), all.end(), [&line](const auto &request) { return lineOf(request) == line; });
}

} // namespace tarvo::test

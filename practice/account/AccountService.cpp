#include "practice/account/AccountService.h"

#include "practice/account/AccountBook.h"
#include "practice/account/AccountJson.h"
#include "practice/account/HttpGuard.h"

#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QJsonDocument>
#include <QMetaEnum>
#include <QUrlQuery>

namespace tarvo::practice {

using Status = QHttpServerResponse::StatusCode;
using Method = QHttpServerRequest::Method;

namespace {
constexpr qsizetype longestPrintedPath = 200;

QString methodName(Method method)
{
    return QString::fromLatin1(QMetaEnum::fromType<Method>().valueToKey(static_cast<int>(method))).toUpper();
}

QString printablePath(const QUrl &url)
{
    return url.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::FullyEncoded).left(longestPrintedPath);
}

QHttpServerResponse envelope(const QString &code, const QString &message, const QJsonObject &data = {},
                             Status status = Status::Ok)
{
    QJsonObject reply{{QStringLiteral("code"), code}, {QStringLiteral("message"), message}};
    if (!data.isEmpty())
        reply.insert(QStringLiteral("data"), data);
    return {reply, status};
}

QHttpServerResponse unauthorized(JsonWebToken::Verdict verdict)
{
    const bool expired = verdict == JsonWebToken::Verdict::Expired;
    QHttpServerResponse response = envelope(expired ? QStringLiteral("TOKEN_EXPIRED") : QStringLiteral("INVALID_TOKEN"),
                                            expired ? QStringLiteral("The token has expired.")
                                                    : QStringLiteral("The token is missing or not valid."),
                                            {}, Status::Unauthorized);
    response.addHeader("WWW-Authenticate", "Bearer");
    return response;
}
} // namespace

AccountService::AccountService(const AccountBook &accounts, TokenAuthority &tokens, QObject *parent)
    : QObject(parent), m_accounts(accounts), m_tokens(tokens)
{
    addRoutes();
}

AccountService::~AccountService() = default;

bool AccountService::listen(const QHostAddress &address, quint16 port)
{
    close();
    auto guard = std::make_unique<HttpGuard>();
    if (!guard->listen(address, port)) {
        m_error = guard->errorString();
        return false;
    }
    m_address = address;
    m_guard = guard.release();
    m_http.bind(m_guard); // becomes its parent
    return true;
}

void AccountService::close()
{
    if (!m_guard)
        return;
    m_guard->close();
    m_guard->deleteLater(); // and with it the connections
    m_guard = nullptr;
}

quint16 AccountService::port() const
{
    return m_guard ? m_guard->serverPort() : 0;
}

QString AccountService::errorString() const
{
    return m_error;
}

QString AccountService::baseUrl() const
{
    return QStringLiteral("http://%1:%2/api").arg(m_address.toString()).arg(port());
}

QString AccountService::registerUrl() const
{
    return QStringLiteral("http://%1:%2/register").arg(m_address.toString()).arg(port());
}

void AccountService::setDatabaseError(bool on)
{
    m_databaseError = on;
}

void AccountService::setFsdTokenError(const QString &text)
{
    m_fsdTokenError = text;
}

void AccountService::setBareStatus(int status)
{
    m_bareStatus = status;
}

QHttpServer &AccountService::http()
{
    return m_http;
}

void AccountService::route(const QString &path, Method method, Handler handler)
{
    m_http.route(path, method, [this, handler](const QHttpServerRequest &request) {
        QHttpServerResponse response = m_bareStatus      ? QHttpServerResponse(static_cast<Status>(m_bareStatus))
                                       : m_databaseError ? envelope(QStringLiteral("DATABASE_ERROR"),
                                                                    QStringLiteral("The database is out of order."), {},
                                                                    Status::InternalServerError)
                                                         : (this->*handler)(request);
        emit requestAnswered(methodName(request.method()), printablePath(request.url()),
                             static_cast<int>(response.statusCode()));
        return response;
    });
}

void AccountService::addRoutes()
{
    route(QStringLiteral("/api/users/sessions"), Method::Post, &AccountService::logIn);
    route(QStringLiteral("/api/users/sessions"), Method::Get, &AccountService::refresh);
    route(QStringLiteral("/api/users/sessions/fsd"), Method::Get, &AccountService::fsdToken);
    route(QStringLiteral("/api/users/histories/self"), Method::Get, &AccountService::history);
    route(QStringLiteral("/api/users/profiles/self"), Method::Get, &AccountService::profile);
    route(QStringLiteral("/api/server/rating"), Method::Get, &AccountService::rating);
    route(QStringLiteral("/register"), Method::Get, &AccountService::registerPage);
    m_http.setMissingHandler([this](const QHttpServerRequest &request, QHttpServerResponder &&responder) {
        emit requestAnswered(methodName(request.method()), printablePath(request.url()), 404);
        responder.write(QHttpServerResponder::StatusCode::NotFound);
    });
}

QHttpServerResponse AccountService::logIn(const QHttpServerRequest &request)
{
    const QJsonObject body = QJsonDocument::fromJson(request.body()).object();
    const QString name = body.value(QLatin1String("username")).toString();
    if (!m_accounts.passwordFits(name, body.value(QLatin1String("password")).toString()))
        return envelope(QStringLiteral("WRONG_USERNAME_OR_PASSWORD"), QStringLiteral("Wrong user name or password."),
                        {}, Status::Unauthorized);
    const model::User &user = m_accounts.find(name)->user;
    return envelope(QStringLiteral("LOGIN_SUCCESS"), QStringLiteral("Signed in."),
                    {{QStringLiteral("token"), QString::fromLatin1(m_tokens.issue(TokenUse::Access, user.cid))},
                     {QStringLiteral("flush_token"), QString::fromLatin1(m_tokens.issue(TokenUse::Refresh, user.cid))},
                     {QStringLiteral("user"), toJson(user)}});
}

QHttpServerResponse AccountService::refresh(const QHttpServerRequest &request)
{
    auto verdict = JsonWebToken::Verdict::Valid;
    const Account *account = bearer(request, TokenUse::Refresh, &verdict);
    if (!account)
        return unauthorized(verdict);
    const qint64 cid = account->user.cid;
    QJsonObject data{{QStringLiteral("token"), QString::fromLatin1(m_tokens.issue(TokenUse::Access, cid))},
                     {QStringLiteral("flush_token"), QString::fromLatin1(m_tokens.issue(TokenUse::Refresh, cid))}};
    // The first refresh of a client that has just started stands for a login: it also brings the user.
    if (request.query().queryItemValue(QStringLiteral("first")) == QLatin1String("true"))
        data.insert(QStringLiteral("user"), toJson(account->user));
    return envelope(QStringLiteral("REFRESH_SUCCESS"), QStringLiteral("Refreshed."), data);
}

QHttpServerResponse AccountService::fsdToken(const QHttpServerRequest &request)
{
    auto verdict = JsonWebToken::Verdict::Valid;
    const Account *account = bearer(request, TokenUse::Access, &verdict);
    if (!account)
        return unauthorized(verdict);
    const bool refused = !m_fsdTokenError.isEmpty();
    const QByteArray token = refused ? QByteArray() : m_tokens.issue(TokenUse::Fsd, account->user.cid);
    return QJsonObject{{QStringLiteral("token"), QString::fromLatin1(token)},
                       {QStringLiteral("success"), !refused},
                       {QStringLiteral("error_msg"), m_fsdTokenError}};
}

QHttpServerResponse AccountService::history(const QHttpServerRequest &request)
{
    auto verdict = JsonWebToken::Verdict::Valid;
    const Account *account = bearer(request, TokenUse::Access, &verdict);
    if (!account)
        return unauthorized(verdict);
    return envelope(QStringLiteral("GET_USER_HISTORY"), QStringLiteral("History."), toJson(account->history));
}

QHttpServerResponse AccountService::profile(const QHttpServerRequest &request)
{
    auto verdict = JsonWebToken::Verdict::Valid;
    const Account *account = bearer(request, TokenUse::Access, &verdict);
    if (!account)
        return unauthorized(verdict);
    return envelope(QStringLiteral("GET_USER_PROFILE"), QStringLiteral("Profile."), profileJson(account->user));
}

QHttpServerResponse AccountService::rating(const QHttpServerRequest &request)
{
    auto verdict = JsonWebToken::Verdict::Valid;
    if (!bearer(request, TokenUse::Access, &verdict))
        return unauthorized(verdict);
    return envelope(QStringLiteral("GET_TIME_RATING"), QStringLiteral("Ranking."), toJson(m_accounts.ratings()));
}

QHttpServerResponse AccountService::registerPage(const QHttpServerRequest &)
{
    static const QByteArray page =
        "<!DOCTYPE html><html lang=\"zh-CN\"><head><meta charset=\"utf-8\"><title>练习网络</title></head>"
        "<body style=\"font-family:sans-serif;max-width:36em;margin:4em auto;line-height:1.7\">"
        "<h1>练习网络</h1><p>这里是运行在本机上的练习网络，无需注册。</p>"
        "<p>请在登录窗口使用用户名 <b>1001</b>（或 1002、1003），密码 <b>practice</b>。</p></body></html>";
    return {QByteArrayLiteral("text/html; charset=utf-8"), page};
}

const Account *AccountService::bearer(const QHttpServerRequest &request, TokenUse use,
                                      JsonWebToken::Verdict *verdict) const
{
    const QByteArray header = request.value("Authorization");
    *verdict = JsonWebToken::Verdict::Malformed;
    if (!header.startsWith("Bearer "))
        return nullptr;
    qint64 cid = 0;
    *verdict = m_tokens.check(use, header.mid(7).trimmed(), &cid);
    return *verdict == JsonWebToken::Verdict::Valid ? m_accounts.find(cid) : nullptr;
}

} // namespace tarvo::practice

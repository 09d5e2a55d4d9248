#include "network/ReplyTexts.h"

#include "network/ReplyOutcome.h"

namespace tarvo::network {

namespace {

struct ErrorText
{
    QNetworkReply::NetworkError error;
    const char *text;
};

struct CodeText
{
    const char *code;
    const char *text;
};

constexpr ErrorText loginErrorTexts[] = {
    {QNetworkReply::NoError, QT_TRANSLATE_NOOP("ReplyTexts", "登录失败：服务器返回了无效的响应")},
    {QNetworkReply::ConnectionRefusedError, QT_TRANSLATE_NOOP("ReplyTexts", "无法连接到服务器，请检查网络连接")},
    {QNetworkReply::HostNotFoundError, QT_TRANSLATE_NOOP("ReplyTexts", "无法找到服务器，请检查服务器地址")},
    {QNetworkReply::TimeoutError, QT_TRANSLATE_NOOP("ReplyTexts", "连接超时，请稍后重试")},
};

constexpr ErrorText refreshErrorTexts[] = {
    {QNetworkReply::ConnectionRefusedError, QT_TRANSLATE_NOOP("ReplyTexts", "无法连接到服务器")},
    {QNetworkReply::HostNotFoundError, QT_TRANSLATE_NOOP("ReplyTexts", "无法找到服务器")},
    {QNetworkReply::TimeoutError, QT_TRANSLATE_NOOP("ReplyTexts", "连接超时")},
    {QNetworkReply::AuthenticationRequiredError, QT_TRANSLATE_NOOP("ReplyTexts", "令牌已过期，请重新登录")},
};

constexpr CodeText loginCodeTexts[] = {
    {"WRONG_USERNAME_OR_PASSWORD", QT_TRANSLATE_NOOP("ReplyTexts", "用户名或密码错误")},
    {"DATABASE_ERROR", QT_TRANSLATE_NOOP("ReplyTexts", "服务器数据库错误，请稍后重试")},
};

/// The table's text for the reply's error; null when it has none.
template <std::size_t N>
const char *find(const ErrorText (&table)[N], const ReplyOutcome &outcome)
{
    const QNetworkReply::NetworkError error = outcome.timedOut() ? QNetworkReply::TimeoutError : outcome.error;
    for (const ErrorText &entry : table) {
        if (entry.error == error)
            return entry.text;
    }
    return nullptr;
}

} // namespace

QString ReplyTexts::loginCode(const QString &code)
{
    for (const CodeText &entry : loginCodeTexts) {
        if (code == QLatin1String(entry.code))
            return tr(entry.text);
    }
    return tr("登录失败 (错误代码: %1)").arg(code);
}

QString ReplyTexts::loginError(const ReplyOutcome &outcome)
{
    if (const char *text = find(loginErrorTexts, outcome))
        return tr(text);
    if (outcome.error == QNetworkReply::ContentNotFoundError)
        return tr("服务器接口不存在 (404)") + QLatin1Char('\n') + tr("请求地址: %1").arg(outcome.url.toString());
    return tr("网络错误 (%1): %2").arg(QString::number(outcome.httpStatus), outcome.errorString);
}

QString ReplyTexts::refreshError(const ReplyOutcome &outcome)
{
    if (const char *text = find(refreshErrorTexts, outcome))
        return tr(text);
    return tr("网络错误: %1").arg(outcome.errorString);
}

QString ReplyTexts::refreshWithoutToken()
{
    return tr("刷新令牌失败，请重新登录");
}

QString ReplyTexts::historyFailed()
{
    return tr("获取用户历史失败");
}

QString ReplyTexts::profileFailed()
{
    return tr("获取用户资料失败");
}

} // namespace tarvo::network

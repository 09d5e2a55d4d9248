#include "ui/viewmodel/EndReason.h"

#include <QAbstractSocket>
#include <QCoreApplication>
#include <QMetaEnum>
#include <QRegularExpression>

namespace tarvo::ui {

namespace {

struct ReasonTexts
{
    Q_DECLARE_TR_FUNCTIONS(tarvo::ui::EndReason)
};

/// The beginning of a reason as it is told, and what the pilot reads instead. "%1" is the rest.
struct Reason
{
    const char *begins;
    const char *shown;
    bool restIsOurs = false; ///< the rest is a reason of the program's own, or may be one
};

constexpr Reason reasons[] = {
    {"Already connected or connecting to network.",
     QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "已连接或正在连接网络，请先断开再更换呼号。")},
    {"Callsign is required for observer mode.", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "观察员模式需要填写呼号。")},
    {"Callsign and Type Code are required.", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "需要填写呼号和机型代码。")},
    {"Invalid callsign.",
     QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "呼号无效：只能使用 A-Z、0-9 和下划线，不能包含空格或中文。")},
    {"The server does not read what it is sent.", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "服务器不再接收数据。")},
    {"Network authentication error: ", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "网络认证失败：%1"), true},
    {"No JWT token found", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "没有登录令牌，请退出后重新登录。")},
    {"JWT token expired", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "登录已过期，请退出后重新登录。")},
    {"Refresh token failed: ", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "无法更新登录令牌：%1"), true},
    {"Network error: ", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "账户服务出错：%1")},
    {"Network Error: ", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "服务器报告：%1")},
    {"Forcibly disconnected from network: ", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "被强制断开：%1")},
    {"Forcibly disconnected from network.", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "被强制断开。")},
    {"ConnectionRefusedError", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "服务器拒绝了连接。")},
    {"RemoteHostClosedError", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "服务器关闭了连接。")},
    {"HostNotFoundError", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "找不到服务器的地址。")},
    {"Network server address returned null", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "找不到服务器的地址。")},
    {"SocketTimeoutError", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "服务器没有应答。")},
    {"NetworkError", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "网络不通，请检查本机的网络连接。")},
    {"Failed to resolve server address ", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "找不到语音服务器的地址：%1")},
    {"Failed to connect to server at ", QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "无法连接语音服务器 %1"), true},
    {"No thread is to be had for the voice connection",
     QT_TRANSLATE_NOOP("tarvo::ui::EndReason", "系统资源不足，无法建立语音连接。")},
};

/// A system's error as a number, and what Qt calls it.
struct SystemError
{
    int onLinux;
    int onWindows;
    const char *name;
};

constexpr SystemError systemErrors[] = {
    {111, 10061, "ConnectionRefusedError"}, {110, 10060, "SocketTimeoutError"},    {101, 10051, "NetworkError"},
    {113, 10065, "NetworkError"},           {104, 10054, "RemoteHostClosedError"},
};

/// `levels`: how many reasons of the program's own may stand one in another. The innermost words may be a server's.
QString inPilotsWords(const QString &told, int levels);

QString shownSystemError(int number)
{
    for (const SystemError &error : systemErrors) {
        if (number == error.onLinux || number == error.onWindows)
            return inPilotsWords(QLatin1String(error.name), 1);
    }
    return ReasonTexts::tr("错误 %1。").arg(number);
}

/// "HOST (ip=ADDRESS): WORDS (errno=NUMBER)" without the system's words; any other text as it is.
QString shownSystemWords(const QString &told)
{
    static const QRegularExpression form(QStringLiteral(R"(^(.*) \(ip=[^)]*\): .*\(errno=(\d+)\)$)"));
    const QRegularExpressionMatch match = form.match(told);
    if (!match.hasMatch())
        return told;
    return ReasonTexts::tr("%1：%2").arg(match.captured(1), shownSystemError(match.captured(2).toInt()));
}

/// "SocketAccessError: WORDS", of which there are too many for a row each; any other text as it is.
QString shownSocketError(const QString &told)
{
    const QString name = told.section(u':', 0, 0);
    bool isSocketError = false;
    QMetaEnum::fromType<QAbstractSocket::SocketError>().keyToValue(name.toLatin1().constData(), &isSocketError);
    return isSocketError ? ReasonTexts::tr("网络出错（%1）。").arg(name) : shownSystemWords(told);
}

QString inPilotsWords(const QString &told, int levels)
{
    for (const Reason &reason : reasons) {
        const QLatin1String begins(reason.begins);
        if (!told.startsWith(begins))
            continue;
        QString text = ReasonTexts::tr(reason.shown);
        if (!text.contains(QLatin1String("%1")))
            return text;
        const QString rest = told.mid(begins.size());
        return text.arg(reason.restIsOurs && levels > 1 ? inPilotsWords(rest, levels - 1) : rest);
    }
    return shownSocketError(told);
}

/// How much an error tells of why a connection ended.
enum class Telling
{
    Nothing, ///< it is of a line
    Closed,  ///< only that it has ended
    Forced,
    Why,
    Refused ///< told once more as a forced end
};

struct TellingBegin
{
    const char *begins;
    Telling telling;
};

constexpr TellingBegin tellings[] = {
    {"RemoteHostClosedError", Telling::Closed},
    {"Forcibly disconnected from network.", Telling::Forced},
    {"Network authentication error: ", Telling::Refused},
};

Telling tellingOf(const QString &error)
{
    if (error.isEmpty() || error.contains(QLatin1String(" (Raw packet: ")))
        return Telling::Nothing;
    for (const TellingBegin &row : tellings) {
        if (error.startsWith(QLatin1String(row.begins)))
            return row.telling;
    }
    return Telling::Why;
}

bool explains(const ToldError &error, qint64 now)
{
    return tellingOf(error.text) != Telling::Nothing && now - error.at <= errorExplainsForMs;
}

} // namespace

QString shownReason(const QString &told)
{
    constexpr int deepest = 3; // refused, because a token could not be had, because the account service failed
    return inPilotsWords(told, deepest);
}

ToldError tellingError(const ToldError &before, const ToldError &next)
{
    return explains(before, next.at) && tellingOf(before.text) > tellingOf(next.text) ? before : next;
}

QString reasonOfEnd(const ToldError &error, qint64 now)
{
    return explains(error, now) ? shownReason(error.text) : ReasonTexts::tr("与服务器的连接中断。");
}

} // namespace tarvo::ui

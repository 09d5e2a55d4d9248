#include "ui/viewmodel/ConnectionStatus.h"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace tarvo::ui {

namespace {

struct ConnectionTexts
{
    Q_DECLARE_TR_FUNCTIONS(tarvo::ui::ConnectionStatus)
};

struct StateLook
{
    LinkState state;
    const char *text;
    Tone tone;
};

constexpr StateLook looks[] = {
    {LinkState::Absent, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "未连接"), Tone::Quiet},
    {LinkState::Connecting, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "连接中..."), Tone::Pending},
    {LinkState::Connected, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "已连接"), Tone::Good},
    {LinkState::Disconnecting, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "断开中..."), Tone::Pending},
    {LinkState::Ended, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "已断开"), Tone::Quiet},
    {LinkState::ForcedOut, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "已断开（强制）"), Tone::Failed},
    {LinkState::Failed, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "连接失败"), Tone::Failed},
    {LinkState::Authenticating, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "认证中..."), Tone::Pending},
    {LinkState::Ready, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "就绪"), Tone::Good},
    {LinkState::Unknown, QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "未知状态"), Tone::Quiet},
};

const StateLook &lookOf(LinkState state)
{
    return *std::find_if(std::begin(looks), std::end(looks) - 1,
                         [state](const StateLook &look) { return look.state == state; });
}

/// The beginning of a reason as it is told, and what the pilot reads instead. "%1" is the rest.
struct Reason
{
    const char *begins;
    const char *shown;
};

constexpr Reason reasons[] = {
    {"Already connected or connecting to network.",
     QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "已连接或正在连接网络，请先断开再更换呼号。")},
    {"Callsign is required for observer mode.",
     QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "观察员模式需要填写呼号。")},
    {"Callsign and Type Code are required.",
     QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "需要填写呼号和机型代码。")},
    {"Invalid callsign.",
     QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "呼号无效：只能使用 A-Z、0-9 和下划线，不能包含空格或中文。")},
    {"The server does not read what it is sent.",
     QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "服务器不再接收数据。")},
    {"Network authentication error: ", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "网络认证失败：%1")},
    {"Network Error: ", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "服务器报告：%1")},
    {"Forcibly disconnected from network: ", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "被强制断开：%1")},
    {"Forcibly disconnected from network.", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "被强制断开。")},
    {"ConnectionRefusedError", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "服务器拒绝了连接。")},
    {"RemoteHostClosedError", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "服务器关闭了连接。")},
    {"HostNotFoundError", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "找不到服务器的地址。")},
    {"SocketTimeoutError", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "服务器没有应答。")},
    {"NetworkError", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "网络不通，请检查本机的网络连接。")},
    {"Failed to resolve server address ",
     QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "找不到语音服务器的地址：%1")},
    {"Failed to connect to server at ", QT_TRANSLATE_NOOP("tarvo::ui::ConnectionStatus", "无法连接语音服务器：%1")},
};

} // namespace

QString toneText(Tone tone)
{
    constexpr const char *names[] = {"quiet", "pending", "good", "failed"};
    return QString::fromLatin1(names[static_cast<int>(tone)]);
}

QString textOf(LinkState state)
{
    return ConnectionTexts::tr(lookOf(state).text);
}

Tone toneOf(LinkState state)
{
    return lookOf(state).tone;
}

QString shownReason(const QString &told)
{
    for (const Reason &reason : reasons) {
        const QLatin1String begins(reason.begins);
        if (!told.startsWith(begins))
            continue;
        const QString shown = ConnectionTexts::tr(reason.shown);
        return shown.contains(QLatin1String("%1")) ? shown.arg(told.mid(begins.size())) : shown;
    }
    return told;
}

QString tellingError(const QString &before, const QString &next)
{
    const bool isToldAgain = before.startsWith(QLatin1String("Network authentication error: ")) &&
                             next.startsWith(QLatin1String("Forcibly disconnected from network"));
    return isToldAgain ? before : next;
}

QString reasonOfEnd(const ToldError &error, qint64 now)
{
    if (error.text.isEmpty() || now - error.at > errorExplainsForMs)
        return ConnectionTexts::tr("与服务器的连接中断。");
    return shownReason(error.text);
}

StatusLine lineOf(const Link &link)
{
    Tone tone = toneOf(link.state);
    if (tone == Tone::Quiet || tone == Tone::Failed)
        tone = link.seen ? Tone::Quiet : Tone::Failed;
    return {link.section, link.name, textOf(link.state), tone, tone == Tone::Failed ? link.reason : QString()};
}

Banner bannerOf(const Link &network, const Link &simulator, const Link &voice, const QString &section)
{
    const auto lost = [](const Link &link) { return !link.seen && link.wasUp; };
    const auto failed = [&section](const Link &link) { return !link.seen && link.section != section; };
    const auto banner = [](const Link &link, const QString &text, BannerAction action) -> Banner {
        const bool again = action == BannerAction::Reconnect;
        return {text.arg(link.reason), again ? ConnectionTexts::tr("重新连接") : ConnectionTexts::tr("查看"), action,
                link.section};
    };
    if (lost(network))
        return banner(network, ConnectionTexts::tr("网络已断开：%1"), BannerAction::Reconnect);
    if (failed(network))
        return banner(network, ConnectionTexts::tr("网络连接失败：%1"), BannerAction::ShowSection);
    if (lost(simulator))
        return banner(simulator, ConnectionTexts::tr("模拟器已断开：%1"), BannerAction::Reconnect);
    if (lost(voice))
        return banner(voice, ConnectionTexts::tr("语音已断开：%1"), BannerAction::Reconnect);
    if (failed(voice))
        return banner(voice, ConnectionTexts::tr("语音连接失败：%1"), BannerAction::ShowSection);
    return {};
}

} // namespace tarvo::ui

#include "ui/viewmodel/ConnectionStatus.h"

#include <QCoreApplication>

namespace tarvo::ui {

namespace {

struct ConnectionTexts
{
    Q_DECLARE_TR_FUNCTIONS(tarvo::ui::ConnectionStatus)
};

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
};

} // namespace

QString toneText(Tone tone)
{
    constexpr const char *names[] = {"quiet", "pending", "good", "failed"};
    return QString::fromLatin1(names[static_cast<int>(tone)]);
}

QString simulatorFailedText()
{
    return ConnectionTexts::tr("连接失败");
}

QString forcedOutText()
{
    return ConnectionTexts::tr("已断开（强制）");
}

Tone toneOf(bool connected, const QString &statusText)
{
    if (statusText.endsWith(QLatin1String("...")))
        return Tone::Pending;
    if (connected)
        return Tone::Good;
    return statusText == simulatorFailedText() || statusText == forcedOutText() ? Tone::Failed : Tone::Quiet;
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

QString reasonOfEnd(const QString &error, qint64 errorAt, qint64 now)
{
    if (error.isEmpty() || now - errorAt > errorExplainsForMs)
        return ConnectionTexts::tr("与服务器的连接中断。");
    return shownReason(error);
}

StatusLine lineOf(const Link &link)
{
    Tone tone = toneOf(link.connected, link.word);
    if (tone == Tone::Quiet || tone == Tone::Failed)
        tone = link.seen ? Tone::Quiet : Tone::Failed;
    return {link.section, link.name, link.word, tone, tone == Tone::Failed ? link.reason : QString()};
}

Banner bannerOf(const Link &network, const Link &simulator, const QString &section)
{
    if (!network.seen && network.wasUp)
        return {ConnectionTexts::tr("网络已断开：%1").arg(network.reason), ConnectionTexts::tr("重新连接"),
                BannerAction::ReconnectNetwork};
    if (!network.seen && section != network.section)
        return {ConnectionTexts::tr("网络连接失败：%1").arg(network.reason), ConnectionTexts::tr("查看"),
                BannerAction::ShowSection};
    if (!simulator.seen && simulator.wasUp)
        return {ConnectionTexts::tr("模拟器已断开：%1").arg(simulator.reason), ConnectionTexts::tr("重新连接"),
                BannerAction::ReconnectSimulator};
    return {};
}

} // namespace tarvo::ui

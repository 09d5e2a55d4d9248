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

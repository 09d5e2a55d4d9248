#include "ui/viewmodel/StatusViewModel.h"

#include "ui/viewmodel/ShownText.h"

namespace tarvo::ui {

namespace {
constexpr qsizetype longestToldReason = 200; ///< characters; a server may tell thousands

constexpr Role<StatusLine> lineRoles[] = {
    {"section", member<&StatusLine::section>},
    {"name", member<&StatusLine::name>},
    {"word", member<&StatusLine::word>},
    {"tone", [](const StatusLine &row) -> QVariant { return toneText(row.tone); }},
    {"reason", member<&StatusLine::reason>},
};
} // namespace

StatusViewModel::StatusViewModel(QObject *parent)
    : QObject(parent),
      m_network{.section = QStringLiteral("server"), .name = tr("网络")},
      m_simulator{.section = QStringLiteral("simulator"), .name = tr("模拟器")},
      m_voice{.section = QStringLiteral("voice"), .name = tr("语音")},
      m_lines(lineRoles)
{
    update();
}

void StatusViewModel::setNetwork(bool connected, LinkState state)
{
    setState(m_network, connected, state);
}

void StatusViewModel::setSimulator(bool connected, LinkState state)
{
    setState(m_simulator, connected, state);
}

void StatusViewModel::setVoice(bool connected, LinkState state)
{
    setState(m_voice, connected, state);
}

void StatusViewModel::networkFailed(const QString &reason)
{
    fail(m_network, reason);
}

void StatusViewModel::simulatorFailed(const QString &reason)
{
    fail(m_simulator, reason);
}

void StatusViewModel::voiceFailed(const QString &reason)
{
    fail(m_voice, reason);
}

void StatusViewModel::forgetNetwork()
{
    forget(m_network);
}

void StatusViewModel::forgetSimulator()
{
    forget(m_simulator);
}

void StatusViewModel::forgetVoice()
{
    forget(m_voice);
}

void StatusViewModel::setState(Link &link, bool connected, LinkState state)
{
    link.connected = connected;
    link.state = state;
    if (connected) {
        link.wasUp = true;
        forget(link);
    }
    update();
}

void StatusViewModel::fail(Link &link, const QString &reason)
{
    link.reason = shownText(reason, longestToldReason);
    link.seen = false;
    update();
}

void StatusViewModel::forget(Link &link)
{
    link.wasUp = link.connected;
    link.reason.clear();
    link.seen = true;
    update();
}

void StatusViewModel::setCurrentSection(const QString &section)
{
    const QString left = m_section;
    m_section = section;
    see(left);
    see(section);
    update();
}

/// The page that tells of it, or the banner, has told the pilot.
void StatusViewModel::see(const QString &section)
{
    for (Link *link : {&m_network, &m_simulator, &m_voice}) {
        if (link->section != section)
            continue;
        link->wasUp = link->connected; // another failure of the same outage is no loss again
        // A simulator that can't be reached stays red: nothing has been lost that could be forgotten.
        const bool staysRed = link == &m_simulator && link->state == LinkState::Failed;
        link->seen = link->seen || !staysRed;
    }
}

void StatusViewModel::dismissBanner()
{
    see(m_banner.section);
    update();
}

void StatusViewModel::act()
{
    const Banner told = m_banner;
    dismissBanner();
    if (told.action == BannerAction::ShowSection)
        emit sectionRequested(told.section);
    if (told.action != BannerAction::Reconnect)
        return;
    if (told.section == m_network.section)
        emit networkReconnectRequested();
    else if (told.section == m_simulator.section)
        emit simulatorReconnectRequested();
    else
        emit voiceReconnectRequested();
}

void StatusViewModel::update()
{
    m_lines.setRows({lineOf(m_network), lineOf(m_simulator), lineOf(m_voice)});
    const Banner banner = bannerOf(m_network, m_simulator, m_voice, m_section);
    if (banner == m_banner)
        return;
    m_banner = banner;
    emit bannerChanged();
}

} // namespace tarvo::ui

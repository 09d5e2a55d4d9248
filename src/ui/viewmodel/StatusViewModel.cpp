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
void startOver(Link &link)
{
    link.wasUp = link.connected;
    link.reason.clear();
    link.seen = true;
}
} // namespace

StatusViewModel::StatusViewModel(QObject *parent)
    : QObject(parent),
      m_links{Link{.section = QStringLiteral("server"), .name = tr("网络")},
              Link{.section = QStringLiteral("simulator"), .name = tr("模拟器")},
              Link{.section = QStringLiteral("voice"), .name = tr("语音")}},
      m_lines(lineRoles)
{
    update();
}

void StatusViewModel::setState(Kind kind, bool connected, LinkState state)
{
    Link &link = m_links.at(kind);
    link.connected = connected;
    link.state = state;
    if (connected)
        startOver(link);
    update();
}

void StatusViewModel::fail(Kind kind, const QString &reason)
{
    Link &link = m_links.at(kind);
    link.reason = shownText(reason, longestToldReason);
    link.seen = false;
    update();
}

void StatusViewModel::forget(Kind kind)
{
    startOver(m_links.at(kind));
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
    for (Link &link : m_links) {
        if (link.section != section)
            continue;
        link.wasUp = link.connected; // another failure of the same outage is no loss again
        // A simulator that can't be reached stays red: nothing has been lost that could be forgotten.
        const bool staysRed = &link == &m_links.at(Simulator) && link.state == LinkState::Failed;
        link.seen = link.seen || !staysRed;
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
    if (told.section == m_links.at(Network).section)
        emit networkReconnectRequested();
    else if (told.section == m_links.at(Simulator).section)
        emit simulatorReconnectRequested();
    else
        emit voiceReconnectRequested();
}

void StatusViewModel::update()
{
    const auto &[network, simulator, voice] = m_links;
    m_lines.setRows({lineOf(network), lineOf(simulator), lineOf(voice)});
    const Banner banner = bannerOf(network, simulator, voice, m_section);
    if (banner == m_banner)
        return;
    m_banner = banner;
    emit bannerChanged();
}

} // namespace tarvo::ui

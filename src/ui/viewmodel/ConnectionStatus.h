#pragma once

#include <QString>

namespace tarvo::ui {

/// How a connection is: the colour of its dot.
enum class Tone
{
    Quiet,   ///< not there, and nobody misses it
    Pending, ///< on the way
    Good,
    Failed ///< it went wrong
};

/// The word by which pages know a tone: "quiet", "pending", "good" or "failed".
QString toneText(Tone tone);

/// How a connection stands. Rules ask for this, never for the text that a page shows of it.
enum class LinkState
{
    Absent, ///< never asked for, or called off
    Connecting,
    Connected,
    Disconnecting,
    Ended,
    ForcedOut,
    Failed,         ///< can't be reached
    Authenticating, // this and the next: of voice alone
    Ready,
    Unknown
};

QString textOf(LinkState state);
Tone toneOf(LinkState state);

/// What the sidebar says of one connection.
struct StatusLine
{
    QString section; ///< where more is told
    QString name;
    QString word;
    Tone tone = Tone::Quiet;
    QString reason; ///< empty unless it failed

    bool operator==(const StatusLine &) const = default;
};

/// A connection, and how it ended if that wasn't the pilot's wish.
struct Link
{
    QString section;
    QString name;
    bool connected = false;
    LinkState state = LinkState::Absent;
    QString reason = {};
    bool seen = true;   ///< the pilot knows of the reason
    bool wasUp = false; ///< it was there before it failed

    bool operator==(const Link &) const = default;
};

StatusLine lineOf(const Link &link);

/// What the button of a banner does.
enum class BannerAction
{
    None,
    Reconnect,
    ShowSection ///< the connection's page, which tells more
};

/// A line over every page. Without a text there is none.
struct Banner
{
    QString text;
    QString actionText;
    BannerAction action = BannerAction::None;
    QString section; ///< of the connection that it tells of

    bool operator==(const Banner &) const = default;
};

/// `section`: the page that is open. Those of network and voice tell themselves why an attempt failed.
Banner bannerOf(const Link &network, const Link &simulator, const Link &voice, const QString &section);

} // namespace tarvo::ui

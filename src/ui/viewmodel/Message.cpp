#include "ui/viewmodel/Message.h"

#include "model/RadioMessageReceived.h"
#include "ui/viewmodel/Frequency.h"
#include "ui/viewmodel/MessageChannels.h"

#include <QDateTime>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cstddef>

namespace tarvo::ui {

namespace {

enum class Direction
{
    In,
    Out,
    System
};

struct DirectionTexts
{
    const char *word;
    const char *label;
};

constexpr DirectionTexts directions[] = { // in Direction's order
    {"in", QT_TRANSLATE_NOOP("Message", "收到")},
    {"out", QT_TRANSLATE_NOOP("Message", "已发送")},
    {"system", QT_TRANSLATE_NOOP("Message", "系统")}};

struct KindTraits
{
    MessageKind kind;
    const char *type;
    Direction direction;
    MessageGroup group;
    bool personal; ///< always meant for the pilot alone
};

constexpr KindTraits kinds[] = {
    {MessageKind::PrivateIn, "private_in", Direction::In, MessageGroup::Private, true},
    {MessageKind::PrivateOut, "private_out", Direction::Out, MessageGroup::Private, false},
    {MessageKind::RadioIn, "radio_in", Direction::In, MessageGroup::Radio, false},
    {MessageKind::RadioOut, "radio_out", Direction::Out, MessageGroup::Radio, false},
    {MessageKind::Server, "server", Direction::In, MessageGroup::Service, false},
    {MessageKind::System, "system", Direction::System, MessageGroup::Service, false},
    {MessageKind::Broadcast, "broadcast", Direction::In, MessageGroup::Service, false},
    {MessageKind::WallopOut, "wallop_out", Direction::Out, MessageGroup::Alert, false},
    {MessageKind::Selcal, "selcal", Direction::In, MessageGroup::Alert, true},
};

const KindTraits &traits(MessageKind kind)
{
    return *std::ranges::find(kinds, kind, &KindTraits::kind);
}

const DirectionTexts &directionTexts(MessageKind kind)
{
    return directions[static_cast<std::size_t>(traits(kind).direction)];
}

/// A call's line may name thousands; a row has room for these.
constexpr qsizetype mostFrequencies = 8;

QString joined(const QList<uint> &kilohertz)
{
    QStringList texts;
    for (const uint frequency : kilohertz.first(std::min(kilohertz.size(), mostFrequencies)))
        texts << megahertz(frequency);
    return texts.join(QStringLiteral(", "));
}

/// Upper-case. A text that was cut ends with an ellipsis, so that no answer can go to another pilot of that name.
QString shownCallsign(const QString &callsign)
{
    const QString whole = normalisedCallsign(callsign);
    return whole.size() <= common::longestCallsign ? whole : whole.left(common::longestCallsign) + QChar(0x2026);
}

/// The session with the callsign; one that can't have a session is shown in the overview.
QString sessionChannel(const QString &callsign)
{
    return channels::canBeSession(callsign) ? callsign : channels::privateOverview();
}

} // namespace

Message Message::privateReceived(const QString &from, const QString &own, const QString &body)
{
    const QString sender = shownCallsign(from);
    return {.kind = MessageKind::PrivateIn,
            .channel = sessionChannel(sender),
            .from = sender,
            .to = own,
            .body = body.left(longestBody)};
}

Message Message::privateSent(const QString &to, const QString &own, const QString &body)
{
    const QString target = shownCallsign(to);
    return {.kind = MessageKind::PrivateOut,
            .channel = sessionChannel(target),
            .from = own,
            .to = target,
            .body = body.left(longestBody)};
}

Message Message::radioReceived(const network::RadioMessageReceived &args)
{
    const QString frequencies = joined(args.frequencies.value<QList<uint>>());
    const QString addressed = args.direct ? tr(" | 定向呼叫") : QString();
    return {.kind = MessageKind::RadioIn,
            .channel = channels::radio(),
            .from = shownCallsign(args.from),
            .to = frequencies,
            .body = args.message.left(longestBody),
            .meta = QStringLiteral("%1%2").arg(frequencies, addressed),
            .frequencies = frequencies,
            .isDirect = args.direct};
}

Message Message::radioSent(const QString &own, const QString &body, const QList<uint> &frequencies)
{
    return {.kind = MessageKind::RadioOut,
            .channel = channels::radio(),
            .from = own,
            .body = body.left(longestBody),
            .frequencies = joined(frequencies)};
}

Message Message::serverText(const QString &body)
{
    return {.kind = MessageKind::Server,
            .channel = channels::server(),
            .from = serverName(),
            .body = body.left(longestBody)};
}

Message Message::broadcastReceived(const QString &from, const QString &body)
{
    return {.kind = MessageKind::Broadcast,
            .channel = channels::broadcast(),
            .from = shownCallsign(from),
            .to = tr("全体"),
            .body = body.left(longestBody),
            .meta = tr("全网广播")};
}

Message Message::wallopSent(const QString &own, const QString &body)
{
    return {.kind = MessageKind::WallopOut,
            .channel = channels::wallop(),
            .from = own,
            .body = body.left(longestBody),
            .meta = tr("管理员报告")};
}

Message Message::selcalCall(const QString &from, const QList<uint> &frequencies)
{
    return {.kind = MessageKind::Selcal,
            .channel = channels::selcal(),
            .from = shownCallsign(from),
            .meta = tr("收到 SELCAL 呼叫"),
            .frequencies = joined(frequencies)};
}

Message Message::systemNote(const QString &body)
{
    return {.kind = MessageKind::System,
            .channel = channels::server(),
            .from = systemName(),
            .body = body.left(longestBody)};
}

QString Message::type() const
{
    return QLatin1String(traits(kind).type);
}

QString Message::direction() const
{
    return QLatin1String(directionTexts(kind).word);
}

QString Message::directionLabel() const
{
    return tr(directionTexts(kind).label);
}

MessageGroup Message::group() const
{
    return traits(kind).group;
}

bool Message::isIncoming() const
{
    return traits(kind).direction == Direction::In;
}

bool Message::holds(const QString &text) const
{
    return std::ranges::any_of(std::array{&body, &from, &to, &meta, &frequencies},
                               [&](const QString *part) { return part->contains(text, Qt::CaseInsensitive); });
}

int Message::priority() const
{
    return traits(kind).personal || isDirect ? 2 : 1;
}

QVariantMap Message::row(qint64 id, qint64 wallMs, bool unread) const
{
    return {{QStringLiteral("id"), id},
            {QStringLiteral("time"), localTime(wallMs)},
            {QStringLiteral("timestamp"), wallMs},
            {QStringLiteral("type"), type()},
            {QStringLiteral("direction"), direction()},
            {QStringLiteral("directionLabel"), directionLabel()},
            {QStringLiteral("channel"), channel},
            {QStringLiteral("from"), from},
            {QStringLiteral("to"), to},
            {QStringLiteral("message"), body},
            {QStringLiteral("meta"), meta},
            {QStringLiteral("frequencies"), frequencies},
            {QStringLiteral("isDirect"), isDirect},
            {QStringLiteral("priority"), priority()},
            {QStringLiteral("unread"), unread}};
}

QString localTime(qint64 wallMs)
{
    return QDateTime::fromMSecsSinceEpoch(wallMs).toString(QStringLiteral("hh:mm:ss"));
}

} // namespace tarvo::ui

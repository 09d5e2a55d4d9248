#include "ui/viewmodel/Message.h"

#include "ui/viewmodel/MessageChannels.h"

#include <QDateTime>
#include <QStringList>

namespace tarvo::ui::viewmodel {

namespace {

QString joined(const QList<uint> &kilohertz)
{
    QStringList texts;
    for (const uint frequency : kilohertz)
        texts << megahertz(frequency);
    return texts.join(QStringLiteral(", "));
}

/// The session with the callsign; a callsign that can't have one is shown in the overview.
QString sessionChannel(const QString &callsign)
{
    return callsign.isEmpty() || channels::isReserved(callsign) ? channels::privateOverview() : callsign;
}

QString direction(const Message &message)
{
    if (message.type == QLatin1String("system"))
        return QStringLiteral("system");
    return message.isIncoming() ? QStringLiteral("in") : QStringLiteral("out");
}

QString directionLabel(const Message &message)
{
    if (message.type == QLatin1String("system"))
        return Message::tr("系统");
    return message.isIncoming() ? Message::tr("收到") : Message::tr("已发送");
}

} // namespace

Message Message::privateReceived(const QString &from, const QString &own, const QString &body)
{
    const QString sender = normalisedCallsign(from);
    return {.type = QStringLiteral("private_in"),
            .channel = sessionChannel(sender),
            .from = sender,
            .to = own,
            .body = body};
}

Message Message::privateSent(const QString &to, const QString &own, const QString &body)
{
    const QString target = normalisedCallsign(to);
    return {.type = QStringLiteral("private_out"),
            .channel = sessionChannel(target),
            .from = own,
            .to = target,
            .body = body};
}

Message Message::radioReceived(const network::RadioMessageReceived &args)
{
    const QString frequencies = joined(args.frequencies.value<QList<uint>>());
    const QString addressed = args.direct ? tr(" | 定向呼叫") : QString();
    return {.type = QStringLiteral("radio_in"),
            .channel = channels::radio(),
            .from = normalisedCallsign(args.from),
            .to = frequencies,
            .body = args.message,
            .meta = QStringLiteral("%1%2").arg(frequencies, addressed),
            .frequencies = frequencies,
            .isDirect = args.direct};
}

Message Message::radioSent(const QString &own, const QString &body, const QList<uint> &frequencies)
{
    return {.type = QStringLiteral("radio_out"),
            .channel = channels::radio(),
            .from = own,
            .body = body,
            .frequencies = joined(frequencies)};
}

Message Message::serverText(const QString &body)
{
    return {.type = QStringLiteral("server"), .channel = channels::server(), .from = serverName(), .body = body};
}

Message Message::broadcastReceived(const QString &from, const QString &body)
{
    return {.type = QStringLiteral("broadcast"),
            .channel = channels::broadcast(),
            .from = normalisedCallsign(from),
            .to = tr("全体"),
            .body = body,
            .meta = tr("全网广播")};
}

Message Message::wallopSent(const QString &own, const QString &body)
{
    return {.type = QStringLiteral("wallop_out"),
            .channel = channels::wallop(),
            .from = own,
            .body = body,
            .meta = tr("管理员报告")};
}

Message Message::selcalCall(const QString &from, const QList<uint> &frequencies)
{
    return {.type = QStringLiteral("selcal"),
            .channel = channels::selcal(),
            .from = normalisedCallsign(from),
            .meta = tr("收到 SELCAL 呼叫"),
            .frequencies = joined(frequencies)};
}

Message Message::systemNote(const QString &body)
{
    return {.type = QStringLiteral("system"), .channel = channels::server(), .from = systemName(), .body = body};
}

bool Message::isPrivate() const
{
    return type.startsWith(QLatin1String("private_"));
}

bool Message::isIncoming() const
{
    return type.endsWith(QLatin1String("_in")) || type == QLatin1String("server") ||
           type == QLatin1String("broadcast") || type == QLatin1String("selcal");
}

int Message::priority() const
{
    const bool personal = type == QLatin1String("private_in") || type == QLatin1String("selcal") || isDirect;
    return personal ? 2 : 1;
}

QVariantMap Message::row(qint64 id, qint64 wallMs, bool unread) const
{
    return {{QStringLiteral("id"), id},
            {QStringLiteral("time"), localTime(wallMs)},
            {QStringLiteral("timestamp"), wallMs},
            {QStringLiteral("type"), type},
            {QStringLiteral("direction"), direction(*this)},
            {QStringLiteral("directionLabel"), directionLabel(*this)},
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

QString megahertz(uint kilohertz)
{
    return QString::number(kilohertz / 1000.0, 'f', 3);
}

QString localTime(qint64 wallMs)
{
    return QDateTime::fromMSecsSinceEpoch(wallMs).toString(QStringLiteral("hh:mm:ss"));
}

} // namespace tarvo::ui::viewmodel

#pragma once

#include "common/Callsign.h"

#include <QCoreApplication>
#include <QList>
#include <QString>
#include <QVariantMap>

namespace tarvo::network {
struct RadioMessageReceived;
}

namespace tarvo::ui {

/// What a message tells of.
enum class MessageKind
{
    PrivateIn,
    PrivateOut,
    RadioIn,
    RadioOut,
    Server,
    System,
    Broadcast,
    WallopOut,
    Selcal
};

/// What the summary counts together.
enum class MessageGroup
{
    Private,
    Radio,
    Service,
    Alert
};
inline constexpr int messageGroups = 4;

/// One message of the messages page, as it happened. The functions make one for each kind of event; callsigns are
/// upper-case, bodies stand as given. Both are cut beyond what a page can show: the network delivers up to a megabyte.
struct Message
{
    Q_DECLARE_TR_FUNCTIONS(Message)

public:
    /// Characters.
    static constexpr qsizetype longestBody = 16384;

    MessageKind kind = MessageKind::System;
    QString channel = {}; ///< the channel's key
    QString from = {};
    QString to = {};
    QString body = {};
    QString meta = {};        ///< a short second line
    QString frequencies = {}; ///< MHz, joined by ", "
    bool isDirect = false;

    static Message privateReceived(const QString &from, const QString &own, const QString &body);
    static Message privateSent(const QString &to, const QString &own, const QString &body);
    static Message radioReceived(const network::RadioMessageReceived &args);
    static Message radioSent(const QString &own, const QString &body, const QList<uint> &frequencies);
    static Message serverText(const QString &body);
    static Message broadcastReceived(const QString &from, const QString &body);
    static Message wallopSent(const QString &own, const QString &body);
    /// Has no body: the call says everything.
    static Message selcalCall(const QString &from, const QList<uint> &frequencies);
    static Message systemNote(const QString &body);

    /// The sender of server texts. Nobody can be answered under it.
    static QString serverName() { return tr("服务器"); }
    /// The sender of system notes. Nobody can be answered under it.
    static QString systemName() { return tr("系统"); }

    /// The word for the kind: "private_in", "private_out", "radio_in", "radio_out", "server", "system", "broadcast",
    /// "wallop_out" or "selcal".
    QString type() const;
    /// "in", "out" or "system".
    QString direction() const;
    /// "收到", "已发送" or "系统".
    QString directionLabel() const;
    MessageGroup group() const;
    bool isIncoming() const;
    /// Whether a pilot who looks for `text` wants to see it. Letters of either case are the same.
    bool holds(const QString &text) const;
    /// 2 for what is meant for the pilot alone, else 1.
    int priority() const;
    /// The row of the list. `id`: its number; `wallMs`: ms since the epoch.
    QVariantMap row(qint64 id, qint64 wallMs, bool unread) const;
    bool operator==(const Message &) const = default;
};

/// "hh:mm:ss" in local time. `wallMs`: ms since the epoch.
QString localTime(qint64 wallMs);
using common::normalisedCallsign;

} // namespace tarvo::ui

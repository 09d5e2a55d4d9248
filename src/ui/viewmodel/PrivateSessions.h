#pragma once

#include "ui/viewmodel/RowsModel.h"

#include <QString>
#include <QVariantMap>

namespace tarvo::ui {

/// One private conversation, known by the other side's callsign.
struct PrivateSession
{
    QString callsign; ///< upper-case
    QString lastMessage = {};
    QString lastTime = {}; ///< "hh:mm:ss", empty before the first message
    int unread = 0;
    qint64 activity = 0; ///< the higher, the later something happened

    bool operator==(const PrivateSession &) const = default;
    /// "callsign", "unread", "lastMessage" and "lastTime".
    QVariantMap toMap() const;
};

/// The open private sessions in the order of their opening, so that no row moves. There is a limit, so that a flood of
/// senders can't fill the memory. Roles: "callsign", "unread", "time" ("hh:mm") and "lastText" (one line).
class PrivateSessions : public RowsModel<PrivateSession>
{
public:
    /// When one more is opened, the one that was quiet for the longest time is closed.
    static constexpr qsizetype maximumSessions = 200;

    explicit PrivateSessions(QObject *parent = nullptr);

    bool contains(const QString &callsign) const { return indexOf(callsign) >= 0; }
    /// The one in which something happened last; empty without any.
    QString latest() const;
    /// False when the session is open already. When another had to be closed for it, `evicted` is that one's callsign.
    /// `kept` is never closed.
    bool open(const QString &callsign, const QString &kept, QString &evicted);
    // These do nothing for a session that isn't open.
    void note(const QString &callsign, const QString &message, const QString &time);
    void setUnread(const QString &callsign, int unread);
    void close(const QString &callsign);

private:
    qsizetype indexOf(const QString &callsign) const;
    QString evict(const QString &kept);

    qint64 m_activity = 0;
};

} // namespace tarvo::ui

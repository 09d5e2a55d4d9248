#pragma once

#include "ui/viewmodel/Message.h"

#include <QHash>
#include <QList>
#include <QString>

#include <array>
#include <cstddef>
#include <optional>

namespace tarvo::ui {

/// A message of the list.
struct StoredMessage
{
    Message message;
    qint64 id = 0;
    qint64 wallMs = 0; ///< since the epoch
    bool unread = false;

    QVariantMap toMap() const { return message.row(id, wallMs, unread); }
    /// Whether the counts are the same with the one as with the other.
    bool countsLike(const StoredMessage &other) const;
};

/// The one list of messages, oldest first, with its counts. Adding costs the same however long the list is; a channel's
/// list is put together when somebody asks for it.
class MessageStore
{
public:
    /// The oldest message goes beyond this.
    static constexpr qsizetype maximumMessages = 300;

    const QList<StoredMessage> &all() const { return m_messages; }
    /// The messages whose channel is exactly `channel`; all for "ALL".
    QList<StoredMessage> inChannel(const QString &channel) const;
    int unread() const { return m_unreadTotal; }
    int unreadIn(const QString &channel) const;
    int countIn(const QString &channel) const;
    /// The number of the newest message there ever was; 0 before the first.
    qint64 lastId() const { return m_lastId; }
    /// How many messages the summary counts there.
    int inGroup(MessageGroup group) const { return m_byGroup.at(static_cast<std::size_t>(group)); }

    /// Gives the message the next number; numbers run from 1 and are never used again. Returns the one that had to go.
    std::optional<StoredMessage> append(const Message &message, qint64 wallMs, bool unread);
    /// False when there was none unread.
    bool markRead(const QString &channel);
    void clear();

private:
    StoredMessage takeFirst();
    int &groupCount(MessageGroup group) { return m_byGroup.at(static_cast<std::size_t>(group)); }
    void countUnread(const QString &channel, int difference);

    QList<StoredMessage> m_messages;
    std::array<int, messageGroups> m_byGroup{};
    QHash<QString, int> m_unread; ///< by channel; holds no zero
    int m_unreadTotal = 0;
    qint64 m_lastId = 0;
};

} // namespace tarvo::ui

#pragma once

#include "ui/viewmodel/Message.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QVariantList>

#include <array>
#include <cstddef>
#include <optional>

namespace tarvo::ui {

/// The one list of messages, oldest first, with its counts. Adding costs the same however long the list is; a channel's
/// list is put together when somebody asks for it.
class MessageStore
{
public:
    /// The oldest message goes beyond this.
    static constexpr qsizetype maximumMessages = 300;

    /// What matters of a row to the counts.
    struct Tally
    {
        MessageGroup group;
        QString channel;
        bool unread = false;

        bool operator==(const Tally &) const = default;
    };

    const QVariantList &all() const { return m_rows; }
    /// The messages whose channel is exactly `channel`; all for "ALL".
    QVariantList inChannel(const QString &channel) const;
    int unread() const { return m_unreadTotal; }
    int unreadIn(const QString &channel) const;
    /// How many messages the summary counts there.
    int inGroup(MessageGroup group) const { return m_byGroup.at(static_cast<std::size_t>(group)); }

    /// Gives the message the next number; numbers run from 1 and are never used again. Returns the one that had to go.
    std::optional<Tally> append(const Message &message, qint64 wallMs, bool unread);
    /// False when there was none unread.
    bool markRead(const QString &channel);
    void clear();

private:
    Tally takeFirst();
    int &groupCount(MessageGroup group) { return m_byGroup.at(static_cast<std::size_t>(group)); }
    void countUnread(const QString &channel, int difference);

    QVariantList m_rows;
    QList<Tally> m_tallies; ///< of the rows, in their order
    std::array<int, messageGroups> m_byGroup{};
    QHash<QString, int> m_unread; ///< by channel; holds no zero
    int m_unreadTotal = 0;
    qint64 m_lastId = 0;
};

} // namespace tarvo::ui

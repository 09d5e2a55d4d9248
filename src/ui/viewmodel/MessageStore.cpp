#include "ui/viewmodel/MessageStore.h"

#include "ui/viewmodel/MessageChannels.h"

#include <algorithm>

namespace tarvo::ui {

bool StoredMessage::countsLike(const StoredMessage &other) const
{
    return message.group() == other.message.group() && message.channel == other.message.channel &&
           unread == other.unread;
}

QList<StoredMessage> MessageStore::inChannel(const QString &channel) const
{
    if (channel == channels::all())
        return m_messages;
    QList<StoredMessage> found;
    for (const StoredMessage &stored : m_messages)
        if (stored.message.channel == channel)
            found << stored;
    return found;
}

int MessageStore::countIn(const QString &channel) const
{
    if (channel == channels::all())
        return static_cast<int>(m_messages.size());
    return static_cast<int>(std::ranges::count_if(
        m_messages, [&channel](const StoredMessage &stored) { return stored.message.channel == channel; }));
}

int MessageStore::unreadIn(const QString &channel) const
{
    return channel == channels::all() ? m_unreadTotal : m_unread.value(channel);
}

std::optional<StoredMessage> MessageStore::append(const Message &message, qint64 wallMs, bool unread)
{
    m_messages.append({.message = message, .id = ++m_lastId, .wallMs = wallMs, .unread = unread});
    ++groupCount(message.group());
    if (unread)
        countUnread(message.channel, 1);
    if (m_messages.size() <= maximumMessages)
        return {};
    return takeFirst();
}

bool MessageStore::markRead(const QString &channel)
{
    const int unread = m_unread.value(channel);
    if (unread == 0)
        return false;
    for (StoredMessage &stored : m_messages)
        if (stored.message.channel == channel)
            stored.unread = false;
    countUnread(channel, -unread);
    return true;
}

void MessageStore::clear()
{
    m_messages.clear();
    m_byGroup = {};
    m_unread.clear();
    m_unreadTotal = 0;
}

StoredMessage MessageStore::takeFirst()
{
    StoredMessage gone = m_messages.takeFirst();
    --groupCount(gone.message.group());
    if (gone.unread)
        countUnread(gone.message.channel, -1);
    return gone;
}

void MessageStore::countUnread(const QString &channel, int difference)
{
    int &count = m_unread[channel];
    count += difference;
    m_unreadTotal += difference;
    if (count == 0)
        m_unread.remove(channel);
}

} // namespace tarvo::ui

#include "ui/viewmodel/MessageStore.h"

#include "ui/viewmodel/MessageChannels.h"

namespace tarvo::ui {

QVariantList MessageStore::inChannel(const QString &channel) const
{
    if (channel == channels::all())
        return m_rows;
    QVariantList rows;
    for (qsizetype i = 0; i < m_rows.size(); ++i)
        if (m_tallies.at(i).channel == channel)
            rows << m_rows.at(i);
    return rows;
}

int MessageStore::unreadIn(const QString &channel) const
{
    return channel == channels::all() ? m_unreadTotal : m_unread.value(channel);
}

std::optional<MessageStore::Tally> MessageStore::append(const Message &message, qint64 wallMs, bool unread)
{
    m_rows.append(message.row(++m_lastId, wallMs, unread));
    m_tallies.append({message.group(), message.channel, unread});
    ++groupCount(message.group());
    if (unread)
        countUnread(message.channel, 1);
    if (m_rows.size() <= maximumMessages)
        return {};
    return takeFirst();
}

bool MessageStore::markRead(const QString &channel)
{
    const int unread = m_unread.value(channel);
    if (unread == 0)
        return false;
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        if (!m_tallies.at(i).unread || m_tallies.at(i).channel != channel)
            continue;
        QVariantMap row = m_rows.at(i).toMap();
        row.insert(QStringLiteral("unread"), false);
        m_rows[i] = row;
        m_tallies[i].unread = false;
    }
    countUnread(channel, -unread);
    return true;
}

void MessageStore::clear()
{
    m_rows.clear();
    m_tallies.clear();
    m_byGroup = {};
    m_unread.clear();
    m_unreadTotal = 0;
}

MessageStore::Tally MessageStore::takeFirst()
{
    m_rows.removeFirst();
    Tally gone = m_tallies.takeFirst();
    --groupCount(gone.group);
    if (gone.unread)
        countUnread(gone.channel, -1);
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

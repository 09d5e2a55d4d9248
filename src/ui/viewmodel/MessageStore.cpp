#include "ui/viewmodel/MessageStore.h"

#include "ui/viewmodel/MessageChannels.h"

#include <algorithm>
#include <iterator>

namespace tarvo::ui::viewmodel {

namespace {

QString channelKey()
{
    return QStringLiteral("channel");
}

QString unreadKey()
{
    return QStringLiteral("unread");
}

QString channelOf(const QVariant &row)
{
    return row.toMap().value(channelKey()).toString();
}

} // namespace

QVariantList MessageStore::inChannel(const QString &channel) const
{
    if (channel == channels::all())
        return m_rows;
    QVariantList rows;
    std::copy_if(m_rows.cbegin(), m_rows.cend(), std::back_inserter(rows),
                 [&](const QVariant &row) { return channelOf(row) == channel; });
    return rows;
}

int MessageStore::unreadIn(const QString &channel) const
{
    return channel == channels::all() ? m_unreadTotal : m_unread.value(channel);
}

std::optional<MessageStore::Tally> MessageStore::append(const Message &message, qint64 wallMs, bool unread)
{
    m_rows.append(message.row(++m_lastId, wallMs, unread));
    ++m_byType[message.type];
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
    for (QVariant &row : m_rows) {
        QVariantMap map = row.toMap();
        if (map.value(channelKey()).toString() == channel && map.value(unreadKey()).toBool()) {
            map.insert(unreadKey(), false);
            row = map;
        }
    }
    countUnread(channel, -unread);
    return true;
}

void MessageStore::clear()
{
    m_rows.clear();
    m_byType.clear();
    m_unread.clear();
    m_unreadTotal = 0;
}

MessageStore::Tally MessageStore::takeFirst()
{
    const QVariantMap row = m_rows.takeFirst().toMap();
    Tally gone{row.value(QStringLiteral("type")).toString(), row.value(channelKey()).toString(),
               row.value(unreadKey()).toBool()};
    --m_byType[gone.type];
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

} // namespace tarvo::ui::viewmodel

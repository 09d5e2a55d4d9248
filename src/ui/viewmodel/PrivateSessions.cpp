#include "ui/viewmodel/PrivateSessions.h"

#include "ui/viewmodel/ShownText.h"

#include <algorithm>

namespace tarvo::ui {

namespace {

/// Characters of a text of which one line is shown: the rest needn't be laid out.
constexpr qsizetype longestLine = 200;

constexpr Role<PrivateSession> sessionRoles[] = {
    {"callsign", member<&PrivateSession::callsign>},
    {"unread", member<&PrivateSession::unread>},
    {"time", [](const PrivateSession &row) -> QVariant { return row.lastTime.left(5); }},
    {"lastText",
     [](const PrivateSession &row) -> QVariant { return shownText(row.lastMessage, longestLine).simplified(); }},
};

} // namespace

QVariantMap PrivateSession::toMap() const
{
    return {{QStringLiteral("callsign"), callsign},
            {QStringLiteral("unread"), unread},
            {QStringLiteral("lastMessage"), lastMessage},
            {QStringLiteral("lastTime"), lastTime}};
}

PrivateSessions::PrivateSessions(QObject *parent) : RowsModel(sessionRoles, parent) {}

QString PrivateSessions::latest() const
{
    const auto found = std::ranges::max_element(rows(), {}, &PrivateSession::activity);
    return found == rows().cend() ? QString() : found->callsign;
}

bool PrivateSessions::open(const QString &callsign, const QString &kept, QString &evicted)
{
    if (contains(callsign))
        return false;
    if (rows().size() >= maximumSessions)
        evicted = evict(kept);
    insert(rows().size(), {.callsign = callsign, .activity = ++m_activity});
    return true;
}

void PrivateSessions::note(const QString &callsign, const QString &message, const QString &time)
{
    const qsizetype index = indexOf(callsign);
    if (index < 0)
        return;
    PrivateSession session = rows().at(index);
    session.lastMessage = message;
    session.lastTime = time;
    session.activity = ++m_activity;
    replace(index, session);
}

void PrivateSessions::setUnread(const QString &callsign, int unread)
{
    const qsizetype index = indexOf(callsign);
    if (index < 0)
        return;
    PrivateSession session = rows().at(index);
    session.unread = unread;
    replace(index, session);
}

void PrivateSessions::close(const QString &callsign)
{
    const qsizetype index = indexOf(callsign);
    if (index >= 0)
        remove(index);
}

qsizetype PrivateSessions::indexOf(const QString &callsign) const
{
    const auto found = std::ranges::find(rows(), callsign, &PrivateSession::callsign);
    return found == rows().cend() ? -1 : found - rows().cbegin();
}

QString PrivateSessions::evict(const QString &kept)
{
    const auto quieter = [&](const PrivateSession &left, const PrivateSession &right) {
        return left.callsign != kept && (right.callsign == kept || left.activity < right.activity);
    };
    const auto quietest = std::ranges::min_element(rows(), quieter);
    QString callsign = quietest->callsign;
    remove(quietest - rows().cbegin());
    return callsign;
}

} // namespace tarvo::ui

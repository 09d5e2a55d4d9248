#pragma once

#include <QList>
#include <QString>

namespace tarvo::ui {

/// One private conversation, known by the other side's callsign.
struct PrivateSession
{
    QString callsign; ///< upper-case
    QString lastMessage;
    QString lastTime;    ///< "hh:mm:ss", empty before the first message
    qint64 activity = 0; ///< the higher, the later something happened
};

/// The open private sessions, in the order in which they were opened, so that a row stays where it is. Bounded, so that
/// a flood of senders can't fill the memory.
class PrivateSessions
{
public:
    /// One more, and the session that has been quiet for the longest time goes.
    static constexpr qsizetype maximumSessions = 200;

    const QList<PrivateSession> &all() const { return m_sessions; }
    bool contains(const QString &callsign) const;
    /// False when the session is open already. Where one has to go for it, `evicted` is that one's callsign; never
    /// `kept`'s.
    bool open(const QString &callsign, const QString &kept, QString &evicted);
    void note(const QString &callsign, const QString &message, const QString &time);
    /// False when there is no such session.
    bool close(const QString &callsign);

private:
    qsizetype indexOf(const QString &callsign) const;
    QString evict(const QString &kept);

    QList<PrivateSession> m_sessions;
    qint64 m_activity = 0;
};

} // namespace tarvo::ui

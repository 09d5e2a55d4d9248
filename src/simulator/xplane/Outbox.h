#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QtGlobal>

#include <list>
#include <optional>
#include <utility>

namespace tarvo::simulator::xplane {

/// A packed message to the plugin, and what the outbox has to know of it.
struct OutgoingMessage
{
    enum class Kind
    {
        Other,
        Position,       ///< where one aircraft is
        Existence,      ///< adds or removes one aircraft
        ExistenceOfAll, ///< removes every aircraft
    };

    OutgoingMessage(QByteArray message, Kind what = Kind::Other, QString whose = {})
        : bytes(std::move(message)), kind(what), callsign(std::move(whose))
    {
    }

    QByteArray bytes;
    Kind kind;
    QString callsign; ///< whose, of Position and Existence
};

/// What waits until the plugin's socket takes it. Of each aircraft only the newest position waits, in the place of the
/// one before, so that none waits longer because it changes often. Everything else is kept, in order.
///
/// A plugin that leaves mostBytes unread is given up: all that waits goes, and whatever comes until the socket takes
/// something again. It has to be told everything anew then; takeLoss() says so.
class Outbox
{
public:
    /// As much as some ten minutes of dense traffic bring, positions left out.
    static constexpr qsizetype mostBytes = 8 * 1024 * 1024;
    /// What each message takes there besides its bytes: many small ones count as well.
    static constexpr qsizetype perMessage = 128;

    /// An aircraft that is added or removed leaves no older position of its own behind. Gives how many messages are
    /// lost now: one that comes while the plugin is given up, or all that wait.
    quint64 put(const OutgoingMessage &message);
    /// Takes the message that is to be sent next; none when nothing waits.
    std::optional<QByteArray> next();
    bool isEmpty() const { return m_waiting.empty(); }
    /// What waits, in bytes of messages.
    qsizetype bytes() const { return m_bytes; }

    /// True while a plugin that doesn't read is given up.
    bool hasLost() const { return m_lost; }
    /// The socket takes messages again. True, once, when some were lost meanwhile.
    bool takeLoss();

private:
    using Waiting = std::list<OutgoingMessage>;

    bool replacePosition(const OutgoingMessage &message);
    void dropPosition(const QString &callsign);
    void dropPositions();
    void append(const OutgoingMessage &message);
    void erase(Waiting::iterator message);

    Waiting m_waiting;
    QHash<QString, Waiting::iterator> m_positions; ///< those among them, by callsign
    qsizetype m_bytes = 0;
    bool m_lost = false;
};

} // namespace tarvo::simulator::xplane

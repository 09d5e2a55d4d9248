#pragma once

#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>

namespace tarvo::ui {

struct Message;
class MessagesPageViewModel;

/// Where an answer to `message` goes: its private session, or else the radio.
QString answerChannel(const Message &message);

/// The whole client in a small window: its place, the last message, and the line that answers it. In QML it is the
/// context property "compactBackend".
class CompactViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool open READ isOpen WRITE setOpen NOTIFY openChanged)
    Q_PROPERTY(QRect place READ place NOTIFY openChanged)
    Q_PROPERTY(QString messageHead READ messageHead NOTIFY messageChanged)
    Q_PROPERTY(QString messageTime READ messageTime NOTIFY messageChanged)
    Q_PROPERTY(QString messageText READ messageText NOTIFY messageChanged)
    Q_PROPERTY(QString draft READ draft WRITE setDraft NOTIFY draftChanged)
    Q_PROPERTY(bool writing READ isWriting WRITE setWriting NOTIFY composeChanged)
    Q_PROPERTY(QString targetName READ targetName NOTIFY composeChanged)
    Q_PROPERTY(QString placeholder READ placeholder NOTIFY composeChanged)
    Q_PROPERTY(QString note READ note NOTIFY composeChanged)
    Q_PROPERTY(bool canSend READ canSend NOTIFY composeChanged)

public:
    static constexpr QSize size{420, 260}; ///< pixels

    /// `messages` outlives it.
    explicit CompactViewModel(MessagesPageViewModel &messages, QObject *parent = nullptr);

    bool isOpen() const { return m_open; }
    void setOpen(bool open);
    /// Where the window opens. To be set when openingSoon() is raised.
    QRect place() const { return m_place; }
    void setPlace(const QRect &place) { m_place = place; }

    // The newest message that is no note of the system; empty without one.
    QString messageHead() const { return m_head; } ///< who has written, or to whom the pilot has
    QString messageTime() const { return m_time; } ///< "hh:mm"
    QString messageText() const { return m_text; }

    /// Where the draft goes. It follows the newest message until something is written: then it stays.
    QString target() const { return m_target; }
    /// The target as a pilot names it: a callsign, or "电台".
    QString targetName() const;
    /// Something stands in the line, which the draft may not have yet: what an input method still composes.
    bool isWriting() const { return m_writing; }
    void setWriting(bool writing);
    QString draft() const { return m_draft; }
    void setDraft(const QString &draft);
    QString placeholder() const;
    /// What the pilot should know of the draft before he sends it; empty: nothing.
    QString note() const;
    bool canSend() const;

    /// Sends the draft. It stays when it can't go.
    Q_INVOKABLE void send();
    /// The window was there when it closed.
    Q_INVOKABLE void leftAt(int x, int y);

signals:
    void openingSoon();
    void openChanged();
    void placeLeft(QRect place);
    void messageChanged();
    void draftChanged();
    void composeChanged();

private:
    void showNewest();
    /// Aims at the newest message's sender, unless something is being written.
    void aim();
    bool isSilent() const;

    MessagesPageViewModel &m_messages;
    QRect m_place;
    QString m_head;
    QString m_time;
    QString m_text;
    QString m_answersTo; ///< where an answer to the newest message goes
    QString m_target;
    QString m_draft;
    qint64 m_shownId = 0; ///< 0: none is shown
    bool m_writing = false;
    bool m_open = false;
};

} // namespace tarvo::ui

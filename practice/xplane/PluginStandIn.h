#pragma once

#include "common/Clock.h"
#include "practice/xplane/DrawnTraffic.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>
#include <QVariantList>

#include <memory>

namespace tarvo::practice {

/// How the plugin takes an ADD or a DEL: at once, some time later, or not at all.
struct PluginAnswering
{
    bool silent = false;
    int delayMs = 0; ///< 0: at once
};

/// The plugin's end of the message socket (nng pair version 1, MessagePack). Answers VER, CSL, ADD and DEL by itself,
/// and keeps the aircraft that it draws: an aircraft appears as its ADDED is sent and goes as its DELETED is.
class PluginStandIn : public QObject
{
    Q_OBJECT

public:
    /// The clock rules when late answers are due.
    explicit PluginStandIn(const common::Clock &clock = common::systemClock(), QObject *parent = nullptr);
    ~PluginStandIn() override;

    /// Listens at an nng address. Returns false when it can't be had; see errorString().
    bool listen(const QString &url);
    /// Stops listening, draws nothing any more, and forgets the answers that were still to come.
    void close();
    /// Is gone without a word, as a plugin is that crashes: close(). False when it was gone already.
    bool vanish();
    /// Listens where it listened last. False when it is there already or the address can't be had.
    bool comeBack();
    bool isListening() const { return m_socket != nullptr; }
    QString url() const;
    QString errorString() const;

    /// What VER is answered with; -1 answers with no argument. 65536 by default.
    void setVersion(qint64 version);
    /// What CSL is answered with; true by default.
    void setCslValid(bool valid);
    /// Leaves everything unanswered while set.
    void setMute(bool mute);
    /// How ADD is answered from now on, and DEL. Both at once by default. Answers about one aircraft keep their order.
    void setAddAnswering(PluginAnswering answering);
    void setDelAnswering(PluginAnswering answering);
    /// Sends the late answers that are due by now. Called by a timer; a test with a clock of its own may call it.
    void answerDue();
    /// Late answers that are still to come.
    qsizetype pendingAnswers() const { return m_pending.size(); }

    /// What is drawn now, in the order in which it appeared.
    QList<DrawnAircraft> aircraft() const { return m_drawn.all(); }
    /// The drawn aircraft of that callsign; one without a callsign when there is none.
    DrawnAircraft aircraft(const QString &callsign) const { return m_drawn.find(callsign); }

    // What the plugin says of its own accord. False when nobody is there to take it.
    bool sendRadioMessage(const QString &message);                      ///< RDIOSENT
    bool sendPrivateMessage(const QString &to, const QString &message); ///< PRIVSENT
    bool requestStation(const QString &callsign);                       ///< REQSTATION
    bool forceDisconnect(const QString &reason);                        ///< FORCEDISC
    bool shutDown();                                                    ///< SHUTDOWN
    /// Any message; arguments are strings, numbers, booleans, lists of them, or invalid for nil.
    bool send(const QString &name, const QVariantList &arguments);
    /// Any bytes.
    bool sendRaw(const QByteArray &bytes);

signals:
    /// Whatever came from the client, before it is read.
    void bytesReceived(const QByteArray &bytes);
    /// A message of the client; nil arguments are invalid variants.
    void messageReceived(const QString &name, const QVariantList &arguments);
    void messageSent(const QString &name, const QVariantList &arguments);
    /// Bytes that are no message.
    void malformed(const QString &reason);

private:
    struct Socket;
    /// An ADD or a DEL that is to be answered.
    struct Pending
    {
        qint64 dueMs = 0; ///< steady time
        PluginMessage message;
        QString callsign() const { return message.arguments.value(0).toString(); }
    };

    void receiveAll();
    void receive(const QByteArray &bytes);
    void answer(const PluginMessage &message);
    void answerLater(const PluginMessage &message, const PluginAnswering &answering);
    void carryOut(const PluginMessage &message);
    void armTimer();

    const common::Clock &m_clock;
    QTimer m_timer;
    DrawnTraffic m_drawn;
    QList<Pending> m_pending; ///< by due time
    PluginAnswering m_addAnswering;
    PluginAnswering m_delAnswering;
    std::unique_ptr<Socket> m_socket;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QString m_url;
    QString m_error;
    qint64 m_version = 65536;
    bool m_cslValid = true;
    bool m_mute = false;
};

} // namespace tarvo::practice

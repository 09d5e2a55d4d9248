#pragma once

#include "common/Clock.h"
#include "ui/viewmodel/ChannelList.h"
#include "ui/viewmodel/MessageChannels.h"
#include "ui/viewmodel/MessageStore.h"
#include "ui/viewmodel/PrivateSessions.h"
#include "ui/viewmodel/ShownMessages.h"
#include "ui/viewmodel/StationList.h"
#include "ui/viewmodel/UnreadFirst.h"

#include <QAbstractListModel>
#include <QFlags>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariantList>

#include <optional>

namespace tarvo::model {
struct Controller;
}

namespace tarvo::ui {

/// All messages of a run, in channels; the line that is being written; the stations nearby. Only what is shown:
/// MessagesFeed feeds it and sends what it requests. In QML it is the context property
/// "messagesBackend".
///
/// A message is a map with "id", "time", "timestamp", "type", "direction", "directionLabel", "channel", "from", "to",
/// "message", "meta", "frequencies", "isDirect", "priority" and "unread". The lists of maps are made when they are
/// read. The page shows the item models, which change before the signals are raised.
class MessagesPageViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantList messages READ messages NOTIFY messagesChanged)
    Q_PROPERTY(QVariantList filteredMessages READ filteredMessages NOTIFY messagesChanged)
    Q_PROPERTY(QVariantList channels READ channels NOTIFY channelStatsChanged)
    Q_PROPERTY(QString activeChannel READ activeChannel WRITE setActiveChannel NOTIFY activeChannelChanged)
    Q_PROPERTY(QVariantList activeMessages READ activeMessages NOTIFY activeMessagesChanged)
    Q_PROPERTY(QVariantList privateSessions READ privateSessions NOTIFY sessionsChanged)
    Q_PROPERTY(QVariantList nearbyClients READ nearbyClients NOTIFY nearbyClientsChanged)
    Q_PROPERTY(QString draftTarget READ draftTarget WRITE setDraftTarget NOTIFY composeChanged)
    Q_PROPERTY(QString draftMessage READ draftMessage WRITE setDraftMessage NOTIFY composeChanged)
    Q_PROPERTY(QString activeFilter READ activeFilter WRITE setActiveFilter NOTIFY messagesChanged)
    Q_PROPERTY(QString summaryText READ summaryText NOTIFY channelStatsChanged)
    Q_PROPERTY(int unreadCount READ unreadCount NOTIFY unreadChanged)
    Q_PROPERTY(bool networkConnected READ networkConnected NOTIFY networkStateChanged)
    Q_PROPERTY(bool activeChannelCanSend READ activeChannelCanSend NOTIFY composeChanged)
    Q_PROPERTY(QString activeChannelTitle READ activeChannelTitle NOTIFY activeChannelChanged)
    Q_PROPERTY(QString composePlaceholder READ composePlaceholder NOTIFY composeChanged)
    Q_PROPERTY(QString composeNote READ composeNote NOTIFY composeChanged)
    Q_PROPERTY(bool composeBlocked READ composeBlocked NOTIFY composeChanged)
    /// What is looked for in the active channel; empty: everything is shown.
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchChanged)
    /// How many messages have come to the active channel since the search began, and aren't shown.
    Q_PROPERTY(int hiddenNews READ hiddenNews NOTIFY searchChanged)
    /// How many messages the active channel holds, shown or not.
    Q_PROPERTY(int activeCount READ activeCount NOTIFY activeMessagesChanged)
    /// How the last export of the active channel went; empty: there was none.
    Q_PROPERTY(QString exportNote READ exportNote NOTIFY exportChanged)
    Q_PROPERTY(bool exportFailed READ exportFailed NOTIFY exportChanged)
    Q_PROPERTY(QAbstractListModel *shownMessages READ shownMessages CONSTANT)
    Q_PROPERTY(QAbstractListModel *channelList READ channelList CONSTANT)
    Q_PROPERTY(QAbstractItemModel *sessionList READ shownSessions CONSTANT)
    Q_PROPERTY(QAbstractListModel *stationList READ stationList CONSTANT)

public:
    explicit MessagesPageViewModel(QObject *parent = nullptr, const common::Clock &clock = common::systemClock());

    /// Oldest first; the oldest goes beyond 300.
    QVariantList messages() const { return messagesForChannel(channels::all()); }
    /// The messages that `activeFilter` lets through.
    QVariantList filteredMessages() const { return messagesForChannel(m_activeFilter); }
    /// Maps with "key", "label", "active", "unread", "canSend" and "fixed".
    QVariantList channels() const;
    QString activeChannel() const { return m_activeChannel; }
    QVariantList activeMessages() const { return messagesForChannel(m_activeChannel); }
    /// Maps with "callsign", "unread", "lastMessage" and "lastTime".
    QVariantList privateSessions() const;
    /// Maps with "callsign", "type" ("atc"), "frequency" (MHz, three decimals) and "name" (empty while unknown), by
    /// callsign.
    QVariantList nearbyClients() const;
    QString draftTarget() const { return m_draftTarget; }
    QString draftMessage() const { return m_draftMessage; }
    QString activeFilter() const { return m_activeFilter; }
    QString summaryText() const;
    int unreadCount() const { return m_store.unread(); }
    bool networkConnected() const { return m_networkConnected; }
    bool activeChannelCanSend() const { return canSend(m_activeChannel); }
    QString activeChannelTitle() const;
    QString composePlaceholder() const;
    /// What the pilot should know of the draft before he sends it; empty: nothing.
    QString composeNote() const;
    /// What is sent now would go nowhere: no radio transmits.
    bool composeBlocked() const;
    /// The active channel's messages, as far as the search lets them through.
    ShownMessages *shownMessages() { return &m_shown; }
    /// The channels that always stand.
    ChannelList *channelList() { return &m_channels; }
    PrivateSessions *sessionList() { return &m_sessions; }
    /// Those with unread messages first.
    QAbstractItemModel *shownSessions() { return &m_unreadFirst; }
    StationList *stationList() { return &m_stations; }

    /// Shows the channel and marks its messages as read. The signals are raised even when it was active already.
    void setActiveChannel(const QString &channel);
    void setDraftTarget(const QString &target);
    void setDraftMessage(const QString &message);
    void setActiveFilter(const QString &filter);
    QString searchText() const { return m_searchText; }
    /// What the pilot sends into the active channel ends the search.
    void setSearchText(const QString &text);
    int hiddenNews() const;
    int activeCount() const { return m_store.countIn(m_activeChannel); }
    QString exportNote() const { return m_exportNote; }
    bool exportFailed() const { return m_exportFailed; }
    /// The active channel was written to a file, or not.
    void setExportNote(const QString &note, bool failed);

    bool isTransmitting() const { return m_transmitting; }
    /// The newest that is no note of the system.
    std::optional<StoredMessage> newestMessage() const;
    /// Sends to the radio or a callsign. No draft is touched. False without text or a network.
    bool post(const QString &channel, const QString &text);

    // The program's side. Callsigns are trimmed and upper-cased; bodies are kept as given; frequencies are kHz.
    void setNetworkConnected(bool connected);
    /// Whether a radio transmits; until somebody says otherwise one does.
    void setTransmitting(bool transmitting);
    void setOwnCallsign(const QString &callsign);
    void addPrivateReceived(const QString &from, const QString &message);
    void addPrivateSent(const QString &to, const QString &message);
    void addRadioReceived(const network::RadioMessageReceived &args);
    void addRadioSent(const QString &message, const QList<uint> &frequencies);
    void addServerMessage(const QString &message);
    void addBroadcast(const QString &from, const QString &message);
    void addWallopSent(const QString &message);
    void addSelcal(const QString &from, const QList<uint> &frequencies);
    void addSystemNote(const QString &text);
    /// Adds or updates a station. Not one without a frequency, or with a callsign that is too long or empty.
    void setNearbyController(const model::Controller &controller);
    void removeNearbyController(const QString &callsign);
    void clearNearby();

    /// Sessions stay; their counts go.
    Q_INVOKABLE void clearMessages();
    // Sending does nothing without text or without a network. The list gets the message when it is reported as sent.
    Q_INVOKABLE void sendPrivateMessage(const QString &target, const QString &message);
    Q_INVOKABLE void sendRadioMessage(const QString &message);
    Q_INVOKABLE void sendWallopMessage(const QString &message);
    /// `from`: a message's sender. Its session becomes the active channel and its callsign the draft's target.
    Q_INVOKABLE void prepareReply(const QString &from);
    Q_INVOKABLE void openPrivateSession(const QString &callsign);
    /// The session in which something happened last; their overview without any.
    Q_INVOKABLE void openLastSession();
    /// The row of the active channel's list is one that the pilot has sent.
    Q_INVOKABLE bool isOwnShown(int row) const;
    /// Has the active channel written to a file of the pilot's choice.
    Q_INVOKABLE void requestExport();
    /// Asks a station for its ATIS, which comes as a note of the system.
    Q_INVOKABLE void requestAtis(const QString &callsign);
    /// The session's messages stay in the list, as read. What was being written there is dropped: it must not be sent
    /// on the radio.
    Q_INVOKABLE void closePrivateSession(const QString &callsign);
    /// Those whose channel is exactly `channel`; all for "ALL".
    Q_INVOKABLE QVariantList messagesForChannel(const QString &channel) const;
    Q_INVOKABLE int unreadForChannel(const QString &channel) const { return m_store.unreadIn(channel); }

signals:
    void messagesChanged();
    void channelStatsChanged();
    void activeChannelChanged();
    void activeMessagesChanged();
    void sessionsChanged();
    void unreadChanged();
    void networkStateChanged();
    void nearbyClientsChanged();
    void composeChanged();
    void messageSoundRequested(QString type, int priority);
    void privateMessageRequested(QString target, QString message);
    void radioMessageRequested(QString message);
    void wallopRequested(QString message);
    void atisRequested(QString callsign);
    void searchChanged();
    void exportChanged();
    void exportRequested(QString fileName, QString text);

private:
    /// What one step has changed. The signals are raised at its end, when all members agree again.
    enum class Change : unsigned
    {
        Messages = 1U << 0U,
        ChannelStats = 1U << 1U,
        ActiveChannel = 1U << 2U,
        ActiveMessages = 1U << 3U,
        Sessions = 1U << 4U,
        Unread = 1U << 5U,
        NetworkState = 1U << 6U,
        NearbyClients = 1U << 7U,
        Compose = 1U << 8U,
        Search = 1U << 9U,
        Export = 1U << 10U,
    };
    Q_DECLARE_FLAGS(Changes, Change)

    void add(const Message &message);
    /// Emits the signals in their order. A listener may call the model again, so this is the last thing that a step
    /// does.
    void tell(Changes changes);
    Changes openSession(const QString &callsign);
    Changes enterChannel(const QString &channel);
    Changes search(const QString &text);
    /// Before the message is stored: what the pilot has sent himself must be seen.
    Changes heardWhileSearching(const Message &message);
    Changes markRead(const QString &channel);
    /// Brings a step's messages to the lists of the page.
    void show(const StoredMessage &added, const std::optional<StoredMessage> &gone);
    /// All of the active channel.
    void showChannel();
    /// Brings a channel's unread count to the lists that show it.
    void showUnread(const QString &channel);
    Changes writeDraft(const QString &target, const QString &message);
    /// True when the message has a row of its own now.
    bool hasRow(const Message &message) const;
    /// True when the active channel shows messages of `channel`.
    bool isShown(const QString &channel) const;
    bool canSend(const QString &channel) const;
    bool canSendText(const QString &text) const;
    QVariantMap channelEntry(const QString &key, bool fixed) const;

    const common::Clock &m_clock;
    MessageStore m_store;
    ShownMessages m_shown{this};
    ChannelList m_channels{this};
    PrivateSessions m_sessions{this};
    UnreadFirst m_unreadFirst{m_sessions, this};
    StationList m_stations{this};
    QString m_activeChannel = channels::radio();
    QString m_searchText;
    qint64 m_searchedFrom = 0; ///< the newest message's number when the search began
    QString m_exportNote;
    bool m_exportFailed = false;
    QString m_activeFilter = channels::all();
    QString m_draftTarget;
    QString m_draftMessage;
    QHash<QString, QString> m_drafts; ///< of the other channels
    QString m_ownCallsign;
    bool m_networkConnected = false;
    bool m_transmitting = true;
    int m_toldUnread = 0; ///< the unread count that listeners know
};

} // namespace tarvo::ui

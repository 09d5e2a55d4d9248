#include "ui/viewmodel/MessagesPageViewModel.h"

#include "model/Controller.h"
#include "ui/viewmodel/ComposeRules.h"
#include "ui/viewmodel/ExportedText.h"
#include "ui/viewmodel/Frequency.h"
#include "ui/viewmodel/ShownText.h"

#include <QVariantMap>

#include <algorithm>
#include <optional>
#include <utility>

namespace tarvo::ui {

namespace {

constexpr qsizetype longestName = 64;

/// A controller's name on one line; empty while nobody has told it.
QString shownName(const QString &realName)
{
    const QString name = shownText(realName, longestName).simplified();
    return name == model::Controller().realName ? QString() : name;
}

template <typename Row>
QVariantList toMaps(const QList<Row> &rows)
{
    QVariantList maps;
    for (const Row &row : rows)
        maps << row.toMap();
    return maps;
}

ShownMessage shown(const StoredMessage &stored)
{
    return {.message = stored.message, .id = stored.id, .wallMs = stored.wallMs};
}

} // namespace

MessagesPageViewModel::MessagesPageViewModel(QObject *parent, const common::Clock &clock)
    : QObject(parent), m_clock(clock)
{
}

QVariantList MessagesPageViewModel::channels() const
{
    QVariantList entries;
    for (const QString &key : channels::fixed()) {
        entries << channelEntry(key, true);
        if (key == channels::privateOverview())
            for (const PrivateSession &session : m_sessions.rows())
                entries << channelEntry(session.callsign, false);
    }
    return entries;
}

QVariantMap MessagesPageViewModel::channelEntry(const QString &key, bool fixed) const
{
    return {{QStringLiteral("key"), key},
            {QStringLiteral("label"), channels::label(key)},
            {QStringLiteral("active"), key == m_activeChannel},
            {QStringLiteral("unread"), m_store.unreadIn(key)},
            {QStringLiteral("canSend"), canSend(key)},
            {QStringLiteral("fixed"), fixed}};
}

QVariantList MessagesPageViewModel::privateSessions() const
{
    return toMaps(m_sessions.rows());
}

QVariantList MessagesPageViewModel::nearbyClients() const
{
    return m_stations.toList();
}

QVariantList MessagesPageViewModel::messagesForChannel(const QString &channel) const
{
    return toMaps(m_store.inChannel(channel));
}

QString MessagesPageViewModel::summaryText() const
{
    if (m_store.all().isEmpty())
        return tr("暂无消息");
    return tr("%1 条消息 | 私聊 %2 | 无线电 %3 | 服务 %4 | 告警 %5")
        .arg(m_store.all().size())
        .arg(m_store.inGroup(MessageGroup::Private))
        .arg(m_store.inGroup(MessageGroup::Radio))
        .arg(m_store.inGroup(MessageGroup::Service))
        .arg(m_store.inGroup(MessageGroup::Alert));
}

QString MessagesPageViewModel::activeChannelTitle() const
{
    const bool stands = channels::fixed().contains(m_activeChannel) || m_sessions.contains(m_activeChannel);
    return stands ? channels::label(m_activeChannel) : m_activeChannel;
}

QString MessagesPageViewModel::composePlaceholder() const
{
    if (!m_networkConnected)
        return tr("网络未连接");
    if (m_activeChannel == channels::radio())
        return tr("发送无线电文本消息...");
    if (m_activeChannel == channels::wallop())
        return tr("发送 WALLOP 管理员报告...");
    if (m_sessions.contains(m_activeChannel))
        return tr("发送私聊消息给 %1...").arg(m_activeChannel);
    return tr("当前频道只读");
}

bool MessagesPageViewModel::composeBlocked() const
{
    return m_networkConnected && !m_transmitting && m_activeChannel == channels::radio();
}

QString MessagesPageViewModel::composeNote() const
{
    return canSend(m_activeChannel) ? ui::composeNote(m_draftMessage, composeBlocked()) : QString();
}

void MessagesPageViewModel::setTransmitting(bool transmitting)
{
    if (transmitting == m_transmitting)
        return;
    m_transmitting = transmitting;
    tell(Change::Compose);
}

void MessagesPageViewModel::setActiveChannel(const QString &channel)
{
    tell(enterChannel(channel));
}

void MessagesPageViewModel::setDraftTarget(const QString &target)
{
    tell(writeDraft(target, m_draftMessage));
}

void MessagesPageViewModel::setDraftMessage(const QString &message)
{
    tell(writeDraft(m_draftTarget, message));
}

void MessagesPageViewModel::setActiveFilter(const QString &filter)
{
    if (filter == m_activeFilter)
        return;
    m_activeFilter = filter;
    tell(Change::Messages);
}

void MessagesPageViewModel::setSearchText(const QString &text)
{
    tell(search(text));
}

MessagesPageViewModel::Changes MessagesPageViewModel::search(const QString &text)
{
    if (text == m_searchText)
        return {};
    if (m_searchText.isEmpty())
        m_searchedFrom = m_store.lastId();
    m_searchText = text;
    showChannel();
    return Change::Search;
}

int MessagesPageViewModel::hiddenNews() const
{
    if (m_searchText.isEmpty())
        return 0;
    return static_cast<int>(std::ranges::count_if(m_store.all(), [this](const StoredMessage &stored) {
        return stored.id > m_searchedFrom && isShown(stored.message.channel) && !hasRow(stored.message);
    }));
}

void MessagesPageViewModel::requestExport()
{
    setExportNote({}, false); // the last one's
    emit exportRequested(exportFileName(activeChannelTitle(), m_clock.wallMs()),
                         exportedText(m_store.inChannel(m_activeChannel)));
}

void MessagesPageViewModel::setExportNote(const QString &note, bool failed)
{
    m_exportNote = note;
    m_exportFailed = failed;
    tell(Change::Export);
}

void MessagesPageViewModel::setNetworkConnected(bool connected)
{
    if (connected == m_networkConnected)
        return;
    m_networkConnected = connected;
    tell({Change::ChannelStats, Change::NetworkState, Change::Compose});
}

void MessagesPageViewModel::setOwnCallsign(const QString &callsign)
{
    m_ownCallsign = normalisedCallsign(callsign);
}

void MessagesPageViewModel::addPrivateReceived(const QString &from, const QString &message)
{
    add(Message::privateReceived(from, m_ownCallsign, message));
}

void MessagesPageViewModel::addPrivateSent(const QString &to, const QString &message)
{
    add(Message::privateSent(to, m_ownCallsign, message));
}

void MessagesPageViewModel::addRadioReceived(const network::RadioMessageReceived &args)
{
    add(Message::radioReceived(args));
}

void MessagesPageViewModel::addRadioSent(const QString &message, const QList<uint> &frequencies)
{
    add(Message::radioSent(m_ownCallsign, message, frequencies));
}

void MessagesPageViewModel::addServerMessage(const QString &message)
{
    add(Message::serverText(message));
}

void MessagesPageViewModel::addBroadcast(const QString &from, const QString &message)
{
    add(Message::broadcastReceived(from, message));
}

void MessagesPageViewModel::addWallopSent(const QString &message)
{
    add(Message::wallopSent(m_ownCallsign, message));
}

void MessagesPageViewModel::addSelcal(const QString &from, const QList<uint> &frequencies)
{
    add(Message::selcalCall(from, frequencies));
}

void MessagesPageViewModel::addSystemNote(const QString &text)
{
    add(Message::systemNote(text));
}

void MessagesPageViewModel::setNearbyController(const model::Controller &controller)
{
    if (controller.frequency == model::Controller::noFrequency) {
        removeNearbyController(controller.callsign);
        return;
    }
    const QString callsign = normalisedCallsign(controller.callsign);
    if (callsign.isEmpty() || callsign.size() > common::longestCallsign)
        return;
    const model::NearbyAtc station{.callsign = callsign,
                                   .frequency = megahertz(controller.normalisedFrequency), // what a pilot tunes
                                   .name = shownName(controller.realName)};
    if (m_stations.set(station))
        tell(Change::NearbyClients);
}

void MessagesPageViewModel::removeNearbyController(const QString &callsign)
{
    if (m_stations.remove(normalisedCallsign(callsign)))
        tell(Change::NearbyClients);
}

void MessagesPageViewModel::clearNearby()
{
    if (m_stations.clear())
        tell(Change::NearbyClients);
}

void MessagesPageViewModel::clearMessages()
{
    if (m_store.all().isEmpty())
        return;
    Changes changes{Change::Messages, Change::ChannelStats};
    if (activeCount() > 0)
        changes |= Changes{Change::ActiveMessages, Change::Search};
    m_store.clear();
    m_shown.reset({});
    for (const QString &key : channels::fixed())
        showUnread(key);
    for (const PrivateSession &session : QList(m_sessions.rows())) {
        if (session.unread > 0)
            changes |= Change::Sessions;
        showUnread(session.callsign);
    }
    tell(changes);
}

void MessagesPageViewModel::sendPrivateMessage(const QString &target, const QString &message)
{
    const QString callsign = normalisedCallsign(target);
    if (callsign.isEmpty() || !canSendText(message))
        return;
    emit privateMessageRequested(callsign, message);
    tell(writeDraft({}, {}));
}

void MessagesPageViewModel::sendRadioMessage(const QString &message)
{
    if (!canSendText(message))
        return;
    emit radioMessageRequested(message);
    tell(writeDraft({}, {}));
}

void MessagesPageViewModel::sendWallopMessage(const QString &message)
{
    if (!canSendText(message))
        return;
    emit wallopRequested(message);
    tell(writeDraft({}, {}));
}

bool MessagesPageViewModel::post(const QString &channel, const QString &text)
{
    if (!canSendText(text))
        return false;
    if (channel == channels::radio())
        emit radioMessageRequested(text);
    else
        emit privateMessageRequested(channel, text);
    return true;
}

std::optional<StoredMessage> MessagesPageViewModel::newestMessage() const
{
    const QList<StoredMessage> &all = m_store.all();
    const auto found = std::find_if(all.crbegin(), all.crend(), [](const StoredMessage &stored) {
        return stored.message.kind != MessageKind::System;
    });
    return found == all.crend() ? std::nullopt : std::optional(*found);
}

void MessagesPageViewModel::prepareReply(const QString &from)
{
    const QString callsign = normalisedCallsign(from);
    if (callsign == Message::serverName() || callsign == Message::systemName() || !channels::canBeSession(callsign))
        return;
    const Changes drafted = writeDraft(callsign, m_draftMessage);
    const Changes opened = openSession(callsign);
    tell(drafted | opened | enterChannel(callsign));
}

void MessagesPageViewModel::openPrivateSession(const QString &callsign)
{
    const QString key = normalisedCallsign(callsign);
    if (!channels::canBeSession(key))
        return;
    const Changes opened = openSession(key);
    tell(opened | enterChannel(key));
}

void MessagesPageViewModel::openLastSession()
{
    const QString latest = m_sessions.latest();
    setActiveChannel(latest.isEmpty() ? channels::privateOverview() : latest);
}

bool MessagesPageViewModel::isOwnShown(int row) const
{
    return row >= 0 && row < m_shown.rows().size() &&
           m_shown.rows().at(row).message.direction() == QLatin1String("out");
}

void MessagesPageViewModel::requestAtis(const QString &callsign)
{
    if (m_networkConnected)
        emit atisRequested(callsign);
}

void MessagesPageViewModel::closePrivateSession(const QString &callsign)
{
    const QString key = normalisedCallsign(callsign);
    if (!m_sessions.contains(key))
        return;
    Changes changes{Change::ChannelStats, Change::Sessions};
    changes |= markRead(key); // nobody could open the channel to read them
    m_sessions.close(key);
    if (key == m_activeChannel) {
        changes |= writeDraft({}, {});
        changes |= enterChannel(channels::radio());
    }
    m_drafts.remove(key);
    tell(changes);
}

void MessagesPageViewModel::add(const Message &message)
{
    const qint64 now = m_clock.wallMs();
    Changes changes = Change::Messages;
    if (message.group() == MessageGroup::Private && message.channel != channels::privateOverview()) {
        changes |= openSession(message.channel);
        m_sessions.note(message.channel, message.body, localTime(now));
        changes |= Change::Sessions;
    }
    changes |= heardWhileSearching(message);
    const bool unread = message.isIncoming() && message.channel != m_activeChannel;
    const std::optional<StoredMessage> gone = m_store.append(message, now, unread);
    const StoredMessage added = m_store.all().constLast(); // whoever sees the new row may clear the store
    if (!gone || !gone->countsLike(added))
        changes |= Change::ChannelStats;
    if (isShown(message.channel) || (gone && isShown(gone->message.channel)))
        changes |= Change::ActiveMessages;
    if (gone && gone->unread && m_sessions.contains(gone->message.channel))
        changes |= Change::Sessions;
    show(added, gone);
    tell(changes);
    if (message.isIncoming())
        emit messageSoundRequested(message.type(), message.priority());
}

MessagesPageViewModel::Changes MessagesPageViewModel::heardWhileSearching(const Message &message)
{
    if (m_searchText.isEmpty() || !isShown(message.channel))
        return {};
    if (message.direction() == QLatin1String("out"))
        search({});
    return Change::Search;
}

void MessagesPageViewModel::show(const StoredMessage &added, const std::optional<StoredMessage> &gone)
{
    if (hasRow(added.message))
        m_shown.append(shown(added));
    if (gone) {
        m_shown.forget(gone->id);
        showUnread(gone->message.channel);
    }
    showUnread(added.message.channel);
}

void MessagesPageViewModel::showChannel()
{
    QList<ShownMessage> messages;
    for (const StoredMessage &stored : m_store.inChannel(m_activeChannel))
        if (hasRow(stored.message))
            messages << shown(stored);
    m_shown.reset(messages);
}

void MessagesPageViewModel::showUnread(const QString &channel)
{
    const int unread = m_store.unreadIn(channel);
    m_channels.setUnread(channel, unread);
    m_sessions.setUnread(channel, unread);
}

void MessagesPageViewModel::tell(Changes changes)
{
    using Model = MessagesPageViewModel;
    constexpr std::pair<Change, void (Model::*)()> notices[] = {
        {Change::Messages, &Model::messagesChanged},
        {Change::ChannelStats, &Model::channelStatsChanged},
        {Change::ActiveChannel, &Model::activeChannelChanged},
        {Change::ActiveMessages, &Model::activeMessagesChanged},
        {Change::Sessions, &Model::sessionsChanged},
        {Change::Unread, &Model::unreadChanged},
        {Change::NetworkState, &Model::networkStateChanged},
        {Change::NearbyClients, &Model::nearbyClientsChanged},
        {Change::Compose, &Model::composeChanged},
        {Change::Search, &Model::searchChanged},
        {Change::Export, &Model::exportChanged},
    };
    if (m_toldUnread != m_store.unread())
        changes |= Change::Unread;
    m_toldUnread = m_store.unread();
    for (const auto &[change, notice] : notices)
        if (changes.testFlag(change))
            emit(this->*notice)();
}

MessagesPageViewModel::Changes MessagesPageViewModel::openSession(const QString &callsign)
{
    QString evicted;
    if (!m_sessions.open(callsign, m_activeChannel, evicted))
        return {};
    Changes changes{Change::ChannelStats, Change::Sessions};
    if (callsign == m_activeChannel) // a word without a session until now: nothing could be sent there
        changes |= Changes{Change::ActiveChannel, Change::Compose};
    if (!evicted.isEmpty())
        changes |= markRead(evicted);
    m_drafts.remove(evicted);
    return changes;
}

MessagesPageViewModel::Changes MessagesPageViewModel::enterChannel(const QString &channel)
{
    Changes changes{Change::ActiveChannel, Change::ActiveMessages, Change::Unread, Change::Compose};
    if (channel != m_activeChannel) {
        changes |= Change::ChannelStats;
        m_drafts.insert(m_activeChannel, m_draftMessage);
        m_draftMessage = m_drafts.take(channel);
        m_activeChannel = channel;
        m_searchText.clear();
        m_exportNote.clear();
        changes |= Changes{Change::Search, Change::Export};
        showChannel();
    }
    return changes | markRead(channel);
}

MessagesPageViewModel::Changes MessagesPageViewModel::markRead(const QString &channel)
{
    if (!m_store.markRead(channel))
        return {};
    showUnread(channel);
    Changes changes{Change::Messages, Change::ChannelStats};
    if (m_sessions.contains(channel))
        changes |= Change::Sessions;
    if (isShown(channel))
        changes |= Change::ActiveMessages;
    return changes;
}

MessagesPageViewModel::Changes MessagesPageViewModel::writeDraft(const QString &target, const QString &message)
{
    if (target == m_draftTarget && message == m_draftMessage)
        return {};
    m_draftTarget = target;
    m_draftMessage = message;
    return Change::Compose;
}

bool MessagesPageViewModel::hasRow(const Message &message) const
{
    return isShown(message.channel) && message.holds(m_searchText);
}

bool MessagesPageViewModel::isShown(const QString &channel) const
{
    return m_activeChannel == channel || m_activeChannel == channels::all();
}

bool MessagesPageViewModel::canSend(const QString &channel) const
{
    return m_networkConnected &&
           (channel == channels::radio() || channel == channels::wallop() || m_sessions.contains(channel));
}

bool MessagesPageViewModel::canSendText(const QString &text) const
{
    return m_networkConnected && !text.trimmed().isEmpty();
}

} // namespace tarvo::ui

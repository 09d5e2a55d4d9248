#include "ui/viewmodel/CompactViewModel.h"

#include "ui/viewmodel/ComposeRules.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/ShownText.h"

namespace tarvo::ui {

namespace {

constexpr qsizetype longestShown = 400; ///< characters; three lines hold fewer

QString oneLine(const QString &text)
{
    return shownText(text, longestShown).simplified();
}

} // namespace

QString answerChannel(const Message &message)
{
    const bool isSession = message.group() == MessageGroup::Private && message.channel != channels::privateOverview();
    return isSession ? message.channel : channels::radio();
}

CompactViewModel::CompactViewModel(MessagesPageViewModel &messages, QObject *parent)
    : QObject(parent), m_messages(messages), m_answersTo(channels::radio()), m_target(channels::radio())
{
    connect(&messages, &MessagesPageViewModel::messagesChanged, this, &CompactViewModel::showNewest);
    connect(&messages, &MessagesPageViewModel::networkStateChanged, this, &CompactViewModel::composeChanged);
    connect(&messages, &MessagesPageViewModel::composeChanged, this, &CompactViewModel::composeChanged);
}

void CompactViewModel::setOpen(bool open)
{
    if (open == m_open)
        return;
    if (open)
        emit openingSoon();
    m_open = open;
    emit openChanged();
}

void CompactViewModel::showNewest()
{
    const std::optional<StoredMessage> newest = m_messages.newestMessage();
    if (m_shownId == (newest ? newest->id : 0))
        return;
    m_shownId = newest ? newest->id : 0;
    const Message message = newest ? newest->message : Message();
    const bool isOwn = message.direction() == QLatin1String("out");
    const QString to = message.to.isEmpty() ? message.frequencies : message.to;
    m_head = oneLine(isOwn ? tr("我 → %1").arg(to) : message.from);
    m_time = newest ? localTime(newest->wallMs).left(5) : QString();
    m_text = oneLine(message.body.isEmpty() ? message.meta : message.body);
    m_answersTo = answerChannel(message);
    emit messageChanged();
    aim();
}

void CompactViewModel::aim()
{
    if (m_writing || !m_draft.isEmpty() || m_target == m_answersTo)
        return;
    m_target = m_answersTo;
    emit composeChanged();
}

void CompactViewModel::setWriting(bool writing)
{
    if (writing == m_writing)
        return;
    m_writing = writing;
    emit composeChanged();
    aim();
}

void CompactViewModel::setDraft(const QString &draft)
{
    if (draft == m_draft)
        return;
    m_draft = draft;
    emit draftChanged();
    emit composeChanged();
    aim();
}

QString CompactViewModel::targetName() const
{
    return m_target == channels::radio() ? tr("电台") : m_target;
}

QString CompactViewModel::placeholder() const
{
    if (!m_messages.networkConnected())
        return tr("网络未连接");
    return m_target == channels::radio() ? tr("在当前频率上发送...") : tr("回复 %1...").arg(m_target);
}

bool CompactViewModel::isSilent() const
{
    return m_target == channels::radio() && !m_messages.isTransmitting();
}

QString CompactViewModel::note() const
{
    return m_messages.networkConnected() ? composeNote(m_draft, isSilent()) : QString();
}

bool CompactViewModel::canSend() const
{
    return m_messages.networkConnected() && !isSilent();
}

void CompactViewModel::send()
{
    if (canSend() && m_messages.post(m_target, m_draft))
        setDraft({});
}

void CompactViewModel::leftAt(int x, int y)
{
    emit placeLeft(QRect(QPoint(x, y), size));
}

} // namespace tarvo::ui

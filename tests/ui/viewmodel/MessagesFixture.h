#pragma once

#include "Rows.h"
#include "model/RadioMessageReceived.h"
#include "support/ManualClock.h"
#include "ui/viewmodel/MessagesPageViewModel.h"

#include <QStringList>

#include <functional>

namespace tarvo::test {

using Event = std::function<void(ui::MessagesPageViewModel &)>;

inline network::RadioMessageReceived heardText(const QString &message, bool direct = false,
                                               const QList<uint> &frequencies = {118025})
{
    return {.from = u"CCA1"_qs,
            .message = message,
            .frequencies = QVariant::fromValue(frequencies),
            .direct = direct,
            .dualReceive = false};
}

/// A messages model of a pilot who is online, and which of its signals came, in their order.
class MessagesFixture
{
public:
    MessagesFixture()
    {
        using Model = ui::MessagesPageViewModel;
        model.setOwnCallsign(u"CES2352"_qs);
        model.setNetworkConnected(true);
        listen(&Model::messagesChanged, "messages");
        listen(&Model::channelStatsChanged, "stats");
        listen(&Model::activeChannelChanged, "channel");
        listen(&Model::activeMessagesChanged, "active");
        listen(&Model::sessionsChanged, "sessions");
        listen(&Model::unreadChanged, "unread");
        listen(&Model::networkStateChanged, "network");
        listen(&Model::nearbyClientsChanged, "nearby");
        listen(&Model::composeChanged, "compose");
        QObject::connect(&model, &Model::messageSoundRequested, &model, [this](const QString &type, int priority) {
            m_signals << u"sound %1 %2"_qs.arg(type).arg(priority);
        });
    }

    /// The signals since the last call, with a blank between two.
    QString told()
    {
        const QString text = m_signals.join(u' ');
        m_signals.clear();
        return text;
    }

    QVariantMap last() const { return model.messages().isEmpty() ? QVariantMap() : model.messages().last().toMap(); }

    ManualClock clock;
    ui::MessagesPageViewModel model{nullptr, clock};

private:
    void listen(void (ui::MessagesPageViewModel::*signal)(), const char *name)
    {
        QObject::connect(&model, signal, &model, [this, name] { m_signals << QLatin1String(name); });
    }

    QStringList m_signals;
};

} // namespace tarvo::test
Q_DECLARE_METATYPE(tarvo::test::Event)

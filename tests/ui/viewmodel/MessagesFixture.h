#pragma once

#include "model/RadioMessageReceived.h"
#include "support/ManualClock.h"
#include "ui/viewmodel/MessagesPageViewModel.h"

#include <QStringList>

namespace tarvo::test {

/// A messages model of a pilot who is online, and which of its signals came, in their order.
class MessagesFixture
{
public:
    MessagesFixture()
    {
        using Model = ui::MessagesPageViewModel;
        model.setOwnCallsign(QStringLiteral("CES2352"));
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
            m_signals << QStringLiteral("sound %1 %2").arg(type).arg(priority);
        });
    }

    /// The signals since the last call, with a blank between two.
    QString told()
    {
        const QString text = m_signals.join(u' ');
        m_signals.clear();
        return text;
    }

    static QString field(const QVariant &row, const char *key)
    {
        return row.toMap().value(QLatin1String(key)).toString();
    }

    QVariantMap last() const { return model.messages().isEmpty() ? QVariantMap() : model.messages().last().toMap(); }

    /// One key of every row, with a blank between two.
    static QString column(const QVariantList &rows, const char *key)
    {
        QStringList values;
        for (const QVariant &row : rows)
            values << field(row, key);
        return values.join(u' ');
    }

    static network::RadioMessageReceived radio(const QString &message, bool direct = false,
                                               const QList<uint> &frequencies = {118025})
    {
        return {.from = QStringLiteral("CCA1"),
                .message = message,
                .frequencies = QVariant::fromValue(frequencies),
                .direct = direct,
                .dualReceive = false};
    }

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

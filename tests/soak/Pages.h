#pragma once

#include "e2e/Client.h"
#include "ui/MessagesFeed.h"
#include "ui/SimulatorFeed.h"
#include "ui/SoundPlayer.h"
#include "ui/viewmodel/MessagesPageViewModel.h"
#include "ui/viewmodel/ServerPageViewModel.h"
#include "ui/viewmodel/SimulatorPageViewModel.h"

namespace tarvo::test {

/// The pages' models with their feeds, which the main window makes with each session and which go with it. In the place
/// of the pages somebody reads the traffic and the messages that are shown.
struct Pages
{
    ui::ServerPageViewModel server;
    ui::MessagesPageViewModel messages;
    ui::SimulatorPageViewModel simulator;

    /// The session's managers have just been made.
    explicit Pages(Client &client)
        : server(client.icao),
          m_simulatorFeed(client.manager, simulator),
          m_messagesFeed(client.manager, client.controllers, messages, m_sounds)
    {
        using ui::MessagesPageViewModel;
        using ui::SimulatorPageViewModel;
        simulator.setMode(QStringLiteral("XPLANE"));
        // No sound: what the sound system keeps is not counted here.
        QObject::disconnect(&messages, &MessagesPageViewModel::messageSoundRequested, &m_messagesFeed, nullptr);
        QObject::connect(client.manager.get(), &manager::NetworkManager::notificationPosted, &m_context,
                         [this](const QString &text) {
                             server.addRecentEvent(QStringLiteral("通知"), text, QStringLiteral("系统"));
                             server.appendLog(text); // more than the main window logs: it is to be filled
                         });
        QObject::connect(client.manager.get(), &manager::NetworkManager::simulatorConnectionStateChanged, &m_context,
                         [this](bool connected) { simulator.setSimulatorState(connected, {}); });
        QObject::connect(&simulator, &SimulatorPageViewModel::trafficChanged, &m_context,
                         [this] { m_read += simulator.plotContacts().size(); });
        QAbstractListModel *shown = messages.shownMessages();
        QObject::connect(shown, &QAbstractListModel::rowsInserted, &m_context,
                         [this, shown](const QModelIndex &, int first, int last) {
                             for (int row = first; row <= last; ++row)
                                 m_read += shown->itemData(shown->index(row)).size();
                         });
        messages.setActiveChannel(QStringLiteral("ALL"));
    }

    /// Shows the traffic now, as a timer does every second. Gives how many aircraft are plotted.
    qsizetype plotAll()
    {
        QMetaObject::invokeMethod(m_simulatorFeed.findChild<QTimer *>(QStringLiteral("trafficTimer")), "timeout");
        return simulator.plotContacts().size();
    }

    qsizetype logLines() const { return server.serverLog().count(QLatin1Char('\n')) + 1; }

private:
    ui::SoundPlayer m_sounds;
    ui::SimulatorFeed m_simulatorFeed;
    ui::MessagesFeed m_messagesFeed;
    QObject m_context;
    qsizetype m_read = 0; ///< rows; keeps the reading from being for nothing
};

} // namespace tarvo::test

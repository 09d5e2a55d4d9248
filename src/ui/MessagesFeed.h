#pragma once

#include "common/Clock.h"

#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>

#include <memory>

namespace tarvo::manager {
class ControllerManager;
class NetworkManager;
} // namespace tarvo::manager

namespace tarvo::ui {

class SoundPlayer;

class MessagesPageViewModel;

/// Brings the texts of the network and the stations in reach to the messages page, and sends what the page asks for.
/// Plays a sound for incoming messages: for the first at once, then one for all that come within half a second.
class MessagesFeed : public QObject
{
    Q_OBJECT

public:
    /// `controllers` may be null; then no station is listed.
    MessagesFeed(std::shared_ptr<manager::NetworkManager> network,
                 std::shared_ptr<manager::ControllerManager> controllers, MessagesPageViewModel &page,
                 SoundPlayer &sounds, QObject *parent = nullptr, const common::Clock &clock = common::systemClock());

private:
    void connectSession();
    void connectTexts();
    void connectRadios();
    void showAtis(const QString &from, const QStringList &lines);
    void connectStations();
    void connectRequests();
    void takeOwnCallsign();
    void requestSound(int priority);
    void playSound();

    std::shared_ptr<manager::NetworkManager> m_network;
    std::shared_ptr<manager::ControllerManager> m_controllers;
    MessagesPageViewModel &m_page;
    SoundPlayer &m_sounds;
    int m_soundPriority = 0;    ///< the highest that waits to be heard; 0: none
    QSet<QString> m_atisWanted; ///< stations, upper-case, whose ATIS the pilot has asked for
    QTimer m_soundTimer;        ///< ends in the next turn of the event loop, or after the gap
    const common::Clock &m_clock;
    qint64 m_gapEndsMs = 0; ///< steady time
};

} // namespace tarvo::ui

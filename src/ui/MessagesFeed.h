#pragma once

#include <QObject>

#include <memory>

namespace tarvo::manager {
class ControllerManager;
class NetworkManager;
} // namespace tarvo::manager

namespace tarvo::ui {

class SoundPlayer;

namespace viewmodel {
class MessagesPageViewModel;
}

/// Brings what is said on the network, and the stations in reach, to the messages page; sends what the page asks for;
/// and lets each incoming message be heard.
class MessagesFeed : public QObject
{
    Q_OBJECT

public:
    /// `controllers` may be null; then no station is listed.
    MessagesFeed(std::shared_ptr<manager::NetworkManager> network,
                 std::shared_ptr<manager::ControllerManager> controllers, viewmodel::MessagesPageViewModel &page,
                 SoundPlayer &sounds, QObject *parent = nullptr);

private:
    void connectSession();
    void connectTexts();
    void connectStations();
    void connectRequests();
    void playMessageSound(int priority);

    std::shared_ptr<manager::NetworkManager> m_network;
    std::shared_ptr<manager::ControllerManager> m_controllers;
    viewmodel::MessagesPageViewModel &m_page;
    SoundPlayer &m_sounds;
};

} // namespace tarvo::ui

#include "ui/MessagesFeed.h"

#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "ui/SoundPlayer.h"
#include "ui/viewmodel/MessagesPageViewModel.h"

#include <QUrl>

namespace tarvo::ui {

using manager::ControllerManager;
using manager::NetworkManager;
using viewmodel::MessagesPageViewModel;

namespace {
constexpr int highPriority = 2;
constexpr float highPriorityVolume = 0.75F;
constexpr float usualVolume = 0.55F;
} // namespace

MessagesFeed::MessagesFeed(std::shared_ptr<NetworkManager> network, std::shared_ptr<ControllerManager> controllers,
                           MessagesPageViewModel &page, SoundPlayer &sounds, QObject *parent)
    : QObject(parent),
      m_network(std::move(network)),
      m_controllers(std::move(controllers)),
      m_page(page),
      m_sounds(sounds)
{
    connectSession();
    connectTexts();
    if (m_controllers)
        connectStations();
    connectRequests();
    connect(&m_page, &MessagesPageViewModel::messageSoundRequested, this,
            [this](const QString &, int priority) { playMessageSound(priority); });
}

void MessagesFeed::connectSession()
{
    connect(m_network.get(), &NetworkManager::networkConnected, this, [this](const QString &callsign) {
        m_page.clearNearby(); // the controllers' list is emptied without a word, here and at the end
        m_page.setOwnCallsign(callsign);
        m_page.setNetworkConnected(true);
    });
    connect(m_network.get(), &NetworkManager::networkDisconnected, this, [this] {
        m_page.setNetworkConnected(false);
        m_page.clearNearby();
    });
    connect(m_network.get(), &NetworkManager::notificationPosted, this,
            [this](const QString &message) { m_page.addSystemNote(message); });
}

void MessagesFeed::connectTexts()
{
    const NetworkManager *network = m_network.get();
    MessagesPageViewModel *page = &m_page;
    connect(network, &NetworkManager::serverMessageReceived, page, &MessagesPageViewModel::addServerMessage);
    connect(network, &NetworkManager::privateMessageReceived, page, &MessagesPageViewModel::addPrivateReceived);
    connect(network, &NetworkManager::privateMessageSent, page, &MessagesPageViewModel::addPrivateSent);
    connect(network, &NetworkManager::broadcastMessageReceived, page, &MessagesPageViewModel::addBroadcast);
    connect(network, &NetworkManager::wallopSent, page, &MessagesPageViewModel::addWallopSent);
    connect(network, &NetworkManager::radioMessageSent, page, &MessagesPageViewModel::addRadioSent);
    connect(network, &NetworkManager::radioMessageReceived, page, &MessagesPageViewModel::addRadioReceived);
    connect(network, &NetworkManager::selcalAlertReceived, page, &MessagesPageViewModel::addSelcal);
}

void MessagesFeed::connectStations()
{
    const ControllerManager *controllers = m_controllers.get();
    connect(controllers, &ControllerManager::controllerAdded, &m_page, &MessagesPageViewModel::setNearbyController);
    connect(controllers, &ControllerManager::controllerUpdated, &m_page, &MessagesPageViewModel::setNearbyController);
    connect(controllers, &ControllerManager::controllerDeleted, &m_page,
            [this](const model::Controller &station) { m_page.removeNearbyController(station.callsign); });
}

void MessagesFeed::connectRequests()
{
    NetworkManager *network = m_network.get();
    connect(&m_page, &MessagesPageViewModel::privateMessageRequested, network, &NetworkManager::sendPrivateMessage);
    connect(&m_page, &MessagesPageViewModel::radioMessageRequested, network, &NetworkManager::sendRadioMessage);
    connect(&m_page, &MessagesPageViewModel::wallopRequested, network, &NetworkManager::sendWallop);
}

void MessagesFeed::playMessageSound(int priority)
{
    m_sounds.play(QUrl(QStringLiteral("qrc:/resources/sounds/manager.mp3")),
                  priority >= highPriority ? highPriorityVolume : usualVolume);
}

} // namespace tarvo::ui

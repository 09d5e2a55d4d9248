#include "ui/MessagesFeed.h"

#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "ui/SoundPlayer.h"
#include "ui/viewmodel/MessagesPageViewModel.h"

#include <QUrl>

#include <algorithm>
#include <utility>

namespace tarvo::ui {

using manager::ControllerManager;
using manager::NetworkManager;

namespace {
constexpr int highPriority = 2;
constexpr float highPriorityVolume = 0.75F;
constexpr float usualVolume = 0.55F;

/// A sound that is begun anew sooner is hardly heard.
constexpr qint64 soundGapMs = 500;
} // namespace

MessagesFeed::MessagesFeed(std::shared_ptr<NetworkManager> network, std::shared_ptr<ControllerManager> controllers,
                           MessagesPageViewModel &page, SoundPlayer &sounds, QObject *parent,
                           const common::Clock &clock)
    : QObject(parent),
      m_network(std::move(network)),
      m_controllers(std::move(controllers)),
      m_page(page),
      m_sounds(sounds),
      m_soundTimer(this),
      m_clock(clock)
{
    connectSession();
    connectTexts();
    if (m_controllers)
        connectStations();
    connectRequests();
    connect(&m_page, &MessagesPageViewModel::messageSoundRequested, this,
            [this](const QString &, int priority) { requestSound(priority); });
    m_soundTimer.setObjectName(QStringLiteral("soundTimer"));
    m_soundTimer.setSingleShot(true);
    connect(&m_soundTimer, &QTimer::timeout, this, &MessagesFeed::playSound);
}

void MessagesFeed::connectSession()
{
    connect(m_network.get(), &NetworkManager::networkConnected, this, [this] {
        m_page.clearNearby(); // the controllers' list is emptied without a word, here and at the end
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
    // Before the texts themselves, in the order of connecting. A text may come before the login is complete.
    connect(network, &NetworkManager::privateMessageReceived, this, &MessagesFeed::takeOwnCallsign);
    connect(network, &NetworkManager::privateMessageSent, this, &MessagesFeed::takeOwnCallsign);
    connect(network, &NetworkManager::wallopSent, this, &MessagesFeed::takeOwnCallsign);
    connect(network, &NetworkManager::radioMessageSent, this, &MessagesFeed::takeOwnCallsign);

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
    connect(controllers, &ControllerManager::controllerDeleted, this,
            [this](const model::Controller &station) { m_page.removeNearbyController(station.callsign); });
}

void MessagesFeed::connectRequests()
{
    NetworkManager *network = m_network.get();
    connect(&m_page, &MessagesPageViewModel::privateMessageRequested, network, &NetworkManager::sendPrivateMessage);
    connect(&m_page, &MessagesPageViewModel::radioMessageRequested, network, &NetworkManager::sendRadioMessage);
    connect(&m_page, &MessagesPageViewModel::wallopRequested, network, &NetworkManager::sendWallop);
}

void MessagesFeed::takeOwnCallsign()
{
    m_page.setOwnCallsign(m_network->connectInfo().callsign);
}

void MessagesFeed::requestSound(int priority)
{
    m_soundPriority = std::max(m_soundPriority, priority);
    if (!m_soundTimer.isActive())
        m_soundTimer.start(static_cast<int>(std::max<qint64>(0, m_gapEndsMs - m_clock.steadyMs())));
}

void MessagesFeed::playSound()
{
    const int priority = std::exchange(m_soundPriority, 0);
    m_sounds.play(QUrl(QStringLiteral("qrc:/resources/sounds/manager.mp3")),
                  priority >= highPriority ? highPriorityVolume : usualVolume);
    m_gapEndsMs = m_clock.steadyMs() + soundGapMs;
}

} // namespace tarvo::ui

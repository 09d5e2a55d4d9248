#include "ui/MessagesFeed.h"

#include "manager/ControllerManager.h"
#include "manager/NetworkManager.h"
#include "ui/SoundPlayer.h"
#include "ui/viewmodel/ComposeRules.h"
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
    connectRadios();
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

void MessagesFeed::connectRadios()
{
    const auto look = [this] { m_page.setTransmitting(!m_network->transmitFrequencies().isEmpty()); };
    connect(m_network.get(), &NetworkManager::networkConnected, this, look);
    connect(m_network.get(), &NetworkManager::radioStatesUpdate, this, look);
    connect(m_network.get(), &NetworkManager::simulatorChanged, this, look);
    look();
}

/// Stations are asked for their ATIS by others, too: only what the pilot has asked for is shown.
void MessagesFeed::showAtis(const QString &from, const QStringList &lines)
{
    if (m_atisWanted.remove(from.toUpper()))
        m_page.addSystemNote(tr("%1 ATIS：%2").arg(from, lines.join(u'\n')));
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
    // The bubble shows what went out.
    connect(network, &NetworkManager::privateMessageSent, page,
            [page](const QString &to, const QString &message) { page->addPrivateSent(to, textOnTheWire(message)); });
    connect(network, &NetworkManager::broadcastMessageReceived, page, &MessagesPageViewModel::addBroadcast);
    connect(network, &NetworkManager::wallopSent, page,
            [page](const QString &message) { page->addWallopSent(textOnTheWire(message)); });
    connect(network, &NetworkManager::radioMessageSent, page,
            [page](const QString &message, const QList<uint> &frequencies) {
                page->addRadioSent(textOnTheWire(message), frequencies);
            });
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
    connect(&m_page, &MessagesPageViewModel::atisRequested, this, [this, network](const QString &callsign) {
        m_atisWanted.insert(callsign.toUpper());
        m_page.setActiveChannel(channels::server());
        network->requestControllerAtis(callsign);
    });
    connect(network, &NetworkManager::controllerAtisReceived, this, &MessagesFeed::showAtis);
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

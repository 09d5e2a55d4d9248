#include "ui/VoiceFeed.h"

#include "manager/NetworkManager.h"
#include "ui/viewmodel/VoiceServiceViewModel.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/AudioHandler.h"

#include <utility>

namespace tarvo::ui {

using manager::NetworkManager;
using voice::AudioDevice;
using voice::AudioHandler;

VoiceFeed::VoiceFeed(std::shared_ptr<NetworkManager> network, AudioDevice &devices, VoiceServiceViewModel &page,
                     QObject *parent)
    : QObject(parent), m_network(std::move(network)), m_devices(devices)
{
    connect(m_network.get(), &NetworkManager::radioStatesUpdate, &page, &VoiceServiceViewModel::radioStackUpdate);
    connect(m_network.get(), &NetworkManager::disableVoiceTransmit, &page, &VoiceServiceViewModel::disableTransmit);
    connect(m_network.get(), &NetworkManager::networkDisconnected, &page, &VoiceServiceViewModel::endTests);
    connect(&m_network->voiceClient(), &voice::VoiceClient::audioHandlerCreated, this, &VoiceFeed::giveDevices);
}

void VoiceFeed::giveDevices(AudioHandler *audio)
{
    audio->follow(m_devices);
    audio->reloadConfig();
}

} // namespace tarvo::ui

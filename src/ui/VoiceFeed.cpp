#include "ui/VoiceFeed.h"

#include "manager/NetworkManager.h"
#include "ui/viewmodel/VoiceServiceViewModel.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/AudioDevice.h"
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
    connect(&m_devices, &AudioDevice::inputDeviceChanged, audio, &AudioHandler::setInputDevice);
    connect(&m_devices, &AudioDevice::outputHeadphoneDeviceChanged, audio, &AudioHandler::setHeadphoneDevice);
    connect(&m_devices, &AudioDevice::outputSpeakerDeviceChanged, audio, &AudioHandler::setSpeakerDevice);
    connect(audio, &AudioHandler::devicesChanged, &m_devices, &AudioDevice::reload);
    if (m_devices.isLoaded()) {
        m_devices.announceChosen();
    } else {
        // The first sound must not come from a device that the pilot has not chosen.
        audio->waitForDevices();
        connect(&m_devices, &AudioDevice::loaded, audio, &AudioHandler::stopWaitingForDevices);
        m_devices.load();
    }
    audio->reloadConfig();
}

} // namespace tarvo::ui

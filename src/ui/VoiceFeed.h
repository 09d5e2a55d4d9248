#pragma once

#include <QObject>

#include <memory>

namespace tarvo::manager {
class NetworkManager;
}
namespace tarvo::voice {
class AudioDevice;
class AudioHandler;
} // namespace tarvo::voice

namespace tarvo::ui {

class VoiceServiceViewModel;

/// Brings the radios to the voice page, and the pilot's devices to the audio engine.
class VoiceFeed : public QObject
{
    Q_OBJECT

public:
    /// `devices` and `page` must outlive it.
    VoiceFeed(std::shared_ptr<manager::NetworkManager> network, voice::AudioDevice &devices,
              VoiceServiceViewModel &page, QObject *parent = nullptr);

private:
    void giveDevices(voice::AudioHandler *audio);

    std::shared_ptr<manager::NetworkManager> m_network;
    voice::AudioDevice &m_devices;
};

} // namespace tarvo::ui

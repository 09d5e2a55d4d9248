#include "manager/VoiceRadios.h"

#include "model/RadioStackState.h"

#include <utility>

namespace tarvo::manager {

using voice::ConnectionState;
using voice::VoiceClient;

namespace {

float volumeOf(quint32 percent)
{
    return static_cast<float>(percent) / 100.0F;
}

} // namespace

VoiceRadios::VoiceRadios(AppConfig &config, std::shared_ptr<voice::SoundThread> sound,
                         const ServiceEndpoints &endpoints, const common::Clock &clock, QObject *parent)
    : QObject(parent), m_client(config, std::move(sound), endpoints, clock)
{
    for (const quint32 id : {0U, 1U})
        m_client.addTransmitter({.id = id});
    connect(&m_client, &VoiceClient::connectionStateChanged, this, [this](ConnectionState state) {
        if (state == ConnectionState::Ready)
            emit ready();
    });
}

void VoiceRadios::tell(const model::RadioStackState &state)
{
    if (!m_client.isReady())
        return;
    m_client.updateTransmitter({.id = 0,
                                .frequency = state.com1Frequency,
                                .transmit = state.com1TransmitEnabled,
                                .receive = state.com1ReceiveEnabled,
                                .volume = volumeOf(state.com1Volume)});
    m_client.updateTransmitter({.id = 1,
                                .frequency = state.com2Frequency,
                                .transmit = state.com2TransmitEnabled && !state.com1TransmitEnabled,
                                .receive = state.com2ReceiveEnabled,
                                .volume = volumeOf(state.com2Volume)});
}

} // namespace tarvo::manager

#include "voice/client/VoiceClient.h"

#include "AppConfig.h"
#include "common/OneLine.h"
#include "common/SecretMask.h"
#include "voice/engine/AudioHandler.h"
#include "voice/engine/SoundThread.h"
#include "voice/wire/ControlMessage.h"
#include "voice/wire/VoicePacket.h"

#include <QDebug>

#include <stdexcept>
#include <utility>

namespace tarvo::voice {

using common::VolumeInfo;

VoiceClient::VoiceClient(AppConfig &config, std::shared_ptr<SoundThread> sound, const ServiceEndpoints &endpoints,
                         const common::Clock &clock, QObject *parent)
    : QObject(parent), m_config(config), m_sound(std::move(sound)), m_clock(clock), m_network(endpoints)
{
    connect(&m_network, &NetworkHandler::socketStateChanged, this, &VoiceClient::onSocketState);
    connect(&m_network, &NetworkHandler::controlMessageReceived, this, &VoiceClient::onControlMessage);
    connect(&m_network, &NetworkHandler::voicePacketReceived, this, &VoiceClient::onVoicePacket);
    connect(&m_network, &NetworkHandler::errorOccurred, this, &VoiceClient::onError);
}

VoiceClient::~VoiceClient()
{
    m_network.stop(); // an attempt that is under way returns soon
}

void VoiceClient::setCid(quint32 cid)
{
    m_cid = cid;
    m_network.setCid(cid);
}

bool VoiceClient::isReady() const
{
    return m_state == ConnectionState::Ready && m_cid != 0 && !m_callsign.empty();
}

void VoiceClient::setState(ConnectionState state)
{
    if (std::exchange(m_state, state) != state)
        emit connectionStateChanged(state);
}

// --- the connection ---

void VoiceClient::connectToServer(const QString &token)
{
    if (m_isTrying)
        return;
    m_token = token;
    m_connecting.clear(); // of attempts that were called off before they began
    m_isTrying = true;
    if (!m_connecting.post(m_network.attempt(token)))
        m_network.failAttempt(QStringLiteral("No thread is to be had for the voice connection"));
    setState(ConnectionState::Connecting);
}

void VoiceClient::onError(const QString &error)
{
    m_isTrying = false;
    emit errorOccurred(error);
}

void VoiceClient::disconnectFromServer()
{
    m_network.disconnectFromServer();
    m_currentTransmitter.reset();
    if (m_audio)
        m_audio->stopAll();
    m_transmitters.clear();
}

void VoiceClient::onSocketState(bool connected)
{
    ++m_session;
    m_isTrying = false;
    m_isStarting = false;
    setState(connected ? ConnectionState::Connected : ConnectionState::Disconnected);
}

// --- what the server says ---

void VoiceClient::onControlMessage(const ControlMessage &message)
{
    switch (message.type) {
    case ControlMessageType::Pong:
        qDebug("VoiceClient: pong received");
        break;
    case ControlMessageType::Error:
        onServerError(QString::fromUtf8(message.data));
        break;
    case ControlMessageType::Message:
        onMessage(message.data);
        break;
    case ControlMessageType::Disconnect:
        onServerDisconnect();
        break;
    case ControlMessageType::Channel:
    case ControlMessageType::Ping:
    case ControlMessageType::TextReceive:
    case ControlMessageType::VoiceReceive:
        break;
    }
}

/// A server may quote the token that it refuses, and send any number of these.
void VoiceClient::onServerError(const QString &error)
{
    const QString text = common::excerpt(common::withoutSecrets(error, {m_token}));
    switch (m_serverErrors.add(m_clock.steadyMs())) {
    case common::DropCount::Line::Warning:
    case common::DropCount::Line::Debug:
        qWarning().noquote() << "VoiceClient: server error:" << text;
        break;
    case common::DropCount::Line::None:
        break;
    }
    emit errorOccurred(text);
}

void VoiceClient::onMessage(const std::string &data)
{
    const std::optional<std::string> callsign = callsignOfGreeting(data);
    if (!callsign)
        return;
    m_callsign = fittingCallsign(*callsign);
    m_network.setCallsign(m_callsign);
    if (m_state == ConnectionState::Connected && !std::exchange(m_isStarting, true))
        startAudio();
}

/// The sockets stay open until the server closes them. A second such line ends no test of the devices.
void VoiceClient::onServerDisconnect()
{
    if (m_state == ConnectionState::Disconnected)
        return;
    m_transmitters.clear();
    if (m_audio)
        m_audio->stopAll();
    setState(ConnectionState::Disconnected);
}

void VoiceClient::startAudio()
{
    audioHandler()->startAll([this, session = m_session] { onAudioStarted(session); });
}

void VoiceClient::onAudioStarted(quint64 session)
{
    if (session != m_session || m_state != ConnectionState::Connected)
        return; // the connection whose streams these were is over
    setState(ConnectionState::Ready);
    qDebug("VoiceClient: identity verified, ready");
}

// --- the audio engine ---

AudioHandler *VoiceClient::audioHandler()
{
    if (m_audio)
        return m_audio.get();
    m_audio = std::make_unique<AudioHandler>(m_config, m_sound);
    connect(m_audio.get(), &AudioHandler::encodedAudioReady, this, &VoiceClient::sendVoice);
    connect(m_audio.get(), &AudioHandler::inputVolumeChanged, this,
            [this](const VolumeInfo &volume) { m_inputVolume = volume; });
    connect(m_audio.get(), &AudioHandler::outputVolumeChanged, this,
            [this](const VolumeInfo &volume) { m_outputVolume = volume; });
    for (const auto &[id, transmitter] : m_transmitters)
        m_audio->addChannel(transmitter);
    emit audioHandlerCreated(m_audio.get());
    return m_audio.get();
}

// --- the radios ---

void VoiceClient::addTransmitter(const Transmitter &transmitter)
{
    m_transmitters.set(transmitter);
    if (m_audio)
        m_audio->addChannel(transmitter);
    if (transmitter.frequency != 0)
        updateTransmitter(transmitter);
}

void VoiceClient::updateTransmitter(const Transmitter &transmitter)
{
    if (!isReady())
        return;
    m_transmitters.set(transmitter); // the end of the last session has forgotten it
    if (m_audio)
        m_audio->routeChannel(transmitter);
    if (transmitter.transmit) {
        m_currentTransmitter = transmitter.id;
        emit currentFrequencyChanged(static_cast<int>(transmitter.frequency));
    }
    sendChannel(transmitter);
}

void VoiceClient::sendChannel(const Transmitter &transmitter)
{
    m_network.sendControlMessage({.type = ControlMessageType::Channel,
                                  .cid = static_cast<qint32>(m_cid),
                                  .callsign = m_callsign,
                                  .transmitter = static_cast<qint32>(transmitter.id),
                                  .data = channelData(transmitter.frequency, transmitter.receive)});
}

void VoiceClient::sendMessage(const QString &first, const QString &second)
{
    if (!isReady())
        return;
    m_network.sendControlMessage({.type = ControlMessageType::Message,
                                  .cid = static_cast<qint32>(m_cid),
                                  .callsign = m_callsign,
                                  .data = (first + QLatin1Char(':') + second).toStdString()});
}

// --- voice ---

void VoiceClient::setPtt(bool active)
{
    m_pttActive = active;
    if (m_audio) {
        m_audio->setPttActive(active);
        m_audio->playPttTone(active);
    }
}

/// Whether the radio still transmits is not asked: the key alone is the gate.
void VoiceClient::sendVoice(const std::vector<std::uint8_t> &opus)
{
    if (!isReady() || !m_currentTransmitter)
        return;
    const Transmitter *found = m_transmitters.find(*m_currentTransmitter);
    if (!found)
        return;
    const Transmitter transmitter = *found; // whoever hears the signal may retune
    emit voiceDataSent(m_inputVolume);
    try {
        m_network.sendVoicePacket(serializeVoicePacket(m_cid, static_cast<int>(transmitter.id),
                                                       static_cast<int>(transmitter.frequency), m_callsign, opus));
    } catch (const std::invalid_argument &error) {
        qWarning("VoiceClient: voice not sent: %s", error.what());
    }
}

/// While the own key is held everything is a conflict, and nobody takes a frequency.
void VoiceClient::onVoicePacket(const VoicePacket &packet)
{
    const bool conflict = m_pttActive || !m_speakers.take(packet.frequency, packet.callsign, m_clock.steadyMs());
    const Transmitter *transmitter = m_transmitters.tunedTo(packet.frequency);
    if (!transmitter || !m_audio)
        return;
    m_audio->playVoice(*transmitter, packet.payload, conflict);
    emit voiceDataReceived(QString::fromUtf8(packet.callsign), packet.frequency, m_outputVolume);
}

} // namespace tarvo::voice

#include "ui/viewmodel/VoiceServiceViewModel.h"

#include "AppConfig.h"
#include "input/PttService.h"
#include "model/RadioStackState.h"
#include "ui/viewmodel/ShownText.h"
#include "voice/client/VoiceClient.h"
#include "voice/engine/AudioDevice.h"
#include "voice/engine/AudioHandler.h"

#include <QDateTime>
#include <QDebug>
#include <QStringList>

#include <chrono>
#include <cmath>
#include <utility>

namespace tarvo::ui {

using common::VolumeInfo;
using voice::AudioDevice;
using voice::AudioHandler;
using voice::ConnectionState;
using voice::DeviceEvent;
using voice::StreamRole;
using voice::VoiceClient;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype mostEvents = 100;
constexpr qsizetype longestEvent = 300;
constexpr std::chrono::milliseconds flowsFor = 80ms; ///< four frames
constexpr std::chrono::milliseconds timelineStep = 500ms;
constexpr double kHzInMHz = 1000.0;

constexpr Role<VoiceEvent> voiceEventRoles[] = {
    {"time", member<&VoiceEvent::time, VoiceEvent>},
    {"text", member<&VoiceEvent::text, VoiceEvent>},
};

QString nameOf(StreamRole role)
{
    switch (role) {
    case StreamRole::Input:
        return VoiceServiceViewModel::tr("麦克风");
    case StreamRole::Headphone:
        return VoiceServiceViewModel::tr("耳机");
    case StreamRole::Speaker:
        return VoiceServiceViewModel::tr("扬声器");
    }
    return {};
}

QString textOf(DeviceEvent event)
{
    switch (event) {
    case DeviceEvent::Ended:
        return VoiceServiceViewModel::tr("音频设备已断开：%1");
    case DeviceEvent::Failed:
        return VoiceServiceViewModel::tr("无法打开音频设备：%1");
    case DeviceEvent::Back:
        return VoiceServiceViewModel::tr("音频设备已恢复：%1");
    case DeviceEvent::Replaced:
        return VoiceServiceViewModel::tr("已改用其他音频设备：%1");
    }
    return {};
}

LinkState linkStateOf(ConnectionState state)
{
    switch (state) {
    case ConnectionState::Disconnected:
        return LinkState::Absent;
    case ConnectionState::Connecting:
        return LinkState::Connecting;
    case ConnectionState::Connected:
        return LinkState::Connected;
    case ConnectionState::Authenticating:
        return LinkState::Authenticating;
    case ConnectionState::Ready:
        return LinkState::Ready;
    }
    return LinkState::Unknown;
}

QString unknownCallsign()
{
    return QStringLiteral("Unknown");
}

} // namespace

VoiceServiceViewModel::VoiceServiceViewModel(VoiceClient *client, input::PttService &ptt, AudioDevice &devices,
                                             AppConfig &config, QObject *parent, const common::Clock &clock)
    : QObject(parent),
      m_client(client),
      m_devices(devices),
      m_config(config),
      m_clock(clock),
      m_callsign(unknownCallsign()),
      m_events(voiceEventRoles)
{
    m_sendTimer.setObjectName(QStringLiteral("sendTimer"));
    m_receiveTimer.setObjectName(QStringLiteral("receiveTimer"));
    for (QTimer *timer : {&m_sendTimer, &m_receiveTimer}) {
        timer->setParent(this);
        timer->setSingleShot(true);
        timer->setInterval(flowsFor);
    }
    connect(&m_sendTimer, &QTimer::timeout, this, [this] {
        tellIfSeen(&VoiceServiceViewModel::sendingChanged);
        setInputMeter({});
    });
    connect(&m_receiveTimer, &QTimer::timeout, this, [this] {
        tellIfSeen(&VoiceServiceViewModel::receivingChanged);
        setOutputMeter({});
    });
    m_timelineTimer.setInterval(timelineStep);
    connect(&m_timelineTimer, &QTimer::timeout, this, &VoiceServiceViewModel::moveTimeline);
    connect(&ptt, &input::PttService::activeChanged, this, &VoiceServiceViewModel::onKey);
    for (const auto known : {&AudioDevice::deviceListChanged, &AudioDevice::loaded})
        connect(&m_devices, known, this, &VoiceServiceViewModel::reportMissingDevices);
    if (m_client)
        connectClient();
}

void VoiceServiceViewModel::connectClient()
{
    connect(m_client, &VoiceClient::connectionStateChanged, this, &VoiceServiceViewModel::onConnectionState);
    connect(m_client, &VoiceClient::errorOccurred, this, &VoiceServiceViewModel::onError);
    connect(m_client, &VoiceClient::voiceDataSent, this, &VoiceServiceViewModel::onSent);
    connect(m_client, &VoiceClient::voiceDataReceived, this, &VoiceServiceViewModel::onReceived);
    connect(m_client, &VoiceClient::audioHandlerCreated, this, [this](const AudioHandler *audio) {
        connect(audio, &AudioHandler::deviceEvent, this, &VoiceServiceViewModel::onDeviceEvent);
    });
}

// --- the session ---

bool VoiceServiceViewModel::connected() const
{
    return m_state == ConnectionState::Connected || m_state == ConnectionState::Authenticating ||
           m_state == ConnectionState::Ready;
}

LinkState VoiceServiceViewModel::linkState() const
{
    return m_attemptFailed ? LinkState::Failed : linkStateOf(m_state);
}

QString VoiceServiceViewModel::connectionStateText() const
{
    return textOf(linkStateOf(m_state));
}

void VoiceServiceViewModel::connectToVoiceServer()
{
    if (!m_client)
        return;
    qInfo("Connecting to voice server...");
    prepareDevices();
    setAttemptFailed(false);
    m_client->connectToServer(m_config.get(config::authToken));
}

QString VoiceServiceViewModel::connectionTone() const
{
    return toneText(toneOf(linkState()));
}

void VoiceServiceViewModel::setAttemptFailed(bool failed)
{
    if (std::exchange(m_attemptFailed, failed) != failed)
        emit connectStateChanged();
}

void VoiceServiceViewModel::setFailure(const QString &reason)
{
    const QString shown = shownText(reason, longestEvent);
    if (std::exchange(m_failureText, shown) != shown)
        emit failureChanged();
}

void VoiceServiceViewModel::onError(const QString &error)
{
    addEvent(QStringLiteral("ERROR: ") + error);
    setAttemptFailed(m_state == ConnectionState::Connecting);
}

void VoiceServiceViewModel::onConnectionState(ConnectionState state)
{
    m_state = state;
    m_attemptFailed = false;
    const bool named = state == ConnectionState::Ready;
    m_callsign = named ? shownText(QString::fromStdString(m_client->callsign()), SpeechTimeline::longestCallsign)
                       : unknownCallsign();
    if (state != ConnectionState::Disconnected)
        endTests();
    emit connectStateChanged();
}

void VoiceServiceViewModel::addEvent(const QString &text)
{
    const QString time = QDateTime::fromMSecsSinceEpoch(m_clock.wallMs()).toString(QStringLiteral("HH:mm:ss"));
    m_events.prepend({time, shownText(text, longestEvent)}, mostEvents);
    emit eventLogChanged();
}

// --- the radios ---

QString VoiceServiceViewModel::frequencyText(const VoiceRadio &radio)
{
    return QStringLiteral("%1 MHz / %2 MHz").arg(radio.activeMHz, 0, 'g', 6).arg(radio.standbyMHz, 0, 'g', 6);
}

void VoiceServiceViewModel::radioStackUpdate(const model::RadioStackState &state)
{
    const VoiceRadio com1{state.com1Frequency / kHzInMHz, state.com1StandbyFrequency / kHzInMHz,
                          state.com1TransmitEnabled, state.com1ReceiveEnabled, state.com1Volume / 100.0};
    const VoiceRadio com2{state.com2Frequency / kHzInMHz, state.com2StandbyFrequency / kHzInMHz,
                          state.com2TransmitEnabled, state.com2ReceiveEnabled, state.com2Volume / 100.0};
    if (std::exchange(m_com1, com1) != com1)
        emit com1InfoChanged();
    if (std::exchange(m_com2, com2) != com2)
        emit com2InfoChanged();
}

void VoiceServiceViewModel::setCom1Volume(double volume)
{
    if (std::exchange(m_com1.volume, volume) != volume)
        emit com1InfoChanged();
}

void VoiceServiceViewModel::setCom2Volume(double volume)
{
    if (std::exchange(m_com2.volume, volume) != volume)
        emit com2InfoChanged();
}

// --- push-to-talk ---

void VoiceServiceViewModel::setPtt(bool active)
{
    m_buttonHeld = active;
    if (m_pttActive != (m_buttonHeld || m_keyHeld))
        applyPtt();
}

/// Passes on what it is told already, too: the key may have been held when the engine came into being.
void VoiceServiceViewModel::onKey(bool active)
{
    m_keyHeld = active;
    applyPtt();
}

void VoiceServiceViewModel::applyPtt()
{
    const bool active = m_buttonHeld || m_keyHeld;
    const bool changed = std::exchange(m_pttActive, active) != active;
    if (m_client)
        m_client->setPtt(active);
    if (changed)
        emit pttActiveChanged();
}

void VoiceServiceViewModel::disableTransmit()
{
    m_keyHeld = false;
    setPtt(false);
    addEvent(tr("服务器已停止本机发话，请重新按下 PTT"));
}

// --- voice ---

void VoiceServiceViewModel::onSent(const VolumeInfo &volume)
{
    m_sendTimer.start();
    tellIfSeen(&VoiceServiceViewModel::sendingChanged);
    setInputMeter(volume);
    heard(static_cast<int>(m_client->currentTransmitter().value_or(0)), m_callsign, true);
}

void VoiceServiceViewModel::onReceived(const QString &callsign, int kHz, const VolumeInfo &volume)
{
    m_receiveTimer.start();
    m_lastReceiveFreq = kHz / kHzInMHz;
    m_lastReceiveCallsign = shownText(callsign, SpeechTimeline::longestCallsign);
    tellIfSeen(&VoiceServiceViewModel::receivingChanged);
    setOutputMeter(volume);
    heard(radioOf(kHz), callsign, false);
}

/// As the client chooses: of two on one frequency one that is heard, and then COM2.
int VoiceServiceViewModel::radioOf(int kHz) const
{
    const auto isTuned = [kHz](const VoiceRadio &radio) { return std::lround(radio.activeMHz * kHzInMHz) == kHz; };
    if (!isTuned(m_com1))
        return 1;
    return isTuned(m_com2) && (m_com2.receives || !m_com1.receives) ? 1 : 0;
}

void VoiceServiceViewModel::heard(int radio, const QString &callsign, bool own)
{
    m_speech.heard(radio, callsign, own, m_clock.steadyMs());
    if (m_timelineTimer.isActive())
        return;
    m_timelineTimer.start();
    moveTimeline();
}

void VoiceServiceViewModel::moveTimeline()
{
    m_timelineNow = m_clock.steadyMs();
    m_speech.forgetOld(m_timelineNow);
    if (m_speech.rows().isEmpty())
        m_timelineTimer.stop();
    tellIfSeen(&VoiceServiceViewModel::timelineMoved);
}

void VoiceServiceViewModel::setInputMeter(const VolumeInfo &volume)
{
    m_input = volume;
    tellIfSeen(&VoiceServiceViewModel::inputLevelChanged);
}

void VoiceServiceViewModel::setOutputMeter(const VolumeInfo &volume)
{
    m_output = volume;
    tellIfSeen(&VoiceServiceViewModel::outputLevelChanged);
}

/// What changes fifty times a second costs more to show than to hear.
void VoiceServiceViewModel::tellIfSeen(Signal changed)
{
    if (m_isSeen)
        emit(this->*changed)();
}

void VoiceServiceViewModel::setSeen(bool seen)
{
    if (m_isSeen == seen)
        return;
    if (!seen)
        resetMeters(); // which would go on being painted
    m_isSeen = seen;
    for (const Signal changed : {&VoiceServiceViewModel::sendingChanged, &VoiceServiceViewModel::receivingChanged,
                                 &VoiceServiceViewModel::inputLevelChanged, &VoiceServiceViewModel::outputLevelChanged})
        tellIfSeen(changed);
    moveTimeline();
}

void VoiceServiceViewModel::resetMeters()
{
    setInputMeter({});
    setOutputMeter({});
}

/// During a session the frames that go out and come in feed the meters.
void VoiceServiceViewModel::ensureMeterConnections()
{
    if (std::exchange(m_metersConnected, true))
        return;
    const AudioHandler *audio = m_client->audioHandler();
    connect(audio, &AudioHandler::inputVolumeChanged, this, [this](const VolumeInfo &volume) {
        if (m_micTesting)
            setInputMeter(volume);
    });
    connect(audio, &AudioHandler::outputVolumeChanged, this, [this](const VolumeInfo &volume) {
        if (m_micTesting)
            setOutputMeter(volume);
    });
}

// --- the tests of the devices ---

void VoiceServiceViewModel::setLoopbackTarget(bool speaker)
{
    if (std::exchange(m_loopbackTarget, speaker) == speaker)
        return;
    if (m_micTesting)
        m_client->audioHandler()->startMicTest(speaker);
    emit voiceTestingChanged();
}

void VoiceServiceViewModel::startMicTest()
{
    if (!canTest() || m_micTesting)
        return;
    endTests(); // the other one would close the devices under this one
    prepareDevices();
    m_micTesting = true;
    m_client->audioHandler()->startMicTest(m_loopbackTarget);
    emit voiceTestingChanged();
    reportMissingDevices();
}

void VoiceServiceViewModel::stopMicTest()
{
    if (!m_micTesting)
        return;
    m_client->audioHandler()->stopMicTest();
    m_micTesting = false;
    resetMeters();
    emit voiceTestingChanged();
}

void VoiceServiceViewModel::startPlayConflict()
{
    if (!canTest() || m_conflictTesting)
        return;
    endTests();
    prepareDevices();
    m_conflictTesting = true;
    m_client->audioHandler()->startConflictTest();
    emit voiceTestingChanged();
    reportMissingDevices();
}

void VoiceServiceViewModel::stopPlayConflict()
{
    if (!canTest() || !m_conflictTesting)
        return;
    endTests();
    resetMeters();
}

void VoiceServiceViewModel::endTests()
{
    stopMicTest();
    if (!m_conflictTesting)
        return;
    m_conflictTesting = false;
    m_client->audioHandler()->stopConflictTest();
    emit voiceTestingChanged();
}

/// A device that was chosen since may not have been told to the engine: the default is only taken at a start.
void VoiceServiceViewModel::prepareDevices()
{
    ensureMeterConnections();
    if (m_devices.isLoaded())
        m_devices.announceChosen();
    else
        m_devices.load();
}

void VoiceServiceViewModel::onDeviceEvent(DeviceEvent event, const std::vector<StreamRole> &roles)
{
    QStringList devices;
    for (const StreamRole role : roles)
        devices.append(nameOf(role));
    addEvent(textOf(event).arg(devices.join(QStringLiteral("、"))));
}

/// A test without a device is silent, and the pilot has to know why. Each list holds "Default" beside the devices.
void VoiceServiceViewModel::reportMissingDevices()
{
    if (!m_devices.isLoaded() || !(m_micTesting || m_conflictTesting))
        return;
    const bool noInput = m_micTesting && m_devices.inputNames().size() < 2;
    if (noInput || m_devices.headphoneNames().size() < 2)
        addEvent(tr("未找到音频设备"));
}

// --- the small window ---

void VoiceServiceViewModel::setMiniMode(bool open)
{
    if (!open)
        setPtt(false); // its button may go while it is held
    if (std::exchange(m_miniMode, open) != open)
        emit miniModeChanged();
}

} // namespace tarvo::ui

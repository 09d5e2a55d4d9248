#include "ui/viewmodel/VoiceSettingsViewModel.h"

#include "AppConfig.h"
#include "input/PttService.h"
#include "voice/engine/AudioDevice.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarvo::ui::viewmodel {

using input::PttService;
using voice::AudioDevice;

/// A number and the range in which it is shown and set.
struct NumberSetting
{
    RealKey key;
    double lowest;
    double highest;
};

namespace {

constexpr NumberSetting micGainSetting{config::voiceMicGain, -20, 20};
constexpr NumberSetting pttVolumeSetting{config::voicePttVolume, 0, 1};
constexpr NumberSetting pttPressFreqSetting{config::voicePttPressFreq, 100, 4000};
constexpr NumberSetting pttReleaseFreqSetting{config::voicePttReleaseFreq, 100, 4000};
constexpr NumberSetting conflictVolumeSetting{config::voiceConflictVolume, 0, 1};

QString defaultDeviceName()
{
    return QString::fromUtf8(config::voiceInputDevice.defaultValue);
}

} // namespace

VoiceSettingsViewModel::VoiceSettingsViewModel(AppConfig &config, AudioDevice &devices, PttService &ptt,
                                               QObject *parent)
    : QObject(parent), m_config(config), m_devices(devices), m_ptt(ptt)
{
    connect(&m_devices, &AudioDevice::deviceListChanged, this, &VoiceSettingsViewModel::deviceListChanged);
    connect(&m_devices, &AudioDevice::deviceChanged, this, &VoiceSettingsViewModel::deviceChanged);
    connect(&m_ptt, &PttService::boundKeyChanged, this, &VoiceSettingsViewModel::pttDisplayNameChanged);
    connect(&m_ptt, &PttService::keyCaptured, this, &VoiceSettingsViewModel::onKeyCaptured);
    connect(&m_ptt, &PttService::listeningChanged, this, [this](bool listening) {
        m_pttListening = listening;
        emit pttListeningChanged();
    });
}

QStringList VoiceSettingsViewModel::driverNames() const
{
    return m_devices.driverNames();
}

QStringList VoiceSettingsViewModel::inputDeviceNames() const
{
    return m_devices.inputNames();
}

QStringList VoiceSettingsViewModel::outputDeviceNames() const
{
    return m_devices.headphoneNames(); // the speaker's are the same
}

int VoiceSettingsViewModel::driverIndex() const
{
    return m_devices.driverIndex();
}

int VoiceSettingsViewModel::inputIndex() const
{
    return m_devices.inputIndex();
}

int VoiceSettingsViewModel::outputHeadphoneIndex() const
{
    return m_devices.headphoneIndex();
}

int VoiceSettingsViewModel::outputSpeakerIndex() const
{
    return m_devices.speakerIndex();
}

QString VoiceSettingsViewModel::inputHint() const
{
    return hint(config::voiceInputDevice, m_devices.inputNames());
}

QString VoiceSettingsViewModel::outputHeadphoneHint() const
{
    return hint(config::voiceOutputHeadphoneDevice, m_devices.headphoneNames());
}

QString VoiceSettingsViewModel::outputSpeakerHint() const
{
    return hint(config::voiceOutputSpeakerDevice, m_devices.speakerNames());
}

QString VoiceSettingsViewModel::hint(const StringKey &key, const QStringList &names) const
{
    if (m_devices.inputIndex() < 0) // nothing is known as yet
        return {};
    if (names.size() < 2)
        return tr("未找到音频设备");
    const QString stored = m_config.get(key);
    return names.contains(stored) ? QString() : tr("找不到设备“%1”，使用默认设备").arg(stored);
}

QString VoiceSettingsViewModel::pttKey() const
{
    return PttService::normalizeKey(m_ptt.boundKey()).isEmpty() ? tr("未设置") : m_ptt.boundKeyName();
}

double VoiceSettingsViewModel::micGain() const
{
    return number(micGainSetting);
}

double VoiceSettingsViewModel::pttVolume() const
{
    return number(pttVolumeSetting);
}

double VoiceSettingsViewModel::pttPressFreq() const
{
    return number(pttPressFreqSetting);
}

double VoiceSettingsViewModel::pttReleaseFreq() const
{
    return number(pttReleaseFreqSetting);
}

double VoiceSettingsViewModel::conflictVolume() const
{
    return number(conflictVolumeSetting);
}

bool VoiceSettingsViewModel::pttDevice() const
{
    return m_config.get(config::voicePttPlayDevice) != 0;
}

bool VoiceSettingsViewModel::conflictDevice() const
{
    return m_config.get(config::voiceConflictPlayDevice) != 0;
}

void VoiceSettingsViewModel::setMicGain(double value)
{
    setNumber(micGainSetting, value);
}

void VoiceSettingsViewModel::setPttVolume(double value)
{
    setNumber(pttVolumeSetting, value);
}

void VoiceSettingsViewModel::setPttPressFreq(double value)
{
    setNumber(pttPressFreqSetting, value);
}

void VoiceSettingsViewModel::setPttReleaseFreq(double value)
{
    setNumber(pttReleaseFreqSetting, value);
}

void VoiceSettingsViewModel::setConflictVolume(double value)
{
    setNumber(conflictVolumeSetting, value);
}

void VoiceSettingsViewModel::setPttDevice(bool speaker)
{
    m_config.set(config::voicePttPlayDevice, speaker ? 1 : 0);
    emit settingsChanged();
}

void VoiceSettingsViewModel::setConflictDevice(bool speaker)
{
    m_config.set(config::voiceConflictPlayDevice, speaker ? 1 : 0);
    emit settingsChanged();
}

double VoiceSettingsViewModel::number(const NumberSetting &setting) const
{
    return std::clamp(m_config.get(setting.key), setting.lowest, setting.highest);
}

void VoiceSettingsViewModel::setNumber(const NumberSetting &setting, double value)
{
    const double wanted = std::clamp(value, setting.lowest, setting.highest);
    if (std::isnan(value) || wanted == number(setting))
        return;
    m_config.set(setting.key, wanted);
    emit settingsChanged();
}

void VoiceSettingsViewModel::ensureDeviceListLoaded()
{
    m_devices.load();
}

void VoiceSettingsViewModel::setDriver(int driverIndex)
{
    whenLoaded([this, driverIndex] {
        if (driverIndex < 0 || driverIndex >= m_devices.driverNames().size())
            return;
        m_devices.setDriver(driverIndex);
        m_config.set(config::voiceDriver, m_devices.driverType());
        m_config.set(config::voiceInputDevice, defaultDeviceName());
        m_config.set(config::voiceOutputHeadphoneDevice, defaultDeviceName());
        m_config.set(config::voiceOutputSpeakerDevice, defaultDeviceName());
        emit deviceChanged(); // the hints have changed since AudioDevice told
    });
}

void VoiceSettingsViewModel::setInput(int deviceIndex)
{
    choose(config::voiceInputDevice, &AudioDevice::inputNames, &AudioDevice::setInput, deviceIndex);
}

void VoiceSettingsViewModel::setOutputHeadphone(int deviceIndex)
{
    choose(config::voiceOutputHeadphoneDevice, &AudioDevice::headphoneNames, &AudioDevice::setOutputHeadphone,
           deviceIndex);
}

void VoiceSettingsViewModel::setOutputSpeaker(int deviceIndex)
{
    choose(config::voiceOutputSpeakerDevice, &AudioDevice::speakerNames, &AudioDevice::setOutputSpeaker, deviceIndex);
}

void VoiceSettingsViewModel::choose(const StringKey &key, QStringList (AudioDevice::*names)() const,
                                    void (AudioDevice::*set)(int), int index)
{
    whenLoaded([=, this] {
        AudioDevice &devices = m_devices; // UndefinedBehaviorSanitizer of g++ 12 can't do without
        const QStringList offered = (devices.*names)();
        if (index < 0 || index >= offered.size())
            return;
        (devices.*set)(index);
        m_config.set(key, offered[index]);
        emit deviceChanged(); // AudioDevice tells nothing of the default, and knows nothing of the hints
    });
}

void VoiceSettingsViewModel::whenLoaded(std::function<void()> step)
{
    if (m_devices.isLoaded()) {
        step();
        return;
    }
    connect(&m_devices, &AudioDevice::loaded, this, std::move(step), Qt::SingleShotConnection);
    m_devices.load();
}

void VoiceSettingsViewModel::startPttListening()
{
    m_ptt.startListening();
}

void VoiceSettingsViewModel::stopPttListening()
{
    m_ptt.stopListening();
}

void VoiceSettingsViewModel::onKeyCaptured(const QString &key)
{
    m_config.set(config::voicePttKey, key);
    emit pttDisplayNameChanged();
}

} // namespace tarvo::ui::viewmodel

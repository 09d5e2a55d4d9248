#include "voice/engine/AudioDevice.h"

#include "AppConfig.h"
#include "voice/engine/Mailbox.h"
#include "voice/engine/SoundLease.h"
#include "voice/engine/SoundThread.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace tarvo::voice {

namespace {

const QString defaultName = QStringLiteral("Default"); // as pages show it and the file holds it
constexpr std::chrono::seconds askAgainAfter{5};       // a sound thread that has no room for a task

QList<DeviceInfo> devicesOf(const QList<DeviceInfo> &all, int hostApi, qint32 DeviceInfo::*channels)
{
    QList<DeviceInfo> found;
    std::copy_if(all.begin(), all.end(), std::back_inserter(found),
                 [&](const DeviceInfo &device) { return device.*channels > 0 && device.hostApi == hostApi; });
    return found;
}

} // namespace

int AudioDevice::Direction::deviceId() const
{
    return index < 1 || index > list.size() ? -1 : list[index - 1].index;
}

QStringList AudioDevice::Direction::names() const
{
    QStringList result{defaultName};
    for (const DeviceInfo &device : list)
        result.append(QString::fromUtf8(device.name));
    return result;
}

void AudioDevice::Direction::choose(int listIndex)
{
    index = listIndex;
    name = names().at(listIndex);
    wanted = name;
}

void AudioDevice::Direction::chooseWanted()
{
    const qsizetype found = names().indexOf(wanted, 1); // a device may be called "Default", too
    index = static_cast<int>(std::max<qsizetype>(found, 0));
    name = names().at(index);
}

AudioDevice::AudioDevice(AppConfig &config, std::shared_ptr<SoundThread> sound, QObject *parent)
    : QObject(parent), m_config(config), m_sound(std::move(sound)), m_mailbox(std::make_shared<Mailbox>(this))
{
    m_again.setObjectName(QStringLiteral("again"));
    m_again.setSingleShot(true);
    m_again.setInterval(askAgainAfter);
    connect(&m_again, &QTimer::timeout, this, &AudioDevice::read);
}

AudioDevice::~AudioDevice()
{
    m_mailbox->close();
}

void AudioDevice::load()
{
    if (m_isLoaded || m_isLoading)
        return;
    m_isLoading = true;
    read();
}

void AudioDevice::reload()
{
    if (m_isLoaded)
        read();
}

void AudioDevice::read()
{
    if (!m_lease || !m_lease->isTaken())
        m_lease = std::make_unique<SoundLease>(m_sound);
    const bool isTaken = m_lease->isTaken() && m_sound->post([this, mailbox = m_mailbox] {
        const QList<HostApiInfo> drivers = getVoiceHostApis();
        const QList<DeviceInfo> devices = getVoiceDevices([](const DeviceInfo &) { return true; });
        mailbox->send([this, drivers, devices] { onRead(drivers, devices); });
    });
    if (!isTaken)
        m_again.start();
}

void AudioDevice::onRead(const QList<HostApiInfo> &drivers, const QList<DeviceInfo> &devices)
{
    const bool isFirst = !m_isLoaded;
    m_driverList = drivers;
    m_devices = devices;
    if (isFirst)
        takeStoredChoice();
    const auto found = std::find_if(drivers.begin(), drivers.end(),
                                    [this](const HostApiInfo &driver) { return driver.type == m_driverType; });
    m_driverIndex = found == drivers.end() ? 0 : static_cast<int>(found - drivers.begin());
    rebuildLists();
    for (Direction *direction : {&m_input, &m_headphone, &m_speaker})
        direction->chooseWanted();
    announceAll();
    m_isLoaded = true;
    if (isFirst)
        emit loaded();
}

void AudioDevice::takeStoredChoice()
{
    m_driverType = m_config.get(config::voiceDriver);
    m_input.wanted = m_config.get(config::voiceInputDevice);
    m_headphone.wanted = m_config.get(config::voiceOutputHeadphoneDevice);
    m_speaker.wanted = m_config.get(config::voiceOutputSpeakerDevice);
}

void AudioDevice::rebuildLists()
{
    const int hostApi = m_driverIndex < m_driverList.size() ? m_driverList[m_driverIndex].index : -1;
    m_input.list = devicesOf(m_devices, hostApi, &DeviceInfo::maxInputChannels);
    m_headphone.list = devicesOf(m_devices, hostApi, &DeviceInfo::maxOutputChannels);
    m_speaker.list = m_headphone.list;
}

void AudioDevice::announceAll()
{
    emit deviceListChanged();
    emit deviceChanged();
    announceChosen();
}

void AudioDevice::announceChosen()
{
    const HostApiInfo driver = m_driverList.value(m_driverIndex);
    const auto idOf = [](const Direction &direction, int ofDefault) {
        return direction.index > 0 ? direction.deviceId() : ofDefault;
    };
    emit missed(m_input.isMissed() || m_headphone.isMissed() || m_speaker.isMissed());
    emit inputDeviceChanged(idOf(m_input, driver.defaultInputDevice));
    emit outputHeadphoneDeviceChanged(idOf(m_headphone, driver.defaultOutputDevice));
    emit outputSpeakerDeviceChanged(idOf(m_speaker, driver.defaultOutputDevice));
}

void AudioDevice::setDriver(int listIndex)
{
    if (listIndex < 0 || listIndex >= m_driverList.size())
        return;
    m_driverIndex = listIndex;
    m_driverType = m_driverList[listIndex].type;
    rebuildLists();
    for (Direction *direction : {&m_input, &m_headphone, &m_speaker})
        direction->choose(0);
    announceAll();
}

void AudioDevice::set(Direction AudioDevice::*direction, DeviceSignal changed, int listIndex)
{
    Direction &chosen = this->*direction;
    if (listIndex < 0 || listIndex > chosen.list.size())
        return;
    chosen.choose(listIndex);
    if (listIndex == 0)
        return;
    emit deviceChanged();
    emit(this->*changed)(chosen.deviceId());
}

void AudioDevice::setInput(int listIndex)
{
    set(&AudioDevice::m_input, &AudioDevice::inputDeviceChanged, listIndex);
}

void AudioDevice::setOutputHeadphone(int listIndex)
{
    set(&AudioDevice::m_headphone, &AudioDevice::outputHeadphoneDeviceChanged, listIndex);
}

void AudioDevice::setOutputSpeaker(int listIndex)
{
    set(&AudioDevice::m_speaker, &AudioDevice::outputSpeakerDeviceChanged, listIndex);
}

QStringList AudioDevice::driverNames() const
{
    QStringList names;
    for (const HostApiInfo &driver : m_driverList)
        names.append(QString::fromUtf8(driver.name));
    return names;
}

} // namespace tarvo::voice

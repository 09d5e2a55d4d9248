#include "voice/engine/SoundSystem.h"

#include "voice/engine/SoundStream.h"

#include <QDebug>

#include <portaudio.h>

#include <atomic>
#include <stdexcept>

namespace tarvo::voice {

namespace {

/// Those who hold PortAudio. Counted here, because PortAudio searches for devices only when its own count begins anew.
std::atomic<int> holders = 0;
std::atomic<bool> isUp = false;   ///< also while nobody holds it, when it couldn't be ended
std::atomic<bool> isTold = false; ///< that it can't be ended

/// False when PortAudio has to stay as it is.
bool end()
{
    closeEndedSound();
    if (isAnySoundLeftBehind())
        return false;
    if (isUp.exchange(false))
        Pa_Terminate();
    isTold = false;
    return true;
}

bool start()
{
    if (!end())
        return isUp;
    const PaError error = Pa_Initialize();
    isUp = error == paNoError;
    if (!isUp)
        qWarning() << "Pa_Initialize failed:" << Pa_GetErrorText(error);
    return isUp;
}

HostApiInfo toRecord(int index, const PaHostApiInfo &info)
{
    return {index, static_cast<qint32>(info.type), info.name, info.defaultInputDevice, info.defaultOutputDevice};
}

DeviceInfo toRecord(int index, const PaDeviceInfo &info)
{
    return {index, info.name, info.hostApi, info.maxInputChannels, info.maxOutputChannels, info.defaultSampleRate};
}

} // namespace

SoundSession::SoundSession() : m_isUp(initializeSound()) {}

SoundSession::~SoundSession()
{
    if (m_isUp)
        terminateSound();
}

bool initializeSound()
{
    const bool isHeld = holders > 0 || start();
    holders += isHeld ? 1 : 0;
    return isHeld;
}

void terminateSound()
{
    if (--holders == 0)
        end();
}

bool searchSoundAgain()
{
    if (holders == 0)
        return false;
    if (!end()) {
        if (!isTold.exchange(true)) // it is tried again and again
            qWarning("The sound system can't be searched for devices: a stream of it was left behind");
        return false;
    }
    start(); // when that fails everything gives errors, until it is called again
    return true;
}

QList<HostApiInfo> getVoiceHostApis()
{
    const SoundSession session;
    QList<HostApiInfo> found;
    for (int i = 0; i < Pa_GetHostApiCount(); ++i) { // the count is negative when PortAudio is not up
        if (const PaHostApiInfo *info = Pa_GetHostApiInfo(i))
            found.append(toRecord(i, *info));
    }
    return found;
}

QList<DeviceInfo> getVoiceDevices(const std::function<bool(const DeviceInfo &)> &predicate)
{
    const SoundSession session;
    QList<DeviceInfo> found;
    for (int i = 0; i < Pa_GetDeviceCount(); ++i) {
        const PaDeviceInfo *info = Pa_GetDeviceInfo(i);
        if (!info)
            continue;
        const DeviceInfo device = toRecord(i, *info);
        if (predicate(device))
            found.append(device);
    }
    return found;
}

QList<DeviceInfo> getVoiceInputDevices()
{
    return getVoiceDevices([](const DeviceInfo &device) { return device.maxInputChannels > 0; });
}

QList<DeviceInfo> getVoiceInputDevices(int hostApi)
{
    return getVoiceDevices(
        [hostApi](const DeviceInfo &device) { return device.maxInputChannels > 0 && device.hostApi == hostApi; });
}

QList<DeviceInfo> getVoiceOutputDevices()
{
    return getVoiceDevices([](const DeviceInfo &device) { return device.maxOutputChannels > 0; });
}

QList<DeviceInfo> getVoiceOutputDevices(int hostApi)
{
    return getVoiceDevices(
        [hostApi](const DeviceInfo &device) { return device.maxOutputChannels > 0 && device.hostApi == hostApi; });
}

DeviceInfo getVoiceDeviceInfo(int device)
{
    const SoundSession session;
    const PaDeviceInfo *info = Pa_GetDeviceInfo(device);
    if (!info)
        throw std::runtime_error("Failed to get device info");
    return toRecord(device, *info);
}

int getVoiceDefaultInputDevice()
{
    const SoundSession session;
    return Pa_GetDefaultInputDevice();
}

int getVoiceDefaultOutputDevice()
{
    const SoundSession session;
    return Pa_GetDefaultOutputDevice();
}

} // namespace tarvo::voice

#include "voice/engine/SoundSystem.h"

#include <QDebug>

#include <portaudio.h>

#include <atomic>
#include <stdexcept>

namespace tarvo::voice {

namespace {

/// Those who hold PortAudio. Counted here, because PortAudio searches for devices only when its own count begins anew.
std::atomic<int> holders = 0;

bool start()
{
    const PaError error = Pa_Initialize();
    if (error != paNoError)
        qWarning() << "Pa_Initialize failed:" << Pa_GetErrorText(error);
    return error == paNoError;
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
    const bool isUp = holders > 0 || start();
    holders += isUp ? 1 : 0;
    return isUp;
}

void terminateSound()
{
    if (--holders == 0)
        Pa_Terminate();
}

void searchSoundAgain()
{
    if (holders == 0)
        return;
    Pa_Terminate();
    start(); // when that fails everything gives errors, until it is called again
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

#pragma once

#include <QByteArray>
#include <QList>
#include <QtGlobal>

#include <functional>

namespace tarvo::voice {

// What PortAudio offers. Everything here is called on the SoundThread.

/// A way to the devices, such as ALSA or WASAPI; "driver" on the pages.
struct HostApiInfo
{
    qint32 index = -1;
    qint32 type = -1; ///< PortAudio's PaHostApiTypeId
    QByteArray name;
    qint32 defaultInputDevice = -1;  ///< a device's index; negative: none
    qint32 defaultOutputDevice = -1; ///< a device's index; negative: none

    bool operator==(const HostApiInfo &) const = default;
};

struct DeviceInfo
{
    qint32 index = -1;
    QByteArray name;
    qint32 hostApi = -1; ///< the index of its HostApiInfo
    qint32 maxInputChannels = 0;
    qint32 maxOutputChannels = 0;
    double defaultSampleRate = 0; ///< Hz

    bool operator==(const DeviceInfo &) const = default;
};

/// Holds PortAudio for as long as it lives. May be nested: the devices are searched for by the first.
class SoundSession
{
public:
    SoundSession();
    ~SoundSession();
    SoundSession(const SoundSession &) = delete;
    SoundSession &operator=(const SoundSession &) = delete;

private:
    bool m_isUp;
};

/// Takes hold of PortAudio without a SoundSession; false, and the log tells, when that fails.
bool initializeSound();
/// Lets go of it. The last one's word ends it, unless a stream is left behind; only after an initializeSound() that
/// gave true.
void terminateSound();
/// Has PortAudio search for devices again: its indices mean others from now on. Only while no stream is open. False
/// when nobody holds it, and while a stream is left behind: then all is as before.
bool searchSoundAgain();

// Each of these holds PortAudio itself; none fails but the last. Lists are in PortAudio's order.

QList<HostApiInfo> getVoiceHostApis();
QList<DeviceInfo> getVoiceDevices(const std::function<bool(const DeviceInfo &)> &predicate);
QList<DeviceInfo> getVoiceInputDevices();
QList<DeviceInfo> getVoiceInputDevices(int hostApi);
QList<DeviceInfo> getVoiceOutputDevices();
QList<DeviceInfo> getVoiceOutputDevices(int hostApi);
/// Throws std::runtime_error when there is no such device.
DeviceInfo getVoiceDeviceInfo(int device);
/// The system's own choice; negative when there is none.
int getVoiceDefaultInputDevice();
int getVoiceDefaultOutputDevice();

} // namespace tarvo::voice

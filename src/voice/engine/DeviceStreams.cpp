#include "voice/engine/DeviceStreams.h"

#include <QDebug>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace tarvo::voice {

namespace {

struct Words
{
    const char *direction;
    const char *change;
};

constexpr Words roleWords[] = {{"input", "Input device change"},
                               {"output", "Output(headphone) device change"},
                               {"output", "Output(speaker) device change"}};

const Words &wordsOf(StreamRole role)
{
    return roleWords[static_cast<std::size_t>(role)];
}

constexpr StreamRole allRoles[] = {StreamRole::Input, StreamRole::Headphone, StreamRole::Speaker};

QList<DeviceInfo> offeredDevices()
{
    return getVoiceDevices([](const DeviceInfo &) { return true; });
}

int defaultDevice(StreamRole role)
{
    return role == StreamRole::Input ? getVoiceDefaultInputDevice() : getVoiceDefaultOutputDevice();
}

} // namespace

AudioStreamConfig configFor(const DeviceInfo &device, StreamRole role)
{
    const qint32 offered = role == StreamRole::Input ? device.maxInputChannels : device.maxOutputChannels;
    AudioStreamConfig config;
    config.sampleRate = static_cast<qint32>(device.defaultSampleRate);
    config.channels = std::clamp(offered, 1, 2);
    config.framesPerBuffer = static_cast<qint32>(config.sampleRate / 50.0) * config.channels;
    config.device = device.index;
    return config;
}

void DeviceStreams::One::close()
{
    if (!stream)
        return;
    stream->close();
    stream.reset();
    closed();
}

DeviceStreams::DeviceStreams(OpenSound open, std::function<void()> ended)
    : m_open(std::move(open)), m_ended(std::move(ended))
{
}

void DeviceStreams::connect(StreamRole role, Make make, std::function<void()> closed)
{
    at(role).make = std::move(make);
    at(role).closed = std::move(closed);
}

StreamsReport DeviceStreams::fulfil(const Wishes &wishes, Opening opening)
{
    StreamsReport report;
    if (!m_offered)
        m_offered = offeredDevices();
    for (const StreamRole role : allRoles) {
        if (settle(role, wishes[static_cast<std::size_t>(role)]))
            report.ended.push_back(role);
    }
    const auto isMissing = [&](StreamRole role) {
        return wishes[static_cast<std::size_t>(role)].isOpen && !at(role).stream;
    };
    const bool opens = opening != Opening::None && std::any_of(std::begin(allRoles), std::end(allRoles), isMissing);
    report.haveDevicesChanged = opens && opening == Opening::Again && !anyRuns() && hasFoundOthers();
    if (opens && !report.haveDevicesChanged)
        openWanted(wishes);
    std::copy_if(std::begin(allRoles), std::end(allRoles), std::back_inserter(report.missing), isMissing);
    report.anyRuns = anyRuns();
    return report;
}

bool DeviceStreams::anyRuns() const
{
    return std::any_of(m_streams.begin(), m_streams.end(), [](const One &one) { return one.stream != nullptr; });
}

/// Searches for devices. Those of a sound server that is gone are still known when they come back.
bool DeviceStreams::hasFoundOthers()
{
    if (isAnySoundLeftBehind())
        return false;
    searchSoundAgain();
    const QList<DeviceInfo> found = offeredDevices();
    if (found.isEmpty() || found == m_offered)
        return false;
    m_offered = found;
    return true;
}

/// Takes the choice of a device, and closes what is not wanted or not like this. True when the stream was wanted on and
/// has ended by itself.
bool DeviceStreams::settle(StreamRole role, const StreamWish &wish)
{
    One &one = at(role);
    const AudioStreamConfig before = one.config;
    const bool isChosen = wish.device && choose(role, *wish.device);
    const bool hasEnded = one.stream && !one.stream->isActive();
    // The same device again is no need to interrupt all that is heard.
    if (hasEnded || !wish.isOpen || (isChosen && one.config != before))
        one.close();
    return hasEnded && wish.isOpen;
}

/// False when there is no such device.
bool DeviceStreams::choose(StreamRole role, int device)
{
    const int chosen = device < 0 ? defaultDevice(role) : device;
    if (chosen < 0) {
        at(role).config.device = chosen;
        qCritical("No %s device selected and no default device found", wordsOf(role).direction);
        return false;
    }
    try {
        const DeviceInfo info = getVoiceDeviceInfo(chosen);
        at(role).config = configFor(info, role);
        qInfo("%s to %s, %d channels", wordsOf(role).change, info.name.constData(), at(role).config.channels);
        return true;
    } catch (const std::runtime_error &) {
        qWarning("%s failed: invalid device %d", wordsOf(role).change, chosen);
        return false;
    }
}

void DeviceStreams::openWanted(const Wishes &wishes)
{
    for (One &one : m_streams)
        one.close();
    for (const StreamRole role : allRoles) {
        One &one = at(role);
        if (!wishes[static_cast<std::size_t>(role)].isOpen)
            continue;
        Sound sound = one.make(one.config);
        sound.calls.ended = m_ended;
        one.stream = m_open(role, one.config, std::move(sound.calls));
        one.started = std::move(sound.started);
    }
    for (One &one : m_streams) {
        if (one.stream && one.stream->start())
            one.started();
        else
            one.stream.reset();
    }
}

} // namespace tarvo::voice

#include "voice/engine/DeviceStreams.h"

#include "voice/engine/SoundSystem.h"

#include <QDebug>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

namespace tarvo::voice {

namespace {

struct Words
{
    const char *direction;
    const char *change;
};

constexpr Words words[] = {{"input", "Input device change"},
                           {"output", "Output(headphone) device change"},
                           {"output", "Output(speaker) device change"}};

const Words &wordsOf(StreamRole role)
{
    return words[static_cast<std::size_t>(role)];
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

bool DeviceStreams::One::runs() const
{
    return stream && stream->isActive();
}

void DeviceStreams::One::close()
{
    if (!stream)
        return;
    stream->close();
    stream.reset();
    closed();
}

void DeviceStreams::connect(StreamRole role, Open open, std::function<void()> closed)
{
    at(role).open = std::move(open);
    at(role).closed = std::move(closed);
}

void DeviceStreams::setDevice(StreamRole role, int device)
{
    const AudioStreamConfig before = at(role).config;
    if (!choose(role, device) || !at(role).isWanted)
        return;
    if (at(role).runs() && at(role).config == before)
        return; // no need to interrupt all that is heard
    at(role).close();
    startWanted();
}

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

void DeviceStreams::start(const std::vector<StreamRole> &roles)
{
    for (const StreamRole role : roles)
        at(role).isWanted = true;
    startWanted();
}

void DeviceStreams::stop(StreamRole role)
{
    at(role).isWanted = false;
    at(role).close();
}

void DeviceStreams::startWanted()
{
    if (std::all_of(m_streams.begin(), m_streams.end(), [](const One &one) { return !one.isWanted || one.runs(); }))
        return;
    std::array<std::function<void()>, std::tuple_size_v<decltype(m_streams)>> started;
    for (One &one : m_streams)
        one.close();
    for (std::size_t i = 0; i < m_streams.size(); ++i) {
        One &one = m_streams[i];
        if (!one.isWanted)
            continue;
        Opened opened = one.open(one.config);
        one.stream = std::move(opened.stream);
        started[i] = std::move(opened.started);
    }
    for (std::size_t i = 0; i < m_streams.size(); ++i) {
        One &one = m_streams[i];
        if (one.stream && one.stream->start())
            started[i]();
        else
            one.stream.reset();
    }
}

} // namespace tarvo::voice

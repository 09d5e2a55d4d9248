#include "voice/engine/DeviceStream.h"

#include "voice/engine/SoundStream.h"
#include "voice/engine/SoundSystem.h"

#include <QDebug>

#include <algorithm>
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

DeviceStream::DeviceStream(StreamRole role, Open open, std::function<void()> closed)
    : m_role(role), m_open(std::move(open)), m_closed(std::move(closed))
{
}

DeviceStream::~DeviceStream() = default;

void DeviceStream::setDevice(int device)
{
    const bool goesOn = m_stream != nullptr;
    if (!choose(device) || !goesOn)
        return;
    stop();
    start();
}

bool DeviceStream::choose(int device)
{
    const int chosen = device < 0 ? defaultDevice(m_role) : device;
    if (chosen < 0) {
        m_config.device = chosen;
        qCritical("No %s device selected and no default device found", wordsOf(m_role).direction);
        return false;
    }
    try {
        const DeviceInfo info = getVoiceDeviceInfo(chosen);
        m_config = configFor(info, m_role);
        qInfo("%s to %s, %d channels", wordsOf(m_role).change, info.name.constData(), m_config.channels);
        return true;
    } catch (const std::runtime_error &) {
        qWarning("%s failed: invalid device %d", wordsOf(m_role).change, chosen);
        return false;
    }
}

void DeviceStream::start()
{
    if (m_stream && m_stream->isActive())
        return;
    stop(); // one that the sound system has ended
    m_stream = m_open(m_config);
}

void DeviceStream::stop()
{
    if (!m_stream)
        return;
    m_stream->close();
    m_stream.reset();
    m_closed();
}

} // namespace tarvo::voice

#include "voice/engine/DeviceStreams.h"

#include <QDebug>

#include <algorithm>
#include <cstddef>
#include <iterator>
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

/// Searches that don't find all that is wanted, after 1 s and 3 s (RetryPace). What the next one finds is taken.
constexpr int mostIncomplete = 2;

const DeviceInfo *find(const QList<DeviceInfo> &devices, const QByteArray &name)
{
    const auto found =
        std::find_if(devices.begin(), devices.end(), [&name](const DeviceInfo &device) { return device.name == name; });
    return found == devices.end() ? nullptr : &*found;
}

} // namespace

SoundAccess portAudio()
{
    return {.open = &openSound,
            .search = &searchSoundAgain,
            .devices = [] { return getVoiceDevices([](const DeviceInfo &) { return true; }); },
            .defaultDevice =
                [](StreamRole role) {
                    return role == StreamRole::Input ? getVoiceDefaultInputDevice() : getVoiceDefaultOutputDevice();
                }};
}

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

/// Starts what is open, if anything is. True when that is on another device than the last time.
bool DeviceStreams::One::start()
{
    if (!stream || !stream->start()) {
        stream.reset();
        return false;
    }
    started();
    const QByteArray before = std::exchange(lastDevice, device);
    return !before.isEmpty() && before != device;
}

void DeviceStreams::One::close()
{
    if (!stream)
        return;
    stream->close();
    stream.reset();
    closed();
}

DeviceStreams::DeviceStreams(SoundAccess access, std::function<void()> ended)
    : m_access(std::move(access)), m_ended(std::move(ended))
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
        m_offered = m_access.devices();
    for (const StreamRole role : allRoles) {
        if (settle(role, wishes[static_cast<std::size_t>(role)]))
            report.ended.push_back(role);
    }
    if (opening == Opening::Anew)
        closeAll();
    const auto isMissing = [&](StreamRole role) {
        return wishes[static_cast<std::size_t>(role)].isOpen && !at(role).stream;
    };
    const bool opens = opening != Opening::None && std::any_of(std::begin(allRoles), std::end(allRoles), isMissing);
    const Found found = opens && hasReasonToSearch(opening) ? search(wishes) : Found::TheSame;
    report.haveDevicesChanged = found == Found::Others;
    if (opens && found == Found::TheSame)
        openWanted(wishes, report);
    std::copy_if(std::begin(allRoles), std::end(allRoles), std::back_inserter(report.missing), isMissing);
    report.anyRuns = anyRuns();
    return report;
}

void DeviceStreams::closeAll()
{
    for (One &one : m_streams)
        one.close();
}

bool DeviceStreams::anyRuns() const
{
    return std::any_of(m_streams.begin(), m_streams.end(), [](const One &one) { return one.stream != nullptr; });
}

/// A search takes its time, and would end what runs.
bool DeviceStreams::hasReasonToSearch(Opening opening) const
{
    const bool isTold = opening == Opening::Searched || opening == Opening::Anew;
    return !anyRuns() && (isTold || m_incomplete > 0 || !m_missed.isEmpty());
}

QList<QByteArray> DeviceStreams::wantedDevices(const Wishes &wishes) const
{
    QList<QByteArray> names;
    for (std::size_t i = 0; i < wishes.size(); ++i) {
        if (wishes[i].isOpen && !m_streams[i].device.isEmpty())
            names.append(m_streams[i].device);
    }
    return names;
}

/// The devices of a sound server that is gone with all of them are still known when they come back.
DeviceStreams::Found DeviceStreams::search(const Wishes &wishes)
{
    if (!m_access.search())
        return Found::TheSame;
    const QList<DeviceInfo> found = m_access.devices();
    if (found == m_offered)
        m_incomplete = 0;
    if (found.isEmpty() || found == m_offered)
        return Found::TheSame;
    const auto isThere = [&found](const QByteArray &name) { return find(found, name) != nullptr; };
    QList<QByteArray> gone = wantedDevices(wishes);
    gone.removeIf(isThere);
    if (!gone.isEmpty() && m_incomplete++ < mostIncomplete)
        return Found::NotAll;
    m_incomplete = 0;
    m_missed.removeIf(isThere);
    m_missed += gone;
    moveTo(found);
    return Found::Others;
}

/// So that nothing is opened by an index of before.
void DeviceStreams::moveTo(const QList<DeviceInfo> &found)
{
    m_offered = found;
    for (const StreamRole role : allRoles) {
        One &one = at(role);
        const DeviceInfo *device = find(found, one.device);
        if (device)
            one.config = configFor(*device, role);
        else if (!one.device.isEmpty())
            one.config.device = -1; // which can't be opened
    }
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
    const int chosen = device < 0 ? m_access.defaultDevice(role) : device;
    if (chosen < 0) {
        at(role).config.device = chosen;
        at(role).device.clear();
        qCritical("No %s device selected and no default device found", wordsOf(role).direction);
        return false;
    }
    // Among those that the pilot chose from: meanwhile PortAudio may have none, such as without its sound server.
    const auto info = std::find_if(m_offered->begin(), m_offered->end(),
                                   [chosen](const DeviceInfo &one) { return one.index == chosen; });
    if (info == m_offered->end()) {
        qWarning("%s failed: invalid device %d", wordsOf(role).change, chosen);
        return false;
    }
    at(role).config = configFor(*info, role);
    at(role).device = info->name;
    qInfo("%s to %s, %d channels", wordsOf(role).change, info->name.constData(), at(role).config.channels);
    return true;
}

void DeviceStreams::openWanted(const Wishes &wishes, StreamsReport &report)
{
    closeAll();
    for (const StreamRole role : allRoles) {
        One &one = at(role);
        if (!wishes[static_cast<std::size_t>(role)].isOpen)
            continue;
        Sound sound = one.make(one.config);
        sound.calls.ended = m_ended;
        one.stream = m_access.open(role, one.config, std::move(sound.calls));
        one.started = std::move(sound.started);
    }
    for (const StreamRole role : allRoles) {
        if (at(role).start())
            report.replaced.push_back(role);
    }
}

} // namespace tarvo::voice

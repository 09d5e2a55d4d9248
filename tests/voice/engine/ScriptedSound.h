#pragma once

#include "voice/codec/AudioStreamConfig.h"
#include "voice/engine/DeviceStreams.h"
#include "voice/engine/SoundStream.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <cstdint>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace tarvo::test {

/// A sound system of which the test says what it does. Its streams run only when they are told to.
class ScriptedSound
{
public:
    using Role = voice::StreamRole;

    voice::SoundAccess access()
    {
        return {.open = [state = m_state](Role role, const voice::AudioStreamConfig &config,
                                          voice::SoundCalls calls) -> std::unique_ptr<voice::SoundStream> {
                    state->waitUntilReleased();
                    const std::scoped_lock lock(state->mutex);
                    ++state->tried;
                    if (state->refused.contains(role) || !state->has(config.device))
                        return nullptr;
                    state->used[role] = config.device;
                    return std::make_unique<Stream>(state, role, std::move(calls));
                },
                .search =
                    [state = m_state] {
                        const std::scoped_lock lock(state->mutex);
                        ++state->searches;
                        state->known = state->plugged;
                        return true;
                    },
                .devices =
                    [state = m_state] {
                        const std::scoped_lock lock(state->mutex);
                        return state->known;
                    },
                .defaultDevice = [](Role) { return -1; }};
    }

    /// These are there from now on; they are known after the next search. Each can do all, and its place is its index.
    /// Before the first word of them any can be opened.
    void plug(const QList<QByteArray> &names)
    {
        const std::scoped_lock lock(m_state->mutex);
        m_state->plugged.clear();
        for (const QByteArray &name : names)
            m_state->plugged.append({.index = static_cast<qint32>(m_state->plugged.size()),
                                     .name = name,
                                     .hostApi = 0,
                                     .maxInputChannels = 1,
                                     .maxOutputChannels = 1,
                                     .defaultSampleRate = 44100});
        if (!std::exchange(m_state->isPlugged, true))
            m_state->known = m_state->plugged;
    }
    /// The name of the device that a role opened last.
    QByteArray used(Role role) const
    {
        const std::scoped_lock lock(m_state->mutex);
        return m_state->known.value(m_state->used[role].value_or(-1)).name;
    }
    /// How often devices were searched for since the last question.
    int takeSearches()
    {
        const std::scoped_lock lock(m_state->mutex);
        return std::exchange(m_state->searches, 0);
    }

    /// From now on these can't be opened.
    void refuse(std::set<Role> roles)
    {
        const std::scoped_lock lock(m_state->mutex);
        m_state->refused = std::move(roles);
    }
    /// From now on it hangs where a stream is opened.
    void hang()
    {
        const std::scoped_lock lock(m_state->mutex);
        m_state->gate = m_release.get_future().share();
    }
    void release() { m_release.set_value(); }

    std::set<Role> running() const
    {
        const std::scoped_lock lock(m_state->mutex);
        std::set<Role> roles;
        for (const auto &[role, calls] : m_state->running)
            roles.insert(role);
        return roles;
    }
    /// How often a stream was opened, or was to be, since the last question.
    int takeTried()
    {
        const std::scoped_lock lock(m_state->mutex);
        return std::exchange(m_state->tried, 0);
    }
    /// A stream ends. Not every sound system says so.
    void end(Role role, bool saysSo)
    {
        voice::SoundCalls calls;
        {
            const std::scoped_lock lock(m_state->mutex);
            calls = std::move(m_state->running.extract(role).mapped());
        }
        if (saysSo)
            calls.ended();
    }
    /// The microphone's next 20 ms.
    void capture(const std::vector<std::int16_t> &samples)
    {
        const std::scoped_lock lock(m_state->mutex);
        m_state->running.at(Role::Input).capture(samples);
    }
    /// The peak of the next 20 ms that an output plays; 0 without one.
    float play(Role role)
    {
        const std::scoped_lock lock(m_state->mutex);
        const auto found = m_state->running.find(role);
        if (found == m_state->running.end())
            return 0;
        std::vector<float> buffer(static_cast<std::size_t>(voice::AudioStreamConfig{}.framesPerBuffer));
        found->second.play(buffer);
        return *std::max_element(buffer.begin(), buffer.end());
    }

private:
    struct State
    {
        std::mutex mutex;
        std::map<Role, voice::SoundCalls> running;
        std::set<Role> refused;
        int tried = 0;
        QList<voice::DeviceInfo> plugged;
        QList<voice::DeviceInfo> known;
        bool isPlugged = false;
        int searches = 0;
        std::map<Role, std::optional<int>> used;
        std::shared_future<void> gate;

        bool has(std::optional<int> device) const
        {
            return !isPlugged || (device.value_or(0) >= 0 && device.value_or(0) < known.size());
        }
        void waitUntilReleased()
        {
            std::shared_future<void> held;
            {
                const std::scoped_lock lock(mutex);
                held = gate;
            }
            if (held.valid())
                held.wait();
        }
    };

    class Stream : public voice::SoundStream
    {
    public:
        Stream(std::shared_ptr<State> state, Role role, voice::SoundCalls calls)
            : m_state(std::move(state)), m_role(role), m_calls(std::move(calls))
        {
        }
        bool start() override
        {
            const std::scoped_lock lock(m_state->mutex);
            return m_state->running.emplace(m_role, m_calls).second;
        }
        bool isActive() const override
        {
            const std::scoped_lock lock(m_state->mutex);
            return m_state->running.contains(m_role);
        }
        void close() override
        {
            const std::scoped_lock lock(m_state->mutex);
            m_state->running.erase(m_role);
        }

    private:
        std::shared_ptr<State> m_state;
        Role m_role;
        voice::SoundCalls m_calls;
    };

    std::shared_ptr<State> m_state = std::make_shared<State>();
    std::promise<void> m_release;
};

} // namespace tarvo::test

#pragma once

#include "input/InputSource.h"

#include <QHash>

#include <memory>

namespace tarvo::test {

/// Keys and buttons that a test presses, and the names of keys that it gives. What the handler owns is only a way to
/// it.
class ScriptedInput
{
public:
    /// Once.
    std::unique_ptr<input::InputSource> source() { return std::make_unique<Source>(*this); }

    void keyDown(int virtualKey, bool injected = false) { m_listener->onKeyDown(virtualKey, injected); }
    void keyUp(int virtualKey) { m_listener->onKeyUp(virtualKey); }
    void buttonDown(int mask) { m_listener->onButtonDown(mask); }
    void buttonUp(int mask) { m_listener->onButtonUp(mask); }
    void silence() { m_listener->onSilence(); }

    QHash<int, QString> names;

private:
    class Source : public input::InputSource
    {
    public:
        explicit Source(ScriptedInput &script) : m_script(script) {}

        void start(input::InputListener &listener) override { m_script.m_listener = &listener; }
        QString keyName(int virtualKey) const override { return m_script.names.value(virtualKey); }

    private:
        ScriptedInput &m_script;
    };

    input::InputListener *m_listener = nullptr;
};

} // namespace tarvo::test

#pragma once

#include <QString>

#include <memory>

namespace tarvo::input {

/// Who hears what is pressed on the whole desktop.
class InputListener
{
public:
    /// `virtualKey`: Windows' code, left and right keys apart. `injected`: another program made it, nobody's finger.
    /// May repeat while the key is held.
    virtual void onKeyDown(int virtualKey, bool injected) = 0;
    virtual void onKeyUp(int virtualKey) = 0;
    /// `mask`: one of MouseMask.
    virtual void onButtonDown(int mask) = 0;
    virtual void onButtonUp(int mask) = 0;
    /// Nothing is heard any more: what is held now will never be told to be up.
    virtual void onSilence() = 0;

protected:
    ~InputListener() = default;
};

/// Keys and mouse buttons of the whole desktop, whichever program has the focus; all go on to that program. Everything
/// happens on the thread that calls start(), which needs an event loop.
class InputSource
{
public:
    virtual ~InputSource() = default;

    /// Tells `listener`, which outlives the source, from now on. Called once. What can't be had is logged and stays
    /// silent.
    virtual void start(InputListener &listener) = 0;
    /// What the system calls the key; empty when it has no name for it.
    virtual QString keyName(int virtualKey) const = 0;

    /// The one of this system.
    static std::unique_ptr<InputSource> ofSystem();
};

} // namespace tarvo::input

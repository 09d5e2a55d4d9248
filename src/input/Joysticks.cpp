#include "input/Joysticks.h"

#include <QDebug>

#include <algorithm>
#include <utility>

#define SDL_MAIN_HANDLED // the entry function is ours
#include <SDL.h>

namespace tarvo::input {

namespace {

constexpr Uint32 subsystems = SDL_INIT_JOYSTICK | SDL_INIT_GAMECONTROLLER;

bool isUp()
{
    return SDL_WasInit(subsystems) == subsystems;
}

} // namespace

Joysticks::Joysticks(Listener listener) : m_listener(std::move(listener)) {}

Joysticks::~Joysticks()
{
    close();
}

bool Joysticks::open()
{
    if (isUp())
        return true;
    SDL_SetMainReady();
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1"); // Ctrl+C ends the program, as without SDL
    if (SDL_InitSubSystem(subsystems) != 0) {
        qWarning() << "SDL_InitSubSystem failed:" << SDL_GetError();
        return false;
    }
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    if (m_open.empty())
        openAll();
    return true;
}

void Joysticks::close()
{
    for (const int instance : std::exchange(m_open, {}))
        SDL_JoystickClose(SDL_JoystickFromInstanceID(instance));
    if (isUp())
        SDL_QuitSubSystem(subsystems);
}

void Joysticks::poll()
{
    SDL_Event event;
    while (isUp() && SDL_PollEvent(&event) != 0) {
        switch (event.type) {
        case SDL_JOYDEVICEADDED: // the one event that names a joystick by its place in the list
            add(event.jdevice.which, "Joystick connected:");
            break;
        case SDL_JOYDEVICEREMOVED:
            remove(event.jdevice.which);
            m_listener.removed(event.jdevice.which);
            break;
        case SDL_JOYBUTTONDOWN:
        case SDL_JOYBUTTONUP:
            m_listener.button(event.jbutton.which, event.jbutton.button, event.jbutton.state == SDL_PRESSED);
            break;
        default:
            break;
        }
    }
}

void Joysticks::openAll()
{
    for (int i = 0; i < SDL_NumJoysticks(); ++i)
        add(i, "Opened joystick:");
}

void Joysticks::add(int deviceIndex, const char *message)
{
    SDL_Joystick *joystick = SDL_JoystickOpen(deviceIndex);
    if (!joystick)
        return;
    qInfo() << message << SDL_JoystickName(joystick);
    const int instance = SDL_JoystickInstanceID(joystick);
    // Those that were there at the start are told of once more, and SDL counts how often each is open.
    if (std::find(m_open.begin(), m_open.end(), instance) == m_open.end())
        m_open.push_back(instance);
    else
        SDL_JoystickClose(joystick);
}

void Joysticks::remove(int instance)
{
    if (std::erase(m_open, instance) > 0)
        SDL_JoystickClose(SDL_JoystickFromInstanceID(instance));
}

} // namespace tarvo::input

#include "input/PttHandler.h"

#include "input/Joysticks.h"

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace tarvo::input {

namespace {

using Type = PttBinding::Type;

constexpr auto pollInterval = 16ms;
constexpr PttBinding escape{Type::Keyboard, 0x1B, -1};

} // namespace

PttHandler &PttHandler::instance()
{
    static PttHandler handler(InputSource::ofSystem());
    return handler;
}

PttHandler::PttHandler(std::unique_ptr<InputSource> source, QObject *parent)
    : QObject(parent),
      m_source(std::move(source)),
      m_joysticks(std::make_unique<Joysticks>(Joysticks::Listener{
          .button = [this](int joystick, int button, bool pressed) { onJoystickButton(joystick, button, pressed); },
          .removed = [this](int joystick) { onJoystickRemoved(joystick); }}))
{
    qRegisterMetaType<PttBinding>();
    m_pollTimer.setTimerType(Qt::PreciseTimer); // the coarse one may be 5 % late
    m_pollTimer.setInterval(pollInterval);
    connect(&m_pollTimer, &QTimer::timeout, this, &PttHandler::pollJoystick);
    m_source->start(*this);
}

PttHandler::~PttHandler() = default;

void PttHandler::setBinding(const PttBinding &binding)
{
    m_binding = binding;
    m_hasBinding = true;
    setActive(false);
    updatePolling();
}

void PttHandler::clearBinding()
{
    m_hasBinding = false;
    setActive(false);
    updatePolling();
}

void PttHandler::startListening()
{
    if (m_listening)
        return;
    m_listening = true;
    updatePolling();
    emit listeningChanged(true);
}

void PttHandler::stopListening()
{
    if (!m_listening)
        return;
    m_listening = false;
    updatePolling();
    emit listeningChanged(false);
}

void PttHandler::pollJoystick()
{
    m_joysticks->poll();
}

void PttHandler::onKeyDown(int virtualKey, bool injected)
{
    if (!injected) // a simulator's own keys don't count
        press({Type::Keyboard, virtualKey, -1});
}

void PttHandler::onKeyUp(int virtualKey)
{
    release({Type::Keyboard, virtualKey, -1}); // injected or not: better a pause in the speech than a stuck key
}

void PttHandler::onButtonDown(int mask)
{
    press({Type::Mouse, mask, -1});
}

void PttHandler::onButtonUp(int mask)
{
    release({Type::Mouse, mask, -1});
}

void PttHandler::onSilence()
{
    if (m_binding.type != Type::Joystick) // those are heard by another road
        setActive(false);
}

void PttHandler::onJoystickButton(int joystick, int button, bool pressed)
{
    const PttBinding control{Type::Joystick, button, joystick};
    if (pressed)
        press(control);
    else
        release(control);
}

void PttHandler::onJoystickRemoved(int joystick)
{
    if (m_hasBinding && m_binding.type == Type::Joystick && m_binding.joystick == joystick)
        setActive(false);
}

void PttHandler::press(const PttBinding &control)
{
    if (!m_listening) {
        if (isBoundTo(control))
            setActive(true);
    } else if (control == escape) {
        stopListening();
    } else {
        capture(control);
    }
}

void PttHandler::release(const PttBinding &control)
{
    if (isBoundTo(control))
        setActive(false);
}

void PttHandler::capture(const PttBinding &control)
{
    setBinding(control);
    stopListening();
    emit bindingCaptured(control);
}

void PttHandler::setActive(bool active)
{
    if (m_active == active)
        return;
    m_active = active;
    emit activeChanged(active);
}

void PttHandler::updatePolling()
{
    if (!m_listening && !(m_hasBinding && m_binding.type == Type::Joystick)) {
        m_pollTimer.stop();
        m_joysticks->close();
    } else if (m_joysticks->open() && !m_pollTimer.isActive()) {
        m_pollTimer.start();
    }
}

} // namespace tarvo::input

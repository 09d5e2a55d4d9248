#pragma once

#include "input/InputSource.h"
#include "input/PttBinding.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

namespace tarvo::input {

class Joysticks;

/// Watches the whole desktop for the one control that keys the radio, and captures the press that is to become it.
/// Main thread only: a stalled event loop delays push-to-talk. Its signals are sent from within the event.
class PttHandler : public QObject, private InputListener
{
    Q_OBJECT

public:
    /// The program's own, made on first use and from then on listening.
    static PttHandler &instance();

    explicit PttHandler(std::unique_ptr<InputSource> source, QObject *parent = nullptr);
    ~PttHandler() override;

    void setBinding(const PttBinding &binding);
    void clearBinding();
    /// The next press becomes the binding, and doesn't key. Escape ends the listening instead.
    void startListening();
    void stopListening();

    bool isActive() const { return m_active; }
    bool isListening() const { return m_listening; }
    /// What the system calls the key with Windows' virtual-key code; empty when it has no name for it.
    QString keyName(int virtualKey) const { return m_source->keyName(virtualKey); }

signals:
    void activeChanged(bool active);
    void listeningChanged(bool listening);
    void bindingCaptured(tarvo::input::PttBinding binding);

public slots:
    /// Takes what the joysticks have to say.
    void pollJoystick();

private:
    void onKeyDown(int virtualKey, bool injected) override;
    void onKeyUp(int virtualKey) override;
    void onButtonDown(int mask) override;
    void onButtonUp(int mask) override;
    void onSilence() override;
    void onJoystickButton(int joystick, int button, bool pressed);
    void onJoystickRemoved(int joystick);

    bool isBoundTo(const PttBinding &control) const { return m_hasBinding && m_binding == control; }
    void press(const PttBinding &control);
    void release(const PttBinding &control);
    void capture(const PttBinding &control);
    void setActive(bool active);
    void updatePolling();

    std::unique_ptr<InputSource> m_source;
    std::unique_ptr<Joysticks> m_joysticks;
    QTimer m_pollTimer;
    PttBinding m_binding;
    bool m_hasBinding = false;
    bool m_active = false; ///< the bound control is held down
    bool m_listening = false;
};

} // namespace tarvo::input

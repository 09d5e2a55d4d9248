#pragma once

#include <functional>
#include <vector>

namespace tarvo::input {

/// The joysticks of the system, by SDL. Costs nothing until opened. One in the program.
class Joysticks
{
public:
    /// What a poll finds. Both name the joystick by its instance id, which SDL never gives twice in one run.
    struct Listener
    {
        std::function<void(int joystick, int button, bool pressed)> button;
        std::function<void(int joystick)> removed;
    };

    explicit Joysticks(Listener listener);
    ~Joysticks();
    Joysticks(const Joysticks &) = delete;
    Joysticks &operator=(const Joysticks &) = delete;

    /// Begins to take events, also without focus. False, with a line in the log, when SDL can't; true when it did
    /// already.
    bool open();
    /// Ends it. Nothing when not open.
    void close();
    /// Tells the listener, who may close, what has come since the last time. Nothing when not open.
    void poll();

private:
    void openAll();
    void add(int deviceIndex, const char *message);
    void remove(int instance);

    Listener m_listener;
    std::vector<int> m_open; ///< instance ids
};

} // namespace tarvo::input

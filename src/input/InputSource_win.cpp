#include "input/InputSource.h"

#include "input/MouseMask.h"

#include <QDebug>

#include <windows.h>

namespace tarvo::input {

namespace {

InputListener *hookListener = nullptr; ///< Windows hands nothing to a hook that could lead to one

void hearKey(WPARAM message, const KBDLLHOOKSTRUCT &key)
{
    const int virtualKey = static_cast<int>(key.vkCode);
    if (message == WM_KEYDOWN || message == WM_SYSKEYDOWN)
        hookListener->onKeyDown(virtualKey, (key.flags & LLKHF_INJECTED) != 0);
    else
        hookListener->onKeyUp(virtualKey);
}

struct ButtonMessage
{
    WPARAM message;
    bool isDown;
    int mask; ///< 0: the side buttons, told apart by the event
};
constexpr ButtonMessage buttonMessages[] = {
    {WM_LBUTTONDOWN, true, LeftButton},
    {WM_LBUTTONUP, false, LeftButton},
    {WM_RBUTTONDOWN, true, RightButton},
    {WM_RBUTTONUP, false, RightButton},
    {WM_MBUTTONDOWN, true, MiddleButton},
    {WM_MBUTTONUP, false, MiddleButton},
    {WM_XBUTTONDOWN, true, 0},
    {WM_XBUTTONUP, false, 0},
};

void hearMouse(WPARAM message, const MSLLHOOKSTRUCT &mouse)
{
    for (const ButtonMessage &row : buttonMessages) {
        if (row.message != message)
            continue;
        const int side = HIWORD(mouse.mouseData) == XBUTTON1 ? FirstSideButton : SecondSideButton;
        const int mask = row.mask != 0 ? row.mask : side;
        if (row.isDown)
            hookListener->onButtonDown(mask);
        else
            hookListener->onButtonUp(mask);
    }
}

// Every event goes on to the window that has the focus.

LRESULT CALLBACK keyboardHook(int code, WPARAM message, LPARAM event)
{
    if (code == HC_ACTION && hookListener)
        hearKey(message, *reinterpret_cast<const KBDLLHOOKSTRUCT *>(event));
    return CallNextHookEx(nullptr, code, message, event);
}

LRESULT CALLBACK mouseHook(int code, WPARAM message, LPARAM event)
{
    if (code == HC_ACTION && hookListener)
        hearMouse(message, *reinterpret_cast<const MSLLHOOKSTRUCT *>(event));
    return CallNextHookEx(nullptr, code, message, event);
}

/// Windows' low-level hooks. One in the program.
class WindowsInputSource : public InputSource
{
public:
    ~WindowsInputSource() override;

    void start(InputListener &listener) override;
    QString keyName(int virtualKey) const override;

private:
    HHOOK m_keyboardHook = nullptr;
    HHOOK m_mouseHook = nullptr;
};

WindowsInputSource::~WindowsInputSource()
{
    for (HHOOK hook : {m_keyboardHook, m_mouseHook}) {
        if (hook)
            UnhookWindowsHookEx(hook);
    }
    hookListener = nullptr;
}

void WindowsInputSource::start(InputListener &listener)
{
    hookListener = &listener;
    HINSTANCE program = GetModuleHandleW(nullptr);
    m_keyboardHook = SetWindowsHookExW(WH_KEYBOARD_LL, keyboardHook, program, 0);
    if (!m_keyboardHook)
        qWarning() << "PttHandler: keyboard hook failed, error:" << GetLastError();
    m_mouseHook = SetWindowsHookExW(WH_MOUSE_LL, mouseHook, program, 0);
    if (!m_mouseHook)
        qWarning() << "PttHandler: mouse hook failed, error:" << GetLastError();
}

QString WindowsInputSource::keyName(int virtualKey) const
{
    constexpr int capacity = 64;
    wchar_t name[capacity];
    const UINT scanCode = MapVirtualKeyW(static_cast<UINT>(virtualKey), MAPVK_VK_TO_VSC);
    const int length = GetKeyNameTextW(static_cast<LONG>(scanCode << 16), name, capacity);
    return QString::fromWCharArray(name, length);
}

} // namespace

std::unique_ptr<InputSource> InputSource::ofSystem()
{
    return std::make_unique<WindowsInputSource>();
}

} // namespace tarvo::input

#include "ui/WindowBackdrop.h"

#include <QOperatingSystemVersion>
#include <QWidget>

#include <windows.h>

#include <dwmapi.h>

namespace tarvo::ui {

namespace {

// Attributes that older SDK headers lack.
constexpr DWORD useImmersiveDarkMode = 20;
constexpr DWORD systemBackdropType = 38;
constexpr DWORD backdropMainWindow = 2;

/// Undocumented argument of SetWindowCompositionAttribute.
struct AccentPolicy
{
    DWORD state;
    DWORD flags;
    DWORD gradientColour;
    DWORD animationId;
};
struct CompositionAttribute
{
    DWORD attribute;
    PVOID data;
    SIZE_T size;
};
constexpr DWORD accentPolicyAttribute = 19;
constexpr DWORD accentEnableBlurBehind = 3;

using SetWindowCompositionAttribute = BOOL(WINAPI *)(HWND, CompositionAttribute *);

void applySystemBackdrop(HWND window)
{
    const BOOL dark = FALSE; // the pages are light
    DwmSetWindowAttribute(window, useImmersiveDarkMode, &dark, sizeof dark);
    DwmSetWindowAttribute(window, systemBackdropType, &backdropMainWindow, sizeof backdropMainWindow);
    const MARGINS wholeWindow{-1, -1, -1, -1};
    DwmExtendFrameIntoClientArea(window, &wholeWindow);
}

void applyBlurBehind(HWND window)
{
    const HMODULE user32 = GetModuleHandleW(L"user32.dll");
    if (!user32)
        return;
    const auto set = reinterpret_cast<SetWindowCompositionAttribute>(
        reinterpret_cast<void *>(GetProcAddress(user32, "SetWindowCompositionAttribute")));
    if (!set)
        return;
    AccentPolicy policy{accentEnableBlurBehind, 0, 0, 0};
    CompositionAttribute attribute{accentPolicyAttribute, &policy, sizeof policy};
    set(window, &attribute);
}

} // namespace

void applyWindowBackdrop(QWidget &window)
{
    window.setAttribute(Qt::WA_TranslucentBackground);
    const HWND handle = reinterpret_cast<HWND>(window.winId());
    if (QOperatingSystemVersion::current() >= QOperatingSystemVersion::Windows11)
        applySystemBackdrop(handle);
    else
        applyBlurBehind(handle);
}

} // namespace tarvo::ui

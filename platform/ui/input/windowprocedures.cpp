// What windows do with the messages that their procedures leave to the platform.
#include "platform/ui/input/windowprocedures.h"

#include "platform/ui/core/windowcore.h"
#include "platform/ui/drawing/gdiobjects.h"
#include "platform/ui/input/inputtranslation.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

LRESULT SetText(HWND window, LPARAM lParam) {
    window->text = HostText(reinterpret_cast<const WCHAR*>(lParam));
    if (window->topLevel)
        UpdateTitleBar();
    else if (window->widget)
        window->widget->update();
    return TRUE;
}

LRESULT SetFont(HWND window, WPARAM wParam) {
    window->font = reinterpret_cast<HFONT>(wParam);
    if (window->widget)
        window->widget->setFont(FontOf(window->font));
    return 0;
}

// WM_HELP goes to the window with the focus, and from there to its parents until one answers.
bool HandleHelpKey(HWND window, UINT message, WPARAM wParam) {
    if (message != WM_KEYDOWN || wParam != VK_F1)
        return false;
    SendMessageW(window, WM_HELP, 0, 0);
    return true;
}

// So does WM_CONTEXTMENU.
bool HandleContextMenuKey(HWND window, UINT message, WPARAM wParam) {
    const bool menuKey = message == WM_KEYDOWN && wParam == VK_APPS;
    const bool shiftF10 = message == WM_SYSKEYDOWN && wParam == VK_F10 && GetKeyState(VK_SHIFT) < 0;
    if (menuKey || shiftF10)
        SendMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(window), kByKey);
    return menuKey || shiftF10;
}

// F6 goes round the panes of a window: the bar comes last, and from there the focus returns.
bool HandlePaneKey(HWND window, UINT message, WPARAM wParam) {
    if (message != WM_KEYDOWN || wParam != VK_F6)
        return false;
    const HWND bar = MenuBarOf(window);
    return bar && SendMessageW(bar, MBM_ENTERMENUMODE, 0, 0);
}

bool HandleCommonKey(HWND window, UINT message, WPARAM wParam) {
    return HandleHelpKey(window, message, wParam) || HandleContextMenuKey(window, message, wParam) ||
           HandlePaneKey(window, message, wParam) || HandleMenuKey(window, message, wParam);
}

// Common to all windows; false: not one of these.
bool DefaultProperties(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    switch (message) {
    case WM_SETTEXT:
        result = SetText(window, lParam);
        return true;
    case WM_GETTEXT:
        result = CopyHostText(reinterpret_cast<WCHAR*>(lParam), static_cast<int>(wParam), window->text);
        return true;
    case WM_NAMEWINDOW:
        if (window->widget)
            window->widget->setAccessibleName(HostText(reinterpret_cast<const WCHAR*>(lParam)));
        return true;
    case WM_GETTEXTLENGTH:
        result = window->text.size();
        return true;
    case WM_SETFONT:
        result = SetFont(window, wParam);
        return true;
    case WM_GETFONT:
        result = reinterpret_cast<LRESULT>(window->font);
        return true;
    case WM_SETREDRAW:
        if (window->widget)
            window->widget->setUpdatesEnabled(wParam != 0);
        result = 0;
        return true;
    case WM_HELP:
    case WM_CONTEXTMENU:
        result = window->parent ? SendMessageW(window->parent, message, wParam, lParam) : 0;
        return true;
    }
    return false;
}

void SetWindowIcon(HWND window, WPARAM wParam, LPARAM lParam) {
    const auto icon = reinterpret_cast<HICON>(lParam);
    if (icon && (wParam == ICON_BIG || !window->icon))
        window->icon = icon;
    if (window->topLevel && icon)
        SetScreenIcon(icon);
}

} // namespace

LRESULT DefaultControlProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (!LiveWindow(window) || DefaultProperties(window, message, wParam, lParam, result))
        return result;
    if (message == WM_ENABLE) {
        if (window->widget)
            window->widget->setEnabled(wParam != 0);
    } else if (IsInputMessage(message)) {
        if (!HandleCommonKey(window, message, wParam))
            ReplayInput(window, message, wParam, lParam);
    }
    return 0;
}

LRESULT NotifyParent(HWND control, NMHDR* header, UINT code) {
    const WindowObject* object = LiveWindow(control);
    if (!object)
        return 0;
    header->hwndFrom = control;
    header->idFrom = object->id;
    header->code = code;
    return SendMessageW(object->parent, WM_NOTIFY, object->id, reinterpret_cast<LPARAM>(header));
}

void CommandToParent(HWND control, UINT notification) {
    if (const WindowObject* object = LiveWindow(control))
        SendMessageW(object->parent, WM_COMMAND,
                     MAKELONG(static_cast<WORD>(object->id), static_cast<WORD>(notification)),
                     reinterpret_cast<LPARAM>(control));
}

} // namespace ui

using namespace ui;

LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (!LiveWindow(window) || DefaultProperties(window, message, wParam, lParam, result))
        return result;
    switch (message) {
    case WM_CLOSE:
        DestroyWindow(window);
        break;
    case WM_SETICON:
        SetWindowIcon(window, wParam, lParam);
        break;
    case WM_SYSKEYDOWN:
    case WM_SYSKEYUP:
    case WM_KEYUP:
    case WM_KEYDOWN:
        HandleCommonKey(window, message, wParam);
        break;
    }
    return 0;
}

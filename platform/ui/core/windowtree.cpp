// What can be asked of a window: relatives, style, text, extra bytes.
#include <algorithm>
#include <cstring>

#include "platform/ui/core/windowcore.h"

namespace ui {

HWND MenuBarOf(HWND window) {
    const WindowObject* const top = LiveWindow(TopLevelOf(window));
    if (!top)
        return nullptr;
    const auto bar = std::find_if(top->children.begin(), top->children.end(),
                                  [](HWND child) { return child->id == kMenuBarId; });
    return bar == top->children.end() ? nullptr : *bar;
}

namespace {

// The extra bytes at that offset; null when no value fits there.
std::byte* ExtraValue(WindowObject& window, int offset) {
    const bool inside =
        offset >= 0 && static_cast<std::size_t>(offset) + sizeof(LONG_PTR) <= window.extra.size();
    return inside ? window.extra.data() + offset : nullptr;
}

} // namespace

} // namespace ui

using namespace ui;

HWND GetParent(HWND window) {
    const WindowObject* object = LiveWindow(window);
    if (!object)
        return nullptr;
    return LiveWindow(object->parent ? object->parent : object->owner);
}

HWND GetWindow(HWND window, UINT relation) {
    WindowObject* object = LiveWindow(window);
    if (!object)
        return nullptr;
    if (relation == GW_CHILD)
        return object->children.empty() ? nullptr : object->children.front();
    WindowObject* parent = LiveWindow(object->parent);
    const std::vector<HWND>& siblings = parent ? parent->children : TopLevelWindows();
    const auto found = std::find(siblings.begin(), siblings.end(), window);
    if (found == siblings.end())
        return nullptr;
    switch (relation) {
    case GW_HWNDFIRST:
        return siblings.front();
    case GW_HWNDLAST:
        return siblings.back();
    case GW_HWNDNEXT:
        return found + 1 == siblings.end() ? nullptr : *(found + 1);
    case GW_HWNDPREV:
        return found == siblings.begin() ? nullptr : *(found - 1);
    }
    return nullptr;
}

int GetClassNameW(HWND window, WCHAR* name, int capacity) {
    const WindowObject* object = LiveWindow(window);
    return object ? CopyHostText(name, capacity, object->windowClass->name) : 0;
}

LONG_PTR GetWindowLongPtrW(HWND window, int index) {
    WindowObject* object = LiveWindow(window);
    if (!object)
        return 0;
    switch (index) {
    case GWLP_WNDPROC:
        return reinterpret_cast<LONG_PTR>(object->procedure);
    case GWL_STYLE:
        return object->style;
    case GWLP_ID:
        return object->id;
    case GWLP_USERDATA:
        return object->userData;
    }
    LONG_PTR value = 0;
    if (const std::byte* bytes = ExtraValue(*object, index))
        std::memcpy(&value, bytes, sizeof(value));
    return value;
}

LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value) {
    WindowObject* object = LiveWindow(window);
    const LONG_PTR previous = GetWindowLongPtrW(window, index);
    if (!object)
        return 0;
    switch (index) {
    case GWLP_WNDPROC:
        object->procedure = reinterpret_cast<WNDPROC>(value);
        break;
    case GWL_STYLE:
        object->style = static_cast<DWORD>(value);
        SendMessageW(window, WM_STYLECHANGED, static_cast<WPARAM>(GWL_STYLE), previous);
        break;
    case GWLP_ID:
        object->id = static_cast<UINT>(value);
        break;
    case GWLP_USERDATA:
        object->userData = value;
        break;
    default:
        if (std::byte* bytes = ExtraValue(*object, index))
            std::memcpy(bytes, &value, sizeof(value));
    }
    return previous;
}

BOOL SetWindowTextW(HWND window, const WCHAR* text) {
    if (!LiveWindow(window))
        return FALSE;
    SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
    return TRUE;
}

int GetWindowTextW(HWND window, WCHAR* text, int capacity) {
    if (!text || capacity <= 0)
        return 0;
    text[0] = 0;
    return static_cast<int>(
        SendMessageW(window, WM_GETTEXT, static_cast<WPARAM>(capacity), reinterpret_cast<LPARAM>(text)));
}

int GetWindowTextLengthW(HWND window) {
    return static_cast<int>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0));
}

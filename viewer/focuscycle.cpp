#include "viewer/focuscycle.h"

namespace {

constexpr int kPasses = 2; // to the chain's end, then once from its start

// The dialog's own child that holds the window: itself, or its parent, as an editor inside a picker has it.
HWND ChildOfDialog(HWND dialog, HWND window) {
    const HWND parent = GetParent(window);
    if (parent == dialog)
        return window;
    return parent && GetParent(parent) == dialog ? parent : nullptr;
}

bool TakesFocus(HWND window) {
    return IsWindowVisible(window) && IsWindowEnabled(window) &&
           (GetWindowLongPtrW(window, GWL_STYLE) & WS_TABSTOP);
}

} // namespace

bool CycleFocus(HWND dialog, const MSG& message) {
    if (message.message != WM_KEYDOWN || message.wParam != VK_TAB)
        return false;
    const bool backwards = GetKeyState(VK_SHIFT) < 0;
    if (!backwards && GetKeyState(VK_CONTROL) >= 0)
        return false;
    const HWND start = ChildOfDialog(dialog, message.hwnd);
    if (!start)
        return false;
    HWND next = GetWindow(start, backwards ? GW_HWNDPREV : GW_HWNDNEXT);
    for (int pass = 0; pass < kPasses; ++pass) {
        for (; next; next = GetWindow(next, backwards ? GW_HWNDPREV : GW_HWNDNEXT)) {
            if (next != start && TakesFocus(next)) {
                SetFocus(next);
                return true;
            }
        }
        next = GetWindow(start, backwards ? GW_HWNDLAST : GW_HWNDFIRST);
    }
    return false;
}

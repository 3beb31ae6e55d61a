// Which window has the focus, and which top-level window is active.
#include <QApplication>

#include "platform/ui/core/windowcore.h"
#include "platform/ui/screen/screen.h"
#include "platform/ui/screen/windows.h"

namespace ui {

namespace {

struct FocusState {
    HWND focus = nullptr;
    HWND active = nullptr;
    bool moving = false;    // the host's focus is being moved by us
    bool hostActive = true; // the display is the host's active window, as far as we know
};

FocusState& State() {
    static FocusState state;
    return state;
}

bool CanHaveFocus(HWND window) {
    for (const WindowObject* object = LiveWindow(window); object; object = LiveWindow(object->parent))
        if (object->style & WS_DISABLED || object->destroying)
            return false;
    return LiveWindow(window) != nullptr;
}

void MoveHostFocus(HWND window) {
    FocusState& state = State();
    if (!window->widget)
        return;
    state.moving = true;
    window->widget->setFocus(Qt::OtherFocusReason);
    // The host marks the focus only when a key has moved it; here it always shows.
    window->widget->window()->setAttribute(Qt::WA_KeyboardFocusChange);
    state.moving = false;
}

// The next activation of the top-level window gives the focus to this child.
void RememberFocus(HWND window) {
    WindowObject* top = TopLevelOf(window);
    if (top && top != window)
        top->topLevel->lastFocus = window;
}

// Moves the focus to the window, and tells it and the one that had it.
void TakeFocus(HWND window) {
    FocusState& state = State();
    const HWND before = LiveWindow(state.focus);
    if (before == window)
        return;
    state.focus = window;
    RememberFocus(window);
    if (before)
        SendMessageW(before, WM_KILLFOCUS, reinterpret_cast<WPARAM>(window), 0);
    if (state.focus != window || !LiveWindow(window))
        return;
    MoveHostFocus(window);
    SendMessageW(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(before), 0);
    const HWND top = TopLevelOf(window);
    if (top && top->dialog && top->dialog->focusMoved)
        top->dialog->focusMoved(top);
}

bool ChangeActive(HWND window) {
    FocusState& state = State();
    const HWND before = LiveWindow(state.active);
    if (before == window)
        return true;
    state.active = window;
    if (before && !before->destroying)
        SendMessageW(before, WM_ACTIVATE, WA_INACTIVE, reinterpret_cast<LPARAM>(window));
    if (state.active != window)
        return false;
    UpdateTitleBar();
    if (!window)
        return true;
    RaiseFamily(window);
    HideCoveredFrames();
    if (state.hostActive)
        SendMessageW(window, WM_ACTIVATE, WA_ACTIVE, reinterpret_cast<LPARAM>(before));
    return state.active == window && LiveWindow(window);
}

HWND NextActive(HWND from) {
    const WindowObject* left = LiveWindow(from);
    const HWND owner = left ? LiveWindow(left->owner) : nullptr;
    if (owner && CanHaveFocus(owner) && IsWindowVisible(owner))
        return owner;
    const std::vector<HWND>& windows = TopLevelWindows();
    HWND visible = nullptr;
    for (auto candidate = windows.rbegin(); candidate != windows.rend(); ++candidate) {
        if (*candidate == from || !IsWindowVisible(*candidate) || (*candidate)->destroying)
            continue;
        if (CanHaveFocus(*candidate))
            return *candidate;
        if (!visible)
            visible = *candidate;
    }
    return visible;
}

} // namespace

HWND ActiveTopLevel() {
    return LiveWindow(State().active);
}

void ActivateTopLevel(HWND window) {
    if (!LiveWindow(window) || !window->topLevel)
        return;
    window = FrontOfFamily(window);
    if (!ChangeActive(window))
        return;
    const HWND focus = GetFocus();
    if (focus && IsInside(focus, window) && focus != window)
        return; // it chose by itself when it was told
    const HWND last = window->topLevel->lastFocus;
    const bool lastFits = IsInside(last, window) && CanHaveFocus(last) && IsWindowVisible(last);
    if (CanHaveFocus(window))
        TakeFocus(lastFits ? last : window);
}

void PassActivationOn(HWND from) {
    if (ActiveTopLevel() != from)
        return;
    const HWND next = NextActive(from);
    if (next) {
        ShowOnScreen(next);
        ActivateTopLevel(next);
    } else {
        ChangeActive(nullptr);
    }
}

void HostFocusMoved(QWidget* widget) {
    const HWND window = WindowOfWidget(widget);
    if (State().moving || !window || window == GetFocus())
        return;
    // When a widget is deleted the host gives the focus to another one by itself, which can only be right
    // within the active window.
    if (CanHaveFocus(window) && TopLevelOf(window) == ActiveTopLevel())
        TakeFocus(window);
}

void AgreeOnFocus() {
    const HWND focus = GetFocus();
    if (!focus || !focus->widget || !CanHaveFocus(focus) || !focus->widget->isVisible())
        return;
    const QWidget* display = focus->widget->window();
    const QWidget* host = display->isActiveWindow() ? QApplication::focusWidget() : display->focusWidget();
    if (WindowOfWidget(host) != focus && !QApplication::activePopupWidget())
        MoveHostFocus(focus);
}

void HostActivated(bool active) {
    FocusState& state = State();
    if (state.hostActive == active)
        return;
    state.hostActive = active;
    if (const HWND window = ActiveTopLevel())
        SendMessageW(window, WM_ACTIVATE, active ? WA_ACTIVE : WA_INACTIVE, 0);
}

void DropFocusInside(HWND window) {
    if (IsInside(State().focus, window))
        State().focus = nullptr;
}

} // namespace ui

using namespace ui;

HWND GetFocus() {
    return LiveWindow(State().focus);
}

HWND SetFocus(HWND window) {
    const HWND before = GetFocus();
    if (!window) {
        State().focus = nullptr;
        if (before)
            SendMessageW(before, WM_KILLFOCUS, 0, 0);
        return before;
    }
    if (window == before || !CanHaveFocus(window))
        return before;
    const HWND top = TopLevelOf(window);
    RememberFocus(window);
    // A window behind one that it owns gets the focus when that one is closed.
    if (FrontOfFamily(top) != top)
        return before;
    if (!(top->style & WS_VISIBLE) || ChangeActive(top)) {
        if (CanHaveFocus(window))
            TakeFocus(window);
    }
    return before;
}

BOOL SetForegroundWindow(HWND window) {
    if (ForegroundElsewhere(window))
        return TRUE;
    const HWND top = TopLevelOf(window);
    if (!top)
        return FALSE;
    RaiseScreen();
    const HWND front = FrontOfFamily(top);
    // A disabled window waits for a dialog that it does not own: the dialog stays active.
    if (!(front->style & WS_DISABLED))
        ActivateTopLevel(front);
    return TRUE;
}

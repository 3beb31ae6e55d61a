// Inside the window system: what its own files share with each other. Controls and drawing need
// windowobject.h only.
#pragma once

#include "platform/ui/core/windowobject.h"

namespace ui {

// ---- registry ----
const WindowClass* FindWindowClass(const WCHAR* name);
// Takes the object; its handle lives until ForgetWindow.
HWND AddWindow(std::unique_ptr<WindowObject> window);
// A window that goes again unless its making is completed: release() then.
using NewWindow = std::unique_ptr<WindowObject, BOOL (*)(HWND)>;
// The handle is dead from here on. Its memory is kept for a while, so that a caller further down the stack
// that still looks at it reads a dead window and not another one.
void ForgetWindow(HWND window);
void BindWidget(HWND window, QWidget* widget);
void UnbindWidget(const QWidget* widget);
// From the bottom to the top of the screen.
std::vector<HWND>& TopLevelWindows();
bool IsInside(HWND window, HWND ancestor);

// Deletes a widget once no event of its own can be on the stack any more.
void BuryWidget(QWidget* widget);
void DeleteBuriedWidgets(int dispatchDepth);

// ---- stacking ----
// Puts the window above all others but those that it owns, which come along above it.
void RaiseFamily(HWND window);
// The topmost shown window that this one owns, directly or through other windows; the window itself when
// there is none. Only that one can be used: it covers the others.
HWND FrontOfFamily(HWND window);
// What a full-screen window covers need not be painted, nor be found by assistive programs.
void HideCoveredFrames();

// ---- focus and activation ----
HWND ActiveTopLevel();
// Brings the window to the front, tells both windows, and gives the focus back to the child that had it.
// When it owns a shown window, that one becomes active instead.
void ActivateTopLevel(HWND window);
// After a window was hidden, disabled or destroyed: whoever comes next becomes active.
void PassActivationOn(HWND from);
// The host moved its focus to that widget by itself: a click.
void HostFocusMoved(QWidget* widget);
// Puts the host's focus back to where ours is, if they differ.
void AgreeOnFocus();
// The display itself became active or inactive among the host's windows.
void HostActivated(bool active);
// The window or one inside it loses the focus without being asked: it is gone.
void DropFocusInside(HWND window);

// ---- geometry ----
// Client coordinates of the parent; sends WM_SIZE when the size changed.
void PlaceWindow(HWND window, const QRect& rect);
// All top-level windows, after the screen changed.
void LayOutScreen();
void UpdateTitleBar();

// ---- the menu bar ----
// The bar of the top-level window that `window` belongs to, or null.
HWND MenuBarOf(HWND window);
// What the keyboard asks of a bar; both answer whether there was something to open.
constexpr UINT MBM_OPENBYLETTER = WM_USER + 450; // wParam: the letter pressed with Alt
constexpr UINT MBM_ENTERMENUMODE = WM_USER + 451;

// ---- timers ----
void KillTimersOf(HWND window);

// ---- other processes ----
// Asks the process that owns the window to bring it to the front; false when the window is no other
// process's.
bool ForegroundElsewhere(HWND window);
// Other processes on the device may ask for the window from now on, until it is destroyed.
void AnnounceWindow(HWND window);
void WithdrawWindow(HWND window);
// Polls for what other processes did to open databases, as long as a window wants to know.
void WatchStore();

// ---- modal loops ----
// The dialog's modal loop, if one runs, returns after the message that is being dispatched.
void EndDialogLoop(DialogData& data);

// ---- built-in classes of the core ----
inline const WCHAR* const kDialogClass = u"Dialog";
void RegisterDialogClass();

} // namespace ui

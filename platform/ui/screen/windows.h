// The top-level windows on the display: which is above which, which is active, where they are, and what other
// processes on the device see of them.
#pragma once

#include "platform/ui/core/windowobject.h"

namespace ui {

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
// Lays out a top-level window on the screen with its menu bar at its top, and sends WM_SIZE when the client
// area changed. Also called when the bar's height changed.
void LayOutTopLevel(HWND window);

// ---- dropped files ----
bool AcceptsFiles(HWND window);
// Device paths for a window that accepts them; for any other nothing happens.
void DropFiles(HWND window, const std::vector<std::u16string>& paths);

// ---- the end of the session ----
// From now on the window gets WM_ENDSESSION before the process is ended by the host.
void SaveAtSessionEnd(HWND window);
// What was dragged out, before an end of the process that runs no destructors.
void RemoveDraggedFiles();

// ---- other processes ----
// Asks the process that owns the window to bring it to the front; false when the window is no other
// process's.
bool ForegroundElsewhere(HWND window);
// Other processes on the device may ask for the window from now on, until it is destroyed.
void AnnounceWindow(HWND window);
void WithdrawWindow(HWND window);
// Polls for what other processes did to open databases, as long as a window wants to know.
void WatchStore();

} // namespace ui

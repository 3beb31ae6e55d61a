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

// ---- the menu bar ----
// The bar of the top-level window that `window` belongs to, or null.
HWND MenuBarOf(HWND window);
// What the keyboard asks of a bar; both answer whether there was something to open.
constexpr UINT MBM_OPENBYLETTER = WM_USER + 450; // wParam: the letter pressed with Alt
constexpr UINT MBM_ENTERMENUMODE = WM_USER + 451;

// ---- timers ----
void KillTimersOf(HWND window);

// ---- modal loops ----
// The dialog's modal loop, if one runs, returns after the message that is being dispatched.
void EndDialogLoop(DialogData& data);

} // namespace ui

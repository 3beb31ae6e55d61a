// The handheld's display: one window of the host, with the title bar at its top and the application's windows
// filling the rest.
#pragma once

#include <QSize>

#include "platform/ui/core/windowobject.h"

namespace ui {

// The display's size, title bar included, in pixels. Before the display exists: the size that it will have.
QSize ScreenSize();
int TitleBarHeight();
// The widget under which top-level windows stand.
QWidget* ScreenArea();
int ScrollBarWidth();
// Pixels of the host for that many pixels at 96 to the inch.
int Scaled(int pixels);

// A frame for a top-level window; a card's frame dims what lies below it and takes its taps.
QWidget* NewFrame(HWND window);
// Shows the frame, above all but the windows that it owns, and the display itself when it is the first. The
// display then stays until the process ends: one window often follows another.
void ShowOnScreen(HWND window);
// What is invalid is painted and on its way to the host's display when this returns.
void PaintScreenNow();
// In front of the host's other windows.
void RaiseScreen();
void SetScreenIcon(HICON icon);
// Writes down where the display is and how large, for the next one of this user.
void RememberDisplayPlace();
// Made by the start of the window system, shown with its first window.
void CreateScreen();

} // namespace ui

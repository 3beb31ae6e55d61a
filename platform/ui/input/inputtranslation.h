// Host input becomes messages, and goes back to the host's widgets when a control's procedure has seen it.
#pragma once

#include "platform/window.h"

namespace ui {

// Watches everything that the host delivers to the display's windows.
void InstallInputFilter();
// Hands the event behind an input message to the widget that it was meant for, or makes one for a message
// that the program posted itself.
void ReplayInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
bool IsInputMessage(UINT message);
// What Alt and F10 do unless a control wants them: true when the menu bar took the key.
bool HandleMenuKey(HWND window, UINT message, WPARAM wParam);

} // namespace ui

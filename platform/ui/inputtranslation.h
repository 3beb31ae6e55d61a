// Host input becomes messages, and goes back to the host's widgets when a control's procedure has seen it.
#pragma once

#include <QEvent>

#include "platform/window.h"

class QObject;

// Watches everything that the host delivers to the display's windows.
void InstallInputFilter();
// Follows the modifier keys, for GetKeyState: called with each input event that is retrieved.
void NoteKeys(const QEvent& event);
// Hands the event behind an input message to the widget that it was meant for, or makes one for a message
// that the program posted itself.
void ReplayInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
bool IsInputMessage(UINT message);
// What Alt and F10 do unless a control wants them: true when the menu bar took the key.
bool HandleMenuKey(HWND window, UINT message, WPARAM wParam);

// ---- keys ----
bool IsLetterOrDigit(WPARAM key); // these have the same number on the host as here
UINT VirtualKeyOf(int hostKey);   // 0 for keys without one
int HostKeyOf(UINT virtualKey);   // 0 for unknown ones

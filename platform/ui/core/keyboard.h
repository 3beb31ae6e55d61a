// The host's keys and the handheld's, and which of them are held.
#pragma once

#include <QEvent>
#include <Qt>

#include "platform/window.h"

namespace ui {

struct KeyboardState {
    Qt::KeyboardModifiers modifiers;
    bool altAlone = false; // Alt went down and nothing else since
    bool atBar = false;    // the menu bar or a popup of it has the keys: nothing else looks focused
};
KeyboardState& Keyboard();
// Follows the modifier keys, for GetKeyState: called with each input event that is retrieved.
void NoteKeys(const QEvent& event);

bool IsLetterOrDigit(WPARAM key); // these have the same number on the host as here
UINT VirtualKeyOf(int hostKey);   // 0 for keys without one
int HostKeyOf(UINT virtualKey);   // 0 for unknown ones

} // namespace ui
